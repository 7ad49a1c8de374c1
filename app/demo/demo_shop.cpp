// SPDX-License-Identifier: MIT
#include "app/demo/demo_shop.h"

#include "app/demo/demo_catalogue.h"
#include "app/demo/demo_purchases.h"
#include "basic/administrator.h"
#include "basic/dates.h"
#include "basic/stock_entry_rules.h"

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

using Error = std::optional<SqlError>;

constexpr int yes = -1;
constexpr int no = 0;

Error addUser(sqlite3 *database, const QString &name, const QString &type, int mayUse, int maySell, int mayManage)
{
    return runSql(database,
                  u"INSERT INTO Users (Username, Password, Type, InventoryUse, InventorySales, InventoryReport, "
                  "InventoryUndo, InventoryDelete, InventorySettings, InventoryReorder) "
                  "VALUES (?1, ?1, ?2, ?3, ?4, ?5, ?5, ?5, ?5, ?5)"_s,
                  {name, type, mayUse, maySell, mayManage});
}

Error addUsers(sqlite3 *database)
{
    if (auto error = addUser(database, administratorName, u"ADMINISTRATOR"_s, yes, yes, yes))
        return error;
    if (auto error = addUser(database, u"MANAGER"_s, u"MANAGER"_s, yes, yes, yes))
        return error;
    if (auto error = addUser(database, u"CASHIER"_s, u"CASHIER"_s, yes, yes, no))
        return error;
    return addUser(database, u"VIEWER"_s, u"VIEWER"_s, yes, no, no);
}

Error addCategories(sqlite3 *database, const QString &entryDate)
{
    for (const QString &name : demoCategories()) {
        if (auto error = runSql(database, u"INSERT INTO InventoryCategory (CategoryName, EntryDate) VALUES (?1, ?2)"_s,
                                {name, entryDate}))
            return error;
    }
    return {};
}

Error addItems(sqlite3 *database, const QString &updated)
{
    for (const DemoItem &item : demoItems()) {
        const QString use = item.enabled ? enabledText : disabledText;
        const QString cost = QString::number(item.cents / 100.0, 'f', 2);
        if (auto error =
                runSql(database,
                       u"INSERT INTO StockList (StockID, StockName, StockCategory, StockCost, "
                       "StockReorderLevel, StockAvailable, StockUse, StockLastUpdated, StockLastModified, "
                       "StockAdded, StockReorderUser) "
                       "VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, 'MANAGER', 'MANAGER', 'MANAGER')"_s,
                       {item.id, item.name, item.category, cost, item.reorderLevel, item.available, use, updated}))
            return error;
    }
    return {};
}

Error addPurchases(sqlite3 *database, const QDateTime &now)
{
    for (const DemoPurchase &purchase : demoPurchases(now)) {
        if (auto error = runSql(
                database,
                u"INSERT INTO PurchaseCart (PurchaseID, PurchasedItems, PurchasedItemsTotal, "
                "PurchasedItemsCost, PurchasedDate, Users) VALUES (?1, ?2, ?3, ?4, ?5, ?6)"_s,
                {purchase.id, purchase.items, purchase.lines, purchase.cents / 100.0, purchase.date, purchase.user}))
            return error;
    }
    return {};
}

Error addSettings(sqlite3 *database)
{
    return runSql(database, u"INSERT INTO StoreSettings (Email, ShowDetails, EmailAddress, Promptreorder, "
                            "AutoPurchaseCart) VALUES (0, 1, 'reports@shop.example', 1, 0)"_s);
}

} // namespace

std::optional<SqlError> fillDemoShop(sqlite3 *database, const QDateTime &now)
{
    const QDateTime opened = now.addDays(-30);
    if (auto error = addUsers(database))
        return error;
    if (auto error = addCategories(database, usageTime(opened)))
        return error;
    if (auto error = addItems(database, stockTime(opened)))
        return error;
    if (auto error = addPurchases(database, now))
        return error;
    return addSettings(database);
}

QString demoLoginText()
{
    return u"Demo shop. Log in with one of these names; the password is the name.\n"
           "\n"
           "ADMINISTRATOR: everything, and the store's office\n"
           "MANAGER: everything at the till\n"
           "CASHIER: selling\n"
           "VIEWER: nothing at the till\n"_s;
}

} // namespace harrowby::app
