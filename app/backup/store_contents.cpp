// SPDX-License-Identifier: MIT
#include "app/backup/store_contents.h"

#include "app/shop/busy_wait.h"
#include "app/shop/store_judge.h"
#include "engine/database.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

qint64 countOf(sqlite3 *store, const QString &table)
{
    return readText(store, u"SELECT count(*) FROM "_s + table).toLongLong();
}

/// A date is "yyMMddHHmmss"; one before 2070 belongs to this century.
QDateTime purchaseTime(const QString &stored)
{
    return QDateTime::fromString(u"20"_s + stored, u"yyyyMMddHHmmss"_s);
}

/// The day has an index of its own; within that day the whole dates are compared.
QDateTime lastPurchaseOf(sqlite3 *store)
{
    const QString day = readText(store, u"SELECT max(substr(PurchasedDate,1,6)) FROM PurchaseCart"_s);
    return purchaseTime(
        readText(store, u"SELECT max(PurchasedDate) FROM PurchaseCart WHERE substr(PurchasedDate,1,6) = ?1"_s, {day}));
}

} // namespace

StoreContents contentsOf(sqlite3 *store)
{
    StoreContents contents;
    contents.items = countOf(store, u"StockList"_s);
    contents.purchases = countOf(store, u"PurchaseCart"_s);
    contents.lastPurchase = lastPurchaseOf(store);
    SqliteStatement users(store, u"SELECT Username FROM Users ORDER BY Username"_s);
    while (users.next())
        contents.users << users.text(0);
    return contents;
}

Result<StoreContents, QString> lookIntoBackup(const QString &file)
{
    BusyWait wait;
    const auto backup = openJudged(file, wait, wait_times::longestCheck);
    if (!backup)
        return Unexpected(u"This file cannot be restored. "_s + whatIsWrong(backup.error()));
    StoreContents contents = contentsOf(backup->get());
    contents.written = QFileInfo(file).lastModified();
    return contents;
}

} // namespace harrowby::app
