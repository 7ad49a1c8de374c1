// SPDX-License-Identifier: MIT
#pragma once

#include "app/catalogue/import_types.h"

#include <QList>
#include <QString>

/// What is imported, and what becomes of it, in words.
namespace harrowby::app {

[[nodiscard]] const QList<ImportKind> &importKinds();
/// "Items", "Categories", "Codes of items".
[[nodiscard]] QString kindWords(ImportKind kind);
/// "12,345".
[[nodiscard]] QString groupedCount(qint64 count);

/// "480 new, 10 changed, 5 unchanged, 5 refused".
[[nodiscard]] QString countsWords(const ImportCounts &counts);
/// What a list shows: "All rows", "New".
[[nodiscard]] QString filterWords(RowFilter filter);
/// How many of the preview's rows that are.
[[nodiscard]] qint64 countOf(const ImportCounts &counts, RowFilter filter);

/// What is the matter with a row, in one word or two: "new", "refused".
[[nodiscard]] QString rowStateWords(RowFilter state);
/// What becomes of the row, or why nothing does: "Unit cost 1.50 → 1.80; Category DRINKS → TEA".
[[nodiscard]] QString rowWords(const ImportedRow &row, ImportKind kind);

} // namespace harrowby::app
