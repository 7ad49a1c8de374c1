// SPDX-License-Identifier: MIT
#pragma once

#include "store/row_buffer.h"

#include <harrowby/db_connection.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace harrowby {

/// The rows of one SELECT, and the current one. A failure is reported, and leaves no rows.
class SelectedRows
{
public:
    SelectedRows() = default;
    SelectedRows(std::shared_ptr<DbConnection> connection, QString select);
    SelectedRows(const SelectedRows &) = delete;
    SelectedRows &operator=(const SelectedRows &) = delete;
    ~SelectedRows();

    // One of these is called once, and runs the SELECT.
    /// Reads the first rows, which most results do not exceed; count() and hasRow() read the others when asked.
    void readFirst() noexcept;
    /// The same, where perhaps none is wanted: reads no rows when the engine can tell how many there are.
    void readCount() noexcept;
    /// Reads all rows with their identities. Finishes open walks first, whose snapshot may be older.
    void readForEditing() noexcept;
    /// Leaves the statement open; moveNext() fetches each row. Registered with the connection until its end.
    void beginWalk() noexcept;
    /// Fails without running the SELECT.
    void refuse(const QString &reason) noexcept;

    /// Whether the statement was refused, or the engine gave up.
    [[nodiscard]] bool hasFailed() const noexcept { return m_hasFailed; }
    [[nodiscard]] std::int32_t count() noexcept;

    [[nodiscard]] bool atEnd() const noexcept { return !m_walk && m_isWhole && m_rows.atEnd(); }
    /// Whether there is a current row. Reads the whole result first, so that all its rows come from one snapshot.
    [[nodiscard]] bool hasRow() noexcept;
    void moveNext() noexcept;
    void moveToEnd() noexcept;

    /// Whether the result has no such column. False after a refused SELECT, whose columns are unknown.
    [[nodiscard]] bool lacks(const QString &column);
    [[nodiscard]] std::optional<DbValue> value(const QString &column);
    /// UTF-8 of a text; empty for every other value.
    [[nodiscard]] std::optional<QByteArrayView> text(const QString &column);
    /// Identity of the current row, when the rows were read for editing and have one.
    [[nodiscard]] std::optional<DbRowId> rowId() const;

private:
    friend void finishWalks(const std::shared_ptr<DbConnection> &connection) noexcept;
    friend void finishWalksInTheWay(const std::shared_ptr<DbConnection> &connection) noexcept;

    void read(DbReading how, bool withIds) noexcept;
    void fill(DbReading how, bool withIds);
    void keepRest(std::unique_ptr<DbCursor> cursor);
    void readRest() noexcept;
    [[nodiscard]] bool appendRest(DbCursor &cursor) noexcept;
    void readRowIds() noexcept;
    void stepWalk() noexcept;
    void finishWalk() noexcept;
    void endWalk() noexcept;
    void appendRow(const DbCursor &cursor);
    [[nodiscard]] std::int32_t counted() noexcept;
    void forget() noexcept;
    [[nodiscard]] qsizetype findColumn(const QString &name);

    std::shared_ptr<DbConnection> m_connection;
    QString m_select;
    RowBuffer m_rows;
    bool m_hasFailed = false;
    bool m_isWhole = true; ///< `m_rows` holds the whole result, not only its first rows
    std::optional<std::int32_t> m_count;
    std::vector<DbRowId> m_rowIds;
    std::unique_ptr<DbCursor> m_walk; ///< stands on the current row; null when this is no walk, or one read to its end
    std::unique_ptr<DbCursor> m_rest; ///< has the rows that `m_rows` lacks, and stands on the first of them; or null
    std::int64_t m_passed = 0;        ///< rows that the walk has passed; `m_rows` never holds them
};

} // namespace harrowby
