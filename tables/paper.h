// SPDX-License-Identifier: MIT
#pragma once

#include "tables/table.h"

#include <QByteArray>
#include <QFont>
#include <QRectF>

#include <functional>
#include <vector>

class QPagedPaintDevice;
class QPainter;

namespace harrowby::tables {

/// Draws a picture that goes with a table, dark on white, into the rectangle.
using Figure = std::function<void(QPainter &painter, const QRectF &place)>;

/// A table laid out on pages: title, notes and picture on the first one, the headings on each, the totals at the end.
class Paper
{
public:
    /// The picture may be empty. The device says how large a page is and how fine; it must outlive the paper.
    Paper(const Table &table, Figure figure, QPagedPaintDevice &device);

    [[nodiscard]] int pageCount() const;
    /// Draws a page, 0 for the first.
    void drawPage(QPainter &painter, int page) const;

private:
    void chooseFonts();
    void measureColumns();
    void measurePages();
    [[nodiscard]] double textWidth(const QString &text, const QFont &font) const;
    [[nodiscard]] double lineHeight(const QFont &font) const;
    [[nodiscard]] double headHeight() const;
    [[nodiscard]] double drawHead(QPainter &painter) const;
    void drawRow(QPainter &painter, const QStringList &texts, double top) const;
    void drawRows(QPainter &painter, int page, double top) const;
    void drawFoot(QPainter &painter, int page) const;
    [[nodiscard]] QStringList textsOf(const Row &row) const;

    const Table &m_table;
    Figure m_figure;
    QPagedPaintDevice &m_device;
    QRectF m_page;
    double m_point = 1.0; ///< 1/72 inch in the device's units
    QFont m_titleFont;
    QFont m_headingFont;
    QFont m_font;
    QFont m_smallFont;
    std::vector<double> m_widths;
    int m_firstPageRows = 0;
    int m_pageRows = 0;
};

/// The table as a PDF file's contents, A4; empty when it could not be made.
[[nodiscard]] QByteArray toPdf(const Table &table, const Figure &figure);

/// Draws the pages from `first` to `last` (0-based, as far as there are any). False when the device refused.
[[nodiscard]] bool drawPages(QPagedPaintDevice &device, const Table &table, const Figure &figure, int first, int last);

} // namespace harrowby::tables
