// SPDX-License-Identifier: MIT
#include "dialog_style.h"

#include <QAbstractButton>
#include <QLineEdit>
#include <QWidget>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr int touchHeight = 44;
constexpr int touchWidth = 112;

} // namespace

void makeTouchSized(QWidget &window)
{
    for (auto *button : window.findChildren<QAbstractButton *>())
        button->setMinimumSize(touchWidth, touchHeight);
    for (auto *entry : window.findChildren<QLineEdit *>())
        entry->setMinimumHeight(touchHeight);
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
