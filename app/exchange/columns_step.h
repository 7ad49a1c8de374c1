// SPDX-License-Identifier: MIT
#pragma once

#include "app/catalogue/import_columns.h"
#include "app/exchange/import_step.h"
#include "app/records/records.h"

#include <QList>
#include <QStringList>

class QComboBox;
class QGridLayout;
class QLabel;
class QScrollArea;

namespace harrowby::app {

/// The second step: which column of the file is which of the store, found by its heading, remembered or chosen by hand.
class ColumnsStep final : public ImportStep
{
    Q_OBJECT

public:
    /// The records must outlive it.
    ColumnsStep(ImportDraft &draft, Records &records, QWidget *parent = nullptr);

    [[nodiscard]] QString heading() const override { return QStringLiteral("Which column is what"); }
    void enter() override;
    [[nodiscard]] Result<void, QString> leave() override;

private:
    void match();
    void makeRows();
    void addRow(QGridLayout &grid, int column);
    void choose(int column);
    void showRows();
    void showLeftOut();
    void openDoubts();
    /// What is to be chosen, with the headings that fit; empty for a column that is not in doubt.
    [[nodiscard]] QString doubtWords(int column) const;
    [[nodiscard]] QString headingOf(int fileColumn) const;

    Records &m_records;
    QStringList m_headings; ///< that the rows below are made for
    int m_kind = -1;
    QList<ColumnDoubt> m_doubts; ///< those that nobody has settled yet
    QLabel *m_leftOut = nullptr;
    QScrollArea *m_area = nullptr;
    QList<QComboBox *> m_boxes; ///< one a column of the store: which of the file it is
    QList<QLabel *> m_examples;
};

} // namespace harrowby::app
