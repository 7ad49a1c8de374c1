// SPDX-License-Identifier: MIT
#include "store/recordset.h"

#include "basic/values.h"
#include "store/guarded.h"

#include <algorithm>
#include <limits>
#include <utility>
#include <vector>

namespace harrowby {

namespace {

using namespace Qt::StringLiterals;

/// Rows that opening reads at most. Most results end before; a longer one is counted or read when it comes to that.
constexpr qsizetype firstRows = 10;
constexpr qsizetype allRows = std::numeric_limits<qsizetype>::max();

DbAssignments::iterator find(DbAssignments &values, const QString &name)
{
    return std::find_if(values.begin(), values.end(), [&name](const auto &assignment) {
        return assignment.first.compare(name, Qt::CaseInsensitive) == 0;
    });
}

void put(DbAssignments &values, const QString &name, DbValue value)
{
    const auto found = find(values, name);
    if (found == values.end())
        values.emplace_back(name, std::move(value));
    else
        found->second = std::move(value);
}

} // namespace

struct DbRecordset::Private
{
    enum class Standing {
        Found,  ///< on a row of the result, or past the last one
        Adding, ///< on a row that Update() will add
        Added,  ///< on the row that Update() has added
    };

    std::shared_ptr<DbConnection> connection;
    QString select;
    QString table;
    Access access = Access::Read;

    RowBuffer rows;
    bool hasFailed = false; ///< the statement was refused, or the engine gave up
    bool isWhole = true;    ///< `rows` holds the whole result, not only its first rows
    std::optional<std::int32_t> count;
    std::vector<DbRowId> rowIds;

    Standing standing = Standing::Found;
    DbAssignments assigned; ///< for the next Update()
    DbAssignments written;  ///< what Updates have written into the current row

    void read(qsizetype limit) noexcept;
    void fill(qsizetype limit);
    void readRowIds() noexcept;
    std::int32_t counted() noexcept;
    void forgetRows() noexcept;
    bool hasRow() noexcept;
    std::optional<DbValue> value(const QString &name);

    void addRow() noexcept;
    void changeRow() noexcept;
    void fail(DbFailure::Kind kind, const QString &statement, const QString &reason) const noexcept;
    /// What the next Update() does to the table, for its failures.
    [[nodiscard]] QString verb() const { return standing == Standing::Adding ? u"INSERT "_s : u"UPDATE "_s; }
};

/// Replaces the rows. What fails leaves none.
void DbRecordset::Private::read(qsizetype limit) noexcept
{
    forgetRows();
    hasFailed = true;
    if (!guarded(connection, DbFailure::Kind::Read, select, [&] { fill(limit); }))
        forgetRows();
}

void DbRecordset::Private::fill(qsizetype limit)
{
    const std::unique_ptr<DbCursor> cursor = connection->query(select);
    if (!cursor)
        return;
    DbCursor::Step step = cursor->next();
    rows.reset(cursor->columnNames());
    if (access == Access::Edit && step == DbCursor::Step::Row)
        readRowIds();
    for (; step == DbCursor::Step::Row && rows.count() < limit; step = cursor->next()) {
        for (qsizetype i = 0; i < rows.columns(); ++i)
            rows.append(cursor->value(static_cast<int>(i)));
        rows.endRow();
    }
    hasFailed = step == DbCursor::Step::Failed;
    if (hasFailed)
        forgetRows();
    isWhole = step != DbCursor::Step::Row;
    rows.squeeze();
}

void DbRecordset::Private::readRowIds() noexcept
{
    guarded(connection, DbFailure::Kind::Read, select,
            [this] { rowIds = connection->rowIds(select).value_or(std::vector<DbRowId>()); });
}

std::int32_t DbRecordset::Private::counted() noexcept
{
    std::int64_t result = rows.count();
    if (!isWhole) {
        std::optional<std::int64_t> found;
        guarded(connection, DbFailure::Kind::Read, select, [&] { found = connection->countRows(select); });
        hasFailed = !found;
        if (hasFailed)
            forgetRows();
        result = found.value_or(0);
    }
    return static_cast<std::int32_t>(
        std::clamp(result, std::int64_t(0), std::int64_t(std::numeric_limits<std::int32_t>::max())));
}

void DbRecordset::Private::forgetRows() noexcept
{
    rows = RowBuffer();
    rowIds.clear();
    isWhole = true;
}

/// Whether the walk stands on a row of the result. From here on a row is looked at, so the whole result is read,
/// all of it in one state of the table.
bool DbRecordset::Private::hasRow() noexcept
{
    if (!isWhole)
        read(allRows);
    return !rows.atEnd();
}

std::optional<DbValue> DbRecordset::Private::value(const QString &name)
{
    for (DbAssignments *values : {&assigned, &written}) {
        if (const auto found = find(*values, name); found != values->end())
            return found->second;
    }
    if (standing != Standing::Found || !hasRow())
        return {};
    const qsizetype column = rows.column(name);
    return column < 0 ? std::nullopt : std::optional(rows.value(column));
}

void DbRecordset::Private::addRow() noexcept
{
    const DbAssignments values = std::exchange(assigned, {});
    const QString what = u"INSERT "_s + table;
    standing = Standing::Found;
    if (table.isEmpty())
        return fail(DbFailure::Kind::Write, what, u"the result is not read from a table"_s);
    bool done = false;
    guarded(connection, DbFailure::Kind::Write, what, [&] { done = connection->insertRow(table, values); });
    if (!done)
        return;
    standing = Standing::Added;
    written = values;
}

void DbRecordset::Private::changeRow() noexcept
{
    const DbAssignments values = std::exchange(assigned, {});
    const QString what = u"UPDATE "_s + table;
    if (values.empty())
        return;
    if (access != Access::Edit)
        return fail(DbFailure::Kind::Write, what, u"the result was opened for reading only"_s);
    if (standing == Standing::Added || std::cmp_not_equal(rowIds.size(), rows.count()))
        return fail(DbFailure::Kind::Write, what, u"the row has no identity to find it by"_s);
    const DbRowId row = rowIds[static_cast<std::size_t>(rows.row())];
    bool done = false;
    guarded(connection, DbFailure::Kind::Write, what, [&] { done = connection->updateRow(table, row, values); });
    if (!done)
        return;
    for (const auto &[name, value] : values)
        put(written, name, value);
}

void DbRecordset::Private::fail(DbFailure::Kind kind, const QString &statement, const QString &reason) const noexcept
{
    report(connection, {kind, statement, reason, 0});
}

DbRecordset::DbRecordset() : d(std::make_unique<Private>()) {}

DbRecordset::~DbRecordset() = default;

void DbRecordset::Open(const Statement &select, const std::shared_ptr<DbConnection> &connection, Access access) noexcept
{
    *d = Private{};
    d->connection = connection;
    d->select = select.sql();
    d->table = select.table();
    d->access = access;
    d->hasFailed = select.isRefused();
    if (d->hasFailed)
        d->fail(DbFailure::Kind::Read, d->select, select.refusal());
    else
        d->read(access == Access::Edit ? allRows : firstRows);
}

bool DbRecordset::HasFailed() const noexcept
{
    return d->hasFailed;
}

std::int32_t DbRecordset::RecordCount() noexcept
{
    if (!d->count)
        d->count = d->counted();
    return *d->count;
}

bool DbRecordset::IsEof() noexcept
{
    return d->standing == Private::Standing::Found && d->rows.atEnd();
}

void DbRecordset::MoveNext() noexcept
{
    d->assigned.clear();
    d->written.clear();
    if (std::exchange(d->standing, Private::Standing::Found) != Private::Standing::Found) {
        d->hasRow();
        d->rows.moveToEnd();
    } else if (d->hasRow()) {
        d->rows.moveNext();
    }
}

DbField DbRecordset::Field(const QString &name) noexcept
{
    return {*this, name};
}

void DbRecordset::AddNew() noexcept
{
    d->standing = Private::Standing::Adding;
    d->assigned.clear();
    d->written.clear();
}

void DbRecordset::Update() noexcept
{
    if (d->standing == Private::Standing::Adding)
        d->addRow();
    else
        d->changeRow();
}

DbField::DbField(DbRecordset &recordset, QString name) : m_recordset(recordset), m_name(std::move(name)) {}

std::optional<DbValue> DbField::value() const
{
    try {
        return m_recordset.d->value(m_name);
    } catch (...) {
        return {}; // a value too large for the memory that is left
    }
}

QString DbField::text(const QString &fallback) const
{
    const std::optional<DbValue> found = value();
    return found ? valueText(*found) : fallback;
}

double DbField::number(double fallback) const
{
    const std::optional<DbValue> found = value();
    return found ? valueNumber(*found) : fallback;
}

void DbField::assign(DbValue value)
{
    DbRecordset::Private &d = *m_recordset.d;
    // Skipped alone, so that a row is not lost for one column that a table lacks. After a refused SELECT the columns
    // are not known, and the engine judges.
    if (!d.hasFailed && d.rows.columns() > 0 && d.rows.column(m_name) < 0)
        return d.fail(DbFailure::Kind::Write, d.verb() + d.table, u"there is no column "_s + m_name);
    if (d.standing != DbRecordset::Private::Standing::Found || d.hasRow())
        put(d.assigned, m_name, std::move(value));
}

bool Execute(const std::shared_ptr<DbConnection> &connection, const Statement &statement) noexcept
{
    if (statement.isRefused()) {
        report(connection, {DbFailure::Kind::Write, statement.sql(), statement.refusal(), 0});
        return false;
    }
    bool done = false;
    guarded(connection, DbFailure::Kind::Write, statement.sql(), [&] { done = connection->Execute(statement.sql()); });
    return done;
}

} // namespace harrowby
