// SPDX-License-Identifier: MIT
#include "receipt/receipt_layout.h"

#include "receipt/receipt_width.h"

#include <QFont>
#include <QPainter>
#include <QRegularExpression>
#include <QTextLayout>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace harrowby {
namespace {

constexpr double longestPageMm = 297;
// A page wider than it is high would be turned by print filters.
constexpr double shortestPageMm = receiptPaperMm + 1;

constexpr double units(double mm)
{
    return mm * receiptUnitsPerInch / mmPerInch;
}
constexpr double millimeters(double units)
{
    return units * mmPerInch / receiptUnitsPerInch;
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
        const QFont lineFont = receiptFont(line.fontSize, line.bold);
        const QStringList parts = brokenLines(line.text);
        for (const QString &part : parts)
            addParagraph(part, lineFont);
    }
}

ReceiptLayout::~ReceiptLayout() = default;

void ReceiptLayout::addParagraph(const QString &text, const QFont &font)
{
    auto layout = std::make_unique<QTextLayout>(text, font);
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout->setTextOption(option);
    layout->setCacheEnabled(true);
    layout->beginLayout();
    for (QTextLine line = layout->createLine(); line.isValid(); line = layout->createLine())
        line.setLineWidth(receiptPrintableWidth());
    layout->endLayout();

    const std::size_t paragraph = m_paragraphs.size();
    const int lines = layout->lineCount();
    m_paragraphs.push_back(std::move(layout));
    for (int i = 0; i < lines; ++i)
        addRow(paragraph, i, m_paragraphs.back()->lineAt(i).height());
}

void ReceiptLayout::addRow(std::size_t paragraph, int line, double height)
{
    if (m_pages.back().height + height > units(longestPageMm - 2 * receiptMarginMm) && !m_pages.back().rows.empty())
        m_pages.emplace_back();
    Page &page = m_pages.back();
    page.rows.push_back({paragraph, line, page.height});
    page.height += height;
}

QSizeF ReceiptLayout::pageSizeMm(int page) const
{
    const double content = millimeters(m_pages.at(static_cast<std::size_t>(page)).height);
    return {receiptPaperMm, std::clamp(std::ceil(content + 2 * receiptMarginMm), shortestPageMm, longestPageMm)};
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
    const double margin = units(receiptMarginMm);
    for (const Row &row : m_pages.at(static_cast<std::size_t>(page)).rows)
        m_paragraphs[row.paragraph]->lineAt(row.line).draw(&painter, {margin, margin + row.top});
}

} // namespace harrowby
