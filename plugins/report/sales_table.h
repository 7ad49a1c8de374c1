// SPDX-License-Identifier: MIT
#pragma once

#include "plugins/report/sales.h"
#include "tables/table.h"

namespace harrowby::report {

/// Headings for what has no proper one.
inline const QString unreadableText = QStringLiteral("(unreadable)");
inline const QString nobodyText = QStringLiteral("(nobody)");

/// The table of the report, with its title and totals; no rows when nothing was sold.
[[nodiscard]] tables::Table salesTable(const Sales &sales, const SalesQuery &query);

/// How a table is sorted at first: days as they come, sellers and items by what they bring in.
struct FirstOrder
{
    int column = 0;
    Qt::SortOrder order = Qt::AscendingOrder;
};
[[nodiscard]] FirstOrder firstOrder(Grouping grouping);

/// "Sales 2026-11-01 to 2026-11-30 by day"
[[nodiscard]] QString fileWords(const SalesQuery &query);

} // namespace harrowby::report
