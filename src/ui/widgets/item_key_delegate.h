// SPDX-License-Identifier: MIT
#pragma once

#include <QStyledItemDelegate>

namespace harrowby {

/// Paints an item key as a cashier reads it: the name, and under it, small, the ID. Any other text is painted as it
/// stands.
class ItemKeyDelegate final : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;
    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
};

} // namespace harrowby
