// SPDX-License-Identifier: MIT
#pragma once

#include "app/cash/payment_table.h"

#include <QDateTime>
#include <QList>
#include <QString>

namespace harrowby::app {

/// What is to be written of payments, in the order in which it happened; what could not be written is tried again.
class PaymentQueue
{
public:
    /// The table must outlive it.
    explicit PaymentQueue(PaymentTable &table) : m_table(table) {}

    void record(const Payment &payment) { m_works << Work{Work::Record, payment, {}, {}}; }
    void removeIntent(const Payment &payment) { m_works << Work{Work::Remove, payment, {}, {}}; }
    void takeBack(const QString &purchaseId, const QString &why, const QDateTime &moment);

    /// Writes what there is. A payment that comes after the end of its purchase is taken back at once by the table.
    void write();
    [[nodiscard]] bool isEmpty() const { return m_works.isEmpty(); }

private:
    struct Work
    {
        enum Kind {
            Record,
            Remove,
            TakeBack,
        };
        Kind kind = Record;
        Payment payment;
        QString why;
        QDateTime moment;
    };

    [[nodiscard]] bool isDone(const Work &work);

    PaymentTable &m_table;
    QList<Work> m_works;
};

} // namespace harrowby::app
