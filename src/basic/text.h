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

/// What a person has typed as the name of something of theirs (a held cart, a drawer): without control characters and
/// needless blanks, longestLabel characters at most.
[[nodiscard]] QString tidyLabel(const QString &typed);
inline constexpr qsizetype longestLabel = 40;

} // namespace harrowby
