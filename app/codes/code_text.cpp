// SPDX-License-Identifier: MIT
#include "app/codes/code_text.h"

#include "basic/text.h"

#include <QList>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

bool isUnseen(char32_t character)
{
    switch (QChar::category(character)) {
    case QChar::Other_Control:
    case QChar::Other_Format:
    case QChar::Other_Surrogate:
    case QChar::Other_NotAssigned:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return true;
    default:
        return false;
    }
}

} // namespace

Result<QString, QString> checkCode(const QString &text)
{
    const QString code = trimBlanks(text);
    if (code.isEmpty())
        return Unexpected(u"it is empty"_s);
    if (code.size() > longestCode)
        return Unexpected(u"it is longer than %1 characters"_s.arg(longestCode));
    const QList<uint> characters = code.toUcs4();
    const bool isUnseenAnywhere = std::any_of(characters.begin(), characters.end(), isUnseen);
    if (isUnseenAnywhere || !code.isValidUtf16())
        return Unexpected(u"it holds a character that cannot be seen"_s);
    return code;
}

QString shownCode(const QString &text)
{
    constexpr qsizetype longest = 40;
    QString shown;
    for (const char32_t character : text.left(longest).toUcs4())
        shown += isUnseen(character) || character == QChar::ReplacementCharacter ? u"\u00b7"_s
                                                                                 : QString::fromUcs4(&character, 1);
    return text.size() > longest ? shown + u'\u2026' : shown;
}

} // namespace harrowby::app
