// SPDX-License-Identifier: MIT
#include "postgres/storable.h"

#include "postgres/schema.h"
#include "postgres/sql_tokens.h"

#include <algorithm>
#include <charconv>
#include <cmath>

using namespace Qt::StringLiterals;

namespace harrowby::postgres {

namespace {

constexpr std::int64_t exactIntegers = std::int64_t{1} << 53;

bool isExactFigure(std::int64_t number)
{
    return number >= -exactIntegers && number <= exactIntegers;
}

/// The number that the whole text is, as a column of figures in a store file reads it: blanks of ASCII around it do not
/// count. Empty when it is none.
std::optional<DbValue> numberOf(const QString &text)
{
    const QByteArray utf8 = text.toUtf8();
    QByteArrayView number(utf8);
    const auto isBlank = [](char c) { return c == ' ' || (c >= '\t' && c <= '\r'); };
    while (!number.isEmpty() && isBlank(number.front()))
        number = number.sliced(1);
    while (!number.isEmpty() && isBlank(number.back()))
        number.chop(1);
    if (number.startsWith('+')) {
        number = number.sliced(1);
        if (number.startsWith('-'))
            return {};
    }
    // Neither "inf" nor "nan": what begins a number is a digit, or a point before one.
    const qsizetype sign = number.startsWith('-') ? 1 : 0;
    if (number.size() <= sign || !(QByteArrayView("0123456789.").contains(number.at(sign))))
        return {};
    const char *end = number.data() + number.size();
    std::int64_t whole = 0;
    if (const auto read = std::from_chars(number.data(), end, whole); read.ptr == end && read.ec == std::errc())
        return whole;
    double real = 0;
    const auto read = std::from_chars(number.data(), end, real);
    if (read.ptr != end)
        return {};
    if (read.ec == std::errc::result_out_of_range) // to a file it is infinite, or nothing
        real = number.toDouble();
    return read.ec == std::errc() || read.ec == std::errc::result_out_of_range ? std::optional<DbValue>(real)
                                                                               : std::nullopt;
}

/// A real as a column of texts in a store file holds it: 15 digits, always with a point.
QString textOf(double real)
{
    if (std::isinf(real))
        return real < 0 ? u"-Inf"_s : u"Inf"_s;
    QString text = QString::number(real, 'g', 15);
    if (text.contains(u'.'))
        return text;
    const qsizetype exponent = text.indexOf(u'e');
    return text.insert(exponent < 0 ? text.size() : exponent, u".0"_s);
}

/// Whether a file would hold the real as an integer.
bool isWhole(double real)
{
    constexpr double limit = 9223372036854775808.0;
    return std::trunc(real) == real && real > -limit && real < limit;
}

std::optional<QString> unstorableFigure(const QString &column, const DbValue &value)
{
    if (const auto *text = std::get_if<QString>(&value)) {
        const auto number = numberOf(*text);
        if (!number)
            return u"a column of figures on a server holds no text (%1)"_s.arg(column);
        return unstorableFigure(column, *number);
    }
    if (const auto *whole = std::get_if<std::int64_t>(&value); whole != nullptr && !isExactFigure(*whole))
        return u"a figure on a server has at most 15 digits (%1)"_s.arg(column);
    return {};
}

std::optional<QString> unstorableValue(const ShopTable *table, const QString &column, const DbValue &value)
{
    const auto *text = std::get_if<QString>(&value);
    if (text != nullptr && text->contains(QChar::Null))
        return u"a text on a server holds no NUL (%1)"_s.arg(column);
    if (table == nullptr)
        return {};
    if (std::holds_alternative<QByteArray>(value))
        return u"a column on a server holds no bytes (%1)"_s.arg(column);
    return table->isFigure(column) ? unstorableFigure(column, value) : std::nullopt;
}

qsizetype bytesOf(const DbAssignments &values, const QStringList &columns)
{
    qsizetype bytes = 0;
    for (const auto &[column, value] : values) {
        const auto *text = std::get_if<QString>(&value);
        if (text != nullptr && columns.contains(column, Qt::CaseInsensitive))
            bytes += text->toUtf8().size();
    }
    return bytes;
}

std::optional<QString> tooLong(const ShopTable &table, const DbAssignments &values)
{
    for (const QStringList &columns : table.indexedColumns) {
        if (bytesOf(values, columns) > mostIndexedBytes)
            return u"a text that a server looks for has at most %1 bytes (%2)"_s.arg(mostIndexedBytes)
                .arg(columns.join(u" and "_s));
    }
    return {};
}

/// The value of a single literal or number; empty for any other expression.
std::optional<DbValue> literalValue(const SqlTokens &tokens, qsizetype begin, qsizetype end)
{
    const bool isNegative = tokens.is(begin, "-"_L1);
    const qsizetype token = begin + (isNegative ? 1 : 0);
    if (token + 1 != end)
        return {};
    if (tokens.isKind(token, TokenKind::Literal) && !isNegative)
        return tokens.plain(token);
    return tokens.isKind(token, TokenKind::Number) ? numberOf(tokens.between(begin, end).remove(u' ')) : std::nullopt;
}

/// End of an item of a list: a comma or a closing parenthesis of the list's own, `word`, or the statement's end.
qsizetype endOfItem(const SqlTokens &tokens, qsizetype begin, int depth, QLatin1StringView word)
{
    qsizetype token = begin;
    while (token < tokens.count()) {
        const int own = tokens.at(token).depth;
        if (own < depth || (own == depth && (tokens.is(token, ","_L1) || tokens.is(token, word))))
            break;
        ++token;
    }
    return token;
}

/// Of `Update table SET column = value, … where …`.
DbAssignments updated(const SqlTokens &tokens)
{
    DbAssignments values;
    for (qsizetype item = 3; item < tokens.count();) {
        const qsizetype end = endOfItem(tokens, item, 0, "where"_L1);
        if (const auto value = literalValue(tokens, item + 2, end); value && tokens.is(item + 1, "="_L1))
            values.emplace_back(tokens.plain(item), *value);
        if (!tokens.is(end, ","_L1))
            break;
        item = end + 1;
    }
    return values;
}

/// Of `Insert into table (columns) values (values)`.
DbAssignments inserted(const SqlTokens &tokens)
{
    constexpr qsizetype list = 3;
    DbAssignments values;
    if (!tokens.is(list, "("_L1))
        return values;
    const qsizetype close = tokens.closing(list);
    if (!tokens.is(close + 1, "values"_L1) || !tokens.is(close + 2, "("_L1))
        return values;
    qsizetype item = close + 3;
    for (qsizetype column = list + 1; column < close && item < tokens.count(); column += 2) {
        const qsizetype end = endOfItem(tokens, item, 1, {});
        if (const auto value = literalValue(tokens, item, end))
            values.emplace_back(tokens.plain(column), *value);
        item = end + 1;
    }
    return values;
}

} // namespace

std::optional<QString> unstorable(const QString &table, const DbAssignments &values)
{
    const ShopTable *known = shopTable(table);
    for (const auto &[column, value] : values) {
        if (auto reason = unstorableValue(known, column, value))
            return reason;
    }
    return known != nullptr ? tooLong(*known, values) : std::nullopt;
}

std::optional<QString> unstorable(const QString &statement)
{
    const auto tokens = SqlTokens::of(statement);
    if (!tokens)
        return tokens.error();
    if (tokens->is(0, "update"_L1) && tokens->is(2, "set"_L1))
        return unstorable(tokens->plain(1), updated(*tokens));
    if (tokens->is(0, "insert"_L1) && tokens->is(1, "into"_L1))
        return unstorable(tokens->plain(2), inserted(*tokens));
    return {};
}

DbValue converted(const QString &table, const QString &column, const DbValue &value)
{
    const ShopTable *known = shopTable(table);
    if (known == nullptr)
        return value;
    const auto *text = std::get_if<QString>(&value);
    const auto *real = std::get_if<double>(&value);
    if (real != nullptr && std::isnan(*real))
        return {};
    if (known->isFigure(column)) {
        const DbValue figure = text != nullptr ? numberOf(*text).value_or(value) : value;
        const auto *number = std::get_if<double>(&figure);
        return number != nullptr && isWhole(*number) ? DbValue(static_cast<std::int64_t>(*number)) : figure;
    }
    if (const auto *whole = std::get_if<std::int64_t>(&value))
        return QString::number(*whole);
    return real != nullptr ? DbValue(textOf(*real)) : value;
}

} // namespace harrowby::postgres
