// SPDX-License-Identifier: MIT
#pragma once

#include "basic/result.h"

#include <QString>

/// Who may read a store file: it holds the passwords as they were typed.
namespace harrowby::app {

/// True when the permissions of the file give others than its owner anything. Also in a folder that nobody else can
/// enter: a copy takes them along.
[[nodiscard]] bool isOpenToOthers(const QString &store);

/// "0644"
[[nodiscard]] QString permissionsText(const QString &store);

/// Takes from others what the file and those beside it give them; or the system's reason why not.
[[nodiscard]] Result<void, QString> closeToOthers(const QString &store);

} // namespace harrowby::app
