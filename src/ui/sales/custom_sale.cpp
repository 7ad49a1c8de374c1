// SPDX-License-Identifier: MIT
#include "ui/sales/custom_sale.h"
#include "basic/item_key.h"
#include "basic/numbers.h"
#include "basic/text.h"
#include "store/recordset.h"
#include "store/statement_texts.h"
#include "ui/focus_order.h"
#include "ui/inventory.h"
#include "ui/row_loop.h"
#include "ui/widgets/packed_texts.h"
#include "ui/widgets/pick_list.h"
#include "ui/widgets/tab_strip.h"
#include "ui/work_areas.h"

#include <QLabel>

#include <cmath>

using namespace Qt::StringLiterals;

namespace harrowby {

namespace {

/// The quantity as the total counts it: the number that the text starts with.
double quantityShown(const QString &typed)
{
    return wholeNumber(typed).value_or(leadingNumberWithoutCommas(typed));
}

/// The quantity as the cart takes it: a number with a fraction is rounded, halves to the even neighbour. Empty when it
/// is not numeric, below 1 before it is rounded, or above 32,767 after.
std::optional<std::int16_t> quantityToSell(const QString &typed)
{
    const std::optional<double> number = wholeNumber(typed);
    return number && *number >= 1.0 ? toInt16(*number) : std::nullopt;
}

void showItemTotal(const Controls &controls, double unitCost)
{
    const double total = unitCost * quantityShown(controls.Combo4->entryText());
    if (std::isfinite(total)) // on overflow the old total stays
        controls.Label9->setText(formatMoney(total));
}

} // namespace

void resetCustomSale(const Controls &controls)
{
    controls.Label7->setText(u"0.00"_s);
    controls.Label9->setText(u"0.00"_s);
    controls.Label14->setText(QString());
    controls.Label15->setText(u"Nil"_s);
}

void showCustomSaleTotal(const Controls &controls)
{
    // Intended: the unit cost is read up to its first comma, so 1,250.00 counts as 1 here. The cart has the right one.
    showItemTotal(controls, leadingNumber(controls.Label7->text()));
}

void Inventory::LoadStockItem(PickList &list, const QString &category)
{
    list.clearEntries();
    const LatestLoad::Turn fill = list.fill();
    // Intended: the reorder panel lists finished items too, whatever the setting.
    const bool isSale = list.objectName().compare("Combo3"_L1, Qt::CaseInsensitive) == 0;
    DbRecordset items;
    items.Open(statements::stockItems(isSale && m_state.settings.HideFinishedFlag != 0, category), connection(),
               DbRecordset::Access::Walk);
    NeededTexts texts(items, u"StockID"_s, u"StockName"_s);
    PackedTexts keys;
    QByteArray key;
    forEachRow(items, [&] {
        if (texts.read()) {
            putItemKey(key, texts[0], texts[1]);
            keys.append(QUtf8StringView(key));
        }
        m_breather.breathe([&] { list.takeEntries(keys); });
        return fill.isLatest(); // else a later load fills the list
    });
    if (fill.isLatest())
        items.HasFailed() ? list.dropEntries() : list.takeEntries(keys);
}

void Inventory::customSaleCategoryChosen()
{
    LoadStockItem(*m_controls.Combo3, trimBlanks(m_controls.Combo2->entryText()));
}

void Inventory::customSaleItemChosen()
{
    const QString key = m_controls.Combo3->entryText();
    m_controls.Label14->setText(key);
    DbRecordset item;
    item.Open(statements::stockById(GetIDName(key, KeyPiece::Id)), connection());
    if (item.RecordCount() == 0) {
        m_controls.Label7->setText(u"0.00"_s);
        m_controls.Label9->setText(u"0.00"_s);
        m_controls.Label15->setText(u"Nil"_s);
        return;
    }
    if (quantityShown(m_controls.Combo4->entryText()) < 1.0)
        m_controls.Combo4->setEntryText(u"1"_s);
    if (const std::optional<DbValue> cost = item.Field(u"StockCost"_s).value()) {
        m_controls.Label7->setText(formatMoney(valueNumber(*cost)));
        showItemTotal(m_controls, valueNumber(*cost));
    }
    if (const std::optional<QString> available = fieldText(item, u"StockAvailable"_s))
        m_controls.Label15->setText(*available);
}

void Inventory::addCustomItem()
{
    const QString key = m_controls.Combo3->entryText();
    if (trimBlanks(key).isEmpty()) {
        warn(u"You have selected an item!"_s); // Intended: this text, though none is selected
        leadTo(*m_controls.Combo3);
        return;
    }
    const std::optional<std::int16_t> quantity = quantityToSell(m_controls.Combo4->entryText());
    if (!quantity) {
        warn(u"You have entered an invalid quantity. Quantity must be greater than 0!"_s);
        leadTo(*m_controls.Combo4);
        return;
    }
    if (!StockAvailable(key, *quantity))
        return;
    FindandUpdateCart(key, *quantity, false);
    m_controls.TabStrip2->selectTab(SidePanel::Cart);
    customSaleCategoryChosen(); // unselects the item
    m_controls.Combo4->setEntryText(QString());
    resetCustomSale(m_controls);
}

} // namespace harrowby
