// SPDX-License-Identifier: MIT
#include "app/backup/server_backup.h"

#include "app/copy/store_copy.h"
#include "app/records/server_engine.h"
#include "app/records/sqlite_records.h"
#include "app/records/store_records.h"
#include "app/shop/schema.h"
#include "app/shop/store_create.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

CopyEnd endOf(const CopyFailure &failure)
{
    if (failure.stopped)
        return {true, {}, {}, {}};
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

class Making
{
public:
    Making(Records &server, const ServerEngine &engine, const BackupWatch &watch) :
        m_rules(engine), m_backupWatch(watch), m_watch([this](const WorkStep &step) { return tell(step); }),
        m_copy(server, m_rules, m_watch)
    {
    }

    /// Asked in the middle of a statement.
    [[nodiscard]] bool goesOn() const { return m_backupWatch(m_progress); }

    CopyEnd run(sqlite3 *copy)
    {
        const auto error = makeStoreIn(copy, [this](sqlite3 *store) { return fill(store); });
        if (m_failure)
            return endOf(*m_failure);
        return error ? CopyEnd{false, error, BackupSide::Place, {}} : CopyEnd{false, {}, {}, m_counts};
    }

private:
    using Stage = BackupProgress::Stage;

    /// How far the copying is, as a backup tells it.
    bool tell(const WorkStep &step)
    {
        const bool isCompared = step.words == comparingWords;
        m_progress = {isCompared ? Stage::Checking : Stage::Copying, isCompared ? 100 : std::max(step.percent, 0)};
        return goesOn();
    }

    std::optional<SqlError> fill(sqlite3 *store)
    {
        SqliteRecords records(store);
        const auto rows = m_copy.copyInto(records);
        if (!rows) {
            m_failure = rows.error();
            m_failure->stopped = m_failure->stopped || !goesOn(); // then a statement was ended in the middle
            return SqlError{m_failure->engineCode & 0xff, m_failure->problem};
        }
        for (const StoreTable &table : storeTables())
            m_counts.insert(table.name, rows->value(table.name));
        return {};
    }

    ColumnRules m_rules;
    const BackupWatch &m_backupWatch;
    BackupProgress m_progress;
    WorkWatch m_watch;
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
    const auto opened = openStoreRecords(store, Access::Read);
    if (!opened)
        return notOpened(opened.error());
    StoreRecords &server = **opened;
    Making making(server.records(), **engine, watch);
    server.setWatch([&making] { return making.goesOn(); });
    if (const auto failure = server.holdMoment())
        return endOf(copyFailureOf(*failure));
    CopyEnd end = making.run(copy);
    server.releaseMoment();
    server.setWatch({});
    return end;
}

} // namespace harrowby::app
