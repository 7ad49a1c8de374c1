// SPDX-License-Identifier: MIT
#pragma once

#include "engine/database.h"

#include <QString>

/// Who may go into the store's office: ADMINISTRATOR, with the password that the till's login takes. How long the next
/// try waits after wrong ones: wrong_tries.h.
namespace harrowby::app {

struct DoorAnswer
{
    enum class Kind {
        Open,
        Blank,           ///< nothing was typed
        Wrong,           ///< another password
        NoAdministrator, ///< the store has none who could log in
        Failed,          ///< the store could not be read; the reason says why
    };
    Kind kind = Kind::Failed;
    SqlError error;
};

/// Compares as the login does: trimmed and in capitals, and never a user of the type VIEWER.
[[nodiscard]] DoorAnswer askAtDoor(sqlite3 *database, const QString &password);

/// What stands in the way before any password is typed; Open when nothing does.
[[nodiscard]] DoorAnswer findAdministrator(sqlite3 *database);

} // namespace harrowby::app
