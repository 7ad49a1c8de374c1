// SPDX-License-Identifier: MIT
#pragma once

#include <harrowby/db_connection.h>
#include <harrowby/export.h>

#include <QString>

#include <memory>

namespace harrowby {

/// The component's entry. A host makes its QApplication, opens its database, and calls LoadInventory():
///
///     sqlite3 *db = nullptr;
///     sqlite3_open("store.sqlite", &db);
///     harrowby::Init().LoadInventory(std::make_shared<harrowby::SqliteConnection>(db), {});
///     return app.exec();
///
/// An Init has no state: it may be destroyed at once, and the window outlives it. The window belongs to the component;
/// it is destroyed when the user closes it and confirms. To close it from code, close() the window as a user would.
///
/// Call it on the user-interface thread, after a QApplication (not a QCoreApplication) has been made: without one Qt
/// ends the process with a fatal message, as for any widget. The window works while the host's event loop runs.
class HARROWBY_EXPORT Init
{
public:
    /// Sets the process-wide connection (replacing the one of an earlier call) and shows the window "Sales Inventory",
    /// modeless: the existing one, or a new one when there is none. The database must hold the tables StockList,
    /// InventoryCategory, PurchaseCart, StoreSettings, Users and SysUsage (docs/database.md); none is created. With a
    /// null connection the window shows, and every statement fails. `userText` is accepted and not used: the window has
    /// its own login. Does not wait for the window to close. Never throws: a step that fails is logged and skipped.
    void LoadInventory(std::shared_ptr<DbConnection> connection, const QString &userText) noexcept;
};

} // namespace harrowby
