// SPDX-License-Identifier: MIT
#include "ui/widgets/entry_model.h"

namespace harrowby {

int EntryModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_entries.size());
}

QVariant EntryModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || !checkIndex(index, CheckIndexOption::ParentIsInvalid))
        return {};
    if (role == Qt::DisplayRole || role == Qt::EditRole || role == Qt::ToolTipRole)
        return m_entries.at(index.row());
    return {};
}

bool EntryModel::removeRows(int row, int count, const QModelIndex &parent)
{
    if (parent.isValid() || row < 0 || count <= 0 || row + count > rowCount())
        return false;
    beginRemoveRows({}, row, row + count - 1);
    for (int i = 0; i < count; ++i)
        m_entries.removeAt(row);
    endRemoveRows();
    return true;
}

void EntryModel::append(const QString &entry)
{
    const int position = rowCount();
    beginInsertRows({}, position, position);
    m_entries.append(entry);
    endInsertRows();
}

void EntryModel::append(const PackedTexts &entries)
{
    if (entries.isEmpty())
        return;
    const int position = rowCount();
    beginInsertRows({}, position, position + static_cast<int>(entries.size()) - 1);
    m_entries.append(entries);
    endInsertRows();
}

void EntryModel::clear()
{
    beginResetModel();
    m_entries.clear();
    endResetModel();
}

} // namespace harrowby
