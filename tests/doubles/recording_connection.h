// SPDX-License-Identifier: MIT
#pragma once

#include <harrowby/db_connection.h>

#include <QStringList>

#include <functional>
#include <memory>
#include <optional>
#include <utility>

namespace harrowby::test {

/// Passes every call on to another connection, records each statement, fails those that a test picks, and calls a test
/// before and after each write. A held write is done when it is settled.
class RecordingConnection final : public DbConnection
{
public:
    explicit RecordingConnection(std::shared_ptr<DbConnection> below) : m_below(std::move(below)) {}

    QStringList statements; ///< texts of Execute() and query(), "insert <table>" and "update <table>"
    int counted = 0;        ///< calls of countRows()
    /// Both are asked with what `statements` holds; the first may throw.
    std::function<bool(const QString &statement)> fails = [](const QString &) { return false; };
    std::function<void(const QString &statement)> before = [](const QString &) {};
    /// Both get a text that can be run again.
    std::function<void(const QString &write)> beforeWrite = [](const QString &) {};
    std::function<void(const QString &write, bool done)> afterWrite = [](const QString &, bool) {};
    /// Statements that yield this many rows (0 and more) and then break.
    std::function<int(const QString &select)> rowsUntilBreak = [](const QString &) { return -1; };
    bool refusesHolds = false;
    bool losesCommits = false;   ///< of what is held
    std::optional<bool> mayHave; ///< what mayHaveWritten() answers, in place of the connection below

    bool Execute(const QString &statement) override;
    [[nodiscard]] std::unique_ptr<DbCursor> query(const QString &select) override;
    [[nodiscard]] std::optional<std::int64_t> countRows(const QString &select) override;
    [[nodiscard]] std::optional<std::vector<DbRowId>> rowIds(const QString &select) override;
    bool insertRow(const QString &table, const DbAssignments &values) override;
    bool updateRow(const QString &table, DbRowId row, const DbAssignments &values) override;
    [[nodiscard]] QString location() const override { return m_below->location(); }
    bool hold() override;
    bool settle(const QString &write) override;
    [[nodiscard]] bool mayHaveWritten() const override { return mayHave.value_or(m_below->mayHaveWritten()); }
    [[nodiscard]] WriteOutcome lastWrite() const override;
    [[nodiscard]] std::unique_ptr<DbCursor> queryAs(const QString &select, DbReading how) override;
    bool holdFor(const QString &select, HeldWrite write) override;
    void setWaitHook(WaitHook hook) override { m_below->setWaitHook(std::move(hook)); }

private:
    bool passes(const QString &statement);
    bool beginHold(bool isHeld);
    bool write(const QString &text, const std::function<bool()> &work);
    bool settleBelow(const QString &write);

    std::shared_ptr<DbConnection> m_below;
    bool m_holds = false;
    bool m_isStopped = false; ///< the last write never reached the connection below
    QString m_held;           ///< the write under it
};

} // namespace harrowby::test
