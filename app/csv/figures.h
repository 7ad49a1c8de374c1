// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringView>

#include <cstdint>
#include <optional>

namespace harrowby::app {

/// The number that the whole cell is, with this decimal sign: a sign before it, digits, also in groups of three (by the
/// other sign, a blank or an apostrophe), decimals, an exponent, and a currency's symbol before or behind. Nothing for
/// any other text, "4,20" with a decimal point included, and for a number that is too large.
[[nodiscard]] std::optional<double> readFigure(QStringView text, QChar decimalSign);

/// The shortest text that reads back as the same value; a real one that is whole has a decimal ("5.0"), so that it is
/// told from an integer. "inf" and "-inf" for what is infinite.
[[nodiscard]] QString writeFigure(double value, QChar decimalSign);
[[nodiscard]] QString writeFigure(std::int64_t value);

/// The integer that writeFigure() has written, and nothing else.
[[nodiscard]] std::optional<std::int64_t> readInteger(QStringView text);

/// What a cell says about the decimal sign.
enum class DecimalHint {
    None,   ///< no figure, or one that is the same with both
    Point,  ///< a figure with a decimal point alone
    Comma,  ///< a figure with a decimal comma alone
    Either, ///< two different figures: "1,234"
};
[[nodiscard]] DecimalHint decimalHint(QStringView text);

} // namespace harrowby::app
