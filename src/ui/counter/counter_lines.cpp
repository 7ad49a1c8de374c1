// SPDX-License-Identifier: MIT
#include "ui/counter/counter_lines.h"

#include "basic/item_key.h"
#include "basic/numbers.h"
#include "ui/cart_columns.h"
#include "ui/widgets/text_table_model.h"

namespace harrowby {

std::vector<CounterLine> counterLines(const TextTableModel &cart)
{
    std::vector<CounterLine> lines;
    lines.reserve(static_cast<std::size_t>(cart.rowCount()));
    for (int row = 0; row < cart.rowCount(); ++row) {
        const QString key = cart.text(row, CartColumn::Item);
        lines.push_back({GetIDName(key, KeyPiece::Id), GetIDName(key, KeyPiece::Name),
                         leadingNumberWithoutCommas(cart.text(row, CartColumn::Qty)),
                         leadingNumberWithoutCommas(cart.text(row, CartColumn::Cost)), cart.isByHand(row)});
    }
    return lines;
}

} // namespace harrowby
