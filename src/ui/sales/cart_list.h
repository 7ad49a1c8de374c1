// SPDX-License-Identifier: MIT
#pragma once

#include "basic/purchase_text.h"

#include <QString>

#include <cstdint>
#include <vector>

/// The cart's lines, in the one place where they are kept: the list LV3.
namespace harrowby {

class TextTableModel;
struct Controls;

/// What the activity log says of a new line, and of one that was merged or replaced.
[[nodiscard]] QString addedLine(const QString &quantity, const QString &itemKey);
[[nodiscard]] QString changedLine(const QString &quantity, const QString &itemKey);

void appendCartLine(TextTableModel &cart, const QString &itemKey, std::int16_t qty, float unitCost);
/// Adds `qty` to the line's quantity and prices the sum at the stock's current unit cost.
void mergeIntoCartLine(TextTableModel &cart, int row, double qty, float unitCost);
void replaceCartLine(TextTableModel &cart, int row, std::int16_t qty, float unitCost);

[[nodiscard]] std::vector<PurchaseLine> cartLines(const TextTableModel &cart);

/// In the label below the cart and on its tab.
void showCartTotal(const Controls &controls, const QString &total, int lines);

} // namespace harrowby
