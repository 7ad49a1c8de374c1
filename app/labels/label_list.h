// SPDX-License-Identifier: MIT
#pragma once

#include "app/labels/label_drawing.h"
#include "app/labels/label_items.h"

#include <QAbstractTableModel>
#include <QHash>

namespace harrowby::app {

/// The bars that an item's label can have.
struct LabelChoice
{
    QString code;  ///< empty: name and price alone
    int units = 1; ///< that a scan sells, and the price is for
    QString words;
};

/// An item whose labels are to be printed.
struct LabelRow
{
    LabelItem item;
    QList<LabelChoice> choices; ///< never empty
    qsizetype choice = 0;
    int count = 1;

    [[nodiscard]] const LabelChoice &chosen() const { return choices.at(choice); }
};

/// What can be chosen for an item: its codes, its ID, none; what is no bars or is refused by
/// the till is left out. The first is the usual one.
[[nodiscard]] QList<LabelChoice> labelChoices(const LabelItem &item);

/// What stands on its label. Without bars when they cannot be made.
[[nodiscard]] Label labelOf(const LabelRow &row, const QString &currency);

/// "TEA (BEV-0001)", cut when it is long.
[[nodiscard]] QString labelItemWords(const LabelItem &item);

/// The labels that are to be printed, an item a row.
class LabelList final : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { ItemColumn, CountColumn, ColumnCount }; // below the item its code
    static constexpr int mostOfOne = 9'999;
    static constexpr qint64 mostLabels = 100'000;

    using QAbstractTableModel::QAbstractTableModel;

    /// What adding came to.
    struct Added
    {
        qsizetype items = 0;
        qint64 labels = 0;
        qsizetype withoutStock = 0; ///< items left out: none is in stock
        bool isFull = false;        ///< nothing was added, as there would be too many
    };
    /// So many labels of each, or as many as are in stock when `count` is 0. An item that is there already gets them
    /// on top.
    Added add(const QList<LabelItem> &items, int count);
    void setCount(int row, int count);
    void setChoice(int row, qsizetype choice);
    void remove(int row);
    void clear();

    [[nodiscard]] const QList<LabelRow> &rows() const { return m_rows; }
    [[nodiscard]] qint64 labels() const { return m_labels; }

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation,
                                      int role = Qt::DisplayRole) const override;

private:
    void addOne(const LabelItem &item, int count);

    QList<LabelRow> m_rows;
    QHash<QString, qsizetype> m_places; ///< of each item's ID and name
    qint64 m_labels = 0;
};

} // namespace harrowby::app
