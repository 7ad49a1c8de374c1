// SPDX-License-Identifier: MIT
#include "platform/ini_value.h"

#include <QStringDecoder>
#include <QStringView>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace harrowby::ini {
namespace {

constexpr QStringView escapeLetters = u"\\\"nrt";
constexpr QStringView escapedChars = u"\\\"\n\r\t";

/// Whether it is written by its number. Readers drop a byte order mark at the start of a value.
bool isInvisible(QChar c)
{
    return c.unicode() < 0x20 || c.unicode() == 0x7f || c == QChar::ByteOrderMark;
}

bool isHexDigit(QChar c)
{
    return (c >= u'0' && c <= u'9') || (c.toLower() >= u'a' && c.toLower() <= u'f');
}

bool needsQuotes(const QString &value)
{
    constexpr QStringView special = u"\";,=\\";
    return value != value.trimmed() ||
           std::ranges::any_of(value, [&](QChar c) { return isInvisible(c) || special.contains(c); });
}

QString hexEscape(QChar c)
{
    return u"\\x"_s + QString::number(c.unicode(), 16);
}

QString escaped(const QString &value)
{
    QString out;
    bool afterHex = false; // a digit there would be read as part of the number
    for (const QChar c : value) {
        const auto known = escapedChars.indexOf(c);
        const bool asHex = known < 0 && (isInvisible(c) || (afterHex && isHexDigit(c)));
        if (known >= 0)
            out += u'\\' + escapeLetters.at(known);
        else
            out += asHex ? hexEscape(c) : QString(c);
        afterHex = asHex;
    }
    return out;
}

/// Reads the escape behind the backslash at `at`, appends its character and returns where the text goes on.
qsizetype readEscape(QStringView text, qsizetype at, QString &out)
{
    const QChar letter = at + 1 < text.size() ? text.at(at + 1) : QChar();
    if (const auto known = letter.isNull() ? -1 : escapeLetters.indexOf(letter); known >= 0) {
        out += escapedChars.at(known);
        return at + 2;
    }
    qsizetype end = at + 2;
    while (letter == u'x' && end < text.size() && isHexDigit(text.at(end)))
        ++end;
    if (end > at + 2 && letter == u'x') {
        out += QChar(static_cast<char16_t>(text.mid(at + 2, end - at - 2).toUInt(nullptr, 16)));
        return end;
    }
    out += u'\\'; // not an escape: a backslash that somebody typed
    return at + 1;
}

QString unescaped(QStringView text)
{
    QString out;
    for (qsizetype i = 0; i < text.size();) {
        if (text.at(i) == u'\\')
            i = readEscape(text, i, out);
        else
            out += text.at(i++);
    }
    return out;
}

/// Whether the quotes at both ends belong together.
bool isQuoted(QStringView text)
{
    if (text.size() < 2 || text.front() != u'"')
        return false;
    for (qsizetype i = 1; i < text.size(); ++i) {
        if (text.at(i) == u'\\')
            ++i;
        else if (text.at(i) == u'"')
            return i == text.size() - 1;
    }
    return false;
}

} // namespace

QByteArray encoded(const QString &value)
{
    // QSettings gives a leading "@" a meaning of its own and doubles it in texts.
    const QString literal = value.startsWith(u'@') ? u'@' + value : value;
    const QString text = needsQuotes(literal) ? u'"' + escaped(literal) + u'"' : literal;
    return text.toUtf8();
}

QString decoded(const QByteArray &raw)
{
    // QString::fromUtf8() would drop a byte order mark, which QSettings writes as it is.
    QStringDecoder utf8(QStringDecoder::Utf8,
                        QStringDecoder::Flag::Stateless | QStringDecoder::Flag::ConvertInitialBom);
    const QString all = utf8.decode(raw);
    const QString text = all.trimmed();
    const QStringView view(text);
    const QString value = unescaped(isQuoted(view) ? view.mid(1, view.size() - 2) : view);
    return value.startsWith("@@"_L1) ? value.mid(1) : value;
}

} // namespace harrowby::ini
