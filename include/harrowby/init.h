// SPDX-License-Identifier: MIT
#pragma once

#include <harrowby/db_connection.h>
#include <harrowby/export.h>

#include <QString>

#include <memory>

namespace harrowby {

/// The component's entry: a host with a running QApplication creates one and calls LoadInventory().
///
///     sqlite3 *db = nullptr;
///     sqlite3_open("store.sqlite", &db);
///     harrowby::Init().LoadInventory(std::make_shared<harrowby::SqliteConnection>(db), {});
///     return app.exec();
///
/// The window outlives the Init that showed it. Closing it (when the user confirms) destroys it.
class HARROWBY_EXPORT Init
{
public:
    /// Takes over the host's open connection, and shows the window "Sales Inventory" modeless: the existing
    /// one, or a new one when there is none. A second call replaces the connection. The database must hold the
    /// tables StockList, InventoryCategory, PurchaseCart, StoreSettings, Users and SysUsage; none is created.
    /// `userText` is accepted and used for nothing: the window has its own login.
    /// Returns at once, and never throws; a failing step is skipped.
    void LoadInventory(std::shared_ptr<DbConnection> connection, const QString &userText) noexcept;
};

} // namespace harrowby
