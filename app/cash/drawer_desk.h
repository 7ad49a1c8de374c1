// SPDX-License-Identifier: MIT
#pragma once

#include "app/cash/drawer.h"
#include "app/cash/payment.h"

#include <harrowby/counter.h>

#include <QObject>
#include <QString>

namespace harrowby::app {

class Payments;
class Records;

/// What to do when the printer of that queue has not opened the drawer.
[[nodiscard]] QString drawerAdvice(const QString &queue);

/// The cash drawer at the counter: opened by each sale that is paid in cash, by each that is taken back and whose cash
/// is given back, and by a person with the right to settings, who gives a reason that is recorded first. Without a
/// drawer that is switched on there is no button, and nothing happens.
class DrawerDesk final : public QObject
{
    Q_OBJECT

public:
    /// All must outlive it.
    DrawerDesk(Counter &counter, Records &records, Payments &payments, const DrawerSettings &settings,
               const DrawerOptions &options = {});

    /// Puts the button into a window that has opened.
    void furnish();
    void openByHand();

Q_SIGNALS:
    void opened();
    /// The printer of that queue has not taken it, and will not do so later.
    void failed(const QString &queue, const QString &reason);

private:
    void followPayment(const QString &purchaseId, const QList<PaymentPart> &parts);
    void tell(const QString &reason);
    [[nodiscard]] bool mayOpen();

    Counter &m_counter;
    Records &m_records;
    Payments &m_payments;
    Drawer m_drawer;
};

} // namespace harrowby::app
