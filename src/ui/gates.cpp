// SPDX-License-Identifier: MIT
#include "ui/gates.h"

#include "ui/inventory.h"
#include "ui/widgets/tab_strip.h"

using namespace Qt::StringLiterals;

namespace harrowby {

bool Inventory::passes(const Gate &gate)
{
    if (gate.deafDuringUndo && m_underWay.purchaseUndo.isRunning())
        return false;
    if (!m_state.login.IsLoggedIn) {
        switch (gate.withoutLogin) {
        case Gate::WithoutLogin::LeadToLogin:
            return RequireLogin();
        case Gate::WithoutLogin::Tell:
            warn(u"You must login first!"_s);
            return false;
        case Gate::WithoutLogin::Pass:
            break;
        }
    }
    if (gate.right == nullptr || m_state.login.rights.*gate.right)
        return true;
    warn(u"User ["_s + m_state.login.LoggedUser + u"] doesn't have this privilege!"_s);
    if (gate.withoutRight == Gate::WithoutRight::TellAndSendAway)
        m_controls.TabStrip1->selectTab(WorkArea::QuickSales);
    return false;
}

} // namespace harrowby
