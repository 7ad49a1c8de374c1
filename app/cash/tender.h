// SPDX-License-Identifier: MIT
#pragma once

#include "app/cash/amount_entry.h"
#include "app/cash/payment.h"

#include <QList>
#include <QString>

namespace harrowby::app {

/// What a customer hands over for one purchase, while it is entered. All amounts in cents.
///
/// What is handed over in cash is keyed in, or built up of notes: a note is added to what is there, and the first digit
/// after a note begins anew. Other ways of paying are charged a part of the sum, never more.
class Tender
{
public:
    enum class Charged {
        Done,
        NothingDue, ///< other ways pay the whole sum already
        TooMuch,    ///< more was entered than is due
    };

    explicit Tender(Cents total) : m_total(total) {}

    /// A key of AmountEntry; false for any other.
    bool type(QChar key);
    /// Takes the last note back, or the last key.
    void erase();
    void clear();
    void addNote(Cents note);
    /// Just what is due is handed over.
    void giveExactly();
    /// Charges what was entered to another way of paying, or all that is due when nothing was.
    Charged charge(const QString &way);
    /// Takes the last charge back.
    void takeBack();

    [[nodiscard]] Cents total() const { return m_total; }
    [[nodiscard]] const QList<PaymentPart> &charged() const { return m_charged; }
    /// What the other ways leave to be paid in cash.
    [[nodiscard]] Cents due() const;
    /// Handed over in cash.
    [[nodiscard]] Cents given() const;
    [[nodiscard]] bool isEnough() const { return change() >= 0; }
    [[nodiscard]] Cents change() const { return changeOf(parts()); }
    /// As a payment, which can be made once it is enough.
    [[nodiscard]] QList<PaymentPart> parts() const;

private:
    Cents m_total;
    QList<PaymentPart> m_charged;
    QList<Cents> m_notes; ///< and what was keyed in before them
    AmountEntry m_keyed;
};

} // namespace harrowby::app
