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
    /// The same text as text() gives, in UTF-8, without a copy where that can be: in the engine's memory, or in
    /// `buffer`. Good until the recordset or the buffer is used again. Empty when there is none to read.
    [[nodiscard]] std::optional<QUtf8StringView> utf8(QByteArray &buffer) const;

    /// Notes the value for the next Update(). Without a row to write to, nothing happens.
    void assign(DbValue value);

private:
    friend class DbRecordset;
    DbField(DbRecordset &recordset, QString name);

    DbRecordset &m_recordset;
    QString m_name;
};

/// A SELECT's rows, read one after the other, and the way to write a single row.
///
/// No operation throws or shows anything: what fails is skipped, reported through the connection's
/// reportFailure(), and reads as an empty result. Rows are held compactly once they are read, and are read
/// only when a row is asked for: opening and counting alone never reads a whole result.
/// Opening again replaces the rows. Nothing is kept open in the engine between two calls, but for a walk.
class DbRecordset
{
public:
    enum class Access {
        Read, ///< rows are only looked at
        Edit, ///< a row may be written back: its identity is read together with it
        Walk, ///< a long result, walked once from front to back while the window breathes: rows are fetched as the
              ///< walk goes, and what is left of them is read at once when finishWalks() asks for it
    };

    DbRecordset();
    DbRecordset(const DbRecordset &) = delete;
    DbRecordset &operator=(const DbRecordset &) = delete;
    ~DbRecordset();

    /// Runs the SELECT. A refused or failing one leaves an empty result that still knows its table, so that a
    /// row can be added to it. A null connection fails likewise.
    void Open(const Statement &select, const std::shared_ptr<DbConnection> &connection,
              Access access = Access::Read) noexcept;

    /// The same, and holds what is read together with the next Update(), which no other till's change gets in between
    /// of. Update() or the next opening ends the hold, whatever becomes of it: no box, no yield and no other statement
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
    /// Writes the assigned columns: the new row, or the current one (its assigned columns and no other row).
    /// Afterwards the written row can be read back through Field() with the values assigned; of a new row nothing
    /// else, as its table may have defaults. An Update() that fails drops what was assigned.
    void Update() noexcept;

private:
    friend class DbField;
    struct Private;
    std::unique_ptr<Private> d;
};

/// Reads what is left of the connection's walks and closes them in the engine. Before every change, which would fail
/// under a walk that began before another program's change; before a row is read to be changed; and before whatever may
/// keep a walk waiting for long, such as a box: it would keep other programs from the file.
void finishWalks(const std::shared_ptr<DbConnection> &connection) noexcept;

/// Executes a change on the connection. Refused statements, failing ones and a null connection are reported
/// and skipped; what the connection throws counts as a failure.
bool Execute(const std::shared_ptr<DbConnection> &connection, const Statement &statement) noexcept;

} // namespace harrowby
