// SPDX-License-Identifier: MIT
#include "basic/cart_arithmetic.h"
#include "basic/dates.h"
#include "basic/item_key.h"
#include "basic/numbers.h"
#include "basic/purchase_id.h"
#include "basic/purchase_text.h"
#include "basic/values.h"
#include "receipt/receipt_text.h"
#include "store/recordset.h"
#include "store/statement_texts.h"
#include "ui/counter/counter_lines.h"
#include "ui/counter/host_link.h"
#include "ui/focus_order.h"
#include "ui/inventory.h"
#include "ui/sales/cart_list.h"
#include "ui/sales/custom_sale.h"
#include "ui/sales/receipt_writer.h"
#include "ui/widgets/pick_list.h"
#include "ui/widgets/quick_sale_button.h"
#include "ui/widgets/row_list.h"
#include "ui/widgets/tab_strip.h"
#include "ui/widgets/text_table_model.h"
#include "ui/work_areas.h"

#include <QCheckBox>
#include <QLabel>

using namespace Qt::StringLiterals;

namespace harrowby {

namespace {

/// Where nothing is sold, the focus stays.
void leadToNextSale(const Controls &controls)
{
    switch (controls.TabStrip1->selectedTab()) {
    case WorkArea::QuickSales:
        return leadTo(*controls.Command1.front());
    case WorkArea::CustomSales:
        return leadTo(*controls.Combo2);
    default:
        return;
    }
}

/// What is stored of a purchase besides its ID and its time.
struct Sale
{
    QString items;
    float lineCount = 0;
    float total = 0;
    QString user;
};

/// What has become of it.
struct SavedSale
{
    QString id;
    DbRecordset::Outcome outcome;
};

CounterPurchase::Row rowOf(DbRecordset::Outcome outcome)
{
    switch (outcome) {
    case DbRecordset::Outcome::Written:
        return CounterPurchase::Row::Written;
    case DbRecordset::Outcome::NotWritten:
        return CounterPurchase::Row::NotWritten;
    default:
        return CounterPurchase::Row::NotKnown;
    }
}

void tellHost(const SavedSale &saved, const Sale &sale, std::vector<CounterLine> lines)
{
    HostLink::instance().note(
        event::Purchased{{saved.id, sale.items, sale.user, sale.total, std::move(lines), rowOf(saved.outcome)}});
}

/// Adds the purchase under `firstId`, or under the second ID when the first is taken, and says which it was.
SavedSale savePurchase(const std::shared_ptr<DbConnection> &connection, const Clock &clock, const QString &firstId,
                       const Sale &sale)
{
    DbRecordset purchase;
    // The write lock is kept from this check to the insert: of two tills in one second, one sees the other's ID.
    purchase.OpenHeld(statements::purchase(firstId), connection, DbRecordset::Access::Read);
    const QString id = purchaseIdToSave(firstId, purchase.RecordCount() > 0, [&clock] { return clock.now(); });
    purchase.AddNew();
    purchase.Field(u"PurchaseID"_s).assign(id);
    purchase.Field(u"PurchasedItems"_s).assign(sale.items);
    purchase.Field(u"PurchasedItemsTotal"_s).assign(storedFigure(sale.lineCount));
    purchase.Field(u"PurchasedItemsCost"_s).assign(storedFigure(sale.total));
    purchase.Field(u"PurchasedDate"_s).assign(purchasedDate(clock.now()));
    purchase.Field(u"Users"_s).assign(sale.user);
    return {id, purchase.Update()};
}

} // namespace

void Inventory::purchaseCart()
{
    if (m_controls.LV3->rows().rowCount() > 0) {
        CheckoutCart(false);
    } else if (m_state.last.ReceiptText.isEmpty()) {
        warn(u"Cart is Empty!"_s);
    } else if (ask(u"Reprint Last Purchase?"_s, box::Ask) == Answer::Yes) {
        reprintReceipt(*m_platform.printers->current(), m_state.last.ReceiptText);
    }
}

bool Inventory::CheckoutCart(bool skipConfirm)
{
    const std::vector<PurchaseLine> lines = cartLines(m_controls.LV3->rows());
    CostTotal total;
    for (const PurchaseLine &line : lines)
        total.add(line.amount);
    if (!skipConfirm && ask(checkoutQuestion(lines), box::Ask) != Answer::Yes)
        return false;
    SaveCart();
    UpdateCart();
    // Intended: on the reorder tab alone, though the list stands on that of the settings, where it is read anew
    // whenever the tab is opened.
    if (m_controls.TabStrip1->selectedTab() == WorkArea::ReorderStock)
        LoadPurchaseIDs();
    resetCustomSale(m_controls);
    m_controls.StatusBar1_2->setText(QString());
    if (!skipConfirm)
        LogActivity(checkoutLogLine(static_cast<int>(lines.size()), total.value()), box::Information, false, true);
    leadToNextSale(m_controls);
    return true;
}

void Inventory::SaveCart()
{
    // Intended: nothing that has run is rolled back; a statement that fails is skipped, and the next ones run.
    const bool receipt = m_controls.Check5->isChecked();
    const ReceiptWriter writer(*m_platform.printers, *m_platform.settings,
                               [this](const QString &text) { PRINTS(text, false); });
    PRINTS(QString(), true);
    if (receipt)
        writer.printHeader(m_state.MsgTitle);
    const std::vector<PurchaseLine> lines = cartLines(m_controls.LV3->rows());
    const auto lineCount = static_cast<float>(lines.size());
    CostTotal total;
    for (const PurchaseLine &line : lines) {
        total.add(line.amount);
        Execute(connection(),
                statements::lowerStock(leadingNumberWithoutCommas(line.quantity), GetIDName(line.key, KeyPiece::Id),
                                       GetIDName(line.key, KeyPiece::Name)));
        if (receipt)
            PRINTS(purchaseElement(line), false);
    }
    if (receipt)
        writer.printTotals(lineCount, total.value());
    const Sale sale{purchasedItems(lines), lineCount, total.value(), m_state.login.LoggedUser};
    const QString firstId = purchaseId(m_platform.clock->now());
    std::vector<CounterLine> sold = counterLines(m_controls.LV3->rows());
    showCartTotal(m_controls, u"0.00"_s, 0);
    m_controls.LV3->rows().clear(); // before the insert, whose values have been computed
    const SavedSale saved = savePurchase(connection(), *m_platform.clock, firstId, sale);
    tellHost(saved, sale, std::move(sold));
    m_state.last.LastPurchaseID = saved.id;
    if (receipt)
        writer.printFooter(saved.id, m_platform.clock->now());
    if (m_state.settings.ShowDetailsFlag != 0)
        ask(purchaseSummary(saved.id, sale.items, lineCount, sale.total, m_platform.clock->now()), box::Information);
    RefreshDashboard();
}

} // namespace harrowby
