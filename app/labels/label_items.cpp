// SPDX-License-Identifier: MIT
#include "app/labels/label_items.h"

#include "app/catalogue/last_import.h"
#include "app/codes/code_table.h"
#include "app/records/statement_pieces.h"
#include "basic/text.h"

#include <QHash>

#include <algorithm>
#include <tuple>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

void sortCodes(QList<LabelCode> &codes)
{
    const auto key = [](const LabelCode &code) { return std::tuple(code.units != 1, code.code); };
    std::sort(codes.begin(), codes.end(), [&](const LabelCode &a, const LabelCode &b) { return key(a) < key(b); });
}

/// Columns: StockID, Code, Units.
void addCodes(QList<LabelItem> &items, const QList<RecordRow> &rows)
{
    QHash<QString, QList<LabelCode>> codes;
    for (const RecordRow &row : rows) {
        const auto units = std::clamp<std::int64_t>(recordNumber(row.at(2)), 1, mostUnits);
        codes[recordText(row.at(0))] << LabelCode{recordText(row.at(1)), static_cast<int>(units)};
    }
    for (LabelItem &item : items) {
        item.codes = codes.value(item.id);
        sortCodes(item.codes);
    }
}

} // namespace

/// False where there is no such table.
LabelItems::Answer<bool> LabelItems::hasRows(const RecordTable &table) const
{
    const auto rows = m_records.read(table, {u"select 1 from %1 limit 1"_s.arg(table.name), {}});
    if (!rows)
        return Unexpected(rows.error());
    return !rows->isEmpty();
}

LabelItems::Answer<bool> LabelItems::hasImport() const
{
    const auto last = lastImport(m_records);
    if (!last)
        return Unexpected(last.error());
    return *last != 0;
}

LabelItems::Answer<RecordStatement> LabelItems::condition(const LabelQuery &query) const
{
    const auto hasCodes = hasRows(kept::code());
    if (!hasCodes)
        return Unexpected(hasCodes.error());
    RecordStatement where{u" from StockList s where s.StockUse = 'Enabled'"_s, {}};
    if (query.category) {
        where.text += u" and s.StockCategory = ?"_s;
        where.values << *query.category;
    }
    if (query.which == LabelQuery::Which::WithoutCode && *hasCodes)
        where.text += u" and not exists (select 1 from HarrowbyCode c where c.StockID = s.StockID)"_s;
    if (query.which == LabelQuery::Which::LastImport) {
        const auto last = lastImport(m_records);
        if (!last)
            return Unexpected(last.error());
        where.text += *last == 0 ? u" and 1 = 0"_s : u" and s.StockID in (%1)"_s.arg(importedIds());
        if (*last != 0)
            where.values << *last;
    }
    if (!query.text.trimmed().isEmpty()) {
        const QString pattern = u'%' + escapedForLike(trimmedUpper(query.text)) + u'%';
        where.text += u" and (upper(s.StockID) like ? escape '\\' or upper(s.StockName) like ? escape '\\'"_s;
        where.values << pattern << pattern;
        if (*hasCodes) {
            where.text += u" or s.StockID in (select c.StockID from HarrowbyCode c where upper(c.Code) like ? "
                          "escape '\\')"_s;
            where.values << pattern;
        }
        where.text += u')';
    }
    return where;
}

LabelItems::Answer<QList<LabelItem>> LabelItems::read(const LabelQuery &query, const QString &limit) const
{
    auto statement = condition(query);
    if (!statement)
        return Unexpected(statement.error());
    statement->text =
        u"select s.StockID, s.StockName, s.StockCost, s.StockAvailable, (select count(*) from StockList o "
        "where o.StockID = s.StockID and o.StockName is distinct from s.StockName)"_s +
        statement->text + u" order by s.StockName, s.StockID"_s + limit;
    const auto rows = m_records.read(*statement);
    if (!rows)
        return Unexpected(rows.error());
    QList<LabelItem> items;
    items.reserve(rows->size());
    for (const RecordRow &row : *rows)
        items << LabelItem{
            recordText(row.at(0)),       recordText(row.at(1)), recordText(row.at(2)), recordReal(row.at(3)), {},
            recordNumber(row.at(4)) != 0};
    return items;
}

LabelItems::Answer<QList<LabelItem>> LabelItems::first(const LabelQuery &query, int most) const
{
    return read(query, u" limit %1"_s.arg(most));
}

LabelItems::Answer<QList<LabelItem>> LabelItems::find(const LabelQuery &query) const
{
    auto items = read(query, {});
    if (!items || items->isEmpty())
        return items;
    const auto codes = m_records.read(kept::code(), {u"select StockID, Code, Units from HarrowbyCode"_s, {}});
    if (!codes)
        return Unexpected(codes.error());
    addCodes(*items, *codes);
    return items;
}

LabelItems::Answer<LabelItem> LabelItems::withCodes(LabelItem item) const
{
    const auto codes =
        m_records.read(kept::code(), {u"select StockID, Code, Units from HarrowbyCode where StockID = ?"_s, {item.id}});
    if (!codes)
        return Unexpected(codes.error());
    QList<LabelItem> one = {std::move(item)};
    addCodes(one, *codes);
    return one.takeFirst();
}

LabelItems::Answer<qint64> LabelItems::count(const LabelQuery &query) const
{
    auto statement = condition(query);
    if (!statement)
        return Unexpected(statement.error());
    statement->text.prepend(u"select count(*)"_s);
    const auto rows = m_records.read(*statement);
    if (!rows)
        return Unexpected(rows.error());
    return recordNumber(rows->constFirst().constFirst());
}

LabelItems::Answer<QStringList> LabelItems::categories() const
{
    const auto rows = m_records.read(
        {u"select distinct StockCategory from StockList where StockUse = 'Enabled' order by StockCategory"_s, {}});
    if (!rows)
        return Unexpected(rows.error());
    QStringList names;
    for (const RecordRow &row : *rows)
        names << recordText(row.constFirst());
    return names;
}

} // namespace harrowby::app
