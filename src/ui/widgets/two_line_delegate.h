// SPDX-License-Identifier: MIT
#pragma once

#include <QStyledItemDelegate>

namespace harrowby {

/// Breaks a text that is too long for its cell into two lines, where the row has the height for them; what does not
/// fit into both is elided. A text that has a colour of its own keeps it in the selected row.
class TwoLineDelegate final : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;
    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;

protected:
    void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override;
};

} // namespace harrowby
