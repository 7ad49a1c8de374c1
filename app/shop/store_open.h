// SPDX-License-Identifier: MIT
#pragma once

#include "app/shop/store_problem.h"
#include "engine/database.h"

#include <QString>

#include <optional>

namespace harrowby::app {

class BusyWait;

/// Judges an existing store file and opens it for a till that loses nothing: what it needs is set on the connection,
/// and the indexes that the file lacks are made.
[[nodiscard]] Result<SqliteDatabase, StoreProblem> openStore(const QString &path, BusyWait &wait);

} // namespace harrowby::app
