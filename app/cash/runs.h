// SPDX-License-Identifier: MIT
#pragma once

#include "app/cash/run_locks.h"
#include "app/records/records.h"

#include <QDateTime>
#include <QList>
#include <QString>

#include <memory>

namespace harrowby::app {

/// A run of the program, as the table HarrowbyRun has it. Numbers are never used again.
struct Run
{
    std::int64_t number = 0;
    QString drawer;
    QString since;         ///< no purchase of this run without a payment is older; as PurchaseCart writes dates
    QDateTime started;     ///< UTC
    bool isLocked = false; ///< it holds the lock of its number while it lives
};

/// The runs that have not ended themselves: they live, or died, or have left something to settle.
[[nodiscard]] Records::Answer<QList<Run>> openRuns(Records &records);
/// False when it could not be noted, which has been told.
[[nodiscard]] bool noteEnd(Records &records, const QList<std::int64_t> &runs, const QDateTime &moment);
/// Writes what is said of these runs: in the place of "%1" in the text stand their numbers, as the last values. All of
/// them in a few statements, as a server answers each.
[[nodiscard]] bool writeOfRuns(Records &records, const QString &text, const QList<RecordValue> &values,
                               const QList<std::int64_t> &runs);

/// The run of this process at the till.
class TillRun
{
public:
    /// The records must outlive it. Without locks it counts as one that cannot hold its own.
    TillRun(Records &records, std::shared_ptr<RunLocks> locks, QString drawer);

    /// Notes it in the store, with its lock held, once. False when it could not be.
    [[nodiscard]] bool note(const QDateTime &now);
    [[nodiscard]] bool isNoted() const { return m_run.number != 0; }
    /// 0 while it is not noted.
    [[nodiscard]] std::int64_t number() const { return m_run.number; }
    [[nodiscard]] const QString &since() const { return m_run.since; }
    void setSince(const QString &since);
    void end(const QDateTime &now);
    /// Why it has no lock; empty when it has, or is not noted.
    [[nodiscard]] const QString &lockProblem() const { return m_lockProblem; }

private:
    [[nodiscard]] bool add(Run run);

    Records &m_records;
    std::shared_ptr<RunLocks> m_locks;
    Run m_run;
    QString m_lockProblem;
};

} // namespace harrowby::app
