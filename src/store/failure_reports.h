// SPDX-License-Identifier: MIT
#pragma once

#include <harrowby/db_connection.h>

#include <memory>
#include <utility>

namespace harrowby {

/// Reports a failure through the connection, or to the log alone when there is none.
void report(const std::shared_ptr<DbConnection> &connection, const DbFailure &failure) noexcept;
/// Reports the exception that is being handled. Only in a catch block.
void reportCaught(const std::shared_ptr<DbConnection> &connection, DbFailure::Kind kind,
                  const QString &statement) noexcept;
/// Reports that there is no connection at all.
void reportMissing(DbFailure::Kind kind, const QString &statement) noexcept;

/// Does work with the connection. A null connection fails, and so does work that throws; both are reported.
template <typename Work>
bool runReported(const std::shared_ptr<DbConnection> &connection, DbFailure::Kind kind, const QString &statement,
                 Work &&work) noexcept
{
    if (!connection) {
        reportMissing(kind, statement);
        return false;
    }
    try {
        std::forward<Work>(work)();
        return true;
    } catch (...) {
        reportCaught(connection, kind, statement);
        return false;
    }
}

} // namespace harrowby
