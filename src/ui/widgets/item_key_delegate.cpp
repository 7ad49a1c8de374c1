// SPDX-License-Identifier: MIT
#include "ui/widgets/item_key_delegate.h"

#include "basic/item_key.h"
#include "theme/colours.h"

#include <QApplication>
#include <QPainter>

using namespace Qt::StringLiterals;

namespace harrowby {

namespace {

constexpr int padding = 7;
constexpr double idSize = 0.82; ///< of the name's font

void drawLine(QPainter &painter, const QRect &area, Qt::Alignment alignment, const QString &text)
{
    painter.drawText(area, static_cast<int>(alignment) | Qt::TextSingleLine,
                     painter.fontMetrics().elidedText(text, Qt::ElideRight, area.width()));
}

} // namespace

void ItemKeyDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    QStyleOptionViewItem cell = option;
    initStyleOption(&cell, index);
    const qsizetype end = cell.text.indexOf(itemKeySeparator);
    QFont small = cell.font;
    small.setPointSizeF(small.pointSizeF() * idSize);
    const int idHeight = QFontMetrics(small).height();
    if (end < 0 || cell.fontMetrics.height() + idHeight > cell.rect.height()) {
        QStyledItemDelegate::paint(painter, option, index);
        return;
    }
    const QString id = cell.text.left(end);
    const QString name = cell.text.mid(end + itemKeySeparator.size()).simplified();
    cell.text.clear();
    const QStyle *style = cell.widget != nullptr ? cell.widget->style() : QApplication::style();
    style->drawControl(QStyle::CE_ItemViewItem, &cell, painter, cell.widget);

    const Colours &colours = Colours::current();
    const QRect both = cell.rect.adjusted(padding, 0, -padding, 0);
    const int top = both.top() + (both.height() - cell.fontMetrics.height() - idHeight) / 2;
    painter->save();
    painter->setFont(cell.font);
    painter->setPen(colours.text);
    drawLine(*painter, QRect(both.left(), top, both.width(), cell.fontMetrics.height()),
             Qt::AlignLeft | Qt::AlignVCenter, name);
    painter->setFont(small);
    painter->setPen(colours.muted);
    drawLine(*painter, QRect(both.left(), top + cell.fontMetrics.height(), both.width(), idHeight),
             Qt::AlignLeft | Qt::AlignVCenter, id);
    painter->restore();
}

} // namespace harrowby
