// SPDX-License-Identifier: MIT
#include "app/csv/figures.h"

#include <QVarLengthArray>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <string_view>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

bool isDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

/// The text without blanks and a currency's symbol around it.
QStringView bare(QStringView text)
{
    text = text.trimmed();
    if (text.startsWith(u'-') || text.startsWith(u'+') || text.isEmpty())
        return text;
    if (text.front().category() == QChar::Symbol_Currency)
        return text.sliced(1).trimmed();
    if (text.back().category() == QChar::Symbol_Currency)
        return text.chopped(1).trimmed();
    return text;
}

/// Reads a figure from left to right, and collects it as std::from_chars() takes it.
class FigureScanner
{
public:
    FigureScanner(QStringView text, QChar decimalSign) : m_text(text), m_decimalSign(decimalSign) {}

    [[nodiscard]] std::optional<double> value()
    {
        takeSign();
        if (!takeWhole() || !takeDecimals() || !takeExponent() || m_at != m_text.size())
            return {};
        double result = 0.0;
        const char *const end = m_number.data() + m_number.size();
        const auto [stop, error] = std::from_chars(m_number.data(), end, result);
        return stop == end && error == std::errc() && std::isfinite(result) ? std::optional(result) : std::nullopt;
    }

private:
    [[nodiscard]] QChar peek() const { return m_at < m_text.size() ? m_text[m_at] : QChar(); }

    void takeSign()
    {
        const QChar sign = peek();
        if (sign == u'-' || sign == u'\u2212')
            m_number.append('-');
        m_at += sign == u'-' || sign == u'\u2212' || sign == u'+' ? 1 : 0;
    }

    qsizetype takeDigits()
    {
        const qsizetype begin = m_at;
        for (; isDigit(peek()); ++m_at)
            m_number.append(m_text[m_at].toLatin1());
        return m_at - begin;
    }

    [[nodiscard]] bool isGrouping(QChar c) const
    {
        static constexpr QStringView signs = u" '\u2019\u00a0\u202f\u2009";
        return c == (m_decimalSign == u',' ? u'.' : u',') || signs.contains(c);
    }

    /// Three digits behind each sign of grouping, which is the same each time; no group begins a number with zero.
    bool takeWhole()
    {
        const bool startsWithZero = peek() == u'0';
        m_digits = takeDigits();
        const QChar grouping = peek();
        if (!isGrouping(grouping))
            return true;
        if (startsWithZero || m_digits < 1 || m_digits > 3)
            return false;
        while (peek() == grouping) {
            ++m_at;
            if (takeDigits() != 3)
                return false;
        }
        return true;
    }

    bool takeDecimals()
    {
        if (peek() != m_decimalSign)
            return m_digits > 0;
        ++m_at;
        m_number.append('.');
        m_digits += takeDigits();
        return m_digits > 0;
    }

    bool takeExponent()
    {
        if (peek() != u'e' && peek() != u'E')
            return true;
        ++m_at;
        m_number.append('e');
        if (peek() == u'-' || peek() == u'+')
            m_number.append(m_text[m_at++].toLatin1());
        return takeDigits() > 0;
    }

    QStringView m_text;
    QChar m_decimalSign;
    qsizetype m_at = 0;
    qsizetype m_digits = 0;
    QVarLengthArray<char, 64> m_number;
};

} // namespace

std::optional<double> readFigure(QStringView text, QChar decimalSign)
{
    return FigureScanner(bare(text), decimalSign).value();
}

QString writeFigure(double value, QChar decimalSign)
{
    if (std::isinf(value))
        return value > 0 ? u"inf"_s : u"-inf"_s;
    std::array<char, 400> buffer{};
    const double size = std::abs(value);
    const auto format =
        size != 0 && (size < 1e-7 || size >= 1e17) ? std::chars_format::scientific : std::chars_format::fixed;
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, format).ptr;
    std::string_view digits(buffer.data(), static_cast<std::size_t>(end - buffer.data()));
    QString text = QString::fromLatin1(digits.data(), static_cast<qsizetype>(digits.size()));
    if (digits.find_first_of(".en") == std::string_view::npos)
        text += u".0"_s;
    return text.replace(u'.', decimalSign);
}

QString writeFigure(std::int64_t value)
{
    return QString::number(value);
}

std::optional<std::int64_t> readInteger(QStringView text)
{
    bool isInteger = false;
    const auto value = static_cast<std::int64_t>(text.toLongLong(&isInteger));
    return isInteger && writeFigure(value) == text ? std::optional(value) : std::nullopt;
}

DecimalHint decimalHint(QStringView text)
{
    const auto isSign = [](QChar c) { return c == u'.' || c == u','; };
    if (text.size() > 64 || std::none_of(text.begin(), text.end(), isSign))
        return DecimalHint::None;
    const auto byPoint = readFigure(text, u'.');
    const auto byComma = readFigure(text, u',');
    if (byPoint == byComma)
        return DecimalHint::None;
    if (byPoint && byComma)
        return DecimalHint::Either;
    return byPoint ? DecimalHint::Point : DecimalHint::Comma;
}

} // namespace harrowby::app
