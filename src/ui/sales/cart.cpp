// SPDX-License-Identifier: MIT
#include "basic/cart_arithmetic.h"
#include "basic/item_key.h"
#include "basic/numbers.h"
#include "basic/text.h"
#include "store/recordset.h"
#include "store/statement_texts.h"
#include "ui/cart_columns.h"
#include "ui/inventory.h"
#include "ui/sales/cart_list.h"
#include "ui/sales/stock_figures.h"
#include "ui/widgets/row_list.h"
#include "ui/widgets/text_table_model.h"

using namespace Qt::StringLiterals;

namespace harrowby {

int Inventory::FindCartLine(const QString &itemKey) const
{
    const int row = m_controls.LV3->rows().findRow(itemKey);
    return row < 0 ? -1 : row + 1;
}

float Inventory::FindCost(const QString &itemKey)
{
    DbRecordset item;
    // Intended: disabled items too, so that what is in the cart keeps its price.
    item.Open(statements::stockById(costLookupId(itemKey)), connection());
    return item.RecordCount() > 0 ? unitCost(item) : 0.0F;
}

void Inventory::FindandUpdateCart(const QString &itemKey, std::int16_t qty, bool addToExisting)
{
    TextTableModel &cart = m_controls.LV3->rows();
    const int row = FindCartLine(itemKey) - 1;
    const float cost = FindCost(itemKey);
    if (row < 0) {
        appendCartLine(cart, itemKey, qty, cost);
        LogActivity(addedLine(QString::number(qty), itemKey), box::Information, false, true);
    } else {
        const bool merge =
            addToExisting || ask(u"Item Already Exist in Cart."_s + crLf + u"To Update - YES, To Replace - NO"_s,
                                 box::Ask) == Answer::Yes;
        if (merge)
            mergeIntoCartLine(cart, row, qty, cost);
        else
            replaceCartLine(cart, row, qty, cost);
        LogActivity(changedLine(cart.text(row, CartColumn::Qty), itemKey), box::Information, false, true);
    }
    // Intended: the last line is selected, also when an earlier one was updated.
    m_controls.LV3->selectRow(cart.rowCount() - 1);
    UpdateCart();
}

void Inventory::UpdateCart()
{
    const TextTableModel &cart = m_controls.LV3->rows();
    const int lines = cart.rowCount();
    CostTotal total;
    for (int row = 0; row < lines; ++row)
        total.add(cart.text(row, CartColumn::Cost));
    showCartTotal(m_controls, formatMoney(total.value()), lines);
}

void Inventory::deleteCartLine()
{
    RowList &list = *m_controls.LV3;
    const int row = list.selectedRow();
    const QString item = trimBlanks(list.rows().text(row, CartColumn::Item));
    if (item.isEmpty() || ask(u"Delete ["_s + item + u"] from Cart?"_s, box::Ask) != Answer::Yes)
        return;
    list.rows().removeRowAt(row);
    list.selectRow(qMin(row, list.rows().rowCount() - 1));
    UpdateCart();
    // Intended: names the line that is selected now, not the deleted one.
    const QString selected = trimBlanks(list.rows().text(list.selectedRow(), CartColumn::Item));
    LogActivity(u"Item ["_s + selected + u"] deleted!"_s, box::Information, false, true);
}

void Inventory::clearCart()
{
    if (m_controls.LV3->rows().rowCount() == 0) {
        warn(u"Cart is Empty!"_s);
        return;
    }
    if (ask(u"Clear Cart?"_s, box::Ask) != Answer::Yes)
        return;
    m_controls.LV3->rows().clear();
    UpdateCart();
}

void Inventory::changeLinePrice()
{
    TextTableModel &cart = m_controls.LV3->rows();
    const int row = m_controls.LV3->selectedRow();
    const QString item = cart.text(row, CartColumn::Item);
    const QString cost = trimBlanks(cart.text(row, CartColumn::Cost));
    if (row < 0 || trimBlanks(item).isEmpty() || cost.isEmpty())
        return;
    const QString answer =
        trimBlanks(askForText(u"Enter new price for item ["_s + trimBlanks(item) + u"]?"_s, m_state.MsgTitle, cost));
    if (answer.isEmpty())
        return;
    if (!isNumeric(answer)) {
        warn(u"Non-numeric Entry for Cost"_s);
        return;
    }
    const std::optional<double> price = wholeNumber(answer);
    if (!price)
        return; // numeric, but not a 32-bit float
    // The line's price, not the unit's. Intended: the total keeps the old sum until the cart changes.
    cart.setByHand(row, true); // first, as setText() tells of the change
    cart.setText(row, CartColumn::Cost, formatFixed(*price));
    LogActivity(u"Cost of Item "_s + item + u" changed to "_s + formatFixed(*price) + u"!"_s, box::Information, false,
                true);
}

} // namespace harrowby
