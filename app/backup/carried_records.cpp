// SPDX-License-Identifier: MIT
#include "app/backup/carried_records.h"

#include "app/backup/good_backups.h"
#include "app/records/sqlite_records.h"
#include "app/records/statement_pieces.h"
#include "basic/logging.h"
#include "engine/database.h"

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

bool isThere(sqlite3 *database, const QString &table)
{
    return !readText(database, u"SELECT 1 FROM sqlite_master WHERE type = 'table' AND name = ?1"_s, {table}).isEmpty();
}

/// Rows whose key the copy has already are the same ones.
std::optional<SqlError> carryRows(sqlite3 *store, sqlite3 *copy, const RecordTable &table)
{
    const QString columns = table.columns.join(u", "_s);
    const QString insert =
        u"INSERT OR IGNORE INTO %1 (%2) VALUES (%3)"_s.arg(table.name, columns, placesFor(table.columns.size()));
    SqliteStatement rows(store, u"SELECT %1 FROM %2 ORDER BY rowid"_s.arg(columns, table.name));
    while (rows.next()) {
        QList<DbValue> values;
        for (int column = 0; column < table.columns.size(); ++column)
            values << rows.value(column);
        if (auto error = runSql(copy, insert, values))
            return error;
    }
    return rows.error();
}

void carryTable(sqlite3 *store, sqlite3 *copy, const RecordTable &table)
{
    if (!isThere(store, table.name))
        return;
    SqliteRecords records(copy);
    if (records.prepare(table))
        return;
    std::optional<SqlError> error = runSql(copy, u"BEGIN"_s);
    if (!error)
        error = carryRows(store, copy, table);
    if (!error)
        error = runSql(copy, u"COMMIT"_s);
    if (!error)
        return;
    (void)runSql(copy, u"ROLLBACK"_s);
    qCWarning(lcStore).noquote() << "The rows of" << table.name
                                 << "could not be carried over to the restored store:" << error->reason;
}

} // namespace

void carryRecords(sqlite3 *store, sqlite3 *copy)
{
    for (const RecordTable *table : kept::onlyAddedTo())
        carryTable(store, copy, *table);
    SqliteRecords from(store);
    SqliteRecords to(copy);
    QList<GoodBackup> noted = goodBackups(from);
    for (auto backup = noted.crbegin(); backup != noted.crend(); ++backup)
        (void)noteGoodBackup(to, *backup);
}

} // namespace harrowby::app
