// SPDX-License-Identifier: MIT
#include "app/backup/store_contents.h"

#include "app/records/sqlite_records.h"
#include "app/shop/busy_wait.h"
#include "app/shop/store_judge.h"

#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

/// First column of the first row; empty also when it cannot be read, which has been told.
QString oneText(Records &store, const RecordStatement &statement)
{
    const auto rows = store.read(statement);
    return rows && !rows->isEmpty() ? recordText(rows->constFirst().constFirst()) : QString();
}

qint64 countOf(Records &store, const QString &table)
{
    return oneText(store, {u"select count(*) from "_s + table, {}}).toLongLong();
}

/// A date is "yyMMddHHmmss"; one before 2070 belongs to this century.
QDateTime purchaseTime(const QString &stored)
{
    return QDateTime::fromString(u"20"_s + stored, u"yyyyMMddHHmmss"_s);
}

/// The day has an index of its own; within that day the whole dates are compared.
QDateTime lastPurchaseOf(Records &store)
{
    const QString day = oneText(store, {u"select max(substr(PurchasedDate,1,6)) from PurchaseCart"_s, {}});
    return purchaseTime(
        oneText(store, {u"select max(PurchasedDate) from PurchaseCart where substr(PurchasedDate,1,6) = ?"_s, {day}}));
}

} // namespace

StoreContents contentsOf(Records &store)
{
    StoreContents contents;
    contents.items = countOf(store, u"StockList"_s);
    contents.purchases = countOf(store, u"PurchaseCart"_s);
    contents.lastPurchase = lastPurchaseOf(store);
    const auto users = store.read({u"select Username from Users order by Username"_s, {}});
    for (const RecordRow &user : users.value_or(QList<RecordRow>()))
        contents.users << recordText(user.constFirst());
    return contents;
}

Result<StoreContents, QString> lookIntoBackup(const QString &file)
{
    BusyWait wait;
    const auto backup = openJudged(file, wait, wait_times::longestCheck);
    if (!backup)
        return Unexpected(u"This file cannot be restored. "_s + whatIsWrong(backup.error()));
    SqliteRecords records(backup->get());
    StoreContents contents = contentsOf(records);
    contents.written = QFileInfo(file).lastModified();
    return contents;
}

} // namespace harrowby::app
