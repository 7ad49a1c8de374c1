// SPDX-License-Identifier: MIT
#include "basic/item_key.h"
#include "basic/numbers.h"
#include "basic/reorder_level.h"
#include "basic/text.h"
#include "basic/values.h"
#include "store/recordset.h"
#include "store/statement_texts.h"
#include "ui/inventory.h"
#include "ui/row_loop.h"
#include "ui/stock_columns.h"
#include "ui/widgets/elided_label.h"
#include "ui/widgets/pick_list.h"
#include "ui/widgets/tab_strip.h"
#include "ui/work_areas.h"

#include <cmath>

using namespace Qt::StringLiterals;

namespace harrowby {

namespace {

void addToStock(DbRecordset &stock, double units)
{
    const double sum = stock.Field(u"StockAvailable"_s).number() + units;
    if (std::isfinite(sum)) // on overflow the stored figure stays
        stock.Field(u"StockAvailable"_s).assign(storedFigure(sum));
}

/// Opens the item's row to be changed; false when there is none. Nothing else writes to it until the change is made.
bool openHeld(DbRecordset &stock, const QString &key, const std::shared_ptr<DbConnection> &connection)
{
    const std::optional<QString> id = reorderedId(key);
    if (!id)
        return false;
    stock.OpenHeld(statements::stockById(*id), connection, DbRecordset::Access::Edit);
    return stock.RecordCount() > 0;
}

/// Intended: more than 32,767 units are added, too, and cannot be undone.
void rememberForUndo(LastActions &last, const QString &key, double units)
{
    const std::optional<std::int16_t> undoable = toInt16(units);
    last.LastReorderQty = undoable.value_or(0);
    last.LastReorderItem = undoable ? trimBlanks(key) : QString();
}

/// A label keeps its text when a column cannot be read.
void showField(QLabel &label, DbRecordset &stock, const QString &column)
{
    if (const std::optional<QString> text = fieldText(stock, column))
        label.setText(*text);
}

bool isLow(DbRecordset &stock)
{
    return needsReorder(stock.Field(u"StockReorderLevel"_s).value().value_or(DbValue()),
                        stock.Field(u"StockAvailable"_s).value().value_or(DbValue()));
}

void showLowLevel(const Controls &controls, bool low)
{
    controls.Label12->setLow(low);
    controls.Label13->setLow(low);
}

/// As the existing-stock list shows it.
ListedStock listedStock(DbRecordset &stock)
{
    return {stock.Field(u"StockID"_s).text(),           stock.Field(u"StockName"_s).text(),
            stock.Field(u"StockCategory"_s).text(),     stock.Field(u"StockCost"_s).text(),
            stock.Field(u"StockReorderLevel"_s).text(), stock.Field(u"StockAvailable"_s).text(),
            stock.Field(u"StockUse"_s).text(),          stock.Field(u"StockLastUpdated"_s).text()};
}

} // namespace

void Inventory::reorderCategoryChosen()
{
    // First: clearing the item's text runs its change handler, which would overwrite the figures set below.
    m_controls.Combo11->clearEntries();
    showLowLevel(m_controls, false);
    m_controls.Label13->setText(u"0"_s);
    m_controls.Label12->setText(u"0"_s);
    m_controls.Combo10->setEntryText(u"0"_s);
    LoadStockItem(*m_controls.Combo11, trimBlanks(m_controls.Combo12->entryText()));
}

void Inventory::showReorderItem()
{
    DbRecordset stock;
    stock.Open(statements::stockLevels(GetIDName(m_controls.Combo11->entryText(), KeyPiece::Id)), connection());
    if (stock.RecordCount() == 0) {
        m_controls.Label13->setText(u"0"_s);
        m_controls.Label12->setText(u"0"_s);
        m_controls.Label12->setLow(true); // Intended: this label only
        return;
    }
    if (leadingNumber(m_controls.Combo10->entryText()) < 1.0)
        m_controls.Combo10->setEntryText(u"1"_s);
    showField(*m_controls.Label12, stock, u"StockReorderLevel"_s);
    showField(*m_controls.Label13, stock, u"StockAvailable"_s);
    showLowLevel(m_controls, isLow(stock));
}

void Inventory::reorderStock()
{
    const double units = leadingNumber(m_controls.Combo10->entryText());
    if (!(units >= 1.0)) {
        warn(u"New Stock Number is invalid or less than 1!"_s);
        return;
    }
    if (ask(u"Add "_s + plainText(units) + u" New item(s) to Stock ["_s + m_controls.Combo11->entryText() + u"]?"_s,
            box::Ask) != Answer::Yes)
        return;
    DbRecordset stock;
    if (!openHeld(stock, m_controls.Combo11->entryText(), connection()))
        return;
    const QString key = m_controls.Combo11->entryText();
    rememberForUndo(m_state.last, key, units);
    // Intended: not rounded here but in the undo, so that 1.5 are added and 2 taken back.
    addToStock(stock, units);
    stock.Field(u"StockReorderUser"_s).assign(m_state.login.LoggedUser);
    stock.Update();
    showField(*m_controls.Label13, stock, u"StockAvailable"_s);
    LogActivity(plainText(units) + u" New item(s) to Stock ["_s + key + u"]. New Available Stock is "_s +
                    m_controls.Label13->text() + u'.',
                box::Information, false, true);
    m_controls.Combo10->setEntryText(u"0"_s);
    showLowLevel(m_controls, isLow(stock));
    FindandUpdateStock(listedStock(stock), QString());
    RefreshDashboard();
}

void Inventory::undoReorder()
{
    if (m_state.last.LastReorderItem.isEmpty() || m_state.last.LastReorderQty < 1) {
        warn(u"Nothing to Undo!"_s);
        return;
    }
    if (ask(u"Undo last added value of "_s + QString::number(m_state.last.LastReorderQty) + u" from Stock ["_s +
                m_state.last.LastReorderItem + u"]?"_s,
            box::Ask) != Answer::Yes)
        return;
    DbRecordset stock;
    if (!openHeld(stock, m_state.last.LastReorderItem, connection()))
        return;
    addToStock(stock, -m_state.last.LastReorderQty);
    stock.Update();
    showField(*m_controls.Label13, stock, u"StockAvailable"_s);
    // Intended: the line does not name the number of units, and the dashboard is not refreshed.
    LogActivity(u"Item(s) Removed from Stock ["_s + m_state.last.LastReorderItem + u"]. New Available Stock is "_s +
                    m_controls.Label13->text() + u'.',
                box::Information, false, true);
    showLowLevel(m_controls, isLow(stock));
    m_state.last.LastReorderItem.clear();
    FindandUpdateStock(listedStock(stock), QString());
}

} // namespace harrowby
