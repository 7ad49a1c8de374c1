// SPDX-License-Identifier: MIT
#include "app/shop/store_guard.h"

#include "app/shop/busy_wait.h"
#include "basic/logging.h"
#include "engine/lost_files.h"

#include <QFile>

#include <sqlite3.h>

#include <chrono>
#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

using Finding = StoreWatch::Finding;
using Kind = StoreLoss::Kind;

constexpr std::chrono::milliseconds interval(500);
constexpr int mostPages = 1000; // of the log, above which a checkpoint runs also while the till is busy

thread_local const StoreGuard *passing = nullptr; // the guard that lets this thread's statements through

} // namespace

StoreGuard::StoreGuard(SqliteDatabase database, const QString &path, BusyWait &wait) :
    m_database(std::move(database)), m_path(path), m_wait(wait), m_handle(m_database.get()),
    m_watch(m_database.get(), path)
{
    m_timer.setInterval(interval);
    connect(&m_timer, &QTimer::timeout, this, &StoreGuard::tick);
    attach();
    check();
}

StoreGuard::~StoreGuard()
{
    tick();
    const bool leaves = isLost();
    const LogFiles files = logFiles();
    if (!leaves)
        m_handle.leaveAtClosing(false);
    detach();
    m_database.reset();
    if (leaves && m_watch.hasLog())
        removeLeftLog(files);
}

void StoreGuard::attach()
{
    sqlite3 *database = m_database.get();
    // No checkpoint at closing: a program that ends otherwise leaves the log to the next start, which checks it first.
    m_handle.leaveAtClosing(true);
    sqlite3_commit_hook(database, &StoreGuard::onCommit, this);
    sqlite3_wal_hook(database, &StoreGuard::onLogWritten, this); // replaces SQLite's automatic checkpoint
    if (m_watch.hasLog())
        markLog(m_watch.filePath(), m_watch.logPath());
    else
        sqlite3_trace_v2(database, SQLITE_TRACE_PROFILE, &StoreGuard::onStatementDone, this);
}

void StoreGuard::detach()
{
    sqlite3 *database = m_database.get();
    forgetLoss(database);
    sqlite3_commit_hook(database, nullptr, nullptr);
    sqlite3_wal_hook(database, nullptr, nullptr);
    sqlite3_trace_v2(database, 0, nullptr, nullptr);
    sqlite3_set_authorizer(database, nullptr, nullptr);
    sqlite3_progress_handler(database, 0, nullptr, nullptr);
    sqlite3_busy_handler(database, nullptr, nullptr);
}

int StoreGuard::onCommit(void *self) noexcept
try {
    return static_cast<StoreGuard *>(self)->check() ? 0 : 1;
} catch (...) {
    return 1;
}

int StoreGuard::onLogWritten(void *self, sqlite3 *, const char *, int pages) noexcept
try {
    auto *guard = static_cast<StoreGuard *>(self);
    guard->m_watch.followLog();
    if (!guard->check())
        return SQLITE_READONLY_DBMOVED;
    if (pages >= mostPages)
        guard->moveLog(SQLITE_CHECKPOINT_PASSIVE);
    return SQLITE_OK;
} catch (...) {
    return SQLITE_NOMEM;
}

/// Without a write-ahead log there is no hook after a write. A statement that committed just before the file was moved
/// has reached the file.
int StoreGuard::onStatementDone(unsigned, void *self, void *statement, void *) noexcept
try {
    if (sqlite3_stmt_readonly(static_cast<sqlite3_stmt *>(statement)) == 0)
        (void)static_cast<StoreGuard *>(self)->check();
    return 0;
} catch (...) {
    return 0;
}

int StoreGuard::onPrepare(void *self, int, const char *, const char *, const char *, const char *) noexcept
{
    return static_cast<const StoreGuard *>(self)->mayPass() ? SQLITE_OK : SQLITE_DENY;
}

int StoreGuard::onProgress(void *self) noexcept
{
    return static_cast<const StoreGuard *>(self)->mayPass() ? 0 : 1;
}

bool StoreGuard::check()
{
    if (isLost())
        return false;
    if (const Finding finding = m_watch.check(); finding != Finding::Fine)
        lose(finding);
    return !isLost();
}

void StoreGuard::lose(Finding finding)
{
    const auto opened = openFileOf(m_watch.file());
    const QString nowAt = opened ? opened->name : QString();
    StoreLoss loss;
    loss.kind = kindOf(finding, nowAt);
    loss.path = m_path;
    loss.nowAt = nowAt;
    m_logIsForeignTo = finding == Finding::Overwritten || loss.kind == Kind::Overwritten || m_watch.isWrittenByOthers();
    m_loss = std::move(loss);
    shut();
    qCWarning(lcStore).noquote() << lossHeadline(*m_loss) << "Nothing is being saved any more.";
    // May be called within a statement, where no checkpoint can run and no box may be shown: do both later.
    QTimer::singleShot(0, this, &StoreGuard::tick);
}

Kind StoreGuard::kindOf(Finding finding, const QString &nowAt)
{
    switch (finding) {
    case Finding::PathTaken:
        return Kind::Replaced;
    case Finding::Overwritten:
        return Kind::Overwritten;
    case Finding::LogGone: {
        // Another program of this store has renamed the log, because it found the file lost first.
        const auto log = openFileOf(m_watch.log());
        return log && isPutAside(log->name) ? Kind::Overwritten : Kind::LogLost;
    }
    default:
        return nowAt.isEmpty() ? Kind::Removed : Kind::Moved;
    }
}

/// From here on every statement fails, running ones included.
void StoreGuard::shut()
{
    sqlite3 *database = m_database.get();
    noteLoss(database, lossHeadline(*m_loss));
    sqlite3_set_authorizer(database, &StoreGuard::onPrepare, this);
    sqlite3_progress_handler(database, 1, &StoreGuard::onProgress, this);
}

void StoreGuard::tick()
{
    if (check()) {
        if (m_watch.hasLog() && m_watch.logSize() > 0)
            moveLog(SQLITE_CHECKPOINT_TRUNCATE);
        return;
    }
    if (m_passes > 0)
        return; // a rescue copy is reading the log
    const bool wasComplete = m_loss->isComplete;
    const QString wasAside = m_loss->logAside;
    bringLogAway();
    if (!m_told || wasComplete != m_loss->isComplete || wasAside != m_loss->logAside) {
        m_told = true;
        Q_EMIT lossChanged();
    }
}

/// Checkpoints the log (PASSIVE): as far as no reader or writer is in the way, without waiting.
void StoreGuard::moveLog(int mode)
{
    sqlite3 *database = m_database.get();
    sqlite3_busy_handler(database, nullptr, nullptr);
    // The passive checkpoint takes no lock that a till waits for; after it, truncating the log is quick.
    const int moved = sqlite3_wal_checkpoint_v2(database, "main", SQLITE_CHECKPOINT_PASSIVE, nullptr, nullptr);
    if (mode != SQLITE_CHECKPOINT_PASSIVE && moved == SQLITE_OK)
        sqlite3_wal_checkpoint_v2(database, "main", mode, nullptr, nullptr);
    noteMove(moved);
    m_watch.accept();
    m_wait.attach(database);
}

/// SQLITE_BUSY is no failure. After a failure the log still holds the changes; it is told once, until it works again.
void StoreGuard::noteMove(int code)
{
    const bool fails = code != SQLITE_OK && code != SQLITE_BUSY && code != SQLITE_LOCKED;
    if (fails && !std::exchange(m_moveFails, true))
        qCWarning(lcStore) << "The log could not be moved into the store file:" << sqlite3_errstr(code);
    else if (!fails)
        m_moveFails = false;
}

/// Once the store is lost: checkpoints the log into the file that was opened, or renames the log when that file was
/// overwritten, and never leaves it beside another file.
void StoreGuard::bringLogAway()
{
    if (!m_watch.hasLog()) {
        m_loss->isComplete = !m_logIsForeignTo;
        return;
    }
    if (!m_loss->isComplete && !m_logIsForeignTo)
        m_loss->isComplete = emptyLog();
    if (m_loss->isComplete) {
        // The checkpoint has emptied the log, which had been renamed before.
        if (!m_loss->logAside.isEmpty())
            QFile::remove(std::exchange(m_loss->logAside, QString()));
        return;
    }
    const bool isBesideAnother = m_logIsForeignTo || m_loss->kind == Kind::Replaced;
    if (isBesideAnother && m_loss->logAside.isEmpty() && m_watch.logSize() > 0)
        m_loss->logAside = putLogAside(logFiles());
}

bool StoreGuard::emptyLog()
{
    sqlite3 *database = m_database.get();
    const Pass pass(*this);
    if (sqlite3_get_autocommit(database) == 0)
        (void)runSql(database, u"ROLLBACK"_s);
    sqlite3_busy_handler(database, nullptr, nullptr);
    sqlite3_wal_checkpoint_v2(database, "main", SQLITE_CHECKPOINT_PASSIVE, nullptr, nullptr);
    return sqlite3_wal_checkpoint_v2(database, "main", SQLITE_CHECKPOINT_TRUNCATE, nullptr, nullptr) == SQLITE_OK;
}

DbFailure StoreGuard::explained(const DbFailure &failure)
{
    if (check())
        return failure;
    return {failure.kind, failure.statement, lossHeadline(*m_loss), SQLITE_READONLY_DBMOVED};
}

LogFiles StoreGuard::logFiles() const
{
    return {m_watch.logPath(), m_watch.logIndexPath(), m_watch.log(), m_watch.logIndex()};
}

bool StoreGuard::mayPass() const
{
    return passing == this;
}

StoreGuard::Pass::Pass(StoreGuard &guard) : m_guard(guard), m_outer(std::exchange(passing, &guard))
{
    ++m_guard.m_passes;
}

StoreGuard::Pass::~Pass()
{
    --m_guard.m_passes;
    passing = m_outer;
}

} // namespace harrowby::app
