// SPDX-License-Identifier: MIT
#include "store/recordset.h"

#include "basic/values.h"
#include "store/guarded.h"
#include "store/hold.h"

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
    /// The walks that are under way, those of entered handlers after those of the handlers they were entered from.
    static std::vector<Private *> &walks();

    Private() = default;
    Private(const Private &) = delete;
    Private &operator=(const Private &) = delete;
    ~Private() { endWalk(); }

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
    std::unique_ptr<DbCursor> walk; ///< stands on the current row; null when this is no walk, or one read to its end
    std::int64_t passed = 0;        ///< rows that the walk has left behind; `rows` never holds them

    Standing standing = Standing::Found;
    DbAssignments assigned; ///< for the next Update()
    DbAssignments written;  ///< what Updates have written into the current row
    std::optional<Hold> hold;

    void read(qsizetype limit) noexcept;
    void fill(qsizetype limit);
    void readForEditing() noexcept;
    void readRowIds() noexcept;
    void beginWalk() noexcept;
    void stepWalk() noexcept;
    void finishWalk() noexcept;
    void endWalk() noexcept;
    void appendRow(const DbCursor &cursor);
    std::int32_t counted() noexcept;
    void forgetRows() noexcept;
    bool hasRow() noexcept;
    [[nodiscard]] bool atEnd() const noexcept { return !walk && rows.atEnd(); }
    std::optional<DbValue> value(const QString &name);
    std::optional<QByteArrayView> text(const QString &name);

    void addRow() noexcept;
    void changeRow() noexcept;
    template <typename Change>
    bool write(const QString &what, Change &&change) noexcept;
    void fail(DbFailure::Kind kind, const QString &statement, const QString &reason) const noexcept;
    /// What the next Update() does to the table, for its failures.
    [[nodiscard]] QString verb() const { return standing == Standing::Adding ? u"INSERT "_s : u"UPDATE "_s; }
};

std::vector<DbRecordset::Private *> &DbRecordset::Private::walks()
{
    static std::vector<Private *> underWay;
    return underWay;
}

/// Replaces the rows. What fails leaves none.
void DbRecordset::Private::read(qsizetype limit) noexcept
{
    forgetRows();
    hasFailed = true;
    if (!guarded(connection, DbFailure::Kind::Read, select, [&] { fill(limit); }))
        forgetRows();
}

/// What is computed from these values is written back: they must not be as old as a walk that is under way.
void DbRecordset::Private::readForEditing() noexcept
{
    DbRecordset::finishAllWalks();
    read(allRows);
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
    for (; step == DbCursor::Step::Row && rows.count() < limit; step = cursor->next())
        appendRow(*cursor);
    hasFailed = step == DbCursor::Step::Failed;
    if (hasFailed)
        forgetRows();
    isWhole = step != DbCursor::Step::Row;
    rows.squeeze();
}

void DbRecordset::Private::appendRow(const DbCursor &cursor)
{
    for (qsizetype i = 0; i < rows.columns(); ++i)
        rows.append(cursor.value(static_cast<int>(i)));
    rows.endRow();
}

void DbRecordset::Private::beginWalk() noexcept
{
    hasFailed = true;
    guarded(connection, DbFailure::Kind::Read, select, [this] {
        std::unique_ptr<DbCursor> cursor = connection->query(select);
        if (!cursor)
            return;
        const DbCursor::Step step = cursor->next();
        rows.reset(cursor->columnNames());
        hasFailed = step == DbCursor::Step::Failed;
        isWhole = step != DbCursor::Step::Row;
        if (isWhole)
            return;
        walks().push_back(this);
        walk = std::move(cursor);
    });
}

void DbRecordset::Private::stepWalk() noexcept
{
    auto step = DbCursor::Step::Failed;
    guarded(connection, DbFailure::Kind::Read, select, [&] { step = walk->next(); });
    ++passed;
    hasFailed = step == DbCursor::Step::Failed;
    if (step != DbCursor::Step::Row)
        endWalk();
}

/// Goes on from memory.
void DbRecordset::Private::finishWalk() noexcept
{
    auto step = DbCursor::Step::Row;
    const bool read = guarded(connection, DbFailure::Kind::Read, select, [&] {
        for (; step == DbCursor::Step::Row; step = walk->next())
            appendRow(*walk);
        rows.squeeze();
    });
    hasFailed = !read || step == DbCursor::Step::Failed;
    endWalk();
}

void DbRecordset::Private::endWalk() noexcept
{
    if (!walk)
        return;
    std::erase(walks(), this);
    walk.reset();
    isWhole = true;
}

void DbRecordset::Private::readRowIds() noexcept
{
    guarded(connection, DbFailure::Kind::Read, select,
            [this] { rowIds = connection->rowIds(select).value_or(std::vector<DbRowId>()); });
}

std::int32_t DbRecordset::Private::counted() noexcept
{
    std::int64_t result = passed + rows.count();
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
    endWalk();
    rows = RowBuffer();
    rowIds.clear();
    passed = 0;
    isWhole = true;
}

/// Whether the walk stands on a row of the result. From here on a row is looked at, so the whole result is read,
/// all of it in one state of the table.
bool DbRecordset::Private::hasRow() noexcept
{
    if (!isWhole && !walk)
        read(allRows);
    return !atEnd();
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
    if (column < 0)
        return {};
    return walk ? walk->value(static_cast<int>(column)) : rows.value(column);
}

/// A text that stands in the row as it was read; empty for every other value, and in a row that is written.
std::optional<QByteArrayView> DbRecordset::Private::text(const QString &name)
{
    if (!assigned.empty() || !written.empty() || standing != Standing::Found || !hasRow())
        return {};
    const qsizetype column = rows.column(name);
    if (column < 0)
        return {};
    return walk ? walk->text(static_cast<int>(column)) : rows.text(column);
}

/// Makes the change; one that is held is done once it is committed.
template <typename Change>
bool DbRecordset::Private::write(const QString &what, Change &&change) noexcept
{
    bool done = false;
    guarded(connection, DbFailure::Kind::Write, what, [&] { done = change(); });
    if (!hold)
        return done;
    const bool kept = hold->settle(done ? what : QString());
    return done && kept;
}

void DbRecordset::Private::addRow() noexcept
{
    const DbAssignments values = std::exchange(assigned, {});
    const QString what = u"INSERT "_s + table;
    standing = Standing::Found;
    if (table.isEmpty())
        return fail(DbFailure::Kind::Write, what, u"the result is not read from a table"_s);
    if (!write(what, [&] { return connection->insertRow(table, values); }))
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
    if (!write(what, [&] { return connection->updateRow(table, row, values); }))
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
    d = std::make_unique<Private>();
    d->connection = connection;
    open(select, access);
}

void DbRecordset::OpenHeld(const Statement &select, const std::shared_ptr<DbConnection> &connection,
                           Access access) noexcept
{
    d = std::make_unique<Private>();
    d->connection = connection;
    d->hold.emplace(connection);
    open(select, access);
}

void DbRecordset::open(const Statement &select, Access access) noexcept
{
    d->select = select.sql();
    d->table = select.table();
    d->access = access;
    d->hasFailed = select.isRefused();
    if (d->hasFailed)
        d->fail(DbFailure::Kind::Read, d->select, select.refusal());
    else if (access == Access::Walk)
        d->beginWalk();
    else if (access == Access::Read)
        d->read(firstRows);
    else
        d->readForEditing();
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
    return d->standing == Private::Standing::Found && d->atEnd();
}

void DbRecordset::MoveNext() noexcept
{
    d->assigned.clear();
    d->written.clear();
    if (std::exchange(d->standing, Private::Standing::Found) != Private::Standing::Found) {
        d->hasRow();
        d->endWalk();
        d->rows.moveToEnd();
    } else if (d->walk) {
        d->stepWalk();
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
    finishWalks();
    if (d->standing == Private::Standing::Adding)
        d->addRow();
    else
        d->changeRow();
    d->hold.reset(); // also where nothing was written
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
    DbRecordset::Private &d = *m_recordset.d;
    // Skipped alone, so that a row is not lost for one column that a table lacks. After a refused SELECT the columns
    // are not known, and the engine judges.
    if (!d.hasFailed && d.rows.columns() > 0 && d.rows.column(m_name) < 0)
        return d.fail(DbFailure::Kind::Write, d.verb() + d.table, u"there is no column "_s + m_name);
    if (d.standing != DbRecordset::Private::Standing::Found || d.hasRow())
        put(d.assigned, m_name, std::move(value));
}

void DbRecordset::finishAllWalks() noexcept
{
    while (!Private::walks().empty())
        Private::walks().back()->finishWalk();
}

void finishWalks() noexcept
{
    DbRecordset::finishAllWalks();
}

bool Execute(const std::shared_ptr<DbConnection> &connection, const Statement &statement) noexcept
{
    finishWalks();
    if (statement.isRefused()) {
        report(connection, {DbFailure::Kind::Write, statement.sql(), statement.refusal(), 0});
        return false;
    }
    bool done = false;
    guarded(connection, DbFailure::Kind::Write, statement.sql(), [&] { done = connection->Execute(statement.sql()); });
    return done;
}

} // namespace harrowby
