// SPDX-License-Identifier: MIT
#include "store/selected_rows.h"

#include "store/failure_reports.h"
#include "store/recordset.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace harrowby {

namespace {

constexpr qsizetype firstRows = 10;

qsizetype limitOf(DbReading how)
{
    return how == DbReading::Whole ? std::numeric_limits<qsizetype>::max() : firstRows;
}

std::int32_t asCount(std::int64_t rows)
{
    constexpr std::int64_t most = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(std::clamp(rows, std::int64_t{0}, most));
}

} // namespace

SelectedRows::SelectedRows(std::shared_ptr<DbConnection> connection, QString select) :
    m_connection(std::move(connection)), m_select(std::move(select))
{
}

SelectedRows::~SelectedRows()
{
    endWalk();
}

void SelectedRows::readFirst() noexcept
{
    read(DbReading::First, false);
}

void SelectedRows::readCount() noexcept
{
    read(DbReading::Count, false);
}

void SelectedRows::readForEditing() noexcept
{
    // Values computed from these rows are written back, so they must not come from a walk's older snapshot.
    finishWalksInTheWay(m_connection);
    read(DbReading::Whole, true);
}

/// Replaces the rows. What fails leaves none.
void SelectedRows::read(DbReading how, bool withIds) noexcept
{
    forget();
    m_hasFailed = true;
    if (!runReported(m_connection, DbFailure::Kind::Read, m_select, [&] { fill(how, withIds); }))
        forget();
}

void SelectedRows::fill(DbReading how, bool withIds)
{
    const qsizetype limit = limitOf(how);
    std::unique_ptr<DbCursor> cursor = m_connection->queryAs(m_select, how);
    if (!cursor)
        return;
    if (const auto rows = how == DbReading::Count ? cursor->rowCount() : std::nullopt) {
        m_hasFailed = false;
        m_count = asCount(*rows);
        m_isWhole = *rows == 0;
        return;
    }
    DbCursor::Step step = cursor->next();
    m_rows.reset(cursor->columnNames());
    const bool idsCome = withIds && step == DbCursor::Step::Row && cursor->rowId();
    if (withIds && step == DbCursor::Step::Row && !idsCome)
        readRowIds();
    for (; step == DbCursor::Step::Row && m_rows.count() < limit; step = cursor->next()) {
        if (const std::optional<DbRowId> id = idsCome ? cursor->rowId() : std::nullopt)
            m_rowIds.push_back(*id);
        appendRow(*cursor);
    }
    m_hasFailed = step == DbCursor::Step::Failed;
    if (m_hasFailed)
        forget();
    m_isWhole = step != DbCursor::Step::Row;
    m_rows.squeeze();
    if (!m_isWhole)
        keepRest(std::move(cursor));
}

/// What the engine has said about the rows that were not read; and the cursor, where nobody minds that it stays open.
void SelectedRows::keepRest(std::unique_ptr<DbCursor> cursor)
{
    if (const std::optional<std::int64_t> rows = cursor->rowCount())
        m_count = asCount(*rows);
    if (cursor->standsApart())
        m_rest = std::move(cursor);
}

void SelectedRows::readRest() noexcept
{
    m_hasFailed = !appendRest(*m_rest);
    m_rest.reset();
    m_isWhole = true;
    if (m_hasFailed)
        forget();
}

/// Appends the row that the cursor stands on, and those after it. False when it fails.
bool SelectedRows::appendRest(DbCursor &cursor) noexcept
{
    auto step = DbCursor::Step::Row;
    const bool read = runReported(m_connection, DbFailure::Kind::Read, m_select, [&] {
        for (; step == DbCursor::Step::Row; step = cursor.next())
            appendRow(cursor);
        m_rows.squeeze();
    });
    return read && step == DbCursor::Step::Done;
}

void SelectedRows::appendRow(const DbCursor &cursor)
{
    for (qsizetype i = 0; i < m_rows.columns(); ++i)
        m_rows.append(cursor.value(static_cast<int>(i)));
    m_rows.endRow();
}

void SelectedRows::readRowIds() noexcept
{
    runReported(m_connection, DbFailure::Kind::Read, m_select,
                [this] { m_rowIds = m_connection->rowIds(m_select).value_or(std::vector<DbRowId>()); });
}

void SelectedRows::refuse(const QString &reason) noexcept
{
    m_hasFailed = true;
    report(m_connection, {DbFailure::Kind::Read, m_select, reason, 0});
}

void SelectedRows::beginWalk() noexcept
{
    m_hasFailed = true;
    runReported(m_connection, DbFailure::Kind::Read, m_select, [this] {
        std::unique_ptr<DbCursor> cursor = m_connection->queryAs(m_select, DbReading::CountedWalk);
        if (!cursor)
            return;
        const DbCursor::Step step = cursor->next();
        m_rows.reset(cursor->columnNames());
        m_hasFailed = step == DbCursor::Step::Failed;
        m_isWhole = step != DbCursor::Step::Row;
        if (m_isWhole)
            return;
        if (const std::optional<std::int64_t> rows = cursor->rowCount())
            m_count = asCount(*rows);
        m_connection->m_walks.push_back(this);
        m_walk = std::move(cursor);
    });
}

void SelectedRows::stepWalk() noexcept
{
    auto step = DbCursor::Step::Failed;
    runReported(m_connection, DbFailure::Kind::Read, m_select, [&] { step = m_walk->next(); });
    ++m_passed;
    m_hasFailed = step == DbCursor::Step::Failed;
    if (step != DbCursor::Step::Row)
        endWalk();
}

/// Reads the rows that are left, and closes the cursor.
void SelectedRows::finishWalk() noexcept
{
    m_hasFailed = !appendRest(*m_walk);
    endWalk();
}

void SelectedRows::endWalk() noexcept
{
    if (!m_walk)
        return;
    std::erase(m_connection->m_walks, this);
    m_walk.reset();
    m_isWhole = true;
}

std::int32_t SelectedRows::count() noexcept
{
    if (!m_count)
        m_count = counted();
    return *m_count;
}

std::int32_t SelectedRows::counted() noexcept
{
    std::int64_t result = m_passed + m_rows.count();
    if (!m_isWhole) {
        std::optional<std::int64_t> found;
        runReported(m_connection, DbFailure::Kind::Read, m_select, [&] { found = m_connection->countRows(m_select); });
        m_hasFailed = !found;
        if (m_hasFailed)
            forget();
        result = found.value_or(0);
    }
    return asCount(result);
}

void SelectedRows::forget() noexcept
{
    endWalk();
    m_rest.reset();
    m_rows = RowBuffer();
    m_rowIds.clear();
    m_passed = 0;
    m_isWhole = true;
}

bool SelectedRows::hasRow() noexcept
{
    if (!m_isWhole && m_rest)
        readRest();
    else if (!m_isWhole && !m_walk)
        read(DbReading::Whole, false);
    return !atEnd();
}

void SelectedRows::moveNext() noexcept
{
    if (m_walk)
        stepWalk();
    else if (hasRow())
        m_rows.moveNext();
}

void SelectedRows::moveToEnd() noexcept
{
    static_cast<void>(hasRow());
    endWalk();
    m_rows.moveToEnd();
}

bool SelectedRows::lacks(const QString &column)
{
    return !m_hasFailed && m_rows.columns() > 0 && m_rows.column(column) < 0;
}

/// -1 when there is no current row either.
qsizetype SelectedRows::findColumn(const QString &name)
{
    return hasRow() ? m_rows.column(name) : -1;
}

std::optional<DbValue> SelectedRows::value(const QString &column)
{
    const qsizetype found = findColumn(column);
    if (found < 0)
        return {};
    return m_walk ? m_walk->value(static_cast<int>(found)) : m_rows.value(found);
}

std::optional<QByteArrayView> SelectedRows::text(const QString &column)
{
    const qsizetype found = findColumn(column);
    if (found < 0)
        return {};
    return m_walk ? m_walk->text(static_cast<int>(found)) : m_rows.text(found);
}

std::optional<DbRowId> SelectedRows::rowId() const
{
    if (std::cmp_not_equal(m_rowIds.size(), m_rows.count()))
        return {};
    return m_rowIds[static_cast<std::size_t>(m_rows.row())];
}

void finishWalks(const std::shared_ptr<DbConnection> &connection) noexcept
{
    while (connection && !connection->m_walks.empty())
        connection->m_walks.back()->finishWalk();
}

void finishWalksInTheWay(const std::shared_ptr<DbConnection> &connection) noexcept
{
    for (std::size_t i = connection ? connection->m_walks.size() : 0; i-- > 0;) {
        SelectedRows *walk = connection->m_walks[i];
        if (!walk->m_walk->standsApart())
            walk->finishWalk();
    }
}

} // namespace harrowby
