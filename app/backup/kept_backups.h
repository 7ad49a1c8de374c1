// SPDX-License-Identifier: MIT
#pragma once

#include "app/backup/backup.h"

#include <QDateTime>
#include <QString>
#include <QStringList>

/// The backups that the program makes by itself, each under a name of its own, and of which it removes the oldest.
namespace harrowby::app {

/// "shop-2026-11-22-220000-1f3a9c07.db": the store's name, the moment, and a mark of this very store, which is another
/// one for a store of the same name in another folder or on another machine. Backups for a purpose of their own begin
/// with other words than the store's name.
[[nodiscard]] QString keptBackupName(const QString &store, const QDateTime &moment, const QString &begin = {});

/// The mark of this very store, eight hexadecimal digits.
[[nodiscard]] QString storeMark(const QString &store);

/// The backups of this very store in the folder, by their names, the newest first. Absolute paths.
[[nodiscard]] QStringList keptBackups(const QString &folder, const QString &store, const QString &begin = {});

/// How many may be asked to stay.
inline constexpr int fewestToKeep = 1;
inline constexpr int mostToKeep = 9999;
[[nodiscard]] constexpr bool mayKeep(int count)
{
    return count >= fewestToKeep && count <= mostToKeep;
}

struct KeptBackup
{
    BackupResult result;
    QStringList removed;    ///< older ones
    QStringList notRemoved; ///< that should have gone
};

/// Makes a backup in the folder. When it is made and checked, it removes those that are older than this one, but for
/// the newest, so that `keep` remain with it; 0 removes none. What has another name stays. Several programs may do so
/// at once: the newest backup stays always.
[[nodiscard]] KeptBackup keepBackup(const QString &store, const QString &folder, int keep, const QDateTime &now,
                                    const BackupWatch &watch, const QString &begin = {});

} // namespace harrowby::app
