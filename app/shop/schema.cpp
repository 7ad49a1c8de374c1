// SPDX-License-Identifier: MIT
#include "app/shop/schema.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

const QString text = u"TEXT"_s;
const QString number = u"NUMERIC"_s;

StoreTable usersTable()
{
    return {u"Users"_s,
            {u"Username"_s, u"Password"_s, u"Type"_s, u"InventoryUse"_s, u"InventorySales"_s, u"InventoryReport"_s,
             u"InventoryUndo"_s, u"InventoryDelete"_s, u"InventorySettings"_s, u"InventoryReorder"_s},
            {text, text, text, number, number, number, number, number, number, number}};
}

StoreTable stockTable()
{
    return {u"StockList"_s,
            {u"StockID"_s, u"StockName"_s, u"StockCategory"_s, u"StockCost"_s, u"StockReorderLevel"_s,
             u"StockAvailable"_s, u"StockUse"_s, u"StockLastUpdated"_s, u"StockLastModified"_s, u"StockAdded"_s,
             u"StockReorderUser"_s},
            {text, text, text, number, number, number, text, text, text, text, text}};
}

StoreTable purchaseTable()
{
    return {u"PurchaseCart"_s,
            {u"PurchaseID"_s, u"PurchasedItems"_s, u"PurchasedItemsTotal"_s, u"PurchasedItemsCost"_s,
             u"PurchasedDate"_s, u"Users"_s},
            {text, text, number, number, text, text}};
}

StoreTable settingsTable()
{
    return {u"StoreSettings"_s,
            {u"Email"_s, u"ShowDetails"_s, u"EmailAddress"_s, u"Promptreorder"_s, u"AutoPurchaseCart"_s},
            {number, number, text, number, number}};
}

/// The definition without case, blanks and quoting of names, to compare two of them.
QString definitionKey(QString definition)
{
    static const QRegularExpression noise(uR"([\s"`\[\]]+)"_s);
    return definition.remove(noise).toUpper();
}

QString createStatement(const StoreIndex &index)
{
    return u"CREATE INDEX %1 ON %2%3"_s.arg(index.name, index.table, index.body);
}

/// Definition from "ON" onwards, as definitionKey() of what the file's own catalogue holds.
QString storedKey(const QString &sql)
{
    static const QRegularExpression head(uR"(^\s*CREATE\s+(UNIQUE\s+)?INDEX\s+.*?\sON\s+)"_s,
                                         QRegularExpression::CaseInsensitiveOption |
                                             QRegularExpression::DotMatchesEverythingOption);
    return definitionKey(QString(sql).remove(head));
}

struct PresentIndexes
{
    QStringList names; ///< upper-cased
    QStringList keys;
};

Result<PresentIndexes, SqlError> readPresent(sqlite3 *database)
{
    PresentIndexes present;
    SqliteStatement query(database, u"SELECT name, sql FROM sqlite_master WHERE type = 'index' AND sql IS NOT NULL"_s);
    while (query.next()) {
        present.names << query.text(0).toUpper();
        present.keys << storedKey(query.text(1));
    }
    if (query.error())
        return Unexpected(*query.error());
    return present;
}

std::optional<SqlError> replaceIndex(sqlite3 *database, const StoreIndex &index, const PresentIndexes &present)
{
    // The prefix is ours: an index of this name with another definition was made by an older version.
    if (present.names.contains(index.name.toUpper())) {
        if (auto error = runSql(database, u"DROP INDEX "_s + index.name))
            return error;
    }
    return runSql(database, createStatement(index));
}

std::optional<SqlError> createIndexes(sqlite3 *database, const QList<StoreIndex> &missing,
                                      const PresentIndexes &present)
{
    if (auto error = runSql(database, u"BEGIN IMMEDIATE"_s))
        return error;
    for (const StoreIndex &index : missing) {
        if (auto error = replaceIndex(database, index, present)) {
            (void)runSql(database, u"ROLLBACK"_s);
            return error;
        }
    }
    auto error = runSql(database, u"COMMIT"_s);
    if (error)
        (void)runSql(database, u"ROLLBACK"_s);
    return error;
}

} // namespace

const QList<StoreTable> &storeTables()
{
    static const QList<StoreTable> tables = {
        usersTable(),    {u"InventoryCategory"_s, {u"CategoryName"_s, u"EntryDate"_s}, {text, text}},
        stockTable(),    purchaseTable(),
        settingsTable(), {u"SysUsage"_s, {u"SystemUsage"_s, u"Times"_s, u"Dates"_s}, {text, text, text}},
    };
    return tables;
}

const QList<StoreIndex> &storeIndexes()
{
    // harrowby_stock_total comes first: among equally good indexes SQLite takes the one created last, and lists without
    // ORDER BY should come by name rather than by ID.
    static const QList<StoreIndex> indexes = {
        {u"harrowby_stock_total"_s, u"StockList"_s, u"(StockUse, StockID, StockAvailable)"_s},
        {u"harrowby_stock_id"_s, u"StockList"_s, u"(StockID)"_s},
        {u"harrowby_stock_id_upper"_s, u"StockList"_s, u"(UPPER(StockID))"_s},
        {u"harrowby_stock_id_like"_s, u"StockList"_s, u"(StockID COLLATE NOCASE)"_s},
        {u"harrowby_stock_name_upper"_s, u"StockList"_s, u"(UPPER(StockName))"_s},
        {u"harrowby_stock_reorder"_s, u"StockList"_s, u"(StockUse) WHERE StockReorderLevel >= StockAvailable"_s},
        {u"harrowby_stock_page"_s, u"StockList"_s, u"(StockUse, StockName)"_s},
        {u"harrowby_stock_page_left"_s, u"StockList"_s, u"(StockUse, StockName) WHERE StockAvailable > 0"_s},
        {u"harrowby_stock_category"_s, u"StockList"_s, u"(StockCategory, StockUse, StockName)"_s},
        {u"harrowby_stock_category_left"_s, u"StockList"_s,
         u"(StockCategory, StockUse, StockName) WHERE StockAvailable > 0"_s},
        {u"harrowby_category_name"_s, u"InventoryCategory"_s, u"(CategoryName)"_s},
        {u"harrowby_purchase_id"_s, u"PurchaseCart"_s, u"(PurchaseID)"_s},
        {u"harrowby_purchase_day"_s, u"PurchaseCart"_s,
         u"(substr(PurchasedDate, 1, 6), Users, PurchasedItemsCost, PurchasedDate)"_s},
        {u"harrowby_user_name"_s, u"Users"_s, u"(UPPER(Username))"_s},
        {u"harrowby_usage_time"_s, u"SysUsage"_s, u"(Dates)"_s},
    };
    return indexes;
}

bool isOwnStore(sqlite3 *database)
{
    return readText(database, u"PRAGMA application_id"_s) == QString::number(storeApplicationId);
}

std::optional<SqlError> createTables(sqlite3 *database)
{
    for (const StoreTable &table : storeTables()) {
        QStringList columns;
        for (qsizetype i = 0; i < table.columns.size(); ++i)
            columns << table.columns.at(i) + u' ' + table.types.at(i);
        if (auto error = runSql(database, u"CREATE TABLE %1 (%2)"_s.arg(table.name, columns.join(u", "_s))))
            return error;
    }
    return {};
}

Result<int, SqlError> createMissingIndexes(sqlite3 *database)
{
    const auto present = readPresent(database);
    if (!present)
        return Unexpected(present.error());
    QList<StoreIndex> missing;
    for (const StoreIndex &index : storeIndexes()) {
        if (!present->keys.contains(definitionKey(index.table + index.body)))
            missing << index;
    }
    if (missing.isEmpty())
        return 0;
    if (const auto error = createIndexes(database, missing, *present))
        return Unexpected(*error);
    return static_cast<int>(missing.size());
}

} // namespace harrowby::app
