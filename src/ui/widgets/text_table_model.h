// SPDX-License-Identifier: MIT
#pragma once

#include "ui/reentry.h"
#include "ui/widgets/packed_row.h"
#include "ui/widgets/row_index.h"

#include <QAbstractTableModel>
#include <QStringList>

#include <set>
#include <vector>

namespace harrowby {

/// Rows of plain texts under fixed column headers: what a list view of the counter shows. The view's rows are the
/// only copy of what they show (the cart has no other storage). Rows are 0-based here, and any number of them.
///
/// A long loop queues its rows: text() and find functions see them at once, the views only when publishRows() announces
/// all queued rows together. Every other change publishes them first.
class TextTableModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    /// A mark that is painted with a cell's text but is no part of it, so that colour is not the only difference.
    static constexpr int markRole = Qt::UserRole;

    explicit TextTableModel(QStringList headers, QObject *parent = nullptr);

    /// Rows that the views know of.
    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role = Qt::DisplayRole) const override;

    /// Columns of money and quantities, which stand flush right under their headers.
    void setFigureColumns(std::set<int> columns);

    /// Appends a row; missing columns are empty.
    void appendRow(const QStringList &texts);
    void queueRow(const QStringList &texts);
    void queueRow(PackedRow row);
    void publishRows();
    /// Whether as many rows are queued as the views know of. They look through all of theirs when more come: with each
    /// breath of a long loop that would take as long as the rows themselves.
    [[nodiscard]] bool hasManyQueued() const { return static_cast<int>(m_rows.size()) >= 2 * m_published; }
    /// Rows that there are, queued ones too.
    [[nodiscard]] int lastRow() const { return static_cast<int>(m_rows.size()) - 1; }

    void removeRowAt(int row);
    void clear();
    /// Begins filling; the turn is the latest until clear() is called again. A loop stops when it no longer is.
    [[nodiscard]] LatestLoad::Turn fill() const { return m_fills.current(); }

    /// Empty outside the table.
    [[nodiscard]] QString text(int row, int column) const;
    void setText(int row, int column, const QString &text);
    /// Replaces the texts of a row.
    void setRow(int row, const QStringList &texts);
    void setRow(int row, PackedRow texts);
    /// First row whose first column equals the text as a whole, without regard to case; -1 when there is none.
    [[nodiscard]] int findRow(QStringView text) const;
    /// Prefetches what findRow() of this text will read.
    void expectRow(QStringView text) const { m_index.expect(text); }

    /// Draws the first column of a row red and with a mark, which a screen reader is told of too, or black and without;
    /// a row that was never told draws in the list's colour.
    void setLow(int row, bool low);
    [[nodiscard]] bool isLow(int row) const;

    /// Whether a person has set what stands in the row, which nothing shows: the cart's cost of a line.
    void setByHand(int row, bool byHand);
    [[nodiscard]] bool isByHand(int row) const;

private:
    enum class Level : char { None, Low, Enough };
    struct Row
    {
        PackedRow texts;
        Level level = Level::None;
        bool isByHand = false;
    };

    [[nodiscard]] bool has(int row) const { return row >= 0 && row < static_cast<int>(m_rows.size()); }
    [[nodiscard]] QVariant levelColour(int row) const;
    [[nodiscard]] QVariant lowMark(int row, int role) const;
    void changed(int row, int firstColumn, int lastColumn, const QList<int> &roles);

    QStringList m_headers;
    std::set<int> m_figureColumns;
    std::vector<Row> m_rows;
    int m_published = 0; ///< how many of them the views know of
    LatestLoad m_fills;
    mutable RowIndex m_index; ///< of the first rows, completed when a row is looked for
};

} // namespace harrowby
