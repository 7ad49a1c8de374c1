// SPDX-License-Identifier: MIT
#include "basic/values.h"
#include "postgres/schema.h"
#include "postgres/storable.h"

#include <QStringList>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

using namespace Qt::StringLiterals;

namespace harrowby::postgres {

namespace {

// The server's own numbers of its types, which never change.
constexpr TypeId boolType = 16;
constexpr TypeId int8Type = 20;
constexpr TypeId int2Type = 21;
constexpr TypeId int4Type = 23;
constexpr TypeId oidType = 26;
constexpr TypeId float4Type = 700;
constexpr TypeId float8Type = 701;
constexpr TypeId numericType = 1700;

DbValue wholeOf(QByteArrayView text)
{
    std::int64_t number = 0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
    return read.ec == std::errc() ? DbValue(number) : DbValue(QString::fromUtf8(text));
}

/// "Infinity" and "NaN" too. What is whole is an integer, as in a store file.
DbValue realOf(QByteArrayView text)
{
    constexpr double limit = 9223372036854775808.0;
    double number = 0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
    if (read.ec != std::errc() || read.ptr != text.data() + text.size())
        return QString::fromUtf8(text);
    if (std::isnan(number))
        return {};
    if (std::trunc(number) == number && number > -limit && number < limit)
        return static_cast<std::int64_t>(number);
    return number;
}

QString literalOf(double number)
{
    if (std::isnan(number))
        return u"null"_s;
    if (std::isinf(number))
        return number < 0 ? u"'-Infinity'::float8"_s : u"'Infinity'::float8"_s;
    std::array<char, 40> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), number).ptr;
    return QString::fromLatin1(text.data(), end - text.data());
}

} // namespace

DbValue readValue(QByteArrayView text, TypeId type)
{
    switch (type) {
    case boolType:
        return std::int64_t{text == "t" ? 1 : 0};
    case int8Type:
    case int4Type:
    case int2Type:
    case oidType:
        return wholeOf(text);
    case float8Type:
    case float4Type:
    case numericType:
        return realOf(text);
    default:
        return QString::fromUtf8(text);
    }
}

bool isText(TypeId type)
{
    switch (type) {
    case boolType:
    case int8Type:
    case int4Type:
    case int2Type:
    case oidType:
    case float8Type:
    case float4Type:
    case numericType:
        return false;
    default:
        return true;
    }
}

QString quotedName(const QString &name)
{
    QString result = name;
    for (QChar &character : result) {
        if (character >= u'A' && character <= u'Z')
            character = character.toLower();
    }
    return u'"' + result.replace(u'"', u"\"\""_s) + u'"';
}

QString literal(const DbValue &value)
{
    if (const auto *whole = std::get_if<std::int64_t>(&value))
        return QString::number(*whole);
    if (const auto *real = std::get_if<double>(&value))
        return literalOf(*real);
    if (const auto *text = std::get_if<QString>(&value))
        return u'\'' + QString(*text).replace(u'\'', u"''"_s) + u'\'';
    if (const auto *bytes = std::get_if<QByteArray>(&value))
        return u"'\\x%1'::bytea"_s.arg(QString::fromLatin1(bytes->toHex()));
    return u"null"_s;
}

QString noteOfInsert(const QString &what, const DbAssignments &values)
{
    const auto valueOf = [&values](QLatin1StringView name) {
        const auto value = std::find_if(values.cbegin(), values.cend(), [name](const auto &assigned) {
            return assigned.first.compare(name, Qt::CaseInsensitive) == 0;
        });
        return value == values.cend() ? DbValue() : value->second;
    };
    const DbValue id = valueOf("PurchaseID"_L1);
    const DbValue sum = valueOf("PurchasedItemsCost"_L1);
    if (!std::holds_alternative<QString>(id) || std::holds_alternative<std::monostate>(sum))
        return {};
    return u"%1 %2 %3"_s.arg(what, std::get<QString>(id), QString::number(valueNumber(sum), 'g', 10));
}

QString insertText(const QString &table, const DbAssignments &values)
{
    QStringList columns;
    QStringList literals;
    for (const auto &[column, value] : values) {
        columns << quotedName(column);
        literals << literal(converted(table, column, value));
    }
    const QString head = u"INSERT INTO "_s + quotedName(table);
    if (columns.isEmpty())
        return head + u" DEFAULT VALUES"_s;
    return head + u" ("_s + columns.join(u", "_s) + u") VALUES ("_s + literals.join(u", "_s) + u')';
}

QString updateText(const QString &table, std::int64_t row, const DbAssignments &values)
{
    QStringList sets;
    for (const auto &[column, value] : values)
        sets << quotedName(column) + u" = "_s + literal(converted(table, column, value));
    return u"UPDATE "_s + quotedName(table) + u" SET "_s + sets.join(u", "_s) + u" WHERE "_s +
           QString::fromLatin1(identityColumn) + u" = "_s + QString::number(row);
}

} // namespace harrowby::postgres
