// SPDX-License-Identifier: MIT
#pragma once

#include "app/csv/csv_form.h"
#include "app/csv/csv_reader.h"

#include <QAbstractTableModel>
#include <QByteArrayView>
#include <QList>
#include <QStringList>

namespace harrowby::app {

/// The beginning of a file, as it is read in some form.
struct Sample
{
    QStringList headings; ///< numberedHeadings() where the file has none
    QList<CsvRow> rows;   ///< below the headings

    /// Some different cells of a column, with commas between them; empty when it has none.
    [[nodiscard]] QString examplesOf(int column) const;
};

/// As much of a file as holds its headings and first rows.
[[nodiscard]] QByteArrayView beginningOf(QByteArrayView bytes);

/// Reads no more of the file than that takes.
[[nodiscard]] Sample readSample(QByteArrayView bytes, const CsvForm &form, bool hasHeadings);

/// Shows it: the line of each row, and its cells.
class SampleModel final : public QAbstractTableModel
{
    Q_OBJECT

public:
    using QAbstractTableModel::QAbstractTableModel;

    void show(Sample sample);

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role = Qt::DisplayRole) const override;

private:
    Sample m_sample;
};

} // namespace harrowby::app
