// SPDX-License-Identifier: MIT
#include "app/catalogue/item_statements.h"

#include "app/catalogue/import_words.h"
#include "basic/reserved_categories.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

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

/// No other item has the name (in capitals) that the row gives.
QString nameIsFree(const ItemGroup &group, const QString &name)
{
    if ((group.mask & maskOf(NamePart)) == 0)
        return {};
    const auto taken = u"exists (select 1 from StockList o where UPPER(o.StockName) = %1 and "
                       "o.StockID is distinct from r.StockID)"_s.arg(name);
    return group.isMixed ? u" and (%1 = 0 or not %2)"_s.arg(bitOf(NamePart), taken) : u" and not "_s + taken;
}

const auto newName = u"r.NewName"_s;
const auto formerName = u"UPPER(r.OldName)"_s;

/// What makes a row go to another category, or a new item to its.
const QString goesToCategory =
    u"(r.What = %1 or (r.What = %2 and (r.Mask & %3) <> 0))"_s.arg(static_cast<int>(RowKind::New))
        .arg(static_cast<int>(RowKind::Changed))
        .arg(maskOf(CategoryPart));

/// Names of categories that rows need and no list would offer.
const QString lostCategories =
    u"select n.Name from (select distinct r.NewCategory as Name from HarrowbyImportRow r where r.ImportID = ? and "
    "r.LeftOut = 0 and %1) n where n.Name <> '%2' and not exists (select 1 from InventoryCategory c where "
    "c.CategoryName = n.Name) and not exists (select 1 from HarrowbyImportCategory k where k.ImportID = ? and "
    "k.CategoryName = n.Name)"_s.arg(goesToCategory, otherCategory);

/// That changed items had before.
const QString formerCategories =
    u"select distinct r.ImportID, r.OldCategory as Name from HarrowbyImportRow r where %1 and (r.Mask & %2) <> 0"_s.arg(
        rowsOf(RowKind::Changed), QString::number(maskOf(CategoryPart)));

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

/// An item of the store has the ID, the name, or the ID as its code. `hasCodes`: there is a table of codes.
QString newItemIsTaken(bool hasCodes)
{
    QString taken = u"exists (select 1 from StockList s where s.StockID = r.StockID) or exists "
                    "(select 1 from StockList s where UPPER(s.StockName) = r.NewName)"_s;
    if (hasCodes)
        taken += u" or exists (select 1 from HarrowbyCode c join StockList s on s.StockID = c.StockID "
                 "where c.Code = r.StockID)"_s;
    return u"("_s + taken + u")"_s;
}

QStringList stockColumns()
{
    QStringList columns = {u"StockID"_s};
    for (int part = 0; part < itemParts; ++part)
        columns << partColumn(part);
    return columns;
}

/// Of a staged row.
QStringList asStoredColumns()
{
    QStringList values = {u"r.StockID"_s};
    for (int part = 0; part < itemParts; ++part)
        values << u"r.New"_s + partName(part);
    return values;
}

RecordStatement marking(std::int64_t id, const QString &conditions, bool isReturn, const QString &reason = {})
{
    const int leftOut = isReturn ? 2 : 1;
    return {u"update HarrowbyImportRow as r set LeftOut = ?, Reason = ? where %1"_s.arg(conditions),
            {std::int64_t{leftOut}, reason.isEmpty() ? leftOutWords(leftOut) : reason, id}};
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

bool anyChanges(const QList<ItemGroup> &groups, int part)
{
    return std::ranges::any_of(groups, [&](const ItemGroup &group) { return (group.mask & maskOf(part)) != 0; });
}

RecordStatement updateItems(std::int64_t id, const ItemGroup &group, const ItemStamp &stamp)
{
    return {u"update StockList set %1, StockLastUpdated = ?, StockLastModified = ?, StockReorderUser = ? "
            "from HarrowbyImportRow r where %2%3 and StockList.StockID = r.StockID and %4%5"_s.arg(
                settingTo(group, u"New"_s), rowsOf(RowKind::Changed), inGroup(group),
                asIn(u"StockList"_s, group, u"Old"_s), nameIsFree(group, newName)),
            {stamp.time, stamp.user, stamp.user, id}};
}

RecordStatement restoreItems(std::int64_t id, const ItemGroup &group, const ItemStamp &stamp)
{
    const auto asBefore = [](const QString &column, const QString &old) {
        return u"%1 = case when StockList.%1 is not distinct from ? then r.%2 else StockList.%1 end"_s.arg(column, old);
    };
    return {u"update StockList set %1, %2, %3, %4 from HarrowbyImportRow r where %5%6 and "
            "StockList.StockID = r.StockID and %7%8"_s.arg(
                settingTo(group, u"Old"_s), asBefore(u"StockLastUpdated"_s, u"OldUpdated"_s),
                asBefore(u"StockLastModified"_s, u"OldModified"_s),
                asBefore(u"StockReorderUser"_s, u"OldReorderUser"_s), rowsOf(RowKind::Changed), inGroup(group),
                asIn(u"StockList"_s, group, u"New"_s), nameIsFree(group, formerName)),
            {stamp.time, stamp.user, stamp.user, id}};
}

RecordStatement markChangedItems(std::int64_t id, const ItemGroup &group, bool isReturn)
{
    const QString isSame = u"exists (select 1 from StockList s where s.StockID = r.StockID and %1)"_s.arg(
        asIn(u"s"_s, group, isReturn ? u"New"_s : u"Old"_s));
    const QString fits = isAlone + u" and "_s + isSame + (isReturn ? QString() : nameIsFree(group, newName));
    return marking(id, rowsOf(RowKind::Changed) + inGroup(group) + u" and not (%1)"_s.arg(fits), isReturn);
}

RecordStatement markTakenNames(std::int64_t id, const ItemGroup &group)
{
    return marking(
        id, rowsOf(RowKind::Changed) + inGroup(group) + u" and not (true%1)"_s.arg(nameIsFree(group, formerName)), true,
        takenNameWords());
}

RecordStatement countLostCategories(std::int64_t id)
{
    return {u"select count(*) from (%1) l"_s.arg(lostCategories), {id, id}};
}

RecordStatement markLostCategories(std::int64_t id)
{
    RecordStatement mark = marking(
        id, u"r.ImportID = ? and r.LeftOut = 0 and %1 and r.NewCategory in (%2)"_s.arg(goesToCategory, lostCategories),
        false, lostCategoryWords());
    mark.values << id << id;
    return mark;
}

RecordStatement noteFormerCategories(std::int64_t id)
{
    return {
        u"insert into HarrowbyImportCategory (ImportID, Line, LeftOut, CategoryName) select n.ImportID, 0, 1, n.Name "
        "from (%1) n where exists (select 1 from InventoryCategory c where c.CategoryName = n.Name)"_s.arg(
            formerCategories),
        {id}};
}

RecordStatement makeFormerCategories(std::int64_t id, const QString &entered)
{
    return {
        u"insert into InventoryCategory (CategoryName, EntryDate) select n.Name, ? from (%1) n where exists "
        "(select 1 from HarrowbyImportCategory k where k.ImportID = n.ImportID and k.LeftOut = 1 and "
        "k.CategoryName = n.Name) and not exists (select 1 from InventoryCategory c where c.CategoryName = n.Name)"_s
            .arg(formerCategories),
        {entered, id}};
}

RecordStatement insertItems(std::int64_t id, const ItemStamp &stamp, bool hasCodes)
{
    return {u"insert into StockList (%1) select r.StockID, r.NewName, r.NewCategory, r.NewCost, r.NewLevel, "
            "r.NewAvailable, r.NewUse, ?, ?, ?, ? from HarrowbyImportRow r where %2 and not %3 order by r.Line"_s.arg(
                stockColumns().join(u", "_s), rowsOf(RowKind::New), newItemIsTaken(hasCodes)),
            {stamp.time, stamp.user, stamp.user, stamp.user, id}};
}

RecordStatement insertAsStored(std::int64_t id)
{
    return {u"insert into StockList (%1) select %2 from HarrowbyImportRow r where %3 order by r.Line"_s.arg(
                stockColumns().join(u", "_s), asStoredColumns().join(u", "_s), rowsOf(RowKind::New)),
            {id}};
}

RecordStatement markNewItems(std::int64_t id, bool hasCodes)
{
    return marking(id, rowsOf(RowKind::New) + u" and "_s + newItemIsTaken(hasCodes), false);
}

RecordStatement removeItems(std::int64_t id, bool isAsStored, bool hasCodes)
{
    return {u"delete from StockList where exists (select 1 from HarrowbyImportRow r where "
            "r.StockID is not distinct from StockList.StockID and %1 and %2%3)"_s.arg(
                rowsOf(RowKind::New), isAsImported(isAsStored), isAsStored ? QString() : hasImportedCodes(hasCodes)),
            {id}};
}

/// Also where the store has an item more often or less often than the import wrote it.
RecordStatement markTouchedItems(std::int64_t id, bool isAsStored, bool hasCodes)
{
    const QString inStore = u"(select count(*) from StockList where StockList.StockID is not distinct from r.StockID "
                            "and %1)"_s.arg(isAsImported(isAsStored));
    if (!isAsStored)
        return marking(id, rowsOf(RowKind::New) + u" and not (%1 = 1%2)"_s.arg(inStore, hasImportedCodes(hasCodes)),
                       true);
    RecordStatement mark =
        marking(id,
                rowsOf(RowKind::New) + u" and r.Line in (select q.Line from (select r.Line, count(*) over (partition "
                                       u"by %1) as Written, %2 as There "
                                       "from HarrowbyImportRow r where %3) q where q.Written <> q.There)"_s.arg(
                                           asStoredColumns().join(u", "_s), inStore, rowsOf(RowKind::New)),
                true);
    mark.values << id;
    return mark;
}

} // namespace harrowby::app
