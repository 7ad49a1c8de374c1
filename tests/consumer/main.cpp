// SPDX-License-Identifier: MIT
// The smallest host: opens a database, supplies a class, loads the component, and checks that its window is there.
#include <harrowby/init.h>
#include <harrowby/objects.h>
#include <harrowby/report_component.h>
#include <harrowby/saved_settings.h>
#include <harrowby/sqlite_connection.h>

#include <QApplication>
#include <QTimer>
#include <QWidget>

#include <sqlite3.h>

#include <algorithm>

namespace {

constexpr auto tables =
    "create table StockList (StockID text, StockName text, StockCategory text, StockCost real,"
    " StockReorderLevel real, StockAvailable real, StockUse text, StockLastUpdated text, StockLastModified text,"
    " StockAdded text, StockReorderUser text);"
    "create table InventoryCategory (CategoryName text, EntryDate text);"
    "create table PurchaseCart (PurchaseID text, PurchasedItems text, PurchasedItemsTotal real,"
    " PurchasedItemsCost real, PurchasedDate text, Users text);"
    "create table StoreSettings (Email integer, ShowDetails integer, EmailAddress text, Promptreorder integer,"
    " AutoPurchaseCart integer);"
    "create table Users (Username text, Password text, Type text, InventoryUse integer, InventorySales integer,"
    " InventoryReport integer, InventoryUndo integer, InventoryDelete integer, InventorySettings integer,"
    " InventoryReorder integer);"
    "create table SysUsage (SystemUsage text, Times text, Dates text);";

bool windowIsThere()
{
    const QWidgetList windows = QApplication::topLevelWidgets();
    return std::any_of(windows.begin(), windows.end(), [](const QWidget *window) {
        return window->isVisible() && window->windowTitle() == QLatin1String("Sales Inventory");
    });
}

} // namespace

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    sqlite3 *database = nullptr;
    if (sqlite3_open(":memory:", &database) != SQLITE_OK ||
        sqlite3_exec(database, tables, nullptr, nullptr, nullptr) != SQLITE_OK)
        return 2;
    harrowby::setPluginFolders({});
    harrowby::registerClass(harrowby::ReportClassId, [] { return std::make_unique<QObject>(); });
    const QString title = QStringLiteral("Corner Shop");
    if (!harrowby::saveSetting(QStringLiteral("option"), QStringLiteral("Title"), title) ||
        harrowby::savedSetting(QStringLiteral("Option"), QStringLiteral("title")) != title)
        return 3;
    harrowby::Init().LoadInventory(std::make_shared<harrowby::SqliteConnection>(database), {});
    QTimer::singleShot(0, &app, [] { QApplication::exit(windowIsThere() ? 0 : 1); });
    return app.exec();
}
