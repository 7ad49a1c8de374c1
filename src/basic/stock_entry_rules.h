// SPDX-License-Identifier: MIT
#pragma once

#include <QLatin1StringView>
#include <QString>

/// A stock item as it is entered, checked and stored. An automatic ID: stock_id.h.
namespace harrowby {

/// Whether an item is sold.
inline constexpr QLatin1StringView enabledText("Enabled");
inline constexpr QLatin1StringView disabledText("Disabled");

/// The entry fields' texts, trimmed.
struct StockEntry
{
    QString id;
    QString category;
    QString name;
    QString cost;
    QString reorderLevel;
    QString available;
    QString use;
};

/// What is wrong with an entry, in the order in which it is looked for.
enum class StockFault { None, Id, Category, Name, Cost, ReorderLevel, Available, Use };

/// The first one.
[[nodiscard]] StockFault findFault(const StockEntry &entry);
/// The text of the box that tells the user.
/// Intended: the one about the ID speaks of a category.
[[nodiscard]] QString faultText(StockFault fault);

/// A faultless entry as it is stored.
struct StockItem
{
    QString id;
    QString category;
    QString name;
    QString cost; ///< "#0.00"
    double reorderLevel = 0.0;
    double available = 0.0;
    QString use; ///< exactly "Enabled" or "Disabled", which is what sales look for
};
[[nodiscard]] StockItem stockItem(const StockEntry &faultless);

/// "Update Stock [item as it is listed] with new values?"
[[nodiscard]] QString updateQuestion(const QString &listedKey, const StockItem &item);
[[nodiscard]] QString multipleEntriesText(const StockItem &item);

} // namespace harrowby
