// SPDX-License-Identifier: MIT
#pragma once

#include "app/catalogue/import_types.h"

#include <QAbstractTableModel>
#include <QList>

namespace harrowby::app {

/// Imports of the past, one a row.
class PastModel final : public QAbstractTableModel
{
    Q_OBJECT

public:
    using QAbstractTableModel::QAbstractTableModel;

    void show(QList<PastImport> imports);
    [[nodiscard]] const QList<PastImport> &imports() const { return m_imports; }
    /// Null where there is none.
    [[nodiscard]] const PastImport *find(qint64 id) const;
    [[nodiscard]] const PastImport *at(int row) const;
    /// The row of an import; the first for none that is there.
    [[nodiscard]] QModelIndex indexOf(qint64 id) const;

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role = Qt::DisplayRole) const override;

private:
    QList<PastImport> m_imports;
};

/// "22 Nov 2026, 09:05", as a record has it.
[[nodiscard]] QString momentWords(const QString &recordTime);

} // namespace harrowby::app
