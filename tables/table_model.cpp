// SPDX-License-Identifier: MIT
#include "tables/table_model.h"

#include <utility>

namespace harrowby::tables {

namespace {

Qt::Alignment alignment(Kind kind)
{
    return Qt::AlignVCenter | (isFigure(kind) ? Qt::AlignRight : Qt::AlignLeft);
}

} // namespace

void TableModel::setTable(Table table)
{
    beginResetModel();
    m_table = std::move(table);
    endResetModel();
}

int TableModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_table.rows.size());
}

int TableModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_table.columns.size());
}

QVariant TableModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return {};
    const auto column = static_cast<std::size_t>(index.column());
    const Kind kind = m_table.columns.at(column).kind;
    if (role == Qt::TextAlignmentRole)
        return QVariant(alignment(kind));
    if (role != Qt::DisplayRole && role != Qt::ToolTipRole)
        return {};
    const Cell &cell = m_table.rows.at(static_cast<std::size_t>(index.row())).at(column);
    // Escaped, as QToolTip renders what looks like HTML; figures need no tip.
    if (role == Qt::ToolTipRole)
        return kind == Kind::Text ? QVariant(shownText(cell, kind).toHtmlEscaped()) : QVariant();
    return shownText(cell, kind);
}

QVariant TableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || section < 0 || section >= columnCount())
        return {};
    const Column &column = m_table.columns.at(static_cast<std::size_t>(section));
    if (role == Qt::DisplayRole)
        return column.heading;
    return role == Qt::TextAlignmentRole ? QVariant(alignment(column.kind)) : QVariant();
}

void TableModel::sort(int column, Qt::SortOrder order)
{
    if (column < 0 || column >= columnCount())
        return;
    Q_EMIT layoutAboutToBeChanged();
    sortRows(m_table.rows, column, order);
    // The current row is dropped: after sorting the view shows the top of the list.
    const QModelIndexList marked = persistentIndexList();
    changePersistentIndexList(marked, QModelIndexList(marked.size()));
    Q_EMIT layoutChanged();
}

} // namespace harrowby::tables
