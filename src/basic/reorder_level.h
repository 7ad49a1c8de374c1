// SPDX-License-Identifier: MIT
#pragma once

#include <harrowby/db_value.h>

/// When an item is to be reordered: when it is at or below its reorder level, and still sold.
namespace harrowby {

/// Whether the item is at or below its level. A missing figure is neither.
[[nodiscard]] bool needsReorder(const DbValue &reorderLevel, const DbValue &available);

/// The items to reorder: what the dashboard counts, and what the reorder list shows. The index
/// `harrowby_stock_reorder` (app/shop/schema.cpp) holds the same comparison.
inline constexpr char lowStockSelect[] =
    "Select * from Stocklist where StockReorderlevel >= stockavailable and StockUse = 'Enabled'";

} // namespace harrowby
