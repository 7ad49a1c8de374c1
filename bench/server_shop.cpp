// SPDX-License-Identifier: MIT
#include "bench/server_shop.h"

#include "bench/pq_handles.h"
#include "bench/stopwatch.h"
#include "plugins/server/postgres_records.h"
#include "postgres/connection_parts.h"
#include "postgres/dialect.h"
#include "postgres/schema.h"
#include "store/statement_texts.h"

#include <harrowby/postgres_connection.h>

#include <QTextStream>

#include <chrono>
#include <stdexcept>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;

namespace harrowby::bench {

namespace {

struct Sent
{
    QByteArray text;
    const QByteArrayList &columns;
};

/// Keeps the compiler from leaving out a read whose value nobody wants.
void noteRead(const char *value)
{
    asm volatile("" : : "g"(value) : "memory");
}

void readColumns(PGresult *rows, const QByteArrayList &names)
{
    std::vector<int> columns;
    for (const QByteArray &name : names)
        columns.push_back(PQfnumber(rows, name.constData()));
    for (int row = 0; row < PQntuples(rows); ++row) {
        for (const int column : columns) {
            if (column >= 0)
                noteRead(PQgetvalue(rows, row, column));
        }
    }
}

bool runOne(pg_conn *connection, const Sent &statement)
{
    const PqAnswer answer(PQexec(connection, statement.text.constData()));
    const ExecStatusType status = PQresultStatus(answer.get());
    if (status == PGRES_TUPLES_OK)
        readColumns(answer.get(), statement.columns);
    return status == PGRES_TUPLES_OK || status == PGRES_COMMAND_OK;
}

void setUp(pg_conn *connection, const QByteArray &statements)
{
    const PqAnswer answer(PQexec(connection, statements.constData()));
    const ExecStatusType status = PQresultStatus(answer.get());
    if (status != PGRES_TUPLES_OK && status != PGRES_COMMAND_OK)
        throw std::runtime_error(PQerrorMessage(connection));
}

QString sendable(const postgres::ServerText &text)
{
    if (!text)
        throw std::runtime_error(text.error().toStdString());
    return *text;
}

bool isSelect(const QString &statement)
{
    return statement.startsWith("select"_L1, Qt::CaseInsensitive);
}

} // namespace

ServerShop::ServerShop(QString place, const QString &conninfo) :
    m_place(std::move(place)), m_conninfo(conninfo), m_raw(PQconnectdb(conninfo.toUtf8().constData()))
{
    setUp(m_raw, "set search_path = " + QByteArray(postgres::searchPath) + "; set jit = off");
}

ServerShop::~ServerShop()
{
    PQfinish(m_raw);
}

std::shared_ptr<DbConnection> ServerShop::connect()
{
    PostgresOptions options;
    options.stateFolder = m_state.path();
    options.findsAnywhere = [] { return true; };
    options.silence = std::chrono::minutes(1); // a busy machine is slow, not dead
    options.lock = options.silence; // shorter ones would be set with each statement, which they are not in a shop
    auto connection = std::make_shared<PostgresConnection>(m_conninfo, options);
    connection->setFailureHandler([](const DbFailure &failure) {
        QTextStream(stderr) << failure.statement << ": " << failure.reason << Qt::endl;
    });
    connection->setWaitHook([wait = m_wait](const DbWait &part) { return wait->goesOn(part); });
    m_latest = connection;
    return connection;
}

std::unique_ptr<app::Records> ServerShop::records()
{
    const std::shared_ptr<PostgresConnection> connection = m_latest.lock();
    if (!connection)
        throw std::runtime_error("There is no connection for the records");
    const auto parts = postgres::ConnectionParts::of(*connection);
    return std::make_unique<server::PostgresRecords>(connection, parts.access, parts.writer);
}

std::optional<int> ServerShop::roundTrips() const
{
    return m_counter ? std::optional(m_counter()) : std::nullopt;
}

RawStatements ServerShop::search(const QString &text) const
{
    return {readRows(statements::searchStock(text.toUpper()), {"StockID", "StockName", "StockCategory"})};
}

QByteArray ServerShop::nextAction()
{
    return "select harrowby.act('" + m_writer.toByteArray(QUuid::WithoutBraces) + "', " +
           QByteArray::number(++m_written) + ");";
}

QByteArray ServerShop::inServersWords(const RawStatement &statement)
{
    if (statement.sql == "begin immediate") {
        m_isTogether = true;
        return "begin;" + nextAction();
    }
    if (statement.sql == "commit") {
        m_isTogether = false;
        return statement.sql;
    }
    QString text = QString::fromUtf8(statement.sql);
    text.replace("_rowid_"_L1, QLatin1StringView(postgres::identityColumn));
    QList<DbValue> values;
    for (const QByteArray &value : statement.values)
        values.append(QString::fromUtf8(value));
    text = sendable(postgres::withValues(text, values));
    if (isSelect(text))
        return sendable(postgres::selectText(text, postgres::Search::Anywhere)).toUtf8();
    const QByteArray change = sendable(postgres::changeText(text)).toUtf8();
    return m_isTogether ? change : nextAction() + change;
}

double ServerShop::rawMs(const RawStatements &statements)
{
    std::vector<Sent> prepared;
    for (const RawStatement &statement : statements)
        prepared.push_back({inServersWords(statement), statement.columns});
    const Stopwatch watch;
    bool allRan = true;
    for (const Sent &statement : prepared)
        allRan = runOne(m_raw, statement) && allRan;
    return allRan ? watch.milliseconds() : -1.0;
}

} // namespace harrowby::bench
