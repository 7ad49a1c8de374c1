// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>

/// One value of an INI file, as it stands behind the "=".
namespace harrowby::ini {

/// Bare where that reads back as the same text, else in quotes with backslash escapes.
[[nodiscard]] QByteArray encoded(const QString &value);

/// The text that is meant. Blanks around it are dropped; quotes count only when they enclose the whole; what a
/// person types bare ("A;B", "the "best" shop", "C:\Shop") is taken as it stands, known escapes apart.
[[nodiscard]] QString decoded(const QByteArray &raw);

} // namespace harrowby::ini
