// SPDX-License-Identifier: MIT
#pragma once

#include "app/catalogue/import_shelf.h"

#include <QList>
#include <QString>

/// The statements that carry the staged rows of items into the store and back. Each works on all rows of a group at
/// once, since tills wait for them.
namespace harrowby::app {

/// Changed items whose rows change the same parts; or, where there are many such groups, all of them in one.
struct ItemGroup
{
    int mask = 0;         ///< the parts that any of its rows changes
    bool isMixed = false; ///< its rows may change different ones
    std::int64_t rows = 0;
};

/// More groups than these are done in one statement, which writes every part of every item.
inline constexpr qsizetype mostGroups = 8;
[[nodiscard]] QList<ItemGroup> mixedGroups(const QList<ItemGroup> &groups);

/// Whether any of their rows changes it.
[[nodiscard]] bool anyChanges(const QList<ItemGroup> &groups, int part);

/// Who and when, as the stock form writes them.
struct ItemStamp
{
    QString user;
    QString time; ///< stockTime()
};

/// Writes the items of a group that are as the preview saw them.
[[nodiscard]] RecordStatement updateItems(std::int64_t id, const ItemGroup &group, const ItemStamp &stamp);
/// Puts back those that are as they were imported.
[[nodiscard]] RecordStatement restoreItems(std::int64_t id, const ItemGroup &group, const ItemStamp &stamp);
/// Marks the rows that the first, or with `isReturn` the second, would leave out.
[[nodiscard]] RecordStatement markChangedItems(std::int64_t id, const ItemGroup &group, bool isReturn);

/// Marks the rows whose former name another item has by now.
[[nodiscard]] RecordStatement markTakenNames(std::int64_t id, const ItemGroup &group);

/// How many categories, which no row makes and which are not stored any longer, the rows that are to be written need.
[[nodiscard]] RecordStatement countLostCategories(std::int64_t id);
[[nodiscard]] RecordStatement markLostCategories(std::int64_t id);
/// Notes, among the import's categories, those of the store that items come out of.
[[nodiscard]] RecordStatement noteFormerCategories(std::int64_t id);
/// Makes those again that items have come back to and that are gone. After restoreItems().
[[nodiscard]] RecordStatement makeFormerCategories(std::int64_t id, const QString &entered);

/// Adds the new items whose IDs and names nobody has, neither as a code; `hasCodes`: there is a table of codes.
[[nodiscard]] RecordStatement insertItems(std::int64_t id, const ItemStamp &stamp, bool hasCodes);
/// Adds all rows as they are.
[[nodiscard]] RecordStatement insertAsStored(std::int64_t id);
[[nodiscard]] RecordStatement markNewItems(std::int64_t id, bool hasCodes);

/// Removes the new items that are as they were imported, and have no other code by now.
[[nodiscard]] RecordStatement removeItems(std::int64_t id, bool isAsStored, bool hasCodes);
[[nodiscard]] RecordStatement markTouchedItems(std::int64_t id, bool isAsStored, bool hasCodes);

} // namespace harrowby::app
