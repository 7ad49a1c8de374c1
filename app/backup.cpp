// SPDX-License-Identifier: MIT
#include "backup.h"

#include "backup_copy.h"
#include "backup_place.h"
#include "basic/logging.h"
#include "file_naming.h"
#include "quick_check.h"

#include <QFileInfo>
#include <QTemporaryDir>

#include <sqlite3.h>

#include <cerrno>
#include <condition_variable>
#include <cstring>
#include <mutex>
#include <thread>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

using Outcome = BackupResult::Outcome;

BackupResult failed(const QString &problem)
{
    qCWarning(lcStore).noquote() << "The backup failed:" << problem;
    return {Outcome::Failed, problem, 0};
}

/// Asks the watch while SQLite walks through the pages, which only an interrupt from elsewhere ends.
class StopWatch
{
public:
    StopWatch(sqlite3 *database, const BackupWatch &watch) : m_thread([=, this, &watch] { run(database, watch); }) {}
    ~StopWatch()
    {
        {
            const std::lock_guard lock(m_mutex);
            m_done = true;
        }
        m_changed.notify_one();
        m_thread.join();
    }
    StopWatch(const StopWatch &) = delete;
    StopWatch &operator=(const StopWatch &) = delete;

private:
    void run(sqlite3 *database, const BackupWatch &watch)
    {
        std::unique_lock lock(m_mutex);
        bool stopped = false;
        while (!m_done) {
            if (!stopped && !watch({BackupProgress::Stage::Checking, 100}))
                stopped = true;
            if (stopped)
                sqlite3_interrupt(database);
            m_changed.wait_for(lock, std::chrono::milliseconds(50), [this] { return m_done; });
        }
    }

    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_done = false;
    std::thread m_thread;
};

QuickCheck checkUnlessStopped(sqlite3 *copy, const BackupWatch &watch)
{
    const StopWatch stopWatch(copy, watch);
    return quickCheck(copy, std::chrono::hours(1));
}

BackupResult checkCopy(sqlite3 *copy, const RowCounts &expected, const BackupWatch &watch)
{
    const QuickCheck check = checkUnlessStopped(copy, watch);
    if (!watch({BackupProgress::Stage::Checking, 100}))
        return {Outcome::Stopped, {}, 0};
    if (check.result != QuickCheck::Result::Sound)
        return failed(u"The copy is not sound, because the store file is damaged or the place of the backup is. "
                      "Keep the backups that you have.\n(%1)"_s.arg(check.error.reason));
    if (!expected.isEmpty() && countRows(copy) != expected)
        return failed(u"The copy does not hold as many rows as the store. Please try again."_s);
    return {Outcome::Done, {}, 0};
}

/// One plain file, which can be read from any medium: without a log beside it.
BackupResult closeCopy(Database &copy)
{
    const auto error = runSql(copy.get(), u"PRAGMA journal_mode = DELETE"_s);
    copy.reset();
    return error ? failed(copyProblem(*error)) : BackupResult{Outcome::Done, {}, 0};
}

using CopyInto = std::function<CopyEnd(sqlite3 *copy, RowCounts &counts)>;

BackupResult makeCopy(const CopyInto &copyInto, const QString &file, const BackupWatch &watch)
{
    Database copy;
    if (auto error = openDatabase(file, OpenMode::Create, copy))
        return failed(copyProblem(*error));
    RowCounts counts;
    const CopyEnd end = copyInto(copy.get(), counts);
    if (end.stopped)
        return {Outcome::Stopped, {}, 0};
    if (end.error)
        return failed(copyProblem(*end.error));
    if (auto result = checkCopy(copy.get(), counts, watch); result.outcome != Outcome::Done)
        return result;
    return closeCopy(copy);
}

int nameCopy(const QString &file, const QString &target, bool replace)
{
    if (replace)
        return replaceFile(file, target);
    const int error = nameNewFile(file, target);
    // Some media know neither way of not replacing.
    const bool unknown = error == EPERM || error == ENOTSUP;
    return unknown && !QFileInfo::exists(target) ? replaceFile(file, target) : error;
}

BackupResult giveName(const QString &file, const QString &target, bool replace)
{
    int error = syncFile(file);
    if (error == 0)
        error = nameCopy(file, target, replace);
    if (error == EEXIST)
        return failed(u"A file \"%1\" has come to be there meanwhile. It was left as it is."_s.arg(target));
    if (error != 0)
        return failed(
            u"The backup could not be written to its place (%1)."_s.arg(QString::fromLocal8Bit(std::strerror(error))));
    syncFolder(QFileInfo(target).absolutePath());
    return {Outcome::Done, {}, QFileInfo(target).size()};
}

BackupResult copyTo(const QString &target, bool replace, const CopyInto &copyInto, const BackupWatch &watch)
{
    const QString place = realTarget(target);
    const QTemporaryDir workshop(QFileInfo(place).absolutePath() + u"/.harrowby-backup-XXXXXX"_s);
    if (!workshop.isValid())
        return failed(u"Nothing can be written there: %1"_s.arg(workshop.errorString()));
    const QString file = workshop.filePath(u"backup.db"_s);
    if (auto result = makeCopy(copyInto, file, watch); result.outcome != Outcome::Done)
        return result;
    return giveName(file, place, replace);
}

} // namespace

BackupResult backUpStore(const QString &store, const QString &target, bool replace, const BackupWatch &watch)
{
    if (const QString problem = backupPlaceProblem(store, target); !problem.isEmpty())
        return failed(problem);
    const auto copyInto = [&](sqlite3 *copy, RowCounts &counts) { return copyStore(store, copy, watch, counts); };
    return copyTo(target, replace, copyInto, watch);
}

BackupResult rescueStore(sqlite3 *store, const QString &path, const QString &target, const BackupWatch &watch)
{
    if (const QString problem = backupPlaceProblem(path, target); !problem.isEmpty())
        return failed(problem);
    const auto copyInto = [&](sqlite3 *copy, RowCounts &counts) { return copyOpenStore(store, copy, watch, counts); };
    return copyTo(target, false, copyInto, watch);
}

} // namespace harrowby::app
