// SPDX-License-Identifier: MIT
#include "basic/case_folding.h"

#include <QChar>

#include <cstdint>

namespace harrowby {

namespace {

/// The code point at `at`, which moves behind it.
char32_t nextCharacter(QStringView text, qsizetype &at)
{
    const QChar first = text.at(at++);
    if (!first.isHighSurrogate() || at == text.size() || !text.at(at).isLowSurrogate())
        return first.unicode();
    return QChar::surrogateToUcs4(first, text.at(at++));
}

char32_t folded(char32_t character)
{
    if (character < 0x80)
        return character >= U'A' && character <= U'Z' ? character + (U'a' - U'A') : character;
    return QChar::toCaseFolded(character);
}

} // namespace

std::size_t caseFoldedHash(QStringView text)
{
    // FNV-1a, a whole code point at a time.
    std::uint64_t hash = 0xcbf29ce484222325U;
    for (qsizetype at = 0; at < text.size();)
        hash = (hash ^ folded(nextCharacter(text, at))) * 0x100000001b3U;
    return static_cast<std::size_t>(hash ^ (hash >> 32));
}

} // namespace harrowby
