// SPDX-License-Identifier: MIT
#include "app/backup/store_transfer.h"

#include "app/backup/backup.h"
#include "app/backup/backup_copy.h"
#include "app/backup/store_locked.h"
#include "app/backup/store_users.h"
#include "app/copy/server_copy.h"
#include "app/records/server_engine.h"
#include "app/records/sqlite_records.h"
#include "app/records/store_records.h"
#include "app/shop/busy_wait.h"
#include "app/shop/file_facts.h"
#include "app/shop/store_judge.h"
#include "basic/logging.h"

#include <QFile>

#include <memory>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

using How = TransferEnd::Outcome;

const auto theCopying = u"the copying"_s;

TransferEnd ended(How outcome, const QString &problem)
{
    qCWarning(lcStore).noquote() << "The store was not copied:" << problem;
    return {.outcome = outcome, .problem = problem};
}

TransferEnd ended(const CopyFailure &failure)
{
    if (failure.stopped)
        return {.outcome = How::Stopped};
    if (failure.isUnknown)
        return ended(How::Failed, u"The server did not say whether the store was copied (%1). Do the same once more "
                                  "when the server is there again: if it was, this says which rows the server has, "
                                  "and nothing is copied twice."_s.arg(failure.problem));
    const QString advice = failure.advice.isEmpty() ? QString() : u'\n' + failure.advice;
    return ended(How::Failed, u"Nothing was copied. %1"_s.arg(failure.problem) + advice);
}

/// For this program alone.
Result<SqliteDatabase, TransferEnd> openFile(const QString &file)
{
    if (!nameIsTaken(file))
        return Unexpected(ended(How::NotOpened, u"There is no store file \"%1\"."_s.arg(file)));
    BusyWait wait;
    const auto problem = judgeStore(file, wait);
    if (problem && problem->kind != ProblemKind::Locked)
        return Unexpected(ended(How::NotOpened, problem->text));
    auto opened = openStoreAlone(file, theCopying);
    if (!opened)
        return Unexpected(ended(How::Failed, opened.error().text));
    return *std::move(opened);
}

struct Server
{
    std::unique_ptr<StoreRecords> records;
    const ServerEngine *engine = nullptr;
    StoreTrace trace; ///< from when it was opened
};

/// Nobody else has it open.
Result<Server, TransferEnd> openServer(const QString &target, Access access)
{
    const auto engine = serverEngine();
    if (!engine)
        return Unexpected(ended(How::NotOpened, engine.error()));
    auto opened = openStoreRecords(target, access);
    if (!opened)
        return Unexpected(ended(How::NotOpened, opened.error()));
    if (access == Access::Write) {
        if (const auto failure = unlessAllowed((*opened)->records(), ServerRows::MustBeNone))
            return Unexpected(ended(*failure));
    }
    const auto users = serverUsersWhoStay((*opened)->records());
    if (!users)
        return Unexpected(ended(users.error()));
    if (!users->isEmpty())
        return Unexpected(ended(How::Failed, serverInUse(*users, theCopying)));
    const auto trace = traceOf((*opened)->records());
    if (!trace)
        return Unexpected(ended(trace.error()));
    return Server{*std::move(opened), *engine, *trace};
}

/// Sales of a till that came meanwhile, or has come and gone, would be missing in the file.
TransferEnd unlessSomebodyCame(const Server &server, const BackupResult &made)
{
    const auto users = serverUsersWhoStay(server.records->records());
    const auto written = unlessUnwritten(server.records->records(), server.trace);
    if (users && users->isEmpty() && !written)
        return {.outcome = How::Done};
    QFile::remove(made.file);
    if (!users)
        return ended(users.error());
    return users->isEmpty() ? ended(*written) : ended(How::Failed, serverInUse(*users, theCopying));
}

QHash<QString, std::int64_t> rowsOf(const QString &file)
{
    QHash<QString, std::int64_t> rows;
    const auto copy = openDatabase(file, OpenMode::Read);
    const RowCounts counts = copy ? countRows(copy->get()) : RowCounts();
    for (auto count = counts.cbegin(); count != counts.cend(); ++count)
        rows.insert(count.key(), count.value());
    return rows;
}

} // namespace

TransferEnd copyFileToServer(const QString &file, const QString &server, const WorkWatch &watch)
{
    const auto store = openFile(file);
    if (!store)
        return store.error();
    const auto opened = openServer(server, Access::Write);
    if (!opened)
        return opened.error();
    SqliteRecords from(store->get());
    const ColumnRules rules(*opened->engine);
    StoreCopy copy(from, rules, watch);
    const auto left = foreignParts(from);
    if (!left)
        return ended(left.error());
    const auto unfit = copy.unfitRows();
    if (!unfit)
        return ended(unfit.error());
    if (unfit->count > 0)
        return {.outcome = How::RowsRefused, .unfit = *unfit};
    const auto rows = copyIntoServer(copy, opened->records->records(), {ServerRows::MustBeNone, theCopying});
    if (!rows)
        return ended(rows.error());
    return {.outcome = How::Done, .rows = *rows, .left = *left};
}

TransferEnd copyServerToFile(const QString &server, const QString &file, const WorkWatch &watch)
{
    if (nameIsTaken(file))
        return ended(How::Failed, u"There is a file \"%1\" already; a store is copied to a new file only."_s.arg(file));
    const auto opened = openServer(server, Access::Read);
    if (!opened)
        return opened.error();
    const BackupResult made = backUpStore(server, file, false, [&](const BackupProgress &step) {
        const bool isChecked = step.stage == BackupProgress::Stage::Checking;
        return watch({isChecked ? comparingWords.toString() : u"The rows are being copied \u2026"_s,
                      isChecked ? WorkStep::unknown : step.percent});
    });
    if (made.outcome == BackupResult::Outcome::Stopped)
        return {.outcome = How::Stopped};
    if (made.outcome == BackupResult::Outcome::Failed)
        return ended(How::Failed, u"Nothing was copied. %1"_s.arg(made.problem));
    TransferEnd end = unlessSomebodyCame(*opened, made);
    if (end.outcome == How::Done)
        end.rows = rowsOf(made.file);
    return end;
}

} // namespace harrowby::app
