// SPDX-License-Identifier: MIT
#pragma once

#include "basic/result.h"

#include <QString>

/// A password or a user name is good when the login finds it again. The login (statements::login()) trims and
/// upper-cases what is typed and compares it, between single quotes, with SQLite's UPPER of what is stored, which knows
/// only the letters A to Z. Nothing else is asked for: neither a least length nor a greatest.
namespace harrowby::app {

/// Whether the password can be taken, or why not, in words for a person.
[[nodiscard]] Result<void, QString> checkPassword(const QString &password);
/// Whether it was typed alike twice, as the login compares it; or why not, likewise.
[[nodiscard]] Result<void, QString> checkRepeated(const QString &password, const QString &again);
[[nodiscard]] Result<void, QString> checkUserName(const QString &name);

/// What is stored for it: the entry as the login compares it, already in upper case, so that UPPER changes nothing.
[[nodiscard]] QString storedPassword(const QString &password);
[[nodiscard]] QString storedUserName(const QString &name);

/// True when there is an entry that the login compares as equal with this stored name or password.
[[nodiscard]] bool canBeTyped(const QString &stored);

/// True when the text holds what no keyboard gives: control characters, line breaks, half of a surrogate pair.
[[nodiscard]] bool hasUntypable(const QString &text);

} // namespace harrowby::app
