// SPDX-License-Identifier: MIT
#include "bench/raw_import.h"

#include <QByteArrayView>
#include <QFile>

#include <sqlite3.h>

#include <array>
#include <memory>

namespace harrowby::bench {

namespace {

using Prepared = std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt *)>;

constexpr int cells = 5; ///< StockID;StockName;StockCategory;StockCost;StockReorderLevel
constexpr int storedColumns = 11;
constexpr int rowsInOnePiece = 1'000;

using Row = std::array<QByteArrayView, cells>;

Prepared prepare(sqlite3 *database, const char *sql)
{
    sqlite3_stmt *statement = nullptr;
    sqlite3_prepare_v2(database, sql, -1, &statement, nullptr);
    return Prepared(statement, sqlite3_finalize);
}

bool run(sqlite3 *database, const char *sql)
{
    return sqlite3_exec(database, sql, nullptr, nullptr, nullptr) == SQLITE_OK;
}

/// False at the end.
bool cutRow(QByteArrayView &rest, Row &row)
{
    if (rest.isEmpty())
        return false;
    for (int cell = 0; cell < cells; ++cell) {
        const qsizetype end = rest.indexOf(cell + 1 < cells ? ';' : '\n');
        if (end < 0)
            return false;
        row[static_cast<std::size_t>(cell)] = rest.first(end);
        rest = rest.sliced(end + 1);
    }
    return true;
}

void bindText(sqlite3_stmt *statement, int place, QByteArrayView text)
{
    sqlite3_bind_text(statement, place, text.data(), static_cast<int>(text.size()), SQLITE_STATIC);
}

bool stageRow(sqlite3_stmt *find, sqlite3_stmt *insert, const Row &row, int line)
{
    bindText(find, 1, row[0]);
    if (sqlite3_step(find) != SQLITE_ROW)
        return false;
    sqlite3_bind_int(insert, 1, line);
    bindText(insert, 2, row[0]);
    for (int cell = 1; cell < cells; ++cell)
        bindText(insert, 2 + cell, row[static_cast<std::size_t>(cell)]);
    sqlite3_bind_double(insert, 5, row[3].toByteArray().toDouble());
    sqlite3_bind_double(insert, 6, row[4].toByteArray().toDouble());
    for (int column = 1; column < storedColumns; ++column) {
        if (column != storedColumns - 2) // who added it is not kept
            sqlite3_bind_value(insert, column < storedColumns - 2 ? 6 + column : 5 + column,
                               sqlite3_column_value(find, column));
    }
    const bool done = sqlite3_step(insert) == SQLITE_DONE;
    sqlite3_reset(insert);
    sqlite3_reset(find);
    return done;
}

bool stage(sqlite3 *database, const QByteArray &text)
{
    const Prepared find = prepare(
        database, "select StockID, StockName, StockCategory, StockCost, StockReorderLevel, StockAvailable, StockUse, "
                  "StockLastUpdated, StockLastModified, StockAdded, StockReorderUser from StockList where StockID = ?");
    const Prepared insert = prepare(
        database, "insert into HarrowbyImportRow (ImportID, Line, What, Mask, LeftOut, StockID, NewName, NewCategory, "
                  "NewCost, NewLevel, OldName, OldCategory, OldCost, OldLevel, OldAvailable, OldUse, OldUpdated, "
                  "OldModified, OldReorderUser) values (-1, ?, 2, 4, 0, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)");
    QByteArrayView rest(text);
    Row row;
    bool done = cutRow(rest, row) && find && insert && run(database, "begin immediate"); // past the headings
    for (int line = 2; done && cutRow(rest, row); ++line) {
        done = stageRow(find.get(), insert.get(), row, line);
        if (line % rowsInOnePiece == 0)
            done = done && run(database, "commit") && run(database, "begin immediate");
    }
    return run(database, "commit") && done;
}

bool copyAndCheck(sqlite3 *database, const QString &copy)
{
    sqlite3 *target = nullptr;
    bool done = sqlite3_open(copy.toUtf8().constData(), &target) == SQLITE_OK;
    if (sqlite3_backup *backup = done ? sqlite3_backup_init(target, "main", database, "main") : nullptr) {
        done = sqlite3_backup_step(backup, -1) == SQLITE_DONE;
        done = sqlite3_backup_finish(backup) == SQLITE_OK && done;
    }
    done = done && run(target, "pragma integrity_check");
    sqlite3_close(target);
    return done;
}

QByteArrayView cellOf(sqlite3_stmt *statement, int column)
{
    const auto *text = reinterpret_cast<const char *>(sqlite3_column_text(statement, column));
    return {text, sqlite3_column_bytes(statement, column)};
}

} // namespace

bool importByHand(sqlite3 *database, const QByteArray &text, const QString &copy)
{
    return stage(database, text) && copyAndCheck(database, copy) && run(database, "begin immediate") &&
           run(database, "update StockList set StockCost = r.NewCost, StockLastUpdated = '22-Nov-26 12:00:00', "
                         "StockLastModified = 'JILL', StockReorderUser = 'JILL' from HarrowbyImportRow r where "
                         "r.ImportID = -1 and r.What = 2 and r.LeftOut = 0 and StockList.StockID = r.StockID and "
                         "StockList.StockCost is r.OldCost") &&
           run(database, "commit");
}

bool forgetImports(sqlite3 *database)
{
    return run(database, "delete from HarrowbyImportRow; delete from HarrowbyImport; pragma wal_checkpoint(truncate)");
}

bool exportByHand(sqlite3 *database, const QString &target)
{
    const Prepared read = prepare(database, "select * from StockList order by rowid");
    QFile file(target);
    if (!read || !file.open(QIODevice::WriteOnly))
        return false;
    QByteArray text;
    while (sqlite3_step(read.get()) == SQLITE_ROW) {
        for (int column = 0; column < storedColumns; ++column) {
            text += cellOf(read.get(), column);
            text += column + 1 < storedColumns ? ',' : '\n';
        }
    }
    return file.write(text) == text.size() && file.flush();
}

} // namespace harrowby::bench
