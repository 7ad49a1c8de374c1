// SPDX-License-Identifier: MIT
#pragma once

#include "report/period.h"

#include <QHash>
#include <QString>

#include <map>
#include <optional>
#include <unordered_map>

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

struct ItemSums
{
    qint64 purchases = 0; ///< purchases, each counted once a line
    double quantity = 0.0;
    double amount = 0.0;
};

/// Finds a key by a piece of a longer text, without a copy.
struct KeyHash
{
    using is_transparent = void;
    [[nodiscard]] std::size_t operator()(QStringView key) const { return qHash(key); }
};
struct KeyEqual
{
    using is_transparent = void;
    [[nodiscard]] bool operator()(QStringView one, QStringView other) const { return one == other; }
};
using ItemMap = std::unordered_map<QString, ItemSums, KeyHash, KeyEqual>;

/// What a reading has found.
struct Sales
{
    Sums total;
    std::map<QString, Sums> byDay;    ///< by dayKey(), or what stands in its place
    std::map<QString, Sums> bySeller; ///< by user name as it is stored
    ItemMap byItem;                   ///< by item key; only when items are asked for
    Sums unreadable;                  ///< purchases, or parts of them, that name no items

    /// A purchase's items as it is stored, and what it cost.
    void addItems(const QString &purchasedItems, double cost);
};

/// 0 for what is no figure at all, such as infinity.
[[nodiscard]] double finite(double value);

} // namespace harrowby::report
