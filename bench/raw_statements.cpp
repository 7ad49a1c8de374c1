// SPDX-License-Identifier: MIT
#include "bench/raw_statements.h"

#include "store/statement.h"

#include <sqlite3.h>

#include <memory>

namespace harrowby::bench {

namespace {

using Prepared = std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt *)>;

/// Keeps the compiler from leaving out a read whose value nobody wants.
template <typename Value>
void use(const Value &value)
{
    asm volatile("" : : "g"(&value) : "memory");
}

Prepared prepare(sqlite3 *database, const QByteArray &sql)
{
    sqlite3_stmt *statement = nullptr;
    sqlite3_prepare_v2(database, sql.constData(), static_cast<int>(sql.size()), &statement, nullptr);
    return Prepared(statement, sqlite3_finalize);
}

std::vector<int> columnNumbers(sqlite3_stmt *statement, const QByteArrayList &names)
{
    std::vector<int> numbers;
    for (int i = 0; i < sqlite3_column_count(statement); ++i) {
        for (const QByteArray &name : names) {
            if (qstricmp(sqlite3_column_name(statement, i), name.constData()) == 0)
                numbers.push_back(i);
        }
    }
    return numbers;
}

void readColumn(sqlite3_stmt *statement, int column)
{
    switch (sqlite3_column_type(statement, column)) {
    case SQLITE_INTEGER:
        use(sqlite3_column_int64(statement, column));
        break;
    case SQLITE_FLOAT:
        use(sqlite3_column_double(statement, column));
        break;
    default:
        use(sqlite3_column_text(statement, column));
        break;
    }
}

bool runOne(sqlite3 *database, const RawStatement &raw)
{
    const Prepared statement = prepare(database, raw.sql);
    if (!statement)
        return false;
    int parameter = 0;
    for (const QByteArray &value : raw.values)
        sqlite3_bind_text(statement.get(), ++parameter, value.constData(), static_cast<int>(value.size()),
                          SQLITE_STATIC);
    const std::vector<int> columns = columnNumbers(statement.get(), raw.columns);
    int step = SQLITE_ROW;
    while ((step = sqlite3_step(statement.get())) == SQLITE_ROW) {
        for (const int column : columns)
            readColumn(statement.get(), column);
    }
    return step == SQLITE_DONE;
}

} // namespace

RawStatement readRows(const Statement &select, QByteArrayList columns)
{
    return {select.sql().toUtf8(), std::move(columns), {}};
}

RawStatement countRows(const Statement &select)
{
    QByteArray sql = select.sql().toUtf8();
    const QByteArray lower = sql.toLower();
    if (const qsizetype order = lower.indexOf(" order by "); order >= 0)
        sql.truncate(order);
    sql.replace(0, sizeof "Select *" - 1, "Select count(*)");
    return {sql, {"count(*)"}, {}};
}

RawStatement change(const Statement &statement)
{
    return {statement.sql().toUtf8(), {}, {}};
}

bool runRaw(sqlite3 *database, const RawStatements &statements)
{
    bool allRan = true;
    for (const RawStatement &statement : statements)
        allRan = runOne(database, statement) && allRan;
    return allRan;
}

} // namespace harrowby::bench
