// SPDX-License-Identifier: MIT
#pragma once

#include "store/store_settings.h"
#include "ui/privileges.h"

#include <QString>

#include <cstdint>

namespace harrowby {

/// Who is logged in.
struct Login
{
    bool IsLoggedIn = false; ///< a user is logged in; also true while the window loads, so that its tab handlers run
    QString LoggedUser;      ///< trimmed, upper-cased login name; empty when logged out
    /// A logout leaves them: every gate asks for IsLoggedIn first, and the next login overwrites all seven.
    Privileges rights;
};

/// What can be undone or printed again.
struct LastActions
{
    QString LastPurchaseID;          ///< the last purchase committed in this window, for its undo
    QString ReceiptText;             ///< lines of the last receipt, each after a CR LF, for a reprint
    std::int16_t LastReorderQty = 0; ///< units of the last reorder, for its undo
    QString LastReorderItem;         ///< its item key; empty when there is nothing to undo
};

/// Form-level state of the window, shared by its handlers.
struct FormState
{
    Login login;
    StoreSettings settings;
    LastActions last;
    std::int16_t QuickSalesOffset = 0; ///< first row of the quick-sale page: a multiple of quickSaleButtons
    std::int16_t CartCount = 0;        ///< Intended: 0 at load and never changed by the cart; read when closing
    bool areCategoriesRead = false;    ///< what categories can be chosen from has been filled once
    bool areCategoriesListed = false;  ///< so has the list of them in the settings
    QString MsgTitle;                  ///< caption of every message box; never assigned, so empty
};

} // namespace harrowby
