// SPDX-License-Identifier: MIT
#include "spoken/list_reader.h"

#include "spoken/cell_reader.h"
#include "spoken/combo_reader.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QListView>
#include <QTreeView>

namespace harrowby {

namespace {

QAccessible::Role roleOf(const QAbstractItemView &view)
{
    return qobject_cast<const QListView *>(&view) != nullptr ? QAccessible::List : QAccessible::Table;
}

} // namespace

ListReader::ListReader(QAbstractItemView *view) : QAccessibleWidget(view, roleOf(*view)) {}

ListReader::~ListReader()
{
    dropChildren();
}

bool ListReader::knows(const QWidget *widget)
{
    // Qt may ask while the view is under construction, when only its meta-object is reliable.
    return qobject_cast<const QListView *>(widget) != nullptr || qobject_cast<const QTreeView *>(widget) != nullptr;
}

QAbstractItemView *ListReader::view() const
{
    return static_cast<QAbstractItemView *>(widget());
}

bool ListReader::isValid() const
{
    return QAccessibleWidget::isValid() && view()->model() != nullptr;
}

/// The parent of a popup list is its combo box, not the popup's frame.
QAccessibleInterface *ListReader::parent() const
{
    QComboBox *combo = comboOf(*view());
    return combo != nullptr ? QAccessible::queryAccessibleInterface(combo) : QAccessibleWidget::parent();
}

QString ListReader::text(QAccessible::Text kind) const
{
    const QComboBox *combo = comboOf(*view());
    return kind == QAccessible::Name && combo != nullptr ? combo->accessibleName() : QAccessibleWidget::text(kind);
}

int ListReader::headings() const
{
    return qobject_cast<QTreeView *>(view()) != nullptr ? columnCount() : 0;
}

int ListReader::columnCount() const
{
    if (role() == QAccessible::List)
        return 1;
    return isValid() ? view()->model()->columnCount(view()->rootIndex()) : 0;
}

int ListReader::rowCount() const
{
    return isValid() ? view()->model()->rowCount(view()->rootIndex()) : 0;
}

int ListReader::childCount() const
{
    return headings() + rowCount() * columnCount();
}

int ListReader::place(int row, int column) const
{
    return headings() + row * columnCount() + column;
}

QAccessibleInterface *ListReader::child(int index) const
{
    if (index < 0 || index >= childCount())
        return nullptr;
    if (const QAccessible::Id known = m_children.value(index))
        return QAccessible::accessibleInterface(known);
    const bool heading = index < headings();
    const int cell = index - headings();
    const int column = heading || columnCount() > 1 ? (heading ? index : cell % columnCount()) : 0;
    auto *made = new CellReader(view(), heading ? CellReader::headingRow : cell / columnCount(), column);
    m_children.insert(index, QAccessible::registerAccessibleInterface(made));
    return made;
}

QAccessibleInterface *ListReader::childAt(int x, int y) const
{
    const QModelIndex index = view()->indexAt(view()->viewport()->mapFromGlobal(QPoint(x, y)));
    return index.isValid() ? cellAt(index.row(), index.column()) : nullptr;
}

int ListReader::indexOfChild(const QAccessibleInterface *child) const
{
    const auto *cell = dynamic_cast<const CellReader *>(child);
    if (cell == nullptr)
        return -1;
    return cell->rowIndex() == CellReader::headingRow ? cell->columnIndex()
                                                      : place(cell->rowIndex(), cell->columnIndex());
}

QAccessibleInterface *ListReader::focusChild() const
{
    const QModelIndex current = view()->currentIndex();
    return view()->hasFocus() && current.isValid() ? cellAt(current.row(), current.column()) : nullptr;
}

QAccessibleInterface *ListReader::cellAt(int row, int column) const
{
    return row < 0 || row >= rowCount() || column < 0 || column >= columnCount() ? nullptr : child(place(row, column));
}

int ListReader::selectedCellCount() const
{
    return selectedRowCount() * columnCount();
}

QList<QAccessibleInterface *> ListReader::selectedCells() const
{
    QList<QAccessibleInterface *> cells;
    for (const int row : selectedRows()) {
        for (int column = 0; column < columnCount(); ++column)
            cells << cellAt(row, column);
    }
    return cells;
}

QString ListReader::columnDescription(int column) const
{
    return headings() > 0 ? view()->model()->headerData(column, Qt::Horizontal).toString() : QString();
}

QList<int> ListReader::selectedRows() const
{
    QList<int> rows;
    if (view()->selectionModel() == nullptr)
        return rows;
    for (const QModelIndex &index : view()->selectionModel()->selectedIndexes()) {
        if (!rows.contains(index.row()))
            rows << index.row();
    }
    return rows;
}

bool ListReader::isRowSelected(int row) const
{
    return view()->selectionModel() != nullptr && view()->selectionModel()->rowIntersectsSelection(row);
}

bool ListReader::selectRow(int row)
{
    const QModelIndex index = isValid() ? view()->model()->index(row, 0, view()->rootIndex()) : QModelIndex();
    if (!index.isValid() || !view()->isEnabled())
        return false;
    view()->setCurrentIndex(index);
    return isRowSelected(row);
}

bool ListReader::unselectRow(int row)
{
    if (!isRowSelected(row) || !view()->isEnabled())
        return false;
    view()->clearSelection();
    return true;
}

void ListReader::modelChange(QAccessibleTableModelChangeEvent *event)
{
    using Event = QAccessibleTableModelChangeEvent;
    if (event->modelChangeType() == Event::DataChanged)
        return tellChanges(*event);
    // Appended rows leave the cached cells valid; any other change moves rows under them.
    if (event->modelChangeType() != Event::RowsInserted || event->lastRow() + 1 < rowCount())
        dropChildren();
}

void ListReader::dropChildren()
{
    const QHash<int, QAccessible::Id> dropped = std::exchange(m_children, {});
    for (const QAccessible::Id child : dropped)
        QAccessible::deleteAccessibleInterface(child);
}

/// Announces visible rows only: refilling a long list changes a hundred thousand texts.
void ListReader::tellChanges(const QAccessibleTableModelChangeEvent &event) const
{
    if (!view()->isVisible())
        return;
    const QRect seen = view()->viewport()->rect();
    for (int row = event.firstRow(); row <= event.lastRow(); ++row) {
        for (int column = event.firstColumn(); column <= event.lastColumn(); ++column) {
            const QModelIndex index = view()->model()->index(row, column, view()->rootIndex());
            if (column >= columnCount() || !seen.intersects(view()->visualRect(index)))
                continue;
            QAccessibleEvent changed(view(), QAccessible::NameChanged);
            changed.setChild(place(row, column));
            QAccessible::updateAccessibility(&changed);
        }
    }
}

void *ListReader::interface_cast(QAccessible::InterfaceType type)
{
    return type == QAccessible::TableInterface ? static_cast<QAccessibleTableInterface *>(this)
                                               : QAccessibleWidget::interface_cast(type);
}

} // namespace harrowby
