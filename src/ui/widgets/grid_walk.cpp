// SPDX-License-Identifier: MIT
#include "ui/widgets/grid_walk.h"

#include <QKeyEvent>
#include <QWidget>

#include <algorithm>
#include <utility>

namespace harrowby {

GridWalk::GridWalk(std::vector<QWidget *> cells, int columns, QObject *parent) :
    QObject(parent), m_cells(std::move(cells)), m_columns(columns)
{
    for (QWidget *cell : m_cells)
        cell->installEventFilter(this);
}

bool GridWalk::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress)
        return false;
    const auto *key = static_cast<QKeyEvent *>(event);
    if ((key->modifiers() & ~Qt::KeypadModifier) != Qt::NoModifier)
        return false;
    const auto cell = std::find(m_cells.cbegin(), m_cells.cend(), watched);
    if (cell == m_cells.cend())
        return false;
    const Step step = stepOf(key->key(), (*cell)->layoutDirection());
    if (step.rows == 0 && step.columns == 0)
        return false;
    if (QWidget *found = next(static_cast<int>(cell - m_cells.cbegin()), step))
        found->setFocus(step.rows + step.columns > 0 ? Qt::TabFocusReason : Qt::BacktabFocusReason);
    return true;
}

GridWalk::Step GridWalk::stepOf(int key, Qt::LayoutDirection direction)
{
    const int forward = direction == Qt::RightToLeft ? -1 : 1;
    switch (key) {
    case Qt::Key_Up:
        return {-1, 0};
    case Qt::Key_Down:
        return {1, 0};
    case Qt::Key_Left:
        return {0, -forward};
    case Qt::Key_Right:
        return {0, forward};
    default:
        return {};
    }
}

QWidget *GridWalk::next(int from, Step step) const
{
    const int count = static_cast<int>(m_cells.size());
    int row = from / m_columns + step.rows;
    int column = from % m_columns + step.columns;
    for (; row >= 0 && column >= 0 && column < m_columns; row += step.rows, column += step.columns) {
        const int index = row * m_columns + column;
        if (index >= count)
            return nullptr;
        if (m_cells[static_cast<size_t>(index)]->isEnabled() && m_cells[static_cast<size_t>(index)]->isVisible())
            return m_cells[static_cast<size_t>(index)];
    }
    return nullptr;
}

} // namespace harrowby
