// SPDX-License-Identifier: MIT
#include "tables/table_view.h"

#include "theme/measures.h"

#include <QComboBox>
#include <QHeaderView>
#include <QSignalBlocker>

#include <algorithm>
#include <numeric>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;

namespace harrowby::tables {

namespace {

constexpr int shortestSortText = 17;    // capital letters
constexpr int lettersOfStretching = 24; // that a column which takes the rest should have, at least
constexpr int headingExtra = 7;         // letters: the sort arrow, and the margins

QStringList headings(const Table &table)
{
    QStringList texts;
    for (const Column &column : table.columns)
        texts << column.heading;
    return texts;
}

/// Room for what such a column usually holds.
int lettersOf(Kind kind)
{
    if (kind == Kind::Count)
        return 10;
    return kind == Kind::Text ? 19 : 16;
}

QString orderWord(Kind kind, Qt::SortOrder order)
{
    const bool ascending = order == Qt::AscendingOrder;
    if (kind == Kind::Text)
        return ascending ? u"A to Z"_s : u"Z to A"_s;
    if (kind == Kind::Day)
        return ascending ? u"oldest first"_s : u"newest first"_s;
    return ascending ? u"smallest first"_s : u"largest first"_s;
}

} // namespace

TableView::TableView(QWidget *parent) : QTreeView(parent), m_model(new TableModel(this))
{
    setModel(m_model);
    setRootIsDecorated(false);
    setUniformRowHeights(true);
    setAlternatingRowColors(true);
    setSelectionBehavior(SelectRows);
    setSortingEnabled(true);
    setHorizontalScrollMode(ScrollPerPixel);
    header()->setMinimumHeight(touchHeight);
    header()->setStretchLastSection(false);
    header()->setSectionsMovable(false);
    connect(header(), &QHeaderView::sortIndicatorChanged, this, &TableView::followHeading);
}

void TableView::show(Table table, int column, Qt::SortOrder order)
{
    const bool sameColumns = headings(table) == headings(m_model->table());
    const QHeaderView &heading = *header();
    if (sameColumns && heading.sortIndicatorSection() < static_cast<int>(table.columns.size())) {
        column = heading.sortIndicatorSection();
        order = heading.sortIndicatorOrder();
    }
    m_model->setTable(std::move(table));
    if (!sameColumns)
        fillSortBox();
    setWidths();
    sortByColumn(column, order);
    followHeading(column, order);
}

void TableView::clear()
{
    Table empty = m_model->table();
    empty.rows.clear();
    empty.totals.clear();
    m_model->setTable(std::move(empty));
}

QComboBox *TableView::createSortBox(QWidget *parent)
{
    m_sortBox = new QComboBox(parent);
    m_sortBox->setAccessibleName(u"Sort"_s);
    m_sortBox->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_sortBox->setMinimumContentsLength(shortestSortText);
    connect(m_sortBox, &QComboBox::activated, this,
            [this](int entry) { sortByColumn(entry / 2, entry % 2 == 0 ? Qt::AscendingOrder : Qt::DescendingOrder); });
    fillSortBox();
    return m_sortBox;
}

void TableView::fillSortBox()
{
    if (m_sortBox == nullptr)
        return;
    const QSignalBlocker quiet(m_sortBox);
    m_sortBox->clear();
    for (const Column &column : m_model->table().columns) {
        for (const Qt::SortOrder order : {Qt::AscendingOrder, Qt::DescendingOrder})
            m_sortBox->addItem(u"%1, %2"_s.arg(column.heading, orderWord(column.kind, order)));
    }
}

void TableView::followHeading(int column, Qt::SortOrder order)
{
    if (m_sortBox != nullptr)
        m_sortBox->setCurrentIndex(2 * column + (order == Qt::AscendingOrder ? 0 : 1));
    scrollToTop();
}

void TableView::resizeEvent(QResizeEvent *event)
{
    QTreeView::resizeEvent(event);
    if (isNarrow() != m_isNarrow) // not at every resize, which would undo a dragged heading
        setWidths();
}

int TableView::usualWidth(const Column &column) const
{
    const int heading = static_cast<int>(column.heading.size()) + headingExtra;
    return std::max({heading, lettersOf(column.kind), column.letters}) * fontMetrics().averageCharWidth();
}

bool TableView::isNarrow() const
{
    const std::vector<Column> &columns = m_model->table().columns;
    const int letter = fontMetrics().averageCharWidth();
    const int taken = std::accumulate(columns.begin(), columns.end(), 0, [&](int sum, const Column &column) {
        return sum + (column.stretches ? std::max(lettersOfStretching, column.letters) * letter : usualWidth(column));
    });
    return taken > viewport()->width();
}

/// What heading and cells need, in a view that has no room for more. The hint has room for the arrow, shown or not.
int TableView::leastWidth(int column) const
{
    return std::max(header()->sectionSizeHint(column), sizeHintForColumn(column));
}

void TableView::setWidths()
{
    m_isNarrow = isNarrow();
    for (int i = 0; i < m_model->columnCount(); ++i) {
        const Column &column = m_model->table().columns.at(static_cast<std::size_t>(i));
        header()->setSectionResizeMode(i, column.stretches ? QHeaderView::Stretch : QHeaderView::Interactive);
        if (column.stretches)
            continue;
        const int usual = usualWidth(column);
        header()->resizeSection(i, m_isNarrow ? std::min(usual, leastWidth(i)) : usual);
    }
}

} // namespace harrowby::tables
