// SPDX-License-Identifier: MIT
#include "tables/csv.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace harrowby::tables {

namespace {

/// Spreadsheets skip leading white space, and some treat the full-width forms of these characters alike.
bool looksLikeFormula(const QString &text)
{
    static const QString signs = u"=+-@\uff1d\uff0b\uff0d\uff20"_s;
    if (text.startsWith(u'\t') || text.startsWith(u'\r') || text.startsWith(u'\n'))
        return true;
    const auto first = std::find_if_not(text.begin(), text.end(), [](QChar c) { return c.isSpace(); });
    return first != text.end() && signs.contains(*first);
}

QString quoted(QString field)
{
    const bool needsQuotes =
        std::any_of(field.begin(), field.end(), [](QChar c) { return u",\"\r\n"_s.contains(c); }) ||
        field.startsWith(u' ') || field.endsWith(u' ');
    if (!needsQuotes)
        return field;
    return u'"' + field.replace(u'"', u"\"\""_s) + u'"';
}

QString textField(const QString &text)
{
    return quoted(looksLikeFormula(text) ? u'\'' + text : text);
}

QString field(const Cell &cell, Kind kind)
{
    const QString text = plainCell(cell, kind);
    return std::holds_alternative<QString>(cell) ? textField(text) : text;
}

} // namespace

QByteArray toCsv(const Table &table)
{
    const QByteArray lineEnd = "\r\n";
    QStringList fields;
    for (const Column &column : table.columns)
        fields << textField(column.heading);
    QByteArray csv = fields.join(u',').toUtf8() + lineEnd;
    for (const Row &row : table.rows) {
        fields.clear();
        for (std::size_t i = 0; i < table.columns.size(); ++i)
            fields << field(row.at(i), table.columns.at(i).kind);
        csv += fields.join(u',').toUtf8() + lineEnd;
    }
    return csv;
}

} // namespace harrowby::tables
