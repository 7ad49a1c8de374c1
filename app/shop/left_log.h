// SPDX-License-Identifier: MIT
#pragma once

#include "app/shop/file_identity.h"

#include <QString>

namespace harrowby::app {

/// The log of a store file, and its index, by the names under which they were made.
struct LogFiles
{
    QByteArray log, index;
    FileId logId, indexId;
};

/// Renames the log, so that SQLite does not replay it into another file, and removes its index. Returns the new name;
/// empty when no log has the old name any more, or it cannot be renamed.
[[nodiscard]] QString putLogAside(const LogFiles &files);
/// Whether a log has such a name.
[[nodiscard]] bool isPutAside(const QString &log);

/// Removes an empty log and its index, unless another program has them open. Only when this process has closed them.
void removeLeftLog(const LogFiles &files);

/// Writes the store file's inode into an extended attribute of the log, so that a log that a killed program leaves
/// beside another file is recognised. Without extended attributes nothing happens.
void markLog(const QByteArray &file, const QByteArray &log);
/// Whether the log's attribute names another file than the one beside it. False without one, as in a copied log.
[[nodiscard]] bool logIsOfAnotherFile(const QByteArray &file, const QByteArray &log);

} // namespace harrowby::app
