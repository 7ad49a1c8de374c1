// SPDX-License-Identifier: MIT
#include "basic/cart_arithmetic.h"
#include "basic/dates.h"
#include "basic/item_key.h"
#include "basic/numbers.h"
#include "basic/purchase_text.h"
#include "basic/values.h"
#include "receipt/receipt_text.h"
#include "store/recordset.h"
#include "store/statements.h"
#include "ui/focus_order.h"
#include "ui/inventory.h"
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

} // namespace

void Inventory::purchaseCart()
{
    if (m_controls.LV3->rows().rowCount() > 0) {
        CheckoutCart(false);
    } else if (m_state.last.ReceiptText.isEmpty()) {
        warn(u"Cart is Empty!"_s);
    } else if (ask(u"Reprint Last Purchase?"_s, box::Ask) == Answer::Yes) {
        reprintReceipt();
    }
}

void Inventory::CheckoutCart(bool skipConfirm)
{
    const std::vector<PurchaseLine> lines = cartLines();
    CostTotal total;
    for (const PurchaseLine &line : lines)
        total.add(line.amount);
    if (!skipConfirm && ask(checkoutQuestion(lines), box::Ask) != Answer::Yes)
        return;
    SaveCart();
    resetSalePanels();
    if (!skipConfirm)
        LogActivity(checkoutLogLine(static_cast<int>(lines.size()), total.value()), box::Information, false, true);
    leadToNextSale(m_controls);
}

void Inventory::resetSalePanels()
{
    UpdateCart();
    // On this tab alone, on purpose: the list stands on the settings page, which reads it when it is opened.
    if (m_controls.TabStrip1->selectedTab() == WorkArea::ReorderStock)
        LoadPurchaseIDs();
    resetCustomSale();
    m_controls.StatusBar1_2->setText(QString());
}

void Inventory::SaveCart()
{
    // Nothing here is rolled back: what fails is skipped, and the rest goes on.
    const bool receipt = m_controls.Check5->isChecked();
    PRINTS(QString(), true);
    if (receipt)
        printReceiptHeader();
    const std::vector<PurchaseLine> lines = cartLines();
    const float lineCount = static_cast<float>(lines.size());
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
        printReceiptTotals(lineCount, total.value());
    const QString items = purchasedItems(lines);
    const QString firstId = purchaseId(m_platform.clock->now());
    showCartTotal(u"0.00"_s, 0);
    m_controls.LV3->rows().clear(); // before the row is written: its values are at hand
    const QString id = savePurchase(firstId, items, lineCount, total.value());
    m_state.last.LastPurchaseID = id;
    if (receipt)
        printReceiptFooter(id);
    if (m_state.settings.ShowDetailsFlag != 0)
        ask(purchaseSummary(id, items, lineCount, total.value(), m_platform.clock->now()), box::Information);
    RefreshDashboard();
}

QString Inventory::savePurchase(const QString &firstId, const QString &items, float lineCount, float total)
{
    DbRecordset purchase;
    // Held up to the row that is added: of two tills in one second one finds the other's ID.
    purchase.OpenHeld(statements::purchase(firstId), connection(), DbRecordset::Access::Read);
    // The second ID is taken as it is, without a further look.
    const QString id = purchase.RecordCount() > 0 ? secondPurchaseId(m_platform.clock->now()) : firstId;
    purchase.AddNew();
    purchase.Field(u"PurchaseID"_s).assign(id);
    purchase.Field(u"PurchasedItems"_s).assign(items);
    purchase.Field(u"PurchasedItemsTotal"_s).assign(storedFigure(lineCount));
    purchase.Field(u"PurchasedItemsCost"_s).assign(storedFigure(total));
    purchase.Field(u"PurchasedDate"_s).assign(purchasedDate(m_platform.clock->now()));
    purchase.Field(u"Users"_s).assign(m_state.login.LoggedUser);
    purchase.Update();
    return id;
}

} // namespace harrowby
