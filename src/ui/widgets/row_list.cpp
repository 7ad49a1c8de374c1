// SPDX-License-Identifier: MIT
#include "ui/widgets/row_list.h"

#include "ui/widgets/plain_tool_tip.h"
#include "ui/widgets/text_table_model.h"

#include <QHeaderView>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QPointer>
#include <QSignalBlocker>

#include <algorithm>
#include <numeric>
#include <utility>

namespace harrowby {

namespace {

constexpr int cellPadding = 14; ///< left and right of a text together

} // namespace

RowList::RowList(const QStringList &headers, QWidget *parent) :
    QTreeView(parent), m_rows(new TextTableModel(headers, this)), m_shares(static_cast<size_t>(headers.size()), 1)
{
    setModel(m_rows);
    setRootIsDecorated(false);
    setItemsExpandable(false);
    setUniformRowHeights(true);
    setAllColumnsShowFocus(true);
    setTabKeyNavigation(false);
    setEditTriggers(NoEditTriggers);
    setSelectionBehavior(SelectRows);
    setSelectionMode(SingleSelection);
    setTextElideMode(Qt::ElideRight);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    header()->setSectionsMovable(false);
    header()->setSectionsClickable(false);
    header()->setSectionResizeMode(QHeaderView::Fixed);
    header()->setStretchLastSection(false);
    header()->setMinimumSectionSize(1);
    connect(this, &QTreeView::doubleClicked, this, [this](const QModelIndex &index) { Q_EMIT rowOpened(index.row()); });
    connect(this, &QTreeView::clicked, this, [this](const QModelIndex &index) { Q_EMIT rowChosen(index.row()); });
}

int RowList::selectedRow() const
{
    const QModelIndexList selected = selectionModel()->selectedRows();
    return selected.isEmpty() ? -1 : selected.first().row();
}

void RowList::selectRow(int row)
{
    selectInPlace(row);
    if (const QModelIndex index = m_rows->index(row, 0); index.isValid())
        scrollTo(index);
}

void RowList::selectInPlace(int row)
{
    m_rows->publishRows();
    const QModelIndex index = m_rows->index(row, 0);
    if (!index.isValid()) {
        selectionModel()->clear();
        return;
    }
    // A hidden list would lay all its rows out only to learn where this one is.
    const QSignalBlocker quietly(isVisible() ? nullptr : selectionModel());
    const bool scrolls = hasAutoScroll();
    setAutoScroll(false);
    selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    setAutoScroll(scrolls);
}

void RowList::pressPart(int row)
{
    if (!isEnabled() || row < 0 || row >= m_rows->rowCount())
        return;
    selectRow(row);
    Q_EMIT rowChosen(row);
}

void RowList::setColumnShares(std::vector<int> shares)
{
    m_shares = std::move(shares);
    m_shares.resize(static_cast<size_t>(m_rows->columnCount()), 1);
    shareWidth();
}

void RowList::setColumnSamples(QStringList samples)
{
    m_samples = std::move(samples);
    shareWidth();
}

void RowList::setFigureColumns(std::set<int> columns)
{
    m_rows->setFigureColumns(std::move(columns));
}

QSize RowList::minimumSizeHint() const
{
    return {160, 120};
}

QSize RowList::sizeHint() const
{
    return {320, 200};
}

/// A list that fills grows many times below what is seen of it: that is not painted anew each time.
void RowList::doItemsLayout()
{
    if (std::exchange(m_change, Change::None) != Change::GrownOutOfSight)
        return QTreeView::doItemsLayout();
    const QSize size = viewport()->size();
    for (QWidget *seen : {viewport(), header()->viewport()})
        seen->setAttribute(Qt::WA_UpdatesDisabled);
    QTreeView::doItemsLayout();
    for (QWidget *seen : {viewport(), header()->viewport()})
        seen->setAttribute(Qt::WA_UpdatesDisabled, false);
    if (viewport()->size() != size) { // the scroll bar has come
        viewport()->update();
        header()->viewport()->update();
    }
}

void RowList::reset()
{
    m_change = Change::Other;
    QTreeView::reset();
}

void RowList::rowsInserted(const QModelIndex &parent, int start, int end)
{
    if (m_change == Change::None && end == m_rows->rowCount() - 1) {
        const int seen = start > 0 ? visualRect(m_rows->index(start - 1, 0)).bottom() : -1;
        m_change = seen >= viewport()->rect().bottom() ? Change::GrownOutOfSight : Change::Other;
    } else if (m_change != Change::GrownOutOfSight || end != m_rows->rowCount() - 1) {
        m_change = Change::Other;
    }
    QTreeView::rowsInserted(parent, start, end);
}

void RowList::rowsAboutToBeRemoved(const QModelIndex &parent, int start, int end)
{
    m_change = Change::Other;
    QTreeView::rowsAboutToBeRemoved(parent, start, end);
}

void RowList::changeEvent(QEvent *event)
{
    m_change = Change::Other;
    QTreeView::changeEvent(event);
}

void RowList::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        event->accept();
        const int row = selectedRow();
        if (row < 0 || event->isAutoRepeat()) // held since it answered a box, it would open the next one
            return;
        const QPointer<RowList> alive(this);
        Q_EMIT rowChosen(row);
        if (alive)
            Q_EMIT rowOpened(row);
        return;
    }
    QTreeView::keyPressEvent(event);
}

/// The base class lets Ctrl take the selection off a row; the press on it would then act on none.
QItemSelectionModel::SelectionFlags RowList::selectionCommand(const QModelIndex &index, const QEvent *) const
{
    return index.isValid() ? QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows
                           : QItemSelectionModel::SelectionFlags(QItemSelectionModel::NoUpdate);
}

void RowList::resizeEvent(QResizeEvent *event)
{
    QTreeView::resizeEvent(event);
    shareWidth();
}

void RowList::showEvent(QShowEvent *event)
{
    QTreeView::showEvent(event);
    setVerticalScrollMode(ScrollPerPixel); // not before, as it lays the list out
    shareWidth();
}

bool RowList::viewportEvent(QEvent *event)
{
    if (event->type() != QEvent::ToolTip)
        return QTreeView::viewportEvent(event);
    const auto *help = static_cast<QHelpEvent *>(event);
    showPlainToolTip(help->globalPos(), indexAt(help->pos()).data(Qt::ToolTipRole).toString(), viewport());
    return true;
}

/// What the header and the sample of a column need to be read whole.
int RowList::neededWidth(int column) const
{
    const QString caption = m_rows->headerData(column, Qt::Horizontal).toString();
    return std::max(header()->fontMetrics().horizontalAdvance(caption),
                    fontMetrics().horizontalAdvance(m_samples.value(column))) +
           cellPadding;
}

void RowList::shareWidth()
{
    const int columns = m_rows->columnCount();
    std::vector<int> widths(static_cast<size_t>(columns));
    for (int column = 0; column < columns; ++column)
        widths[static_cast<size_t>(column)] = neededWidth(column);
    int rest = viewport()->width() - std::accumulate(widths.begin(), widths.end(), 0);
    int shares = std::accumulate(m_shares.begin(), m_shares.end(), 0);
    for (size_t column = 0; column < widths.size(); ++column) {
        const int extra = shares > 0 ? rest * m_shares[column] / shares : 0;
        widths[column] += extra;
        rest -= extra;
        shares -= m_shares[column];
        header()->resizeSection(static_cast<int>(column), widths[column]);
    }
}

} // namespace harrowby
