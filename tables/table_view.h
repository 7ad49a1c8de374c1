// SPDX-License-Identifier: MIT
#pragma once

#include "tables/table_model.h"

#include <QTreeView>

class QComboBox;

namespace harrowby::tables {

/// A table to read: whole rows, sorted by a press on a heading or with the box that sortBox() makes.
class TableView : public QTreeView
{
    Q_OBJECT

public:
    explicit TableView(QWidget *parent = nullptr);

    /// Shows the table, sorted as said. The sorting that a person chose stays as long as the columns do.
    void show(Table table, int column, Qt::SortOrder order);
    void clear();
    [[nodiscard]] const Table &table() const { return m_model->table(); }

    /// A box that sorts without a mouse; it follows the headings.
    [[nodiscard]] QComboBox *createSortBox(QWidget *parent);

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void fillSortBox();
    void followHeading(int column, Qt::SortOrder order);
    void setWidths();
    [[nodiscard]] int usualWidth(const Column &column) const;
    [[nodiscard]] int leastWidth(int column) const;
    /// Whether the column that takes the rest lacks room, so that the others give up what they do not need.
    [[nodiscard]] bool isNarrow() const;

    TableModel *m_model;
    QComboBox *m_sortBox = nullptr;
    bool m_isNarrow = false;
};

} // namespace harrowby::tables
