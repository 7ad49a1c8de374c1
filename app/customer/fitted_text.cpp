// SPDX-License-Identifier: MIT
#include "app/customer/fitted_text.h"

#include <QFontMetrics>
#include <QPainter>
#include <QTextLayout>

#include <algorithm>

namespace harrowby::app {

namespace {

constexpr int rounding = 4; ///< between the width that is said of a text and the one that it is drawn in

/// The lines that a text is broken into; each in the text's own direction.
QStringList brokenLines(const QString &text, const QFont &font, const QSize &room)
{
    const QFontMetrics metrics(font);
    const int most = std::max(1, room.height() / metrics.lineSpacing());
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    QTextLayout layout(text, font);
    layout.setTextOption(option);
    QStringList lines;
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(room.width());
        if (lines.size() == most - 1) {
            lines << shownText(metrics, text.mid(line.textStart()).trimmed(), room.width());
            break;
        }
        lines << text.mid(line.textStart(), line.textLength()).trimmed();
    }
    layout.endLayout();
    return lines;
}

int absolute(Qt::Alignment alignment)
{
    return static_cast<int>((alignment | Qt::AlignAbsolute).toInt());
}

} // namespace

QFont fittedFont(const QFont &font, const QString &text, const QSize &room, int wanted, int least)
{
    QFont fitted(font);
    for (int size = std::max(wanted, least);; --size) {
        fitted.setPixelSize(size);
        const QFontMetrics metrics(fitted);
        const int width = metrics.horizontalAdvance(text);
        if (size <= least || (width + rounding <= room.width() && metrics.height() <= room.height()))
            return fitted;
        // Straight to about the size that fits.
        if (width + rounding > room.width())
            size = std::max(least + 1, std::min(size, size * room.width() / width + 2));
    }
}

QString shownText(const QFontMetrics &metrics, const QString &text, int width)
{
    // elidedText() counts fractions, and would cut a text that just fits.
    return metrics.horizontalAdvance(text) <= width ? text : metrics.elidedText(text, Qt::ElideRight, width);
}

void drawLine(QPainter &painter, const QRect &room, Qt::Alignment alignment, const QString &text)
{
    const QString shown = shownText(painter.fontMetrics(), text, room.width());
    painter.setLayoutDirection(text.isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
    painter.drawText(room, absolute(alignment) | Qt::TextSingleLine, shown);
}

void drawWrapped(QPainter &painter, const QRect &room, Qt::Alignment alignment, const QString &text)
{
    const QStringList lines = brokenLines(text, painter.font(), room.size());
    const int height = painter.fontMetrics().lineSpacing();
    const auto count = static_cast<int>(lines.size());
    int top = room.top();
    if (alignment.testFlag(Qt::AlignVCenter))
        top += std::max(0, room.height() - count * height) / 2;
    painter.setLayoutDirection(text.isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
    for (const QString &line : lines) {
        painter.drawText(QRect(room.left(), top, room.width(), height),
                         absolute(alignment & Qt::AlignHorizontal_Mask) | Qt::TextSingleLine, line);
        top += height;
    }
}

} // namespace harrowby::app
