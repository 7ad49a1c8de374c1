// SPDX-License-Identifier: MIT
#include "app/catalogue/import_list.h"

#include "app/catalogue/import_columns.h"
#include "app/catalogue/item_judge.h"
#include "app/records/statement_pieces.h"
#include "basic/numbers.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

QString listCondition(RowFilter filter)
{
    switch (filter) {
    case RowFilter::New:
        return u" and What = 1 and LeftOut = 0"_s;
    case RowFilter::Changed:
        return u" and What = 2 and LeftOut = 0"_s;
    case RowFilter::Unchanged:
        return u" and What = 3"_s;
    case RowFilter::Refused:
        return u" and What = 4"_s;
    case RowFilter::LeftOut:
        return u" and LeftOut = 1"_s;
    case RowFilter::NotTakenBack:
        return u" and LeftOut = 2"_s;
    default:
        return {};
    }
}

/// Line, What, Mask, LeftOut, StockID, AtColumn, Reason, then the new and the old values that a file can bring.
QString listFields()
{
    QStringList fields = {u"Line, What, Mask, LeftOut, StockID, AtColumn, Reason"_s};
    for (const QString &version : {u"New"_s, u"Old"_s}) {
        for (int part = 0; part < importedParts; ++part)
            fields << version + partName(part);
    }
    return fields.join(u", "_s);
}

constexpr int newPlace = 7;
constexpr int oldPlace = newPlace + importedParts;

RowFilter stateOf(int what, int leftOut)
{
    if (leftOut != 0)
        return leftOut == 1 ? RowFilter::LeftOut : RowFilter::NotTakenBack;
    switch (static_cast<RowKind>(what)) {
    case RowKind::New:
        return RowFilter::New;
    case RowKind::Changed:
        return RowFilter::Changed;
    case RowKind::Unchanged:
        return RowFilter::Unchanged;
    default:
        return RowFilter::Refused;
    }
}

/// A cost that is written as the stock form does: with two decimals. A file keeps that text, a server the figure.
QString costText(const RecordValue &cost)
{
    const bool isText = std::holds_alternative<QString>(cost) || std::holds_alternative<std::monostate>(cost);
    return isText ? recordText(cost) : formatFixed(recordReal(cost));
}

} // namespace

QString stateWords(RowFilter state)
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
    default:
        return {};
    }
}

Records::Answer<qint64> ImportList::count(RowFilter filter) const
{
    const auto rows = m_records.read(
        kept::import(),
        {u"select count(*) from HarrowbyImportRow where ImportID = ?"_s + listCondition(filter), {m_import.id}});
    if (!rows)
        return Unexpected(rows.error());
    return rows->isEmpty() ? 0 : recordNumber(rows->constFirst().constFirst());
}

Records::Answer<QList<ImportedRow>> ImportList::rows(RowFilter filter, qint64 from, qint64 most) const
{
    return read(listCondition(filter), u" limit ? offset ?"_s, {m_import.id, std::int64_t{most}, std::int64_t{from}});
}

Records::Answer<QList<ImportedRow>> ImportList::rowsBehind(RowFilter filter, qint64 line, qint64 most) const
{
    return read(listCondition(filter) + u" and Line > ?"_s, u" limit ?"_s,
                {m_import.id, std::int64_t{line}, std::int64_t{most}});
}

Records::Answer<QList<ImportedRow>> ImportList::read(const QString &condition, const QString &end,
                                                     const QList<RecordValue> &values) const
{
    const auto records = m_records.read(
        kept::import(),
        {u"select %1 from HarrowbyImportRow where ImportID = ?%2 order by Line%3"_s.arg(listFields(), condition, end),
         values});
    if (!records)
        return Unexpected(records.error());
    QList<ImportedRow> rows;
    rows.reserve(records->size());
    for (const RecordRow &record : *records)
        rows << rowOf(record);
    auto failure = addCodes(rows);
    if (!failure && m_import.importKind() == ImportKind::Items)
        failure = addPresent(rows);
    if (failure)
        return Unexpected(*failure);
    return rows;
}

ImportedRow ImportList::rowOf(const RecordRow &record) const
{
    ImportedRow row;
    const int what = static_cast<int>(recordNumber(record.at(1)));
    const int mask = static_cast<int>(recordNumber(record.at(2)));
    row.line = recordNumber(record.at(0));
    row.state = stateOf(what, static_cast<int>(recordNumber(record.at(3))));
    row.key = recordText(record.at(4));
    row.column = recordText(record.at(5));
    row.reason = recordText(record.at(6));
    if (m_import.importKind() != ImportKind::Items)
        return row;
    const bool keepsName = what == 2 && (mask & maskOf(NamePart)) == 0;
    row.name = recordText(record.at((keepsName ? oldPlace : newPlace) + NamePart));
    const bool isNew = what == 1;
    for (int part = 0; part < importedParts && what < 3; ++part) {
        if (isNew || (mask & maskOf(part)) != 0)
            row.cells << ImportCell{partColumn(part), isNew ? QString() : recordText(record.at(oldPlace + part)),
                                    part == CostPart && !m_import.isAsStored()
                                        ? costText(record.at(newPlace + part))
                                        : recordText(record.at(newPlace + part))};
    }
    return row;
}

/// What comes or changes in the table of codes.
std::optional<DbFailure> ImportList::addCodes(QList<ImportedRow> &rows) const
{
    if (rows.isEmpty())
        return {};
    const auto codes = m_records.read(
        kept::import(), {u"select Line, What, Code, StockID, Units, OldStockID, OldUnits from HarrowbyImportCode where "
                         u"ImportID = ? and "
                         "Line >= ? and Line <= ?"_s,
                         {m_import.id, std::int64_t{rows.constFirst().line}, std::int64_t{rows.constLast().line}}});
    if (!codes)
        return codes.error();
    const bool isCodes = m_import.importKind() == ImportKind::Codes;
    for (const RecordRow &code : *codes) {
        const auto row = std::ranges::lower_bound(rows, recordNumber(code.at(0)), {}, &ImportedRow::line);
        if (row == rows.end() || row->line != recordNumber(code.at(0)))
            continue;
        const bool isNew = recordNumber(code.at(1)) == 1;
        if (!isCodes && isNew)
            row->cells << ImportCell{u"Code"_s, {}, recordText(code.at(2))};
        if (isCodes && (isNew || code.at(3) != code.at(5)))
            row->cells << ImportCell{u"StockID"_s, recordText(code.at(5)), recordText(code.at(3))};
        if (isCodes && (isNew || code.at(4) != code.at(6)))
            row->cells << ImportCell{u"Units"_s, recordText(code.at(6)), recordText(code.at(4))};
    }
    return {};
}

/// Of rows that were left as they are: what the import knew or wrote, and what is there now.
std::optional<DbFailure> ImportList::addPresent(QList<ImportedRow> &rows) const
{
    QList<RecordValue> ids;
    for (const ImportedRow &row : std::as_const(rows)) {
        if (row.state == RowFilter::LeftOut || row.state == RowFilter::NotTakenBack)
            ids << row.key;
    }
    if (ids.isEmpty())
        return {};
    const auto items = m_records.read(
        {u"select StockID, StockName, StockCategory, StockCost, StockReorderLevel, StockAvailable, StockUse "
         "from StockList where StockID in (%1)"_s.arg(placesFor(ids.size())),
         ids});
    if (!items)
        return items.error();
    QHash<QString, RecordRow> present;
    for (const RecordRow &item : *items)
        present.insert(recordText(item.at(0)), item);
    for (ImportedRow &row : rows) {
        const auto item = present.constFind(row.key);
        if (row.state != RowFilter::LeftOut && row.state != RowFilter::NotTakenBack)
            continue;
        for (ImportCell &cell : row.cells) {
            const int column = importColumn(ImportKind::Items, cell.column);
            if (row.state == RowFilter::NotTakenBack)
                cell.before = cell.after;
            cell.after = item != present.constEnd() && column <= UseColumn ? recordText(item->at(column)) : QString();
        }
    }
    return {};
}

} // namespace harrowby::app
