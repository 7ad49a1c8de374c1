// SPDX-License-Identifier: MIT
#pragma once

#include "app/cash/payments.h"

#include <QObject>
#include <QString>

#include <functional>

namespace harrowby::app {

/// "Cash …" at the counter: its button in the window's row and its key F11, what it asks, and what then stands at the
/// counter until the next item: the change, or what is to be given back.
class CashDesk final : public QObject
{
    Q_OBJECT

public:
    /// How it speaks, beside the window's own texts.
    struct Voice
    {
        std::function<void(const QString &text)> refuse;
        std::function<void(const QString &text)> amount; ///< large; empty: there is nothing more to say
    };

    /// All must outlive it.
    CashDesk(Counter &counter, Records &records, Payments &payments, Voice voice);

    /// Puts the button into a window that has opened.
    void furnish();

    void pay();

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    [[nodiscard]] bool isReady();
    void finish(CounterAnswer answer);
    void tellPaid(const QList<PaymentPart> &parts, Cents change);
    void sayAmount(const QString &text);
    void followCart();

    Counter &m_counter;
    Records &m_records;
    Payments &m_payments;
    Voice m_voice;
    bool m_isEntered = false; ///< the purchase that is to be told of was paid by pay()
    bool m_isSaid = false;
};

} // namespace harrowby::app
