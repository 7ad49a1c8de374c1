// SPDX-License-Identifier: MIT
#include "tests/ui/paid_book.h"

#include "app/cash/money.h"

using namespace Qt::StringLiterals;

namespace harrowby::test {

PaidBook::PaidBook()
{
    auto *counter = &harrowby::Counter::instance();
    connect(counter, &harrowby::Counter::purchased, this, &PaidBook::note);
    connect(counter, &harrowby::Counter::purchaseUndone, this, &PaidBook::forget);
    connect(counter, &harrowby::Counter::purchaseDeleted, this, &PaidBook::forget);
}

/// What no cents can tell has no payment.
void PaidBook::note(const CounterPurchase &purchase)
{
    const auto cents = app::centsOf(purchase.total);
    if (purchase.row != CounterPurchase::Row::Written || !cents)
        return;
    m_sums[purchase.id] += *cents;
    ++m_purchases;
}

void PaidBook::forget(const QString &id)
{
    m_sums.remove(id);
}

QStringList PaidBook::problems(const Database &file) const
{
    QStringList due;
    for (auto sum = m_sums.cbegin(); sum != m_sums.cend(); ++sum)
        due << u"%1|%2"_s.arg(sum.key()).arg(sum.value());
    const QStringList paid = file.rows(u"SELECT PurchaseID, sum(Amount) FROM HarrowbyPayment WHERE State = 'PAID' "
                                       "GROUP BY PurchaseID ORDER BY PurchaseID"_s);
    if (paid == due || (due.isEmpty() && paid == QStringList{u"(failed)"_s}))
        return {};
    return {u"paid: %1; due: %2"_s.arg(paid.join(u", "), due.join(u", "))};
}

} // namespace harrowby::test
