// SPDX-License-Identifier: MIT
#include <harrowby/sqlite_connection.h>

#include "basic/logging.h"
#include "engine/sqlite_statement.h"

#include <QStringList>

#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <utility>

namespace harrowby {

namespace {

using namespace Qt::StringLiterals;
using Kind = DbFailure::Kind;
using Purpose = SqliteStatement::Purpose;
using Step = DbCursor::Step;

void reportError(const DbConnection &connection, Kind kind, const QString &what, const SqliteStatement &statement)
{
    const std::optional<SqlError> &error = statement.error();
    connection.reportFailure({kind, what, error ? error->reason : QString(), statement.extendedCode()});
}

/// Must not outlive its connection.
class SqliteCursor final : public DbCursor
{
public:
    SqliteCursor(const DbConnection &connection, QString select, SqliteStatement statement) :
        m_connection(connection), m_select(std::move(select)), m_statement(std::move(statement))
    {
    }

    [[nodiscard]] QStringList columnNames() const override { return m_statement.columnNames(); }

    [[nodiscard]] Step next() override
    {
        const bool hadFailed = m_statement.hasFailed();
        const Step step = m_statement.step();
        if (step == Step::Failed && !hadFailed)
            reportError(m_connection, Kind::Read, m_select, m_statement);
        return step;
    }

    [[nodiscard]] DbValue value(int column) const override { return m_statement.value(column); }
    [[nodiscard]] std::optional<QByteArrayView> text(int column) const override { return m_statement.utf8(column); }

private:
    const DbConnection &m_connection;
    QString m_select;
    SqliteStatement m_statement;
};

QString quoted(QString identifier)
{
    return u'"' + identifier.replace(u'"', u"\"\""_s) + u'"';
}

/// The first of SQLite's three names for the rowid that no column of the table has; empty when all are taken.
QString rowIdName(const QStringList &columns)
{
    for (const QString &name : {u"_rowid_"_s, u"rowid"_s, u"oid"_s}) {
        if (!columns.contains(name, Qt::CaseInsensitive))
            return name;
    }
    return {};
}

/// Steps to the end and counts the rows.
std::int64_t countSteps(SqliteStatement &statement)
{
    std::int64_t rows = 0;
    while (statement.step() == Step::Row)
        ++rows;
    return rows;
}

/// The single number that a statement yields.
std::int64_t oneNumber(SqliteStatement &statement)
{
    if (statement.step() != Step::Row)
        return 0;
    const DbValue value = statement.value(0);
    const auto *number = std::get_if<std::int64_t>(&value);
    return number ? *number : 0;
}

/// The identities that a "Select <row id>,* from …" yields in its first column.
std::vector<DbRowId> identities(SqliteStatement &statement)
{
    std::vector<DbRowId> ids;
    while (statement.step() == Step::Row) {
        const DbValue value = statement.value(0);
        if (const auto *id = std::get_if<std::int64_t>(&value))
            ids.push_back(*id);
        else
            statement.refuse(u"the rows have no identity"_s);
    }
    return ids;
}

/// Whether a change may have been committed that ends with this extended code. With some codes the engine refuses a
/// change, or has taken it back; with others a hook of the host's, which runs after a commit, may have failed, or the
/// disk did within one.
bool mayHaveCommitted(int code)
{
    switch (code == SQLITE_READONLY ? SQLITE_AUTH : code & 0xff) {
    case SQLITE_OK: // the engine was not asked
    case SQLITE_AUTH:
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
    case SQLITE_CONSTRAINT: // a commit hook's refusal too
    case SQLITE_FULL:
    case SQLITE_INTERRUPT:
    case SQLITE_MISMATCH:
    case SQLITE_RANGE:
    case SQLITE_TOOBIG:
        return false;
    default:
        return true;
    }
}

/// Binds the values and steps to the end. Reports what fails, when `outcome` says what has become of it.
bool change(const DbConnection &connection, const QString &what, SqliteStatement statement, const DbAssignments &values,
            WriteOutcome &outcome)
{
    int parameter = 0;
    for (const auto &[column, value] : values)
        statement.bind(++parameter, value);
    const bool runs = !statement.hasFailed();
    while (statement.step() == Step::Row) {
    }
    const bool isOpen = statement.hasFailed() && runs && mayHaveCommitted(statement.extendedCode());
    outcome = isOpen ? WriteOutcome::Unknown : WriteOutcome::Refused;
    if (!statement.hasFailed())
        outcome = WriteOutcome::Done;
    else
        reportError(connection, Kind::Write, what, statement);
    return outcome == WriteOutcome::Done;
}

QString insertText(const QString &table, const DbAssignments &values)
{
    QStringList columns;
    for (const auto &[column, value] : values)
        columns.append(quoted(column));
    if (columns.isEmpty())
        return u"INSERT INTO "_s + quoted(table) + u" DEFAULT VALUES"_s;
    const QStringList marks(columns.size(), u"?"_s);
    return u"INSERT INTO "_s + quoted(table) + u" ("_s + columns.join(u',') + u") VALUES ("_s + marks.join(u',') + u')';
}

QString updateText(const QString &table, DbRowId row, const QString &rowId, const DbAssignments &values)
{
    QStringList columns;
    for (const auto &[column, value] : values)
        columns.append(quoted(column) + u" = ?"_s);
    return u"UPDATE "_s + quoted(table) + u" SET "_s + columns.join(u", ") + u" WHERE "_s + rowId + u" = "_s +
           QString::number(row);
}

/// Begins or ends a transaction.
bool run(sqlite3 *database, const char *statement)
{
    return sqlite3_exec(database, statement, nullptr, nullptr, nullptr) == SQLITE_OK;
}

/// Whether a transaction is open: the host's own, or one that was begun here.
bool isWithinTransaction(sqlite3 *database)
{
    return sqlite3_get_autocommit(database) == 0;
}

} // namespace

SqliteConnection::SqliteConnection(sqlite3 *database, QString location) :
    m_database(database), m_location(std::move(location))
{
}

SqliteConnection::~SqliteConnection() = default;

bool SqliteConnection::Execute(const QString &statement)
{
    return change(*this, statement, SqliteStatement(m_database, statement, Purpose::Change), {}, m_lastWrite);
}

std::unique_ptr<DbCursor> SqliteConnection::query(const QString &select)
{
    SqliteStatement statement(m_database, select, Purpose::Select);
    if (!statement.hasFailed())
        return std::make_unique<SqliteCursor>(*this, select, std::move(statement));
    reportError(*this, Kind::Read, select, statement);
    return nullptr;
}

std::optional<std::int64_t> SqliteConnection::countRows(const QString &select)
{
    // With "order by 1" outside, SQLite omits the inner ORDER BY and counts in a covering index.
    SqliteStatement counting =
        SqliteStatement(m_database, u"Select count(*) from ("_s + select + u") order by 1"_s, Purpose::Select);
    const bool counts = !counting.hasFailed();
    SqliteStatement statement = counts ? std::move(counting) : SqliteStatement(m_database, select, Purpose::Select);
    const std::int64_t rows = counts ? oneNumber(statement) : countSteps(statement);
    if (!statement.hasFailed())
        return rows;
    reportError(*this, Kind::Read, select, statement);
    return {};
}

std::optional<std::vector<DbRowId>> SqliteConnection::rowIds(const QString &select)
{
    constexpr auto all = "Select *"_L1;
    SqliteStatement statement(m_database, select, Purpose::Select);
    const QString rowId = statement.hasFailed() ? QString() : rowIdName(statement.columnNames());
    std::vector<DbRowId> ids;
    if (select.startsWith(all, Qt::CaseInsensitive) && !rowId.isEmpty()) {
        // "*" stays in the column list: without it SQLite may scan a covering index, in another order than the rows.
        const QString withIds = u"Select "_s + rowId + u",*"_s + select.sliced(all.size());
        statement = SqliteStatement(m_database, withIds, Purpose::Select);
        ids = identities(statement);
    } else if (!statement.hasFailed()) {
        statement.refuse(u"the rows have no identity"_s);
    }
    if (!statement.hasFailed())
        return ids;
    reportError(*this, Kind::Read, select, statement);
    return {};
}

bool SqliteConnection::insertRow(const QString &table, const DbAssignments &values)
{
    return change(*this, u"INSERT "_s + table, SqliteStatement(m_database, insertText(table, values), Purpose::Change),
                  values, m_lastWrite);
}

bool SqliteConnection::updateRow(const QString &table, DbRowId row, const DbAssignments &values)
{
    const QString what = u"UPDATE "_s + table;
    SqliteStatement statement(m_database, u"Select * from "_s + quoted(table), Purpose::Select);
    const QString rowId = statement.hasFailed() ? QString() : rowIdName(statement.columnNames());
    if (!rowId.isEmpty())
        statement = SqliteStatement(m_database, updateText(table, row, rowId, values), Purpose::Change);
    else if (!statement.hasFailed())
        statement.refuse(u"the rows have no identity"_s);
    return change(*this, what, std::move(statement), values, m_lastWrite);
}

QString SqliteConnection::location() const
{
    return m_location;
}

bool SqliteConnection::hold()
{
    if (!m_database || isWithinTransaction(m_database))
        return false;
    m_holds = run(m_database, "BEGIN IMMEDIATE");
    if (!m_holds)
        qCWarning(lcStore, "Nothing could be held, so the next write goes on alone: %s", sqlite3_errmsg(m_database));
    return m_holds;
}

bool SqliteConnection::settle(const QString &write)
{
    if (!std::exchange(m_holds, false))
        return true;
    const bool kept = !write.isEmpty() && run(m_database, "COMMIT");
    const DbFailure failure{Kind::Write, write, QString::fromUtf8(sqlite3_errmsg(m_database)),
                            sqlite3_extended_errcode(m_database)};
    m_lastWrite = kept ? WriteOutcome::Done : WriteOutcome::Refused;
    if (isWithinTransaction(m_database)) // SQLite rolls back by itself after some errors
        run(m_database, "ROLLBACK");
    else if (!kept && !write.isEmpty() && mayHaveCommitted(failure.engineCode))
        m_lastWrite = WriteOutcome::Unknown;
    if (!kept && !write.isEmpty())
        reportFailure(failure); // after the rollback: the handler must not run under the lock
    return kept;
}

bool SqliteConnection::mayHaveWritten() const
{
    return m_lastWrite == WriteOutcome::Unknown;
}

WriteOutcome SqliteConnection::lastWrite() const
{
    return m_lastWrite;
}

} // namespace harrowby
