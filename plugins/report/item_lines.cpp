// SPDX-License-Identifier: MIT
#include "report/item_lines.h"

#include <cmath>
#include <optional>

namespace harrowby::report {

namespace {

constexpr QStringView times = u" x ";
constexpr QStringView equals = u" = ";
constexpr QStringView joint = u", ";

struct Number
{
    double value = 0.0;
    qsizetype end = 0; ///< behind its last sign
};

bool isDigit(QChar sign)
{
    return sign >= u'0' && sign <= u'9';
}

/// A sign, digits with grouping commas between them, a point and digits. Too many digits for a till are no number.
std::optional<Number> readNumber(QStringView text, qsizetype start)
{
    constexpr int mostDigits = 17;
    const bool negative = start < text.size() && text.at(start) == u'-';
    qsizetype at = start + (negative ? 1 : 0);
    double digits = 0.0;
    int count = 0;
    int decimals = -1; // before the point
    for (; at < text.size(); ++at) {
        const QChar sign = text.at(at);
        const bool digitFollows = at + 1 < text.size() && isDigit(text.at(at + 1));
        if (isDigit(sign)) {
            digits = digits * 10.0 + (sign.unicode() - u'0');
            ++count;
            decimals += decimals >= 0 ? 1 : 0;
        } else if (sign == u'.' && decimals < 0 && digitFollows) {
            decimals = 0;
        } else if (!(sign == u',' && decimals < 0 && count > 0 && digitFollows)) {
            break;
        }
    }
    if (count == 0 || count > mostDigits)
        return {};
    const double value = decimals > 0 ? digits / std::pow(10.0, decimals) : digits;
    return Number{negative ? -value : value, at};
}

bool standsAt(QStringView text, qsizetype at, QStringView what)
{
    return text.mid(at).startsWith(what);
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

/// Where the next line begins behind a joint, from `at` on; the text's length when none does.
qsizetype nextStart(QStringView text, qsizetype at)
{
    for (qsizetype found = text.indexOf(joint, at); found >= 0; found = text.indexOf(joint, found + 1)) {
        if (readStart(text, found + joint.size()))
            return found + joint.size();
    }
    return text.size();
}

struct LineEnd
{
    qsizetype keyEnd = 0;
    Number amount;
};

/// Finds the amount that ends a line. One with a joint behind it that no line follows may belong to the name, or what
/// follows may be rubbish: it is rubbish when a line begins between it and the next possible end.
std::optional<LineEnd> findEnd(QStringView text, qsizetype keyStart)
{
    std::optional<LineEnd> doubtful;
    qsizetype afterDoubt = text.size();
    for (qsizetype at = text.indexOf(equals, keyStart); at >= 0; at = text.indexOf(equals, at + 1)) {
        const auto amount = readNumber(text, at + equals.size());
        if (!amount)
            continue;
        if (afterDoubt < at)
            return doubtful;
        const LineEnd end{at, *amount};
        const bool joined = standsAt(text, amount->end, joint);
        if (amount->end == text.size() || (joined && readStart(text, amount->end + joint.size())))
            return end;
        if (joined && !doubtful) {
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

ItemLines readItemLines(QStringView text)
{
    ItemLines result;
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
        at = end->amount.end + joint.size();
    }
    return result;
}

} // namespace harrowby::report
