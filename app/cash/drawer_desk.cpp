// SPDX-License-Identifier: MIT
#include "app/cash/drawer_desk.h"

#include "app/boxes/office_box.h"
#include "app/cash/drawer_dialog.h"
#include "app/cash/drawer_openings.h"
#include "app/cash/payments.h"
#include "app/shop/notice_place.h"
#include "basic/logging.h"

#include <QPointer>
#include <QPushButton>

#include <algorithm>
#include <memory>
#include <vector>

using namespace Qt::StringLiterals;

namespace harrowby::app {

QString drawerAdvice(const QString &queue)
{
    if (queue.isEmpty())
        return u"Open it with its key. Choose its printer in the office, page \"Cash\", then start the till again."_s;
    return u"Open it with its key. Check that the printer \"%1\" is on and connected, and that it is the one in the "
           "office, page \"Cash\"."_s.arg(queue);
}

DrawerDesk::DrawerDesk(Counter &counter, Records &records, Payments &payments, const DrawerSettings &settings,
                       const DrawerOptions &options) :
    m_counter(counter),
    m_records(records), m_payments(payments), m_drawer(
                                                  settings, [this](const QString &reason) { tell(reason); }, options)
{
    connect(&payments, &Payments::paid, this, &DrawerDesk::followPayment);
    connect(&payments, &Payments::givenBack, this, [this](const QString &, qint64 cash) {
        if (cash > 0)
            m_drawer.open();
    });
}

void DrawerDesk::furnish()
{
    if (!m_drawer.settings().isOn)
        return;
    auto button = std::make_unique<QPushButton>(u"Open Dra&wer"_s);
    button->setObjectName(u"openDrawer"_s);
    const auto description = u"Opens the cash drawer without a sale"_s;
    button->setToolTip(description);
    button->setAccessibleDescription(description);
    connect(button.get(), &QPushButton::clicked, this, &DrawerDesk::openByHand);
    if (m_counter.addButton(button.get()))
        static_cast<void>(button.release()); // the window's own now
}

void DrawerDesk::followPayment(const QString &, const QList<PaymentPart> &parts)
{
    const bool isInCash = std::any_of(parts.cbegin(), parts.cend(),
                                      [](const PaymentPart &part) { return part.way == cashWay() && part.given > 0; });
    if (isInCash)
        m_drawer.open();
}

/// Nothing is asked while a box is open, nor of nobody: the window's own refusal says so.
bool DrawerDesk::mayOpen()
{
    if (m_counter.isBusy() || !m_counter.isOpen())
        return false;
    const auto user = m_counter.user();
    if (!user) {
        std::vector<CounterLine> none; // with nobody logged in, nothing is taken: the gate shows its box
        (void)m_counter.takeCart(none);
        return false;
    }
    if (!user->rights.settings)
        tellInOffice(salesWindow(), u"User [%1] doesn't have this privilege!"_s.arg(user->name));
    return user->rights.settings;
}

void DrawerDesk::openByHand()
{
    if (!mayOpen())
        return;
    m_counter.finishReading(); // no list stays half read while the dialog is open
    const QPointer<DrawerDialog> dialog(new DrawerDialog(salesWindow()));
    const bool isAccepted = dialog->exec() == QDialog::Accepted && dialog;
    const QString reason = isAccepted ? dialog->reason() : QString();
    delete dialog.data(); // unless the window has done so
    const auto user = m_counter.user();
    if (reason.isEmpty() || !user)
        return;
    // What cannot be recorded is told by the records, and the drawer stays shut: it has a key.
    if (!recordOpening(m_records, {QDateTime::currentDateTimeUtc(), user->name, m_payments.drawer(), reason}))
        return;
    qCWarning(lcWindow).noquote() << "The cash drawer" << m_payments.drawer() << "is opened by" << user->name << '-'
                                  << reason;
    m_drawer.open();
}

void DrawerDesk::tell(const QString &reason)
{
    if (reason.isEmpty())
        Q_EMIT opened();
    else
        Q_EMIT failed(m_drawer.settings().queue, reason);
}

} // namespace harrowby::app
