// SPDX-License-Identifier: MIT
#include "app/hold/hold_words.h"

#include "basic/numbers.h"
#include "basic/text.h"

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

using Reason = CounterMisfit::Reason;

QString reasonWords(const CounterMisfit &misfit)
{
    switch (misfit.reason) {
    case Reason::SoldOut:
        return u"sold out: left out"_s;
    case Reason::NotEnough:
        return misfit.quantity > 0 ? u"only %1 left"_s.arg(plainText(misfit.quantity)) : u"no more left: left out"_s;
    case Reason::PriceChanged:
        return u"at the price of today"_s;
    case Reason::Gone:
        return u"no such item any more: left out"_s;
    case Reason::Disabled:
        return u"no longer for sale: left out"_s;
    case Reason::NotInCapitals:
        return u"its name cannot be sold now: left out"_s;
    case Reason::NotRead:
        break;
    }
    return u"not checked: the store could not be read"_s;
}

QString wasWords(const CounterMisfit &misfit)
{
    return u"%1 for %2"_s.arg(plainText(misfit.line.quantity), formatMoney(misfit.line.cost));
}

QString nowWords(const CounterMisfit &misfit)
{
    if (misfit.quantity == 0)
        return u"\u2013"_s;
    return u"%1 for %2"_s.arg(plainText(misfit.quantity), formatMoney(misfit.cost));
}

} // namespace

QString cartWords(std::size_t lines, double total)
{
    const QString count = lines == 1 ? u"1 line"_s : u"%1 lines"_s.arg(lines);
    return count + u", "_s + formatMoney(total);
}

tables::Table heldTable(const QList<HeldCart> &carts)
{
    using tables::Kind;
    tables::Table table;
    table.columns = {{u"Held as"_s, Kind::Text, true, static_cast<int>(longestLabel)},
                     {u"Since"_s, Kind::Text, false},
                     {u"By"_s, Kind::Text, false},
                     {u"Lines"_s, Kind::Count, false},
                     {u"Total"_s, Kind::Money, false}};
    for (const HeldCart &cart : carts)
        table.rows.push_back(
            {cart.word, cart.since.toString(u"MM-dd HH:mm"_s), cart.user, static_cast<double>(cart.lines), cart.total});
    return table;
}

tables::Table misfitTable(const std::vector<CounterMisfit> &misfits)
{
    using tables::Kind;
    tables::Table table;
    constexpr int lettersOfName = 30;
    constexpr int lettersOfReason = 40;
    table.columns = {{u"Item"_s, Kind::Text, true, lettersOfName},
                     {u"Was"_s, Kind::Text, false},
                     {u"Now"_s, Kind::Text, false},
                     {u"Why"_s, Kind::Text, false, lettersOfReason}};
    for (const CounterMisfit &misfit : misfits)
        table.rows.push_back({misfit.line.name, wasWords(misfit), nowWords(misfit), reasonWords(misfit)});
    return table;
}

QStringList misfitLines(const std::vector<CounterMisfit> &misfits)
{
    QStringList lines;
    for (const CounterMisfit &misfit : misfits)
        lines << u"%1: was %2, now %3 (%4)"_s.arg(misfit.line.name, wasWords(misfit), nowWords(misfit),
                                                  reasonWords(misfit));
    return lines;
}

} // namespace harrowby::app
