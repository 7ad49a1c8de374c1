// SPDX-License-Identifier: MIT
#include "ui/unbuilt.h"

#include "ui/controls.h"
#include "ui/widgets/pick_list.h"
#include "ui/widgets/row_list.h"

#include <QPushButton>

namespace harrowby {

void disableUnbuilt(const Controls &controls)
{
    const auto disable = [](auto *...widgets) { (widgets->setEnabled(false), ...); };
    const Controls &c = controls;
    disable(c.Combo2, c.Combo3, c.Combo4, c.Command8, c.Command15, c.Command31);
    disable(c.Command9, c.Command21);
    for (QPushButton *key : c.Command30)
        disable(key);
    disable(c.Combo5, c.Combo6, c.Combo7, c.Combo8, c.Combo13, c.Combo14, c.Combo15, c.Command16, c.Command26);
    disable(c.Command5, c.Command6, c.Command7);
    disable(c.Combo10, c.Combo11, c.Combo12, c.Command17, c.Command23, c.Command24);
    disable(c.Combo17, c.Command4);
    disable(c.Command25, c.Command19);
    disable(c.LV, c.LV2);
}

} // namespace harrowby
