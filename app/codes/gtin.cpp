// SPDX-License-Identifier: MIT
#include "app/codes/gtin.h"

#include <algorithm>
#include <array>

namespace harrowby::app {

namespace {

constexpr qsizetype longest = 14;
constexpr std::array<qsizetype, 4> lengths = {8, 12, 13, longest};

} // namespace

bool isDigits(QStringView text)
{
    const auto isDigit = [](QChar c) { return c >= u'0' && c <= u'9'; };
    return !text.isEmpty() && std::all_of(text.begin(), text.end(), isDigit);
}

int checkDigitOf(QStringView digits)
{
    int sum = 0;
    int weight = 3;
    for (qsizetype i = digits.size() - 1; i >= 0; --i) {
        sum += weight * digits.at(i).digitValue();
        weight = 4 - weight;
    }
    return (10 - sum % 10) % 10;
}

bool isGtin(QStringView code)
{
    return std::find(lengths.begin(), lengths.end(), code.size()) != lengths.end() && isDigits(code) &&
           checkDigitOf(code.chopped(1)) == code.back().digitValue();
}

QString withLostZeros(const QString &digits)
{
    const qsizetype size = digits.size();
    if ((size != 7 && size != 10 && size != 11) || !isDigits(digits))
        return {};
    const QString whole = digits.rightJustified(size == 7 ? 8 : 12, u'0');
    return isGtin(whole) ? whole : QString();
}

QStringList gtinSpellings(const QString &code)
{
    if (!isGtin(code))
        return {};
    const QString whole = code.rightJustified(longest, u'0');
    const auto zeros = std::find_if(whole.begin(), whole.end(), [](QChar c) { return c != u'0'; }) - whole.begin();
    QStringList spellings;
    for (const qsizetype length : lengths) {
        if (longest - length <= zeros)
            spellings << whole.last(length);
    }
    return spellings;
}

} // namespace harrowby::app
