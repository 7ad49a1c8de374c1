// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// Giving a finished file its name, so that it outlasts a power cut. Each returns 0, or the system's error number.
namespace harrowby::app {

/// Never replaces another file: the error is EEXIST then.
[[nodiscard]] int nameNewFile(const QString &file, const QString &path);
/// rename(): replaces a file of that name atomically.
[[nodiscard]] int replaceFile(const QString &file, const QString &path);

/// Waits until the bytes of the file are on the disk.
[[nodiscard]] int syncFile(const QString &file);
/// The same for the names in a folder. A file system without this operation is no error.
void syncFolder(const QString &folder);

} // namespace harrowby::app
