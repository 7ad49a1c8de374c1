// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

struct sqlite3;

namespace harrowby::bench {

/// An import as one would write it for this very file: cells are cut at each semicolon, each item is read, its row is
/// written into a table like the imports' own one, the store is copied and checked, and one statement changes the
/// items. False when something fails.
[[nodiscard]] bool importByHand(sqlite3 *database, const QByteArray &text, const QString &copy);
/// Removes what it and the real ones have left in the tables of imports.
[[nodiscard]] bool forgetImports(sqlite3 *database);

/// The items as a CSV file, without looking at what the cells hold.
[[nodiscard]] bool exportByHand(sqlite3 *database, const QString &target);

} // namespace harrowby::bench
