// SPDX-License-Identifier: MIT
#include "app/backup/backup_copy.h"

#include "app/shop/schema.h"
#include "app/shop/wait_times.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryFile>

#include <sqlite3.h>

#include <chrono>
#include <memory>
#include <thread>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

using namespace std::chrono_literals;

constexpr int pagesInOneStep = 256;
constexpr int mostRestarts = 3;
constexpr auto breather = 5ms; // pause between steps, in which a till can write

/// A backup waits for a lock as long as a till would, each time anew.
void waitForTills(sqlite3 *database)
{
    sqlite3_busy_timeout(database, static_cast<int>(wait_times::longest.count()));
}

struct FinishBackup
{
    void operator()(sqlite3_backup *backup) const noexcept { sqlite3_backup_finish(backup); }
};

SqlError errorOf(sqlite3 *database, int code)
{
    return {code & 0xff, QString::fromUtf8(sqlite3_errmsg(database))};
}

QString fileOf(sqlite3 *database)
{
    return QString::fromUtf8(sqlite3_db_filename(database, "main"));
}

bool canBeRead(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    while (!file.atEnd()) {
        if (file.read(1 << 20).isEmpty())
            return false;
    }
    return true;
}

bool takesFiles(const QString &folder)
{
    QTemporaryFile file(folder + u"/probe"_s);
    return file.open();
}

/// Finds out which disk an error is about. The store file must not be opened beside SQLite (that drops its locks), so
/// what the error code does not tell is tried out on the copy.
BackupSide sideOf(int code, const QString &copy)
{
    using enum BackupSide;
    switch (code & 0xff) {
    case SQLITE_FULL:
    case SQLITE_READONLY:
        return Place;
    case SQLITE_CANTOPEN:
        return takesFiles(QFileInfo(copy).absolutePath()) ? Store : Place;
    case SQLITE_IOERR:
        break;
    default:
        return Store;
    }
    switch (code) {
    case SQLITE_IOERR_WRITE:
    case SQLITE_IOERR_FSYNC:
    case SQLITE_IOERR_DIR_FSYNC:
    case SQLITE_IOERR_TRUNCATE:
    case SQLITE_IOERR_DELETE:
    case SQLITE_IOERR_DELETE_NOENT:
        return Place;
    default:
        return canBeRead(copy) ? Store : Place;
    }
}

class Copy
{
public:
    Copy(sqlite3 *store, sqlite3 *copy, const BackupWatch &watch) : m_store(store), m_copy(copy), m_watch(watch) {}
    ~Copy()
    {
        m_backup.reset();
        if (m_held)
            (void)runSql(m_store, u"ROLLBACK"_s);
    }
    Copy(const Copy &) = delete;
    Copy &operator=(const Copy &) = delete;

    CopyEnd run()
    {
        const bool hasLog = readText(m_store, u"PRAGMA journal_mode"_s) == u"wal"_s;
        if (hasLog && !hold())
            return {false, m_error, BackupSide::Store, {}};
        RowCounts counts = hasLog ? countRows(m_store) : RowCounts();
        m_backup.reset(sqlite3_backup_init(m_copy, "main", m_store, "main"));
        if (!m_backup)
            return {false, errorOf(m_copy, sqlite3_errcode(m_copy)), BackupSide::Place, {}};
        CopyEnd end = copyAll();
        end.counts = std::move(counts);
        return end;
    }

private:
    /// Keeps a read transaction open, so that all pages come from one snapshot.
    bool hold()
    {
        m_error = runSql(m_store, u"BEGIN"_s);
        if (!m_error)
            m_error = runSql(m_store, u"SELECT count(*) FROM sqlite_master"_s);
        m_held = !m_error;
        return m_held;
    }

    CopyEnd copyAll()
    {
        int code = SQLITE_OK;
        while (code == SQLITE_OK) {
            code = sqlite3_backup_step(m_backup.get(), pagesInOneStep);
            if (code == SQLITE_OK && !m_watch({BackupProgress::Stage::Copying, percent()}))
                return {true, {}, {}, {}};
            if (code == SQLITE_OK && !m_held && !giveWay())
                return {false, m_error, BackupSide::Store, {}};
        }
        if (code != SQLITE_DONE)
            return {false, errorOf(m_copy, code), sideOf(code, fileOf(m_copy)), {}};
        return {!m_watch({BackupProgress::Stage::Copying, 100}), {}, {}, {}};
    }

    /// Lets tills write between two steps, unless they have made the copy begin anew too often.
    bool giveWay()
    {
        const int left = sqlite3_backup_remaining(m_backup.get());
        if (m_left >= 0 && left >= m_left) // a step that goes on leaves fewer
            ++m_restarts;
        m_left = left;
        if (m_restarts >= mostRestarts)
            return hold();
        std::this_thread::sleep_for(breather);
        return true;
    }

    [[nodiscard]] int percent() const
    {
        const qint64 all = sqlite3_backup_pagecount(m_backup.get());
        const qint64 left = sqlite3_backup_remaining(m_backup.get());
        return all > 0 ? static_cast<int>((all - left) * 100 / all) : 0;
    }

    sqlite3 *m_store;
    sqlite3 *m_copy;
    const BackupWatch &m_watch;
    std::unique_ptr<sqlite3_backup, FinishBackup> m_backup;
    std::optional<SqlError> m_error;
    bool m_held = false;
    int m_left = -1;
    int m_restarts = 0;
};

} // namespace

RowCounts countRows(sqlite3 *database)
{
    RowCounts counts;
    for (const StoreTable &table : storeTables()) {
        SqliteStatement query(database, u"SELECT count(*) FROM "_s + table.name);
        if (query.next())
            counts.insert(table.name, query.number(0));
    }
    return counts;
}

Result<SqliteDatabase, SqlError> openToCopy(const QString &store)
{
    auto source = openDatabase(store, OpenMode::Write);
    if (!source)
        return source;
    waitForTills(source->get());
    if (const auto error = runSql(source->get(), u"PRAGMA query_only = 1"_s))
        return Unexpected(*error);
    return source;
}

CopyEnd copyStore(const QString &store, sqlite3 *copy, const BackupWatch &watch)
{
    const auto source = openToCopy(store);
    if (!source)
        return {false, source.error(), BackupSide::Store, {}};
    return Copy(source->get(), copy, watch).run();
}

CopyEnd copyOpenStore(sqlite3 *store, sqlite3 *copy, const BackupWatch &watch)
{
    waitForTills(store);
    return Copy(store, copy, watch).run();
}

QString copyProblem(const SqlError &error, BackupSide side)
{
    const bool isStore = side == BackupSide::Store;
    switch (error.code) {
    case SQLITE_FULL:
        return isStore ? u"There is no space left on the disk of the store file. Please free some."_s
                       : u"There is no space left at the place of the backup. Please free some, or choose another "
                         "place."_s;
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return u"Another program keeps the store file locked. Please try again."_s;
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
        return u"The store file is damaged. Keep the backups that you have.\n(%1)"_s.arg(error.reason);
    case SQLITE_IOERR:
    case SQLITE_CANTOPEN:
    case SQLITE_READONLY:
        if (isStore)
            return u"The store file cannot be read; the place of the backup is not to blame. Check the disk of the "
                   "store, and keep the backups that you have.\n(%1)"_s.arg(error.reason);
        return u"The place of the backup cannot be written any more; the store is not to blame. If it is a stick, was "
               "it taken out?\n(%1)"_s.arg(error.reason);
    default:
        return u"The backup could not be made (%1)."_s.arg(error.reason);
    }
}

} // namespace harrowby::app
