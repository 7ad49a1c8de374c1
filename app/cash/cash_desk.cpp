// SPDX-License-Identifier: MIT
#include "app/cash/cash_desk.h"

#include "app/cash/cash_choices.h"
#include "app/cash/cash_dialog.h"
#include "app/cash/cash_words.h"
#include "app/shop/notice_place.h"

#include <QKeyEvent>
#include <QPointer>
#include <QPushButton>

#include <memory>
#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

CashDesk::CashDesk(Counter &counter, Records &records, Payments &payments, Voice voice) :
    m_counter(counter), m_records(records), m_payments(payments), m_voice(std::move(voice))
{
    connect(
        &m_payments, &Payments::paid, this,
        [this](const QString &, const QList<PaymentPart> &parts, qint64, qint64 change) { tellPaid(parts, change); });
    connect(&m_payments, &Payments::givenBack, this,
            [this](const QString &, qint64 cash, const QList<PaymentPart> &others) {
                sayAmount(givenBackWords(cash, others));
            });
    connect(&m_counter, &Counter::cartChanged, this, &CashDesk::followCart);
}

void CashDesk::furnish()
{
    auto button = std::make_unique<QPushButton>(u"C&ash \u2026"_s);
    button->setObjectName(u"payByCash"_s);
    button->setToolTip(u"How the customer pays, and the change (F11)"_s);
    button->setAccessibleDescription(button->toolTip());
    connect(button.get(), &QPushButton::clicked, this, &CashDesk::pay);
    if (m_counter.addButton(button.get()))
        static_cast<void>(button.release()); // the window's own now
    if (QWidget *window = salesWindow())
        window->installEventFilter(this);
}

/// F11, where no control of the window has taken it.
bool CashDesk::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress)
        return QObject::eventFilter(watched, event);
    const auto *key = static_cast<QKeyEvent *>(event);
    if (key->key() != Qt::Key_F11 || key->modifiers() != Qt::NoModifier)
        return false;
    if (!key->isAutoRepeat()) // queued: the window may be gone when the dialog closes
        QMetaObject::invokeMethod(this, &CashDesk::pay, Qt::QueuedConnection);
    return true;
}

/// Nothing is asked while a box is open, nor of nobody: the window's own refusal says so.
bool CashDesk::isReady()
{
    if (m_counter.isBusy() || !m_counter.isOpen())
        return false;
    if (!m_counter.user()) {
        (void)m_counter.purchase(); // with nobody logged in, nothing is purchased: the gate shows its box
        return false;
    }
    m_counter.finishReading(); // no list stays half read while a box is open
    return true;
}

void CashDesk::pay()
{
    if (!isReady())
        return;
    if (m_counter.cart().empty())
        return m_voice.refuse(u"The cart is empty: there is nothing to pay."_s);
    const auto total = m_payments.sum();
    if (!total)
        return m_voice.refuse(u"This sum cannot be paid here. \"Purchase Cart\" sells it."_s);
    const QPointer<CashDialog> dialog = new CashDialog(*total, readCashChoices(m_records), salesWindow());
    const bool isAccepted = dialog->exec() == QDialog::Accepted && dialog; // the window may have taken it along
    const QList<PaymentPart> parts = isAccepted ? dialog->parts() : QList<PaymentPart>();
    delete dialog.data();
    if (!isAccepted)
        return;
    m_isEntered = true;
    finish(m_payments.pay(parts));
}

void CashDesk::finish(CounterAnswer answer)
{
    if (answer == CounterAnswer::Done)
        return; // the payment's signal follows
    m_isEntered = false;
    if (answer != CounterAnswer::Declined && answer != CounterAnswer::NotLoggedIn && answer != CounterAnswer::NoWindow)
        m_voice.refuse(u"Nothing was sold. Take the money again with \"Cash \u2026\"."_s);
}

/// A purchase by "Purchase Cart" counts as paid exactly, which need not be said; what was to be given back of the same
/// cart, undone before, is settled with it.
void CashDesk::tellPaid(const QList<PaymentPart> &parts, Cents change)
{
    if (std::exchange(m_isEntered, false))
        sayAmount(paidWords(parts, change));
    else if (m_isSaid)
        sayAmount({});
}

void CashDesk::sayAmount(const QString &text)
{
    m_isSaid = !text.isEmpty();
    m_voice.amount(text);
}

/// Until the next item; an emptied cart is none.
void CashDesk::followCart()
{
    if (m_isSaid && !m_counter.cart().empty())
        sayAmount({});
}

} // namespace harrowby::app
