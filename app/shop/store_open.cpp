// SPDX-License-Identifier: MIT
#include "app/shop/store_open.h"

#include "app/shop/busy_wait.h"
#include "app/shop/schema.h"
#include "app/shop/store_access.h"
#include "app/shop/store_judge.h"
#include "basic/logging.h"

#include <sqlite3.h>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

using Problem = std::optional<StoreProblem>;

/// BEGIN IMMEDIATE and ROLLBACK: tests for the write lock, and writes nothing.
std::optional<SqlError> tryToWrite(sqlite3 *database)
{
    if (auto error = runSql(database, u"BEGIN IMMEDIATE"_s))
        return error;
    return runSql(database, u"ROLLBACK"_s);
}

/// PRAGMA synchronous, so that a committed sale survives a power cut: FULL with the write-ahead log; EXTRA with the
/// rollback journal, where WAL cannot be set (another program reads all the time, a network folder).
void secure(sqlite3 *database)
{
    const QString mode = readText(database, u"PRAGMA journal_mode = WAL"_s);
    const bool logged = mode.compare(u"wal"_s, Qt::CaseInsensitive) == 0;
    if (!logged)
        qCWarning(lcStore) << "The store file cannot keep a write-ahead log here; its journal mode is" << mode;
    if (auto error = runSql(database, logged ? u"PRAGMA synchronous = FULL"_s : u"PRAGMA synchronous = EXTRA"_s))
        qCWarning(lcStore) << "The store file's way of writing could not be set:" << error->reason;
}

/// A failure is only logged: without an index the store is slow, not wrong.
void addMissingIndexes(sqlite3 *database)
{
    const auto created = createMissingIndexes(database);
    if (!created) {
        qCWarning(lcStore) << "Indexes could not be made:" << created.error().reason;
        return;
    }
    if (*created > 0)
        (void)runSql(database, u"PRAGMA wal_checkpoint(TRUNCATE)"_s);
}

Problem prepare(sqlite3 *database, const QString &path)
{
    if (sqlite3_db_readonly(database, "main") == 1)
        return storeProblem(ProblemKind::ReadOnly, path);
    if (auto error = tryToWrite(database))
        return engineProblem(*error, path);
    if (isOpenToOthers(path))
        qCWarning(lcStore).noquote() << "Others may read the store file" << path << "and the passwords in it:"
                                     << "its permissions are" << permissionsText(path);
    secure(database);
    addMissingIndexes(database);
    return {};
}

} // namespace

Result<SqliteDatabase, StoreProblem> openStore(const QString &path, BusyWait &wait)
{
    if (auto problem = judgeStore(path, wait))
        return Unexpected(*problem);
    auto database = openDatabase(path, OpenMode::Write);
    if (!database)
        return Unexpected(engineProblem(database.error(), path));
    wait.attach(database->get());
    if (auto problem = prepare(database->get(), path))
        return Unexpected(*problem);
    return *std::move(database);
}

} // namespace harrowby::app
