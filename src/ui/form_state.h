// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <cstdint>

namespace harrowby {

/// Form-level state of the window, shared by its handlers.
struct FormState
{
    bool IsLoggedIn = false; ///< a user is logged in; also true while the window loads, so that its tab handlers run
    QString LoggedUser;      ///< trimmed, upper-cased login name; empty when logged out

    // Privileges of the logged-in user. A logout leaves them: every gate asks for IsLoggedIn first, and the next
    // login overwrites all seven.
    bool CanSell = false;
    bool CanReport = false;
    bool CanUndo = false;
    bool CanDelete = false;
    bool CanSettings = false;
    bool CanReorder = false;
    bool CanEditStock = false; ///< comes from the same column as CanReorder, yet is a right of its own

    std::int16_t CartCount = 0; ///< set to 0 at load and never changed by the cart, on purpose; asked when closing

    std::int16_t ShowDetailsFlag = 0;   ///< "Show Details On Purchase"; when 0, outcomes are reported without boxes
    std::int16_t PromptReorderFlag = 0; ///< "Prompt on Load when Item(s) need to be Reordered"
    std::int16_t HideFinishedFlag = 0;  ///< "Don't List Finished Item(s)"
    std::int16_t EmailReportFlag = 0;   ///< "Email Daily Report"
    QString ReportEmailAddress;

    QString MsgTitle; ///< caption of every message box; never assigned, so empty

    std::int16_t QuickSalesOffset = 0; ///< first row of the quick-sale page: 0, 9, 18, …
    QString LastPurchaseID;            ///< the last purchase committed in this window, for its undo
    QString ReceiptText;               ///< lines of the last receipt, each after a CR LF, for a reprint
    std::int16_t LastReorderQty = 0;   ///< units of the last reorder, for its undo
    QString LastReorderItem;           ///< its item key; empty when there is nothing to undo
};

} // namespace harrowby
