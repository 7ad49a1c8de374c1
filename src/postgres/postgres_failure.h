// SPDX-License-Identifier: MIT
#pragma once

#include "postgres/actions.h"
#include "postgres/server_error.h"

#include <harrowby/db_connection.h>

namespace harrowby::postgres {

/// An error of the server's, or on the way to it, as the component's host is told of it.
[[nodiscard]] DbFailure failureOf(DbFailure::Kind kind, const QString &statement, const PgError &error);
/// The same of a write that has ended otherwise than done.
[[nodiscard]] DbFailure failureOf(const QString &statement, const Actions::End &end);

/// The server's SQLSTATE, or the one that says the same where the server has said nothing. Empty: the statement was
/// refused before it was sent.
[[nodiscard]] QString stateOf(const PgError &error);

} // namespace harrowby::postgres
