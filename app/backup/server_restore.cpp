// SPDX-License-Identifier: MIT
#include "app/backup/server_restore.h"

#include "app/backup/backup.h"
#include "app/backup/backup_names.h"
#include "app/backup/good_backups.h"
#include "app/backup/stoppable_check.h"
#include "app/copy/server_copy.h"
#include "app/copy/unfit_words.h"
#include "app/records/deeds.h"
#include "app/records/server_engine.h"
#include "app/records/sqlite_records.h"
#include "app/shop/busy_wait.h"
#include "app/shop/store_judge.h"
#include "app/work/watched_store.h"
#include "basic/logging.h"
#include "basic/store_address.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>

#include <memory>
#include <optional>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

using RestoreEnd = RestoreResult::Outcome;
using End = std::optional<RestoreResult>; ///< how it has ended, when it has

const auto asItWas = u" The store is as it was."_s;
const auto aRestore = u"a restore"_s;
constexpr qsizetype mostToldRows = 3;

class ServerRestore
{
public:
    ServerRestore(const RestoreOrder &order, const WorkWatch &watch) : m_order(order), m_watch(watch) {}

    RestoreResult run()
    {
        for (const auto step : {&ServerRestore::open, &ServerRestore::look, &ServerRestore::reach,
                                &ServerRestore::lookAtRows, &ServerRestore::keep, &ServerRestore::replace}) {
            if (const End end = (this->*step)())
                return *end;
        }
        return {RestoreEnd::Done, {}, m_kept, true};
    }

private:
    [[nodiscard]] End open();
    [[nodiscard]] End look();
    [[nodiscard]] End reach();
    [[nodiscard]] End lookAtRows();
    [[nodiscard]] End keep();
    [[nodiscard]] End replace();

    [[nodiscard]] std::optional<CopyFailure> noteDeed(Records &server) const;
    [[nodiscard]] Records &server() const { return m_server->records(); }
    [[nodiscard]] RestoreResult stopped() const { return {RestoreEnd::Stopped, {}, m_kept, false}; }
    [[nodiscard]] RestoreResult failed(const QString &problem) const
    {
        qCWarning(lcStore).noquote() << "The restore of" << storeWords(m_order.store) << "failed:" << problem;
        return {RestoreEnd::Failed, problem, m_kept, false};
    }
    [[nodiscard]] RestoreResult failed(const CopyFailure &failure) const;

    const RestoreOrder &m_order;
    const WorkWatch &m_watch;
    BusyWait m_wait;
    SqliteDatabase m_backup;
    std::unique_ptr<SqliteRecords> m_from;
    std::unique_ptr<WatchedStore> m_server;
    std::unique_ptr<ColumnRules> m_rules;
    std::unique_ptr<StoreCopy> m_copy;
    QString m_kept;
    StoreTrace m_trace; ///< from before it was kept
};

RestoreResult ServerRestore::failed(const CopyFailure &failure) const
{
    if (failure.stopped || (!failure.isUnknown && m_server && m_server->wasStopped()))
        return stopped();
    if (failure.isUnknown)
        return failed(u"The server did not say whether the backup is in place (%1). Look at the store when the server "
                      "is there again; to restore once more does no harm. What it held before is kept: %2"_s.arg(
                          failure.problem, m_kept));
    const QString advice = failure.advice.isEmpty() ? QString() : u'\n' + failure.advice;
    return failed(u"Nothing was restored (%1)."_s.arg(failure.problem) + asItWas + advice);
}

End ServerRestore::open()
{
    if (!m_watch({u"The backup is being read \u2026"_s}))
        return stopped();
    if (!QFileInfo(m_order.backup).isFile())
        return failed(u"There is no file \"%1\". If it is on a stick, plug that in first."_s.arg(m_order.backup));
    auto backup = openJudged(m_order.backup, m_wait, wait_times::longestCheck);
    if (!backup)
        return failed(u"This backup cannot be used. The store is as it was.\n\n"_s + whatIsWrong(backup.error()));
    m_backup = *std::move(backup);
    return {};
}

End ServerRestore::look()
{
    const WorkStep saying{u"The backup is being checked \u2026"_s};
    const QuickCheck check = checkUnlessStopped(m_backup.get(), [&] { return m_watch(saying); });
    if (!m_watch(saying))
        return stopped();
    if (check.result != QuickCheck::Result::Sound)
        return failed(u"The backup is damaged (%1). The store is as it was. Please choose an older backup."_s.arg(
            check.error.reason));
    return {};
}

End ServerRestore::reach()
{
    if (!m_watch({u"Making sure that nobody else has the store open \u2026"_s}))
        return stopped();
    const auto engine = serverEngine();
    if (!engine)
        return failed(engine.error());
    auto opened = WatchedStore::open(m_order.store, Access::Write, m_watch);
    if (!opened)
        return opened.error().wasStopped ? stopped() : failed(opened.error().words);
    m_server = *std::move(opened);
    m_rules = std::make_unique<ColumnRules>(**engine);
    m_from = std::make_unique<SqliteRecords>(m_backup.get());
    m_copy = std::make_unique<StoreCopy>(*m_from, *m_rules, m_server->watch());
    if (const auto failure = unlessAllowed(server(), ServerRows::Replace))
        return failed(*failure);
    const auto users = serverUsersWhoStay(server());
    if (!users)
        return failed(users.error());
    return users->isEmpty() ? End() : failed(serverInUse(*users, aRestore));
}

End ServerRestore::lookAtRows()
{
    const auto unfit = m_copy->unfitRows();
    if (!unfit)
        return failed(unfit.error());
    if (unfit->count == 0)
        return {};
    return failed(u"A server cannot hold all that is in this backup, so nothing was restored.%1\n%2"_s.arg(
        asItWas, unfitWords(*unfit, mostToldRows)));
}

End ServerRestore::keep()
{
    const auto trace = traceOf(server());
    if (!trace)
        return failed(trace.error());
    m_trace = *trace;
    const BackupWatch watch = [this](const BackupProgress &step) {
        const bool isChecked = step.stage == BackupProgress::Stage::Checking;
        return m_watch({u"The present store is being kept \u2026"_s, isChecked ? WorkStep::unknown : step.percent});
    };
    const QString name = nameOfReplaced(m_order.store, u"before-restore"_s, QDateTime::currentDateTime());
    const BackupResult kept = backUpStoreNumbered(m_order.store, QDir(m_order.keepIn).absoluteFilePath(name), watch);
    if (kept.outcome == BackupResult::Outcome::Stopped)
        return stopped();
    if (kept.outcome == BackupResult::Outcome::Failed)
        return failed(u"The present store could not be kept, so nothing was restored.\n%1"_s.arg(kept.problem));
    m_kept = kept.file;
    return {};
}

std::optional<CopyFailure> ServerRestore::noteDeed(Records &server) const
{
    const QString what = u"%1; the store before it: %2"_s.arg(m_order.backup, m_kept);
    const auto failure = Deeds(server, m_order.place).add({deed::restored, m_order.who, what});
    if (!failure)
        return {};
    return CopyFailure{u"it cannot be noted who restores: "_s + failure->reason, false, Records::isUnknown(*failure)};
}

/// What the store knows of its backups stays, too. A sale that came after the keeping would be in neither store.
End ServerRestore::replace()
{
    const QList<GoodBackup> noted = goodBackups(server());
    const auto rows = copyIntoServer(
        *m_copy, server(),
        {ServerRows::Replace, aRestore, m_trace, [this](Records &records) { return noteDeed(records); }});
    if (!rows)
        return failed(rows.error());
    for (auto backup = noted.crbegin(); backup != noted.crend(); ++backup)
        (void)noteGoodBackup(server(), *backup);
    return {};
}

} // namespace

RestoreResult restoreServer(const RestoreOrder &order, const WorkWatch &watch)
{
    return ServerRestore(order, watch).run();
}

} // namespace harrowby::app
