// SPDX-License-Identifier: MIT
#include "sheet/drop_down.h"

#include <QComboBox>
#include <QStyledItemDelegate>

#include <algorithm>

namespace harrowby::sheet {

namespace {

constexpr int touchHeight = 44;
constexpr int mostEntries = 24; // what a screen has room for ends the list sooner

/// Knows the height of an entry before the list has its style: a list that drops down for the first time is measured
/// that early, and would be too short for its last entries.
class EntryDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override
    {
        const QSize size = QStyledItemDelegate::sizeHint(option, index);
        return {size.width(), std::max(size.height(), touchHeight)};
    }
};

} // namespace

void dressDropDowns(QWidget &window)
{
    for (auto *list : window.findChildren<QComboBox *>()) {
        list->setItemDelegate(new EntryDelegate(list));
        list->setMaxVisibleItems(mostEntries);
    }
}

} // namespace harrowby::sheet
