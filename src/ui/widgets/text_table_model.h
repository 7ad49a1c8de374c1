// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractTableModel>
#include <QStringList>

#include <set>
#include <vector>

namespace harrowby {

/// Rows of plain texts under fixed column headers: what a list view of the counter shows. The view's rows are the
/// only copy of what they show (the cart has no other storage). Rows are 0-based here.
class TextTableModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    explicit TextTableModel(QStringList headers, QObject *parent = nullptr);

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role = Qt::DisplayRole) const override;

    /// Columns of money and quantities, which stand flush right under their headers.
    void setFigureColumns(std::set<int> columns);

    /// Appends a row; missing columns are empty.
    void appendRow(const QStringList &texts);
    void removeRowAt(int row);
    void clear();
    /// Empty outside the table.
    [[nodiscard]] QString text(int row, int column) const;
    void setText(int row, int column, const QString &text);
    /// First row whose first column equals the text as a whole, without regard to case; -1 when there is none.
    [[nodiscard]] int findRow(const QString &text) const;

private:
    QStringList m_headers;
    std::set<int> m_figureColumns;
    std::vector<QStringList> m_rows;
};

} // namespace harrowby
