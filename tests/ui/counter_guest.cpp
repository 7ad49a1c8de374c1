// SPDX-License-Identifier: MIT
#include "tests/ui/counter_guest.h"

#include <QCoreApplication>

#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::test {

Guest::Guest()
{
    harrowby::Counter *const counter = &harrowby::Counter::instance();
    const auto write = [this](const QString &text) { m_heard << text; };
    connect(counter, &harrowby::Counter::windowOpened, this, [write] { write(u"windowOpened"_s); });
    connect(counter, &harrowby::Counter::windowClosed, this, [write] { write(u"windowClosed"_s); });
    connect(counter, &harrowby::Counter::loggedIn, this, [this, write](const CounterUser &user) {
        users.push_back(user);
        write(u"loggedIn "_s + user.name);
    });
    connect(counter, &harrowby::Counter::loggedOut, this,
            [write](const QString &name) { write(u"loggedOut "_s + name); });
    connect(counter, &harrowby::Counter::loginRefused, this,
            [write](const QString &name) { write(u"loginRefused "_s + name); });
    connect(counter, &harrowby::Counter::cartChanged, this, [write] { write(u"cartChanged"_s); });
    connect(counter, &harrowby::Counter::purchased, this, [this, write](const CounterPurchase &purchase) {
        purchases.push_back(purchase);
        write(u"purchased "_s + purchase.id);
    });
    connect(counter, &harrowby::Counter::purchaseUndone, this,
            [write](const QString &id) { write(u"purchaseUndone "_s + id); });
    connect(counter, &harrowby::Counter::purchaseDeleted, this,
            [write](const QString &id) { write(u"purchaseDeleted "_s + id); });
    connect(counter, &harrowby::Counter::stockSaved, this,
            [write](const QString &oldId, const QString &newId) { write(u"stockSaved "_s + oldId + u">"_s + newId); });
    connect(counter, &harrowby::Counter::stockDeleted, this,
            [write](const QString &id) { write(u"stockDeleted "_s + id); });
}

QStringList Guest::heard()
{
    qsizetype before = -1;
    while (std::exchange(before, m_heard.size()) != m_heard.size())
        QCoreApplication::processEvents(); // what a slot has done is told in the next round
    return std::exchange(m_heard, {});
}

QString lineText(const CounterLine &line)
{
    return u"%1|%2|%3|%4|%5"_s.arg(line.stockId, line.name)
        .arg(line.quantity)
        .arg(line.cost, 0, 'g', 12)
        .arg(line.costByHand ? u"hand"_s : QString());
}

QStringList lineTexts(const std::vector<CounterLine> &lines)
{
    QStringList texts;
    for (const CounterLine &line : lines)
        texts << lineText(line);
    return texts;
}

QStringList misfitTexts(const std::vector<CounterMisfit> &misfits)
{
    using Reason = CounterMisfit::Reason;
    const QMap<Reason, QString> reasons{
        {Reason::SoldOut, u"sold out"_s},   {Reason::NotEnough, u"not enough"_s},
        {Reason::PriceChanged, u"price"_s}, {Reason::Gone, u"gone"_s},
        {Reason::Disabled, u"disabled"_s},  {Reason::NotInCapitals, u"not in capitals"_s},
        {Reason::NotRead, u"not read"_s}};
    QStringList texts;
    for (const CounterMisfit &misfit : misfits)
        texts << u"%1: %2 -> %3|%4"_s.arg(reasons.value(misfit.reason), lineText(misfit.line))
                     .arg(misfit.quantity)
                     .arg(misfit.cost, 0, 'g', 12);
    return texts;
}

void openForGuests(Counter &till)
{
    till.file.addUser(u"ANN"_s, u"PW"_s, {u"Sales"_s, u"Undo"_s, u"Delete"_s, u"Settings"_s, u"Reorder"_s});
    till.file.addItem(u"A1"_s, u"TEA"_s, 2.5, 10);
    till.file.addItem(u"a2"_s, u"GREEN TEA"_s, 3, 5);
    till.file.addItem(u"S1"_s, u"SAFE"_s, 1250, 3);
    till.file.addItem(u"X1"_s, u"OLD TEA"_s, 1, 10, u"DRINKS"_s, u"Disabled"_s);
    till.file.addItem(u"M1"_s, u"Mint tea"_s, 1, 10);
    till.open();
    till.logIn(u"ANN"_s, u"PW"_s);
}

const char *name(CounterAnswer answer)
{
    constexpr const char *names[] = {"Done",          "NotLoggedIn", "NoRight",   "Unknown",   "Disabled",
                                     "NotInCapitals", "NotEnough",   "Declined",  "CartEmpty", "Busy",
                                     "NoWindow",      "Failed",      "WrongUnits"};
    return names[static_cast<int>(answer)];
}

} // namespace harrowby::test
