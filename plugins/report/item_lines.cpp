// SPDX-License-Identifier: MIT
#include "plugins/report/item_lines.h"

#include "basic/item_key.h"
#include "basic/purchase_text.h"

#include <array>
#include <optional>

namespace harrowby::report {

namespace {

// A report parses up to a million purchases, so the text is searched for the rarest character of a separator, and
// compared only there.
constexpr QLatin1StringView times = purchase::quantityJoint;
constexpr QLatin1StringView equals = purchase::amountJoint;
constexpr QLatin1StringView separator = purchase::elementJoint;

constexpr int mostDigits = 17;
/// Exact, all of them.
constexpr std::array<double, mostDigits + 1> powersOfTen{1e0, 1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,
                                                         1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15, 1e16, 1e17};

struct Number
{
    double value = 0.0;
    qsizetype end = 0; ///< after its last character
};

bool isDigit(QChar character)
{
    return character >= u'0' && character <= u'9';
}

/// An optional sign, digits with grouping commas, a point and digits. More digits than a till's figures have are no
/// number.
std::optional<Number> readNumber(QStringView text, qsizetype start)
{
    const bool negative = start < text.size() && text.at(start) == u'-';
    qsizetype at = start + (negative ? 1 : 0);
    double digits = 0.0;
    int count = 0;
    int decimals = -1; // before the point
    for (; at < text.size(); ++at) {
        const QChar character = text.at(at);
        const bool digitFollows = at + 1 < text.size() && isDigit(text.at(at + 1));
        if (isDigit(character)) {
            digits = digits * 10.0 + (character.unicode() - u'0');
            ++count;
            decimals += decimals >= 0 ? 1 : 0;
        } else if (character == u'.' && decimals < 0 && digitFollows) {
            decimals = 0;
        } else if (!(character == u',' && decimals < 0 && count > 0 && digitFollows)) {
            break;
        }
    }
    if (count == 0 || count > mostDigits)
        return {};
    const double value = decimals > 0 ? digits / powersOfTen[static_cast<std::size_t>(decimals)] : digits;
    return Number{negative ? -value : value, at};
}

bool standsAt(QStringView text, qsizetype at, QLatin1StringView what)
{
    if (text.size() - at < what.size())
        return false;
    for (qsizetype i = 0; i < what.size(); ++i) {
        if (text[at + i] != what[i])
            return false;
    }
    return true;
}

/// Where " = " stands next; below 0 when nowhere.
qsizetype findEquals(QStringView text, qsizetype from)
{
    for (qsizetype at = text.indexOf(u'=', from + 1); at >= 0; at = text.indexOf(u'=', at + 1)) {
        if (standsAt(text, at - 1, equals))
            return at - 1;
    }
    return -1;
}

/// Where ", " stands next; below 0 when nowhere.
qsizetype findSeparator(QStringView text, qsizetype from)
{
    for (qsizetype at = text.indexOf(u',', from); at >= 0; at = text.indexOf(u',', at + 1)) {
        if (standsAt(text, at, separator))
            return at;
    }
    return -1;
}

/// The quantity that begins a line, if one begins here; its end lies behind the " x ".
std::optional<Number> readStart(QStringView text, qsizetype at)
{
    auto quantity = readNumber(text, at);
    if (!quantity || !standsAt(text, quantity->end, times))
        return {};
    quantity->end += times.size();
    return quantity;
}

/// Where the next line begins behind a separator, from `at` on; the text's length when none does.
qsizetype nextStart(QStringView text, qsizetype at)
{
    for (qsizetype found = findSeparator(text, at); found >= 0; found = findSeparator(text, found + 1)) {
        if (readStart(text, found + separator.size()))
            return found + separator.size();
    }
    return text.size();
}

struct LineEnd
{
    qsizetype keyEnd = 0;
    Number amount;
};

/// Finds the amount that ends a line. One with a separator behind it that no line follows may belong to the name, or
/// what follows may be rubbish: it is rubbish when a line begins between it and the next possible end.
std::optional<LineEnd> findEnd(QStringView text, qsizetype keyStart)
{
    std::optional<LineEnd> doubtful;
    qsizetype afterDoubt = text.size();
    for (qsizetype at = findEquals(text, keyStart); at >= 0; at = findEquals(text, at + 1)) {
        const auto amount = readNumber(text, at + equals.size());
        if (!amount)
            continue;
        if (afterDoubt < at)
            return doubtful;
        const LineEnd end{at, *amount};
        const bool isFollowed = standsAt(text, amount->end, separator);
        if (amount->end == text.size() || (isFollowed && readStart(text, amount->end + separator.size())))
            return end;
        if (isFollowed && !doubtful) {
            doubtful = end;
            afterDoubt = nextStart(text, amount->end);
        }
    }
    return doubtful;
}

void addLine(QStringView text, const Number &start, const LineEnd &end, ItemLines &result)
{
    const QStringView key = text.mid(start.end, end.keyEnd - start.end).trimmed();
    if (key.isEmpty())
        result.whole = false;
    else
        result.lines.push_back({key, start.value, end.amount.value});
}

} // namespace

void readItemLines(QStringView text, ItemLines &result)
{
    result.lines.clear();
    result.whole = !text.isEmpty();
    qsizetype at = 0;
    while (at < text.size()) {
        const auto start = readStart(text, at);
        if (!start) {
            result.whole = false;
            at = nextStart(text, at);
            continue;
        }
        const auto end = findEnd(text, start->end);
        if (!end) { // nor is there one for any later line
            result.whole = false;
            break;
        }
        addLine(text, *start, *end, result);
        at = end->amount.end + separator.size();
    }
}

IdAndName idAndName(QStringView key)
{
    for (qsizetype at = key.indexOf(u'|', 2); at >= 0; at = key.indexOf(u'|', at + 1)) {
        if (standsAt(key, at - 2, itemKeySeparator))
            return {key.first(at - 2).trimmed(), key.sliced(at + 3).trimmed()};
    }
    return {{}, key};
}

} // namespace harrowby::report
