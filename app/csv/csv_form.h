// SPDX-License-Identifier: MIT
#pragma once

#include <QChar>
#include <QLatin1StringView>
#include <QList>
#include <QString>

#include <optional>

/// CSV files: found out in which form one is, read and written.
namespace harrowby::app {

enum class CsvEncoding {
    Utf8,
    Utf16LittleEndian,
    Utf16BigEndian,
    Windows1252,
};

struct CsvForm
{
    CsvEncoding encoding = CsvEncoding::Utf8; ///< of what is read; what is written is UTF-8
    bool byteOrderMark = false;               ///< one stands at the beginning, or is to be written there
    QChar separator = u',';                   ///< one of csvSeparators(); any other one counts as a comma
    QChar decimalSign = u'.';                 ///< "." or ","

    bool operator==(const CsvForm &) const = default;
};

/// The separators that are looked for: , ; tab |
[[nodiscard]] const QList<QChar> &csvSeparators();

/// What a command line is told to say, for each of the following.
inline constexpr QLatin1StringView separatorNames("comma, semicolon, tab or bar");
inline constexpr QLatin1StringView decimalSignNames("point or comma");
inline constexpr QLatin1StringView encodingNames("utf-8, utf-16, utf-16be or windows-1252");

/// What a person or a command line says: "," "comma", ";" "semicolon", "tab", "|" "bar".
[[nodiscard]] std::optional<QChar> separatorNamed(const QString &name);
/// "." "point", "," "comma".
[[nodiscard]] std::optional<QChar> decimalSignNamed(const QString &name);
/// "utf-8", "utf-16" (little endian), "utf-16le", "utf-16be", "windows-1252"; in small letters or capitals, the hyphens
/// may be left out.
[[nodiscard]] std::optional<CsvEncoding> encodingNamed(const QString &name);

/// For a person: "UTF-8", "UTF-16", "UTF-16 (big endian)", "Windows-1252".
[[nodiscard]] QString encodingWords(CsvEncoding encoding);
/// For a person: "Point: 1.50", "Comma: 1,50".
[[nodiscard]] QString decimalSignWords(QChar sign);
/// For a person: "Comma ( , )", "Semicolon ( ; )", "Tab", "Bar ( | )".
[[nodiscard]] QString separatorWords(QChar separator);

} // namespace harrowby::app
