// SPDX-License-Identifier: MIT
#include "postgres/row_batch.h"

#include <libpq-fe.h>

namespace harrowby::postgres {

void RowBatch::add(const pg_result *row)
{
    const int columns = PQnfields(row);
    m_columns = static_cast<std::size_t>(columns);
    for (int column = 0; column < columns; ++column) {
        const int size = PQgetlength(row, 0, column);
        const char *text = PQgetvalue(row, 0, column);
        m_cells.push_back({m_bytes.size(), size, PQgetisnull(row, 0, column) != 0});
        m_bytes.insert(m_bytes.end(), text, text + size + 1); // its end is marked, as in libpq
    }
    ++m_rows;
}

void RowBatch::clear()
{
    m_rows = 0;
    m_cells.clear();
    m_bytes.clear();
}

} // namespace harrowby::postgres
