// SPDX-License-Identifier: MIT
#pragma once

#include "app/shop/store_problem.h"
#include "app/shop/wait_times.h"
#include "basic/result.h"
#include "engine/database.h"

#include <QString>

#include <chrono>
#include <optional>

namespace harrowby::app {

class BusyWait;

/// Looks at an existing file before anything is written to it, and says why it cannot serve as a store; empty when
/// it can. Neither the file nor its log is changed, except that SQLite rolls back what a crash has left half done.
/// SQLite's check of the whole file gives up after `checkLimit`. Neither the application id nor the schema version
/// counts: a file of any program's will do whose tables fit, a newer one of ours too.
[[nodiscard]] std::optional<StoreProblem> judgeStore(const QString &path, BusyWait &wait,
                                                     std::chrono::milliseconds checkLimit = wait_times::longestCheck);

/// The same rules for a file that is only read, wherever it lies, such as a backup on a medium that cannot be written.
/// It is open for reading then.
[[nodiscard]] Result<SqliteDatabase, StoreProblem> openJudged(const QString &path, BusyWait &wait,
                                                              std::chrono::milliseconds checkLimit);

/// Why no new store file can be made at this name; empty when one can. Nothing is written.
/// With `makeFolder` the folder itself may still be missing.
[[nodiscard]] std::optional<StoreProblem> judgeNewStore(const QString &path, bool makeFolder);

} // namespace harrowby::app
