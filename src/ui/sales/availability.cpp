// SPDX-License-Identifier: MIT
#include "basic/cart_arithmetic.h"
#include "basic/item_key.h"
#include "basic/numbers.h"
#include "store/recordset.h"
#include "store/statement_texts.h"
#include "ui/cart_columns.h"
#include "ui/inventory.h"
#include "ui/sales/stock_figures.h"
#include "ui/widgets/row_list.h"
#include "ui/widgets/text_table_model.h"

using namespace Qt::StringLiterals;

namespace harrowby {

bool Inventory::StockAvailable(const QString &itemKey, std::int16_t qty)
{
    DbRecordset item;
    item.Open(statements::availableStock(GetIDName(itemKey, KeyPiece::Id), GetIDName(itemKey, KeyPiece::Name)),
              connection());
    if (item.RecordCount() < 1)
        return false; // Intended: no message for an item that is disabled, deleted, renamed or not in capitals
    const int line = FindCartLine(itemKey);
    const float available = availableUnits(item);
    if (available <= 0.0F) {
        ask(u"There is no available stock item(s) for "_s + itemKey + u". Kindly reorder Stock!"_s, box::Information);
        return false;
    }
    const QString only = u"There are only "_s + plainText(available) + u" item(s) in stock for "_s + itemKey;
    if (line < 0) {
        if (covers(available, qty))
            return true;
        ask(only + u". Kindly reorder Stock!"_s, box::Information);
        return false;
    }
    const double inCart = leadingNumber(m_controls.LV3->rows().text(line - 1, CartColumn::Qty));
    if (covers(available, qty + inCart))
        return true;
    ask(only + u" and have already of "_s + plainText(inCart) + u" this item(s) in cart."_s, box::Information);
    return false;
}

} // namespace harrowby
