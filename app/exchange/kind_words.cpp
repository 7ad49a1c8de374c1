// SPDX-License-Identifier: MIT
#include "app/exchange/kind_words.h"

#include "app/catalogue/import_columns.h"
#include "app/exchange/grid_view.h"

#include <QLocale>
#include <QStringList>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

QString columnWords(ImportKind kind, const QString &column)
{
    const QList<ImportColumn> &columns = importColumns(kind);
    const auto found =
        std::find_if(columns.cbegin(), columns.cend(), [&](const ImportColumn &one) { return one.name == column; });
    return found != columns.cend() ? found->words : column;
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

const QList<ImportKind> &importKinds()
{
    static const QList<ImportKind> kinds = {ImportKind::Items, ImportKind::Categories, ImportKind::Codes};
    return kinds;
}

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
    return QLocale(QLocale::English).toString(count);
}

QString countsWords(const ImportCounts &counts)
{
    return u"%1 new, %2 changed, %3 unchanged, %4 refused"_s.arg(
        groupedCount(counts.fresh), groupedCount(counts.changed), groupedCount(counts.unchanged),
        groupedCount(counts.refused));
}

QString filterWords(RowFilter filter)
{
    return filter == RowFilter::All ? u"all rows"_s : rowStateWords(filter);
}

qint64 countOf(const ImportCounts &counts, RowFilter filter)
{
    switch (filter) {
    case RowFilter::New:
        return counts.fresh;
    case RowFilter::Changed:
        return counts.changed;
    case RowFilter::Unchanged:
        return counts.unchanged;
    case RowFilter::Refused:
        return counts.refused;
    case RowFilter::All:
    case RowFilter::LeftOut:
    case RowFilter::NotTakenBack:
        break;
    }
    return counts.all();
}

QString rowStateWords(RowFilter state)
{
    switch (state) {
    case RowFilter::New:
        return u"new"_s;
    case RowFilter::Changed:
        return u"changed"_s;
    case RowFilter::Unchanged:
        return u"unchanged"_s;
    case RowFilter::Refused:
        return u"refused"_s;
    case RowFilter::LeftOut:
        return u"left out"_s;
    case RowFilter::NotTakenBack:
        return u"not taken back"_s;
    case RowFilter::All:
        break;
    }
    return {};
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
