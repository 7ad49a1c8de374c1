// SPDX-License-Identifier: MIT
#pragma once

#include "app/catalogue/import_types.h"

#include <QString>

/// What is imported, and what becomes of it, in words.
namespace harrowby::app {

/// "Items", "Categories", "Codes of items".
[[nodiscard]] QString kindWords(ImportKind kind);
/// "12,345".
[[nodiscard]] QString groupedCount(qint64 count);

/// "480 new, 10 changed, 5 unchanged, 5 refused".
[[nodiscard]] QString countsWords(const ImportCounts &counts);
/// What a list shows: "all rows", "new".
[[nodiscard]] QString filterWords(RowFilter filter);

/// What becomes of the row, or why nothing does: "Unit cost 1.50 → 1.80; Category DRINKS → TEA".
[[nodiscard]] QString rowWords(const ImportedRow &row, ImportKind kind);

} // namespace harrowby::app
