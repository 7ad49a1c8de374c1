// SPDX-License-Identifier: MIT
#include "app/cash/open_intents.h"

#include "app/cash/payment_table.h"
#include "app/records/record_tables.h"
#include "basic/dates.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

/// Not told by a person, and so it may have been paid otherwise.
bool isPlainCash(const Payment &payment)
{
    return payment.parts.size() == 1 && payment.parts.constFirst().way == cashWay() &&
           payment.parts.constFirst().given == payment.total;
}

} // namespace

Records::Answer<QList<Payment>> OpenIntents::list() const
{
    return PaymentTable(m_records).withoutPurchase(PaymentState::Unmatched);
}

Records::Answer<QList<IntentChoice>> OpenIntents::choicesFor(const Payment &intent) const
{
    const QDateTime taken = intent.taken.toLocalTime();
    const auto rows = m_records.read({u"select PurchaseID, PurchasedItems, PurchasedItemsCost, PurchasedDate, Users "
                                      "from PurchaseCart where substr(PurchasedDate, 1, 6) >= ? "
                                      "and substr(PurchasedDate, 1, 6) <= ? order by PurchasedDate, PurchaseID"_s,
                                      {dayKey(taken.addDays(-1)), dayKey(taken.addDays(1))}});
    if (!rows)
        return Unexpected(rows.error());
    QList<IntentChoice> choices;
    for (const RecordRow &row : *rows) {
        if (centsOf(recordReal(row.at(2))) != intent.total)
            continue;
        const QString id = recordText(row.at(0));
        const auto paid = PaymentTable(m_records).ofPurchase(id);
        if (!paid)
            return Unexpected(paid.error());
        if (std::any_of(paid->cbegin(), paid->cend(),
                        [&](const Payment &payment) { return payment.total == intent.total && isPlainCash(payment); }))
            choices << IntentChoice{id, recordText(row.at(1)), recordText(row.at(4)), recordText(row.at(3))};
    }
    return choices;
}

OpenIntents::Outcome OpenIntents::countFor(const QString &paymentId, const QString &purchaseId)
{
    const auto deed = told(u"The payment %1 was counted for the purchase %2."_s.arg(paymentId, purchaseId));
    if (deed && m_records.prepare(*deed->table))
        return Outcome::Failed;
    auto outcome = Outcome::Failed;
    const auto kept = m_records.together(kept::payment(), [&] {
        PaymentTable table(m_records);
        const auto intent = table.withId(paymentId);
        const auto paid = table.ofPurchase(purchaseId);
        if (!intent || !paid)
            return false;
        outcome = !*intent || (*intent)->state != PaymentState::Unmatched ? Outcome::Gone : Outcome::Misfit;
        if (outcome == Outcome::Gone)
            return false;
        const auto counted = std::find_if(paid->cbegin(), paid->cend(), [&](const Payment &payment) {
            return payment.total == (*intent)->total && isPlainCash(payment);
        });
        if (counted == paid->cend())
            return false;
        const auto removed =
            m_records.write(kept::payment(), {u"delete from HarrowbyPayment where PaymentID = ?"_s, {counted->id}});
        const bool isDone = removed && table.assign(paymentId, purchaseId, PaymentOrigin::Till) &&
                            (!deed || m_records.write(*deed->table, *deed));
        outcome = isDone ? Outcome::Done : Outcome::Failed;
        return isDone;
    });
    return kept ? outcome : Outcome::Failed;
}

OpenIntents::Outcome OpenIntents::remove(const QString &paymentId)
{
    const auto removed = writeTold(
        m_records, kept::payment(),
        {u"delete from HarrowbyPayment where PaymentID = ? and State = 'UNMATCHED'"_s, {paymentId}},
        told(u"The payment %1, which had found no purchase, was removed: nothing was sold."_s.arg(paymentId)));
    if (!removed)
        return Outcome::Failed;
    return *removed ? Outcome::Done : Outcome::Gone;
}

std::optional<RecordStatement> OpenIntents::told(const QString &what) const
{
    return m_deeds ? std::optional(m_deeds->statement(deed::paymentSettled, what)) : std::nullopt;
}

} // namespace harrowby::app
