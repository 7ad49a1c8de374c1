// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>

namespace harrowby {

class SavedSettings;
struct Controls;
struct StoreSettings;

/// "Email Daily Report" as the user has saved it; empty when that is no number.
[[nodiscard]] std::optional<std::int16_t> savedEmailReportFlag(SavedSettings &settings);
/// "Print Receipt on POS" as the user has saved it: not for a number equal to 0, nor for "False".
[[nodiscard]] bool savedPrintReceipt(SavedSettings &settings);

void showSettings(const Controls &controls, const StoreSettings &settings, bool printReceipt);

} // namespace harrowby
