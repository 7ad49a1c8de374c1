// SPDX-License-Identifier: MIT
#include "touch_tab_bar.h"

namespace harrowby::app {

QSize TouchTabBar::tabSizeHint(int index) const
{
    constexpr QSize smallest(150, 48);
    return QTabBar::tabSizeHint(index).expandedTo(smallest);
}

} // namespace harrowby::app
