// SPDX-License-Identifier: MIT
#pragma once

#include "app/cash/payment.h"
#include "app/records/records.h"

#include <QDateTime>
#include <QString>

#include <optional>

namespace harrowby::app {

/// The table HarrowbyPayment, one row for each part of a payment. What fails has been told by the records. The
/// functions that write return whether it was written: all of a payment, or nothing of it.
class PaymentTable
{
public:
    template <typename T>
    using Answer = Records::Answer<T>;

    /// The records must outlive it.
    explicit PaymentTable(Records &records) : m_records(records) {}

    /// What is paid for the purchases of that ID, and not taken back.
    [[nodiscard]] Answer<QList<Payment>> ofPurchase(const QString &purchaseId) const;
    /// Those of them for which there is no purchase of that sum.
    [[nodiscard]] Answer<QList<Payment>> withoutTheirs(const QString &purchaseId) const;
    /// All that is in the state Intent or Unmatched, oldest first.
    [[nodiscard]] Answer<QList<Payment>> withoutPurchase(PaymentState state) const;
    /// Nothing when there is none of that ID.
    [[nodiscard]] Answer<std::optional<Payment>> withId(const QString &id) const;

    [[nodiscard]] bool addIntent(const Payment &payment);
    /// As the payment of its purchase, from the till that has sold it. Its intent becomes it, wherever that stands;
    /// what a start has counted for this purchase meanwhile makes room. Where another till has deleted the purchase
    /// already, with all of its ID, it is taken back at once. May be repeated.
    [[nodiscard]] bool record(const Payment &payment);
    /// One that has no purchase.
    [[nodiscard]] bool removeIntent(const QString &id);
    /// What is paid for purchases of that ID that are gone. Another till may have sold anew under it meanwhile.
    [[nodiscard]] bool takeBack(const QString &purchaseId, const QString &why, const QDateTime &moment);

    // For work within a transaction of the caller's.
    [[nodiscard]] bool insert(const Payment &payment);
    [[nodiscard]] bool assign(const QString &id, const QString &purchaseId, PaymentOrigin origin);
    [[nodiscard]] bool takeBackOne(const QString &id, const QString &why, const QDateTime &moment);

private:
    [[nodiscard]] Answer<QList<Payment>> select(const QString &where, const QList<RecordValue> &values) const;
    [[nodiscard]] Answer<QList<Cents>> sumsOf(const QString &purchaseId) const;
    [[nodiscard]] std::optional<bool> makeRoom(const Payment &payment);
    [[nodiscard]] bool release(const Payment &guess);
    [[nodiscard]] bool change(const QString &text, const QList<RecordValue> &values);

    Records &m_records;
};

/// "UNDONE", "DELETED", and "GONE" for what a start has found to be without its purchase.
namespace back_why {
[[nodiscard]] QString undone();
[[nodiscard]] QString deleted();
[[nodiscard]] QString gone();
} // namespace back_why

} // namespace harrowby::app
