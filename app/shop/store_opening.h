// SPDX-License-Identifier: MIT
#pragma once

#include "app/shop/store_problem.h"
#include "engine/database.h"

#include <QString>

#include <optional>

namespace harrowby::app {

class BusyWait;

/// openStore() on a thread of its own. When it takes longer than a moment (a lock, a big file, missing indexes), a
/// small window says what it waits for, and goes with the end.
[[nodiscard]] std::optional<StoreProblem> openStoreBeside(const QString &path, BusyWait &wait,
                                                          SqliteDatabase &database);

} // namespace harrowby::app
