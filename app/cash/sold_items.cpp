// SPDX-License-Identifier: MIT
#include "app/cash/sold_items.h"

#include "basic/item_key.h"
#include "basic/numbers.h"
#include "basic/purchase_text.h"

namespace harrowby::app {

QString soldItems(const std::vector<CounterLine> &lines)
{
    std::vector<PurchaseLine> sold;
    sold.reserve(lines.size());
    for (const CounterLine &line : lines)
        sold.push_back({plainText(line.quantity), itemKey(line.stockId, line.name),
                        line.costByHand ? formatFixed(line.cost) : formatMoney(line.cost)});
    return purchasedItems(sold);
}

QString itemsKey(const QString &items)
{
    return items.toUpper().remove(u',');
}

} // namespace harrowby::app
