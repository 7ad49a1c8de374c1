// SPDX-License-Identifier: MIT
#include <harrowby/counter.h>

#include "store/inv_basic.h"
#include "store/recordset.h"
#include "ui/counter/counter_desk.h"
#include "ui/counter/host_link.h"

#include <variant>

namespace harrowby {

namespace {

using Row = CounterPurchase::Row;

/// Emits the signal of an event.
struct Teller
{
    Counter &counter;

    void operator()(const event::WindowOpened &) const { Q_EMIT counter.windowOpened(); }
    void operator()(const event::WindowClosed &) const { Q_EMIT counter.windowClosed(); }
    void operator()(const event::LoggedIn &told) const { Q_EMIT counter.loggedIn(told.user); }
    void operator()(const event::LoggedOut &told) const { Q_EMIT counter.loggedOut(told.name); }
    void operator()(const event::LoginRefused &told) const { Q_EMIT counter.loginRefused(told.name); }
    void operator()(const event::CartChanged &) const { Q_EMIT counter.cartChanged(); }
    void operator()(const event::Purchased &told) const
    {
        CounterPurchase purchase = told.purchase;
        const std::optional<Row> known = HostLink::instance().takeKnownRow(purchase.id);
        if (purchase.row == Row::NotKnown)
            purchase.row = known.value_or(Row::NotKnown);
        Q_EMIT counter.purchased(purchase);
    }
    void operator()(const event::PurchaseUndone &told) const { Q_EMIT counter.purchaseUndone(told.id); }
    void operator()(const event::PurchaseDeleted &told) const { Q_EMIT counter.purchaseDeleted(told.id); }
    void operator()(const event::StockSaved &told) const { Q_EMIT counter.stockSaved(told.oldId, told.newId); }
    void operator()(const event::StockDeleted &told) const { Q_EMIT counter.stockDeleted(told.id); }
    void operator()(const event::CodeRead &told) const
    {
        HostLink &link = HostLink::instance();
        if (told.joined && !link.isLastCodeGood()) {
            Q_EMIT counter.codeRefused(Counter::CodeRefusal::Mixed);
            return;
        }
        link.judgeLastCode(true);
        Q_EMIT counter.codeRead(told.code);
    }
    void operator()(const event::CodeRefused &told) const
    {
        HostLink::instance().judgeLastCode(false);
        Q_EMIT counter.codeRefused(told.why);
    }
};

/// Asks the open window; `otherwise` without one.
template <typename Answer, typename Question>
Answer atTheDesk(Answer otherwise, Question &&question)
{
    Inventory *const window = HostLink::instance().window();
    return window ? question(CounterDesk(*window)) : otherwise;
}

} // namespace

Counter::Counter()
{
    HostLink::instance().follow([this](const CounterEvent &happened) { std::visit(Teller{*this}, happened); });
}

Counter::~Counter()
{
    HostLink::instance().follow({});
}

Counter &Counter::instance()
{
    static Counter counter;
    return counter;
}

bool Counter::isOpen() const
{
    return HostLink::instance().window() != nullptr;
}

std::optional<CounterUser> Counter::user() const
{
    return atTheDesk(std::optional<CounterUser>(), [](const CounterDesk &desk) { return desk.user(); });
}

std::vector<CounterLine> Counter::cart() const
{
    return atTheDesk(std::vector<CounterLine>(), [](const CounterDesk &desk) { return desk.cart(); });
}

float Counter::total() const
{
    return atTheDesk(0.0F, [](const CounterDesk &desk) { return desk.total(); });
}

bool Counter::isBusy() const
{
    return atTheDesk(false, [](const CounterDesk &desk) { return desk.isBusy(); });
}

void Counter::finishReading() noexcept
{
    finishWalks(InvBasic::connection());
}

void Counter::setKnownRow(const QString &purchaseId, Row row)
{
    HostLink::instance().setKnownRow(purchaseId, row);
}

CounterAnswer Counter::sell(const QString &stockId, int units)
{
    return atTheDesk(CounterAnswer::NoWindow, [&](const CounterDesk &desk) { return desk.sell(stockId, units); });
}

CounterAnswer Counter::purchase()
{
    return atTheDesk(CounterAnswer::NoWindow, [](const CounterDesk &desk) { return desk.purchase(); });
}

CounterAnswer Counter::takeCart(std::vector<CounterLine> &lines)
{
    lines.clear();
    return atTheDesk(CounterAnswer::NoWindow, [&](const CounterDesk &desk) { return desk.takeCart(lines); });
}

CounterAnswer Counter::putCart(const std::vector<CounterLine> &lines, std::vector<CounterMisfit> &misfits)
{
    misfits.clear();
    return atTheDesk(CounterAnswer::NoWindow, [&](const CounterDesk &desk) { return desk.putCart(lines, misfits); });
}

CounterAnswer Counter::readAgain()
{
    return atTheDesk(CounterAnswer::NoWindow, [](const CounterDesk &desk) { return desk.readAgain(); });
}

bool Counter::addButton(QWidget *button)
{
    return button && atTheDesk(false, [button](const CounterDesk &desk) {
               desk.addButton(button);
               return true;
           });
}

bool Counter::setBanner(QWidget *banner)
{
    return atTheDesk(false, [banner](const CounterDesk &desk) {
        desk.setBanner(banner);
        return true;
    });
}

void Counter::takeCodes(const std::optional<CodeReaderSettings> &settings)
{
    HostLink::instance().takeCodes(settings);
}

void Counter::codeNotKnown()
{
    HostLink::instance().judgeLastCode(false);
}

} // namespace harrowby
