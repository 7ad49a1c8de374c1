// SPDX-License-Identifier: MIT
#include "bench/statement_lists.h"

#include "basic/dates.h"
#include "basic/item_key.h"
#include "bench/catalogue.h"
#include "store/statement_texts.h"

using namespace Qt::StringLiterals;

namespace harrowby::bench {

namespace {

RawStatement quickSalesPage(const QString &category, int offset)
{
    return readRows(statements::quickSalesPage(false, category, offset),
                    {"StockID", "StockName", "StockCost", "StockAvailable"});
}

RawStatements stockFigures()
{
    return {readRows(statements::stockTotal(), {"Totals"}), countRows(statements::lowStock())};
}

RawStatements everybodysSales(const QString &day)
{
    return {readRows(statements::salesCount(day), {"totals"}), readRows(statements::salesAmount(day), {"Counts"})};
}

RawStatements nobodysSales(const QString &day)
{
    return {readRows(statements::salesCount({}, day), {"totals"}),
            readRows(statements::salesAmount({}, day), {"Counts"})};
}

RawStatement purchaseRow(const QDateTime &now)
{
    return {"insert into PurchaseCart (PurchaseID, PurchasedItems, PurchasedItemsTotal, PurchasedItemsCost,"
            " PurchasedDate, Users) values (?, ?, ?, ?, ?, ?)",
            {},
            {"RAW" + purchasedDate(now).toLatin1(), QByteArray(600, 'x'), "10", "99.5", purchasedDate(now).toLatin1(),
             userName}};
}

} // namespace

RawStatements operator+(RawStatements left, const RawStatements &right)
{
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

RawStatement usageRow(const QString &message, const QDateTime &now)
{
    return change(statements::usage(message, usageTime(now), usageTime(now)));
}

RawStatements pressWrites(const QString &key, const QDateTime &now)
{
    return {usageRow(u"2 of "_s + key + u" Added!"_s, now), usageRow(key + u" Added to Cart!"_s, now)};
}

RawStatements pressStatements(const QString &key, const QDateTime &now)
{
    const QString id = GetIDName(key, KeyPiece::Id);
    return RawStatements{readRows(statements::availableStock(id, GetIDName(key, KeyPiece::Name)), {"StockAvailable"}),
                         readRows(statements::stockById(id), {"StockCost"})} +
           pressWrites(key, now);
}

RawStatements pageStatements(const QString &category, int offset)
{
    return {quickSalesPage(category, offset), countRows(statements::quickSalesCount(false, category))};
}

RawStatements dashboardStatements(const QDateTime &now, int offset)
{
    return everybodysSales(dayKey(now)) + stockFigures() + pageStatements(statements::allCategories, offset);
}

RawStatements commitStatements(const QStringList &keys, const QDateTime &now, int offset)
{
    RawStatements list;
    for (const QString &key : keys)
        list.push_back(
            change(statements::lowerStock(1.0, GetIDName(key, KeyPiece::Id), GetIDName(key, KeyPiece::Name))));
    list.push_back(countRows(statements::purchase(u"RAW"_s + purchasedDate(now))));
    list.push_back(purchaseRow(now));
    list = list + dashboardStatements(now, offset);
    list.push_back(usageRow(u"10 item(s) of Total Cost 99.50 Purchased."_s, now));
    return list;
}

RawStatements loadStatements(const QDateTime &now)
{
    const RawStatements categoryLists{readRows(statements::categories(), {"CategoryName"}),
                                      readRows(statements::categoriesByName(), {"CategoryName"})};
    // No category stands in the list yet, so the first pages find nothing.
    const RawStatements noPage{quickSalesPage({}, 0)};
    const RawStatements figures = nobodysSales(dayKey(now)) + stockFigures() + noPage;
    const RawStatements settings{
        readRows(statements::storeSettings(), {"ShowDetails", "EmailAddress", "Promptreorder", "AutoPurchaseCart"})};
    return categoryLists + noPage + figures + figures + pageStatements(statements::allCategories, 0) + settings;
}

} // namespace harrowby::bench
