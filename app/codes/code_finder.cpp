// SPDX-License-Identifier: MIT
#include "app/codes/code_finder.h"

#include "app/codes/code_text.h"
#include "app/codes/gtin.h"
#include "app/codes/in_store_rule.h"
#include "basic/cart_arithmetic.h"
#include "basic/numbers.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

using Kind = FoundCode::Kind;

FoundCode failed()
{
    FoundCode found;
    found.kind = Kind::Failed;
    return found;
}

FoundCode hit(const QString &id, const QString &name, int units)
{
    FoundCode found;
    found.kind = Kind::Item;
    found.stockId = id;
    found.name = name;
    found.units = units;
    return found;
}

bool isSameItem(const FoundCode &a, const FoundCode &b)
{
    return a.stockId == b.stockId && a.name == b.name;
}

/// The one item that all hits name. Of several entries of one item the exact one tells the units: it stands first where
/// `isExact`. `isEntered`: an entry of the code exists, maybe without its item.
FoundCode judged(const QList<FoundCode> &hits, bool isExact, bool isEntered)
{
    FoundCode found;
    if (hits.isEmpty()) {
        found.kind = isEntered ? Kind::Orphan : Kind::Unknown;
        return found;
    }
    const FoundCode &first = hits.constFirst();
    for (const FoundCode &other : hits) {
        if (isSameItem(first, other) && (isExact || first.units == other.units))
            continue;
        found.kind = Kind::Several;
        found.items = QStringList{itemWords(first.name, first.stockId), itemWords(other.name, other.stockId)};
        return found;
    }
    return first;
}

/// The number, and again with each of its leading zeros taken away in turn: "0042", "042", "42".
QStringList withoutZeros(QString number)
{
    QStringList numbers = {number};
    while (number.size() > 1 && number.startsWith(u'0')) {
        number.remove(0, 1);
        numbers << number;
    }
    return numbers;
}

} // namespace

FoundCode CodeFinder::find(const QString &text) const
{
    const auto code = checkCode(text);
    if (!code) {
        FoundCode odd;
        odd.kind = Kind::Odd;
        odd.problem = code.error();
        return odd;
    }
    FoundCode found = findAmong(*code, gtinSpellings(*code));
    return found.kind == Kind::Unknown ? findByRule(*code) : found;
}

FoundCode CodeFinder::findAmong(const QString &exact, const QStringList &spellings) const
{
    const QStringList all = spellings.isEmpty() ? QStringList(exact) : spellings;
    const auto items = m_table.itemsWithIds(all);
    const auto entries = items ? m_table.entries(all) : Records::Answer<QList<ItemCode>>(Unexpected(items.error()));
    if (!entries)
        return failed();
    QList<FoundCode> hits;
    QList<FoundCode> inOtherLengths;
    for (const StockItem &item : *items)
        (item.id == exact ? hits : inOtherLengths) << hit(item.id, item.name, 1);
    for (const ItemCode &entry : *entries) {
        if (!entry.isOrphan)
            (entry.code == exact ? hits : inOtherLengths) << hit(entry.stockId, entry.name, entry.units);
    }
    const bool isExact = !hits.isEmpty();
    hits << inOtherLengths;
    return judged(hits, isExact, !entries->isEmpty());
}

FoundCode CodeFinder::findByRule(const QString &code) const
{
    const auto whole = inStoreCode(code);
    if (!whole)
        return {};
    const auto rules = m_settings.startingWith(inStoreSetting(whole->first(2)));
    if (!rules)
        return failed(); // which is not the same as nobody's code
    const auto rule = rules->isEmpty() ? std::nullopt : InStoreRule::fromText(rules->constFirst().second);
    const auto reading = rule ? rule->read(*whole) : std::nullopt;
    if (!reading)
        return {};
    const QStringList numbers = withoutZeros(reading->itemNumber);
    const FoundCode item = findAmong(numbers.constFirst(), numbers);
    return item.kind == Kind::Item ? priced(item, reading->isWeight, reading->amount) : item;
}

/// One unit, a pack, whatever it weighs: the cart counts whole units only.
FoundCode CodeFinder::priced(FoundCode item, bool isWeight, double amount) const
{
    item.units = 1;
    double cost = amount;
    if (isWeight) {
        const auto items = m_table.itemsWithIds({item.stockId});
        if (!items || items->isEmpty())
            return failed();
        cost *= asStored(unitCost(items->constFirst().cost));
    }
    cost = leadingNumber(formatFixed(cost));
    if (cost > 0) {
        item.cost = cost;
        return item;
    }
    FoundCode odd;
    odd.kind = Kind::Odd;
    odd.problem = u"%1 has no price for a weight"_s.arg(itemWords(item.name, item.stockId));
    return odd;
}

QString inStoreSetting(const QString &prefix)
{
    return u"InStoreCode."_s + prefix;
}

} // namespace harrowby::app
