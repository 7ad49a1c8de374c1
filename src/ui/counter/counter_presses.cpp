// SPDX-License-Identifier: MIT
#include "store/recordset.h"
#include "ui/counter/counter_desk.h"
#include "ui/counter/counter_lines.h"
#include "ui/counter/put_line.h"
#include "ui/counter/sellable_item.h"
#include "ui/gates.h"
#include "ui/inventory.h"
#include "ui/widgets/activity_text.h"
#include "ui/widgets/row_list.h"
#include "ui/widgets/tab_strip.h"
#include "ui/widgets/text_table_model.h"
#include "ui/work_areas.h"

#include <QPushButton>

#include <limits>

namespace harrowby {

/// Behind the fence and the gate, as the handlers of the window. A handler that ends early leaves Failed.
template <typename Press>
CounterAnswer CounterDesk::run(Press &&press) const
{
    if (isBusy())
        return CounterAnswer::Busy;
    CounterAnswer answer = CounterAnswer::Failed;
    m_window.m_fence.run([&] {
        finishWalks(m_window.connection()); // a host may write next
        answer = m_window.passes(gates::login) ? press() : CounterAnswer::NotLoggedIn;
    });
    return answer;
}

CounterAnswer CounterDesk::sell(const QString &stockId, int units) const
{
    if (units < 1 || units > std::numeric_limits<std::int16_t>::max())
        return CounterAnswer::WrongUnits;
    return run([&] {
        const Result<SellableItem, CounterAnswer> item = sellableItem(stockId, m_window.connection());
        if (!item)
            return item.error();
        const unsigned shown = m_window.m_underWay.boxes.shown();
        if (m_window.sellItem(item->key, static_cast<std::int16_t>(units)))
            return CounterAnswer::Done;
        return m_window.m_underWay.boxes.shown() != shown ? CounterAnswer::NotEnough : CounterAnswer::Failed;
    });
}

CounterAnswer CounterDesk::purchase() const
{
    return run([&] {
        if (!m_window.m_controls.Command14->isEnabled())
            return CounterAnswer::Busy; // as the button, which is disabled while something is sold
        if (m_window.m_controls.LV3->rows().rowCount() == 0)
            return CounterAnswer::CartEmpty;
        return m_window.CheckoutCart(false) ? CounterAnswer::Done : CounterAnswer::Declined;
    });
}

CounterAnswer CounterDesk::takeCart(std::vector<CounterLine> &lines) const
{
    return run([&] {
        TextTableModel &cart = m_window.m_controls.LV3->rows();
        if (cart.rowCount() == 0)
            return CounterAnswer::CartEmpty;
        lines = counterLines(cart);
        cart.clear();
        m_window.UpdateCart();
        return CounterAnswer::Done;
    });
}

CounterAnswer CounterDesk::putCart(const std::vector<CounterLine> &lines, std::vector<CounterMisfit> &misfits) const
{
    return run([&] {
        putLines(lines, misfits);
        return CounterAnswer::Done;
    });
}

CounterAnswer CounterDesk::readAgain() const
{
    if (isBusy())
        return CounterAnswer::Busy;
    CounterAnswer answer = CounterAnswer::Failed;
    m_window.m_fence.run([&] {
        m_window.readAgain();
        answer = CounterAnswer::Done;
    });
    return answer;
}

void CounterDesk::putLines(const std::vector<CounterLine> &lines, std::vector<CounterMisfit> &misfits) const
{
    RowList &list = *m_window.m_controls.LV3;
    const ActivityText::Batch log(*m_window.m_controls.Text1);
    for (const CounterLine &line : lines) {
        const PutLine put = putLine(list.rows(), line, sellableItem(line.stockId, m_window.connection()));
        if (put.misfit)
            misfits.push_back(*put.misfit);
        if (!put.logLine.isEmpty())
            m_window.LogActivity(put.logLine, box::Information, false, true);
    }
    if (list.rows().rowCount() > 0)
        list.selectRow(list.rows().rowCount() - 1); // as FindandUpdateCart does
    m_window.UpdateCart();
    m_window.m_controls.TabStrip2->selectTab(SidePanel::Cart);
}

} // namespace harrowby
