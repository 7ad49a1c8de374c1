// SPDX-License-Identifier: MIT
#pragma once

#include "app/backup/backup_names.h"
#include "app/work/work_step.h"

#include <QString>
#include <QStringList>

namespace harrowby::app {

/// What is to be brought back, and where to.
struct RestoreOrder
{
    QString backup;                       ///< any file that could be opened as a store; it is only read
    QString store;                        ///< an existing one that nobody has open, this program included
    QString who;                          ///< for the record of who did what
    QString place;                        ///< likewise: officePlace, commandLinePlace
    QString keepIn = usualBackupFolder(); ///< the folder that gets a checked copy of the store that is replaced
};

struct RestoreResult
{
    enum class Outcome {
        Done,
        Stopped, ///< the store is as it was
        Failed,  ///< the store is as it was, unless `isReplaced`
    };
    Outcome outcome = Outcome::Failed;
    QString problem;         ///< in words for a person, when it has failed
    QString kept;            ///< the copy of the store that was replaced, as soon as there is one
    bool isReplaced = false; ///< the store holds the backup, also where it could not be read back afterwards
    QStringList damaged{};   ///< of a damaged store: where its files are kept as they were; `kept` is the first
};

/// Puts what a backup holds in place of what a store holds, in one transaction of SQLite's into the store's own file:
/// whatever stops it, the file holds either the old store or the new one. In these steps:
///
/// - the backup is judged by the rules by which a store is opened, copied beside the store and checked as a whole;
/// - the store is locked against everybody, which fails when another program has it open;
/// - it is copied and checked, too, under a name that tells why: "shop-before-restore-2026-11-22-090507.db";
///   or, where it is damaged, its files are copied as they are and compared:
///   "shop-damaged-before-restore-2026-11-22-090507.db", and with the same ending the log and the journal;
/// - what the backup's copy cannot know is added to it: the deeds since then, and this one;
/// - it goes into the store, which is then opened as a till does it.
///
/// A damaged store is one that SQLite finds no database in, or whose check fails, or whose log. Where SQLite refuses to
/// open it, the log is removed once it is kept, and the backup goes over the bytes that are there, in one transaction
/// likewise.
///
/// A server's store: server_restore.h.
///
/// `watch` can stop it until the last step but one is done.
[[nodiscard]] RestoreResult restoreStore(const RestoreOrder &order, const WorkWatch &watch);

/// Where the files of a damaged store are kept, for a person.
[[nodiscard]] QString damagedWords(const QStringList &kept);

} // namespace harrowby::app
