// SPDX-License-Identifier: MIT
#include "basic/item_key.h"
#include "basic/text.h"
#include "store/recordset.h"
#include "store/statement_texts.h"
#include "ui/inventory.h"
#include "ui/panels.h"
#include "ui/row_loop.h"
#include "ui/search_columns.h"
#include "ui/widgets/pick_list.h"
#include "ui/widgets/row_list.h"
#include "ui/widgets/tab_strip.h"
#include "ui/widgets/text_table_model.h"
#include "ui/work_areas.h"

#include <QFrame>

using namespace Qt::StringLiterals;

namespace harrowby {

void Inventory::searchStock()
{
    const QString text =
        askForText(u"Please Enter Search item name or ID?"_s, u"Searching for Stock Item"_s, QString());
    constexpr qsizetype shortest = 3;
    const qsizetype length = trimBlanks(text).size();
    if (length >= shortest)
        SearchLoad(text); // Intended: not trimmed, blanks are searched for too
    else if (length > 0)
        warn(u"Invalid Search Entry?"_s);
}

void Inventory::SearchLoad(const QString &text)
{
    DbRecordset found;
    found.Open(statements::searchStock(text.toUpper()), connection(), DbRecordset::Access::Walk);
    if (found.RecordCount() == 0) {
        warn(u"No Search Found for "_s + text + u"!"_s);
        return;
    }
    TextTableModel &results = m_controls.LV2->rows();
    results.clear();
    const LatestLoad::Turn fill = results.fill();
    const int tab = m_controls.TabStrip1->selectedTab();
    m_controls.placeSearchResult(tab == WorkArea::EditStock || tab == WorkArea::ReorderStock);
    bringForward(m_controls, *m_controls.Frame11);
    m_controls.Frame13->hide();
    m_controls.LV2->setFocus(); // the arrow keys choose a row there, Enter takes it
    NeededTexts texts(found, u"StockID"_s, u"StockName"_s, u"StockCategory"_s);
    forEachRow(found, [&] {
        if (texts.read())
            results.queueRow({QString::number(results.lastRow() + 2) + u'.', texts[0].toString(), texts[1].toString(),
                              texts[2].toString()});
        m_breather.breathe([&] {
            if (results.hasManyQueued())
                results.publishRows();
        });
        return fill.isLatest(); // else a later search fills the list
    });
    if (fill.isLatest() && found.HasFailed())
        results.clear();
    results.publishRows();
}

void Inventory::selectSearchResult()
{
    const TextTableModel &results = m_controls.LV2->rows();
    const int row = m_controls.LV2->selectedRow();
    if (row < 0)
        return;
    const QString category = results.text(row, ResultColumn::Category);
    const QString key = itemKey(results.text(row, ResultColumn::Id), results.text(row, ResultColumn::Name));
    // Intended: sets the texts only; the custom sale keeps the cost and stock figures that it shows. On other tabs
    // nothing happens.
    switch (m_controls.TabStrip1->selectedTab()) {
    case WorkArea::CustomSales:
        m_controls.Combo2->setEntryText(category);
        m_controls.Combo3->setEntryText(key);
        break;
    case WorkArea::ReorderStock:
        m_controls.Combo12->setEntryText(category);
        m_controls.Combo11->setEntryText(key);
        break;
    default:
        break;
    }
}

} // namespace harrowby
