// SPDX-License-Identifier: MIT
#pragma once

#include <QSizeF>
#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

class QFont;
class QPainter;
class QTextLayout;

namespace harrowby {

/// One print call: its text, which can hold line breaks, and the font settings then in force.
struct ReceiptLine
{
    QString text;
    int fontSize = 10; ///< points, before the receipt's scale
    bool bold = false;
};

/// Receipt lines set on paper. How much goes into a line says receipt_width.h. Longer lines wrap, between words where
/// they can. A page is as long as its content, up to 297 mm; then another page follows. Lengths are in 1/1200 inch.
/// Needs a QGuiApplication, for its fonts.
class ReceiptLayout
{
public:
    explicit ReceiptLayout(const std::vector<ReceiptLine> &lines);
    ~ReceiptLayout();
    Q_DISABLE_COPY_MOVE(ReceiptLayout)

    [[nodiscard]] int pageCount() const { return static_cast<int>(m_pages.size()); }
    [[nodiscard]] QSizeF pageSizeMm(int page) const;
    /// The rows of a page from top to bottom, as they were wrapped.
    [[nodiscard]] QStringList rows(int page) const;
    void draw(QPainter &painter, int page) const;

private:
    struct Row
    {
        std::size_t paragraph = 0;
        int line = 0;
        double top = 0; ///< from the upper edge of the printable area
    };
    struct Page
    {
        std::vector<Row> rows;
        double height = 0; ///< of the content
    };
    void addParagraph(const QString &text, const QFont &font);
    void addRow(std::size_t paragraph, int line, double height);

    std::vector<std::unique_ptr<QTextLayout>> m_paragraphs;
    std::vector<Page> m_pages;
};

} // namespace harrowby
