// SPDX-License-Identifier: MIT
#pragma once

#include <QDate>
#include <QDateTime>
#include <QString>
#include <QStringView>

/// Where the copies of a store go, and under which names, unless a person chooses others. Whether a place will do:
/// backup_place.h.
namespace harrowby::app {

/// Of every copy; a backup's name gets it when a person gives none.
inline constexpr QStringView copySuffix = u"db";

/// What the names of a store's copies begin with: its file's name, or that of the server's service or database.
[[nodiscard]] QString storeName(const QString &store);

/// By what a store is told from others on this machine: its file, links followed, or the server's target without a
/// password.
[[nodiscard]] QString storePlace(const QString &store);

/// In the names of files, which sort by it: "2026-11-21-090507".
[[nodiscard]] QString momentInName(const QDateTime &moment);
/// Its form, as a regular expression.
inline constexpr QStringView momentPattern = u"\\d{4}-\\d{2}-\\d{2}-\\d{6}";

/// Of the copy of a store that a restore replaces, "shop-before-restore-2026-11-22-090507.db".
[[nodiscard]] QString nameOfReplaced(const QString &store, const QString &why, const QDateTime &now);

/// "copy-2.db" of "copy.db": where a file has that name already.
[[nodiscard]] QString numberedName(const QString &path, int number);
/// Up to which number a free name is looked for.
inline constexpr int mostNumber = 1000;

/// The folder that is offered for a backup: the documents, or the home folder where there are none.
[[nodiscard]] QString usualBackupFolder();
/// The name that is offered for a backup of that day: "harrowby-2026-11-21.db".
[[nodiscard]] QString usualBackupName(const QDate &day);

/// Where the copy of a store goes whose file was lost, "shop-rescue-2026-11-21-090507.db": beside its place, or into
/// the documents when nothing can be written there. No file has that name yet; a second one ends with "-2".
[[nodiscard]] QString usualRescuePlace(const QString &store, const QDateTime &now);

} // namespace harrowby::app
