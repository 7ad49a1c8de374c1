// SPDX-License-Identifier: MIT
#include "app/search/found_rows.h"

#include <algorithm>
#include <utility>

namespace harrowby::app {

FoundRows::FoundRows(SqliteStatement &statement) : m_columns(statement.columnNames())
{
    while (statement.next()) {
        for (qsizetype column = 0; column < m_columns.size(); ++column)
            append(statement, static_cast<int>(column));
        ++m_count;
    }
}

void FoundRows::append(const SqliteStatement &statement, int column)
{
    if (const auto text = statement.utf8(column)) {
        m_cells.push_back({m_texts.size(), text->size()});
        m_texts.append(*text);
    } else {
        m_cells.push_back({static_cast<qsizetype>(m_others.size()), -1});
        m_others.push_back(statement.value(column));
    }
}

const FoundRows::Cell &FoundRows::cell(std::int64_t row, int column) const
{
    return m_cells[static_cast<std::size_t>(row * m_columns.size() + column)];
}

DbValue FoundRows::value(std::int64_t row, int column) const
{
    const auto utf8 = text(row, column);
    return utf8 ? DbValue(QString::fromUtf8(*utf8)) : m_others[static_cast<std::size_t>(cell(row, column).begin)];
}

std::optional<QByteArrayView> FoundRows::text(std::int64_t row, int column) const
{
    const Cell &place = cell(row, column);
    if (place.length < 0)
        return {};
    return QByteArrayView(m_texts).sliced(place.begin, place.length);
}

FoundCursor::FoundCursor(std::shared_ptr<const FoundRows> rows) : m_rows(std::move(rows)) {}

DbCursor::Step FoundCursor::next()
{
    m_row = std::min(m_row + 1, m_rows->count());
    return m_row < m_rows->count() ? Step::Row : Step::Done;
}

} // namespace harrowby::app
