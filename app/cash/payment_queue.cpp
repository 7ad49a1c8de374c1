// SPDX-License-Identifier: MIT
#include "app/cash/payment_queue.h"

namespace harrowby::app {

void PaymentQueue::takeBack(const QString &purchaseId, const QString &why, const QDateTime &moment)
{
    Payment payment;
    payment.purchaseId = purchaseId;
    m_works << Work{Work::TakeBack, payment, why, moment};
}

void PaymentQueue::write()
{
    m_works.removeIf([this](const Work &work) { return isDone(work); });
}

bool PaymentQueue::isDone(const Work &work)
{
    switch (work.kind) {
    case Work::Record:
        return m_table.record(work.payment);
    case Work::Remove:
        return m_table.removeIntent(work.payment.id);
    case Work::TakeBack:
        return m_table.takeBack(work.payment.purchaseId, work.why, work.moment);
    }
    return true;
}

} // namespace harrowby::app
