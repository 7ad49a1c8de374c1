// SPDX-License-Identifier: MIT
#include "bench/shop_file.h"

#include "app/records/sqlite_records.h"
#include "app/search/finding_connection.h"
#include "app/search/search_statement.h"
#include "app/shop/schema.h"
#include "bench/stopwatch.h"

#include <QFile>

#include <sqlite3.h>

#include <stdexcept>

namespace harrowby::bench {

namespace {

[[noreturn]] void fail(sqlite3 *database)
{
    throw std::runtime_error(database ? sqlite3_errmsg(database) : "No memory for a database");
}

void execute(sqlite3 *database, const char *sql)
{
    if (sqlite3_exec(database, sql, nullptr, nullptr, nullptr) != SQLITE_OK)
        fail(database);
}

} // namespace

QDateTime benchTime()
{
    return QDateTime(QDate(2026, 3, 5), QTime(12, 0));
}

ShopFile::ShopFile(const QString &path)
{
    const bool isNew = !QFile::exists(path);
    if (sqlite3_open(path.toUtf8().constData(), &m_database) != SQLITE_OK)
        fail(m_database);
    // A committed sale survives a power cut: the till is measured with what that costs.
    execute(m_database, "PRAGMA journal_mode=WAL");
    execute(m_database, "PRAGMA synchronous=FULL");
    if (isNew && app::createTables(m_database))
        fail(m_database);
}

ShopFile::~ShopFile()
{
    sqlite3_close(m_database);
}

void ShopFile::fill(const CatalogueSize &size, const QDate &today) const
{
    if (!fillCatalogue(m_database, size, today) || !app::createMissingIndexes(m_database))
        fail(m_database);
    // The measuring starts with an empty log.
    execute(m_database, "PRAGMA wal_checkpoint(TRUNCATE)");
}

std::shared_ptr<DbConnection> ShopFile::connect()
{
    return std::make_shared<app::FindingConnection>(m_database, QString(), [] { return true; });
}

std::unique_ptr<app::Records> ShopFile::records()
{
    return std::make_unique<app::SqliteRecords>(m_database);
}

double ShopFile::rawMs(const RawStatements &statements)
{
    const Stopwatch watch;
    return runRaw(m_database, statements) ? watch.milliseconds() : -1.0;
}

RawStatements ShopFile::search(const QString &text) const
{
    return {{app::findingStatement().toUtf8(), {"StockID", "StockName", "StockCategory"}, {text.toUpper().toUtf8()}}};
}

} // namespace harrowby::bench
