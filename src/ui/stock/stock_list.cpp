// SPDX-License-Identifier: MIT
#include "basic/item_key.h"
#include "basic/text.h"
#include "store/recordset.h"
#include "store/statement_texts.h"
#include "ui/counter/host_link.h"
#include "ui/inventory.h"
#include "ui/row_loop.h"
#include "ui/stock/stock_row_maker.h"
#include "ui/stock/stock_row_reader.h"
#include "ui/stock_columns.h"
#include "ui/widgets/packed_texts.h"
#include "ui/widgets/pick_list.h"
#include "ui/widgets/row_list.h"
#include "ui/widgets/tab_strip.h"
#include "ui/widgets/text_table_model.h"
#include "ui/work_areas.h"

#include <QPersistentModelIndex>

#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby {

namespace {

PackedRow rowOf(const ListedStock &stock, qsizetype columns)
{
    StockRowMaker maker(columns);
    maker.begin(stock.id);
    return maker.finish(
        {stock.name, stock.category, stock.cost, stock.reorderLevel, stock.available, stock.use, stock.lastUpdated});
}

/// Puts an item's row into the list, in place of the one at `listed` unless that is negative. The ID stays as it stands
/// there, unless the item was edited.
int placeRow(TextTableModel &list, PackedRow row, int listed, bool wasEdited)
{
    if (listed < 0) {
        list.queueRow(std::move(row));
        return list.lastRow();
    }
    QStringList texts = row.texts();
    if (!wasEdited)
        texts[StockColumn::Id] = list.text(listed, StockColumn::Id);
    list.setRow(listed, texts);
    return listed;
}

/// Places the row that the reader has begun.
int placeRow(TextTableModel &list, StockRowReader &reader)
{
    list.expectRow(reader.id());
    PackedRow row = reader.readRow();
    // Looked for by the ID as it is listed: a letter may turn into two in upper case.
    const int listed = list.findRow(row.view(StockColumn::Id));
    const int placed = placeRow(list, std::move(row), listed, false);
    // Intended: the last row is coloured, also when an earlier one was updated. A list that is filled afresh has every
    // mark right, as each row is the last one when it comes.
    list.setLow(list.lastRow(), reader.isLow());
    return placed;
}

} // namespace

void Inventory::LoadStock(bool keepRows)
{
    PickList &names = *m_controls.Combo7;
    TextTableModel &list = m_controls.LV->rows();
    const QString typedName = names.entryText();
    if (!keepRows) {
        list.clear();
        names.clearEntries();
    }
    const LatestLoad::Turn fill = list.fill();
    DbRecordset stock;
    // A SELECT that fails halfway must leave no rows: a list that is being filled is cleared, and one that keeps its
    // rows is updated only after all rows have been read.
    stock.Open(statements::allStock(), connection(), keepRows ? DbRecordset::Access::Read : DbRecordset::Access::Walk);
    StockRowReader reader(stock, list.columnCount());
    PackedTexts newNames;
    int placed = -1;
    const auto showRows = [&] {
        m_controls.LV->selectInPlace(placed);
        names.takeEntries(newNames);
    };
    forEachRow(stock, [&] {
        if (reader.readId())
            placed = placeRow(list, reader);
        if (reader.hasName())
            newNames.append(reader.name());
        m_breather.breathe([&] {
            if (list.hasManyQueued())
                showRows();
        });
        return fill.isLatest(); // else a later refresh fills the list
    });
    if (fill.isLatest() && stock.HasFailed() && !keepRows) {
        list.clear();
        names.dropEntries();
    } else if (fill.isLatest() && (placed >= 0 || !newNames.isEmpty())) {
        showRows();
    }
    if (names.entryText().isEmpty()) // else a user has typed something meanwhile
        names.setEntryText(typedName);
}

int Inventory::FindStockRow(const QString &id) const
{
    return m_controls.LV->rows().findRow(id);
}

void Inventory::FindandUpdateStock(const ListedStock &stock, const QString &editedId)
{
    TextTableModel &list = m_controls.LV->rows();
    PackedRow row = rowOf(stock, list.columnCount());
    const int listed = FindStockRow(row.text(StockColumn::Id)); // by the ID as it is listed, as above
    // Intended: the red mark stays as it was until the list is filled afresh; only LoadStock() sets it.
    m_controls.LV->selectRow(placeRow(list, std::move(row), listed, !editedId.isEmpty()));
}

void Inventory::refreshStock()
{
    LoadStock(false);
    LogActivity(u"Stock List Refreshed."_s, box::Information, false, true);
}

void Inventory::chooseStockRow()
{
    const TextTableModel &list = m_controls.LV->rows();
    if (m_controls.TabStrip1->selectedTab() != WorkArea::ReorderStock) {
        editSelectedStock();
        return;
    }
    const int row = m_controls.LV->selectedRow();
    m_controls.Combo12->setEntryText(u"(All Category)"_s); // Intended: not the spelling of the lists' entry
    m_controls.Combo11->setEntryText(itemKey(list.text(row, StockColumn::Id), list.text(row, StockColumn::Name)));
}

void Inventory::deleteStock()
{
    TextTableModel &list = m_controls.LV->rows();
    const int row = m_controls.LV->selectedRow();
    if (row < 0)
        return;
    const QString id = list.text(row, StockColumn::Id);
    const QString name = list.text(row, StockColumn::Name);
    const QPersistentModelIndex entry = list.index(row, 0); // the list may change while the box is open
    if (ask(u"Delete Stock ["_s + name + u"] with "_s + id + u"?"_s, box::AskDefaultNo) != Answer::Yes)
        return;
    // Intended: reported and removed from the list, also when the statement failed.
    if (Execute(connection(), statements::deleteStock(trimBlanks(id))))
        HostLink::instance().note(event::StockDeleted{trimBlanks(id)});
    LogActivity(u"Stock ["_s + name + u"] with "_s + id + u" has been deleted!"_s, box::Information, false, false);
    if (entry.isValid())
        list.removeRowAt(entry.row());
    m_controls.LV->selectRow(-1); // unselect the row that took its place
}

} // namespace harrowby
