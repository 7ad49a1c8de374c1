// SPDX-License-Identifier: MIT
#include "app/cash/payment_table.h"

#include "app/records/record_tables.h"

#include <algorithm>
#include <array>
#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

using State = PaymentState;

QString wordOf(State state)
{
    switch (state) {
    case State::Intent:
        return u"INTENT"_s;
    case State::Paid:
        return u"PAID"_s;
    case State::Unmatched:
        return u"UNMATCHED"_s;
    case State::Back:
        return u"BACK"_s;
    }
    return {};
}

/// What is not known was written by a later version, which keeps its payments apart from these.
State stateOf(const QString &word)
{
    constexpr std::array known = {State::Intent, State::Paid, State::Unmatched};
    const auto *found = std::find_if(known.begin(), known.end(), [&](State state) { return wordOf(state) == word; });
    return found != known.end() ? *found : State::Back;
}

PaymentOrigin originOf(std::int64_t number)
{
    const bool known =
        number == static_cast<int>(PaymentOrigin::Matched) || number == static_cast<int>(PaymentOrigin::Counted);
    return known ? static_cast<PaymentOrigin>(number) : PaymentOrigin::Till;
}

/// Columns as selectPayments names them.
Payment paymentOf(const RecordRow &row)
{
    Payment payment;
    payment.id = recordText(row.at(0));
    payment.purchaseId = recordText(row.at(1));
    payment.state = stateOf(recordText(row.at(2)));
    payment.total = recordNumber(row.at(6));
    payment.items = recordText(row.at(7));
    payment.seller = recordText(row.at(8));
    payment.taken = timeOfRecord(recordText(row.at(9)));
    payment.drawer = recordText(row.at(10));
    payment.run = recordNumber(row.at(11));
    payment.origin = originOf(recordNumber(row.at(12)));
    payment.backWhy = recordText(row.at(13));
    return payment;
}

const auto selectPayments = u"select PaymentID, PurchaseID, State, Way, Amount, Given, Total, Items, Seller, TakenAt, "
                            "Drawer, Run, Origin, BackWhy from HarrowbyPayment where "_s;

} // namespace

namespace back_why {

QString undone()
{
    return u"UNDONE"_s;
}

QString deleted()
{
    return u"DELETED"_s;
}

QString gone()
{
    return u"GONE"_s;
}

} // namespace back_why

PaymentTable::Answer<QList<Payment>> PaymentTable::select(const QString &where, const QList<RecordValue> &values) const
{
    const auto rows = m_records.read(kept::payment(), {selectPayments + where, values});
    if (!rows)
        return Unexpected(rows.error());
    QList<Payment> payments;
    for (const RecordRow &row : *rows) {
        if (payments.isEmpty() || payments.constLast().id != recordText(row.at(0)))
            payments << paymentOf(row);
        payments.last().parts << PaymentPart{recordText(row.at(3)), recordNumber(row.at(4)), recordNumber(row.at(5))};
    }
    return payments;
}

bool PaymentTable::change(const QString &text, const QList<RecordValue> &values)
{
    return m_records.write(kept::payment(), {text, values}).has_value();
}

PaymentTable::Answer<QList<Payment>> PaymentTable::ofPurchase(const QString &purchaseId) const
{
    return select(u"PurchaseID = ? and State = ? order by TakenAt, PaymentID, Part"_s,
                  {purchaseId, wordOf(State::Paid)});
}

PaymentTable::Answer<QList<Payment>> PaymentTable::withoutPurchase(PaymentState state) const
{
    return select(u"PurchaseID = '' and State = ? order by TakenAt, PaymentID, Part"_s, {wordOf(state)});
}

PaymentTable::Answer<std::optional<Payment>> PaymentTable::withId(const QString &id) const
{
    const auto found = select(u"PaymentID = ? order by Part"_s, {id});
    if (!found)
        return Unexpected(found.error());
    return found->isEmpty() ? std::nullopt : std::optional(found->constFirst());
}

bool PaymentTable::addIntent(const Payment &payment)
{
    const auto kept = m_records.together(kept::payment(), [&] { return insert(payment); });
    return kept && *kept;
}

bool PaymentTable::record(const Payment &payment)
{
    const auto kept = m_records.together(kept::payment(), [&] {
        const auto own = withId(payment.id);
        if (!own)
            m_records.tellNotTried(kept::payment(), own.error());
        const auto room = own ? makeRoom(payment) : std::nullopt;
        if (!room)
            return false;
        const bool isWritten = *own ? assign(payment.id, payment.purchaseId, PaymentOrigin::Till) : insert(payment);
        return isWritten && (*room || takeBackOne(payment.id, back_why::gone(), payment.taken));
    });
    return kept && *kept;
}

bool PaymentTable::removeIntent(const QString &id)
{
    return change(u"delete from HarrowbyPayment where PaymentID = ? and PurchaseID = ''"_s, {id});
}

PaymentTable::Answer<QList<Cents>> PaymentTable::sumsOf(const QString &purchaseId) const
{
    const auto rows =
        m_records.read({u"select PurchasedItemsCost from PurchaseCart where PurchaseID = ?"_s, {purchaseId}});
    if (!rows)
        return Unexpected(rows.error());
    QList<Cents> sums;
    for (const RecordRow &row : *rows) {
        if (const auto sum = centsOf(recordReal(row.constFirst())))
            sums << *sum;
    }
    return sums;
}

PaymentTable::Answer<QList<Payment>> PaymentTable::withoutTheirs(const QString &purchaseId) const
{
    auto paid = ofPurchase(purchaseId);
    if (!paid || paid->isEmpty())
        return paid;
    const auto sums = sumsOf(purchaseId);
    if (!sums)
        return Unexpected(sums.error());
    for (const Cents sum : *sums) { // a purchase that is there was made last
        const auto last = std::find_if(paid->crbegin(), paid->crend(),
                                       [sum](const Payment &payment) { return payment.total == sum; });
        if (last != paid->crend())
            paid->erase(std::next(last).base());
    }
    return paid;
}

bool PaymentTable::takeBack(const QString &purchaseId, const QString &why, const QDateTime &moment)
{
    const auto kept = m_records.together(kept::payment(), [&] {
        const auto gone = withoutTheirs(purchaseId);
        if (!gone)
            m_records.tellNotTried(kept::payment(), gone.error());
        return gone && std::all_of(gone->cbegin(), gone->cend(),
                                   [&](const Payment &payment) { return takeBackOne(payment.id, why, moment); });
    });
    return kept && *kept;
}

bool PaymentTable::takeBackOne(const QString &id, const QString &why, const QDateTime &moment)
{
    return change(u"update HarrowbyPayment set State = ?, BackAt = ?, BackWhy = ? where PaymentID = ? and State = ?"_s,
                  {wordOf(State::Back), recordTime(moment), why, id, wordOf(State::Paid)});
}

bool PaymentTable::insert(const Payment &payment)
{
    std::int64_t number = 0;
    for (const PaymentPart &part : payment.parts) {
        if (!change(u"insert into HarrowbyPayment (PaymentID, Part, PurchaseID, State, Way, Amount, Given, Total, "
                    "Items, Seller, TakenAt, Drawer, Run, Origin, BackAt, BackWhy) "
                    "values (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, '', '')"_s,
                    {payment.id, ++number, payment.purchaseId, wordOf(payment.state), part.way, part.amount, part.given,
                     payment.total, payment.items, payment.seller, recordTime(payment.taken), payment.drawer,
                     payment.run, static_cast<std::int64_t>(payment.origin)}))
            return false;
    }
    return true;
}

/// A matched one keeps its items: it may have to look for another purchase yet.
bool PaymentTable::assign(const QString &id, const QString &purchaseId, PaymentOrigin origin)
{
    if (origin == PaymentOrigin::Matched)
        return change(u"update HarrowbyPayment set PurchaseID = ?, State = ?, Origin = ? where PaymentID = ?"_s,
                      {purchaseId, wordOf(State::Paid), static_cast<std::int64_t>(origin), id});
    return change(u"update HarrowbyPayment set PurchaseID = ?, State = ?, Origin = ?, Items = '' where PaymentID = ?"_s,
                  {purchaseId, wordOf(State::Paid), static_cast<std::int64_t>(origin), id});
}

/// Whether there is a purchase for it: another till may have deleted all of its ID by now. Empty when it failed.
std::optional<bool> PaymentTable::makeRoom(const Payment &payment)
{
    const auto paid = ofPurchase(payment.purchaseId);
    const auto sums = paid ? sumsOf(payment.purchaseId) : Answer<QList<Cents>>(Unexpected(paid.error()));
    if (!sums) {
        m_records.tellNotTried(kept::payment(), sums.error());
        return {};
    }
    const auto isSame = [&](const Payment &one) { return one.id != payment.id && one.total == payment.total; };
    const auto others = std::count_if(paid->cbegin(), paid->cend(), isSame);
    const auto there = sums->count(payment.total);
    const auto guess = std::find_if(paid->cbegin(), paid->cend(), [&](const Payment &one) {
        return isSame(one) && one.origin != PaymentOrigin::Till;
    });
    if (others < there || guess == paid->cend())
        return others < there;
    if (!release(*guess))
        return {};
    return others - 1 < there;
}

/// One that a start has counted goes; one that it has matched is without a purchase again.
bool PaymentTable::release(const Payment &guess)
{
    if (guess.origin == PaymentOrigin::Counted)
        return change(u"delete from HarrowbyPayment where PaymentID = ?"_s, {guess.id});
    return change(u"update HarrowbyPayment set PurchaseID = '', State = ?, Origin = 0 where PaymentID = ?"_s,
                  {wordOf(State::Unmatched), guess.id});
}

} // namespace harrowby::app
