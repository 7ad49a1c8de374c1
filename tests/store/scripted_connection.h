// SPDX-License-Identifier: MIT
#pragma once

#include <harrowby/db_connection.h>

#include <QHash>

#include <functional>
#include <vector>

namespace harrowby {

/// A connection without an engine: one result for every SELECT, and a count of each call.
class ScriptedConnection final : public DbConnection
{
public:
    enum class Fault { None, Failure, Exception, Oddity };

    QStringList columns{QStringLiteral("ID"), QStringLiteral("Name")};
    std::vector<std::vector<DbValue>> rows;
    std::vector<DbRowId> ids;

    /// What goes wrong, by operation: "Execute", "query", "next" (with its number from 1 on, as in "next 3"), "value",
    /// "columnNames", "countRows", "rowIds", "insertRow", "updateRow".
    QHash<QString, Fault> faults;

    /// What the cursors of this engine can do beyond the least.
    bool idsComeWithRows = false;
    bool countComesWithRows = false;
    bool standsApart = false;

    QHash<QString, int> calls;
    int liveCursors = 0;
    bool idsAskedOnFirstRow = false;
    std::vector<DbFailure> failures; ///< as the failure handler was told
    QStringList statements;          ///< as they came in
    std::vector<DbReading> readings; ///< how each SELECT is read
    QStringList holds;               ///< "change SELECT" or "insert SELECT"; none is granted
    QString table;
    DbRowId row = 0;
    DbAssignments written;

    ScriptedConnection();
    /// Fills in `count` rows (0, "row 0"), (1, "row 1"), …
    void fill(int count);

    bool Execute(const QString &statement) override;
    [[nodiscard]] std::unique_ptr<DbCursor> query(const QString &select) override;
    [[nodiscard]] std::optional<std::int64_t> countRows(const QString &select) override;
    [[nodiscard]] std::optional<std::vector<DbRowId>> rowIds(const QString &select) override;
    bool insertRow(const QString &intoTable, const DbAssignments &values) override;
    bool updateRow(const QString &inTable, DbRowId changedRow, const DbAssignments &values) override;
    [[nodiscard]] QString location() const override;
    [[nodiscard]] std::unique_ptr<DbCursor> queryAs(const QString &select, DbReading how) override;
    bool holdFor(const QString &select, HeldWrite write) override;

    /// Counts a call and lets it fail as scripted; false when it is to fail.
    bool comesThrough(const QString &operation, DbFailure::Kind kind);

    std::size_t position = 0; ///< row number of the cursor that was created or moved last
};

} // namespace harrowby
