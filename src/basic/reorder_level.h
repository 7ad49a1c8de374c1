// SPDX-License-Identifier: MIT
#pragma once

#include <harrowby/db_value.h>

/// When an item is to be reordered. Intended: the stock list marks what is at or below its level, whether it is still
/// sold or not; the dashboard and the reorder list leave out what is not.
namespace harrowby {

/// Whether the item is at or below its level. False where a figure is missing. A figure that is stored as text counts
/// by the number that it begins with (valueNumber()); lowStockSelect compares it as the engine does, so the two can
/// differ for such rows.
[[nodiscard]] bool needsReorder(const DbValue &reorderLevel, const DbValue &available);

/// The items to reorder: what the dashboard counts, and what the reorder list shows. The index
/// `harrowby_stock_reorder` (app/shop/schema.cpp) holds the same comparison.
inline constexpr char lowStockSelect[] =
    "Select * from Stocklist where StockReorderlevel >= stockavailable and StockUse = 'Enabled'";

} // namespace harrowby
