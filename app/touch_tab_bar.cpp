// SPDX-License-Identifier: MIT
#include "touch_tab_bar.h"

#include "spoken/true_focus.h"

#include <QWheelEvent>

namespace harrowby::app {

bool TouchTabBar::event(QEvent *event)
{
    const TrueFocus onlyTrue;
    return QTabBar::event(event);
}

QSize TouchTabBar::tabSizeHint(int index) const
{
    constexpr QSize smallest(150, 48);
    return QTabBar::tabSizeHint(index).expandedTo(smallest);
}

void TouchTabBar::wheelEvent(QWheelEvent *event)
{
    event->ignore();
}

} // namespace harrowby::app
