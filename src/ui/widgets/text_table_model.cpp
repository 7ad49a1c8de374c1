// SPDX-License-Identifier: MIT
#include "ui/widgets/text_table_model.h"

#include "theme/colours.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby {

TextTableModel::TextTableModel(QStringList headers, QObject *parent) :
    QAbstractTableModel(parent), m_headers(std::move(headers))
{
}

int TextTableModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_published;
}

int TextTableModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_headers.size());
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
    case Qt::ForegroundRole:
        return index.column() == 0 ? levelColour(index.row()) : QVariant();
    case markRole:
    case Qt::AccessibleTextRole:
        return index.column() == 0 && isLow(index.row()) ? lowMark(index.row(), role) : QVariant();
    default:
        return {};
    }
}

QVariant TextTableModel::levelColour(int row) const
{
    switch (m_rows[static_cast<size_t>(row)].level) {
    case Level::Low:
        return Colours::current().lowRow;
    case Level::Enough:
        return Colours::current().enoughRow;
    default:
        return {};
    }
}

/// Of a low row.
QVariant TextTableModel::lowMark(int row, int role) const
{
    return role == markRole ? u"\u25BC "_s + u"low"_s : u"%1, low stock"_s.arg(text(row, 0));
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
    m_figureColumns = std::move(columns);
    Q_EMIT headerDataChanged(Qt::Horizontal, 0, columnCount() - 1);
}

void TextTableModel::appendRow(const QStringList &texts)
{
    queueRow(texts);
    publishRows();
}

void TextTableModel::queueRow(const QStringList &texts)
{
    queueRow(PackedRow(texts, m_headers.size()));
}

void TextTableModel::queueRow(PackedRow row)
{
    m_rows.push_back({std::move(row), Level::None, false});
}

void TextTableModel::publishRows()
{
    const int rows = static_cast<int>(m_rows.size());
    if (rows == m_published)
        return;
    beginInsertRows({}, m_published, rows - 1);
    m_published = rows;
    endInsertRows();
}

void TextTableModel::removeRowAt(int row)
{
    if (!has(row))
        return;
    publishRows();
    beginRemoveRows({}, row, row);
    m_rows.erase(m_rows.begin() + row);
    --m_published;
    m_index.clear();
    endRemoveRows();
}

void TextTableModel::clear()
{
    beginResetModel();
    m_rows.clear();
    m_rows.shrink_to_fit();
    m_published = 0;
    m_index.clear();
    m_fills.begin();
    endResetModel();
}

QString TextTableModel::text(int row, int column) const
{
    if (!has(row) || column < 0 || column >= columnCount())
        return {};
    return m_rows[static_cast<size_t>(row)].texts.text(column);
}

void TextTableModel::setText(int row, int column, const QString &text)
{
    if (!has(row) || column < 0 || column >= columnCount())
        return;
    QStringList texts = m_rows[static_cast<size_t>(row)].texts.texts();
    texts[column] = text;
    setRow(row, texts);
}

void TextTableModel::setRow(int row, const QStringList &texts)
{
    setRow(row, PackedRow(texts, m_headers.size()));
}

void TextTableModel::setRow(int row, PackedRow texts)
{
    if (!has(row))
        return;
    const PackedRow replaced = std::exchange(m_rows[static_cast<size_t>(row)].texts, std::move(texts));
    if (replaced.view(0) != m_rows[static_cast<size_t>(row)].texts.view(0))
        m_index.clear();
    // From the first text that is another to the last: a screen reader says each that is told of.
    const PackedRow &now = m_rows[static_cast<size_t>(row)].texts;
    int first = 0;
    int last = columnCount() - 1;
    while (first <= last && replaced.view(first) == now.view(first))
        ++first;
    while (last > first && replaced.view(last) == now.view(last))
        --last;
    if (first <= last)
        changed(row, first, last, {Qt::DisplayRole, Qt::ToolTipRole, Qt::AccessibleTextRole});
}

int TextTableModel::findRow(QStringView text) const
{
    for (int row = m_index.count(); row < static_cast<int>(m_rows.size()); ++row)
        m_index.append(m_rows[static_cast<size_t>(row)].texts.view(0));
    return m_index.find(text, [&](int row) {
        return m_rows[static_cast<size_t>(row)].texts.view(0).compare(text, Qt::CaseInsensitive) == 0;
    });
}

void TextTableModel::setLow(int row, bool low)
{
    const Level level = low ? Level::Low : Level::Enough;
    if (!has(row) || std::exchange(m_rows[static_cast<size_t>(row)].level, level) == level)
        return;
    changed(row, 0, 0, {Qt::ForegroundRole, markRole, Qt::AccessibleTextRole});
}

bool TextTableModel::isLow(int row) const
{
    return has(row) && m_rows[static_cast<size_t>(row)].level == Level::Low;
}

void TextTableModel::setByHand(int row, bool byHand)
{
    if (has(row))
        m_rows[static_cast<size_t>(row)].isByHand = byHand;
}

bool TextTableModel::isByHand(int row) const
{
    return has(row) && m_rows[static_cast<size_t>(row)].isByHand;
}

void TextTableModel::changed(int row, int firstColumn, int lastColumn, const QList<int> &roles)
{
    if (row < m_published)
        Q_EMIT dataChanged(index(row, firstColumn), index(row, lastColumn), roles);
}

} // namespace harrowby
