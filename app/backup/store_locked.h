// SPDX-License-Identifier: MIT
#pragma once

#include "basic/result.h"
#include "engine/database.h"

#include <QString>

namespace harrowby::app {

/// Opens a store for this program alone: its log is moved into the file and removed, and as long as the connection
/// lives nobody else can read or write it. Says in words for a person who has it open when it cannot be had, after
/// about a second. It is killed at any moment without harm; the next till gives the store its log again.
[[nodiscard]] Result<SqliteDatabase, QString> openStoreAlone(const QString &store);

} // namespace harrowby::app
