// SPDX-License-Identifier: MIT
#pragma once

#include "basic/result.h"
#include "ui/counter/sellable_item.h"

#include <QString>

#include <optional>

namespace harrowby {

class TextTableModel;

/// What has become of a line that was to be put back.
struct PutLine
{
    QString logLine;                     ///< empty when nothing has changed
    std::optional<CounterMisfit> misfit; ///< when it is not as it was
};

/// Puts a line into the cart, or into the line of its item (joinCartLine() in ui/sales/cart_list.h), as far as the
/// stock goes. `item` is what was found under its ID.
[[nodiscard]] PutLine putLine(TextTableModel &cart, const CounterLine &line,
                              const Result<SellableItem, CounterAnswer> &item);

} // namespace harrowby
