// SPDX-License-Identifier: MIT
#include "tables/paper.h"

#include <QBuffer>
#include <QFontDatabase>
#include <QFontMetricsF>
#include <QPainter>
#include <QPdfWriter>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

using namespace Qt::StringLiterals;

namespace harrowby::tables {

namespace {

constexpr double figureShare = 0.36; ///< of the page's height
constexpr double gap = 8.0;          ///< points
constexpr std::size_t measuredRows = 2000;

QFont fontOf(double points, bool bold)
{
    QFont font = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
    font.setPointSizeF(points);
    font.setBold(bold);
    return font;
}

} // namespace

Paper::Paper(const Table &table, Figure figure, QPagedPaintDevice &device) :
    m_table(table), m_figure(std::move(figure)), m_device(device), m_page(0, 0, device.width(), device.height()),
    m_point(device.logicalDpiY() / 72.0)
{
    chooseFonts();
    measureColumns();
    measurePages();
}

void Paper::chooseFonts()
{
    m_titleFont = fontOf(15, true);
    m_headingFont = fontOf(9, true);
    m_font = fontOf(9, false);
    m_smallFont = fontOf(8, false);
}

double Paper::textWidth(const QString &text, const QFont &font) const
{
    return QFontMetricsF(font, &m_device).horizontalAdvance(text);
}

double Paper::lineHeight(const QFont &font) const
{
    return QFontMetricsF(font, &m_device).height() * 1.25;
}

QStringList Paper::textsOf(const Row &row) const
{
    QStringList texts;
    for (std::size_t i = 0; i < row.size() && i < m_table.columns.size(); ++i)
        texts << shownText(row.at(i), m_table.columns.at(i).kind);
    return texts;
}

/// Column widths by the contents of the first rows; the stretching columns take the difference to the page's width.
void Paper::measureColumns()
{
    std::vector<double> stretching;
    double fixed = 0.0;
    double wanted = 0.0;
    for (std::size_t i = 0; i < m_table.columns.size(); ++i) {
        const Column &column = m_table.columns.at(i);
        double width = textWidth(column.heading, m_headingFont);
        if (i < m_table.totals.size())
            width = std::max(width, textWidth(shownText(m_table.totals.at(i), column.kind), m_headingFont));
        for (std::size_t row = 0; row < std::min(m_table.rows.size(), measuredRows); ++row)
            width = std::max(width, textWidth(shownText(m_table.rows.at(row).at(i), column.kind), m_font));
        m_widths.push_back(std::min(width + 2 * gap * m_point, m_page.width() / 2));
        (column.stretches ? wanted : fixed) += m_widths.back();
    }
    if (wanted <= 0.0)
        return;
    const double factor = std::max(m_page.width() - fixed, m_page.width() / 5) / wanted;
    for (std::size_t i = 0; i < m_widths.size(); ++i)
        m_widths.at(i) *= m_table.columns.at(i).stretches ? factor : 1.0;
}

double Paper::headHeight() const
{
    const double notes = static_cast<double>(m_table.notes.size()) * lineHeight(m_font);
    const double figure = m_figure ? m_page.height() * figureShare + gap * m_point : 0.0;
    return lineHeight(m_titleFont) + notes + gap * m_point + figure;
}

void Paper::measurePages()
{
    const double line = lineHeight(m_font);
    const double room = m_page.height() - 2 * lineHeight(m_smallFont) - 2 * line; // the foot, the headings
    m_pageRows = std::max(1, static_cast<int>(std::floor(room / line)));
    m_firstPageRows = std::max(0, static_cast<int>(std::floor((room - headHeight()) / line)));
}

int Paper::pageCount() const
{
    const auto lines = static_cast<int>(m_table.rows.size()) + (m_table.totals.empty() ? 0 : 1);
    const int further = std::max(0, lines - m_firstPageRows);
    return 1 + (further + m_pageRows - 1) / m_pageRows;
}

double Paper::drawHead(QPainter &painter) const
{
    double top = 0.0;
    painter.setFont(m_titleFont);
    painter.drawText(QRectF(0, top, m_page.width(), lineHeight(m_titleFont)), Qt::AlignLeft, m_table.title);
    top += lineHeight(m_titleFont);
    painter.setFont(m_font);
    for (const QString &note : m_table.notes) {
        painter.drawText(QRectF(0, top, m_page.width(), lineHeight(m_font)), Qt::AlignLeft, note);
        top += lineHeight(m_font);
    }
    if (m_figure) {
        painter.save();
        m_figure(painter, QRectF(0, top + gap * m_point, m_page.width(), m_page.height() * figureShare));
        painter.restore();
    }
    return headHeight();
}

void Paper::drawRow(QPainter &painter, const QStringList &texts, double top) const
{
    const QFontMetricsF metrics(painter.font(), &m_device);
    double left = 0.0;
    for (qsizetype i = 0; i < texts.size(); ++i) {
        const auto column = static_cast<std::size_t>(i);
        const double width = m_widths.at(column) - gap * m_point;
        const Qt::Alignment side = isFigure(m_table.columns.at(column).kind) ? Qt::AlignRight : Qt::AlignLeft;
        // A line break within a name must not reach into the next row.
        const QString text = metrics.elidedText(texts.at(i).simplified(), Qt::ElideRight, width);
        painter.drawText(QRectF(left, top, width, lineHeight(m_font)), static_cast<int>(side | Qt::AlignVCenter), text);
        left += m_widths.at(column);
    }
}

void Paper::drawRows(QPainter &painter, int page, double top) const
{
    const double line = lineHeight(m_font);
    const int first = page == 0 ? 0 : m_firstPageRows + (page - 1) * m_pageRows;
    const int count = page == 0 ? m_firstPageRows : m_pageRows;
    const auto rows = static_cast<int>(m_table.rows.size());
    painter.setFont(m_font);
    for (int row = first; row < std::min(first + count, rows); ++row, top += line)
        drawRow(painter, textsOf(m_table.rows.at(static_cast<std::size_t>(row))), top);
    if (!m_table.totals.empty() && rows >= first && rows < first + count) {
        painter.drawLine(QPointF(0, top), QPointF(m_page.width(), top));
        painter.setFont(m_headingFont);
        drawRow(painter, textsOf(m_table.totals), top);
    }
}

void Paper::drawFoot(QPainter &painter, int page) const
{
    const QRectF foot(0, m_page.height() - lineHeight(m_smallFont), m_page.width(), lineHeight(m_smallFont));
    painter.setFont(m_smallFont);
    painter.drawText(foot, Qt::AlignRight, u"Page %1 of %2"_s.arg(page + 1).arg(pageCount()));
}

void Paper::drawPage(QPainter &painter, int page) const
{
    painter.setPen(QPen(Qt::black, 0.5 * m_point));
    double top = page == 0 ? drawHead(painter) : 0.0;
    QStringList headings;
    for (const Column &column : m_table.columns)
        headings << column.heading;
    painter.setFont(m_headingFont);
    drawRow(painter, headings, top);
    top += lineHeight(m_font);
    painter.drawLine(QPointF(0, top), QPointF(m_page.width(), top));
    drawRows(painter, page, top);
    drawFoot(painter, page);
}

bool drawPages(QPagedPaintDevice &device, const Table &table, const Figure &figure, int first, int last)
{
    QPainter painter;
    if (!painter.begin(&device))
        return false;
    const Paper paper(table, figure, device);
    last = std::min(last, paper.pageCount() - 1);
    for (int page = std::max(0, first); page <= last; ++page) {
        if (page > first && !device.newPage())
            return false;
        paper.drawPage(painter, page);
    }
    return painter.end();
}

QByteArray toPdf(const Table &table, const Figure &figure)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    bool done = false;
    {
        QPdfWriter writer(&buffer);
        writer.setTitle(table.title);
        writer.setCreator(u"Harrowby Inventory"_s);
        writer.setResolution(600);
        writer.setPageSize(QPageSize(QPageSize::A4));
        writer.setPageMargins(QMarginsF(15, 15, 15, 15), QPageLayout::Millimeter);
        done = drawPages(writer, table, figure, 0, std::numeric_limits<int>::max());
    }
    return done ? buffer.data() : QByteArray();
}

} // namespace harrowby::tables
