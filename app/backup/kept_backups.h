// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>
#include <QString>

/// The backups that the program makes by itself, each under a name of its own.
namespace harrowby::app {

/// "shop-2026-11-22-220000-1f3a9c07.db": the store's name, the moment, and a mark of this very store, which is another
/// one for a store of the same name in another folder or on another machine.
[[nodiscard]] QString keptBackupName(const QString &store, const QDateTime &moment);

} // namespace harrowby::app
