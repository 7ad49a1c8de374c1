// SPDX-License-Identifier: MIT
#include "app/records/file_records.h"

#include "basic/logging.h"

#include <sqlite3.h>

#include <chrono>
#include <exception>
#include <thread>
#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

using namespace std::chrono_literals;

// For a till's lock; the first steps are short, as a sale holds it for milliseconds.
constexpr auto longestWait = 10'000ms;
constexpr auto shortStep = 2ms;
constexpr auto longStep = 50ms;
constexpr int shortSteps = 10;
constexpr int mostSteps = shortSteps + static_cast<int>((longestWait - shortSteps * shortStep) / longStep);

constexpr int stepsBetweenLooks = 10'000; // of SQLite's machine: less than a millisecond

/// What 100,000 items and their indexes take, twice over. A smaller one would be written out again and again while the
/// transaction lasts, and the tills wait for that.
const auto manyPages = u"PRAGMA cache_size = -262144"_s; // KiB

std::optional<SqlError> setUp(sqlite3 *database, Access access)
{
    if (access == Access::Read)
        return runSql(database, u"PRAGMA query_only = 1"_s);
    if (auto error = runSql(database, manyPages))
        return error;
    // What is committed survives a power cut, as a sale does; moving the log into the file is left to the guard.
    const bool hasLog = readText(database, u"PRAGMA journal_mode"_s).compare(u"wal"_s, Qt::CaseInsensitive) == 0;
    if (auto error = runSql(database, hasLog ? u"PRAGMA synchronous = FULL"_s : u"PRAGMA synchronous = EXTRA"_s))
        return error;
    return runSql(database, u"PRAGMA wal_autocheckpoint = 0"_s);
}

} // namespace

FileRecords::FileRecords(SqliteDatabase database) : m_database(std::move(database)), m_records(m_database.get())
{
    sqlite3_busy_handler(m_database.get(), &FileRecords::onBusy, this);
}

Result<std::unique_ptr<FileRecords>, QString> FileRecords::open(const QString &store, Access access)
{
    // For reading, too: a log that is open may be written beside the file.
    auto database = openDatabase(store, OpenMode::Write);
    std::unique_ptr<FileRecords> records;
    if (database)
        records.reset(new FileRecords(*std::move(database)));
    if (const auto error = records ? setUp(records->database(), access) : std::optional(database.error()))
        return Unexpected(u"The store file could not be opened once more (%1)."_s.arg(error->reason));
    return records;
}

void FileRecords::interrupt()
{
    m_isInterrupted = true;
    sqlite3_interrupt(m_database.get());
}

void FileRecords::setWatch(std::function<bool()> goesOn)
{
    m_watch = std::move(goesOn);
    sqlite3_progress_handler(m_database.get(), m_watch ? stepsBetweenLooks : 0, &FileRecords::onProgress, this);
}

bool FileRecords::wasInterrupted(const DbFailure &failure) const
{
    const int code = failure.engineCode & 0xff;
    return code == SQLITE_INTERRUPT || (code == SQLITE_BUSY && m_hasLeftWait);
}

bool FileRecords::goesOn() const noexcept
{
    try {
        return !m_watch || m_watch();
    } catch (const std::exception &error) {
        qCWarning(lcStore) << "A statement is ended:" << error.what();
        return false;
    }
}

int FileRecords::onProgress(void *self) noexcept
{
    return static_cast<const FileRecords *>(self)->goesOn() ? 0 : 1;
}

int FileRecords::onBusy(void *self, int attempt) noexcept
{
    auto *records = static_cast<FileRecords *>(self);
    if (attempt == 0)
        records->m_isInterrupted = false;
    records->m_hasLeftWait = records->m_isInterrupted || !records->goesOn();
    if (attempt >= mostSteps || records->m_hasLeftWait)
        return 0;
    std::this_thread::sleep_for(attempt < shortSteps ? shortStep : longStep);
    return 1;
}

/// SQLite's moment is that of the first thing that is read.
std::optional<DbFailure> FileRecords::holdMoment()
{
    const auto failed = [](const SqlError &error) {
        return DbFailure{DbFailure::Kind::Read, u"begin"_s, error.reason, error.code};
    };
    if (const auto error = runSql(m_database.get(), u"BEGIN"_s))
        return failed(*error);
    const auto error = runSql(m_database.get(), u"select count(*) from sqlite_master"_s);
    if (!error)
        return {};
    releaseMoment();
    return failed(*error);
}

void FileRecords::releaseMoment()
{
    if (sqlite3_get_autocommit(m_database.get()) == 0)
        (void)runSql(m_database.get(), u"ROLLBACK"_s);
}

} // namespace harrowby::app
