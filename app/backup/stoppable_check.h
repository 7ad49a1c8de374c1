// SPDX-License-Identifier: MIT
#pragma once

#include "app/shop/quick_check.h"

#include <functional>

struct sqlite3;

namespace harrowby::app {

/// SQLite's quick check of a whole file. `goesOn` is called on another thread some twenty times a second; once it
/// returns false, the check is interrupted and its result means nothing.
[[nodiscard]] QuickCheck checkUnlessStopped(sqlite3 *database, const std::function<bool()> &goesOn);

} // namespace harrowby::app
