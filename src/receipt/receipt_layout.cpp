// SPDX-License-Identifier: MIT
#include "receipt/receipt_layout.h"

#include "receipt/receipt_text.h"

#include <QFont>
#include <QFontMetricsF>
#include <QPainter>
#include <QRegularExpression>
#include <QTextLayout>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace harrowby {
namespace {

constexpr double mmPerInch = 25.4;
constexpr double pointsPerInch = 72;

constexpr double paperWidthMm = 80;
constexpr double marginMm = 4;
constexpr double longestPageMm = 297;
// A page wider than it is high would be turned by print filters.
constexpr double shortestPageMm = paperWidthMm + 1;

constexpr int largestFontSize = 72;

constexpr double units(double mm)
{
    return mm * receiptUnitsPerInch / mmPerInch;
}
constexpr double millimeters(double units)
{
    return units * mmPerInch / receiptUnitsPerInch;
}
constexpr double unitsOfPoints(double points)
{
    return points * receiptUnitsPerInch / pointsPerInch;
}

QFont face(int pixelSize, bool bold)
{
    QFont font;
    // Metric-compatible faces with a narrow hyphen: 63 hyphens fill the line, so a narrow one allows large letters.
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
    return widest > 0 ? slack * ReceiptLayout::printableWidth() / widest : 1;
}

QStringList brokenLines(const QString &text)
{
    static const QRegularExpression lineBreak(u"\r\n|\r|\n"_s);
    return text.split(lineBreak);
}

} // namespace

ReceiptLayout::ReceiptLayout(const std::vector<ReceiptLine> &lines)
{
    m_pages.emplace_back();
    for (const ReceiptLine &line : lines) {
        const QFont lineFont = font(line.fontSize, line.bold);
        const QStringList parts = brokenLines(line.text);
        for (const QString &part : parts)
            addParagraph(part, lineFont);
    }
}

ReceiptLayout::~ReceiptLayout() = default;

double ReceiptLayout::printableWidth()
{
    return units(paperWidthMm - 2 * marginMm);
}

QFont ReceiptLayout::font(int fontSize, bool bold)
{
    const int size = std::clamp(fontSize, 1, largestFontSize);
    return face(static_cast<int>(std::floor(unitsOfPoints(size) * fontScale())), bold);
}

void ReceiptLayout::addParagraph(const QString &text, const QFont &font)
{
    auto layout = std::make_unique<QTextLayout>(text, font);
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout->setTextOption(option);
    layout->setCacheEnabled(true);
    layout->beginLayout();
    for (QTextLine line = layout->createLine(); line.isValid(); line = layout->createLine())
        line.setLineWidth(printableWidth());
    layout->endLayout();

    const std::size_t paragraph = m_paragraphs.size();
    const int lines = layout->lineCount();
    m_paragraphs.push_back(std::move(layout));
    for (int i = 0; i < lines; ++i)
        addRow(paragraph, i, m_paragraphs.back()->lineAt(i).height());
}

void ReceiptLayout::addRow(std::size_t paragraph, int line, double height)
{
    if (m_pages.back().height + height > units(longestPageMm - 2 * marginMm) && !m_pages.back().rows.empty())
        m_pages.emplace_back();
    Page &page = m_pages.back();
    page.rows.push_back({paragraph, line, page.height});
    page.height += height;
}

QSizeF ReceiptLayout::pageSizeMm(int page) const
{
    const double content = millimeters(m_pages.at(static_cast<std::size_t>(page)).height);
    return {paperWidthMm, std::clamp(std::ceil(content + 2 * marginMm), shortestPageMm, longestPageMm)};
}

QStringList ReceiptLayout::rows(int page) const
{
    QStringList texts;
    for (const Row &row : m_pages.at(static_cast<std::size_t>(page)).rows) {
        const QTextLayout &paragraph = *m_paragraphs[row.paragraph];
        const QTextLine line = paragraph.lineAt(row.line);
        texts += paragraph.text().mid(line.textStart(), line.textLength());
    }
    return texts;
}

void ReceiptLayout::draw(QPainter &painter, int page) const
{
    const double margin = units(marginMm);
    for (const Row &row : m_pages.at(static_cast<std::size_t>(page)).rows)
        m_paragraphs[row.paragraph]->lineAt(row.line).draw(&painter, {margin, margin + row.top});
}

} // namespace harrowby
