// SPDX-License-Identifier: MIT
#pragma once

struct sqlite3;

namespace harrowby::app {

/// Adds the function harrowby_finds(text, value) to this connection: 1 when the text stands anywhere in the value, in
/// whatever case (SoughtText), else 0; null for a null. No index, view or trigger can name it, so the file never needs
/// it. Nothing else on the connection changes: LIKE stays SQLite's. False when the engine refuses.
[[nodiscard]] bool addFindingFunction(sqlite3 *database);

} // namespace harrowby::app
