// SPDX-License-Identifier: MIT
#include "app/office/touch_tab_bar.h"

#include <QWheelEvent>

namespace harrowby::app {

QSize TouchTabBar::tabSizeHint(int index) const
{
    constexpr QSize smallest(84, 48);
    return QTabBar::tabSizeHint(index).expandedTo(smallest);
}

void TouchTabBar::wheelEvent(QWheelEvent *event)
{
    event->ignore();
}

} // namespace harrowby::app
