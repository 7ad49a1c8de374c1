// SPDX-License-Identifier: MIT
#include "receipt/receipt_width.h"

#include <QFont>
#include <QFontMetricsF>
#include <QStringList>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace harrowby {
namespace {

constexpr int largestFontSize = 72;

constexpr double pointsPerInch = 72;

constexpr double unitsOfPoints(double points)
{
    return points * receiptUnitsPerInch / pointsPerInch;
}

QFont face(int pixelSize, bool bold)
{
    QFont font;
    // Metric-compatible faces with a narrow hyphen: hyphens fill the line, so a narrow one allows large letters.
    font.setFamilies({u"Liberation Sans"_s, u"Arimo"_s, u"Nimbus Sans"_s, u"Arial"_s, u"Helvetica"_s, u"sans-serif"_s});
    font.setStyleHint(QFont::SansSerif);
    font.setHintingPreference(QFont::PreferNoHinting);
    font.setBold(bold);
    font.setPixelSize(std::max(1, pixelSize));
    return font;
}

/// Width of the separator at its size before scaling.
double separatorWidth(bool bold)
{
    const double wanted = unitsOfPoints(receiptSeparatorFontSize);
    const int pixels = static_cast<int>(std::lround(wanted));
    return QFontMetricsF(face(pixels, bold)).horizontalAdvance(receiptSeparator()) * wanted / pixels;
}

double fontScale()
{
    constexpr double slack = 0.998; // for the sum of the glyphs' rounding errors
    const double widest = std::max(separatorWidth(false), separatorWidth(true));
    return widest > 0 ? slack * receiptPrintableWidth() / widest : 1;
}

} // namespace

QString receiptSeparator()
{
    return QString(receiptLineCharacters, u'-');
}

QFont receiptFont(int fontSize, bool bold)
{
    const int size = std::clamp(fontSize, 1, largestFontSize);
    return face(static_cast<int>(std::floor(unitsOfPoints(size) * fontScale())), bold);
}

double receiptPrintableWidth()
{
    return (receiptPaperMm - 2 * receiptMarginMm) * receiptUnitsPerInch / mmPerInch;
}

} // namespace harrowby
