// SPDX-License-Identifier: MIT
#pragma once

#include "postgres/server_access.h"
#include "postgres/writer.h"

#include <QString>

#include <cstdint>
#include <functional>

namespace harrowby {
class PostgresConnection;
}

namespace harrowby::postgres {

/// Called in the middle of a statement: must not throw, or use the connection.
struct ConnectionWatch
{
    /// An UPDATE, INSERT or DELETE was done and has changed as many rows; not called where the answer was lost.
    std::function<void(const QString &statement, std::int64_t rows)> changed;
    /// A SELECT has no row.
    std::function<void(const QString &select)> empty;
};

/// What stands behind a connection, for what else works over its session. As long as the connection.
struct ConnectionParts
{
    ServerAccess &access;
    Writer &writer;
    ConnectionWatch &watch;

    [[nodiscard]] static ConnectionParts of(PostgresConnection &connection);
};

} // namespace harrowby::postgres
