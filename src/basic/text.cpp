// SPDX-License-Identifier: MIT
#include "basic/text.h"

namespace harrowby {

QString trimBlanks(QStringView text)
{
    while (text.startsWith(u' '))
        text = text.sliced(1);
    while (text.endsWith(u' '))
        text.chop(1);
    return text.toString();
}

QString trimmedUpper(QStringView text)
{
    return trimBlanks(text).toUpper();
}

QString tidyLabel(const QString &typed, qsizetype longest)
{
    QString label = typed;
    label.removeIf([](QChar c) { return c.category() == QChar::Other_Control && !c.isSpace(); });
    label = label.simplified().left(longest).trimmed();
    if (!label.isEmpty() && label.back().isHighSurrogate())
        label.chop(1); // half a character, which a file would not give back
    return label;
}

} // namespace harrowby
