// SPDX-License-Identifier: MIT
#include "app/till/till_deeds.h"

#include "basic/numbers.h"

#include <cmath>
#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr double halfACent = 0.005;

QString cost(double amount)
{
    return formatFixed(amount);
}

} // namespace

TillDeeds::TillDeeds(Counter &counter, Records &records, const QString &till) :
    m_counter(counter), m_records(records), m_deeds(records, tillPlace(till))
{
    connect(&counter, &Counter::cartChanged, this, &TillDeeds::followCart);
    connect(&counter, &Counter::purchased, this, &TillDeeds::followPurchase);
    connect(&counter, &Counter::loginRefused, this, &TillDeeds::followRefusal);
    connect(&counter, &Counter::purchaseUndone, this,
            [this](const QString &id) { add(deed::purchaseUndone, u"The last purchase, %1, was undone."_s.arg(id)); });
    connect(&counter, &Counter::purchaseDeleted, this,
            [this](const QString &id) { add(deed::purchaseDeleted, u"The purchase %1 was deleted."_s.arg(id)); });
    connect(&counter, &Counter::stockDeleted, this,
            [this](const QString &id) { add(deed::itemDeleted, u"The item with the ID %1 was deleted."_s.arg(id)); });
}

void TillDeeds::notePriceOfCode(const QString &stockId, double units, double cost)
{
    Sum &sum = m_ofCodes[stockId];
    sum.units += units;
    sum.cost += cost;
}

/// What codes have priced counts for as long as its line is in the cart, and in the purchase that empties the cart,
/// which is told right behind that change.
void TillDeeds::followCart()
{
    m_emptied.clear();
    if (m_ofCodes.isEmpty())
        return;
    QHash<QString, Sum> left;
    const auto cart = m_counter.cart();
    for (const CounterLine &line : cart) {
        if (line.costByHand && m_ofCodes.contains(line.stockId))
            left.insert(line.stockId, m_ofCodes.value(line.stockId));
    }
    std::swap(m_ofCodes, left);
    if (cart.empty())
        m_emptied = std::move(left);
}

void TillDeeds::followPurchase(const CounterPurchase &purchase)
{
    const auto ofCodes = std::exchange(m_emptied, {});
    if (purchase.row == CounterPurchase::Row::NotWritten)
        return;
    QList<RecordStatement> deeds;
    for (const CounterLine &line : purchase.lines) {
        const auto words = line.costByHand ? priceWords(line, ofCodes.value(line.stockId)) : std::nullopt;
        if (words)
            deeds << m_deeds.statement({deed::priceByHand, purchase.user, *words + u", purchase "_s + purchase.id});
    }
    if (!deeds.isEmpty())
        (void)m_records.writeTogether(kept::activity(), deeds); // what fails is told by the records
}

/// Nothing when the cost is what item and codes say.
std::optional<QString> TillDeeds::priceWords(const CounterLine &line, const Sum &ofCodes) const
{
    const QString sold =
        u"%1 x %2 (%3) sold for %4"_s.arg(plainText(line.quantity), line.name, line.stockId, cost(line.cost));
    const auto price = priceOf(line.stockId);
    if (!price)
        return sold + u", its own price is not known"_s;
    const double usual = ofCodes.cost + (line.quantity - ofCodes.units) * *price;
    if (std::abs(usual - line.cost) < halfACent)
        return std::nullopt;
    return sold + u" instead of %1"_s.arg(cost(usual));
}

std::optional<double> TillDeeds::priceOf(const QString &stockId) const
{
    const auto rows = m_records.read({u"select StockCost from StockList where StockID = ?"_s, {stockId}});
    if (!rows || rows->isEmpty())
        return {};
    return recordReal(rows->constFirst().constFirst());
}

/// A name that the store does not have is not kept: it may be a password that went into the wrong field, and what is
/// kept here cannot be deleted.
void TillDeeds::followRefusal(const QString &name)
{
    if (name.isEmpty())
        return;
    const auto rows = m_records.read({u"select 1 from Users where upper(Username) = ?"_s, {name}});
    if (rows && !rows->isEmpty())
        (void)m_deeds.add({deed::loginRefused, name, u"The till refused to log in %1."_s.arg(name)});
    else
        (void)m_deeds.add(
            {deed::loginRefused, {}, u"The till refused to log in somebody whose name the store does not have."_s});
}

QString TillDeeds::user() const
{
    const auto user = m_counter.user();
    return user ? user->name : QString();
}

void TillDeeds::add(const QString &kind, const QString &what)
{
    (void)m_deeds.add({kind, user(), what}); // what fails is told by the records
}

} // namespace harrowby::app
