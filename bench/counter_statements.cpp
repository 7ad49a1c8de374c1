// SPDX-License-Identifier: MIT
#include "bench/counter_statements.h"

#include "basic/dates.h"
#include "basic/item_key.h"
#include "bench/catalogue.h"
#include "store/statement_texts.h"
#include "ui/stock_columns.h"

using namespace Qt::StringLiterals;

namespace harrowby::bench {

namespace {

const QByteArrayList &stockColumns()
{
    static const QByteArrayList columns{"StockID",           "StockName",      "StockCategory", "StockCost",
                                        "StockReorderLevel", "StockAvailable", "StockUse",      "StockLastUpdated"};
    return columns;
}

QByteArray ofRow(int row)
{
    return " where _rowid_ = " + QByteArray::number(row + 1);
}

RawStatement updateStock(int row, const QStringList &texts, const QDateTime &now)
{
    const auto text = [&texts](qsizetype column) { return texts.value(column).toUtf8(); };
    return {"Update StockList Set StockID = ?, StockCategory = ?, StockName = ?, StockCost = ?, StockReorderLevel = ?,"
            " StockAvailable = ?, StockLastUpdated = ?, StockLastModified = ?, StockReorderUser = ?, StockUse = ?" +
                ofRow(row),
            {},
            {text(StockColumn::Id), text(StockColumn::Category), text(StockColumn::Name), "7.77",
             text(StockColumn::ReorderLevel), text(StockColumn::Available), stockTime(now).toUtf8(), userName, userName,
             text(StockColumn::Use)}};
}

RawStatement addUnit(int row)
{
    return {
        "Update StockList Set StockAvailable = StockAvailable + 1, StockReorderUser = ?" + ofRow(row), {}, {userName}};
}

RawStatements restoredLines(const QStringList &keys, const QDateTime &now)
{
    RawStatements list;
    for (const QString &key : keys) {
        const QString id = GetIDName(key, KeyPiece::Id);
        list.push_back(change(statements::raiseStock(1, id)));
        list.push_back(readRows(statements::stockById(id), {"StockCost"}));
        list.push_back(usageRow(u"1 of "_s + key + u" Added to Cart!"_s, now));
    }
    return list;
}

} // namespace

RawStatements stockListStatements()
{
    return {readRows(statements::allStock(), stockColumns())};
}

RawStatements saveStatements(int row, const QStringList &texts, const QString &saleCategory, const QDateTime &now)
{
    const QString id = texts.value(StockColumn::Id);
    const QString name = texts.value(StockColumn::Name);
    return RawStatements{
               readRows(statements::sameStock(id, name), {"StockID", "StockName"}), updateStock(row, texts, now),
               usageRow(u"Stock ["_s + name + u"] with ID ["_s + id + u"] has been updated successfully."_s, now)} +
           saleCategoryStatements(saleCategory);
}

RawStatements reorderStatements(int row, const QStringList &texts, const QDateTime &now, int offset)
{
    const QString id = texts.value(StockColumn::Id);
    return RawStatements{readRows(statements::stockById(id), stockColumns()), addUnit(row),
                         usageRow(u"1 New item(s) to Stock ["_s + id + u"]. New Available Stock is 100."_s, now)} +
           dashboardStatements(now, offset);
}

RawStatements saleCategoryStatements(const QString &category)
{
    return {readRows(statements::stockItems(false, category), {"StockID", "StockName"})};
}

RawStatements undoStatements(const QString &purchaseId, const QStringList &keys, const QDateTime &now, int offset)
{
    return deletePurchaseStatements(purchaseId, keys, now, offset) +
           RawStatements{usageRow(u"Last Purchased Undone!"_s, now)};
}

RawStatements deletePurchaseStatements(const QString &purchaseId, const QStringList &keys, const QDateTime &now,
                                       int offset)
{
    return RawStatements{readRows(statements::purchase(purchaseId), {"PurchasedItemsTotal", "PurchasedItems"})} +
           restoredLines(keys, now) + RawStatements{change(statements::deletePurchase(purchaseId))} +
           dashboardStatements(now, offset);
}

RawStatements purchaseIdStatements()
{
    return {readRows(statements::purchaseIds(), {"PurchaseID"})};
}

} // namespace harrowby::bench
