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

/// In the names of files, which sort by it: "2026-11-21-090507".
[[nodiscard]] QString momentInName(const QDateTime &moment);
/// Its form, as a regular expression.
inline constexpr QStringView momentPattern = u"\\d{4}-\\d{2}-\\d{2}-\\d{6}";

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
