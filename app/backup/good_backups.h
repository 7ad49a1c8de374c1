// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/records.h"

#include <QDateTime>
#include <QList>
#include <QString>

#include <optional>

/// What the store itself knows of the backups that were made of it, in whatever way: where each went, and when.
namespace harrowby::app {

struct GoodBackup
{
    QDateTime made; ///< UTC; of the moment at which it was whole and checked
    QString file;
    qint64 bytes = 0;
    QString machine; ///< name of the computer on which that is its path
};

/// Notes it in the store, as the newest one. A failure has been told; the backup is good all the same.
std::optional<DbFailure> noteGoodBackup(Records &records, const GoodBackup &backup);
/// The same of one that was made on this computer.
std::optional<DbFailure> noteGoodBackup(Records &records, const QString &file, qint64 bytes, const QDateTime &now);
/// The newest first; nothing where none is noted.
[[nodiscard]] Records::Answer<QList<GoodBackup>> readGoodBackups(Records &records);
/// The same; nothing where the notes cannot be read, either.
[[nodiscard]] QList<GoodBackup> goodBackups(Records &records);

/// What of a noted backup can be seen from here.
enum class BackupSight {
    There,
    Away, ///< its folder is not there (a stick that is taken out), or it is on another machine
    Gone, ///< its folder is there, and the file is not, or is another one
};
[[nodiscard]] BackupSight sightOf(const GoodBackup &backup);

/// The state in which a store's backups are.
struct BackupState
{
    std::optional<GoodBackup> last; ///< the newest that is not gone
    BackupSight sight = BackupSight::Gone;
    bool isOverdue = true; ///< none for too long, or its time cannot be true
    int gone = 0;          ///< newer ones that are gone
};

[[nodiscard]] BackupState backupState(const QList<GoodBackup> &noted, const QDateTime &now);

/// A few words for who opens the office: that a backup is overdue. Nothing when none is, or when the store has no items
/// that could be lost.
[[nodiscard]] QString backupWarning(Records &records, const QDateTime &now);

/// In words for a person: when and where the last one was made, and what is to be done about it.
[[nodiscard]] QString backupStateText(const BackupState &state, const QDateTime &now);

} // namespace harrowby::app
