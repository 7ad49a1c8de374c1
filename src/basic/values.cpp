// SPDX-License-Identifier: MIT
#include "basic/values.h"

#include "basic/numbers.h"

#include <cmath>

namespace harrowby {

namespace {

constexpr QLatin1StringView trueText("True");
constexpr QLatin1StringView falseText("False");

/// The value as a number; empty for bytes and for text that is not wholly numeric (nor "True" or "False").
std::optional<double> converted(const DbValue &value)
{
    if (const auto *integer = std::get_if<std::int64_t>(&value))
        return static_cast<double>(*integer);
    if (const auto *real = std::get_if<double>(&value))
        return *real;
    if (const auto *text = std::get_if<QString>(&value)) {
        if (*text == trueText)
            return -1.0;
        if (*text == falseText)
            return 0.0;
        return wholeNumber(*text);
    }
    if (std::holds_alternative<std::monostate>(value))
        return 0.0;
    return {};
}

} // namespace

DbValue storedFigure(float value)
{
    constexpr float exactIntegers = 16777216.0F; // 2^24: above it a float has no fraction anyway
    if (std::trunc(value) == value && std::abs(value) <= exactIntegers)
        return static_cast<std::int64_t>(value);
    return asStored(value);
}

DbValue storedFigure(double value)
{
    constexpr double exactIntegers = 9007199254740992.0;
    if (std::trunc(value) == value && std::abs(value) <= exactIntegers)
        return static_cast<std::int64_t>(value);
    return value;
}

QString valueText(const DbValue &value)
{
    if (const auto *integer = std::get_if<std::int64_t>(&value))
        return QString::number(*integer);
    if (const auto *real = std::get_if<double>(&value))
        return plainText(*real);
    if (const auto *text = std::get_if<QString>(&value))
        return *text;
    if (const auto *bytes = std::get_if<QByteArray>(&value))
        return QString::fromUtf8(*bytes);
    return {};
}

double valueNumber(const DbValue &value)
{
    if (const auto *integer = std::get_if<std::int64_t>(&value))
        return static_cast<double>(*integer);
    if (const auto *real = std::get_if<double>(&value))
        return *real;
    return leadingNumber(valueText(value));
}

std::optional<std::int16_t> valueInt16(const DbValue &value)
{
    const std::optional<double> number = converted(value);
    return number ? toInt16(*number) : std::nullopt;
}

bool valueIsTrue(const DbValue &value)
{
    return converted(value).value_or(0.0) != 0.0;
}

bool valueEqualsTrue(const DbValue &value)
{
    return converted(value) == -1.0;
}

} // namespace harrowby
