// SPDX-License-Identifier: MIT
#pragma once

#include "store/statement.h"

#include <harrowby/db_connection.h>

#include <QUtf8StringView>

#include <cstdint>
#include <memory>
#include <optional>

namespace harrowby {

class DbRecordset;

/// One column of a recordset's current row. Short-lived: use it in the expression that asked for it.
class DbField
{
public:
    /// The value; empty when there is no such column or no current row, so that the reader keeps what it had.
    [[nodiscard]] std::optional<DbValue> value() const;
    /// The value as text (see basic/values.h), or `fallback` when there is none to read.
    [[nodiscard]] QString text(const QString &fallback = {}) const;
    /// The value's leading number, or `fallback` when there is none to read.
    [[nodiscard]] double number(double fallback = 0.0) const;
    /// The same text as text() gives, in UTF-8: in the engine's memory where possible, else in `buffer`. Valid until
    /// the recordset or the buffer is used again. Empty when there is none to read.
    [[nodiscard]] std::optional<QUtf8StringView> utf8(QByteArray &buffer) const;

    /// Keeps the value for the next Update(). Without a row to write to, nothing happens.
    void assign(DbValue value);

private:
    friend class DbRecordset;
    DbField(DbRecordset &recordset, const QString &name);

    DbRecordset &m_recordset;
    const QString &m_name;
};

/// A SELECT's rows, read one after the other, and the way to write a single row.
///
/// No operation throws or shows anything: a failure is reported through the connection's reportFailure(), and the
/// result is empty. Rows are read into a packed buffer when the first one is asked for; opening and counting alone
/// never reads a long result. Opening again replaces the rows. Except for a walk, no statement stays open in the engine
/// between two calls.
class DbRecordset
{
public:
    enum class Access {
        Read,  ///< rows are only looked at
        Edit,  ///< a row may be written back: its identity is read together with it
        Walk,  ///< a long result, read once from front to back while the window handles events: each row is fetched by
               ///< MoveNext(); finishWalks() reads the remaining ones at once and closes the statement
        Count, ///< only RecordCount() is wanted: an engine that can tell it without the rows sends none
    };

    DbRecordset();
    DbRecordset(const DbRecordset &) = delete;
    DbRecordset &operator=(const DbRecordset &) = delete;
    ~DbRecordset();

    /// Runs the SELECT. A refused or failing one leaves an empty result that still knows its table, so that a
    /// row can be added to it. A null connection fails likewise.
    void Open(const Statement &select, const std::shared_ptr<DbConnection> &connection,
              Access access = Access::Read) noexcept;

    /// The same, and keeps the write lock until the next Update() has written (see Hold), so that no other till writes
    /// in between. Update() or the next opening releases it, also on failure. Edit is for a row that is changed, Read
    /// for one that is added because of what was found. Precondition: no box, no event loop and no other statement
    /// before that.
    void OpenHeld(const Statement &select, const std::shared_ptr<DbConnection> &connection, Access access) noexcept;

    /// Whether the result is empty because the statement was refused or failed, not because it matched no row.
    [[nodiscard]] bool HasFailed() const noexcept;

    [[nodiscard]] std::int32_t RecordCount() noexcept;
    [[nodiscard]] bool IsEof() noexcept;
    void MoveNext() noexcept;
    [[nodiscard]] DbField Field(const QString &name) noexcept;

    /// Starts a new row; the next Update() adds it to the table.
    void AddNew() noexcept;
    enum class Outcome {
        Written,
        NotWritten, ///< for certain; also where there was nothing to write
        NotKnown,   ///< it failed in a way that leaves open whether the change is in the table
    };
    /// Writes the assigned columns: the new row, or the current one (its assigned columns and no other row).
    /// Afterwards the written row can be read back through Field() with the values assigned; of a new row nothing
    /// else, as its table may have defaults. An Update() that fails drops what was assigned.
    Outcome Update() noexcept;

private:
    friend class DbField;
    struct Private;
    std::unique_ptr<Private> d;
};

/// Reads the remaining rows of the connection's walks into memory and closes their statements. Called before a box or
/// another window, for whose time an open statement would keep SQLite's write-ahead log from being reset, and a server
/// from clearing away what has changed.
void finishWalks(const std::shared_ptr<DbConnection> &connection) noexcept;

/// The same of those alone that do not stand apart (DbCursor::standsApart()). Called before
/// - every change: SQLite refuses it while an open statement reads a snapshot older than another program's change;
/// - a row is read to be changed, which must not come from that old snapshot.
void finishWalksInTheWay(const std::shared_ptr<DbConnection> &connection) noexcept;

/// Executes a change on the connection. Refused statements, failing ones and a null connection are reported
/// and skipped; what the connection throws counts as a failure.
bool Execute(const std::shared_ptr<DbConnection> &connection, const Statement &statement) noexcept;

} // namespace harrowby
