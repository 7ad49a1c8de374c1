// SPDX-License-Identifier: MIT
#include "bench/server_filling.h"

#include "bench/pq_handles.h"
#include "postgres/schema.h"

#include <QByteArray>

#include <sqlite3.h>

#include <memory>
#include <stdexcept>

using namespace Qt::StringLiterals;

namespace harrowby::bench {

namespace {

using FileRows = std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt *)>;

[[noreturn]] void fail(PGconn *server)
{
    throw std::runtime_error(PQerrorMessage(server));
}

void execute(PGconn *server, const QByteArray &statements, ExecStatusType expected)
{
    const PqAnswer answer(PQexec(server, statements.constData()));
    if (PQresultStatus(answer.get()) != expected)
        fail(server);
}

/// A value in the text form of COPY.
void append(QByteArray &line, sqlite3_stmt *row, int column)
{
    if (sqlite3_column_type(row, column) == SQLITE_NULL) {
        line += "\\N";
        return;
    }
    const auto *text = reinterpret_cast<const char *>(sqlite3_column_text(row, column));
    for (; *text != '\0'; ++text) {
        switch (*text) {
        case '\\':
            line += "\\\\";
            break;
        case '\n':
            line += "\\n";
            break;
        case '\r':
            line += "\\r";
            break;
        case '\t':
            line += "\\t";
            break;
        default:
            line += *text;
        }
    }
}

QByteArray lineOf(sqlite3_stmt *row)
{
    QByteArray line;
    for (int column = 0; column < sqlite3_column_count(row); ++column) {
        if (column > 0)
            line += '\t';
        append(line, row, column);
    }
    return line + '\n';
}

void copyTable(PGconn *server, sqlite3 *file, const postgres::ShopTable &table)
{
    const QByteArray name = table.name.toUtf8();
    const QByteArray columns = table.columns.join(u", "_s).toUtf8();
    const QByteArray select = "select " + columns + ", rowid from " + name + " order by rowid";
    sqlite3_stmt *statement = nullptr;
    sqlite3_prepare_v2(file, select.constData(), -1, &statement, nullptr);
    const FileRows rows(statement, &sqlite3_finalize);
    execute(server, "copy " + name + " (" + columns + ", " + postgres::identityColumn + ") from stdin", PGRES_COPY_IN);
    int step = SQLITE_ROW;
    while (rows && (step = sqlite3_step(rows.get())) == SQLITE_ROW) {
        const QByteArray line = lineOf(rows.get());
        if (PQputCopyData(server, line.constData(), static_cast<int>(line.size())) != 1)
            fail(server);
    }
    if (step != SQLITE_DONE || PQputCopyEnd(server, nullptr) != 1)
        fail(server);
    const PqAnswer end(PQgetResult(server));
    if (PQresultStatus(end.get()) != PGRES_COMMAND_OK)
        fail(server);
    const PqAnswer nothing(PQgetResult(server));
    execute(server,
            "select setval(pg_get_serial_sequence('" + name +
                "', 'rowid_'), (select coalesce(max(rowid_), 0) + 1 from " + name + "), false)",
            PGRES_TUPLES_OK);
}

} // namespace

void fillServer(const QString &conninfo, sqlite3 *file)
{
    const PqConnection server(PQconnectdb(conninfo.toUtf8().constData()));
    execute(server.get(), "set search_path = " + QByteArray(postgres::searchPath), PGRES_COMMAND_OK);
    for (const postgres::ShopTable &table : postgres::shopTables())
        copyTable(server.get(), file, table);
    execute(server.get(), "vacuum analyze", PGRES_COMMAND_OK);
}

} // namespace harrowby::bench
