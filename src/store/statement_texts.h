// SPDX-License-Identifier: MIT
#pragma once

#include "basic/reserved_categories.h"
#include "store/statement.h"
#include "store/store_settings.h"

#include <QString>

#include <cstdint>

/// Every statement that the window runs, each text once; only the rows that a recordset adds or updates are put
/// together in sqlite_connection.cpp.
///
/// Intended: spacing and capitalisation are uneven; hosts and their tools recognise the statements by these exact
/// texts.
namespace harrowby::statements {

using harrowby::allCategories;
using harrowby::otherCategory;

// Login, settings and the activity log

/// Name and password upper-cased and trimmed by the caller.
[[nodiscard]] Statement login(const QString &name, const QString &password);
[[nodiscard]] Statement storeSettings();

/// Sets every row of the table.
[[nodiscard]] Statement updateSettings(const StoreSettings &settings);
/// Single quotes are removed from the message: unlike other texts it may hold what a user typed, and must be stored.
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
/// Every item, disabled and finished ones too, in the table's order.
[[nodiscard]] Statement allStock();
/// One row, column "counts".
/// Intended: in LIKE the asterisk is no wildcard, so only IDs that literally end in "-*" are counted.
[[nodiscard]] Statement automaticIdCount(const QString &prefix);
/// Items that have the ID or the name; `upperName` is upper-cased by the caller.
[[nodiscard]] Statement sameStock(const QString &id, const QString &upperName);
/// Items that have the name.
[[nodiscard]] Statement sameStockName(const QString &upperName);
/// Deletes every item whose ID is this one, whatever its capitals; the list shows IDs upper-cased.
[[nodiscard]] Statement deleteStock(const QString &upperId);
/// The enabled items of a category, in the table's order. `category` may be allCategories.
[[nodiscard]] Statement stockItems(bool hideFinished, const QString &category);
/// Intended: in LIKE the asterisks are no wildcards, and the condition on StockUse binds to the name alone.
[[nodiscard]] Statement searchStock(const QString &upperText);
/// What the reorder panel shows of an item.
[[nodiscard]] Statement stockLevels(const QString &id);
/// `name` is compared with the stored name as it is: upper-cased by the caller, it finds upper-case names only.
[[nodiscard]] Statement availableStock(const QString &id, const QString &name);
/// One page of quickSaleButtons items, `offset` items skipped. `category` may be allCategories.
[[nodiscard]] Statement quickSalesPage(bool hideFinished, const QString &category, std::int64_t offset);
/// The rows of all pages, to be counted.
[[nodiscard]] Statement quickSalesCount(bool hideFinished, const QString &category);
/// Gives units back, by the ID alone.
[[nodiscard]] Statement raiseStock(std::int64_t quantity, const QString &id);
[[nodiscard]] Statement lowerStock(double quantity, const QString &id, const QString &upperName);
/// Enabled items at or below their reorder level (basic/reorder_level.h).
[[nodiscard]] Statement lowStock();
/// One row, column "Totals": units of all enabled items.
[[nodiscard]] Statement stockTotal();

// Purchases; `day` is a dayKey()

[[nodiscard]] Statement purchase(const QString &id);
[[nodiscard]] Statement deletePurchase(const QString &id);
/// Newest first within each prefix.
[[nodiscard]] Statement purchaseIds();
/// One row, column "totals": how many; of everyone, or of one user.
[[nodiscard]] Statement salesCount(const QString &day);
[[nodiscard]] Statement salesCount(const QString &user, const QString &day);
/// One row, column "Counts": their sum, null when there are none.
[[nodiscard]] Statement salesAmount(const QString &day);
[[nodiscard]] Statement salesAmount(const QString &user, const QString &day);

} // namespace harrowby::statements
