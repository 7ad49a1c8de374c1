// SPDX-License-Identifier: MIT
#include "plugins/report/sales.h"

#include <cmath>

namespace harrowby::report {

namespace {

constexpr double halfACent = 0.005;

} // namespace

double finite(double value)
{
    return std::isfinite(value) ? value : 0.0;
}

void Sales::addItems(QStringView purchasedItems, double cost)
{
    readItemLines(purchasedItems, m_lines);
    double found = 0.0;
    for (const ItemLine &line : m_lines.lines) {
        byItem.add(line.key, line.quantity, line.amount);
        found += line.amount;
    }
    if (!m_lines.whole) {
        const double rest = cost - found;
        unreadable.add(1, std::abs(rest) < halfACent ? 0.0 : rest);
    }
}

} // namespace harrowby::report
