// SPDX-License-Identifier: MIT
#pragma once

#include "basic/result.h"

#include <QString>

/// A password is good when the login finds it again. The login trims and upper-cases what is typed and compares it,
/// between single quotes, with SQLite's UPPER of what is stored, which knows only the letters A to Z.
namespace harrowby::app {

/// Whether the password can be taken, or why not, in words for a person.
[[nodiscard]] Result<void, QString> checkPassword(const QString &password);

/// What is stored for it: the entry as the login compares it, already in upper case, so that UPPER changes nothing.
[[nodiscard]] QString storedPassword(const QString &password);

/// True when the text holds what no keyboard gives: control characters, line breaks, half of a surrogate pair.
[[nodiscard]] bool hasUntypable(const QString &text);

} // namespace harrowby::app
