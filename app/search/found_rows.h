// SPDX-License-Identifier: MIT
#pragma once

#include "engine/sqlite_statement.h"

#include <harrowby/db_connection.h>

#include <QByteArray>
#include <QStringList>

#include <cstdint>
#include <memory>
#include <vector>

namespace harrowby::app {

/// The rows of a search, read at once, so that they are counted without a second look through the stock.
class FoundRows
{
public:
    /// Steps the statement to its end; whether it came there, the statement tells.
    explicit FoundRows(SqliteStatement &statement);

    [[nodiscard]] std::int64_t count() const { return m_count; }
    [[nodiscard]] const QStringList &columns() const { return m_columns; }
    [[nodiscard]] DbValue value(std::int64_t row, int column) const;
    /// UTF-8 of a text, good as long as the rows live; empty for every other value.
    [[nodiscard]] std::optional<QByteArrayView> text(std::int64_t row, int column) const;

private:
    struct Cell
    {
        qsizetype begin = 0;  ///< in the texts, or of the other values the number
        qsizetype length = 0; ///< below 0 when it is another value
    };
    void append(const SqliteStatement &statement, int column);
    [[nodiscard]] const Cell &cell(std::int64_t row, int column) const;

    QStringList m_columns;
    QByteArray m_texts; ///< all of them, one after the other
    std::vector<DbValue> m_others;
    std::vector<Cell> m_cells;
    std::int64_t m_count = 0;
};

/// Goes through them; several may at once.
class FoundCursor final : public DbCursor
{
public:
    explicit FoundCursor(std::shared_ptr<const FoundRows> rows);

    [[nodiscard]] QStringList columnNames() const override { return m_rows->columns(); }
    [[nodiscard]] Step next() override;
    [[nodiscard]] DbValue value(int column) const override { return m_rows->value(m_row, column); }
    [[nodiscard]] std::optional<QByteArrayView> text(int column) const override { return m_rows->text(m_row, column); }

private:
    std::shared_ptr<const FoundRows> m_rows;
    std::int64_t m_row = -1;
};

} // namespace harrowby::app
