// SPDX-License-Identifier: MIT
#include "ui/counter/put_line.h"

#include "basic/cart_arithmetic.h"
#include "basic/item_key.h"
#include "basic/numbers.h"
#include "ui/cart_columns.h"
#include "ui/sales/cart_list.h"
#include "ui/widgets/text_table_model.h"

#include <algorithm>
#include <cmath>

namespace harrowby {

namespace {

using Reason = CounterMisfit::Reason;

Reason reasonOf(CounterAnswer answer)
{
    switch (answer) {
    case CounterAnswer::Disabled:
        return Reason::Disabled;
    case CounterAnswer::NotInCapitals:
        return Reason::NotInCapitals;
    default:
        return Reason::Gone;
    }
}

PutLine leftOut(const CounterLine &line, Reason reason)
{
    return {{}, CounterMisfit{line, reason, 0, 0}};
}

/// Cost of a new line at the price of today. A quantity that no entry takes, from lines that were merged, is priced as
/// merging does.
QString costOfToday(float unitCost, double quantity)
{
    const std::optional<std::int16_t> units = toInt16(quantity);
    return units && *units == quantity ? formatMoney(newLineCost(unitCost, *units))
                                       : formatMoney(mergedLineCost(unitCost, quantity));
}

/// Adding and merging round differently, and a line may have come by either.
bool isPriceOfToday(const CounterLine &line, float unitCost)
{
    const QString cost = formatMoney(line.cost);
    return cost == costOfToday(unitCost, line.quantity) || cost == formatMoney(mergedLineCost(unitCost, line.quantity));
}

PutLine append(TextTableModel &cart, const QString &key, const CounterLine &line)
{
    putCartLine(cart, key, line);
    return {addedLine(plainText(line.quantity), key), {}};
}

PutLine changed(const TextTableModel &cart, int row)
{
    return {changedLine(cart.text(row, CartColumn::Qty), cart.text(row, CartColumn::Item)), {}};
}

/// The line of an item that could not be read, so that its price of today is not known.
PutLine addUp(TextTableModel &cart, int row, const CounterLine &line)
{
    addToCartLine(cart, row, line);
    return changed(cart, row);
}

PutLine put(TextTableModel &cart, int row, const CounterLine &line, const SellableItem &item)
{
    if (row < 0)
        return append(cart, item.key, line);
    joinCartLine(cart, row, line, item.unitCost);
    return changed(cart, row);
}

/// The line at the price of today, with `quantity` units.
CounterLine repriced(CounterLine line, double quantity, const SellableItem &item)
{
    line.quantity = quantity;
    line.cost = leadingNumberWithoutCommas(costOfToday(item.unitCost, quantity));
    line.costByHand = false;
    return line;
}

PutLine putWhatFits(TextTableModel &cart, const CounterLine &line, const SellableItem &item)
{
    if (item.available <= 0.0F)
        return leftOut(line, Reason::SoldOut);
    const int row = cart.findRow(item.key);
    const double inCart = row < 0 ? 0 : cartNumber(cart, row, CartColumn::Qty);
    const bool fits = covers(item.available, line.quantity + inCart);
    if (fits && (line.costByHand || isPriceOfToday(line, item.unitCost)))
        return put(cart, row, line, item);
    const double quantity = fits ? line.quantity : std::floor(static_cast<double>(item.available) - inCart);
    if (!fits && quantity < 1)
        return leftOut(line, Reason::NotEnough);
    PutLine done = put(cart, row, repriced(line, quantity, item), item);
    done.misfit = CounterMisfit{line, fits ? Reason::PriceChanged : Reason::NotEnough, quantity, 0};
    return done;
}

} // namespace

PutLine putLine(TextTableModel &cart, const CounterLine &line, const Result<SellableItem, CounterAnswer> &item)
{
    if (!std::isfinite(line.quantity) || !std::isfinite(line.cost))
        return leftOut(line, Reason::Gone);
    PutLine done;
    QString key;
    if (item) {
        key = item->key;
        if (GetIDName(key, KeyPiece::Name) != line.name)
            return leftOut(line, Reason::Gone);
        done = putWhatFits(cart, line, *item);
    } else if (item.error() == CounterAnswer::Failed) {
        key = itemKey(line.stockId, line.name);
        const int row = cart.findRow(key);
        done = row < 0 ? append(cart, key, line) : addUp(cart, row, line);
        done.misfit = CounterMisfit{line, Reason::NotRead, line.quantity, 0};
    } else {
        return leftOut(line, reasonOf(item.error()));
    }
    if (done.misfit && !done.logLine.isEmpty())
        done.misfit->cost = cartNumber(cart, cart.findRow(key), CartColumn::Cost);
    return done;
}

} // namespace harrowby
