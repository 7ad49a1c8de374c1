// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArrayView>

#include <cstddef>
#include <vector>

struct pg_result;

namespace harrowby::postgres {

/// Rows of one SELECT in a few pieces of memory, where libpq has several of two kilobytes for each: so they are
/// quickly handed from one thread to another.
class RowBatch
{
public:
    /// The first row of a result.
    void add(const pg_result *row);
    /// Keeps the memory.
    void clear();

    [[nodiscard]] std::size_t rowCount() const { return m_rows; }
    [[nodiscard]] std::size_t byteCount() const { return m_bytes.size(); }
    [[nodiscard]] bool isNull(std::size_t row, int column) const { return cell(row, column).isNull; }
    /// As the server writes it; empty for null. Good until the next change.
    [[nodiscard]] QByteArrayView text(std::size_t row, int column) const
    {
        const Cell &at = cell(row, column);
        return {m_bytes.data() + at.begin, at.size};
    }

private:
    struct Cell
    {
        std::size_t begin;
        int size;
        bool isNull;
    };

    [[nodiscard]] const Cell &cell(std::size_t row, int column) const
    {
        return m_cells[row * m_columns + static_cast<std::size_t>(column)];
    }

    std::size_t m_rows = 0;
    std::size_t m_columns = 0;
    std::vector<Cell> m_cells;
    std::vector<char> m_bytes;
};

} // namespace harrowby::postgres
