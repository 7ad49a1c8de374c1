// SPDX-License-Identifier: MIT
#pragma once

#include "basic/purchase_text.h"

#include <harrowby/counter.h>

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

// What becomes of the line of an item that comes into the cart again. By a press (quick sale, custom sale, an undo) all
// units are priced at `unitCost`, the stock's of now. Intended: a cost that was changed by hand is lost then.

/// Adds `qty` to the line's quantity.
void mergeIntoCartLine(TextTableModel &cart, int row, double qty, float unitCost);
void replaceCartLine(TextTableModel &cart, int row, std::int16_t qty, float unitCost);

// What a recalled cart or a code with a price does: a cost that was set by hand is kept, in whichever line it stands.

/// `line` as it is, in a row of its own.
void putCartLine(TextTableModel &cart, const QString &itemKey, const CounterLine &line);
/// Where either cost was changed by hand, the two are added, and the sum counts as changed by hand; else as
/// mergeIntoCartLine().
void joinCartLine(TextTableModel &cart, int row, const CounterLine &line, float unitCost);
/// Adds the line's cost to that of the cart's, instead of pricing both anew.
void addToCartLine(TextTableModel &cart, int row, const CounterLine &line);

/// A figure of the cart as it shows.
[[nodiscard]] double cartNumber(const TextTableModel &cart, int row, int column);

[[nodiscard]] std::vector<PurchaseLine> cartLines(const TextTableModel &cart);

/// In the label below the cart and on its tab.
void showCartTotal(const Controls &controls, const QString &total, int lines);

} // namespace harrowby
