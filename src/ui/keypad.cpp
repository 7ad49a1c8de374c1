// SPDX-License-Identifier: MIT
#include "ui/keypad.h"

#include "ui/controls.h"
#include "ui/panels.h"
#include "ui/widgets/pick_list.h"

#include <QFrame>

using namespace Qt::StringLiterals;

namespace harrowby {

void pressKey(const Controls &controls, int key)
{
    constexpr int lastDigit = 9;
    constexpr int eraser = 10;
    constexpr int closer = 11;
    PickList &quantity = *controls.Combo4;
    const QString typed = quantity.entryText();
    if (key == closer) {
        controls.Frame13->hide();
    } else if (!quantity.isEnabled()) {
        return;
    } else if (key >= 0 && key <= lastDigit) {
        quantity.setEntryText(typed + QString::number(key)); // Intended: appended to the initial "0"
    } else if (key == eraser && !typed.isEmpty() && typed != u"0"_s) {
        quantity.setEntryText(typed.chopped(1)); // Intended: a single "0" stays
    }
}

void toggleKeypad(const Controls &controls)
{
    if (!controls.Frame13->isHidden()) {
        controls.Frame13->hide();
        return;
    }
    controls.Frame11->hide(); // both have the same place
    bringForward(controls, *controls.Frame13);
}

} // namespace harrowby
