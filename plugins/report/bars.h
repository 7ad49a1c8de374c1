// SPDX-License-Identifier: MIT
#pragma once

#include "plugins/report/sales.h"

#include <QString>

#include <vector>

namespace harrowby::report {

struct Bar
{
    QString label;
    double amount = 0.0;
};

/// What a plot shows.
struct Bars
{
    std::vector<Bar> bars;
    QString title;
    bool across = false;     ///< horizontal bars, for names; else vertical ones, for days
    bool longLabels = false; ///< labels of standing bars that need to be turned
};

/// Amounts as a handful of bars. Days: every day of the period, or every week, month or year, as many as can be read
/// side by side. Sellers and items: those that bring in most, the others as one.
[[nodiscard]] Bars salesBars(const Sales &sales, const SalesQuery &query);

} // namespace harrowby::report
