// SPDX-License-Identifier: MIT
#pragma once

#include "basic/result.h"

#include <QDate>
#include <QDateTime>
#include <QString>

namespace harrowby::app {

/// The folder that is offered for a backup.
[[nodiscard]] QString usualBackupFolder();
/// The name that is offered for a backup of that day.
[[nodiscard]] QString usualBackupName(const QDate &day);

/// Where the copy of a store goes whose file was lost: beside its place, or into the documents when nothing can be
/// written there. No file has that name yet.
[[nodiscard]] QString usualRescuePlace(const QString &store, const QDateTime &now);

/// Whether the backup of this store can be written there, or why not, in words for a person. A file that is there
/// already is no reason.
[[nodiscard]] Result<void, QString> checkBackupPlace(const QString &store, const QString &target);

/// True for an ordinary file of that name, which a backup would replace.
[[nodiscard]] bool backupWouldReplace(const QString &target);

/// Where the file lies that the name stands for: links are followed.
[[nodiscard]] QString realTarget(const QString &target);

} // namespace harrowby::app
