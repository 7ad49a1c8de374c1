// SPDX-License-Identifier: MIT
#include "basic/administrator.h"
#include "basic/dates.h"
#include "basic/logging.h"
#include "basic/numbers.h"
#include "basic/values.h"
#include "store/recordset.h"
#include "store/statement_texts.h"
#include "ui/dashboard_elements.h"
#include "ui/inventory.h"

#include <harrowby/objects.h>

#include <QLabel>

#include <optional>

using namespace Qt::StringLiterals;

namespace harrowby {

namespace {

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

/// Each is empty when its statement failed.
struct Figures
{
    std::optional<double> salesCount;
    std::optional<double> salesAmount;
    std::optional<double> stockTotal;
    std::optional<int> toReorder;
};

std::optional<int> toReorder(const std::shared_ptr<DbConnection> &connection)
{
    DbRecordset low;
    low.Open(statements::lowStock(), connection, DbRecordset::Access::Count);
    const int count = low.RecordCount();
    return low.HasFailed() ? std::nullopt : std::optional(count);
}

/// The day's sales are the user's own; the administrator's are everybody's.
Figures readFigures(const QString &user, const QString &day, const std::shared_ptr<DbConnection> &connection)
{
    const bool everybody = user == administratorName;
    Figures figures;
    figures.salesCount =
        aggregate(everybody ? statements::salesCount(day) : statements::salesCount(user, day), u"totals"_s, connection);
    figures.salesAmount = aggregate(everybody ? statements::salesAmount(day) : statements::salesAmount(user, day),
                                    u"Counts"_s, connection);
    figures.stockTotal = aggregate(statements::stockTotal(), u"totals"_s, connection);
    figures.toReorder = toReorder(connection);
    return figures;
}

/// The component has no such window itself; where a host has registered none, nothing happens.
void showReorderList(ObjectRegistry &objects, QWidget *owner)
{
    const std::unique_ptr<QObject> window = objects.create(ReorderListClassId);
    if (!window)
        return;
    constexpr int modal = 1;
    if (!QMetaObject::invokeMethod(window.get(), "Show", Q_ARG(int, modal), Q_ARG(QWidget *, owner)))
        qCWarning(lcWindow, "%s cannot be shown", ReorderListClassId.data());
}

} // namespace

void Inventory::RefreshDashboard()
{
    const QString day = dayKey(m_platform.clock->now());
    const Figures figures = readFigures(m_state.login.LoggedUser, day, connection());
    if (figures.salesCount)
        m_controls.Label6.at(Dashboard::SalesCount)->setText(plainText(*figures.salesCount));
    if (figures.salesAmount)
        m_controls.Label6.at(Dashboard::SalesAmount)->setText(twoBlanks + formatMoney(*figures.salesAmount));
    if (figures.stockTotal)
        m_controls.Label6.at(Dashboard::StockTotal)->setText(twoBlanks + formatCount(*figures.stockTotal));
    if (figures.toReorder)
        m_controls.Label6.at(Dashboard::ReorderCount)->setText(twoBlanks + QString::number(*figures.toReorder));
    LoadQuickSales(false);
}

void Inventory::openReorderList(int element)
{
    if (element != Dashboard::ReorderCount ||
        leadingNumber(m_controls.Label6.at(Dashboard::ReorderCount)->text()) <= 0.0)
        return;
    finishWalks(connection()); // the window may stay open for long
    showReorderList(*m_platform.objects, this);
}

} // namespace harrowby
