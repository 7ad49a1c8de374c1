// SPDX-License-Identifier: MIT
#include "basic/dates.h"
#include "basic/item_key.h"
#include "basic/numbers.h"
#include "basic/stock_entry_rules.h"
#include "basic/stock_id.h"
#include "basic/values.h"
#include "store/recordset.h"
#include "store/statement_texts.h"
#include "ui/counter/host_link.h"
#include "ui/inventory.h"
#include "ui/stock/stock_fields.h"
#include "ui/stock_columns.h"
#include "ui/widgets/pick_list.h"
#include "ui/widgets/row_list.h"
#include "ui/widgets/text_table_model.h"

#include <QPushButton>

#include <functional>

using namespace Qt::StringLiterals;

namespace harrowby {

namespace {

/// Whether the row is certain to be written.
bool writeStock(DbRecordset &stock, const StockItem &item, const QString &user, const QString &time, bool isNew)
{
    stock.Field(u"StockID"_s).assign(item.id);
    stock.Field(u"StockCategory"_s).assign(item.category);
    stock.Field(u"StockName"_s).assign(item.name);
    stock.Field(u"StockCost"_s).assign(item.cost);
    stock.Field(u"StockReorderLevel"_s).assign(storedFigure(item.reorderLevel));
    stock.Field(u"StockAvailable"_s).assign(storedFigure(item.available));
    stock.Field(u"StockLastUpdated"_s).assign(time);
    // Intended: these columns get user names, not times, and a save counts as a reorder.
    if (isNew)
        stock.Field(u"StockAdded"_s).assign(user);
    stock.Field(u"StockLastModified"_s).assign(user);
    stock.Field(u"StockReorderUser"_s).assign(user);
    stock.Field(u"StockUse"_s).assign(item.use);
    return stock.Update() == DbRecordset::Outcome::Written;
}

/// An automatic ID, or none. The connection is asked for again after each breath, in which a handler may have replaced
/// it.
QString findFreeStockId(const QString &prefix, Breather &breather,
                        const std::function<std::shared_ptr<DbConnection>()> &connection)
{
    DbRecordset stock;
    // Intended: counts only IDs that end in "-*", usually none, so that numbers begin at 1 and the first gap is taken.
    stock.Open(statements::automaticIdCount(prefix), connection());
    std::int16_t number = 0;
    if (const std::optional<DbValue> count = stock.Field(u"Counts"_s).value())
        number = valueInt16(*count).value_or(number);
    return freeAutomaticId(prefix, number, [&](const QString &id) {
        stock.Open(statements::stockById(id), connection());
        breather.breathe();
        return stock.RecordCount() != 0;
    });
}

} // namespace

void Inventory::editSelectedStock()
{
    if (m_controls.LV->selectedRow() < 0)
        warn(u"No Stock Item Selected!"_s);
    else
        EditStock();
}

void Inventory::EditStock()
{
    // Intended: the list shows IDs in capitals; one that is stored otherwise is not found, and the fields stay.
    const QString id = m_controls.LV->rows().text(m_controls.LV->selectedRow(), StockColumn::Id);
    DbRecordset stock;
    stock.Open(statements::stockById(id), connection());
    const auto show = [&stock](PickList *field, const QString &column, auto &&asText) {
        if (const std::optional<DbValue> value = stock.Field(column).value())
            field->setEntryText(asText(*value));
    };
    show(m_controls.Combo6, u"StockID"_s, valueText);
    show(m_controls.Combo7, u"StockName"_s, [](const DbValue &name) { return valueText(name).toUpper(); });
    show(m_controls.Combo5, u"StockCategory"_s, valueText);
    show(m_controls.Combo8, u"StockCost"_s, [](const DbValue &cost) { return formatFixed(valueNumber(cost)); });
    show(m_controls.Combo13, u"StockReorderLevel"_s, valueText);
    show(m_controls.Combo14, u"StockAvailable"_s, valueText);
    show(m_controls.Combo15, u"StockUse"_s, valueText);
    m_breather.breathe();
    m_controls.Command26->setEnabled(true);
}

void Inventory::saveStock()
{
    const StockEntry entry = enteredStock(m_controls);
    if (const StockFault fault = findFault(entry); fault != StockFault::None) {
        warn(faultText(fault));
        leadToFault(m_controls, fault);
        return;
    }
    StockItem item = stockItem(entry);
    const bool automatic = m_controls.Combo6->entryText() == automaticIdText; // exactly: with a blank it is an ID
    if (automatic) {
        item.id = findFreeStockId(automaticIdPrefix(item.category), m_breather, [this] { return connection(); });
        if (item.id.isEmpty())
            return; // Intended: no message
    }
    storeStock(item, automatic);
}

void Inventory::storeStock(const StockItem &item, bool automaticId)
{
    const QString upperName = item.name.toUpper();
    DbRecordset stock;
    stock.Open(automaticId ? statements::sameStockName(upperName) : statements::sameStock(item.id, upperName),
               connection(), DbRecordset::Access::Edit);
    const int found = stock.RecordCount(); // Intended: 0 also when a quote made the statement fail
    if (found > 1) {
        warn(multipleEntriesText(item));
        return;
    }
    const bool isNew = found == 0;
    const QString oldId = stock.Field(u"StockID"_s).text();
    if (!isNew) {
        const QString listed = itemKey(oldId.toUpper(), stock.Field(u"StockName"_s).text().toUpper());
        if (ask(updateQuestion(listed, item), box::AskDefaultNo) != Answer::Yes)
            return;
    } else {
        stock.AddNew();
    }
    const QString time = stockTime(m_platform.clock->now());
    if (writeStock(stock, item, m_state.login.LoggedUser, time, isNew))
        HostLink::instance().note(event::StockSaved{isNew ? QString() : oldId, item.id});
    // Intended: listed and reported as done, also when the write failed.
    FindandUpdateStock({item.id, item.name, item.category, item.cost, plainText(item.reorderLevel),
                        plainText(item.available), item.use, time},
                       isNew ? QString() : item.id);
    LogActivity(u"Stock ["_s + item.name + u"] with ID ["_s + item.id + u"] has been "_s +
                    (isNew ? u"added"_s : u"updated"_s) + u" successfully."_s,
                box::Information, false, false);
    customSaleCategoryChosen();
}

} // namespace harrowby
