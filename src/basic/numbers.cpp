// SPDX-License-Identifier: MIT
#include "basic/numbers.h"

#include "basic/text.h"

#include <QByteArray>
#include <QLocale>
#include <QVarLengthArray>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <string>

namespace harrowby {

namespace {

bool isDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

/// Walks over a number's parts, and says how far it got.
class Scanner
{
public:
    explicit Scanner(QStringView text) : m_text(text) {}

    [[nodiscard]] qsizetype position() const { return m_at; }
    [[nodiscard]] bool atEnd() const { return m_at == m_text.size(); }

    void skipBlanks()
    {
        while (peek() == u' ')
            ++m_at;
    }
    bool accept(char16_t a, char16_t b)
    {
        const bool found = peek() == a || peek() == b;
        m_at += found ? 1 : 0;
        return found;
    }
    qsizetype digits()
    {
        const qsizetype begin = m_at;
        while (isDigit(peek()))
            ++m_at;
        return m_at - begin;
    }
    /// Digits with commas and blanks between them.
    qsizetype groupedDigits()
    {
        qsizetype count = digits();
        while (count > 0) {
            const qsizetype end = m_at;
            while (accept(u',', u' ')) {
            }
            const qsizetype more = digits();
            if (more == 0) {
                m_at = end;
                break;
            }
            count += more;
        }
        return count;
    }
    /// An exponent without digits is none.
    void exponent()
    {
        const qsizetype begin = m_at;
        if (!accept(u'e', u'E'))
            return;
        accept(u'+', u'-');
        if (digits() == 0)
            m_at = begin;
    }

private:
    [[nodiscard]] QChar peek() const { return m_at < m_text.size() ? m_text[m_at] : QChar(); }

    QStringView m_text;
    qsizetype m_at = 0;
};

/// The value of a text that has a number's form; empty when it is too large for a double.
std::optional<double> parsed(QByteArray number)
{
    if (number.startsWith('+'))
        number.remove(0, 1);
    double value = 0.0;
    const auto [end, error] = std::from_chars(number.cbegin(), number.cend(), value);
    if (error == std::errc::result_out_of_range)
        value = QLocale::c().toDouble(QString::fromLatin1(number)); // infinite when too large, zero when too small
    return std::isfinite(value) ? std::optional(value) : std::nullopt;
}

/// A finite number's shortest decimal text, taken apart: 0.DIGITS times ten to the power of `point`.
struct Decimal
{
    bool negative = false;
    std::string digits; ///< without leading or trailing zeros; empty for 0
    qsizetype point = 0;

    [[nodiscard]] qsizetype size() const { return static_cast<qsizetype>(digits.size()); }
    /// The digit at `place` from the first one on; zeros stand before and behind them.
    [[nodiscard]] QChar digitAt(qsizetype place) const
    {
        return QLatin1Char(place >= 0 && place < size() ? digits[static_cast<std::size_t>(place)] : '0');
    }
};

template <typename Float>
Decimal decimalOf(Float value)
{
    std::array<char, 64> buffer{};
    const char *const begin = buffer.data();
    const char *const end =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::scientific).ptr;
    const char *const e = std::find(begin, end, 'e');
    const char *const exponent = e[1] == '+' ? e + 2 : e + 1; // from_chars() takes no plus
    Decimal decimal;
    decimal.negative = *begin == '-';
    std::copy_if(begin, e, std::back_inserter(decimal.digits), [](char c) { return c >= '0' && c <= '9'; });
    decimal.digits.erase(decimal.digits.find_last_not_of('0') + 1);
    std::from_chars(exponent, end, decimal.point);
    ++decimal.point;
    return decimal.digits.empty() ? Decimal{} : decimal;
}

/// Rounded half away from zero to `places` decimals.
Decimal rounded(Decimal decimal, qsizetype places)
{
    const qsizetype keep = decimal.point + places;
    if (keep >= decimal.size())
        return decimal;
    if (keep < 0)
        return {};
    const bool up = decimal.digits[static_cast<std::size_t>(keep)] >= '5';
    decimal.digits.resize(static_cast<std::size_t>(keep));
    if (up) {
        decimal.digits.erase(decimal.digits.find_last_not_of('9') + 1);
        if (decimal.digits.empty()) {
            decimal.digits.assign(1, '1');
            ++decimal.point;
        } else {
            ++decimal.digits.back();
        }
    }
    return decimal.digits.empty() ? Decimal{} : decimal;
}

enum class Grouping { None, Thousands };

/// All digits before the point, and `places` behind it.
QString written(const Decimal &decimal, qsizetype places, Grouping grouping)
{
    QVarLengthArray<QChar, 64> text;
    if (decimal.negative)
        text.append(u'-');
    if (decimal.point <= 0)
        text.append(u'0');
    for (qsizetype place = 0; place < decimal.point; ++place) {
        if (grouping == Grouping::Thousands && place > 0 && (decimal.point - place) % 3 == 0)
            text.append(u',');
        text.append(decimal.digitAt(place));
    }
    if (places > 0)
        text.append(u'.');
    for (qsizetype place = 0; place < places; ++place)
        text.append(decimal.digitAt(decimal.point + place));
    return QString(text.constData(), text.size());
}

/// "nan", "inf" or "-inf". None of them is an SQL literal, so a statement with one fails and nothing is stored.
template <typename Float>
QString notFinite(Float value)
{
    return std::isnan(value) ? QStringLiteral("nan") : value > 0 ? QStringLiteral("inf") : QStringLiteral("-inf");
}

template <typename Float>
QString plain(Float value)
{
    if (!std::isfinite(value))
        return notFinite(value);
    const Decimal decimal = decimalOf(value);
    return written(decimal, std::max<qsizetype>(decimal.size() - decimal.point, 0), Grouping::None);
}

template <typename Float>
QString displayed(Float value, qsizetype places, Grouping grouping)
{
    return std::isfinite(value) ? written(rounded(decimalOf(value), places), places, grouping) : notFinite(value);
}

} // namespace

double leadingNumber(QStringView text)
{
    Scanner scanner(text);
    scanner.skipBlanks();
    const qsizetype begin = scanner.position();
    scanner.accept(u'+', u'-');
    qsizetype digits = scanner.digits();
    if (scanner.accept(u'.', u'.'))
        digits += scanner.digits();
    if (digits == 0)
        return 0.0;
    scanner.exponent();
    return parsed(text.sliced(begin, scanner.position() - begin).toLatin1()).value_or(0.0);
}

double leadingNumberWithoutCommas(const QString &text)
{
    QString bare = text;
    return leadingNumber(bare.remove(u','));
}

bool isNumeric(QStringView text)
{
    const QString trimmed = trimBlanks(text);
    Scanner scanner(trimmed);
    scanner.accept(u'+', u'-');
    qsizetype digits = scanner.groupedDigits();
    if (scanner.accept(u'.', u'.'))
        digits += scanner.digits();
    scanner.exponent();
    return digits > 0 && scanner.atEnd();
}

std::optional<double> wholeNumber(QStringView text)
{
    if (!isNumeric(text))
        return {};
    QString bare = text.toString();
    return parsed(bare.remove(u',').remove(u' ').toLatin1());
}

std::optional<std::int16_t> toInt16(double value)
{
    using Limits = std::numeric_limits<std::int16_t>;
    const double nearest = std::nearbyint(value); // halves to even in the default rounding mode
    if (!(nearest >= Limits::min() && nearest <= Limits::max()))
        return {};
    return static_cast<std::int16_t>(nearest);
}

QString plainText(double value)
{
    return plain(value);
}

QString plainText(float value)
{
    return plain(value);
}

double asStored(float value)
{
    return std::isfinite(value) ? wholeNumber(plainText(value)).value_or(0.0) : static_cast<double>(value);
}

QString formatMoney(double value)
{
    return displayed(value, 2, Grouping::Thousands);
}

QString formatMoney(float value)
{
    return displayed(value, 2, Grouping::Thousands);
}

QString formatFixed(double value)
{
    return displayed(value, 2, Grouping::None);
}

QString formatCount(double value)
{
    return displayed(value, 0, Grouping::Thousands);
}

} // namespace harrowby
