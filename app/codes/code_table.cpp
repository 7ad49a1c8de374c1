// SPDX-License-Identifier: MIT
#include "app/codes/code_table.h"

#include "app/codes/code_text.h"
#include "app/codes/gtin.h"
#include "app/records/statement_pieces.h"
#include "app/shop/failure_text.h"
#include "basic/text.h"

#include <algorithm>
#include <tuple>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

const auto notAdded = u"The code was not added."_s;

QList<RecordValue> valuesOf(const QStringList &texts)
{
    return {texts.begin(), texts.end()};
}

/// Columns: Code, StockID, Units, the item's StockID and StockName.
ItemCode entryOf(const RecordRow &row)
{
    constexpr std::int64_t most = mostUnits;
    ItemCode entry;
    entry.code = recordText(row.at(0));
    entry.stockId = recordText(row.at(1));
    entry.storedUnits = recordNumber(row.at(2));
    entry.units = static_cast<int>(std::clamp<std::int64_t>(entry.storedUnits, 1, most));
    // A foreign store may compare IDs as numbers, or without regard to case.
    entry.isOrphan = entry.stockId.isEmpty() || recordText(row.at(3)) != entry.stockId;
    if (!entry.isOrphan)
        entry.name = recordText(row.at(4));
    return entry;
}

QString selectEntries(const QString &where)
{
    return u"select c.Code, c.StockID, c.Units, s.StockID, s.StockName from HarrowbyCode c "
           "left join StockList s on s.StockID = c.StockID"_s +
           where;
}

template <typename T>
std::optional<DbFailure> failureIn(const Records::Answer<T> &answer)
{
    return answer ? std::nullopt : std::optional(answer.error());
}

} // namespace

Records::Answer<QList<ItemCode>> CodeTable::list() const
{
    const auto rows = m_records.read(kept::code(), {selectEntries({}), {}});
    if (!rows)
        return Unexpected(rows.error());
    QList<ItemCode> all;
    for (const RecordRow &row : *rows)
        all << entryOf(row);
    const auto key = [](const ItemCode &entry) { return std::tie(entry.stockId, entry.code, entry.isOrphan); };
    std::sort(all.begin(), all.end(), [&](const ItemCode &a, const ItemCode &b) { return key(a) < key(b); });
    // Where two items have one ID, the code is still one.
    const auto isSame = [](const ItemCode &a, const ItemCode &b) { return a.code == b.code; };
    all.erase(std::unique(all.begin(), all.end(), isSame), all.end());
    return all;
}

Records::Answer<QList<StockItem>> CodeTable::itemsWithIds(const QStringList &ids) const
{
    const auto rows = m_records.read(
        {u"select StockID, StockName, StockCost from StockList where StockID in (%1)"_s.arg(placesFor(ids.size())),
         valuesOf(ids)});
    if (!rows)
        return Unexpected(rows.error());
    QList<StockItem> items;
    for (const RecordRow &row : *rows) {
        if (const QString id = recordText(row.at(0)); ids.contains(id))
            items << StockItem{id, recordText(row.at(1)), recordText(row.at(2))};
    }
    return items;
}

Records::Answer<QList<StockItem>> CodeTable::itemsLike(const QString &text, int most) const
{
    const QString pattern = u'%' + escapedForLike(trimmedUpper(text)) + u'%';
    const auto rows =
        m_records.read({u"select StockID, StockName, StockCost from StockList where upper(StockID) like ? escape '\\' "
                        "or upper(StockName) like ? escape '\\' order by StockName, StockID limit %1"_s.arg(most),
                        {pattern, pattern}});
    if (!rows)
        return Unexpected(rows.error());
    QList<StockItem> items;
    for (const RecordRow &row : *rows)
        items << StockItem{recordText(row.at(0)), recordText(row.at(1)), recordText(row.at(2))};
    return items;
}

Records::Answer<QList<ItemCode>> CodeTable::entries(const QStringList &codes) const
{
    const auto rows = m_records.read(
        kept::code(), {selectEntries(u" where c.Code in (%1)"_s.arg(placesFor(codes.size()))), valuesOf(codes)});
    if (!rows)
        return Unexpected(rows.error());
    QList<ItemCode> found;
    for (const RecordRow &row : *rows)
        found << entryOf(row);
    return found;
}

CodeTable::Problem CodeTable::takenBy(const QString &code, const QString &stockId) const
{
    QStringList spellings = gtinSpellings(code);
    if (spellings.isEmpty())
        spellings << code;
    const auto items = itemsWithIds(spellings);
    if (!items)
        return failureWords(notAdded, items.error());
    const auto entered = entries(spellings);
    if (!entered)
        return failureWords(notAdded, entered.error());
    return takenWords(code, stockId, *items, *entered);
}

CodeTable::Problem CodeTable::add(const QString &text, const QString &stockId, int units)
{
    const auto code = checkCode(text);
    if (!code)
        return u"This is no code: %1."_s.arg(code.error());
    if (const auto taken = readUnits(QString::number(units)); !taken)
        return taken.error();
    const auto deed = told(u"The code %1 was added to %2, %3 for one scan."_s.arg(*code, stockId).arg(units));
    Problem problem;
    if (const auto failure = deed ? m_records.prepare(*deed->table) : std::nullopt)
        return failureWords(notAdded, *failure);
    const auto added = m_records.together(kept::code(), [&] {
        problem = takenBy(*code, stockId);
        if (problem)
            return false;
        auto written =
            m_records.write(kept::code(), {u"insert into HarrowbyCode (Code, StockID, Units) values (?, ?, ?)"_s,
                                           {*code, stockId, static_cast<std::int64_t>(units)}});
        if (written && deed)
            written = m_records.write(*deed->table, *deed);
        if (!written)
            problem = failureWords(notAdded, written.error());
        return !problem;
    });
    if (!problem && !(added && *added)) // without a failure it has thrown, which the records have logged
        problem = failureWords(notAdded, added ? DbFailure() : added.error());
    return problem;
}

std::optional<RecordStatement> CodeTable::told(const QString &what) const
{
    return m_deeds ? std::optional(m_deeds->statement(deed::codeChanged, what)) : std::nullopt;
}

Records::Answer<bool> CodeTable::setUnits(const ItemCode &seen, int units)
{
    const std::int64_t taken = std::clamp(units, 1, mostUnits);
    return writeTold(m_records, kept::code(),
                     {u"update HarrowbyCode set Units = ? where Code = ? and cast(Units as integer) = ?"_s,
                      {taken, seen.code, seen.storedUnits}},
                     told(u"One scan of %1 sells %2, before %3."_s.arg(seen.code).arg(taken).arg(seen.units)));
}

Records::Answer<bool> CodeTable::remove(const ItemCode &seen)
{
    return writeTold(m_records, kept::code(),
                     {u"delete from HarrowbyCode where Code = ? and StockID = ? and cast(Units as integer) = ?"_s,
                      {seen.code, seen.stockId, seen.storedUnits}},
                     told(u"The code %1 of %2 was deleted."_s.arg(seen.code, seen.stockId)));
}

Records::Answer<bool> CodeTable::giveTo(const ItemCode &seen, const QString &stockId)
{
    return writeTold(
        m_records, kept::code(),
        {u"update HarrowbyCode set StockID = ? where Code = ? and StockID = ?"_s, {stockId, seen.code, seen.stockId}},
        told(u"The code %1 was given to %2, before of %3."_s.arg(seen.code, stockId, seen.stockId)));
}

std::optional<DbFailure> CodeTable::itemRenamed(const QString &oldId, const QString &newId)
{
    if (oldId.isEmpty() || oldId == newId)
        return {};
    const auto left = itemsWithIds({oldId});
    if (!left)
        return left.error();
    if (!left->isEmpty())
        return {};
    return moveCodes(oldId, newId);
}

std::optional<DbFailure> CodeTable::itemAdded(const QString &id)
{
    const auto sharing = itemsWithIds({id});
    if (!sharing)
        return sharing.error();
    return sharing->size() > 1 ? std::nullopt : moveCodes(id, {});
}

/// Looks first, so that a shop without codes gets no table of them.
std::optional<DbFailure> CodeTable::moveCodes(const QString &oldId, const QString &newId)
{
    const auto codes = m_records.read(kept::code(), {u"select Code from HarrowbyCode where StockID = ?"_s, {oldId}});
    if (!codes || codes->isEmpty())
        return failureIn(codes);
    return failureIn(
        m_records.write(kept::code(), {u"update HarrowbyCode set StockID = ? where StockID = ?"_s, {newId, oldId}}));
}

QString ownIdWords(const QString &code)
{
    return u"%1 is the item's own ID, which is read without an entry."_s.arg(code);
}

QString belongsToWords(const QString &name, const QString &stockId)
{
    return u"The code is taken: it belongs to %1."_s.arg(itemWords(name, stockId));
}

std::optional<QString> takenWords(const QString &code, const QString &stockId, const QList<StockItem> &items,
                                  const QList<ItemCode> &entries)
{
    for (const StockItem &item : items) {
        if (item.id == stockId)
            return ownIdWords(shownCode(code));
        return u"The code is taken: it is the ID of %1."_s.arg(itemWords(item.name, item.id));
    }
    if (entries.isEmpty())
        return {};
    const ItemCode &entry = entries.constFirst();
    if (entry.isOrphan)
        return u"The code is taken by an item that is gone. Delete it there, or give it to this item."_s;
    if (entry.stockId == stockId)
        return u"%1 has the code already, as %2."_s.arg(itemWords(entry.name, stockId), entry.code);
    return belongsToWords(entry.name, entry.stockId);
}

Result<int, QString> readUnits(const QString &text)
{
    bool isWhole = false;
    const int units = text.trimmed().toInt(&isWhole);
    if (!isWhole || units < 1 || units > mostUnits)
        return Unexpected(u"A scan can sell 1 to %1 units."_s.arg(mostUnits));
    return units;
}

QString itemWords(const QString &name, const QString &id)
{
    return u"%1 (%2)"_s.arg(shownCode(name), shownCode(id));
}

} // namespace harrowby::app
