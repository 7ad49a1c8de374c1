// SPDX-License-Identifier: MIT
#include "app/cash/cash_words.h"

#include <QStringList>

using namespace Qt::StringLiterals;

namespace harrowby::app {

QString chargedWords(const QList<PaymentPart> &parts)
{
    QStringList words;
    for (const PaymentPart &part : parts)
        words << u"%1 %2"_s.arg(part.way, centsText(part.amount));
    return words.join(u", "_s);
}

QString tenderWords(const QList<PaymentPart> &parts)
{
    QStringList words;
    for (const PaymentPart &part : parts) {
        const QString paid = u"%1 %2"_s.arg(part.way, centsText(part.amount));
        words << (part.given == part.amount ? paid : u"%1 (%2 given)"_s.arg(paid, centsText(part.given)));
    }
    return words.join(u", "_s);
}

QString paidWords(const QList<PaymentPart> &parts, Cents change)
{
    QList<PaymentPart> others;
    for (const PaymentPart &part : parts) {
        if (part.way == cashWay())
            return u"Change: %1"_s.arg(centsText(change));
        others << part;
    }
    return u"Paid: %1"_s.arg(chargedWords(others));
}

QString givenBackWords(Cents cash, const QList<PaymentPart> &others)
{
    if (others.isEmpty())
        return cash == 0 ? QString() : u"Give back: %1"_s.arg(centsText(cash));
    if (cash == 0)
        return u"Give back: %1"_s.arg(chargedWords(others));
    return u"Give back: %1, %2"_s.arg(centsText(cash), chargedWords(others));
}

} // namespace harrowby::app
