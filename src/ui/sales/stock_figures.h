// SPDX-License-Identifier: MIT
#pragma once

#include "basic/cart_arithmetic.h"
#include "store/recordset.h"

/// What a sale reads from a row of the stock.
namespace harrowby {

[[nodiscard]] inline float availableUnits(DbRecordset &item)
{
    return toSingle(item.Field(QStringLiteral("StockAvailable")).number()).value_or(0.0F);
}

[[nodiscard]] inline float unitCost(DbRecordset &item)
{
    return unitCost(item.Field(QStringLiteral("StockCost")).text());
}

} // namespace harrowby
