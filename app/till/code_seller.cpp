// SPDX-License-Identifier: MIT
#include "app/till/code_seller.h"

#include "app/banner/banner.h"
#include "app/codes/code_text.h"
#include "basic/numbers.h"

#include <utility>
#include <vector>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

using Kind = FoundCode::Kind;
using Reason = CounterMisfit::Reason;

/// Empty for what a box has said already, and for what was sold.
QString wordsOf(CounterAnswer answer, const QString &code, const QString &item)
{
    switch (answer) {
    case CounterAnswer::Unknown:
        return u"%1 is not in stock any more. Nothing was added."_s.arg(item);
    case CounterAnswer::Disabled:
        return u"%1 is switched off in the stock. Nothing was added."_s.arg(item);
    case CounterAnswer::NotInCapitals:
        return u"%1 has small letters in its name. Save it once under \"Add/Edit Stock\"."_s.arg(item);
    case CounterAnswer::Busy:
        return u"The code %1 was not taken: close the box first."_s.arg(code);
    case CounterAnswer::Failed:
    case CounterAnswer::WrongUnits:
        return u"The code %1 was not sold: the store could not be read. Try again."_s.arg(code);
    default:
        return {};
    }
}

QString wordsOf(Reason reason, const QString &item)
{
    switch (reason) {
    case Reason::SoldOut:
    case Reason::NotEnough:
        return u"There is no more of %1 in stock. Nothing was added."_s.arg(item);
    case Reason::Gone:
        return wordsOf(CounterAnswer::Unknown, {}, item);
    case Reason::Disabled:
        return wordsOf(CounterAnswer::Disabled, {}, item);
    case Reason::NotInCapitals:
        return wordsOf(CounterAnswer::NotInCapitals, {}, item);
    default:
        return {};
    }
}

QString boxIsOpen()
{
    return u"A code was not taken: close the box first."_s;
}

QString tooLong()
{
    return u"What was read is too long for a code."_s;
}

/// What the cashier should see that the cart does not say by itself.
QString soldWords(const FoundCode &item)
{
    const QString name = itemWords(item.name, item.stockId);
    if (item.cost)
        return u"%1: %2"_s.arg(name, formatMoney(*item.cost));
    return item.units > 1 ? u"%1 x %2"_s.arg(item.units).arg(name) : QString();
}

} // namespace

CodeSeller::CodeSeller(Counter &counter, Records &records, Banner &banner, std::function<void()> sound,
                       QObject *parent) :
    QObject(parent),
    m_counter(counter), m_finder(records), m_banner(banner), m_sound(std::move(sound))
{
    connect(&m_counter, &Counter::codeRead, this, &CodeSeller::sell);
    connect(&m_counter, &Counter::codeRefused, this, &CodeSeller::tellRefusal);
    // What is said of the last code makes room for what is said of the whole.
    connect(&m_counter, &Counter::loggedOut, this, [this] { m_banner.clear(BannerTopic::Code); });
    connect(&m_counter, &Counter::purchased, this, [this] { m_banner.clear(BannerTopic::Code); });
}

void CodeSeller::sell(const QString &code)
{
    if (!m_counter.isOpen())
        return;
    m_banner.clear(BannerTopic::Code);
    if (!m_counter.user()) {
        m_counter.sell(code); // the gate refuses before anything is looked for
        return;
    }
    const FoundCode found = m_finder.find(code);
    if (found.kind == Kind::Item)
        return sellItem(shownCode(code), found);
    m_counter.codeNotKnown();
    refuse(refusalOf(shownCode(code), found));
}

QString CodeSeller::refusalOf(const QString &code, const FoundCode &found) const
{
    switch (found.kind) {
    case Kind::Orphan:
        return u"The code %1 belongs to an item that is gone. Nothing was added."_s.arg(code);
    case Kind::Several:
        return u"The code %1 is that of two items: %2. Nothing was added."_s.arg(code, found.items.join(u" and "_s));
    case Kind::Odd:
        return u"The code %1 was refused: %2."_s.arg(code, found.problem);
    case Kind::Failed:
        return wordsOf(CounterAnswer::Failed, code, {});
    default:
        return u"Nobody knows the code %1. Nothing was added."_s.arg(code);
    }
}

void CodeSeller::sellItem(const QString &code, const FoundCode &item)
{
    QString misfit;
    const CounterAnswer answer = item.cost ? sellPriced(item, misfit) : m_counter.sell(item.stockId, item.units);
    const QString refusal = misfit.isEmpty() ? wordsOf(answer, code, itemWords(item.name, item.stockId)) : misfit;
    if (!refusal.isEmpty())
        refuse(refusal);
    else if (answer == CounterAnswer::Done)
        m_banner.say(BannerTopic::Code, soldWords(item));
}

/// At the price that the code holds, as a price that was changed by hand.
CounterAnswer CodeSeller::sellPriced(const FoundCode &item, QString &misfit)
{
    std::vector<CounterMisfit> misfits;
    const CounterAnswer answer = m_counter.putCart(
        {CounterLine{item.stockId, item.name.toUpper(), static_cast<double>(item.units), *item.cost, true}}, misfits);
    if (answer == CounterAnswer::Done && misfits.empty())
        Q_EMIT soldAtPriceOfCode(item.stockId, item.units, *item.cost);
    if (!misfits.empty())
        misfit = wordsOf(misfits.front().reason, itemWords(item.name, item.stockId));
    return answer;
}

void CodeSeller::tellRefusal(Counter::CodeRefusal why)
{
    switch (why) {
    case Counter::CodeRefusal::BoxOpen:
        return refuse(boxIsOpen());
    case Counter::CodeRefusal::Mixed:
        return refuse(u"Two readers came at once, and neither code was taken. Scan again, one after the other."_s);
    case Counter::CodeRefusal::TooLong:
        return refuse(tooLong());
    }
}

void CodeSeller::tellDeviceRefusal(CodeReaders::Refusal why)
{
    switch (why) {
    case CodeReaders::Refusal::BoxOpen:
        return refuse(boxIsOpen());
    case CodeReaders::Refusal::TooLong:
        return refuse(tooLong());
    case CodeReaders::Refusal::Waiting:
        return refuse(u"A code was not taken, as the server was being waited for. Scan it again."_s);
    }
}

void CodeSeller::refuse(const QString &text)
{
    m_banner.say(BannerTopic::Code, text, BannerTone::Refused);
    m_sound();
}

} // namespace harrowby::app
