// SPDX-License-Identifier: MIT
#pragma once

#include "tables/table.h"

#include <QDialog>

class QHBoxLayout;
class QPushButton;

namespace harrowby::tables {
class TableView;
}

namespace harrowby::app {

/// A line of text, a table, and what can be done with it.
class ListDialog final : public QDialog
{
    Q_OBJECT

public:
    struct Words
    {
        QString title;
        QString heading;
        QString tableName; ///< for a screen reader
        QString action;    ///< caption of the button that takes the chosen row; empty: there is only "OK"
        int sortedBy = 0;  ///< column
    };

    ListDialog(const Words &words, tables::Table table, QWidget *parent);

    /// The first column of the row that was chosen; empty when none is.
    [[nodiscard]] QString chosen() const;

private:
    void layOut(const Words &words);
    void addButtons(QHBoxLayout &row, const QString &action);
    void followChoice();

    tables::TableView *m_view = nullptr;
    QPushButton *m_action = nullptr;
};

} // namespace harrowby::app
