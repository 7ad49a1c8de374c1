// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QFile>
#include <QString>

/// Files that only their owner may read (mode 0600, folders 0700). Each function returns the system's error text, and
/// an empty text on success.
namespace harrowby {

/// Creates the folder and its missing parents with mode 0700; existing folders keep their mode.
[[nodiscard]] QString makePrivateFolder(const QString &path);

/// Opens a regular file for reading (QIODevice::ReadOnly) or appending (QIODevice::Append, which creates a missing file
/// with mode 0600). A FIFO, device or other special file is refused, and never blocks.
[[nodiscard]] QString openOrdinaryFile(QFile &file, QIODevice::OpenMode mode);

/// Writes all bytes at the descriptor's position.
[[nodiscard]] QString writeAll(int descriptor, QByteArrayView bytes);
/// The same, then fsync().
[[nodiscard]] QString writeToDisk(int descriptor, QByteArrayView bytes);

/// Creates or replaces a file atomically (temporary file, fsync, rename), with its missing folders. A new file gets
/// mode 0600; an existing one keeps its mode.
[[nodiscard]] QString writePrivateFile(const QString &path, const QByteArray &bytes);

} // namespace harrowby
