// SPDX-License-Identifier: MIT
#pragma once

#include "engine/database.h"

#include <QString>

#include <chrono>

/// Who may go into the store's office: ADMINISTRATOR, with the password that the till's login takes.
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

/// The whole pause after so many wrong tries: none after two, then 1 s, doubled with each up to 16 s. WrongTries counts
/// them and says what is left of it.
[[nodiscard]] std::chrono::milliseconds pauseAfter(int wrongTries);

} // namespace harrowby::app
