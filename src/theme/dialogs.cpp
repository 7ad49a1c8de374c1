// SPDX-License-Identifier: MIT
#include "theme/dialogs.h"

#include "spoken/spoken.h"
#include "theme/measures.h"
#include "theme/style.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QWidget>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace harrowby {

namespace {

/// Rows that a popup list shows at most; on a smaller screen it scrolls.
constexpr int mostEntries = 24;
constexpr int touchWidth = 112;
constexpr qreal readablePoints = 11;

} // namespace

void dressDialog(QWidget &window)
{
    applyDialogStyle(window);
    speakTruly(&window);
    dressPart(window);
}

void dressPart(QWidget &part)
{
    for (auto *list : part.findChildren<QComboBox *>())
        list->setMaxVisibleItems(mostEntries);
    for (const auto *box : part.findChildren<QDialogButtonBox *>()) {
        for (QAbstractButton *button : box->buttons())
            button->setIcon({}); // of another style
    }
}

void dressBox(QMessageBox &box)
{
    box.setTextFormat(Qt::PlainText);
    enlargeFont(box);
    if (QPushButton *main = box.defaultButton())
        makePrimary(*main);
    dressDialog(box);
}

void makePrimary(QPushButton &button)
{
    button.setProperty("styleWord", u"primary"_s);
}

void enlargeFont(QWidget &window)
{
    QFont font = window.font();
    font.setPointSizeF(std::max(font.pointSizeF(), readablePoints));
    window.setFont(font);
}

QSize roomFor(const QWidget &window)
{
    constexpr QSize frame(12, 40); // of a window manager with large letters
    return window.screen()->availableSize() - frame;
}

void makeTouchSized(QWidget &window)
{
    for (auto *button : window.findChildren<QAbstractButton *>())
        button->setMinimumSize(touchWidth, touchHeight);
}

void centreCaptions(QFormLayout &form)
{
    for (int row = 0; row < form.rowCount(); ++row) {
        for (const auto role : {QFormLayout::LabelRole, QFormLayout::FieldRole}) {
            const QLayoutItem *item = form.itemAt(row, role);
            auto *label = item != nullptr ? qobject_cast<QLabel *>(item->widget()) : nullptr;
            if (label == nullptr)
                continue;
            label->setProperty("styleWord", u"field"_s);
            label->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
        }
    }
}

} // namespace harrowby
