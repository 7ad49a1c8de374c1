// SPDX-License-Identifier: MIT
#include "app/records/sqlite_records.h"

#include "engine/sqlite_statement.h"

#include <sqlite3.h>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

using Kind = DbFailure::Kind;

/// A lost file has its own code and reason, which the engine does not know.
DbFailure failureOf(Kind kind, const QString &text, const SqliteStatement &statement)
{
    const SqlError error = statement.error().value_or(SqlError());
    const bool isLost = error.code == SQLITE_READONLY_DBMOVED;
    return {kind, text, error.reason, isLost ? error.code : statement.extendedCode()};
}

/// Of the row on which a statement stands.
class RowCells final : public RecordCells
{
public:
    explicit RowCells(const SqliteStatement &query) :
        m_query(query), m_count(static_cast<int>(query.hasFailed() ? 0 : query.columnNames().size()))
    {
    }
    [[nodiscard]] int count() const override { return m_count; }
    [[nodiscard]] RecordValue value(int column) const override { return m_query.value(column); }
    [[nodiscard]] std::optional<QByteArrayView> utf8(int column) const override { return m_query.utf8(column); }

private:
    const SqliteStatement &m_query;
    int m_count;
};

const auto insertAction = u"insert"_s;

/// "harrowby_activity_update", "harrowby_activity_delete", "harrowby_activity_insert"
QString guardName(const RecordTable &table, const QString &action)
{
    return QString(table.name).replace(u"Harrowby"_s, u"harrowby_"_s).toLower() + u'_' + action;
}

/// When an INSERT would put another row in the place of one that is there: REPLACE runs no trigger for the row that
/// goes. The very same row may be inserted again, for INSERT OR IGNORE.
QString replacingCondition(const RecordTable &table)
{
    const QString columns = table.columns.join(u", "_s);
    const QString added = u"new."_s + table.columns.join(u", new."_s);
    return u"when exists (select 1 from %1 where (%2 = new.%2 or rowid = new.rowid) and (%3) is not (%4))"_s.arg(
        table.name, table.columns.constFirst(), columns, added);
}

/// VACUUM and the engine's own copies run no trigger.
QString guardStatement(const RecordTable &table, const QString &action)
{
    const QString condition = action == insertAction ? replacingCondition(table) : QString();
    return u"create trigger if not exists %1 before %2 on %3 %4 begin select raise(abort, '%3 is only ever added to'); end"_s
        .arg(guardName(table, action), action, table.name, condition);
}

} // namespace

Records::Answer<bool> SqliteRecords::hasTable(const RecordTable &table)
{
    const QString text = u"select 1 from sqlite_master where type = 'table' and name = ?"_s;
    SqliteStatement query(m_database, text, {table.name});
    const bool found = query.next();
    if (query.hasFailed())
        return Unexpected(failureOf(Kind::Read, text, query));
    return found;
}

std::optional<DbFailure> SqliteRecords::keepRows(const RecordTable &table)
{
    const QString text = u"select name from sqlite_master where type = 'trigger' and tbl_name = ?"_s;
    const auto rows = select({text, {table.name}});
    if (!rows)
        return rows.error();
    for (const QString &action : {u"update"_s, u"delete"_s, insertAction}) {
        if (rows->contains(RecordRow{guardName(table, action)}))
            continue;
        if (auto failure = run(guardStatement(table, action)))
            return failure;
    }
    return {};
}

Records::Answer<QList<RecordRow>> SqliteRecords::select(const RecordStatement &statement)
{
    SqliteStatement query(m_database, statement.text, statement.values);
    const int columns = static_cast<int>(query.hasFailed() ? 0 : query.columnNames().size());
    QList<RecordRow> rows;
    while (query.next()) {
        RecordRow row;
        for (int column = 0; column < columns; ++column)
            row << query.value(column);
        rows << row;
    }
    if (query.hasFailed())
        return Unexpected(failureOf(Kind::Read, statement.text, query));
    return rows;
}

Records::Answer<bool> SqliteRecords::selectEach(const RecordStatement &statement, const RowTaker &take)
{
    SqliteStatement query(m_database, statement.text, statement.values);
    const RowCells cells(query);
    bool goesOn = true;
    while (goesOn && query.next())
        goesOn = take(cells);
    if (query.hasFailed())
        return Unexpected(failureOf(Kind::Read, statement.text, query));
    return goesOn;
}

Records::Answer<std::int64_t> SqliteRecords::change(const RecordStatement &statement)
{
    SqliteStatement query(m_database, statement.text, statement.values);
    while (query.next()) {
    }
    if (query.hasFailed())
        return Unexpected(failureOf(Kind::Write, statement.text, query));
    return sqlite3_changes(m_database);
}

Records::Answer<std::int64_t> SqliteRecords::changeEach(const QString &text, const QList<QList<RecordValue>> &rows)
{
    SqliteStatement query(m_database, text, QList<DbValue>());
    std::int64_t changed = 0;
    for (const QList<RecordValue> &values : rows) {
        query.beginAgain();
        for (qsizetype i = 0; i < values.size(); ++i)
            query.bind(static_cast<int>(i) + 1, values.at(i));
        while (query.next()) {
        }
        if (query.hasFailed())
            break;
        changed += sqlite3_changes(m_database);
    }
    if (query.hasFailed())
        return Unexpected(failureOf(Kind::Write, text, query));
    return changed;
}

std::optional<DbFailure> SqliteRecords::begin(const RecordTable &, const QString &)
{
    return run(u"begin immediate"_s);
}

std::optional<DbFailure> SqliteRecords::commit()
{
    return run(u"commit"_s);
}

/// SQLite rolls back by itself after some errors.
void SqliteRecords::rollBack()
{
    if (sqlite3_get_autocommit(m_database) == 0)
        (void)run(u"rollback"_s);
}

std::optional<DbFailure> SqliteRecords::run(const QString &text)
{
    SqliteStatement statement(m_database, text, QList<DbValue>());
    while (statement.next()) {
    }
    if (statement.hasFailed())
        return failureOf(Kind::Write, text, statement);
    return {};
}

} // namespace harrowby::app
