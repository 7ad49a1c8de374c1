// SPDX-License-Identifier: MIT
#include "ui/panels.h"

#include "ui/controls.h"

#include <QFrame>

namespace harrowby {

void bringForward(const Controls &controls, QFrame &panel)
{
    panel.show();
    panel.raise();
    if (!controls.Frame13->isHidden())
        controls.Frame13->raise();
}

void hidePanels(std::initializer_list<QFrame *> panels)
{
    for (QFrame *panel : panels)
        panel->hide();
}

} // namespace harrowby
