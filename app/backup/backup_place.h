// SPDX-License-Identifier: MIT
#pragma once

#include "basic/result.h"

#include <QString>

#include <optional>

namespace harrowby::app {

/// Whether the backup of this store can be written there, or why not, in words for a person. A file that is there
/// already is no reason.
[[nodiscard]] Result<void, QString> checkBackupPlace(const QString &store, const QString &target);

/// Whether a file can be made in the folder of that one, or why not.
[[nodiscard]] Result<void, QString> checkFolderOf(const QString &target);

/// Whether it is the store file, under whatever name, or one that SQLite keeps beside it.
[[nodiscard]] bool belongsToStore(const QString &store, const QString &target);

/// Why that file can be no backup of this store, before it is opened, in words for a person; nothing when it may be
/// one.
[[nodiscard]] std::optional<QString> noBackupWords(const QString &store, const QString &file);

/// True for an ordinary file of that name, which a backup would replace.
[[nodiscard]] bool backupWouldReplace(const QString &target);

/// Where the file lies that the name stands for: links are followed.
[[nodiscard]] QString realTarget(const QString &target);

} // namespace harrowby::app
