// SPDX-License-Identifier: MIT
#include "report/sales.h"

#include "report/item_lines.h"

#include <cmath>

namespace harrowby::report {

namespace {

constexpr double halfACent = 0.005;

} // namespace

double finite(double value)
{
    return std::isfinite(value) ? value : 0.0;
}

void Sales::addItems(const QString &purchasedItems, double cost)
{
    const ItemLines items = readItemLines(purchasedItems);
    double found = 0.0;
    for (const ItemLine &line : items.lines) {
        auto sums = byItem.find(line.key);
        if (sums == byItem.end())
            sums = byItem.emplace(line.key.toString(), ItemSums()).first;
        ++sums->second.purchases;
        sums->second.quantity += line.quantity;
        sums->second.amount += line.amount;
        found += line.amount;
    }
    if (!items.whole) {
        const double rest = cost - found;
        unreadable.add(1, std::abs(rest) < halfACent ? 0.0 : rest);
    }
}

} // namespace harrowby::report
