// SPDX-License-Identifier: MIT
#pragma once

#include "basic/result.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QFile>
#include <QString>

/// Files that only their owner may read, and folders that only their owner may enter: what the program makes for
/// itself. Existing ones keep their modes. The reason of a failure is the system's error text.
namespace harrowby {

inline constexpr unsigned privateFileMode = 0600;
inline constexpr unsigned privateFolderMode = 0700;

/// Creates the folder and its missing parents with privateFolderMode; existing folders keep their mode. What it
/// creates lasts, where the parents can be read.
[[nodiscard]] Result<void, QString> makePrivateFolder(const QString &path);

/// Creates an empty file with privateFileMode. An existing one is not even opened: close() would drop the POSIX locks
/// that this process may have on it through SQLite.
[[nodiscard]] Result<void, QString> makePrivateFile(const QString &path);

/// Opens a regular file for reading (QIODevice::ReadOnly) or appending (QIODevice::Append, which creates a missing file
/// with privateFileMode). A FIFO, device or other special file is refused, and never blocks.
[[nodiscard]] Result<void, QString> openOrdinaryFile(QFile &file, QIODevice::OpenMode mode);

/// Writes all bytes at the descriptor's position.
[[nodiscard]] Result<void, QString> writeAll(int descriptor, QByteArrayView bytes);
/// The same, then fsync().
[[nodiscard]] Result<void, QString> writeToDisk(int descriptor, QByteArrayView bytes);

/// Makes what was created, renamed or removed in a folder last.
[[nodiscard]] Result<void, QString> syncFolder(const QString &path);

/// Creates or replaces a file atomically (temporary file, fsync, rename), with its missing folders. A new file gets
/// privateFileMode; an existing one keeps its mode.
[[nodiscard]] Result<void, QString> writePrivateFile(const QString &path, const QByteArray &bytes);

} // namespace harrowby
