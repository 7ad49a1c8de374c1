// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

struct sqlite3;

namespace harrowby::bench {

/// Copies the six tables of a store file into the empty ones of a server, and has the server look at what it has got.
/// Throws std::runtime_error when the engine refuses.
void fillServer(const QString &conninfo, sqlite3 *file);

} // namespace harrowby::bench
