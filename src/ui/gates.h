// SPDX-License-Identifier: MIT
// Who may do what. connections.cpp connects an action with its gate by handleGated(); passes() is asked before the
// handler. The tabs are connected without one, as the gate depends on the tab: chooseWorkArea() and chooseSidePanel()
// ask passes() themselves (tabs.cpp). Two handlers check the login themselves, as they do something else without one:
// logOut() and quickSaleCategoryChanged(). What is connected otherwise is open to everybody.
#pragma once

#include "ui/privileges.h"
#include "ui/work_areas.h"

namespace harrowby {

using Right = bool Privileges::*;

/// What stands before an action: a login, and then perhaps a right of the one who is logged in.
struct Gate
{
    enum class WithoutLogin {
        LeadToLogin, ///< RequireLogin(): "You must Login in First!", and the focus goes to the login
        Tell,        ///< "You must login first!", and no more
        Pass         ///< was asked for before
    };
    enum class WithoutRight {
        Tell,           ///< "User [NAME] doesn't have this privilege!"
        TellAndSendAway ///< the same, and the quick sales are shown
    };

    Right right = nullptr; ///< null: a login is enough
    WithoutRight withoutRight = WithoutRight::TellAndSendAway;
    WithoutLogin withoutLogin = WithoutLogin::LeadToLogin;
    bool deafDuringUndo =
        false; ///< Intended: no box either while a purchase is taken back, whose loop the press came into
};

namespace gates {

/// The quick sales, the custom sale's search and keypad, and what is done with the cart as a whole.
inline constexpr Gate login;
inline constexpr Gate linePrice{.withoutLogin = Gate::WithoutLogin::Tell};
inline constexpr Gate customItem{.right = &Privileges::CanSell, .withoutRight = Gate::WithoutRight::Tell};
inline constexpr Gate stockEntry{.right = &Privileges::CanEditStock, .withoutRight = Gate::WithoutRight::Tell};
inline constexpr Gate reorder{.right = &Privileges::CanReorder};
inline constexpr Gate reorderUndo{.right = &Privileges::CanUndo};
inline constexpr Gate purchaseUndo{.right = &Privileges::CanUndo, .deafDuringUndo = true};
inline constexpr Gate purchaseDeletion{.right = &Privileges::CanDelete, .deafDuringUndo = true};
inline constexpr Gate settings{.right = &Privileges::CanSettings};
inline constexpr Gate salesReport{.right = &Privileges::CanReport,
                                  .withoutRight = Gate::WithoutRight::Tell,
                                  .withoutLogin = Gate::WithoutLogin::Tell};
inline constexpr Gate salesActivity{.right = &Privileges::CanSettings,
                                    .withoutRight = Gate::WithoutRight::Tell,
                                    .withoutLogin = Gate::WithoutLogin::Tell};

/// The strip asks for the login before it selects a tab at all.
[[nodiscard]] constexpr Gate workArea(int area)
{
    Gate gate{.withoutLogin = Gate::WithoutLogin::Pass};
    switch (area) {
    case WorkArea::Settings:
        gate.right = &Privileges::CanSettings;
        break;
    case WorkArea::ReorderStock:
        gate.right = &Privileges::CanReorder;
        break;
    case WorkArea::EditStock:
        gate.right = &Privileges::CanEditStock;
        break;
    case WorkArea::CustomSales:
        gate.right = &Privileges::CanSell;
        break;
    default: // Intended: no right; a user without the right to sell still sells there
        break;
    }
    return gate;
}

} // namespace gates

} // namespace harrowby
