// SPDX-License-Identifier: MIT
#include "ui/counter/sellable_item.h"

#include "basic/item_key.h"
#include "basic/stock_entry_rules.h"
#include "store/recordset.h"
#include "store/statement_texts.h"
#include "ui/row_loop.h"
#include "ui/sales/stock_figures.h"

using namespace Qt::StringLiterals;

namespace harrowby {

namespace {

/// As StockAvailable looks an item up: enabled, and under the ID and the name that its key is taken apart into.
CounterAnswer judge(DbRecordset &row, const QString &id, const QString &name)
{
    if (row.Field(u"StockUse"_s).text() != enabledText)
        return CounterAnswer::Disabled;
    const QString key = itemKey(id, name);
    const bool isFound = GetIDName(key, KeyPiece::Id) == id && GetIDName(key, KeyPiece::Name) == name;
    return isFound ? CounterAnswer::Done : CounterAnswer::NotInCapitals;
}

} // namespace

Result<SellableItem, CounterAnswer> sellableItem(const QString &stockId,
                                                 const std::shared_ptr<DbConnection> &connection)
{
    const Statement select = statements::stockById(stockId);
    if (select.isRefused())
        return Unexpected(CounterAnswer::Unknown); // no failure: such an ID can be scanned, and means nothing
    DbRecordset rows;
    rows.Open(select, connection);
    const int count = rows.RecordCount();
    CounterAnswer answer = rows.HasFailed() ? CounterAnswer::Failed : CounterAnswer::Unknown;
    for (int i = 0; i < count && !rows.IsEof(); ++i, rows.MoveNext()) {
        // Exactly: a column may compare without regard to case, or as a number.
        if (rows.Field(u"StockID"_s).text() != stockId)
            continue;
        const QString name = rows.Field(u"StockName"_s).text();
        const CounterAnswer found = judge(rows, stockId, name);
        if (found == CounterAnswer::Done)
            return SellableItem{itemKey(stockId, name), availableUnits(rows), unitCost(rows)};
        if (answer == CounterAnswer::Unknown)
            answer = found;
    }
    return Unexpected(answer);
}

} // namespace harrowby
