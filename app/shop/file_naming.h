// SPDX-License-Identifier: MIT
#pragma once

#include "basic/result.h"

#include <QString>

#include <system_error>

/// Giving a finished file its name, so that it outlasts a power cut. What fails says why in the system's
/// own words.
namespace harrowby::app {

using Naming = Result<void, std::error_code>;

/// Never replaces another file: the error is std::errc::file_exists then.
[[nodiscard]] Naming nameNewFile(const QString &file, const QString &path);
/// The same also where the file system has neither RENAME_NOREPLACE nor link(): there it looks first whether there is
/// one, and another program that makes it right then loses it.
[[nodiscard]] Naming nameNewFileAnywhere(const QString &file, const QString &path);
/// rename(): replaces a file of that name atomically.
[[nodiscard]] Naming replaceFile(const QString &file, const QString &path);

/// Waits until the bytes of the file are on the disk.
[[nodiscard]] Naming syncFile(const QString &file);
/// The same for the names in a folder. A file system without this operation is no error.
void syncFolder(const QString &folder);

} // namespace harrowby::app
