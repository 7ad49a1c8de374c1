// SPDX-License-Identifier: MIT
#include "app/cash/runs.h"

#include "app/records/record_tables.h"
#include "app/records/statement_pieces.h"
#include "basic/dates.h"
#include "basic/logging.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

Records::Answer<QList<Run>> openRuns(Records &records)
{
    const auto rows = records.read(kept::payment(), {u"select Run, Drawer, Since, StartedAt, Locked from HarrowbyRun "
                                                     "where EndedAt = '' order by Run"_s,
                                                     {}});
    if (!rows)
        return Unexpected(rows.error());
    QList<Run> runs;
    for (const RecordRow &row : *rows)
        runs << Run{recordNumber(row.at(0)), recordText(row.at(1)), recordText(row.at(2)),
                    timeOfRecord(recordText(row.at(3))), recordNumber(row.at(4)) != 0};
    return runs;
}

bool noteEnd(Records &records, const QList<std::int64_t> &runs, const QDateTime &moment)
{
    return writeOfRuns(records, u"update HarrowbyRun set EndedAt = ? where Run in (%1)"_s, {recordTime(moment)}, runs);
}

bool writeOfRuns(Records &records, const QString &text, const QList<RecordValue> &values,
                 const QList<std::int64_t> &runs)
{
    constexpr qsizetype runsInOneWrite = 500;
    for (qsizetype first = 0; first < runs.size(); first += runsInOneWrite) {
        const auto some = runs.mid(first, runsInOneWrite);
        RecordStatement statement = {text.arg(placesFor(some.size())), values};
        for (const std::int64_t run : some)
            statement.values << run;
        if (!records.write(kept::payment(), statement))
            return false;
    }
    return true;
}

TillRun::TillRun(Records &records, std::shared_ptr<RunLocks> locks, QString drawer) :
    m_records(records), m_locks(std::move(locks))
{
    m_run.drawer = std::move(drawer);
}

bool TillRun::note(const QDateTime &now)
{
    if (isNoted())
        return true;
    Run run = m_run;
    run.since = purchasedDate(now);
    run.started = now.toUTC();
    const auto kept = m_records.together(kept::payment(), [&] {
        const auto rows = m_records.read(kept::payment(), {u"select max(Run) from HarrowbyRun"_s, {}});
        if (!rows)
            return false;
        run.number = rows->isEmpty() ? 1 : recordNumber(rows->constFirst().constFirst()) + 1;
        // Before anybody can see the row: a run without its lock is a dead one.
        const auto held = m_locks ? m_locks->hold(run.number) : Result<void, QString>(Unexpected(u"no locks"_s));
        run.isLocked = held.has_value();
        m_lockProblem = held ? QString() : held.error();
        return add(run);
    });
    if (!kept || !*kept)
        return false;
    if (!run.isLocked)
        qCWarning(lcStore).noquote() << "This run of the till holds no lock:" << m_lockProblem;
    m_run = run;
    return true;
}

bool TillRun::add(Run run)
{
    return m_records
        .write(
            kept::payment(),
            {u"insert into HarrowbyRun (Run, Drawer, Since, StartedAt, EndedAt, Locked) values (?, ?, ?, ?, '', ?)"_s,
             {run.number, run.drawer, run.since, recordTime(run.started), std::int64_t{run.isLocked ? 1 : 0}}})
        .has_value();
}

void TillRun::setSince(const QString &since)
{
    if (m_records.write(kept::payment(), {u"update HarrowbyRun set Since = ? where Run = ?"_s, {since, m_run.number}}))
        m_run.since = since;
}

void TillRun::end(const QDateTime &now)
{
    if (isNoted() && noteEnd(m_records, {m_run.number}, now))
        m_run.number = 0;
}

} // namespace harrowby::app
