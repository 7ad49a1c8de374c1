// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QFile>
#include <QString>

/// Files that hold what is nobody else's business. Each function returns the system's reason for a failure, and an
/// empty text for none.
namespace harrowby {

/// Makes the folder and those above it that are missing, for their owner alone; folders that are there stay as they
/// are.
[[nodiscard]] QString makePrivateFolder(const QString &path);

/// Opens an ordinary file to read (QIODevice::ReadOnly) or to add to (QIODevice::Append); to add to, it is made when it
/// is missing, for its owner alone. What is not an ordinary file, a pipe or a device, is refused and never waited for.
[[nodiscard]] QString openOrdinaryFile(QFile &file, QIODevice::OpenMode mode);

/// Writes the bytes to where the descriptor stands.
[[nodiscard]] QString writeAll(int descriptor, QByteArrayView bytes);
/// The same, and waits until they are on the disk.
[[nodiscard]] QString writeToDisk(int descriptor, QByteArrayView bytes);

/// Makes or replaces a file in one step, in a folder that is made when it is missing. A new file is its owner's alone;
/// one that is there keeps its permissions.
[[nodiscard]] QString writePrivateFile(const QString &path, const QByteArray &bytes);

} // namespace harrowby
