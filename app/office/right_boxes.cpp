// SPDX-License-Identifier: MIT
#include "app/office/right_boxes.h"

#include "app/office/user_rules.h"

#include <QCheckBox>
#include <QFontMetrics>
#include <QPalette>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr int fewestPixels = 260;

/// The text on as many lines as the width takes, broken between words.
QString wrapped(const QString &text, const QFontMetrics &metrics, int width)
{
    QString lines;
    QString line;
    for (const QString &word : text.split(u' ')) {
        const QString longer = line.isEmpty() ? word : line + u' ' + word;
        if (!line.isEmpty() && metrics.horizontalAdvance(longer) > width) {
            lines += line + u'\n';
            line = word;
        } else {
            line = longer;
        }
    }
    return lines + line;
}

QString rightText(const Right &right)
{
    return right.title + u": "_s + right.words;
}

/// Locked check boxes keep the normal text colour, as they are to be read.
void showLockedAsText(QCheckBox &box)
{
    QPalette palette = box.palette();
    for (const auto role : {QPalette::WindowText, QPalette::Text})
        palette.setColor(QPalette::Disabled, role, palette.color(QPalette::Active, role));
    box.setPalette(palette);
}

} // namespace

RightBoxes::RightBoxes(QWidget *parent) : QWidget(parent)
{
    auto *rows = new QVBoxLayout(this);
    rows->setContentsMargins({});
    rows->setSpacing(4);
    for (const Right &right : userRights()) {
        auto *box = new QCheckBox(rightText(right), this);
        box->setAccessibleName(rightText(right));
        box->setMinimumWidth(fewestPixels); // its text wraps
        box->setObjectName(right.column);
        showLockedAsText(*box);
        connect(box, &QCheckBox::clicked, this,
                [this, column = right.column](bool on) { Q_EMIT switched(column, on); });
        m_boxes << box;
        rows->addWidget(box);
    }
}

void RightBoxes::showRights(const QStringList &columns, bool locked)
{
    for (qsizetype i = 0; i < m_boxes.size(); ++i) {
        m_boxes.at(i)->setChecked(columns.contains(userRights().at(i).column));
        m_boxes.at(i)->setEnabled(!locked);
    }
}

void RightBoxes::wrap(int width)
{
    for (qsizetype i = 0; i < m_boxes.size(); ++i)
        m_boxes.at(i)->setText(wrapped(rightText(userRights().at(i)), m_boxes.at(i)->fontMetrics(), width));
}

} // namespace harrowby::app
