// SPDX-License-Identifier: MIT
#pragma once

#include "app/shop/store_problem.h"

#include <QLatin1StringView>
#include <QString>

#include <optional>

/// What the file system says about a store's path before SQLite is asked: names beside it, and why it cannot serve.
/// Device, inode, size and time of a file (the struct FileFacts) are in file_identity.h.
namespace harrowby::app {

/// What SQLite calls a database that is in no file.
inline constexpr QStringView memoryName = u":memory:";

/// What SQLite appends to a store file's name for its log and its journal.
inline constexpr QLatin1StringView logEnding("-wal");
inline constexpr QLatin1StringView journalEnding("-journal");

/// The write-ahead log, the log's index and the rollback journal that SQLite keeps beside a store file. They lie
/// where the file itself lies, also when `path` is a link.
[[nodiscard]] QString logFileOf(const QString &path);
[[nodiscard]] QString logIndexOf(const QString &path);
[[nodiscard]] QString journalOf(const QString &path);

/// The file in which tills show that they live (app/cash/run_locks.h).
[[nodiscard]] QString runLocksOf(const QString &path);

/// True when this name exists, a dangling link included.
[[nodiscard]] bool nameIsTaken(const QString &path);

/// Why the existing file cannot be read and written where it lies; empty when it can.
[[nodiscard]] std::optional<StoreProblem> judgePlace(const QString &path);
/// Why no file can be made there; empty when one can. With `makeFolder` the folder may still be missing.
[[nodiscard]] std::optional<StoreProblem> judgeNewPlace(const QString &path, bool makeFolder);

} // namespace harrowby::app
