// SPDX-License-Identifier: MIT
#pragma once

#include "app/cash/payment.h"
#include "app/cash/payment_queue.h"
#include "app/cash/payment_table.h"
#include "app/cash/runs.h"

#include <harrowby/counter.h>

#include <QDateTime>
#include <QObject>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

namespace harrowby::app {

/// Where the payments of a till go, and by which clock.
struct CashStation
{
    QString drawer = QStringLiteral("Till");
    /// Of the store's runs; without, this run settles nothing of others.
    std::shared_ptr<RunLocks> locks;
    std::function<QDateTime()> now = [] { return QDateTime::currentDateTime(); };
    /// After a window has opened, until dead runs are settled: it is painted first.
    int restMs = 200;
};

/// How the purchases of this till were paid: follows the counter, so that each gets its payment.
///
/// Order of effects, so that after a kill at any moment the next start finds what there is to find:
/// 1. The run is noted in the store, and its lock held, as soon as somebody has logged in.
/// 2. pay() writes the payment as an intent, committed, and only then has the counter make the purchase.
/// 3. Once the counter has told what became of the purchase's row, the intent becomes its payment; or goes, where the
///    question was answered "No" or the row was not written; or stays, where that is not known.
///    A purchase without an intent gets its payment then: in cash, exact.
/// What a dead run has left is settled by a start (settlement.h).
///
/// What fails is told by the records, and the sale goes on: it is tried again after the next purchase, and at last by
/// the next start.
class Payments final : public QObject
{
    Q_OBJECT

public:
    /// Counter and records must outlive it.
    Payments(Counter &counter, Records &records, CashStation station, QObject *parent = nullptr);
    /// Notes that the run has ended, unless it leaves something to settle.
    ~Payments() override;

    /// What a purchase of the cart would come to now. Empty where it cannot be told in cents: then nothing can be paid,
    /// while "Purchase Cart" works as ever.
    [[nodiscard]] std::optional<Cents> sum() const;
    /// Has the cart paid in this way and purchased, with the counter's own question and boxes. Failed, with nothing
    /// done, where the parts do not add up to sum().
    CounterAnswer pay(const QList<PaymentPart> &parts);

    /// Where it cannot always be told at once which runs have died: to be called again and again while the store can be
    /// reached. Does nothing once all is settled.
    void settleAgain();

    [[nodiscard]] QString drawer() const { return m_station.drawer; }

Q_SIGNALS:
    /// A purchase has been committed and paid; told once for each, also for one without pay(). `change` is what the
    /// customer gets back in cash.
    void paid(const QString &purchaseId, const QList<harrowby::app::PaymentPart> &parts, qint64 total, qint64 change);
    /// A purchase is undone or deleted, and others of its ID with it: so much of what was paid came in cash, and the
    /// rest in other ways. Not told of purchases that have no payment.
    void givenBack(const QString &purchaseId, qint64 cash, const QList<harrowby::app::PaymentPart> &others);
    /// This run cannot hold its lock, for that reason; told once. Its payments are written all the same.
    void lockMissing(const QString &reason);

private:
    void settleSoon();
    void settle();
    void noteRun();
    void followClock();
    void advanceClock();
    void decide();
    void record(const CounterPurchase &purchase);
    void takeBack(const QString &purchaseId, const QString &why);
    [[nodiscard]] std::optional<Payment> takeIntent(const CounterPurchase &purchase);
    [[nodiscard]] Payment newPayment(const QList<PaymentPart> &parts, Cents total, const QString &seller) const;

    Counter &m_counter;
    Records &m_records;
    CashStation m_station;
    PaymentTable m_table;
    TillRun m_run;
    PaymentQueue m_queue;
    QList<Payment> m_intents;   ///< whose purchase the counter has not told of yet
    bool m_inDoubt = false;     ///< something was left for the next start
    bool m_isUndecided = false; ///< whether runs that have not ended live
};

} // namespace harrowby::app
