// SPDX-License-Identifier: MIT
#include "app/backup/store_locked.h"

#include "app/backup/store_users.h"
#include "app/shop/store_problem.h"

#include <sqlite3.h>

#include <chrono>
#include <thread>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

using namespace std::chrono_literals;

constexpr int tries = 10;
constexpr auto pause = 100ms;

bool isLocked(const SqlError &error)
{
    return error.code == SQLITE_BUSY || error.code == SQLITE_LOCKED;
}

/// Each connection to a log holds a lock on the file, so leaving the log proves that there is no other one. Without a
/// log that does not hold: a program that does nothing right now has no lock.
std::optional<SqlError> takeAlone(sqlite3 *database)
{
    if (auto error = runSql(database, u"PRAGMA locking_mode = EXCLUSIVE"_s))
        return error;
    if (auto error = runSql(database, u"PRAGMA journal_mode = DELETE"_s))
        return error;
    if (readText(database, u"PRAGMA journal_mode"_s) != u"delete"_s)
        return SqlError{SQLITE_BUSY, u"the log is in use"_s};
    if (auto error = runSql(database, u"PRAGMA synchronous = EXTRA"_s))
        return error;
    if (auto error = runSql(database, u"BEGIN EXCLUSIVE"_s))
        return error;
    return runSql(database, u"COMMIT"_s); // the lock stays
}

QString inUse(const StoreUsers &users)
{
    const QString names = storeUsersText(users);
    if (names.isEmpty())
        return u"Another program has the store open, perhaps under another user name or on another computer. Close it "
               "there first; a restore needs the store for itself."_s;
    return u"The store is open in another program: %1. Close it there first; a restore needs the store for itself."_s
        .arg(names);
}

} // namespace

Result<SqliteDatabase, QString> openStoreAlone(const QString &store)
{
    std::optional<SqlError> error;
    for (int left = tries; left > 0; --left) {
        auto database = openDatabase(store, OpenMode::Write);
        if (!database)
            return Unexpected(engineProblem(database.error(), store).text);
        error = takeAlone(database->get());
        if (!error) {
            const StoreUsers users = findStoreUsers(store);
            return users.isEmpty() ? Result<SqliteDatabase, QString>(*std::move(database)) : Unexpected(inUse(users));
        }
        if (!isLocked(*error))
            return Unexpected(engineProblem(*error, store).text);
        database->reset();
        std::this_thread::sleep_for(pause);
    }
    return Unexpected(inUse(findStoreUsers(store)));
}

} // namespace harrowby::app
