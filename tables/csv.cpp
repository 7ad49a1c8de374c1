// SPDX-License-Identifier: MIT
#include "tables/csv.h"

#include "basic/csv_cell.h"

using namespace Qt::StringLiterals;

namespace harrowby::tables {

namespace {

QString textField(const QString &text)
{
    return quotedCell(guardedText(text), u',');
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
