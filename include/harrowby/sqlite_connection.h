// SPDX-License-Identifier: MIT
#pragma once

#include <harrowby/db_connection.h>

struct sqlite3;

namespace harrowby {

/// DbConnection over a `sqlite3 *` that the host has opened.
///
/// The handle stays the host's: it must outlive this object and all its cursors, and this object never closes or
/// configures it (no pragma, no busy handler, no function). A null handle makes each statement fail. The component
/// keeps its reference after its window has been closed (see DbConnection): close the handle after the event loop has
/// ended, or hand in another connection before.
///
/// A host may derive from it, to carry out a statement in its own way and leave the others as they are.
///
/// Use it on the user-interface thread. A statement waits for another program's lock as long as the host's busy handler
/// lets it, and without one fails at once with SQLITE_BUSY. Needs no QApplication.
class HARROWBY_EXPORT SqliteConnection : public DbConnection
{
public:
    /// `location` is what location() returns: see DbConnection::location().
    explicit SqliteConnection(sqlite3 *database, QString location = {});
    ~SqliteConnection() override;

    bool Execute(const QString &statement) override;
    [[nodiscard]] std::unique_ptr<DbCursor> query(const QString &select) override;
    [[nodiscard]] std::optional<std::int64_t> countRows(const QString &select) override;
    [[nodiscard]] std::optional<std::vector<DbRowId>> rowIds(const QString &select) override;
    bool insertRow(const QString &table, const DbAssignments &values) override;
    bool updateRow(const QString &table, DbRowId row, const DbAssignments &values) override;
    [[nodiscard]] QString location() const override;
    /// An immediate transaction, so that a process that is killed leaves all of it or nothing.
    bool hold() override;
    bool settle(const QString &write) override;
    [[nodiscard]] bool mayHaveWritten() const override;
    [[nodiscard]] WriteOutcome lastWrite() const override;

private:
    sqlite3 *m_database;
    QString m_location;
    bool m_holds = false;
    WriteOutcome m_lastWrite = WriteOutcome::Done;
};

} // namespace harrowby
