// SPDX-License-Identifier: MIT
#pragma once

struct sqlite3;

namespace harrowby::app {

/// Adds to a copy of a backup what the store that it replaces knows and no restore may take away: its rows of the
/// tables that are only ever added to, and where its backups are. What cannot be carried over is logged.
void carryRecords(sqlite3 *store, sqlite3 *copy);

} // namespace harrowby::app
