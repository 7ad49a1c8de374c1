// SPDX-License-Identifier: MIT
#pragma once

#include <QDate>

struct sqlite3;

namespace harrowby::bench {

/// How big the shop is that the till is measured in.
struct CatalogueSize
{
    int items = 0;
    int purchases = 0;
};

inline constexpr int categoryCount = 40;
inline constexpr auto userName = "ADMINISTRATOR";
inline constexpr auto password = "BENCH";

/// Name of a category, counted from 0.
[[nodiscard]] QByteArray categoryName(int category);

/// Fills the six empty tables: items in 40 categories, the purchases of the years up to `today` (a few hundred of
/// them on that day), one user with all rights, boxes off. False when the engine refuses.
bool fillCatalogue(sqlite3 *database, const CatalogueSize &size, const QDate &today);

} // namespace harrowby::bench
