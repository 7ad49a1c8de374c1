// SPDX-License-Identifier: MIT
#pragma once

#include "app/catalogue/import_types.h"

#include <QAbstractTableModel>
#include <QCache>
#include <QList>

#include <functional>

namespace harrowby::app {

/// The rows of an import, however many there are: fetched in pages, as they are looked at.
class ImportListModel final : public QAbstractTableModel
{
    Q_OBJECT

public:
    using QAbstractTableModel::QAbstractTableModel;

    enum Column { Line, State, Key, Name, Words, ColumnCount };

    using Fetch = std::function<Imported<QList<ImportedRow>>(qint64 from, qint64 most)>;
    void show(ImportKind kind, qint64 count, Fetch fetch);
    void clear() { show(ImportKind::Items, 0, {}); }
    /// All of one row, in words; empty where there is none.
    [[nodiscard]] QString wordsOf(int number) const;

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role = Qt::DisplayRole) const override;

Q_SIGNALS:
    /// Rows could not be read; their cells are empty.
    void failed(const QString &words) const;

private:
    /// Null when it cannot be read.
    [[nodiscard]] const ImportedRow *row(int row) const;

    ImportKind m_kind = ImportKind::Items;
    int m_count = 0;
    Fetch m_fetch;
    mutable QCache<int, QList<ImportedRow>> m_pages;
};

} // namespace harrowby::app
