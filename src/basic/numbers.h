// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringView>

#include <cstdint>
#include <optional>

/// Reading and writing numbers as the counter's texts hold them: "," groups thousands, "." is the decimal
/// point, whatever the locale, since these texts are read back.
namespace harrowby {

/// The number that a text starts with: leading blanks, an optional sign, digits, an optional point and digits,
/// an optional exponent, as far as the text goes. 0 when there is none, or when it is too large for a double.
/// A comma ends the number.
[[nodiscard]] double leadingNumber(QStringView text);
/// leadingNumber() of the text without its commas.
[[nodiscard]] double leadingNumberWithoutCommas(const QString &text);

/// Whether the whole text is a number: after trimming, an optional sign, digits with "," or blanks among them,
/// an optional point and digits, an optional exponent; at least one digit.
[[nodiscard]] bool isNumeric(QStringView text);
/// The whole text as a number, its commas and blanks removed; empty when it is not numeric or too large.
[[nodiscard]] std::optional<double> wholeNumber(QStringView text);

/// Nearest 16-bit integer, halves to the even neighbour; empty when it does not fit.
[[nodiscard]] std::optional<std::int16_t> toInt16(double value);

/// Shortest decimal text that reads back as the same value: no exponent, no grouping, no trailing zeros.
[[nodiscard]] QString plainText(double value);
[[nodiscard]] QString plainText(float value);

/// The 64-bit float that the shortest decimal text of a 32-bit float names (99.99, not 99.98999786376953).
[[nodiscard]] double asStored(float value);

// Displayed numbers are rounded half away from zero on their shortest decimal text.
/// "#,#0.00": 1,234.50
[[nodiscard]] QString formatMoney(double value);
[[nodiscard]] QString formatMoney(float value);
/// "#0.00": 1234.50
[[nodiscard]] QString formatFixed(double value);
/// "#,#0": 12,345
[[nodiscard]] QString formatCount(double value);

} // namespace harrowby
