// SPDX-License-Identifier: MIT
#include "basic/administrator.h"
#include "basic/dates.h"
#include "basic/numbers.h"
#include "basic/values.h"
#include "store/recordset.h"
#include "store/statements.h"
#include "ui/inventory.h"

#include <harrowby/objects.h>

#include <QLabel>

#include <optional>

using namespace Qt::StringLiterals;

namespace harrowby {

namespace {

enum Figure { SalesCount = 3, SalesAmount = 4, StockTotal = 8, ReorderCount = 9 };
constexpr auto twoBlanks = "  "_L1;

/// The aggregate that a statement yields in its one row; empty when the statement failed.
std::optional<double> aggregate(const Statement &statement, const QString &column,
                                const std::shared_ptr<DbConnection> &connection)
{
    DbRecordset result;
    result.Open(statement, connection);
    if (result.HasFailed())
        return std::nullopt;
    return result.RecordCount() > 0 ? result.Field(column).number() : 0.0;
}

} // namespace

void Inventory::RefreshDashboard()
{
    showTodaysSales();
    showStockFigures();
    LoadQuickSales(false);
}

void Inventory::showTodaysSales()
{
    const QString day = dayKey(m_platform.clock->now());
    const bool everybody = m_state.login.LoggedUser == administratorName;
    const std::optional<double> count =
        aggregate(everybody ? statements::salesCount(day) : statements::salesCount(m_state.login.LoggedUser, day),
                  u"totals"_s, connection());
    if (count)
        m_controls.Label6.at(SalesCount)->setText(plainText(*count));
    const std::optional<double> amount =
        aggregate(everybody ? statements::salesAmount(day) : statements::salesAmount(m_state.login.LoggedUser, day),
                  u"Counts"_s, connection());
    if (amount)
        m_controls.Label6.at(SalesAmount)->setText(twoBlanks + formatMoney(*amount));
}

void Inventory::showStockFigures()
{
    if (const std::optional<double> total = aggregate(statements::stockTotal(), u"totals"_s, connection()))
        m_controls.Label6.at(StockTotal)->setText(twoBlanks + formatCount(*total));
    DbRecordset low;
    low.Open(statements::lowStock(), connection());
    const int count = low.RecordCount();
    if (!low.HasFailed())
        m_controls.Label6.at(ReorderCount)->setText(twoBlanks + QString::number(count));
}

void Inventory::openReorderList(int element)
{
    if (element == ReorderCount && leadingNumber(m_controls.Label6.at(ReorderCount)->text()) > 0.0)
        showForeignWindow(ReorderListClassId);
}

} // namespace harrowby
