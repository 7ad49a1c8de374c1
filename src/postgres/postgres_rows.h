// SPDX-License-Identifier: MIT
#pragma once

#include "postgres/row_batch.h"
#include "postgres/server_error.h"
#include "postgres/server_result.h"
#include "postgres/server_waits.h"

#include <QByteArray>
#include <QByteArrayView>

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>

namespace harrowby {

namespace postgres {
class ServerLink;
}

/// The rows of a SELECT, one by one as the server sends them. As long as this object is there, its session runs nothing
/// else. A session that is closed, or connected anew, takes the rows away.
class PgRows
{
public:
    enum class Step { Row, Done, Failed };

    PgRows(PgRows &&) noexcept;
    PgRows &operator=(PgRows &&) = delete;
    PgRows(const PgRows &) = delete;
    PgRows &operator=(const PgRows &) = delete;
    /// Rows that were not fetched are given up: the statement is cancelled and the transaction that its text began
    /// rolled back. When the server says nothing to that for a second, the session is closed.
    ~PgRows();

    /// The result's columns; known from the start, also when it has no rows.
    [[nodiscard]] int columnCount() const { return m_row.columnCount(); }
    [[nodiscard]] QByteArray columnName(int column) const { return m_row.columnName(column); }
    [[nodiscard]] std::uint32_t columnType(int column) const { return m_row.columnType(column); }

    /// To the next row; it begins before the first one. Done again after Done, and Failed after Failed.
    [[nodiscard]] Step next();
    /// After Done: to the rows of the next SELECT of the text, if there is one; what gives no rows is passed over.
    [[nodiscard]] bool nextSelect();
    [[nodiscard]] bool isNull(int column) const
    {
        return isInBatch() ? m_batch.isNull(m_at, column) : m_row.isNull(0, column);
    }
    /// Of the current row, good until the next step; empty for null.
    [[nodiscard]] QByteArrayView text(int column) const
    {
        return isInBatch() ? m_batch.text(m_at, column) : m_row.text(0, column);
    }
    /// Set once a step has failed.
    [[nodiscard]] const std::optional<PgError> &error() const { return m_error; }

private:
    friend class PgSession;
    PgRows(std::shared_ptr<postgres::ServerLink> link, std::chrono::milliseconds answer, bool beganIdle);

    [[nodiscard]] bool isInBatch() const { return m_at < m_batch.rowCount(); }
    void fetch();
    void fail(const PgError &error);
    void finishText();

    std::shared_ptr<postgres::ServerLink> m_link; ///< null once there is nothing left to fetch
    std::chrono::milliseconds m_answer;
    bool m_beganIdle;
    PgResult m_row;             ///< one row, or the end of a SELECT, which has its columns
    postgres::RowBatch m_batch; ///< rows that were fetched ahead; the current one is in it when it is not read through
    std::size_t m_at = 0;       ///< in m_batch
    bool m_isAhead = false;     ///< m_row is what next() is to step to
    bool m_isDone = false;      ///< with this SELECT
    int m_fetched = 0;          ///< rows of this SELECT
    std::optional<PgError> m_error;
};

} // namespace harrowby
