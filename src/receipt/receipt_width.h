// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

class QFont;

/// How much goes into a line of a receipt: so many hyphens fill, at their size, what the margins leave of the paper.
/// One factor, the same for every font size of a receipt, makes it so.
namespace harrowby {

/// The length unit of receipts: so fine that fonts keep their widths when sizes are rounded to it.
inline constexpr int receiptUnitsPerInch = 1200;

inline constexpr double mmPerInch = 25.4;
inline constexpr double receiptPaperMm = 80;
inline constexpr double receiptMarginMm = 4; ///< on each side
inline constexpr int receiptLineCharacters = 63;

/// The line of hyphens between the parts of a receipt, and the size at which it fills a line, bold or not.
[[nodiscard]] QString receiptSeparator();
inline constexpr int receiptSeparatorFontSize = 10; ///< points

/// The font of a size that a print call asks for, in units: scaled, and no larger than 72 points before that. Needs a
/// QGuiApplication.
[[nodiscard]] QFont receiptFont(int fontSize, bool bold);
/// In units.
[[nodiscard]] double receiptPrintableWidth();

} // namespace harrowby
