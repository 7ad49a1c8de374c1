// SPDX-License-Identifier: MIT
#include "app/catalogue/item_statements.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

const auto leftOutReason = u"The store has changed since the preview."_s;
const auto notBackReason = u"It was changed after the import."_s;

/// Rows of this import, in a statement that calls them r.
const QString ofImport = u"r.ImportID = ? and r.What = %1 and r.LeftOut = 0"_s;

QString rowsOf(RowKind kind)
{
    return ofImport.arg(static_cast<int>(kind));
}

QList<int> partsOf(int mask)
{
    QList<int> parts;
    for (int part = 0; part < importedParts; ++part) {
        if ((mask & maskOf(part)) != 0)
            parts << part;
    }
    return parts;
}

QString bitOf(int part)
{
    return u"(r.Mask & %1)"_s.arg(maskOf(part));
}

/// The item, called `item`, has the row's old ("Old") or new ("New") values in what the row changes.
QString asIn(const QString &item, const ItemGroup &group, const QString &version)
{
    QStringList conditions;
    for (const int part : partsOf(group.mask)) {
        const QString same = u"%1.%2 is not distinct from r.%3"_s.arg(item, partColumn(part), version + partName(part));
        conditions << (group.isMixed ? u"(%1 = 0 or %2)"_s.arg(bitOf(part), same) : same);
    }
    return conditions.join(u" and "_s);
}

/// Sets what the row changes to its new or old values.
QString settingTo(const ItemGroup &group, const QString &version)
{
    QStringList settings;
    for (const int part : partsOf(group.mask)) {
        const QString value = u"r."_s + version + partName(part);
        const QString column = partColumn(part);
        settings << column + u" = "_s +
                        (group.isMixed
                             ? u"case when %1 <> 0 then %2 else StockList.%3 end"_s.arg(bitOf(part), value, column)
                             : value);
    }
    return settings.join(u", "_s);
}

QString inGroup(const ItemGroup &group)
{
    return group.isMixed ? u" and r.Mask <> 0"_s : u" and r.Mask = %1"_s.arg(group.mask);
}

/// No other item has the name that the row gives.
QString nameIsFree(const ItemGroup &group)
{
    if ((group.mask & maskOf(NamePart)) == 0)
        return {};
    const auto taken = u"exists (select 1 from StockList o where UPPER(o.StockName) = r.NewName and "
                       "o.StockID is distinct from r.StockID)"_s;
    return group.isMixed ? u" and (%1 = 0 or not %2)"_s.arg(bitOf(NamePart), taken) : u" and not "_s + taken;
}

const auto isAlone = u"(select count(*) from StockList a where a.StockID = r.StockID) = 1"_s;

/// The item has all the new values, in a statement that calls it StockList.
QString isAsImported(bool isAsStored)
{
    QStringList conditions;
    for (int part = 0; part < (isAsStored ? itemParts : importedParts); ++part)
        conditions << u"StockList.%1 is not distinct from r.New%2"_s.arg(partColumn(part), partName(part));
    return conditions.join(u" and "_s);
}

/// The item has the codes that came with the row, and no others.
QString hasImportedCodes(bool hasCodes)
{
    if (!hasCodes)
        return {};
    return u" and not exists (select 1 from HarrowbyCode c where c.StockID = r.StockID and c.Code not in "
           "(select k.Code from HarrowbyImportCode k where k.ImportID = r.ImportID and k.Line = r.Line and k.What = 1 "
           "and k.StockID = c.StockID and k.Units = c.Units))"_s;
}

QStringList stockColumns()
{
    QStringList columns = {u"StockID"_s};
    for (int part = 0; part < itemParts; ++part)
        columns << partColumn(part);
    return columns;
}

RecordStatement marking(std::int64_t id, const QString &conditions, bool isReturn)
{
    const std::int64_t leftOut = isReturn ? 2 : 1;
    const QString &reason = isReturn ? notBackReason : leftOutReason;
    return {u"update HarrowbyImportRow as r set LeftOut = ?, Reason = ? where %1"_s.arg(conditions),
            {leftOut, reason, id}};
}

} // namespace

QList<ItemGroup> mixedGroups(const QList<ItemGroup> &groups)
{
    if (groups.size() <= mostGroups)
        return groups;
    ItemGroup all;
    all.isMixed = true;
    for (const ItemGroup &group : groups) {
        all.mask |= group.mask;
        all.rows += group.rows;
    }
    return {all};
}

RecordStatement updateItems(std::int64_t id, const ItemGroup &group, const ItemStamp &stamp)
{
    return {u"update StockList set %1, StockLastUpdated = ?, StockLastModified = ?, StockReorderUser = ? "
            "from HarrowbyImportRow r where %2%3 and StockList.StockID = r.StockID and %4%5"_s.arg(
                settingTo(group, u"New"_s), rowsOf(RowKind::Changed), inGroup(group),
                asIn(u"StockList"_s, group, u"Old"_s), nameIsFree(group)),
            {stamp.time, stamp.user, stamp.user, id}};
}

RecordStatement restoreItems(std::int64_t id, const ItemGroup &group, const ItemStamp &stamp)
{
    const auto asBefore = [](const QString &column, const QString &old) {
        return u"%1 = case when StockList.%1 is not distinct from ? then r.%2 else StockList.%1 end"_s.arg(column, old);
    };
    return {u"update StockList set %1, %2, %3, %4 from HarrowbyImportRow r where %5%6 and "
            "StockList.StockID = r.StockID and %7"_s.arg(
                settingTo(group, u"Old"_s), asBefore(u"StockLastUpdated"_s, u"OldUpdated"_s),
                asBefore(u"StockLastModified"_s, u"OldModified"_s),
                asBefore(u"StockReorderUser"_s, u"OldReorderUser"_s), rowsOf(RowKind::Changed), inGroup(group),
                asIn(u"StockList"_s, group, u"New"_s)),
            {stamp.time, stamp.user, stamp.user, id}};
}

RecordStatement markChangedItems(std::int64_t id, const ItemGroup &group, bool isReturn)
{
    const QString isSame = u"exists (select 1 from StockList s where s.StockID = r.StockID and %1)"_s.arg(
        asIn(u"s"_s, group, isReturn ? u"New"_s : u"Old"_s));
    const QString fits = isAlone + u" and "_s + isSame + (isReturn ? QString() : nameIsFree(group));
    return marking(id, rowsOf(RowKind::Changed) + inGroup(group) + u" and not (%1)"_s.arg(fits), isReturn);
}

RecordStatement insertItems(std::int64_t id, const ItemStamp &stamp)
{
    return {u"insert into StockList (%1) select r.StockID, r.NewName, r.NewCategory, r.NewCost, r.NewLevel, "
            "r.NewAvailable, r.NewUse, ?, ?, ?, ? from HarrowbyImportRow r where %2 and not exists "
            "(select 1 from StockList s where s.StockID = r.StockID) and not exists "
            "(select 1 from StockList s where UPPER(s.StockName) = r.NewName) order by r.Line"_s.arg(
                stockColumns().join(u", "_s), rowsOf(RowKind::New)),
            {stamp.time, stamp.user, stamp.user, stamp.user, id}};
}

RecordStatement insertAsStored(std::int64_t id)
{
    QStringList values = {u"r.StockID"_s};
    for (int part = 0; part < itemParts; ++part)
        values << u"r.New"_s + partName(part);
    return {u"insert into StockList (%1) select %2 from HarrowbyImportRow r where %3 order by r.Line"_s.arg(
                stockColumns().join(u", "_s), values.join(u", "_s), rowsOf(RowKind::New)),
            {id}};
}

RecordStatement markNewItems(std::int64_t id)
{
    return marking(id,
                   rowsOf(RowKind::New) +
                       u" and (exists (select 1 from StockList s where s.StockID = r.StockID) or exists "
                       "(select 1 from StockList s where UPPER(s.StockName) = r.NewName))"_s,
                   false);
}

RecordStatement removeItems(std::int64_t id, bool isAsStored, bool hasCodes)
{
    return {u"delete from StockList where exists (select 1 from HarrowbyImportRow r where "
            "r.StockID is not distinct from StockList.StockID and %1 and %2%3)"_s.arg(
                rowsOf(RowKind::New), isAsImported(isAsStored), isAsStored ? QString() : hasImportedCodes(hasCodes)),
            {id}};
}

RecordStatement markTouchedItems(std::int64_t id, bool isAsStored, bool hasCodes)
{
    return marking(
        id,
        rowsOf(RowKind::New) +
            u" and not (exists (select 1 from StockList where StockList.StockID is not distinct from "
            "r.StockID and %1)%2)"_s.arg(isAsImported(isAsStored), isAsStored ? QString() : hasImportedCodes(hasCodes)),
        true);
}

} // namespace harrowby::app
