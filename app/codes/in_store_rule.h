// SPDX-License-Identifier: MIT
#pragma once

#include "basic/result.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace harrowby::app {

/// What a code that the shop's own scale prints has inside.
struct InStoreReading
{
    QString itemNumber; ///< as it stands in the code, zeros in front and all
    bool isWeight = false;
    double amount = 0; ///< the price in the shop's currency, or the weight in the unit that the item's price is for
};

/// How the shop's own codes of one prefix are made: 13 digits, told by a pattern of 13 signs:
/// "02" or "20" to "29", then I for the item's number, P for a price or W for a weight, V for a digit that checks the
/// price or weight (of 4 or 5 digits), a digit that stands there in each code, "." for any; and C, the check digit of
/// the whole code, at the end.
class InStoreRule
{
public:
    static constexpr int mostPriceDecimals = 2; ///< the cart holds cents: a third would have to be guessed away
    static constexpr int mostWeightDecimals = 4;

    /// Why a pattern is none, in words for a person.
    [[nodiscard]] static Result<InStoreRule, QString> fromPattern(const QString &pattern, int decimals);
    /// "21IIIIIPPPPPC 2"; nothing for what text() has not made.
    [[nodiscard]] static std::optional<InStoreRule> fromText(const QString &text);
    [[nodiscard]] QString text() const;

    [[nodiscard]] QString prefix() const { return m_pattern.first(2); }
    [[nodiscard]] const QString &pattern() const { return m_pattern; }
    [[nodiscard]] bool isWeight() const { return m_pattern.contains(u'W'); } ///< and not a price
    [[nodiscard]] int decimals() const { return m_decimals; }                ///< of the price or the weight

    /// Nothing unless the code fits the pattern, both check digits are right, and the amount is not 0. A number of 12
    /// digits is read with a zero before it.
    [[nodiscard]] std::optional<InStoreReading> read(const QString &code) const;

private:
    InStoreRule(QString pattern, int decimals) : m_pattern(std::move(pattern)), m_decimals(decimals) {}
    [[nodiscard]] QString digitsAt(QChar sign, const QString &code) const;

    QString m_pattern;
    int m_decimals;
};

/// The prefixes that belong to shops: "02", "20" to "29".
[[nodiscard]] const QStringList &inStorePrefixes();

/// A code of the shop's own range in 13 digits, its check digit right; nothing for every other code.
[[nodiscard]] std::optional<QString> inStoreCode(const QString &code);

/// The digit that checks a price or weight of 4 or 5 digits.
[[nodiscard]] int amountCheckDigit(const QString &digits);

} // namespace harrowby::app
