// SPDX-License-Identifier: MIT
#include "bench/catalogue.h"

#include "basic/dates.h"
#include "basic/item_key.h"
#include "basic/purchase_id.h"
#include "basic/purchase_text.h"

#include <QByteArray>
#include <QDateTime>

#include <sqlite3.h>

#include <algorithm>
#include <memory>

using namespace Qt::StringLiterals;

namespace harrowby::bench {

namespace {

using Prepared = std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt *)>;

/// Items on the first quick-sale pages; they never run out while they are sold over and over.
constexpr int ampleItems = 200;
constexpr int purchasesADay = 900;
constexpr int cashiers = 5;

Prepared prepare(sqlite3 *database, const char *sql)
{
    sqlite3_stmt *statement = nullptr;
    sqlite3_prepare_v2(database, sql, -1, &statement, nullptr);
    return Prepared(statement, sqlite3_finalize);
}

bool execute(sqlite3 *database, const QByteArray &sql)
{
    return sqlite3_exec(database, sql.constData(), nullptr, nullptr, nullptr) == SQLITE_OK;
}

void bindText(sqlite3_stmt *statement, int parameter, const QByteArray &text)
{
    sqlite3_bind_text(statement, parameter, text.constData(), static_cast<int>(text.size()), SQLITE_TRANSIENT);
}

bool insertRow(sqlite3_stmt *statement)
{
    const bool done = sqlite3_step(statement) == SQLITE_DONE;
    sqlite3_reset(statement);
    return done;
}

QByteArray digits(qint64 value, int width)
{
    return QByteArray::number(value).rightJustified(width, '0');
}

QByteArray itemId(int item)
{
    return "ART-" + digits(item, 7);
}

/// Names are no wider apart in the alphabet than in a real shop, and stand in another order than the rows.
QByteArray itemName(int item, int items)
{
    const qint64 place = (qint64{item} * 7919 + 13) % items;
    return "ARTICLE " + digits(place, 7) + " OF THE SHOP";
}

bool insertItem(sqlite3_stmt *statement, int item, int items)
{
    const int price = 25 + item * 37 % 9900;
    bindText(statement, 1, itemId(item));
    bindText(statement, 2, itemName(item, items));
    bindText(statement, 3, categoryName(item % categoryCount));
    bindText(statement, 4, QByteArray::number(price / 100.0, 'f', 2));
    sqlite3_bind_int(statement, 5, 10);
    sqlite3_bind_int(statement, 6, item % 33 == 0 ? 0 : item % 400);
    bindText(statement, 7, item % 50 == 49 ? "Disabled" : "Enabled");
    return insertRow(statement);
}

bool fillItems(sqlite3 *database, int items)
{
    const Prepared insert = prepare(
        database, "insert into StockList (StockID, StockName, StockCategory, StockCost, StockReorderLevel,"
                  " StockAvailable, StockUse, StockLastUpdated, StockLastModified, StockAdded, StockReorderUser)"
                  " values (?, ?, ?, ?, ?, ?, ?, '02-Jan-26 09:00:00', 'ADMINISTRATOR', 'ADMINISTRATOR',"
                  " 'ADMINISTRATOR')");
    bool done = insert != nullptr;
    for (int item = 0; done && item < items; ++item)
        done = insertItem(insert.get(), item, items);
    return done &&
           execute(database, "update StockList set StockAvailable = 30000, StockUse = 'Enabled' where StockName in"
                             " (select StockName from StockList order by StockName limit " +
                                 QByteArray::number(ampleItems) + ")");
}

bool fillCategories(sqlite3 *database)
{
    const Prepared insert =
        prepare(database, "insert into InventoryCategory (CategoryName, EntryDate) values (?, '02-Jan-26 09:00:00')");
    bool done = insert != nullptr;
    for (int category = 0; done && category < categoryCount; ++category) {
        bindText(insert.get(), 1, categoryName(category));
        done = insertRow(insert.get());
    }
    return done;
}

QString keyOf(int item, int items)
{
    return itemKey(QString::fromLatin1(itemId(item)), QString::fromLatin1(itemName(item, items)));
}

/// Two lines of two items.
QString itemsOf(int number, int items)
{
    const int second = static_cast<int>(qint64{number} * 31 % items);
    return purchasedItems(
        {{u"1"_s, keyOf(number % items, items), u"4.50"_s}, {u"2"_s, keyOf(second, items), u"12.80"_s}});
}

/// Spread over twelve hours of each day, ending with today.
QDateTime timeOf(int number, int purchases, const QDate &today)
{
    const int back = purchases - 1 - number;
    const int minute = 8 * 60 + (purchasesADay - 1 - back % purchasesADay) * 12 * 60 / purchasesADay;
    return {today.addDays(-(back + purchasesADay / 2) / purchasesADay), QTime(minute / 60, minute % 60, number % 60),
            Qt::UTC};
}

bool insertPurchase(sqlite3_stmt *statement, int number, int purchases, int items, const QDate &today)
{
    const QDateTime time = timeOf(number, purchases, today);
    bindText(statement, 1, purchaseId(time).toLatin1());
    bindText(statement, 2, itemsOf(number, items).toLatin1());
    sqlite3_bind_double(statement, 3, 2.0);
    sqlite3_bind_double(statement, 4, 17.3);
    bindText(statement, 5, purchasedDate(time).toLatin1());
    bindText(statement, 6, "CASHIER" + QByteArray::number(number % cashiers));
    return insertRow(statement);
}

bool fillPurchases(sqlite3 *database, const CatalogueSize &size, const QDate &today)
{
    const Prepared insert =
        prepare(database, "insert into PurchaseCart (PurchaseID, PurchasedItems, PurchasedItemsTotal,"
                          " PurchasedItemsCost, PurchasedDate, Users) values (?, ?, ?, ?, ?, ?)");
    bool done = insert != nullptr;
    for (int number = 0; done && number < size.purchases; ++number)
        done = insertPurchase(insert.get(), number, size.purchases, size.items, today);
    return done;
}

bool addUserAndSettings(sqlite3 *database)
{
    return execute(database, "delete from Users") &&
           execute(database, QByteArray("insert into Users (Username, Password, Type, InventoryUse) values ('") +
                                 userName + "', '" + password + "', 'MANAGER', -1)") &&
           execute(database, "delete from StoreSettings") &&
           execute(database, "insert into StoreSettings (Email, ShowDetails, EmailAddress, Promptreorder,"
                             " AutoPurchaseCart) values (0, 0, 'shop@example.com', 1, 0)");
}

} // namespace

QByteArray categoryName(int category)
{
    return "CATEGORY " + digits(category, 2);
}

bool fillCatalogue(sqlite3 *database, const CatalogueSize &size, const QDate &today)
{
    return execute(database, "begin") && fillCategories(database) && fillItems(database, size.items) &&
           fillPurchases(database, size, today) && addUserAndSettings(database) && execute(database, "commit");
}

} // namespace harrowby::bench
