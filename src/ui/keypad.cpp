// SPDX-License-Identifier: MIT
#include "ui/inventory.h"
#include "ui/widgets/pick_list.h"

#include <QFrame>

using namespace Qt::StringLiterals;

namespace harrowby {

void Inventory::pressKey(int key)
{
    constexpr int lastDigit = 9;
    constexpr int eraser = 10;
    constexpr int closer = 11;
    PickList &quantity = *m_controls.Combo4;
    const QString typed = quantity.entryText();
    if (key == closer) {
        m_controls.Frame13->hide();
    } else if (!quantity.isEnabled()) {
        return;
    } else if (key >= 0 && key <= lastDigit) {
        quantity.setEntryText(typed + QString::number(key)); // behind the "0" that stands there at first, on purpose
    } else if (key == eraser && !typed.isEmpty() && typed != u"0"_s) {
        quantity.setEntryText(typed.chopped(1)); // a "0" that stands alone stays, on purpose
    }
}

void Inventory::toggleKeypad()
{
    if (!RequireLogin())
        return;
    if (!m_controls.Frame13->isHidden()) {
        m_controls.Frame13->hide();
        return;
    }
    m_controls.Frame11->hide(); // they share a place
    bringForward(m_controls.Frame13);
}

} // namespace harrowby
