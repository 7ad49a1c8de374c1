// SPDX-License-Identifier: MIT
#pragma once

#include "app/cash/payment.h"

#include <QList>
#include <QString>

/// What a person reads of payments.
namespace harrowby::app {

/// "Card 5.00, Voucher 2.50"
[[nodiscard]] QString chargedWords(const QList<PaymentPart> &parts);

/// All of a payment: "Card 5.00, Cash 7.50 (20.00 given)"
[[nodiscard]] QString tenderWords(const QList<PaymentPart> &parts);

/// What stands at the counter after a payment that was entered.
[[nodiscard]] QString paidWords(const QList<PaymentPart> &parts, Cents change);

/// What is to be given back of a purchase that was undone or deleted; empty for nothing.
[[nodiscard]] QString givenBackWords(Cents cash, const QList<PaymentPart> &others);

} // namespace harrowby::app
