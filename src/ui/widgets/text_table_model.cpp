// SPDX-License-Identifier: MIT
#include "ui/widgets/text_table_model.h"

#include <algorithm>
#include <utility>

namespace harrowby {

TextTableModel::TextTableModel(QStringList headers, QObject *parent) :
    QAbstractTableModel(parent), m_headers(std::move(headers))
{
}

int TextTableModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

int TextTableModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_headers.size());
}

QVariant TextTableModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || !checkIndex(index, CheckIndexOption::ParentIsInvalid))
        return {};
    switch (role) {
    case Qt::DisplayRole:
    case Qt::ToolTipRole:
        return text(index.row(), index.column());
    case Qt::TextAlignmentRole:
        return headerData(index.column(), Qt::Horizontal, role);
    default:
        return {};
    }
}

QVariant TextTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || section < 0 || section >= m_headers.size())
        return {};
    if (role == Qt::DisplayRole)
        return m_headers.at(section);
    if (role == Qt::TextAlignmentRole)
        return QVariant::fromValue(Qt::Alignment(m_figureColumns.contains(section) ? Qt::AlignRight : Qt::AlignLeft) |
                                   Qt::AlignVCenter);
    return {};
}

void TextTableModel::setFigureColumns(std::set<int> columns)
{
    beginResetModel();
    m_figureColumns = std::move(columns);
    endResetModel();
}

void TextTableModel::appendRow(const QStringList &texts)
{
    QStringList row = texts;
    row.resize(m_headers.size());
    const int position = rowCount();
    beginInsertRows({}, position, position);
    m_rows.push_back(std::move(row));
    endInsertRows();
}

void TextTableModel::removeRowAt(int row)
{
    if (row < 0 || row >= rowCount())
        return;
    beginRemoveRows({}, row, row);
    m_rows.erase(m_rows.begin() + row);
    endRemoveRows();
}

void TextTableModel::clear()
{
    beginResetModel();
    m_rows.clear();
    endResetModel();
}

QString TextTableModel::text(int row, int column) const
{
    if (row < 0 || row >= rowCount() || column < 0 || column >= columnCount())
        return {};
    return m_rows[size_t(row)].at(column);
}

void TextTableModel::setText(int row, int column, const QString &text)
{
    if (row < 0 || row >= rowCount() || column < 0 || column >= columnCount())
        return;
    m_rows[size_t(row)][column] = text;
    const QModelIndex changed = index(row, column);
    Q_EMIT dataChanged(changed, changed, {Qt::DisplayRole, Qt::ToolTipRole});
}

int TextTableModel::findRow(const QString &text) const
{
    const auto found = std::find_if(m_rows.begin(), m_rows.end(), [&text](const QStringList &row) {
        return row.first().compare(text, Qt::CaseInsensitive) == 0;
    });
    return found == m_rows.end() ? -1 : int(found - m_rows.begin());
}

} // namespace harrowby
