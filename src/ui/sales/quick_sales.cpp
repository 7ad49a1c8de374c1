// SPDX-License-Identifier: MIT
#include "basic/item_key.h"
#include "basic/numbers.h"
#include "basic/quick_sale_page.h"
#include "basic/text.h"
#include "store/recordset.h"
#include "store/statement_texts.h"
#include "ui/inventory.h"
#include "ui/row_loop.h"
#include "ui/widgets/pick_list.h"
#include "ui/widgets/quick_sale_button.h"
#include "ui/widgets/tab_strip.h"
#include "ui/work_areas.h"

#include <QPushButton>
#include <QScopeGuard>

#include <limits>

using namespace Qt::StringLiterals;

namespace harrowby {

namespace {

constexpr auto emptyCaption = "(empty)"_L1;

void blank(QuickSaleButton &button)
{
    button.setText(emptyCaption);
    button.setToolTip(QString());
    button.setOutOfStock(false);
}

void fill(QuickSaleButton &button, DbRecordset &item)
{
    if (NeededTexts texts(item, u"StockID"_s, u"StockName"_s, u"Stockcost"_s); texts.read()) {
        const QString caption =
            texts[0].toString() + crLf + texts[1].toString() + crLf + formatMoney(item.Field(u"Stockcost"_s).number());
        button.setText(caption);
        button.setToolTip(QString(caption).replace(crLf, itemKeySeparator));
    }
    if (const std::optional<DbValue> available = item.Field(u"StockAvailable"_s).value())
        button.setOutOfStock(valueNumber(*available) <= 0.0);
}

/// The item that a button shows; its caption is the only place that says it.
QString keyOf(const QuickSaleButton &button)
{
    const QStringList caption = button.text().split(crLf);
    return itemKey(caption.value(0), caption.value(1));
}

/// Whether items follow the page that begins at row `offset` (0-based).
bool moreQuickSales(const std::shared_ptr<DbConnection> &connection, bool hideFinished, const QString &category,
                    int offset)
{
    DbRecordset items;
    items.Open(statements::quickSalesCount(hideFinished, category), connection, DbRecordset::Access::Count);
    return items.RecordCount() != offset + quickSaleButtons;
}

/// Keeps the focus in the paging: Qt would pass the focus of a disabled button to the first item, where the next press
/// of the space bar sells.
void leadToPaging(QPushButton &pressed, QPushButton &other)
{
    if (!pressed.isEnabled() && other.isEnabled())
        other.setFocus();
}

} // namespace

void Inventory::LoadQuickSales(bool movedForward)
{
    const bool hideFinished = m_state.settings.HideFinishedFlag != 0;
    const QString category = m_controls.Combo1->entryText();
    const int offset = m_state.QuickSalesOffset;
    DbRecordset page;
    page.Open(statements::quickSalesPage(hideFinished, category, offset), connection());
    const int rows = page.RecordCount();
    if (rows == 0) {
        // Intended: the buttons keep what they showed, and the offset is not corrected.
        m_controls.CmdNext->setEnabled(offset != 0 && !movedForward);
        m_controls.CmdPrev->setEnabled(offset != 0 && movedForward);
        return;
    }
    // Not earlier: an empty page must not cancel a load under way.
    const LatestLoad::Turn load = m_underWay.pageLoads.begin();
    std::size_t shown = 0;
    forEachRow(page, [&] {
        if (load.isLatest() && shown < m_controls.Command1.size())
            fill(*m_controls.Command1.at(shown++), page);
        m_breather.breathe();
    });
    if (!load.isLatest())
        return; // a later load has filled the buttons meanwhile
    for (; shown < m_controls.Command1.size(); ++shown)
        blank(*m_controls.Command1.at(shown));
    m_controls.CmdNext->setEnabled(rows >= quickSaleButtons &&
                                   moreQuickSales(connection(), hideFinished, category, offset));
    m_controls.CmdPrev->setEnabled(offset != 0);
}

void Inventory::nextQuickSales()
{
    const bool hadFocus = m_controls.CmdNext->hasFocus();
    if (m_state.QuickSalesOffset > std::numeric_limits<std::int16_t>::max() - quickSaleButtons)
        return; // Intended: a page number above 16 bits changes nothing
    m_controls.CmdPrev->setEnabled(true);
    m_state.QuickSalesOffset = static_cast<std::int16_t>(m_state.QuickSalesOffset + quickSaleButtons);
    LoadQuickSales(true);
    if (hadFocus)
        leadToPaging(*m_controls.CmdNext, *m_controls.CmdPrev);
}

void Inventory::previousQuickSales()
{
    const bool hadFocus = m_controls.CmdPrev->hasFocus();
    m_state.QuickSalesOffset = static_cast<std::int16_t>(m_state.QuickSalesOffset - quickSaleButtons);
    if (m_state.QuickSalesOffset < 1) {
        m_state.QuickSalesOffset = 0;
        m_controls.CmdPrev->setEnabled(false);
    }
    m_controls.CmdNext->setEnabled(false);
    LoadQuickSales(false);
    if (hadFocus)
        leadToPaging(*m_controls.CmdPrev, *m_controls.CmdNext);
}

void Inventory::quickSaleCategoryChanged()
{
    if (!m_state.login.IsLoggedIn) {
        if (m_controls.Combo1->entryText() != statements::allCategories) {
            m_controls.Combo1->setEntryText(statements::allCategories);
            RequireLogin();
        }
        return;
    }
    m_state.QuickSalesOffset = 0;
    LoadQuickSales(false);
}

void Inventory::sellQuickly(int button)
{
    QuickSaleButton &pressed = *m_controls.Command1.at(static_cast<std::size_t>(button));
    if (pressed.text() == emptyCaption) {
        ask(u"Item is empty!"_s + crLf + u"You can add a new Item from Add/Edit Stock"_s, box::Information);
        return;
    }
    sellItem(keyOf(pressed), 1);
}

bool Inventory::sellItem(const QString &key, std::int16_t units)
{
    m_controls.Command14->setEnabled(false);
    const auto enableAgain = qScopeGuard([this] { m_controls.Command14->setEnabled(true); });
    if (!StockAvailable(key, units))
        return false;
    for (QuickSaleButton *button : m_controls.Command1) {
        if (keyOf(*button) == key)
            button->setOutOfStock(false);
    }
    FindandUpdateCart(key, units, true);
    LogActivity(key + u" Added to Cart!"_s, box::Information, false, true);
    m_controls.TabStrip2->selectTab(SidePanel::Cart);
    return true;
}

} // namespace harrowby
