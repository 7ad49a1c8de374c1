// SPDX-License-Identifier: MIT
#pragma once

#include "engine/database.h"

#include <chrono>

namespace harrowby::app {

struct QuickCheck
{
    enum class Result {
        Sound,
        Unfinished, ///< the time was up; nothing bad was seen until then
        Damaged,    ///< error.reason says how
        Failed,     ///< the file could not be read; error says why
    };
    Result result = Result::Sound;
    SqlError error;
};

/// SQLite's quick check of the file's structure, for at most `limit`. A row that breaks a rule of its table (a null
/// where none may be) is no damage.
[[nodiscard]] QuickCheck quickCheck(sqlite3 *database, std::chrono::milliseconds limit);

} // namespace harrowby::app
