// SPDX-License-Identifier: MIT
#include "basic/item_key.h"
#include "basic/restored_purchase.h"
#include "basic/text.h"
#include "basic/values.h"
#include "store/recordset.h"
#include "store/statement_texts.h"
#include "ui/counter/host_link.h"
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

namespace {

void tellHost(const QString &id, bool isDeletion)
{
    if (isDeletion)
        HostLink::instance().note(event::PurchaseDeleted{id});
    else
        HostLink::instance().note(event::PurchaseUndone{id});
}

} // namespace

void Inventory::UndoPurchase(const QString &purchaseId, bool mergeIntoCart, bool isDeletion)
{
    const QString id = trimBlanks(purchaseId);
    DbRecordset purchase;
    purchase.Open(statements::purchase(id), connection());
    if (purchase.RecordCount() < 1) {
        warn(u"Nothing to Undo!"_s);
        return;
    }
    // Intended: the stored number of lines bounds the loop, not the number of elements; missing elements are skipped,
    // surplus ones ignored.
    std::int16_t count = 0;
    if (const std::optional<DbValue> stored = purchase.Field(u"PurchasedItemsTotal"_s).value())
        count = valueInt16(*stored).value_or(count);
    const QStringList elements = splitPurchase(purchase.Field(u"PurchasedItems"_s).text());
    m_controls.LV3->rows().clear(); // Intended: the cart's lines go without a change of stock
    for (qsizetype i = 0; i < count; ++i) {
        if (const std::optional<RestoredLine> line = restoredLine(elements.value(i))) {
            // Intended: by the ID alone; the item may have been renamed. Where it is gone, no row changes, its line
            // comes into the cart at 0.00 (FindCost()), and the purchase goes all the same.
            Execute(connection(), statements::raiseStock(line->quantity, line->stockId));
            FindandUpdateCart(itemKey(line->stockId, line->stockName), line->quantity, mergeIntoCart);
        }
        m_breather.breathe();
    }
    if (Execute(connection(), statements::deletePurchase(id)))
        tellHost(id, isDeletion);
    RefreshDashboard();
    m_state.last.LastPurchaseID.clear(); // Intended: whichever purchase was deleted
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
    m_state.last.ReceiptText.clear(); // a purchase that was taken back cannot be reprinted
    LogActivity(u"Last Purchased Undone!"_s, box::Information, false, true);
    // Intended: on the reorder tab alone, though the list stands on that of the settings, where it is read anew
    // whenever the tab is opened.
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
    // Intended: "br" and "(Y/N)" belong to the text.
    if (ask(u"Delete Purchased Cart with ID ["_s + id + u"]."_s + crLf +
                u"All purchased items will br restored (Y/N)?"_s,
            box::Ask) != Answer::Yes)
        return;
    const OneAtATime::Turn undoing = m_underWay.purchaseUndo.begin();
    UndoPurchase(id, true, true);
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
        return fill.isLatest(); // else a later load fills the list
    });
    if (fill.isLatest())
        purchases.HasFailed() ? list.dropEntries() : list.takeEntries(ids);
}

} // namespace harrowby
