// SPDX-License-Identifier: MIT
#pragma once

#include "plugins/report/sales.h"

#include <QString>

/// The report's own statements. They compare the first six characters of a purchase's date, as the index of the store's
/// file holds them.
namespace harrowby::report {

/// One row for each day and seller: day, seller, number of purchases, amount.
[[nodiscard]] QString sumsStatement(const Period &period, const std::optional<QString> &onlySeller);
/// One row for each purchase: day, seller, amount; from the index alone.
[[nodiscard]] QString rowsStatement(const Period &period, const std::optional<QString> &onlySeller);
/// One row for each purchase: items, amount.
[[nodiscard]] QString itemsStatement(const Period &period, const std::optional<QString> &onlySeller);
/// One row: the number of purchases, counted up to `most` only.
[[nodiscard]] QString probeStatement(const Period &period, const std::optional<QString> &onlySeller, int most);

} // namespace harrowby::report
