// SPDX-License-Identifier: MIT
#pragma once

#include "app/catalogue/import_shelf.h"

#include <QString>

/// The statements that carry the staged codes and categories into the store and back.
namespace harrowby::app {

// Codes

/// Codes that a former item of a new one's ID has left; they do not become the new one's.
[[nodiscard]] RecordStatement stageLeftCodes(std::int64_t id);
[[nodiscard]] RecordStatement insertCodes(std::int64_t id, bool isAsStored);
[[nodiscard]] RecordStatement updateCodes(std::int64_t id);
/// Marks the codes that those two would leave out. `comeWithItems`: they stand in a file of items, which are not
/// written yet.
[[nodiscard]] QList<RecordStatement> markCodes(std::int64_t id, bool comeWithItems);

[[nodiscard]] RecordStatement removeCodes(std::int64_t id);
[[nodiscard]] RecordStatement restoreCodes(std::int64_t id);
[[nodiscard]] RecordStatement markTouchedCodes(std::int64_t id);

/// A row is left out with its code, and a code with its row; `leftOut`: 1 or, when it is taken back, 2.
[[nodiscard]] RecordStatement leaveOutRows(std::int64_t id, int leftOut);
[[nodiscard]] RecordStatement leaveOutCodes(std::int64_t id, int leftOut);

/// The number of codes that are to be written, or taken back.
[[nodiscard]] RecordStatement countCodes(std::int64_t id, RowKind kind);

// Categories

/// Marks those that have come meanwhile.
[[nodiscard]] RecordStatement markCategories(std::int64_t id);
[[nodiscard]] RecordStatement insertCategories(std::int64_t id);
/// Notes when they are made (usageTime()), before they are.
[[nodiscard]] RecordStatement dateCategories(std::int64_t id, const QString &entered);
/// Marks those that have items, or are no longer as they were made.
[[nodiscard]] RecordStatement markUsedCategories(std::int64_t id);
/// Marks those that the store has more often or less often than the import wrote them.
[[nodiscard]] RecordStatement markRepeatedCategories(std::int64_t id);
[[nodiscard]] RecordStatement removeCategories(std::int64_t id);
/// The rows of a file of categories follow.
[[nodiscard]] RecordStatement leaveOutCategoryRows(std::int64_t id, int leftOut);

} // namespace harrowby::app
