// SPDX-License-Identifier: MIT
#include "app/labels/label_list.h"

#include "app/codes/code_table.h"
#include "app/codes/code_text.h"
#include "basic/cart_arithmetic.h"
#include "basic/numbers.h"

#include <QSize>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr int rowHeight = 50; // two lines

QString keyOf(const LabelItem &item)
{
    return item.id + u'\n' + item.name;
}

int unitsInStock(const LabelItem &item)
{
    const double whole = std::floor(item.available);
    return whole >= 1 ? static_cast<int>(std::min<double>(whole, LabelList::mostOfOne)) : 0;
}

int alignmentOf(int column)
{
    return static_cast<int>(Qt::AlignVCenter | (column == LabelList::CountColumn ? Qt::AlignRight : Qt::AlignLeft));
}

} // namespace

QString labelItemWords(const LabelItem &item)
{
    return itemWords(item.name, item.id);
}

QList<LabelChoice> labelChoices(const LabelItem &item)
{
    const LabelChoice none{{}, 1, u"No code"_s};
    if (item.isDoubled)
        return {none};
    QList<LabelChoice> choices;
    for (const LabelCode &code : item.codes) {
        if (!barsProblem(code.code))
            choices << LabelChoice{code.code, code.units,
                                   code.units == 1 ? code.code : u"%1, sells %2"_s.arg(code.code).arg(code.units)};
    }
    if (!barsProblem(item.id))
        choices << LabelChoice{item.id, 1, u"%1 (the ID)"_s.arg(item.id)};
    choices << none;
    return choices;
}

Label labelOf(const LabelRow &row, const QString &currency)
{
    const LabelChoice &choice = row.chosen();
    Label label;
    label.name = choice.units == 1 ? row.item.name : u"%1 x %2"_s.arg(choice.units).arg(row.item.name);
    // As the cart counts a line of so many.
    const QString amount = formatMoney(newLineCost(unitCost(row.item.cost), static_cast<std::int16_t>(choice.units)));
    label.price = currency.isEmpty() ? amount : currency + u'\u00a0' + amount;
    if (!choice.code.isEmpty()) {
        if (auto symbol = makeSymbol(choice.code))
            label.symbol = *std::move(symbol);
    }
    return label;
}

LabelList::Added LabelList::add(const QList<LabelItem> &items, int count)
{
    Added added;
    for (const LabelItem &item : items) {
        const int own = count > 0 ? count : unitsInStock(item);
        added.withoutStock += own == 0 ? 1 : 0;
        added.items += own == 0 ? 0 : 1;
        added.labels += own;
    }
    if (m_labels + added.labels > mostLabels)
        return {0, 0, 0, true};
    beginResetModel();
    for (const LabelItem &item : items)
        addOne(item, count > 0 ? count : unitsInStock(item));
    endResetModel();
    return added;
}

void LabelList::addOne(const LabelItem &item, int count)
{
    if (count == 0)
        return;
    const auto place = m_places.constFind(keyOf(item));
    if (place == m_places.cend()) {
        m_places.insert(keyOf(item), m_rows.size());
        m_rows << LabelRow{item, labelChoices(item), 0, count};
        m_labels += count;
        return;
    }
    int &there = m_rows[*place].count;
    const int sum = std::min(there + count, mostOfOne);
    m_labels += sum - there;
    there = sum;
}

void LabelList::setCount(int row, int count)
{
    int &there = m_rows[row].count;
    const auto room = static_cast<int>(std::min<qint64>(mostOfOne, mostLabels - m_labels + there));
    const int taken = std::clamp(count, 1, std::max(1, room));
    m_labels += taken - there;
    there = taken;
    Q_EMIT dataChanged(index(row, CountColumn), index(row, CountColumn));
}

void LabelList::setChoice(int row, qsizetype choice)
{
    LabelRow &there = m_rows[row];
    there.choice = std::clamp<qsizetype>(choice, 0, there.choices.size() - 1);
    Q_EMIT dataChanged(index(row, ItemColumn), index(row, ItemColumn));
}

void LabelList::remove(int row)
{
    beginRemoveRows({}, row, row);
    m_labels -= m_rows.at(row).count;
    m_rows.removeAt(row);
    m_places.clear();
    for (qsizetype place = 0; place < m_rows.size(); ++place)
        m_places.insert(keyOf(m_rows.at(place).item), place);
    endRemoveRows();
}

void LabelList::clear()
{
    beginResetModel();
    m_rows.clear();
    m_places.clear();
    m_labels = 0;
    endResetModel();
}

int LabelList::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int LabelList::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant LabelList::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return {};
    const LabelRow &row = m_rows.at(index.row());
    if (role == Qt::TextAlignmentRole)
        return alignmentOf(index.column());
    if (role == Qt::SizeHintRole)
        return QSize(0, rowHeight);
    if (role != Qt::DisplayRole)
        return {};
    if (index.column() == CountColumn)
        return formatCount(row.count);
    const LabelChoice &chosen = row.chosen();
    return shownCode(row.item.name) + u'\n' +
           shownCode(chosen.code.isEmpty() || chosen.units != 1 ? chosen.words : chosen.code);
}

QVariant LabelList::headerData(int section, Qt::Orientation orientation, int role) const
{
    static const QStringList headings = {u"Item and code"_s, u"Labels"_s};
    if (orientation != Qt::Horizontal)
        return {};
    if (role == Qt::TextAlignmentRole)
        return alignmentOf(section);
    if (role != Qt::DisplayRole)
        return {};
    return headings.value(section);
}

} // namespace harrowby::app
