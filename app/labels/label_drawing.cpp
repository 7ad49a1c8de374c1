// SPDX-License-Identifier: MIT
#include "app/labels/label_drawing.h"

#include <QFontMetrics>
#include <QFontMetricsF>
#include <QPainter>
#include <QTextLayout>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr double mmPerInch = 25.4;

// Widths of a module in mm. The narrowest that readers at a counter read from what such printers print; the widest is
// the usual one of trade item numbers, in dots of a coarse printer.
constexpr double narrowestModule = 0.165;
constexpr double widestModule = 0.38;

// Letters in mm, for a label whose printable part is so high.
constexpr double usualHeight = 18.8;
constexpr double nameLetters = 2.15;
constexpr double priceLetters = 3.7;
constexpr double codeLetters = 2.1;
constexpr double largestScale = 1.7;
constexpr double smallestPrice = 0.5; // of its usual size
constexpr double priceAlone = 1.5;    // without bars there is room for a larger one

constexpr int nameLines = 2;
constexpr int nameLinesAlone = 3;
constexpr int guardModules = 5;       // that a guard goes down below the other bars
constexpr double gapAboveBars = 0.5;  // mm
constexpr double highestBars = 15;    // mm
constexpr qsizetype mostOfName = 400; // QChars; more never fits a label

/// One line of it, without what would not be seen.
QString tidyName(const QString &name)
{
    QString text = name.first(std::min(name.size(), mostOfName));
    if (!text.isEmpty() && text.back().isHighSurrogate())
        text.chop(1);
    text = text.simplified();
    return name.size() > mostOfName ? text + u'\u2026' : text;
}

/// The lines of a text, the last one cut with an ellipsis when there would be more.
QStringList linesOf(const QString &text, const QFont &font, int width, int most)
{
    QTextLayout layout(text, font);
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    QStringList lines;
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(width);
        const QString rest = text.sliced(line.textStart());
        if (lines.size() + 1 == most) {
            lines << QFontMetricsF(font).elidedText(rest, Qt::ElideRight, width);
            break;
        }
        lines << rest.first(line.textLength()).trimmed();
    }
    layout.endLayout();
    return lines;
}

int heightOf(const QFont &font)
{
    return QFontMetrics(font).height();
}

} // namespace

LabelDrawing::LabelDrawing(const LabelPaper &paper, int dotsPerInch) :
    m_dotsPerInch(dotsPerInch), m_size(dots(paper.label.width()), dots(paper.label.height()))
{
    const int x = dots(paper.margin.width());
    const int y = dots(paper.margin.height());
    m_inner = QRect(QPoint(0, 0), m_size).adjusted(x, y, -x, -y);
    m_scale = std::clamp((paper.label.height() - 2 * paper.margin.height()) / usualHeight, 1.0, largestScale);
}

int LabelDrawing::dots(double mm) const
{
    return static_cast<int>(std::lround(mm * m_dotsPerInch / mmPerInch));
}

/// 0 when there is no room for the bars, or for the blank paper beside them, which may reach into the margins.
int LabelDrawing::moduleDots(const Symbol &symbol) const
{
    const int quiet = 2 * std::max(symbol.quietLeft, symbol.quietRight); // the bars stand in the middle
    const int narrowest = static_cast<int>(std::ceil(narrowestModule * m_dotsPerInch / mmPerInch));
    const int widest = static_cast<int>(widestModule * m_dotsPerInch / mmPerInch);
    const int fitting = std::min(m_inner.width() / symbol.width, m_size.width() / (symbol.width + quiet));
    return fitting < narrowest ? 0 : std::min(fitting, std::max(widest, narrowest));
}

QFont LabelDrawing::font(double mm, bool bold) const
{
    QFont font;
    // Prices stand on shelves: letters without feet, and figures of one width.
    font.setFamilies({u"Liberation Sans"_s, u"Arimo"_s, u"Nimbus Sans"_s, u"Arial"_s, u"Helvetica"_s, u"sans-serif"_s});
    font.setStyleHint(QFont::SansSerif);
    font.setHintingPreference(QFont::PreferNoHinting);
    font.setBold(bold);
    font.setPixelSize(std::max(1, dots(mm)));
    return font;
}

std::optional<QFont> LabelDrawing::priceFont(const Label &label) const
{
    const double usual = priceLetters * m_scale * (label.symbol ? 1 : priceAlone);
    const QFont large = font(usual, true);
    const double width = QFontMetricsF(large).horizontalAdvance(label.price);
    if (width <= m_inner.width())
        return large;
    const double fitting = usual * m_inner.width() / width * 0.98; // widths do not shrink quite evenly
    if (fitting < priceLetters * m_scale * smallestPrice)
        return {};
    return font(fitting, true);
}

bool LabelDrawing::takesPrice(const Label &label) const
{
    return priceFont(label).has_value();
}

QRect LabelDrawing::nameRoom(const Label &label) const
{
    const int lines = label.symbol ? nameLines : nameLinesAlone;
    return {m_inner.left(), m_inner.top(), m_inner.width(), lines * heightOf(font(nameLetters * m_scale, false))};
}

/// So high for every price: bars stand at the same height on each label.
QRect LabelDrawing::priceRoom(const Label &label) const
{
    const int top = nameRoom(label).bottom() + 1;
    if (!label.symbol)
        return {m_inner.left(), top, m_inner.width(), m_inner.bottom() + 1 - top};
    return {m_inner.left(), top, m_inner.width(), heightOf(font(priceLetters * m_scale, true))};
}

void LabelDrawing::draw(QPainter &painter, const Label &label, QPoint corner) const
{
    painter.save();
    painter.translate(corner);
    painter.setPen(Qt::black);
    painter.setLayoutDirection(Qt::LayoutDirectionAuto);
    drawName(painter, label.name, nameRoom(label));
    const QRect price = priceRoom(label);
    painter.setFont(priceFont(label).value_or(font(priceLetters * smallestPrice, true)));
    painter.drawText(price, Qt::AlignCenter | Qt::TextSingleLine, label.price);
    if (label.symbol)
        drawSymbol(painter, *label.symbol, price.bottom() + 1, m_inner.bottom() + 1);
    painter.restore();
}

void LabelDrawing::drawName(QPainter &painter, const QString &name, const QRect &room) const
{
    const QFont letters = font(nameLetters * m_scale, false);
    const int height = heightOf(letters);
    painter.save();
    painter.setClipRect(room); // letters with many marks on top of each other are higher than any line
    painter.setFont(letters);
    QRect line(room.topLeft(), QSize(room.width(), height));
    for (const QString &text : linesOf(tidyName(name), letters, room.width(), room.height() / height)) {
        painter.drawText(line, Qt::AlignCenter | Qt::TextSingleLine, text);
        line.translate(0, height);
    }
    painter.restore();
}

void LabelDrawing::drawSymbol(QPainter &painter, const Symbol &symbol, int top, int bottom) const
{
    const int module = std::max(1, moduleDots(symbol));
    const int left = (m_size.width() - symbol.width * module) / 2;
    const QFont digits = font(codeLetters * std::min(m_scale, 1.2), false);
    const int textHeight = QFontMetrics(digits).ascent();
    const int height = std::min(bottom - top - dots(gapAboveBars) - textHeight, dots(highestBars));
    const int guard = std::min(guardModules * module, textHeight / 2);
    const int barsTop = bottom - textHeight - height;
    for (const Bar &bar : symbol.bars)
        painter.fillRect(left + bar.from * module, barsTop, bar.width * module, height + (bar.isGuard ? guard : 0),
                         Qt::black);

    painter.setFont(digits);
    painter.setLayoutDirection(Qt::LeftToRight);
    for (const SymbolText &part : symbol.texts) {
        QRect room(left + part.from * module, bottom - textHeight, part.width * module, textHeight);
        painter.drawText(room, Qt::AlignHCenter | Qt::AlignTop | Qt::TextSingleLine | Qt::TextDontClip, part.text);
    }
}

} // namespace harrowby::app
