// SPDX-License-Identifier: MIT
#pragma once

#include "tables/table.h"

#include <QAbstractTableModel>

namespace harrowby::tables {

/// Shows the rows of a table. Sorting sorts the table itself, so that paper and files have the order of the screen.
class TableModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    using QAbstractTableModel::QAbstractTableModel;

    void setTable(Table table);
    [[nodiscard]] const Table &table() const { return m_table; }

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role = Qt::DisplayRole) const override;
    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;

private:
    Table m_table;
};

} // namespace harrowby::tables
