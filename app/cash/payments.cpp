// SPDX-License-Identifier: MIT
#include "app/cash/payments.h"

#include "app/cash/settlement.h"
#include "app/cash/sold_items.h"
#include "basic/dates.h"
#include "basic/logging.h"

#include <QTimer>
#include <QUuid>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

using Row = CounterPurchase::Row;

} // namespace

Payments::Payments(Counter &counter, Records &records, CashStation station, QObject *parent) :
    QObject(parent), m_counter(counter), m_records(records), m_station(std::move(station)), m_table(records),
    m_run(records, m_station.locks, m_station.drawer), m_queue(m_table)
{
    connect(&m_counter, &Counter::windowOpened, this, &Payments::settleSoon);
    connect(&m_counter, &Counter::loggedIn, this, &Payments::noteRun);
    connect(&m_counter, &Counter::cartChanged, this, &Payments::followClock);
    connect(&m_counter, &Counter::purchased, this, &Payments::record);
    connect(&m_counter, &Counter::purchaseUndone, this,
            [this](const QString &id) { takeBack(id, back_why::undone()); });
    connect(&m_counter, &Counter::purchaseDeleted, this,
            [this](const QString &id) { takeBack(id, back_why::deleted()); });
    if (m_counter.isOpen())
        settleSoon();
    if (m_counter.user())
        QMetaObject::invokeMethod(this, &Payments::noteRun, Qt::QueuedConnection);
}

Payments::~Payments()
{
    m_queue.write();
    if (m_queue.isEmpty() && m_intents.isEmpty() && !m_inDoubt)
        m_run.end(m_station.now());
}

void Payments::settleSoon()
{
    QTimer::singleShot(m_station.restMs, this, &Payments::settle);
}

void Payments::settle()
{
    Settlement settlement(m_records, m_station.locks.get(), {m_run.number(), m_station.drawer});
    settlement.settle(m_station.now());
    m_isUndecided = settlement.isUndecided();
}

void Payments::settleAgain()
{
    if (m_isUndecided)
        settle();
}

void Payments::noteRun()
{
    if (!m_run.isNoted() && m_run.note(m_station.now()) && !m_run.lockProblem().isEmpty())
        Q_EMIT lockMissing(m_run.lockProblem());
}

/// A purchase comes after a change of the cart; one that is dated before the run's beginning would not be looked for.
void Payments::followClock()
{
    const QString now = purchasedDate(m_station.now());
    if (m_run.isNoted() && now < m_run.since())
        m_run.setSince(now);
}

std::optional<Cents> Payments::sum() const
{
    return centsOf(m_counter.total());
}

CounterAnswer Payments::pay(const QList<PaymentPart> &parts)
{
    const auto user = m_counter.user();
    const std::vector<CounterLine> cart = m_counter.cart();
    if (!user || cart.empty() || m_counter.isBusy())
        return m_counter.purchase(); // which says what is wrong, and does nothing
    const auto total = sum();
    if (!total || !addUp(parts, *total)) {
        qCWarning(lcStore, "A payment does not come to the sum of the cart; nothing is purchased");
        return CounterAnswer::Failed;
    }
    noteRun();
    Payment intent = newPayment(parts, *total, user->name);
    intent.items = soldItems(cart);
    // Where it cannot be written the sale goes on, and its payment is written afterwards.
    if (m_run.isNoted())
        (void)m_table.addIntent(intent);
    m_intents << intent;
    const CounterAnswer answer = m_counter.purchase();
    if (answer == CounterAnswer::Done || answer == CounterAnswer::Failed) {
        QMetaObject::invokeMethod(this, &Payments::decide, Qt::QueuedConnection); // after what the counter tells of it
    } else {
        m_intents.removeIf([&](const Payment &one) { return one.id == intent.id; });
        m_queue.removeIntent(intent);
        m_queue.write();
    }
    return answer;
}

/// The counter has told all there was of what pay() has begun. What is left of it may have been purchased, or not.
void Payments::decide()
{
    if (m_intents.isEmpty())
        return;
    qCWarning(lcStore, "It is not known whether a purchase came about; its payment is kept for the next start");
    m_intents.clear();
    m_inDoubt = true;
}

std::optional<Payment> Payments::takeIntent(const CounterPurchase &purchase)
{
    const QString items = itemsKey(purchase.items);
    const auto isIts = [&](const Payment &intent) { return itemsKey(intent.items) == items; };
    auto found = std::find_if(m_intents.begin(), m_intents.end(), isIts);
    if (found == m_intents.end())
        return {};
    Payment intent = *found;
    m_intents.erase(found);
    return intent;
}

Payment Payments::newPayment(const QList<PaymentPart> &parts, Cents total, const QString &seller) const
{
    Payment payment;
    payment.id = QUuid::createUuid().toString(QUuid::WithoutBraces);
    payment.parts = parts;
    payment.total = total;
    payment.seller = seller;
    payment.taken = m_station.now().toUTC();
    payment.drawer = m_station.drawer;
    payment.run = m_run.number();
    return payment;
}

void Payments::record(const CounterPurchase &purchase)
{
    noteRun();
    const auto intent = takeIntent(purchase);
    const auto total = centsOf(purchase.total);
    if (intent && (purchase.row == Row::NotWritten || intent->total != total))
        m_queue.removeIntent(*intent);
    const bool isPayable = purchase.row != Row::NotWritten && total;
    if (isPayable) {
        const bool fits = intent && intent->total == total;
        Payment payment = fits ? *intent : newPayment(exactCash(*total), *total, purchase.user);
        payment.purchaseId = purchase.id;
        payment.state = PaymentState::Paid;
        payment.items.clear();
        if (purchase.row == Row::Written)
            m_queue.record(payment);
        else
            m_inDoubt = true; // the next start sees whether the row is there
        m_queue.write();
        Q_EMIT paid(purchase.id, payment.parts, payment.total, changeOf(payment.parts));
    } else {
        m_queue.write();
    }
    advanceClock();
}

/// The first purchase of a day: a start has no earlier ones to look through.
void Payments::advanceClock()
{
    const QString now = purchasedDate(m_station.now());
    if (m_run.isNoted() && m_queue.isEmpty() && !m_inDoubt && dayKeyOf(m_run.since()) < dayKeyOf(now))
        m_run.setSince(now);
}

void Payments::takeBack(const QString &purchaseId, const QString &why)
{
    m_queue.write(); // a payment that waits may be this purchase's
    const auto found = m_table.withoutTheirs(purchaseId);
    m_queue.takeBack(purchaseId, why, m_station.now());
    m_queue.write();
    if (!found || found->isEmpty())
        return;
    Cents cash = 0;
    QList<PaymentPart> others;
    for (const Payment &payment : *found) {
        for (const PaymentPart &part : payment.parts) {
            if (part.way == cashWay())
                cash += part.amount;
            else
                others << part;
        }
    }
    Q_EMIT givenBack(purchaseId, cash, others);
}

} // namespace harrowby::app
