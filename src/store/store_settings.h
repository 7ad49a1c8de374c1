// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <cstdint>
#include <memory>

namespace harrowby {

class DbConnection;

/// The shop's settings, as the one row of the table StoreSettings holds them and the window goes by them. Flags that
/// are ticked are 0 or 1; a stored one may be any 16-bit number.
struct StoreSettings
{
    std::int16_t EmailReportFlag = 0; ///< "Email Daily Report"; Intended: column "Email" is written, never read
    std::int16_t ShowDetailsFlag = 0; ///< "Show Details On Purchase"; when 0, outcomes are reported without boxes
    QString ReportEmailAddress;
    std::int16_t PromptReorderFlag = 0; ///< "Prompt on Load when Item(s) need to be Reordered"
    std::int16_t HideFinishedFlag = 0;  ///< "Don't List Finished Item(s)", column AutoPurchaseCart
    bool areRead = false;               ///< the database has been asked, and has answered
};

/// Reads the first row; writes one with the defaults first where there is none. What cannot be read, and
/// EmailReportFlag, stays as it is in `before`.
[[nodiscard]] StoreSettings readStoreSettings(const std::shared_ptr<DbConnection> &connection, StoreSettings before);

} // namespace harrowby
