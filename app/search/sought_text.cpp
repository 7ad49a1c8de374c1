// SPDX-License-Identifier: MIT
#include "app/search/sought_text.h"

#include <QVarLengthArray>

#include <algorithm>
#include <cstring>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

/// Stands in the table for a code unit whose key is not one code unit, or depends on its neighbours.
constexpr char16_t unusual = 0xffff;

/// Lower-cases into `lower`, which has room for the text; false when the text is not ASCII.
bool lowerAscii(QByteArrayView text, char *lower)
{
    unsigned char all = 0;
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        all |= byte;
        *lower++ = static_cast<char>(byte | (byte >= 'A' && byte <= 'Z' ? 0x20 : 0));
    }
    return all < 0x80;
}

bool isAscii(const QString &text)
{
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 0x80; });
}

/// Hangul's single letters compose although they are no marks.
bool mayCompose(QChar character)
{
    return character.isMark() || (character.unicode() >= 0x1100 && character.unicode() <= 0x11ff);
}

char16_t loneKey(QChar character)
{
    if (character.isSurrogate() || mayCompose(character))
        return unusual;
    const QString key = caselessKey(character);
    return key.size() == 1 && !mayCompose(key.front()) ? key.front().unicode() : unusual;
}

} // namespace

QString caselessKey(const QString &text)
{
    // Twice: ẞ folds to ß, and only that one is SS in capitals.
    QString key = text.toUpper().toCaseFolded().toUpper().toCaseFolded();
    key.replace(u'\u0130', u'i'); // İ, which Qt does not fold
    key.replace(u"i\u0307"_s, u"i"_s);
    return key.normalized(QString::NormalizationForm_C);
}

SoughtText::SoughtText(const QString &text) : m_key(caselessKey(text)), m_isAscii(isAscii(m_key))
{
    if (m_isAscii)
        m_ascii = m_key.toLatin1();
}

bool SoughtText::isIn(QByteArrayView utf8) const
{
    QVarLengthArray<char, 256> lower(utf8.size());
    return lowerAscii(utf8, lower.data()) ? isInAscii({lower.constData(), lower.size()})
                                          : isInText(QString::fromUtf8(utf8));
}

bool SoughtText::isInAscii(QByteArrayView lower) const
{
    return m_isAscii && ::memmem(lower.data(), static_cast<std::size_t>(lower.size()), m_ascii.constData(),
                                 static_cast<std::size_t>(m_ascii.size())) != nullptr;
}

bool SoughtText::isInText(const QString &text) const
{
    QVarLengthArray<char16_t, 256> key(text.size());
    char16_t *unit = key.data();
    for (const QChar character : text) {
        *unit = keyOf(character.unicode());
        if (*unit++ == unusual)
            return caselessKey(text).contains(m_key);
    }
    return QStringView(key.constData(), key.size()).contains(m_key);
}

char16_t SoughtText::keyOf(char16_t unit) const
{
    constexpr std::size_t units = 0x10000;
    if (m_keys.empty())
        m_keys.resize(units);
    char16_t &key = m_keys[unit];
    if (key == 0)
        key = loneKey(unit);
    return key;
}

} // namespace harrowby::app
