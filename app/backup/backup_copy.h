// SPDX-License-Identifier: MIT
#pragma once

#include "app/backup/backup.h"
#include "engine/database.h"

#include <QHash>
#include <QString>

#include <optional>

namespace harrowby::app {

/// Rows by table.
using RowCounts = QHash<QString, qint64>;

/// Of the store's tables; a table that cannot be read is missing.
[[nodiscard]] RowCounts countRows(sqlite3 *database);

/// Which of the two disks a failure is about.
enum class BackupSide {
    Store,
    Place, ///< of the backup
};

struct CopyEnd
{
    bool stopped = false;
    std::optional<SqlError> error;
    BackupSide side = BackupSide::Store; ///< of the error
    RowCounts counts;                    ///< of the moment that was copied; empty where that is not known
    QString words = {};                  ///< for a person, why it failed; empty where the error says it
};

/// Copies page by page into an empty database. Where the store keeps a log, the copy reads one moment of it and no till
/// waits or disturbs it. Without a log a till that writes makes the copy begin anew; after a few times the copy locks
/// the file, and tills wait for the rest.
[[nodiscard]] CopyEnd copyStore(const QString &store, sqlite3 *copy, const BackupWatch &watch);

/// The same through a connection that is open already. Takes the connection's busy handler away.
[[nodiscard]] CopyEnd copyOpenStore(sqlite3 *store, sqlite3 *copy, const BackupWatch &watch);

/// In words for a person.
[[nodiscard]] QString copyProblem(const SqlError &error, BackupSide side);

/// Opens the store as the copy reads it: nothing is written to it.
[[nodiscard]] Result<SqliteDatabase, SqlError> openToCopy(const QString &store);

} // namespace harrowby::app
