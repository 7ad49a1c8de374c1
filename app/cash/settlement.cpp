// SPDX-License-Identifier: MIT
#include "app/cash/settlement.h"

#include "app/cash/sold_items.h"
#include "app/records/record_tables.h"
#include "basic/dates.h"
#include "basic/logging.h"
#include "basic/purchase_id.h"

#include <QSet>
#include <QUuid>

#include <algorithm>
#include <limits>
#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr qint64 secondsOfADay = 24LL * 60 * 60;
constexpr qint64 furthestPurchaseSeconds = secondsOfADay; ///< from its intent, by two clocks
constexpr qint64 longestUnlockedRunSeconds = secondsOfADay;

/// What a purchase and its intent have in common.
QString keyOf(const QString &items, const QString &seller, Cents total)
{
    return itemsKey(items) + u'\n' + seller + u'\n' + QString::number(total);
}

/// Of a PurchasedDate, yyMMddHHmmss in local time and this century.
QDateTime timeOfPurchase(const QString &text)
{
    return QDateTime::fromString(u"20"_s + text, u"yyyyMMddHHmmss"_s);
}

/// Seconds between an intent and a purchase; none where they are too far apart to belong together.
std::optional<qint64> distance(const Payment &intent, const QDateTime &purchased)
{
    const qint64 seconds = std::abs(intent.taken.secsTo(purchased));
    return intent.taken.isValid() && purchased.isValid() && seconds <= furthestPurchaseSeconds ? std::optional(seconds)
                                                                                               : std::nullopt;
}

} // namespace

Settlement::Settlement(Records &records, const RunLocks *locks, Place place) :
    m_records(records), m_locks(locks), m_place(std::move(place)), m_table(records)
{
}

bool Settlement::settle(const QDateTime &now)
{
    m_now = now;
    if (m_locks == nullptr)
        return false;
    const auto dead = deadRuns();
    if (!dead || dead->isEmpty())
        return false;
    const auto kept = m_records.together(kept::payment(), [this] {
        const auto runs = deadRuns(); // another start may have been quicker
        if (!runs)
            return false;
        m_dead = *runs;
        return m_dead.isEmpty() || settleRuns();
    });
    if (kept && *kept && !m_dead.isEmpty())
        qCInfo(lcStore) << "Settled the payments of" << m_dead.size() << "runs that had not ended";
    return kept && *kept;
}

/// Of these, the ones whose lock nobody holds; a run that could not hold it is not among them.
QSet<std::int64_t> Settlement::withoutHolder(const QList<Run> &runs)
{
    QList<std::int64_t> asked;
    for (const Run &run : runs) {
        if (run.isLocked && run.number != m_place.run)
            asked << run.number;
    }
    const auto holders = m_locks->holdersOf(asked);
    m_isUndecided = m_isUndecided || holders.contains(RunLocks::Holder::NotKnown);
    QSet<std::int64_t> free;
    for (qsizetype i = 0; i < asked.size(); ++i) {
        if (holders.at(i) == RunLocks::Holder::Nobody)
            free << asked.at(i);
    }
    return free;
}

Records::Answer<QList<Run>> Settlement::deadRuns()
{
    auto runs = openRuns(m_records);
    m_isUndecided = !runs;
    if (!runs || runs->isEmpty())
        return runs;
    runs->removeIf([this, free = withoutHolder(*runs)](const Run &run) {
        const bool isTooOld = run.number != m_place.run && run.started.secsTo(m_now) > longestUnlockedRunSeconds;
        return run.isLocked ? !free.contains(run.number) : !isTooOld;
    });
    return runs;
}

bool Settlement::settleRuns()
{
    const auto earlier = [](const Run &a, const Run &b) { return a.since < b.since; };
    m_since = std::min_element(m_dead.cbegin(), m_dead.cend(), earlier)->since;
    const auto odd = readIntents() ? oddPurchases() : Records::Answer<QStringList>(Unexpected(DbFailure()));
    if (!odd)
        return false;
    const auto balanced = [this](const QString &id) { return balance(id); };
    return std::all_of(odd->cbegin(), odd->cend(), balanced) && takeBackGone() && endRuns();
}

bool Settlement::readIntents()
{
    m_intents.clear();
    QSet<std::int64_t> dead;
    for (const Run &run : std::as_const(m_dead))
        dead.insert(run.number);
    const auto intents = m_table.withoutPurchase(PaymentState::Intent);
    if (!intents)
        return false;
    for (const Payment &intent : *intents) {
        if (dead.contains(intent.run))
            m_intents[keyOf(intent.items, intent.seller, intent.total)] << intent;
    }
    return true;
}

/// The IDs of purchases of which there are more, or fewer, than payments. Grouped by "|| ''": for a plain ID SQLite
/// goes through the purchases of all times, in the order of the IDs.
Records::Answer<QStringList> Settlement::oddPurchases() const
{
    const auto rows = m_records.read(
        kept::payment(), {u"select p.ID from (select PurchaseID || '' as ID, count(*) as Times from PurchaseCart "
                          "where substr(PurchasedDate, 1, 6) >= ? and PurchasedDate >= ? group by PurchaseID || '') p "
                          "where p.Times <> (select count(*) from HarrowbyPayment h "
                          "where h.PurchaseID = p.ID and h.State = 'PAID' and h.Part = 1)"_s,
                          {dayKeyOf(m_since), m_since}});
    if (!rows)
        return Unexpected(rows.error());
    QStringList ids;
    for (const RecordRow &row : *rows)
        ids << recordText(row.constFirst());
    return ids;
}

Records::Answer<QList<Settlement::Purchase>> Settlement::purchasesOf(const QString &id) const
{
    const auto rows = m_records.read({u"select PurchasedItems, PurchasedItemsCost, PurchasedDate, Users "
                                      "from PurchaseCart where PurchaseID = ?"_s,
                                      {id}});
    if (!rows)
        return Unexpected(rows.error());
    QList<Purchase> purchases;
    for (const RecordRow &row : *rows) {
        // What cannot be told in cents has no payment.
        if (const auto total = centsOf(recordReal(row.at(1))))
            purchases << Purchase{id, recordText(row.at(0)), *total, timeOfPurchase(recordText(row.at(2))),
                                  recordText(row.at(3))};
    }
    return purchases;
}

/// Purchases that share an ID get a payment each.
bool Settlement::balance(const QString &id)
{
    const auto purchases = purchasesOf(id);
    const auto payments = m_table.ofPurchase(id);
    if (!purchases || !payments)
        return false;
    QList<Purchase> unpaid;
    QList<Payment> surplus = *payments;
    for (const Purchase &purchase : *purchases) {
        const auto its = std::find_if(surplus.cbegin(), surplus.cend(),
                                      [&](const Payment &payment) { return payment.total == purchase.total; });
        if (its == surplus.cend())
            unpaid << purchase;
        else
            surplus.erase(its);
    }
    const auto takeBack = [this](const Payment &one) { return m_table.takeBackOne(one.id, back_why::gone(), m_now); };
    const auto payOne = [this](const Purchase &one) { return pay(one); };
    return std::all_of(surplus.cbegin(), surplus.cend(), takeBack) &&
           std::all_of(unpaid.cbegin(), unpaid.cend(), payOne);
}

bool Settlement::pay(const Purchase &purchase)
{
    QList<Payment> &intents = m_intents[keyOf(purchase.items, purchase.seller, purchase.total)];
    qsizetype nearest = -1;
    qint64 least = std::numeric_limits<qint64>::max();
    for (qsizetype i = 0; i < intents.size(); ++i) {
        const auto seconds = distance(intents.at(i), purchase.date);
        if (seconds && *seconds < least) {
            nearest = i;
            least = *seconds;
        }
    }
    if (nearest >= 0)
        return m_table.assign(intents.takeAt(nearest).id, purchase.id, PaymentOrigin::Matched);
    return countAsExactCash(purchase);
}

/// The run that has most likely sold it: one at this drawer, or the latest that had begun.
const Run &Settlement::likelyRun(const Purchase &purchase) const
{
    const QString date = purchasedDate(purchase.date);
    const Run *likely = &m_dead.constFirst();
    for (const Run &run : m_dead) {
        if (run.drawer == m_place.drawer)
            return run;
        if (run.since <= date && run.since > likely->since)
            likely = &run;
    }
    return *likely;
}

bool Settlement::countAsExactCash(const Purchase &purchase)
{
    const Run &run = likelyRun(purchase);
    Payment payment;
    payment.id = QUuid::createUuid().toString(QUuid::WithoutBraces);
    payment.purchaseId = purchase.id;
    payment.state = PaymentState::Paid;
    payment.parts = exactCash(purchase.total);
    payment.total = purchase.total;
    payment.seller = purchase.seller;
    payment.taken = (purchase.date.isValid() ? purchase.date : m_now).toUTC();
    payment.drawer = run.drawer;
    payment.run = run.number;
    payment.origin = PaymentOrigin::Counted;
    return m_table.insert(payment);
}

/// The purchase IDs that begin with these letters, from a month before the dead runs on, and are paid for and gone.
Records::Answer<QStringList> Settlement::goneAmong(const QString &prefix) const
{
    constexpr int month = 31;
    const QDateTime since = timeOfPurchase(m_since);
    const QString from = since.isValid() ? purchasedDate(since.addDays(-month)) : m_since;
    const auto rows = m_records.read(
        kept::payment(), {u"select distinct PurchaseID from HarrowbyPayment "
                          "where PurchaseID >= ? and PurchaseID < ? and State = 'PAID' and not exists "
                          "(select 1 from PurchaseCart p where p.PurchaseID = HarrowbyPayment.PurchaseID)"_s,
                          {prefix + from, prefix + u':'}}); // ":" follows "9"
    if (!rows)
        return Unexpected(rows.error());
    QStringList ids;
    for (const RecordRow &row : *rows)
        ids << recordText(row.constFirst());
    return ids;
}

bool Settlement::takeBackGone()
{
    for (const QStringView prefix : {purchaseIdPrefix, secondPurchaseIdPrefix}) {
        const auto gone = goneAmong(prefix.toString());
        if (!gone || !std::all_of(gone->cbegin(), gone->cend(), [this](const QString &id) { return balance(id); }))
            return false;
    }
    return true;
}

bool Settlement::endRuns()
{
    QList<std::int64_t> dead;
    for (const Run &run : std::as_const(m_dead))
        dead << run.number;
    return writeOfRuns(m_records,
                       u"update HarrowbyPayment set State = 'UNMATCHED' "
                       "where PurchaseID = '' and State = 'INTENT' and Run in (%1)"_s,
                       {}, dead) &&
           noteEnd(m_records, dead, m_now);
}

} // namespace harrowby::app
