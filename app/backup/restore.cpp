// SPDX-License-Identifier: MIT
#include "app/backup/restore.h"

#include "app/backup/backup.h"
#include "app/backup/backup_copy.h"
#include "app/backup/backup_names.h"
#include "app/backup/backup_place.h"
#include "app/backup/carried_records.h"
#include "app/backup/damaged_files.h"
#include "app/backup/server_restore.h"
#include "app/backup/stoppable_check.h"
#include "app/backup/store_hold.h"
#include "app/backup/store_locked.h"
#include "app/records/deeds.h"
#include "app/records/sqlite_records.h"
#include "app/shop/busy_wait.h"
#include "app/shop/file_facts.h"
#include "app/shop/store_judge.h"
#include "app/shop/store_open.h"
#include "app/shop/workshop.h"
#include "basic/logging.h"
#include "basic/store_address.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>

#include <sqlite3.h>

#include <memory>
#include <optional>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

using RestoreEnd = RestoreResult::Outcome;

const auto reading = u"The backup is being read \u2026"_s;
const auto keeping = u"The present store is being kept \u2026"_s;
const auto copyName = u"restored.db"_s;
const auto byHand =
    u"To bring a backup back all the same, put the store file and the files beside it (-wal, -shm) away, "
    "and copy the backup to its place, under its name."_s;

const auto notKept = u"The present store could not be kept, so nothing was restored.\n%1"_s;

/// How it has ended, when it has.
using End = std::optional<RestoreResult>;

class Restore
{
public:
    Restore(const RestoreOrder &order, const WorkWatch &watch) : m_order(order), m_watch(watch), m_damaged(order.store)
    {
    }

    RestoreResult run()
    {
        for (const auto step : {&Restore::fetch, &Restore::lock, &Restore::keep, &Restore::complete, &Restore::replace,
                                &Restore::openAgain}) {
            if (const End end = (this->*step)())
                return *end;
        }
        return {RestoreEnd::Done, {}, m_kept, true, m_damaged.names()};
    }

private:
    /// Copies the backup beside the store, so that the last step reads no stick that may be taken out.
    [[nodiscard]] End fetch();
    [[nodiscard]] End lock();
    [[nodiscard]] End keep();
    [[nodiscard]] End complete();
    [[nodiscard]] End replace();
    [[nodiscard]] End openAgain();

    /// The way of a damaged store: its files are copied as they are, get their names, and it is opened as far as it can
    /// be.
    [[nodiscard]] End copyDamaged();
    [[nodiscard]] End lockDamaged();
    [[nodiscard]] bool storeIsBad() const;

    [[nodiscard]] End checkCopy();
    [[nodiscard]] CopyEnd copyFrom(sqlite3 *backup);
    [[nodiscard]] QString keepPlace(const QString &why) const;

    [[nodiscard]] bool goesOn(const QString &words, int percent = WorkStep::unknown) const
    {
        return m_watch({words, percent});
    }
    [[nodiscard]] RestoreResult stopped() const { return {RestoreEnd::Stopped, {}, m_kept, false, m_damaged.names()}; }
    [[nodiscard]] RestoreResult failed(const QString &problem) const
    {
        qCWarning(lcStore).noquote() << "The restore of" << m_order.store << "failed:" << problem;
        const QString kept =
            m_damaged.names().isEmpty() || m_isReplaced ? QString() : u"\n"_s + damagedWords(m_damaged.names());
        return {RestoreEnd::Failed, problem + kept, m_kept, m_isReplaced, m_damaged.names()};
    }

    const RestoreOrder &m_order;
    const WorkWatch &m_watch;
    std::unique_ptr<Workshop> m_workshop;
    SqliteDatabase m_copy;  ///< of the backup
    SqliteDatabase m_store; ///< this program's alone
    DamagedFiles m_damaged;
    QString m_kept;
    bool m_isRuined = false; ///< SQLite finds no database in the store's file
    bool m_isReplaced = false;
};

/// For a backup that cannot be opened as a store: the reason, and what to do.
QString refusal(const StoreProblem &problem)
{
    return u"This backup cannot be used. The store is as it was.\n\n"_s + whatIsWrong(problem);
}

struct FinishRestore
{
    void operator()(sqlite3_backup *backup) const noexcept { sqlite3_backup_finish(backup); }
};

QString words(const SqlError &error)
{
    switch (error.code) {
    case SQLITE_FULL:
        return u"There is no space left on the disk of the store. Please free some. The store is as it was."_s;
    case SQLITE_IOERR:
    case SQLITE_CANTOPEN:
    case SQLITE_READONLY:
        return u"The disk of the store cannot be written (%1). The store is as it was."_s.arg(error.reason);
    default:
        return u"The store could not be replaced (%1). It is as it was."_s.arg(error.reason);
    }
}

End Restore::fetch()
{
    if (!goesOn(reading))
        return stopped();
    if (const auto words = noBackupWords(m_order.store, m_order.backup))
        return failed(*words);
    BusyWait wait;
    const auto backup = openJudged(m_order.backup, wait, wait_times::longestCheck);
    if (!backup)
        return failed(refusal(backup.error()));
    const QString folder = QFileInfo(realTarget(m_order.store)).absolutePath();
    removeLeftWorkshops(folder);
    m_workshop = std::make_unique<Workshop>(folder, Workshop::Purpose::Backup);
    if (!m_workshop->isValid())
        return failed(u"Nothing can be written beside the store: %1"_s.arg(m_workshop->errorString()));
    auto copy = openDatabase(m_workshop->filePath(copyName), OpenMode::Create);
    if (!copy)
        return failed(words(copy.error()));
    m_copy = *std::move(copy);
    const CopyEnd end = copyFrom(backup->get());
    if (end.stopped)
        return stopped();
    if (end.error && end.side == BackupSide::Store)
        return failed(u"The backup cannot be read (%1). The store is as it was."_s.arg(end.error->reason));
    return end.error ? failed(words(*end.error)) : checkCopy();
}

CopyEnd Restore::copyFrom(sqlite3 *backup)
{
    return copyOpenStore(backup, m_copy.get(),
                         [this](const BackupProgress &progress) { return goesOn(reading, progress.percent); });
}

/// The whole of it, and by the rules once more: the file may have changed while it was copied.
End Restore::checkCopy()
{
    const auto saying = u"The backup is being checked \u2026"_s;
    const QuickCheck check = checkUnlessStopped(m_copy.get(), [&] { return goesOn(saying); });
    if (!goesOn(saying))
        return stopped();
    if (check.result != QuickCheck::Result::Sound)
        return failed(u"The backup is damaged (%1). The store is as it was. Please choose an older backup."_s.arg(
            check.error.reason));
    if (const auto error = runSql(m_copy.get(), u"PRAGMA journal_mode = DELETE"_s))
        return failed(words(*error));
    BusyWait wait;
    const auto judged = openJudged(m_workshop->filePath(copyName), wait, wait_times::longestCheck);
    return judged ? End() : failed(refusal(judged.error()));
}

/// Judged first, as opening a file in another one's log would write that into it.
End Restore::lock()
{
    if (!goesOn(u"Making sure that nobody else has the store open \u2026"_s))
        return stopped();
    // Looking at it undoes what a crash has left half done. Should that not make it sound, it is kept as it is now.
    if (QFileInfo(journalOf(m_order.store)).size() > 0) {
        if (const End end = copyDamaged())
            return end;
    }
    bool isDamaged = logIsDamaged(m_order.store);
    BusyWait wait;
    const auto problem = judgeStore(m_order.store, wait);
    if (problem && isDamage(problem->kind))
        isDamaged = true;
    else if (problem && problem->kind != ProblemKind::Locked)
        return failed(problem->text + u"\n\n"_s + byHand);
    if (isDamaged)
        return lockDamaged();
    auto store = openStoreAlone(m_order.store);
    if (!store)
        return store.error().isDamaged ? lockDamaged() : failed(store.error().text);
    m_store = *std::move(store);
    return {};
}

QString Restore::keepPlace(const QString &why) const
{
    return QDir(m_order.keepIn).absoluteFilePath(nameOfReplaced(m_order.store, why, QDateTime::currentDateTime()));
}

End Restore::copyDamaged()
{
    StoreHold hold;
    if (const auto problem = hold.take(m_order.store))
        return failed(*problem);
    const auto copied = m_damaged.copy(hold, keepPlace(u"damaged-before-restore"_s),
                                       [this](int percent) { return goesOn(keeping, percent); });
    if (copied.stopped)
        return stopped();
    return copied.problem.isEmpty() ? End() : failed(notKept.arg(copied.problem));
}

End Restore::lockDamaged()
{
    if (!m_damaged.isCopied()) {
        if (const End end = copyDamaged())
            return end;
        if (!m_damaged.isStillSo())
            return failed(u"Another program has just written to the store. Please close it, and try again."_s);
    }
    if (const auto named = m_damaged.giveNames(); !named.problem.isEmpty())
        return failed(notKept.arg(named.problem));
    m_kept = m_damaged.names().constFirst();
    auto store = openDamagedStoreAlone(m_order.store);
    if (!store)
        return failed(store.error());
    m_store = std::move(store->database);
    m_isRuined = store->isRuined;
    return {};
}

End Restore::keep()
{
    if (!m_kept.isEmpty())
        return {};
    const BackupWatch watch = [this](const BackupProgress &step) {
        return goesOn(keeping, step.stage == BackupProgress::Stage::Checking ? WorkStep::unknown : step.percent);
    };
    const BackupResult kept = backUpOpenStore(m_store.get(), m_order.store, keepPlace(u"before-restore"_s), watch);
    if (kept.outcome == BackupResult::Outcome::Stopped)
        return stopped();
    if (kept.outcome == BackupResult::Outcome::Failed && storeIsBad()) {
        m_store.reset();
        return lockDamaged();
    }
    if (kept.outcome == BackupResult::Outcome::Failed)
        return failed(notKept.arg(kept.problem));
    m_kept = kept.file;
    return {};
}

/// The look at it may have been cut short, or its disk has failed since.
bool Restore::storeIsBad() const
{
    return checkUnlessStopped(m_store.get(), [this] { return goesOn(keeping); }).result == QuickCheck::Result::Damaged;
}

End Restore::complete()
{
    if (!m_isRuined)
        carryRecords(m_store.get(), m_copy.get());
    SqliteRecords records(m_copy.get());
    const QString what = u"%1; the store before it: %2"_s.arg(m_order.backup, m_kept);
    if (const auto failure = Deeds(records, m_order.place).add({deed::restored, m_order.who, what}))
        return failed(u"It cannot be noted who restores, so nothing was restored (%1)."_s.arg(failure->reason));
    return {};
}

End Restore::replace()
{
    const auto saying = u"The backup is being put in place \u2026"_s;
    constexpr int pagesInOneStep = 256;
    if (!goesOn(saying, 0))
        return stopped();
    const std::unique_ptr<sqlite3_backup, FinishRestore> backup(
        sqlite3_backup_init(m_store.get(), "main", m_copy.get(), "main"));
    int code = backup ? SQLITE_OK : sqlite3_errcode(m_store.get());
    while (backup && code == SQLITE_OK) {
        code = sqlite3_backup_step(backup.get(), pagesInOneStep);
        const int all = sqlite3_backup_pagecount(backup.get());
        if (code == SQLITE_OK && !goesOn(saying, percentOf(all - sqlite3_backup_remaining(backup.get()), all)))
            return stopped();
    }
    if (code != SQLITE_DONE)
        return failed(words({code & 0xff, QString::fromUtf8(sqlite3_errstr(code))}));
    m_isReplaced = true;
    return {};
}

/// As the next till does it: log and indexes. The rows are counted before, as that till may be the first to come in.
End Restore::openAgain()
{
    if (m_isRuined) { // what was taken for empty is opened anew, unless another has been quicker
        m_store.reset();
        auto store = openStoreAlone(m_order.store);
        m_store = store ? *std::move(store) : SqliteDatabase();
    } else {
        (void)sqlite3_db_release_memory(m_store.get()); // what is counted is read from the file
    }
    const bool isAsWritten = !m_store || countRows(m_store.get()) == countRows(m_copy.get());
    m_copy.reset();
    m_store.reset();
    m_workshop.reset();
    (void)goesOn(u"The store is being opened \u2026"_s);
    BusyWait wait;
    const auto store = openStore(m_order.store, wait);
    const auto advice = u"The store that was there before is kept as \"%1\"."_s.arg(m_kept);
    if (!store)
        return failed(
            u"The backup is in place, but the store cannot be opened.\n%1\n%2"_s.arg(store.error().text, advice));
    if (!isAsWritten)
        return failed(u"The backup is in place, but the store does not read back as it was written: its disk may be "
                      "failing.\n%1"_s.arg(advice));
    return {};
}

} // namespace

QString damagedWords(const QStringList &kept)
{
    return u"The files of the damaged store are kept as they were: %1"_s.arg(kept.join(u", "_s));
}

RestoreResult restoreStore(const RestoreOrder &order, const WorkWatch &watch)
{
    return isServer(order.store) ? restoreServer(order, watch) : Restore(order, watch).run();
}

} // namespace harrowby::app
