// SPDX-License-Identifier: MIT
#pragma once

#include "app/cash/money.h"

#include <QDateTime>
#include <QList>
#include <QString>

namespace harrowby::app {

/// Ways of paying are kept under the very words that the cashier reads.
[[nodiscard]] inline QString cashWay()
{
    return QStringLiteral("Cash");
}
[[nodiscard]] inline QString cardWay()
{
    return QStringLiteral("Card");
}

/// One way in which a part of a purchase is paid.
struct PaymentPart
{
    QString way;
    Cents amount = 0; ///< part of the purchase's sum
    Cents given = 0;  ///< handed over: at least the amount in cash, otherwise the amount

    bool operator==(const PaymentPart &) const = default;
};

/// Where a payment stands. Kept as these words, so their order is free.
enum class PaymentState {
    Intent,    ///< written before the purchase; whether that came about is not known yet
    Paid,      ///< a purchase's
    Unmatched, ///< an intent of a run that died, without a purchase: a person decides
    Back,      ///< taken back with its purchase
};

/// Who has found the purchase of a payment.
enum class PaymentOrigin {
    Till,    ///< the run that sold it
    Matched, ///< a later start, by what was sold, the seller and the time
    Counted, ///< a later start, without an intent: as cash, exact
};

/// The rows of one payment.
struct Payment
{
    QString id;
    QString purchaseId; ///< empty while there is none
    PaymentState state = PaymentState::Intent;
    QList<PaymentPart> parts;
    Cents total = 0;
    QString items; ///< as the purchase stores them; only kept while they are needed to find it
    QString seller;
    QDateTime taken; ///< UTC
    QString drawer;
    std::int64_t run = 0;
    PaymentOrigin origin = PaymentOrigin::Till;
    QString backWhy; ///< of one that was taken back
};

/// One part, in cash, with nothing to give back.
[[nodiscard]] inline QList<PaymentPart> exactCash(Cents total)
{
    return {{cashWay(), total, total}};
}

/// What goes back to the customer, in cash; negative as long as too little has been handed over.
[[nodiscard]] inline Cents changeOf(const QList<PaymentPart> &parts)
{
    Cents change = 0;
    for (const PaymentPart &part : parts)
        change += part.given - part.amount;
    return change;
}

/// Whether the parts make up the sum, and each is one that can be: cash is at least the amount, another way just that.
[[nodiscard]] inline bool addUp(const QList<PaymentPart> &parts, Cents total)
{
    Cents sum = 0;
    for (const PaymentPart &part : parts) {
        if (part.way.isEmpty() || (part.way == cashWay() ? part.given < part.amount : part.given != part.amount))
            return false;
        sum += part.amount;
    }
    return !parts.isEmpty() && sum == total;
}

} // namespace harrowby::app
