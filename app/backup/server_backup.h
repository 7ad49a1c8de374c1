// SPDX-License-Identifier: MIT
#pragma once

#include "app/backup/backup_copy.h"

#include <QString>

namespace harrowby::app {

/// Makes a store of an empty database that holds what a server's store holds at one moment, row by row, while tills
/// sell; it is read back and compared before it counts.
[[nodiscard]] CopyEnd copyServerStore(const QString &store, sqlite3 *copy, const BackupWatch &watch);

} // namespace harrowby::app
