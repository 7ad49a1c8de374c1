// SPDX-License-Identifier: MIT
#pragma once

#include <QStyledItemDelegate>

namespace harrowby::app {

/// A row of the office's list: a group's heading, a page with its letter underlined, or a place that was found and
/// where it is.
class PageRowPainter final : public QStyledItemDelegate
{
    Q_OBJECT

public:
    enum Role {
        PlaceRole = Qt::UserRole, ///< index of what the row leads to; none for a heading
        CaptionRole,              ///< with its letter
        WhereRole,                ///< the second line; empty for a page
    };

    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
};

} // namespace harrowby::app
