// SPDX-License-Identifier: MIT
#include "app/catalogue/own_records.h"

#include "app/shop/wait_times.h"

#include <sqlite3.h>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

/// What 100,000 items and their indexes take, twice over. A smaller one would be written out again and again while the
/// transaction lasts, and the tills wait for that.
const auto manyPages = u"PRAGMA cache_size = -262144"_s; // KiB

std::optional<SqlError> setUp(sqlite3 *database)
{
    sqlite3_busy_timeout(database, static_cast<int>(wait_times::longest.count()));
    if (auto error = runSql(database, manyPages))
        return error;
    // What is committed survives a power cut, as a sale does; moving the log into the file is left to the guard.
    const bool hasLog = readText(database, u"PRAGMA journal_mode"_s).compare(u"wal"_s, Qt::CaseInsensitive) == 0;
    if (auto error = runSql(database, hasLog ? u"PRAGMA synchronous = FULL"_s : u"PRAGMA synchronous = EXTRA"_s))
        return error;
    return runSql(database, u"PRAGMA wal_autocheckpoint = 0"_s);
}

} // namespace

Result<std::unique_ptr<OwnRecords>, QString> OwnRecords::open(const QString &store)
{
    auto database = openDatabase(store, OpenMode::Write);
    auto error = database ? setUp(database->get()) : std::optional(database.error());
    if (error)
        return Unexpected(u"The store file could not be opened once more (%1)."_s.arg(error->reason));
    return std::unique_ptr<OwnRecords>(new OwnRecords(*std::move(database)));
}

} // namespace harrowby::app
