// SPDX-License-Identifier: MIT
#pragma once

#include "spoken/spoken.h"

#include <QTreeView>

#include <set>
#include <vector>

namespace harrowby {

class TextTableModel;

/// Report-style list: whole rows, one selected at a time, columns under headers, texts elided with the whole in
/// their tool tip (always plain text). The columns share the width that there is, so that nothing scrolls sideways.
/// Enter on a row does what a double click does. A click selects a row, whatever modifier keys are held.
class RowList : public QTreeView, public SpokenParts
{
    Q_OBJECT

public:
    explicit RowList(const QStringList &headers, QWidget *parent = nullptr);

    [[nodiscard]] TextTableModel &rows() const { return *m_rows; }
    /// 0-based; -1 when no row is selected.
    [[nodiscard]] int selectedRow() const;
    /// Selects a row and scrolls to it; a row that does not exist leaves none selected.
    void selectRow(int row);
    /// The same without scrolling: a list that fills stays where its reader is.
    void selectInPlace(int row);

    void pressPart(int row) override;

    /// How the width is shared out: every column gets what its header and its sample text need, and its share of
    /// the rest. Columns without a share count as 1.
    void setColumnShares(std::vector<int> shares);
    /// A text of each column that should fit whole.
    void setColumnSamples(QStringList samples);
    /// Columns of money and quantities, which stand flush right.
    void setFigureColumns(std::set<int> columns);

    [[nodiscard]] QSize minimumSizeHint() const override;
    [[nodiscard]] QSize sizeHint() const override;

    void doItemsLayout() override;
    void reset() override;

Q_SIGNALS:
    /// A row was double-clicked, or Enter was pressed on it.
    void rowOpened(int row);
    /// A row was clicked, or Enter was pressed on it: a touch is enough. Walking the rows with the arrow keys chooses
    /// none.
    void rowChosen(int row);

protected:
    void rowsInserted(const QModelIndex &parent, int start, int end) override;
    void rowsAboutToBeRemoved(const QModelIndex &parent, int start, int end) override;
    void changeEvent(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    [[nodiscard]] QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex &index,
                                                                       const QEvent *event = nullptr) const override;
    void showEvent(QShowEvent *event) override;
    bool viewportEvent(QEvent *event) override;

private:
    /// What has happened to the rows since they were laid out.
    enum class Change { None, GrownOutOfSight, Other };

    void shareWidth();
    [[nodiscard]] int neededWidth(int column) const;

    TextTableModel *m_rows;
    std::vector<int> m_shares;
    QStringList m_samples;
    Change m_change = Change::Other;
};

} // namespace harrowby
