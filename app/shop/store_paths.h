// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// Where the program keeps its own files: the folder Harrowby in the user's data folder.
namespace harrowby::app {

[[nodiscard]] QString defaultStorePath();
[[nodiscard]] QString demoStorePath();
[[nodiscard]] QString logPath();
/// What the office of this store remembers of wrong passwords.
[[nodiscard]] QString officeTriesPath(const QString &store);

} // namespace harrowby::app
