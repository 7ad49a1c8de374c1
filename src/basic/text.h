// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringView>

namespace harrowby {

inline constexpr QLatin1StringView crLf("\r\n");

/// Without leading and trailing blanks (spaces; other white space is data).
[[nodiscard]] QString trimBlanks(QStringView text);
/// Trimmed and upper-cased, as names are compared.
[[nodiscard]] QString trimmedUpper(QStringView text);

/// Characters of what a person calls something of theirs: a held cart, a drawer.
inline constexpr qsizetype longestLabel = 40;
/// What was typed as such a name, or as another text of one line: without control characters and needless blanks.
[[nodiscard]] QString tidyLabel(const QString &typed, qsizetype longest = longestLabel);

} // namespace harrowby
