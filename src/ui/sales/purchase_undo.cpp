// SPDX-License-Identifier: MIT
#include "basic/item_key.h"
#include "basic/restored_purchase.h"
#include "basic/text.h"
#include "basic/values.h"
#include "store/recordset.h"
#include "store/statement_texts.h"
#include "ui/inventory.h"
#include "ui/row_loop.h"
#include "ui/widgets/packed_texts.h"
#include "ui/widgets/pick_list.h"
#include "ui/widgets/row_list.h"
#include "ui/widgets/tab_strip.h"
#include "ui/widgets/text_table_model.h"
#include "ui/work_areas.h"

using namespace Qt::StringLiterals;

namespace harrowby {

void Inventory::UndoPurchase(const QString &purchaseId, bool mergeIntoCart)
{
    const QString id = trimBlanks(purchaseId);
    DbRecordset purchase;
    purchase.Open(statements::purchase(id), connection());
    if (purchase.RecordCount() < 1) {
        warn(u"Nothing to Undo!"_s);
        return;
    }
    // The stored number of lines bounds the loop, not the elements, on purpose: what is missing is skipped, what is
    // more is left.
    std::int16_t count = 0;
    if (const std::optional<DbValue> stored = purchase.Field(u"PurchasedItemsTotal"_s).value())
        count = valueInt16(*stored).value_or(count);
    const QStringList elements = splitPurchase(purchase.Field(u"PurchasedItems"_s).text());
    m_controls.LV3->rows().clear(); // nothing is given back for what the cart held
    for (qsizetype i = 0; i < count; ++i) {
        if (const std::optional<RestoredLine> line = restoredLine(elements.value(i))) {
            // By the ID alone, whatever the item is called by now.
            Execute(connection(), statements::raiseStock(line->quantity, line->stockId));
            FindandUpdateCart(itemKey(line->stockId, line->stockName), line->quantity, mergeIntoCart);
        }
        m_breather.breathe();
    }
    Execute(connection(), statements::deletePurchase(id));
    RefreshDashboard();
    m_state.last.LastPurchaseID.clear(); // whichever purchase it was
}

void Inventory::undoLastPurchase()
{
    if (m_state.last.LastPurchaseID.isEmpty()) {
        warn(u"Nothing to Undo!"_s);
        return;
    }
    if (ask(u"Undo last Purchased Cart with ID ["_s + m_state.last.LastPurchaseID + u"]?"_s, box::Ask) != Answer::Yes)
        return;
    const OneAtATime::Turn undoing = m_underWay.purchaseUndo.begin();
    UndoPurchase(m_state.last.LastPurchaseID, true);
    m_state.last.ReceiptText.clear(); // what was taken back is not to be printed again
    LogActivity(u"Last Purchased Undone!"_s, box::Information, false, true);
    // On this tab alone, on purpose: the list stands on the settings page, which reads it when it is opened.
    if (m_controls.TabStrip1->selectedTab() == WorkArea::ReorderStock)
        LoadPurchaseIDs();
}

void Inventory::deletePurchase()
{
    const QString id = trimBlanks(m_controls.Combo17->entryText());
    if (id.isEmpty()) {
        warn(u"Nothing to Delete!"_s);
        return;
    }
    // "br" and "(Y/N)" are the text's own.
    if (ask(u"Delete Purchased Cart with ID ["_s + id + u"]."_s + crLf +
                u"All purchased items will br restored (Y/N)?"_s,
            box::Ask) != Answer::Yes)
        return;
    const OneAtATime::Turn undoing = m_underWay.purchaseUndo.begin();
    UndoPurchase(id, true);
    m_controls.Combo17->removeEntry(m_controls.Combo17->selectedEntry());
}

void Inventory::LoadPurchaseIDs()
{
    PickList &list = *m_controls.Combo17;
    DbRecordset purchases;
    purchases.Open(statements::purchaseIds(), connection(), DbRecordset::Access::Walk);
    list.clearEntries();
    const LatestLoad::Turn fill = list.fill();
    NeededTexts texts(purchases, u"PurchaseID"_s);
    PackedTexts ids;
    forEachRow(purchases, [&] {
        if (texts.read())
            ids.append(texts[0]);
        m_breather.breathe([&] { list.takeEntries(ids); });
        return fill.isLatest(); // else the list was filled afresh meanwhile
    });
    if (fill.isLatest())
        purchases.HasFailed() ? list.dropEntries() : list.takeEntries(ids);
}

} // namespace harrowby
