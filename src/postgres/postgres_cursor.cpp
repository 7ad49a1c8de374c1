// SPDX-License-Identifier: MIT
#include "postgres/postgres_cursor.h"

#include "postgres/schema.h"
#include "postgres/storable.h"

#include <algorithm>
#include <utility>

namespace harrowby::postgres {

namespace {

DbValue valueOf(bool isNull, QByteArrayView text, std::uint32_t type)
{
    return isNull ? DbValue() : readValue(text, type);
}

DbRowId identityOf(QByteArrayView text)
{
    return text.toLongLong();
}

} // namespace

void ShownColumns::add(const QByteArray &name, std::uint32_t type)
{
    m_names.append(QString::fromUtf8(name));
    m_types.push_back(type);
}

void ShownColumns::hideIdentity()
{
    if (m_names.isEmpty() || m_names.constLast() != QLatin1StringView(identityColumn))
        return;
    m_names.removeLast();
    m_identity = static_cast<int>(m_names.size());
}

HeldRowsCursor::HeldRowsCursor(std::shared_ptr<const PgResult> rows, Farewell farewell) :
    m_rows(std::move(rows)), m_columns(*m_rows), m_count(m_rows->rowCount()), m_farewell(std::move(farewell))
{
}

HeldRowsCursor::HeldRowsCursor(std::shared_ptr<const PgResult> rows, std::int64_t count, More more) :
    m_rows(std::move(rows)), m_columns(*m_rows), m_count(count), m_more(std::move(more))
{
}

HeldRowsCursor::~HeldRowsCursor()
{
    if (m_farewell)
        m_farewell(std::min<std::int64_t>(m_row + 1, m_rows->rowCount()));
}

DbCursor::Step HeldRowsCursor::next()
{
    if (m_hasFailed)
        return Step::Failed;
    if (m_row + 1 >= m_rows->rowCount() && m_row + 1 < m_count && !fetchMore())
        return Step::Failed;
    if (m_row < m_rows->rowCount())
        ++m_row;
    return m_row < m_rows->rowCount() ? Step::Row : Step::Done;
}

/// The first rows have been passed: all of them are fetched now, as they are now.
bool HeldRowsCursor::fetchMore()
{
    if (!m_more)
        return true; // fewer than there were
    auto all = std::exchange(m_more, {})();
    m_hasFailed = all == nullptr;
    if (!m_hasFailed)
        m_rows = std::move(all);
    return !m_hasFailed;
}

DbValue HeldRowsCursor::value(int column) const
{
    return valueOf(m_rows->isNull(m_row, column), m_rows->text(m_row, column), m_columns.type(column));
}

std::optional<QByteArrayView> HeldRowsCursor::text(int column) const
{
    if (!isText(m_columns.type(column)) || m_rows->isNull(m_row, column))
        return {};
    return m_rows->text(m_row, column);
}

std::optional<DbRowId> HeldRowsCursor::rowId() const
{
    if (m_columns.identity() < 0)
        return {};
    return identityOf(m_rows->text(m_row, m_columns.identity()));
}

CountCursor::CountCursor(std::int64_t count, Rows rows) : m_count(count), m_rows(std::move(rows)) {}

/// Null when they could not be fetched.
DbCursor *CountCursor::fetched() const
{
    if (m_rows)
        m_cursor = std::exchange(m_rows, {})();
    return m_cursor.get();
}

QStringList CountCursor::columnNames() const
{
    const DbCursor *cursor = fetched();
    return cursor != nullptr ? cursor->columnNames() : QStringList();
}

DbCursor::Step CountCursor::next()
{
    DbCursor *cursor = fetched();
    return cursor != nullptr ? cursor->next() : Step::Failed;
}

WalkCursor::WalkCursor(std::shared_ptr<void> lease, PgRows rows, std::optional<std::int64_t> count, Report report) :
    m_lease(std::move(lease)), m_rows(std::move(rows)), m_columns(*m_rows), m_count(count), m_report(std::move(report))
{
}

DbCursor::Step WalkCursor::next()
{
    if (m_last != Step::Row)
        return m_last;
    switch (m_rows->next()) {
    case PgRows::Step::Row:
        return Step::Row;
    case PgRows::Step::Done:
        m_last = Step::Done;
        static_cast<void>(m_rows->nextSelect()); // there is none: the end of the transaction follows
        break;
    case PgRows::Step::Failed:
        m_last = Step::Failed;
        m_report(m_rows->error().value_or(PgError()));
        break;
    }
    m_rows.reset();
    m_lease.reset();
    return m_last;
}

DbValue WalkCursor::value(int column) const
{
    return valueOf(m_rows->isNull(column), m_rows->text(column), m_columns.type(column));
}

std::optional<QByteArrayView> WalkCursor::text(int column) const
{
    if (!isText(m_columns.type(column)) || m_rows->isNull(column))
        return {};
    return m_rows->text(column);
}

std::optional<DbRowId> WalkCursor::rowId() const
{
    if (m_columns.identity() < 0)
        return {};
    return identityOf(m_rows->text(m_columns.identity()));
}

} // namespace harrowby::postgres
