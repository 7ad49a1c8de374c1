// SPDX-License-Identifier: MIT
#pragma once

#include "store/statement.h"

#include <QString>

#include <cstdint>

/// Every statement that the component runs, each text once. Spacing and capitalisation are uneven on purpose:
/// hosts and their tools know the statements by these very texts.
namespace harrowby::statements {

/// The text of the category filters that stands for no category condition.
inline constexpr QLatin1StringView allCategories("(ALL CATEGORY)");
/// The catch-all category: never stored in InventoryCategory, offered by every list.
inline constexpr QLatin1StringView otherCategory("OTHER CATEGORY");

// Login, settings and the activity log

/// Name and password upper-cased and trimmed by the caller.
[[nodiscard]] Statement login(const QString &name, const QString &password);
[[nodiscard]] Statement storeSettings();

/// What "Save Settings" writes; flags are 0 or 1.
struct StoreSettings
{
    std::int64_t email = 0;
    std::int64_t showDetails = 0;
    QString emailAddress;
    std::int64_t promptReorder = 0;
    std::int64_t hideFinished = 0; ///< column AutoPurchaseCart
};
/// Sets every row of the table.
[[nodiscard]] Statement updateSettings(const StoreSettings &settings);
/// The message loses its single quotes here; it is the one text that users may put quotes into.
[[nodiscard]] Statement usage(const QString &message, const QString &times, const QString &dates);

// Categories

[[nodiscard]] Statement categories();
[[nodiscard]] Statement categoriesByName();
[[nodiscard]] Statement addCategory(const QString &name, const QString &entryDate);
[[nodiscard]] Statement renameCategory(const QString &newName, const QString &oldName);
[[nodiscard]] Statement deleteCategory(const QString &name);
/// Items follow their category's new name, compared as it stands.
[[nodiscard]] Statement moveStock(const QString &newCategory, const QString &oldCategory);
/// Items of a deleted category go to the one that every list offers.
[[nodiscard]] Statement moveStockToOther(const QString &category);

// Stock

[[nodiscard]] Statement stockById(const QString &id);
/// `name` is compared with the stored name as it is: upper-cased by the caller, it finds upper-case names only.
[[nodiscard]] Statement availableStock(const QString &id, const QString &name);
/// One page of nine items, `offset` items skipped. `category` may be allCategories.
[[nodiscard]] Statement quickSalesPage(bool hideFinished, const QString &category, std::int64_t offset);
/// The rows of all pages, to be counted.
[[nodiscard]] Statement quickSalesCount(bool hideFinished, const QString &category);
[[nodiscard]] Statement lowerStock(double quantity, const QString &id, const QString &upperName);
/// Enabled items at or below their reorder level.
[[nodiscard]] Statement lowStock();
/// One row, column "Totals": units of all enabled items.
[[nodiscard]] Statement stockTotal();

// Purchases; `day` is a dayKey()

[[nodiscard]] Statement purchase(const QString &id);
/// One row, column "totals": how many; of everyone, or of one user.
[[nodiscard]] Statement salesCount(const QString &day);
[[nodiscard]] Statement salesCount(const QString &user, const QString &day);
/// One row, column "Counts": their sum, null when there are none.
[[nodiscard]] Statement salesAmount(const QString &day);
[[nodiscard]] Statement salesAmount(const QString &user, const QString &day);

} // namespace harrowby::statements
