// SPDX-License-Identifier: MIT
#include "app/office/page_row_painter.h"

#include "theme/colours.h"
#include "theme/measures.h"

#include <QApplication>
#include <QPainter>

namespace harrowby::app {

namespace {

constexpr int padding = 10;
constexpr int headingHeight = 28;
constexpr int foundHeight = 52;
constexpr double smallSize = 0.85; ///< of the list's font

bool isHeading(const QModelIndex &index)
{
    return !index.data(PageRowPainter::PlaceRole).isValid();
}

QFont small(QFont font)
{
    font.setPointSizeF(font.pointSizeF() * smallSize);
    return font;
}

void drawLine(QPainter &painter, const QRect &area, int flags, const QString &text)
{
    const QString line = painter.fontMetrics().elidedText(text, Qt::ElideRight, area.width(), flags);
    painter.drawText(area, flags | Qt::TextSingleLine, line);
}

} // namespace

void PageRowPainter::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    QStyleOptionViewItem row = option;
    initStyleOption(&row, index);
    const QString title = row.text;
    row.text.clear();
    const QStyle *style = row.widget != nullptr ? row.widget->style() : QApplication::style();
    if (!isHeading(index))
        style->drawControl(QStyle::CE_ItemViewItem, &row, painter, row.widget);

    const Colours &colours = Colours::current();
    const QRect area = row.rect.adjusted(padding, 0, -padding, 0);
    const QString where = index.data(WhereRole).toString();
    painter->save();
    painter->setPen(isHeading(index) ? colours.muted : colours.text);
    painter->setFont(isHeading(index) ? small(row.font) : row.font);
    if (isHeading(index)) {
        drawLine(*painter, area, Qt::AlignLeft | Qt::AlignBottom, title);
    } else if (where.isEmpty()) {
        drawLine(*painter, area, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextShowMnemonic,
                 index.data(CaptionRole).toString());
    } else {
        const QRect upper = area.adjusted(0, 0, 0, -area.height() / 2);
        drawLine(*painter, upper, Qt::AlignLeft | Qt::AlignBottom, title);
        painter->setFont(small(row.font));
        painter->setPen(colours.muted);
        drawLine(*painter, area.adjusted(0, upper.height(), 0, 0), Qt::AlignLeft | Qt::AlignTop, where);
    }
    painter->restore();
}

QSize PageRowPainter::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const int height = isHeading(index)                             ? headingHeight
                       : index.data(WhereRole).toString().isEmpty() ? touchHeight
                                                                    : foundHeight;
    return {QStyledItemDelegate::sizeHint(option, index).width(), height};
}

} // namespace harrowby::app
