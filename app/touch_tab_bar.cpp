// SPDX-License-Identifier: MIT
#include "touch_tab_bar.h"

#include "spoken/true_focus.h"

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

} // namespace harrowby::app
