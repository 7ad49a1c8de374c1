// SPDX-License-Identifier: MIT
#pragma once

#include "app/shop/store_problem.h"
#include "engine/database.h"

#include <QString>

#include <optional>

namespace harrowby::app {

class BusyWait;

/// openStore() on another thread. When it takes longer than wait_times::quiet (a lock, a big file, missing indexes),
/// a small window says what it waits for until it ends.
[[nodiscard]] Result<SqliteDatabase, StoreProblem> openStoreBeside(const QString &path, BusyWait &wait);

} // namespace harrowby::app
