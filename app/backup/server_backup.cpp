// SPDX-License-Identifier: MIT
#include "app/backup/server_backup.h"

#include "app/copy/store_copy.h"
#include "app/records/server_engine.h"
#include "app/records/sqlite_records.h"
#include "app/shop/schema.h"
#include "app/shop/store_create.h"
#include "app/work/watched_store.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

CopyEnd stopped()
{
    return {true, {}, {}, {}};
}

CopyEnd endOf(const CopyFailure &failure)
{
    if (failure.stopped)
        return stopped();
    const SqlError error = {failure.engineCode & 0xff, failure.problem};
    if (failure.isOfCopy)
        return {false, error, BackupSide::Place, {}};
    const QString advice = failure.advice.isEmpty() ? QString() : u'\n' + failure.advice;
    return {false, error, BackupSide::Store, {}, u"The backup could not be made (%1)."_s.arg(failure.problem) + advice};
}

/// Sentences, for a person.
CopyEnd notOpened(const QString &why)
{
    return {false, SqlError{0, why}, BackupSide::Store, {}, u"The backup could not be made.\n"_s + why};
}

/// How far the copying is, as a backup tells it.
BackupProgress progressOf(const WorkStep &step)
{
    using Stage = BackupProgress::Stage;
    const bool isCompared = step.words == comparingWords;
    return {isCompared ? Stage::Checking : Stage::Copying, isCompared ? 100 : std::max(step.percent, 0)};
}

class Making
{
public:
    Making(WatchedStore &server, const ServerEngine &engine) :
        m_server(server), m_rules(engine), m_copy(server.records(), m_rules, server.watch())
    {
    }

    CopyEnd run(sqlite3 *copy)
    {
        const auto error = makeStoreIn(copy, [this](sqlite3 *store) { return fill(store); });
        if (m_failure)
            return endOf(*m_failure);
        return error ? CopyEnd{false, error, BackupSide::Place, {}} : CopyEnd{false, {}, {}, m_counts};
    }

private:
    std::optional<SqlError> fill(sqlite3 *store)
    {
        SqliteRecords records(store);
        const auto rows = m_copy.copyInto(records);
        if (!rows) {
            m_failure = rows.error();
            m_failure->stopped = m_failure->stopped || m_server.wasStopped();
            return SqlError{m_failure->engineCode & 0xff, m_failure->problem};
        }
        for (const StoreTable &table : storeTables())
            m_counts.insert(table.name, rows->value(table.name));
        return {};
    }

    WatchedStore &m_server;
    ColumnRules m_rules;
    StoreCopy m_copy;
    RowCounts m_counts;
    std::optional<CopyFailure> m_failure;
};

} // namespace

CopyEnd copyServerStore(const QString &store, sqlite3 *copy, const BackupWatch &watch)
{
    const auto engine = serverEngine();
    if (!engine)
        return notOpened(engine.error());
    const auto opened =
        WatchedStore::open(store, Access::Read, [&watch](const WorkStep &step) { return watch(progressOf(step)); });
    if (!opened)
        return opened.error().wasStopped ? stopped() : notOpened(opened.error().words);
    WatchedStore &server = **opened;
    if (const auto failure = server.store().holdMoment())
        return server.wasStopped() ? stopped() : endOf(copyFailureOf(*failure));
    CopyEnd end = Making(server, **engine).run(copy);
    server.store().releaseMoment();
    return end;
}

} // namespace harrowby::app
