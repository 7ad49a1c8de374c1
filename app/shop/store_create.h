// SPDX-License-Identifier: MIT
#pragma once

#include "app/shop/store_problem.h"
#include "engine/database.h"

#include <QString>

#include <functional>
#include <optional>

namespace harrowby::app {

/// Puts the first rows into the six empty tables; an error calls the whole file off.
using StoreFiller = std::function<std::optional<SqlError>(sqlite3 *)>;

/// Makes a new store file, whole or not at all: it is built in a temporary folder beside its place and then gets its
/// name. A file that has come to bear the name meanwhile is left alone, and is no problem. Missing folders are made
/// when `makeFolder` is set.
[[nodiscard]] std::optional<StoreProblem> createStore(const QString &path, bool makeFolder, const StoreFiller &fill);

/// Makes a store of an open database without tables; the file's name and log are the caller's business.
[[nodiscard]] std::optional<SqlError> makeStoreIn(sqlite3 *database, const StoreFiller &fill);

/// Adds the one user of a new store, ADMINISTRATOR, who may do everything. The password must have passed
/// checkPassword().
[[nodiscard]] std::optional<SqlError> addAdministrator(sqlite3 *database, const QString &password);

} // namespace harrowby::app
