// SPDX-License-Identifier: MIT
#include "tests/postgres/server_store.h"

#include "postgres/schema.h"
#include "postgres/storable.h"

#include <QDir>
#include <QFile>

#include <libpq-fe.h>

namespace harrowby::test {

using namespace Qt::StringLiterals;

namespace {

struct Clear
{
    void operator()(PGresult *result) const { PQclear(result); }
};
using Answer = std::unique_ptr<PGresult, Clear>;

QList<DbValue> rowOf(const PGresult *answer, int row, int columns)
{
    QList<DbValue> values;
    for (int column = 0; column < columns; ++column) {
        const QByteArrayView text(PQgetvalue(answer, row, column), PQgetlength(answer, row, column));
        values << (PQgetisnull(answer, row, column) != 0 ? DbValue()
                                                         : postgres::readValue(text, PQftype(answer, column)));
    }
    return values;
}

} // namespace

QStringList schemaFiles()
{
    QStringList texts;
    const QDir folder(QStringLiteral(HARROWBY_SCHEMA_FOLDER));
    for (const QString &name : folder.entryList({u"*.sql"_s}, QDir::Files, QDir::Name)) {
        QFile file(folder.filePath(name));
        if (file.open(QIODevice::ReadOnly))
            texts << QString::fromUtf8(file.readAll());
    }
    return texts;
}

void ServerStore::Finish::operator()(pg_conn *connection) const
{
    PQfinish(connection);
}

ServerStore::ServerStore(const QString &conninfo) : m_connection(PQconnectdb(conninfo.toUtf8().constData()))
{
    PQsetNoticeProcessor(
        m_connection.get(), [](void *, const char *) {}, nullptr);
    if (const auto told =
            run(u"set search_path = %1; set client_encoding = 'UTF8'"_s.arg(QLatin1StringView(postgres::searchPath)));
        !told.failure.isEmpty())
        qFatal("No connection to the server: %s", qPrintable(told.failure));
}

ServerRows ServerStore::run(const QString &statements)
{
    ServerRows result;
    const Answer answer(PQexec(m_connection.get(), statements.toUtf8().constData()));
    const auto status = PQresultStatus(answer.get());
    if (status != PGRES_TUPLES_OK && status != PGRES_COMMAND_OK) {
        result.failure = QString::fromUtf8(PQerrorMessage(m_connection.get())).trimmed();
        return result;
    }
    int columns = PQnfields(answer.get());
    const bool hasIdentity = columns > 0 && QLatin1StringView(PQfname(answer.get(), columns - 1)) ==
                                                QLatin1StringView(postgres::identityColumn);
    if (hasIdentity)
        --columns;
    for (int column = 0; column < columns; ++column)
        result.columns << QString::fromUtf8(PQfname(answer.get(), column));
    for (int row = 0; row < PQntuples(answer.get()); ++row) {
        result.rows << rowOf(answer.get(), row, columns);
        if (hasIdentity)
            result.identities << QByteArray(PQgetvalue(answer.get(), row, columns)).toLongLong();
    }
    return result;
}

ServerRows ServerStore::select(const QString &statement, postgres::Search search)
{
    const auto text = postgres::selectText(statement, search);
    return text ? run(*text) : ServerRows{text.error(), {}, {}, {}};
}

std::int64_t ServerStore::count(const QString &select)
{
    const auto text = postgres::countText(select);
    const ServerRows result = text ? run(*text) : ServerRows{text.error(), {}, {}, {}};
    return result.rows.isEmpty() ? -1 : std::get<std::int64_t>(result.rows.front().front());
}

QString ServerStore::change(const QString &statement)
{
    const auto text = postgres::changeText(statement);
    return text ? run(*text).failure : text.error();
}

QString ServerStore::insert(const QString &table, const DbAssignments &values)
{
    const auto reason = postgres::unstorable(table, values);
    return reason ? *reason : run(postgres::insertText(table, values)).failure;
}

QString ServerStore::update(const QString &table, std::int64_t row, const DbAssignments &values)
{
    const auto reason = postgres::unstorable(table, values);
    return reason ? *reason : run(postgres::updateText(table, row, values)).failure;
}

} // namespace harrowby::test
