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

/// Gives the log a name of its own, so that nobody plays it into another file, and takes the index's name away. Returns
/// the new name; empty when the log bears its old name no more, or cannot be renamed.
[[nodiscard]] QString putLogAside(const LogFiles &files);
/// Whether a log bears such a name.
[[nodiscard]] bool isPutAside(const QString &log);

/// Removes an empty log and its index, unless another program has them open. Only when this process has closed them.
void removeLeftLog(const LogFiles &files);

/// Notes at the log which file it belongs to, so that a log that a killed program leaves beside another file is known
/// as such. Where the file system keeps no such notes nothing happens.
void markLog(const QByteArray &file, const QByteArray &log);
/// Whether the log bears the mark of another file than the one that lies beside it. A copied log bears none.
[[nodiscard]] bool logIsOfAnotherFile(const QByteArray &file, const QByteArray &log);

} // namespace harrowby::app
