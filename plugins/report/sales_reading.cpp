// SPDX-License-Identifier: MIT
#include "plugins/report/sales_reading.h"

#include "basic/values.h"
#include "plugins/report/sales_statements.h"

#include <algorithm>
#include <utility>

namespace harrowby::report {

namespace {

constexpr int rowsPerClockCheck = 128;
/// Of the whole time, when items are read: the sums come from the index alone.
constexpr double sumsShare = 0.15;

} // namespace

SalesReading::SalesReading(std::shared_ptr<DbConnection> connection, SalesQuery query) :
    m_connection(std::move(connection)), m_query(std::move(query)), m_slices(m_query.period)
{
    if (!m_connection)
        m_state = State::Failed;
}

SalesReading::State SalesReading::step(std::chrono::milliseconds budget) noexcept
try {
    const auto end = std::chrono::steady_clock::now() + budget;
    do {
        if (m_state == State::Reading)
            advance();
    } while (m_state == State::Reading && std::chrono::steady_clock::now() < end);
    return m_state;
} catch (...) {
    // An exception of the connection counts as the failure of its statement.
    m_cursor.reset();
    return m_state = State::Failed;
}

void SalesReading::advance()
{
    if (m_cursor)
        readRows();
    else if (!m_slices.atEnd())
        openSlice();
    else if (m_query.grouping == Grouping::Item && !m_readingItems)
        openItems();
    else
        finish();
}

void SalesReading::finish()
{
    m_sales.byItem.settle();
    m_state = State::Done;
}

void SalesReading::openSlice()
{
    const auto slice = m_slices.next([this](const Period &days, int most) { return probe(days, most); });
    if (!slice) {
        m_state = State::Failed;
        return;
    }
    const auto &statement = slice->big ? rowsStatement : sumsStatement;
    open(statement(slice->days, m_query.onlySeller));
}

void SalesReading::openItems()
{
    m_readingItems = true;
    open(itemsStatement(m_query.period, m_query.onlySeller));
}

void SalesReading::open(const QString &select)
{
    m_cursor = m_connection->queryAs(select, DbReading::Walk);
    if (!m_cursor)
        m_state = State::Failed;
}

int SalesReading::probe(const Period &days, int most)
{
    const auto cursor = m_connection->query(probeStatement(days, m_query.onlySeller, most));
    if (!cursor || cursor->next() != DbCursor::Step::Row)
        return -1;
    return static_cast<int>(valueNumber(cursor->value(0)));
}

void SalesReading::readRows()
{
    for (int row = 0; row < rowsPerClockCheck; ++row) {
        const DbCursor::Step step = m_cursor->next();
        if (step == DbCursor::Step::Row) {
            readRow();
            continue;
        }
        m_cursor.reset();
        if (step == DbCursor::Step::Failed)
            m_state = State::Failed;
        return;
    }
}

void SalesReading::readRow()
{
    if (m_readingItems) {
        ++m_itemRows;
        const auto items = m_cursor->text(0);
        m_sales.addItems(items ? QString::fromUtf8(*items) : valueText(m_cursor->value(0)),
                         finite(valueNumber(m_cursor->value(1))));
        return;
    }
    const auto count = static_cast<qint64>(valueNumber(m_cursor->value(2)));
    const double amount = finite(valueNumber(m_cursor->value(3)));
    m_sales.total.add(count, amount);
    m_sales.byDay[valueText(m_cursor->value(0))].add(count, amount);
    m_sales.bySeller[valueText(m_cursor->value(1))].add(count, amount);
}

double SalesReading::progress() const
{
    if (m_query.grouping != Grouping::Item)
        return m_slices.share();
    const auto rows = static_cast<double>(std::max<qint64>(1, m_sales.total.purchases));
    const double items = std::min(1.0, static_cast<double>(m_itemRows) / rows);
    return m_slices.share() * sumsShare + (m_readingItems ? items * (1.0 - sumsShare) : 0.0);
}

} // namespace harrowby::report
