// SPDX-License-Identifier: MIT
#include "app/reorder/low_stock.h"

#include "basic/reorder_level.h"
#include "basic/values.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

enum Field { Id, Name, Category, Level, Available };
const QStringList fields = {u"StockID"_s, u"StockName"_s, u"StockCategory"_s, u"StockReorderLevel"_s,
                            u"StockAvailable"_s};

constexpr int rowsPerClockCheck = 128;

/// Index of the column; negative when there is none of that name.
int columnOf(const QString &field, const QStringList &names)
{
    for (qsizetype i = 0; i < names.size(); ++i) {
        if (names.at(i).compare(field, Qt::CaseInsensitive) == 0)
            return static_cast<int>(i);
    }
    return -1;
}

tables::Table emptyTable()
{
    using tables::Kind;
    tables::Table table;
    table.title = u"Reorder List"_s;
    table.columns = {{u"Item code"_s, Kind::Text, false},  {u"Item"_s, Kind::Text, true},
                     {u"Category"_s, Kind::Text, false},   {u"Level"_s, Kind::Count, false},
                     {u"Available"_s, Kind::Count, false}, {u"Missing"_s, Kind::Count, false}};
    return table;
}

} // namespace

LowStockReading::LowStockReading(std::shared_ptr<DbConnection> connection) :
    m_connection(std::move(connection)), m_table(emptyTable())
{
    if (!m_connection)
        m_state = State::Failed;
}

LowStockReading::State LowStockReading::step(std::chrono::milliseconds budget) noexcept
try {
    const auto end = std::chrono::steady_clock::now() + budget;
    if (m_state == State::Reading && !m_cursor)
        open();
    do {
        for (int row = 0; m_state == State::Reading && row < rowsPerClockCheck; ++row)
            readRow();
    } while (m_state == State::Reading && std::chrono::steady_clock::now() < end);
    return m_state;
} catch (...) {
    // An exception of the connection counts as the failure of its statement.
    m_cursor.reset();
    return m_state = State::Failed;
}

void LowStockReading::open()
{
    m_cursor = m_connection->queryAs(QString::fromLatin1(lowStockSelect), DbReading::Walk);
    if (!m_cursor) {
        m_state = State::Failed;
        return;
    }
    const QStringList names = m_cursor->columnNames();
    for (const QString &field : fields)
        m_columns.push_back(columnOf(field, names));
}

DbValue LowStockReading::value(int field) const
{
    const int column = m_columns.at(static_cast<std::size_t>(field));
    return column < 0 ? DbValue() : m_cursor->value(column);
}

void LowStockReading::readRow()
{
    const DbCursor::Step step = m_cursor->next();
    if (step != DbCursor::Step::Row) {
        m_cursor.reset();
        m_state = step == DbCursor::Step::Done ? State::Done : State::Failed;
        return;
    }
    const double level = valueNumber(value(Level));
    const double available = valueNumber(value(Available));
    m_table.rows.push_back({valueText(value(Id)), valueText(value(Name)), valueText(value(Category)), level, available,
                            level - available});
}

} // namespace harrowby::app
