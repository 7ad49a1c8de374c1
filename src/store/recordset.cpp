// SPDX-License-Identifier: MIT
#include "store/recordset.h"

#include "basic/values.h"
#include "store/failure_reports.h"
#include "store/hold.h"
#include "store/selected_rows.h"

#include <algorithm>
#include <utility>

namespace harrowby {

namespace {

using namespace Qt::StringLiterals;

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
    Private() = default;
    Private(const Statement &statement, std::shared_ptr<DbConnection> database, Access wanted) :
        connection(std::move(database)), table(statement.table()), access(wanted), rows(connection, statement.sql())
    {
    }

    enum class Standing {
        Found,  ///< on a row of the result, or past the last one
        Adding, ///< on a row that Update() will add
        Added,  ///< on the row that Update() has added
    };

    std::shared_ptr<DbConnection> connection;
    QString table;
    Access access = Access::Read;
    SelectedRows rows;

    Standing standing = Standing::Found;
    DbAssignments assigned; ///< for the next Update()
    DbAssignments written;  ///< what Updates have written into the current row
    std::optional<Hold> hold;

    void run(const Statement &select) noexcept;
    std::optional<DbValue> value(const QString &column);
    std::optional<QByteArrayView> text(const QString &column);
    void assign(const QString &column, DbValue value);
    Outcome addRow() noexcept;
    Outcome changeRow() noexcept;
    template <typename Change>
    Outcome write(const QString &what, Change &&change) noexcept;
    [[nodiscard]] Outcome outcomeOfFailure() const noexcept;
    Outcome fail(const QString &what, const QString &reason) const noexcept;
    /// What the next Update() does to the table, for its failures.
    [[nodiscard]] QString verb() const { return standing == Standing::Adding ? u"INSERT "_s : u"UPDATE "_s; }
};

void DbRecordset::Private::run(const Statement &select) noexcept
{
    if (select.isRefused())
        rows.refuse(select.refusal());
    else if (access == Access::Walk)
        rows.beginWalk();
    else if (access == Access::Read)
        rows.readFirst();
    else if (access == Access::Count)
        rows.readCount();
    else
        rows.readForEditing();
}

std::optional<DbValue> DbRecordset::Private::value(const QString &column)
{
    for (DbAssignments *values : {&assigned, &written}) {
        if (const auto found = find(*values, column); found != values->end())
            return found->second;
    }
    return standing == Standing::Found ? rows.value(column) : std::nullopt;
}

/// A text that stands in the row as it was read; empty for every other value, and in a row that is written.
std::optional<QByteArrayView> DbRecordset::Private::text(const QString &column)
{
    if (!assigned.empty() || !written.empty() || standing != Standing::Found)
        return {};
    return rows.text(column);
}

void DbRecordset::Private::assign(const QString &column, DbValue value)
{
    // A column that the table lacks is skipped, so that the others are written. After a refused SELECT the columns are
    // unknown, and the engine decides.
    if (rows.lacks(column)) {
        fail(verb() + table, u"there is no column "_s + column);
        return;
    }
    if (standing != Standing::Found || rows.hasRow())
        put(assigned, column, std::move(value));
}

/// Runs the change. Under a hold it has succeeded only when the commit has; where the engine could not hold after all,
/// the change has stood alone.
template <typename Change>
DbRecordset::Outcome DbRecordset::Private::write(const QString &what, Change &&change) noexcept
{
    bool done = false;
    runReported(connection, DbFailure::Kind::Write, what, [&] { done = change(); });
    if (!hold || !hold->isHeld())
        return done ? Outcome::Written : outcomeOfFailure();
    const bool kept = hold->settle(done ? what : QString());
    return done && kept ? Outcome::Written : outcomeOfFailure();
}

DbRecordset::Outcome DbRecordset::Private::outcomeOfFailure() const noexcept
try {
    return connection && connection->lastWrite() != WriteOutcome::Refused ? Outcome::NotKnown : Outcome::NotWritten;
} catch (...) {
    return Outcome::NotKnown;
}

DbRecordset::Outcome DbRecordset::Private::addRow() noexcept
{
    const DbAssignments values = std::exchange(assigned, {});
    const QString what = u"INSERT "_s + table;
    standing = Standing::Found;
    if (table.isEmpty())
        return fail(what, u"the result is not read from a table"_s);
    const Outcome outcome = write(what, [&] { return connection->insertRow(table, values); });
    if (outcome == Outcome::Written) {
        standing = Standing::Added;
        written = values;
    }
    return outcome;
}

DbRecordset::Outcome DbRecordset::Private::changeRow() noexcept
{
    const DbAssignments values = std::exchange(assigned, {});
    const QString what = u"UPDATE "_s + table;
    if (values.empty())
        return Outcome::NotWritten;
    if (access != Access::Edit)
        return fail(what, u"the result was opened for reading only"_s);
    // An added row is none of those that were selected.
    const std::optional<DbRowId> row = standing == Standing::Added ? std::nullopt : rows.rowId();
    if (!row)
        return fail(what, u"the row has no identity to find it by"_s);
    const Outcome outcome = write(what, [&] { return connection->updateRow(table, *row, values); });
    if (outcome == Outcome::Written) {
        for (const auto &[name, value] : values)
            put(written, name, value);
    }
    return outcome;
}

DbRecordset::Outcome DbRecordset::Private::fail(const QString &what, const QString &reason) const noexcept
{
    report(connection, {DbFailure::Kind::Write, what, reason, 0});
    return Outcome::NotWritten;
}

DbRecordset::DbRecordset() : d(std::make_unique<Private>()) {}

DbRecordset::~DbRecordset() = default;

void DbRecordset::Open(const Statement &select, const std::shared_ptr<DbConnection> &connection, Access access) noexcept
{
    d = std::make_unique<Private>(select, connection, access);
    d->run(select);
}

void DbRecordset::OpenHeld(const Statement &select, const std::shared_ptr<DbConnection> &connection,
                           Access access) noexcept
{
    d = std::make_unique<Private>(select, connection, access);
    d->hold.emplace(connection, select.isRefused() ? QString() : select.sql(),
                    access == Access::Edit ? HeldWrite::Change : HeldWrite::Insert);
    d->run(select);
}

bool DbRecordset::HasFailed() const noexcept
{
    return d->rows.hasFailed();
}

std::int32_t DbRecordset::RecordCount() noexcept
{
    return d->rows.count();
}

bool DbRecordset::IsEof() noexcept
{
    return d->standing == Private::Standing::Found && d->rows.atEnd();
}

void DbRecordset::MoveNext() noexcept
{
    d->assigned.clear();
    d->written.clear();
    if (std::exchange(d->standing, Private::Standing::Found) == Private::Standing::Found)
        d->rows.moveNext();
    else
        d->rows.moveToEnd();
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

DbRecordset::Outcome DbRecordset::Update() noexcept
{
    finishWalksInTheWay(d->connection);
    const Outcome outcome = d->standing == Private::Standing::Adding ? d->addRow() : d->changeRow();
    d->hold.reset(); // also where nothing was written
    return outcome;
}

DbField::DbField(DbRecordset &recordset, const QString &name) : m_recordset(recordset), m_name(name) {}

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

std::optional<QUtf8StringView> DbField::utf8(QByteArray &buffer) const
{
    try {
        if (const std::optional<QByteArrayView> stored = m_recordset.d->text(m_name))
            return QUtf8StringView(stored->data(), stored->size());
        const std::optional<DbValue> found = m_recordset.d->value(m_name);
        if (!found)
            return {};
        buffer = valueText(*found).toUtf8();
        return QUtf8StringView(buffer);
    } catch (...) {
        return {}; // a value too large for the memory that is left
    }
}

void DbField::assign(DbValue value)
{
    m_recordset.d->assign(m_name, std::move(value));
}

bool Execute(const std::shared_ptr<DbConnection> &connection, const Statement &statement) noexcept
{
    finishWalksInTheWay(connection);
    if (statement.isRefused()) {
        report(connection, {DbFailure::Kind::Write, statement.sql(), statement.refusal(), 0});
        return false;
    }
    bool done = false;
    runReported(connection, DbFailure::Kind::Write, statement.sql(),
                [&] { done = connection->Execute(statement.sql()); });
    return done;
}

} // namespace harrowby
