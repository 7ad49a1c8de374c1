// SPDX-License-Identifier: MIT
// The fields in which a stock item is entered.
#pragma once

#include "basic/stock_entry_rules.h"

namespace harrowby {

struct Controls;

void resetStockFields(const Controls &controls);
/// Empties the fields and leads to the first one.
void startNewStock(const Controls &controls);
/// As money, once it is left and a number.
void formatStockCost(const Controls &controls);

[[nodiscard]] StockEntry enteredStock(const Controls &controls);
/// Gives the focus to the field with the fault, if it is one to be typed again.
void leadToFault(const Controls &controls, StockFault fault);

} // namespace harrowby
