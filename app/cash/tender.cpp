// SPDX-License-Identifier: MIT
#include "app/cash/tender.h"

#include <numeric>

namespace harrowby::app {

bool Tender::type(QChar key)
{
    AmountEntry typed = m_notes.isEmpty() ? m_keyed : AmountEntry();
    if (!typed.type(key))
        return false;
    m_notes.clear();
    m_keyed = typed;
    return true;
}

void Tender::erase()
{
    if (m_notes.isEmpty())
        m_keyed.erase();
    else
        m_notes.removeLast();
}

void Tender::clear()
{
    m_notes.clear();
    m_keyed.clear();
}

void Tender::addNote(Cents note)
{
    if (const Cents keyed = m_keyed.cents(); keyed > 0)
        m_notes << keyed;
    m_keyed.clear();
    m_notes << note;
}

void Tender::giveExactly()
{
    clear();
    m_notes << due();
}

Tender::Charged Tender::charge(const QString &way)
{
    const Cents left = due();
    const Cents amount = given() > 0 ? given() : left;
    if (left <= 0)
        return Charged::NothingDue;
    if (amount > left)
        return Charged::TooMuch;
    clear();
    m_charged << PaymentPart{way, amount, amount};
    return Charged::Done;
}

void Tender::takeBack()
{
    if (!m_charged.isEmpty())
        m_charged.removeLast();
    clear();
}

Cents Tender::due() const
{
    return std::accumulate(m_charged.cbegin(), m_charged.cend(), m_total,
                           [](Cents left, const PaymentPart &part) { return left - part.amount; });
}

Cents Tender::given() const
{
    return std::accumulate(m_notes.cbegin(), m_notes.cend(), m_keyed.cents());
}

QList<PaymentPart> Tender::parts() const
{
    QList<PaymentPart> parts = m_charged;
    if (parts.isEmpty() || due() != 0 || given() != 0)
        parts << PaymentPart{cashWay(), due(), given()};
    return parts;
}

} // namespace harrowby::app
