// SPDX-License-Identifier: MIT
#include "app/codes/in_store_rule.h"

#include "app/codes/gtin.h"

#include <algorithm>
#include <array>
#include <cmath>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr qsizetype patternLength = 13;

/// By the digit, what it weighs: the standard's tables "2-", "3", "5+" and "5-".
using Weights = std::array<int, 10>;
constexpr Weights twoMinus = {0, 2, 4, 6, 8, 9, 1, 3, 5, 7};
constexpr Weights three = {0, 3, 6, 9, 2, 5, 8, 1, 4, 7};
constexpr Weights fivePlus = {0, 5, 1, 6, 2, 7, 3, 8, 4, 9};
constexpr Weights fiveMinus = {0, 5, 9, 4, 8, 3, 7, 2, 6, 1};

int weighed(const QString &digits, std::initializer_list<const Weights *> weights)
{
    int sum = 0;
    qsizetype i = 0;
    for (const Weights *weight : weights)
        sum += weight->at(static_cast<std::size_t>(digits.at(i++).digitValue()));
    return sum;
}

/// How often the sign stands in the pattern; -1 when others stand between.
qsizetype runOf(QChar sign, const QString &pattern)
{
    const qsizetype count = pattern.count(sign);
    return count > 0 && pattern.lastIndexOf(sign) - pattern.indexOf(sign) + 1 != count ? -1 : count;
}

bool isAmountChecked(qsizetype length)
{
    return length == 4 || length == 5;
}

QString problemOf(const QString &pattern)
{
    if (pattern.size() != patternLength)
        return u"A pattern has 13 signs."_s;
    if (!inStorePrefixes().contains(pattern.first(2)))
        return u"A pattern begins with 02, or with 20 to 29."_s;
    if (!pattern.endsWith(u'C') || pattern.count(u'C') != 1)
        return u"A pattern ends with C, the check digit."_s;
    const auto isSign = [](QChar c) { return (c >= u'0' && c <= u'9') || u"IPWVC."_s.contains(c); };
    if (!std::all_of(pattern.begin(), pattern.end(), isSign))
        return u"A pattern holds digits, I, P, W, V, C and points only."_s;
    const qsizetype price = runOf(u'P', pattern);
    const qsizetype weight = runOf(u'W', pattern);
    if (runOf(u'I', pattern) < 1)
        return u"The item's number, I, must stand in one piece."_s;
    if (price < 0 || weight < 0 || (price > 0) == (weight > 0))
        return u"Either a price, P, or a weight, W, must stand in one piece."_s;
    if (pattern.count(u'V') > 1 || (pattern.contains(u'V') && !isAmountChecked(price + weight)))
        return u"V checks a price or a weight of 4 or 5 digits."_s;
    return {};
}

} // namespace

const QStringList &inStorePrefixes()
{
    static const QStringList prefixes = {u"02"_s, u"20"_s, u"21"_s, u"22"_s, u"23"_s, u"24"_s,
                                         u"25"_s, u"26"_s, u"27"_s, u"28"_s, u"29"_s};
    return prefixes;
}

std::optional<QString> inStoreCode(const QString &code)
{
    for (const QString &spelling : gtinSpellings(code)) {
        if (spelling.size() == patternLength && inStorePrefixes().contains(spelling.first(2)))
            return spelling;
    }
    return {};
}

int amountCheckDigit(const QString &digits)
{
    if (digits.size() == 4)
        return 3 * weighed(digits, {&twoMinus, &twoMinus, &three, &fiveMinus}) % 10;
    const int sum = weighed(digits, {&fivePlus, &twoMinus, &fiveMinus, &fivePlus, &twoMinus});
    const int lacking = (10 - sum % 10) % 10;
    return static_cast<int>(std::find(fiveMinus.begin(), fiveMinus.end(), lacking) - fiveMinus.begin());
}

Result<InStoreRule, QString> InStoreRule::fromPattern(const QString &pattern, int decimals)
{
    if (const QString problem = problemOf(pattern); !problem.isEmpty())
        return Unexpected(problem);
    const InStoreRule rule(pattern, decimals);
    const int most = rule.isWeight() ? mostWeightDecimals : mostPriceDecimals;
    if (decimals < 0 || decimals > most)
        return Unexpected(u"A %1 has at most %2 decimals."_s.arg(rule.isWeight() ? u"weight"_s : u"price"_s).arg(most));
    return rule;
}

std::optional<InStoreRule> InStoreRule::fromText(const QString &text)
{
    const QStringList parts = text.split(u' ');
    if (parts.size() != 2 || parts.at(1).size() != 1 || !isDigits(parts.at(1)))
        return {};
    const auto rule = fromPattern(parts.at(0), parts.at(1).front().digitValue());
    return rule ? std::optional(*rule) : std::nullopt;
}

QString InStoreRule::text() const
{
    return m_pattern + u' ' + QString::number(m_decimals);
}

QString InStoreRule::digitsAt(QChar sign, const QString &code) const
{
    const qsizetype at = m_pattern.indexOf(sign);
    return at < 0 ? QString() : code.sliced(at, m_pattern.count(sign));
}

std::optional<InStoreReading> InStoreRule::read(const QString &code) const
{
    const auto whole = inStoreCode(code);
    if (!whole)
        return {};
    for (qsizetype i = 0; i < patternLength; ++i) {
        if (m_pattern.at(i).isDigit() && m_pattern.at(i) != whole->at(i))
            return {};
    }
    const QString amount = digitsAt(isWeight() ? u'W' : u'P', *whole);
    const QString check = digitsAt(u'V', *whole);
    if (!check.isEmpty() && amountCheckDigit(amount) != check.front().digitValue())
        return {};
    const int number = amount.toInt(); // at most 9 digits are left for it
    if (number == 0)
        return {};
    return InStoreReading{digitsAt(u'I', *whole), isWeight(), number / std::pow(10.0, m_decimals)};
}

} // namespace harrowby::app
