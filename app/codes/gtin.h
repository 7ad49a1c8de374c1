// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>
#include <QStringView>

/// Trade item numbers: 8, 12, 13 or 14 digits, of which the last checks the others. A shorter one is a longer one with
/// zeros before it.
namespace harrowby::app {

/// Digits 0 to 9 alone, at least one.
[[nodiscard]] bool isDigits(QStringView text);

/// The digit that goes behind these, from right to left weighted 3 and 1. Precondition: isDigits().
[[nodiscard]] int checkDigitOf(QStringView digits);

/// A length that such numbers have, and the right check digit.
[[nodiscard]] bool isGtin(QStringView code);

/// Of 7, 10 or 11 digits that become such a number with the zeros before them that a spreadsheet has taken away, that
/// number; else empty. 12 and 13 digits are one with and without the zeros.
[[nodiscard]] QString withLostZeros(const QString &digits);

/// A number in every length that it can be written in, shortest first; nothing for what is none.
[[nodiscard]] QStringList gtinSpellings(const QString &code);

} // namespace harrowby::app
