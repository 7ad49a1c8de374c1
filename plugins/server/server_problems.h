// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/server_engine.h"
#include "postgres/server_error.h"

namespace harrowby::server {

/// What the program is told of an error of the server's, or on the way to it.
[[nodiscard]] app::ServerProblem problemOf(const PgError &error);

} // namespace harrowby::server
