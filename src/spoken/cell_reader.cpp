// SPDX-License-Identifier: MIT
#include "spoken/cell_reader.h"

#include "spoken/combo_reader.h"
#include "spoken/spoken.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QHeaderView>
#include <QListView>
#include <QTreeView>

namespace harrowby {

namespace {

const QHeaderView *headerOf(const QAbstractItemView &view)
{
    const auto *tree = qobject_cast<const QTreeView *>(&view);
    return tree != nullptr ? tree->header() : nullptr;
}

void pick(QComboBox &combo, int row)
{
    if (auto *parts = dynamic_cast<SpokenParts *>(&combo))
        return parts->pressPart(row);
    const QPointer<QComboBox> alive(&combo);
    combo.hidePopup();
    combo.setCurrentIndex(row);
    if (alive)
        Q_EMIT combo.activated(row);
}

} // namespace

CellReader::CellReader(QAbstractItemView *view, int row, int column) : m_view(view), m_row(row), m_column(column) {}

bool CellReader::isValid() const
{
    if (!m_view || m_view->model() == nullptr)
        return false;
    return isHeading() ? m_column < m_view->model()->columnCount(m_view->rootIndex()) : index().isValid();
}

QModelIndex CellReader::index() const
{
    return m_view->model()->index(m_row, m_column, m_view->rootIndex());
}

QAccessible::Role CellReader::role() const
{
    if (isHeading())
        return QAccessible::ColumnHeader;
    return qobject_cast<QListView *>(m_view.data()) != nullptr ? QAccessible::ListItem : QAccessible::Cell;
}

QAccessible::State CellReader::state() const
{
    QAccessible::State state;
    state.invalid = !isValid();
    if (state.invalid)
        return state;
    state.disabled = !m_view->isEnabled();
    state.invisible = !m_view->isVisible();
    if (isHeading())
        return state;
    state.offscreen = !m_view->viewport()->rect().intersects(m_view->visualRect(index()));
    state.selectable = m_view->selectionMode() != QAbstractItemView::NoSelection;
    state.selected = isSelected();
    state.focusable = m_view->focusPolicy() != Qt::NoFocus;
    state.focused = m_view->hasFocus() && m_view->currentIndex() == index();
    return state;
}

QString CellReader::text(QAccessible::Text kind) const
{
    if (!isValid() || (kind != QAccessible::Name && kind != QAccessible::Description))
        return {};
    const bool name = kind == QAccessible::Name;
    const int role = name ? Qt::AccessibleTextRole : Qt::AccessibleDescriptionRole;
    const auto data = [this](int asked) {
        return isHeading() ? m_view->model()->headerData(m_column, Qt::Horizontal, asked) : index().data(asked);
    };
    const QString given = data(role).toString();
    return given.isEmpty() && name ? data(Qt::DisplayRole).toString() : given;
}

QRect CellReader::rect() const
{
    if (!isValid())
        return {};
    if (!isHeading()) {
        const QRect cell = m_view->visualRect(index());
        return {m_view->viewport()->mapToGlobal(cell.topLeft()), cell.size()};
    }
    const QHeaderView *header = headerOf(*m_view);
    if (header == nullptr)
        return {};
    const QPoint corner(header->sectionViewportPosition(m_column), 0);
    return {header->viewport()->mapToGlobal(corner), QSize(header->sectionSize(m_column), header->height())};
}

QAccessibleInterface *CellReader::parent() const
{
    return QAccessible::queryAccessibleInterface(m_view.data());
}

bool CellReader::isSelected() const
{
    const QItemSelectionModel *selection = m_view ? m_view->selectionModel() : nullptr;
    return selection != nullptr && !isHeading() && selection->isSelected(index());
}

QList<QAccessibleInterface *> CellReader::columnHeaderCells() const
{
    QAccessibleInterface *list = parent();
    if (list == nullptr || headerOf(*m_view) == nullptr)
        return {};
    return {list->child(m_column)};
}

QStringList CellReader::actionNames() const
{
    return isHeading() ? QStringList() : QStringList{pressAction(), toggleAction()};
}

void CellReader::doAction(const QString &action)
{
    if (!isValid() || isHeading() || !m_view->isEnabled())
        return;
    if (action == pressAction())
        press();
    else if (action == toggleAction())
        m_view->setCurrentIndex(index());
}

void CellReader::press()
{
    if (QComboBox *combo = comboOf(*m_view))
        return pick(*combo, m_row);
    if (auto *parts = dynamic_cast<SpokenParts *>(m_view.data()))
        return parts->pressPart(m_row);
    const QPointer<QAbstractItemView> view = m_view;
    const QModelIndex pressed = index();
    view->setCurrentIndex(pressed);
    if (view)
        Q_EMIT view->clicked(pressed);
}

void *CellReader::interface_cast(QAccessible::InterfaceType type)
{
    if (type == QAccessible::TableCellInterface && !isHeading())
        return static_cast<QAccessibleTableCellInterface *>(this);
    if (type == QAccessible::ActionInterface && !isHeading())
        return static_cast<QAccessibleActionInterface *>(this);
    return nullptr;
}

} // namespace harrowby
