// SPDX-License-Identifier: MIT
#include "app/boxes/dialog_style.h"

#include "tables/look.h"

#include <QAbstractButton>
#include <QMessageBox>
#include <QPushButton>
#include <QWidget>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr int touchHeight = 44;
constexpr int touchWidth = 112;

} // namespace

void enlargeFont(QWidget &window)
{
    constexpr qreal readable = 11;
    QFont font = window.font();
    font.setPointSizeF(std::max(font.pointSizeF(), readable));
    window.setFont(font);
}

void makeTouchSized(QWidget &window)
{
    for (auto *button : window.findChildren<QAbstractButton *>())
        button->setMinimumSize(touchWidth, touchHeight);
}

void dressBox(QMessageBox &box)
{
    box.setTextFormat(Qt::PlainText);
    enlargeFont(box);
    if (QPushButton *main = box.defaultButton())
        tables::makePrimary(*main);
    tables::dress(box);
}

QString failureNoticeStyle()
{
    // White on dark red, 9:1, in a light and in a dark palette.
    return u"#failureNotice { background: #7a1414; border: 2px solid #ffffff; }"
           "#failureNotice QLabel { color: #ffffff; background: transparent; }"
           "#failureHeading { font-weight: bold; font-size: 13pt; }"
           "#failureNotice QPushButton { color: #5c0d0d; background: #ffffff; border: 2px solid #ffffff;"
           " border-radius: 6px; font-weight: bold; padding: 0 16px; }"
           "#failureNotice QPushButton:pressed { background: #f0d6d6; }"_s;
}

} // namespace harrowby::app
