// SPDX-License-Identifier: MIT
#include "ui/widgets/two_line_delegate.h"

#include "ui/widgets/text_table_model.h"

#include <QApplication>
#include <QPainter>
#include <QTextLayout>

namespace harrowby {

namespace {

constexpr int padding = 7; ///< what the style leaves beside a text, and a little more
constexpr int overlap = 3; ///< the lines of one text stand closer than two texts do

/// How much of a text the first line takes.
qsizetype firstLineLength(const QString &text, const QFont &font, int width)
{
    QTextLayout layout(text, font);
    QTextOption wrapping;
    wrapping.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(wrapping);
    layout.beginLayout();
    QTextLine line = layout.createLine();
    line.setLineWidth(width);
    layout.endLayout();
    return line.textLength();
}

int lineHeight(const QStyleOptionViewItem &cell)
{
    return cell.fontMetrics.height() - overlap;
}

/// Beneath a text that takes one line of two, where it costs no width; before any other, and then without its word.
QString withMark(const QStyleOptionViewItem &cell, const QString &mark)
{
    const QRect area = cell.rect.adjusted(padding, 0, -padding, 0);
    const bool hasRoom =
        2 * lineHeight(cell) <= area.height() && cell.fontMetrics.horizontalAdvance(cell.text) <= area.width();
    return hasRoom ? cell.text + QChar::LineSeparator + mark : mark.first(1) + QChar::Nbsp + cell.text;
}

} // namespace

void TwoLineDelegate::initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    option->palette.setColor(QPalette::HighlightedText, option->palette.color(QPalette::Text));
    if (const QString mark = index.data(TextTableModel::markRole).toString(); !mark.isEmpty())
        option->text = withMark(*option, mark);
}

void TwoLineDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    QStyleOptionViewItem cell = option;
    initStyleOption(&cell, index);
    const QRect area = cell.rect.adjusted(padding, 0, -padding, 0);
    const int height = lineHeight(cell);
    const bool fits =
        !cell.text.contains(QChar::LineSeparator) && cell.fontMetrics.horizontalAdvance(cell.text) <= area.width();
    if (fits || area.width() <= 0 || 2 * height > area.height()) {
        QStyledItemDelegate::paint(painter, option, index);
        return;
    }
    const qsizetype end = firstLineLength(cell.text, cell.font, area.width());
    const QString first = cell.text.left(end).trimmed();
    const QString second = cell.fontMetrics.elidedText(cell.text.mid(end).trimmed(), Qt::ElideRight, area.width());
    cell.text.clear();
    const QStyle *style = cell.widget != nullptr ? cell.widget->style() : QApplication::style();
    style->drawControl(QStyle::CE_ItemViewItem, &cell, painter, cell.widget);

    const int flags =
        static_cast<int>(cell.displayAlignment & Qt::AlignHorizontal_Mask) | Qt::AlignVCenter | Qt::TextSingleLine;
    const int top = area.top() + (area.height() - 2 * height) / 2;
    painter->save();
    painter->setFont(cell.font);
    painter->setPen(cell.palette.color(QPalette::Text));
    painter->drawText(QRect(area.left(), top, area.width(), height), flags, first);
    painter->drawText(QRect(area.left(), top + height, area.width(), height), flags, second);
    painter->restore();
}

} // namespace harrowby
