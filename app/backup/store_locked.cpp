// SPDX-License-Identifier: MIT
#include "app/backup/store_locked.h"

#include "app/backup/store_hold.h"
#include "app/backup/store_users.h"
#include "app/shop/file_facts.h"
#include "app/shop/store_problem.h"

#include <QFile>

#include <sqlite3.h>

#include <thread>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

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

/// Read-only is a header's saying: whether the file can be written has been looked at before.
bool isDamage(const SqlError &error)
{
    return error.code == SQLITE_CORRUPT || error.code == SQLITE_NOTADB || error.code == SQLITE_READONLY;
}

NotAlone notAlone(const SqlError &error, const QString &store)
{
    return {engineProblem(error, store).text, isDamage(error)};
}

/// SQLite then takes the file for an empty database, whatever is in it, until it has been written; the pages that were
/// there go into the journal like those of any file.
std::optional<SqlError> takeAsEmpty(sqlite3 *database)
{
    const int code = sqlite3_db_config(database, SQLITE_DBCONFIG_RESET_DATABASE, 1, nullptr);
    if (code != SQLITE_OK)
        return SqlError{code, QString::fromUtf8(sqlite3_errstr(code))};
    if (auto error = runSql(database, u"PRAGMA locking_mode = EXCLUSIVE"_s))
        return error;
    return runSql(database, u"PRAGMA synchronous = EXTRA"_s);
}

} // namespace

QString storeInUse(const StoreUsers &users, const QString &what)
{
    const QString names = storeUsersText(users);
    if (names.isEmpty())
        return u"Another program has the store open, perhaps under another user name or on another computer. Close it "
               "there first; %1 needs the store for itself."_s.arg(what);
    return u"The store is open in another program: %1. Close it there first; %2 needs the store for itself."_s.arg(
        names, what);
}

Result<SqliteDatabase, NotAlone> openStoreAlone(const QString &store, const QString &what)
{
    std::optional<SqlError> error;
    for (int left = lockTries; left > 0; --left) {
        auto database = openDatabase(store, OpenMode::Write);
        if (!database)
            return Unexpected(notAlone(database.error(), store));
        error = takeAlone(database->get());
        if (!error) {
            const StoreUsers users = findStoreUsers(store);
            if (users.isEmpty())
                return *std::move(database);
            return Unexpected(NotAlone{storeInUse(users, what), false});
        }
        if (!isLocked(*error))
            return Unexpected(notAlone(*error, store));
        database->reset();
        std::this_thread::sleep_for(lockPause);
    }
    return Unexpected(NotAlone{storeInUse(findStoreUsers(store), what), false});
}

namespace {

/// With its index; nobody else may have them open.
std::optional<QString> removeLog(const QString &store)
{
    StoreHold hold;
    if (auto problem = hold.take(store))
        return problem;
    for (const QString &file : {logFileOf(store), logIndexOf(store)}) {
        if (nameIsTaken(file) && !QFile::remove(file))
            return u"\"%1\" cannot be removed."_s.arg(file);
    }
    return {};
}

Result<SqliteDatabase, QString> openRuined(const QString &store)
{
    auto database = openDatabase(store, OpenMode::Write);
    if (!database)
        return Unexpected(engineProblem(database.error(), store).text);
    if (const auto error = takeAsEmpty(database->get()))
        return Unexpected(isLocked(*error) ? storeInUse(findStoreUsers(store)) : engineProblem(*error, store).text);
    if (const StoreUsers users = findStoreUsers(store); !users.isEmpty())
        return Unexpected(storeInUse(users));
    return *std::move(database);
}

} // namespace

Result<DamagedStore, QString> openDamagedStoreAlone(const QString &store)
{
    auto opened = openStoreAlone(store);
    if (opened)
        return DamagedStore{*std::move(opened), false};
    if (!opened.error().isDamaged)
        return Unexpected(opened.error().text);
    if (const auto problem = removeLog(store))
        return Unexpected(*problem);
    auto ruined = openRuined(store);
    if (!ruined)
        return Unexpected(ruined.error());
    return DamagedStore{*std::move(ruined), true};
}

} // namespace harrowby::app
