// SPDX-License-Identifier: MIT
#pragma once

#include "ui/widgets/packed_texts.h"

#include <QAbstractListModel>

namespace harrowby {

/// Entries of a pick list: plain texts, cheap by the hundred thousand.
class EntryModel : public QAbstractListModel
{
    Q_OBJECT

public:
    using QAbstractListModel::QAbstractListModel;

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    bool removeRows(int row, int count, const QModelIndex &parent = {}) override;

    void append(const QString &entry);
    /// All of them at once.
    void append(const PackedTexts &entries);
    void clear();
    /// First entry that equals the text; -1 when there is none.
    [[nodiscard]] int find(const QString &text) const { return static_cast<int>(m_entries.indexOf(text)); }

private:
    PackedTexts m_entries;
};

} // namespace harrowby
