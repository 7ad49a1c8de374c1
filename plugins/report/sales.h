// SPDX-License-Identifier: MIT
#pragma once

#include "plugins/report/item_lines.h"
#include "plugins/report/item_tally.h"
#include "plugins/report/period.h"

#include <QString>

#include <map>
#include <optional>

namespace harrowby::report {

enum class Grouping { Day, Seller, Item };

struct SalesQuery
{
    Period period;
    Grouping grouping = Grouping::Day;
    std::optional<QString> onlySeller; ///< the one whose sales may be seen; empty for all
};

struct Sums
{
    qint64 purchases = 0;
    double amount = 0.0;

    void add(qint64 count, double sum)
    {
        purchases += count;
        amount += sum;
    }
};

/// What a reading has found.
struct Sales
{
    Sums total;
    std::map<QString, Sums> byDay;    ///< by dayKey(), or what stands in its place
    std::map<QString, Sums> bySeller; ///< by user name as it is stored
    ItemTally byItem;                 ///< only when items are asked for
    Sums unreadable;                  ///< purchases, or parts of them, that name no items

    /// A purchase's items as it is stored, and what it cost.
    void addItems(QStringView purchasedItems, double cost);

private:
    ItemLines m_lines; ///< of the purchase that was added last, for their memory
};

/// 0 for what is no figure at all, such as infinity.
[[nodiscard]] double finite(double value);

} // namespace harrowby::report
