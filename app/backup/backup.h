// SPDX-License-Identifier: MIT
#pragma once

#include "app/work/watch.h"

#include <QString>

struct sqlite3;

namespace harrowby::app {

struct BackupProgress
{
    enum class Stage {
        Copying,
        Checking,
    };
    Stage stage = Stage::Copying;
    int percent = 0; ///< of the copying
};

struct BackupResult
{
    enum class Outcome {
        Done,
        Stopped,
        Failed,
    };
    Outcome outcome = Outcome::Failed;
    QString problem; ///< in words for a person, when it has failed
    qint64 bytes = 0;
    QString file = {}; ///< that it went into, when it is done
};

/// Called with the progress; returning false stops the backup, and must go on returning false. During the check it is
/// called on another thread.
using BackupWatch = Watch<BackupProgress>;

/// Copies a store, a file's or a server's, while tills sell from it. The copy is a store file and holds the store as it
/// was at one moment, is checked, and gets its name only then: until it is done, and when it fails, nothing is at the
/// target that was not there before. With `replace` it takes the place of a file of that name, else such a file is a
/// failure.
[[nodiscard]] BackupResult backUpStore(const QString &store, const QString &target, bool replace,
                                       const BackupWatch &watch);

/// The same under the first free name: "copy.db", else "copy-2.db", and so on. Several programs may do so at once.
[[nodiscard]] BackupResult backUpStoreNumbered(const QString &store, const QString &target, const BackupWatch &watch);

/// The same through the open connection of a store whose file has no name any more; `path` is the one that it had. A
/// file that is at the target stays.
[[nodiscard]] BackupResult rescueStore(sqlite3 *store, const QString &path, const QString &target,
                                       const BackupWatch &watch);

/// The same for a store that is sound, under the first free name.
[[nodiscard]] BackupResult backUpOpenStore(sqlite3 *store, const QString &path, const QString &target,
                                           const BackupWatch &watch);

} // namespace harrowby::app
