// SPDX-License-Identifier: MIT
#pragma once

#include "postgres/dialect.h"

#include <harrowby/db_value.h>

#include <QList>
#include <QString>
#include <QStringList>

#include <memory>

struct pg_conn;

namespace harrowby::test {

/// What a statement has given, as the counter sees it: column names in small letters, without the row's identity.
struct ServerRows
{
    QString failure; ///< the server's message, or why the statement was not sent; empty when there is none
    QStringList columns;
    QList<QList<DbValue>> rows;
    QList<std::int64_t> identities; ///< of the rows, where they came with them
};

/// The statements that make a store on a server, file by file (src/postgres/schema).
[[nodiscard]] QStringList schemaFiles();

/// A plain connection to a store on a server. Statements go through the dialect, one by one.
class ServerStore
{
public:
    explicit ServerStore(const QString &conninfo);

    /// As it is, past the dialect; several statements give the last one's rows.
    [[nodiscard]] ServerRows run(const QString &statements);
    [[nodiscard]] ServerRows select(const QString &statement, postgres::Search search = postgres::Search::AsWritten);
    /// -1 when it failed.
    [[nodiscard]] std::int64_t count(const QString &select);
    /// The reason when it failed; empty when it is done.
    [[nodiscard]] QString change(const QString &statement);
    [[nodiscard]] QString insert(const QString &table, const DbAssignments &values);
    [[nodiscard]] QString update(const QString &table, std::int64_t row, const DbAssignments &values);

private:
    struct Finish
    {
        void operator()(pg_conn *connection) const;
    };
    std::unique_ptr<pg_conn, Finish> m_connection;
};

} // namespace harrowby::test
