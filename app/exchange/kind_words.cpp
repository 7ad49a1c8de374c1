// SPDX-License-Identifier: MIT
#include "app/exchange/kind_words.h"

#include "app/catalogue/import_columns.h"
#include "app/catalogue/import_list.h"
#include "app/exchange/grid_view.h"
#include "basic/numbers.h"

#include <QStringList>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

QString columnWords(ImportKind kind, const QString &column)
{
    const int place = importColumn(kind, column);
    return place >= 0 ? importColumns(kind).at(place).words : column;
}

QString cellWords(const ImportCell &cell, RowFilter state, ImportKind kind)
{
    const QString column = columnWords(kind, cell.column);
    const QString after = cell.after.isEmpty() ? u"(nothing)"_s : lineOf(cell.after);
    if (state == RowFilter::New)
        return u"%1 %2"_s.arg(column, after);
    const QString before = cell.before.isEmpty() ? u"(nothing)"_s : lineOf(cell.before);
    return u"%1 %2 \u2192 %3"_s.arg(column, before, after);
}

} // namespace

QString kindWords(ImportKind kind)
{
    switch (kind) {
    case ImportKind::Categories:
        return u"Categories"_s;
    case ImportKind::Codes:
        return u"Codes of items"_s;
    case ImportKind::Items:
        break;
    }
    return u"Items"_s;
}

QString groupedCount(qint64 count)
{
    return formatCount(static_cast<double>(count));
}

QString countsWords(const ImportCounts &counts)
{
    return u"%1 new, %2 changed, %3 unchanged, %4 refused"_s.arg(
        groupedCount(counts.fresh), groupedCount(counts.changed), groupedCount(counts.unchanged),
        groupedCount(counts.refused));
}

QString filterWords(RowFilter filter)
{
    return filter == RowFilter::All ? u"all rows"_s : stateWords(filter);
}

QString rowWords(const ImportedRow &row, ImportKind kind)
{
    if (!row.reason.isEmpty())
        return row.column.isEmpty() ? row.reason : u"Column \"%1\": %2"_s.arg(lineOf(row.column), row.reason);
    QStringList words;
    for (const ImportCell &cell : row.cells) {
        // ID and name of a new item stand in columns of their own.
        const bool isShown = cell.after.isEmpty() || cell.column == u"StockID" || cell.column == u"StockName";
        if (row.state != RowFilter::New || !isShown)
            words << cellWords(cell, row.state, kind);
    }
    return words.join(u"; "_s);
}

} // namespace harrowby::app
