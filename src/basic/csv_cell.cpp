// SPDX-License-Identifier: MIT
#include "basic/csv_cell.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace harrowby {

bool looksLikeFormula(QStringView text)
{
    static constexpr QStringView signs = u"=+-@\uff1d\uff0b\uff0d\uff20";
    if (text.startsWith(u'\t') || text.startsWith(u'\r') || text.startsWith(u'\n'))
        return true;
    const auto first = std::find_if_not(text.begin(), text.end(), [](QChar c) { return c.isSpace(); });
    return first != text.end() && signs.contains(*first);
}

QString guardedText(const QString &text)
{
    return text.startsWith(u'\'') || looksLikeFormula(text) ? u'\'' + text : text;
}

QString unguardedText(const QString &text, bool isOwnFile)
{
    if (!text.startsWith(u'\''))
        return text;
    const QStringView behind = QStringView(text).sliced(1);
    return isOwnFile || looksLikeFormula(behind) ? behind.toString() : text;
}

QString quotedCell(QString text, QChar separator)
{
    const auto isSpecial = [separator](QChar c) { return c == separator || c == u'"' || c == u'\r' || c == u'\n'; };
    const bool needsQuotes = text.startsWith(u' ') || text.endsWith(u' ') || text.startsWith(u"sep="_s) ||
                             text.startsWith(QChar::ByteOrderMark) || std::any_of(text.begin(), text.end(), isSpecial);
    if (!needsQuotes)
        return text;
    return u'"' + text.replace(u'"', u"\"\""_s) + u'"';
}

} // namespace harrowby
