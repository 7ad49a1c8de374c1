// SPDX-License-Identifier: MIT
#include "app/catalogue/code_statements.h"

#include "app/catalogue/import_words.h"

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

/// Codes of an import, in a statement that calls them k.
QString codesOf(RowKind kind)
{
    return u"k.ImportID = ? and k.What = %1 and k.LeftOut = 0"_s.arg(static_cast<int>(kind));
}

const auto spellings = u"(k.Code, k.Spelling1, k.Spelling2, k.Spelling3)"_s;

const auto codeIsTaken = u"(exists (select 1 from HarrowbyCode c where c.Code in %1) or "
                         "exists (select 1 from StockList s where s.StockID in %1))"_s.arg(spellings);

/// In a statement that calls the entry `c`.
QString isEntry(const QString &version)
{
    return u"c.Code = k.Code and c.StockID is not distinct from k.%1StockID and "
           "c.Units is not distinct from k.%1Units"_s.arg(version);
}

RecordStatement markingCodes(std::int64_t id, int leftOut, const QString &conditions)
{
    return {u"update HarrowbyImportCode as k set LeftOut = ? where %1"_s.arg(conditions), {std::int64_t{leftOut}, id}};
}

} // namespace

RecordStatement stageLeftCodes(std::int64_t id)
{
    return {u"insert into HarrowbyImportCode (ImportID, Line, What, LeftOut, Code, StockID, Units, OldStockID, "
            "OldUnits) select r.ImportID, r.Line, 2, 0, c.Code, '', c.Units, c.StockID, c.Units from HarrowbyCode c "
            "join HarrowbyImportRow r on r.StockID = c.StockID where r.ImportID = ? and r.What = 1 and "
            "r.LeftOut = 0"_s,
            {id}};
}

RecordStatement insertCodes(std::int64_t id, bool isAsStored)
{
    return {u"insert into HarrowbyCode (Code, StockID, Units) select k.Code, k.StockID, k.Units "
            "from HarrowbyImportCode k where %1%2 order by k.Line"_s.arg(
                codesOf(RowKind::New),
                isAsStored ? QString()
                           : u" and not %1 and exists (select 1 from StockList s where s.StockID = k.StockID)"_s.arg(
                                 codeIsTaken)),
            {id}};
}

RecordStatement updateCodes(std::int64_t id)
{
    return {u"update HarrowbyCode as c set StockID = k.StockID, Units = k.Units from HarrowbyImportCode k "
            "where %1 and %2"_s.arg(codesOf(RowKind::Changed), isEntry(u"Old"_s)),
            {id}};
}

QList<RecordStatement> markCodes(std::int64_t id, bool comeWithItems)
{
    QString itemIsGone = u"not exists (select 1 from StockList s where s.StockID = k.StockID)"_s;
    if (comeWithItems)
        itemIsGone += u" and not exists (select 1 from HarrowbyImportRow r where r.ImportID = k.ImportID and "
                      "r.Line = k.Line and r.What = 1)"_s;
    return {markingCodes(id, 1, codesOf(RowKind::New) + u" and (%1 or (%2))"_s.arg(codeIsTaken, itemIsGone)),
            markingCodes(id, 1,
                         codesOf(RowKind::Changed) +
                             u" and not exists (select 1 from HarrowbyCode c where %1)"_s.arg(isEntry(u"Old"_s)))};
}

RecordStatement removeCodes(std::int64_t id)
{
    return {u"delete from HarrowbyCode where Code in (select k.Code from HarrowbyImportCode k "
            "join HarrowbyCode c on %2 where %1)"_s.arg(codesOf(RowKind::New), isEntry({})),
            {id}};
}

RecordStatement restoreCodes(std::int64_t id)
{
    return {u"update HarrowbyCode as c set StockID = k.OldStockID, Units = k.OldUnits from HarrowbyImportCode k "
            "where %1 and %2"_s.arg(codesOf(RowKind::Changed), isEntry({})),
            {id}};
}

RecordStatement markTouchedCodes(std::int64_t id)
{
    return {u"update HarrowbyImportCode as k set LeftOut = ? where k.ImportID = ? and k.LeftOut = 0 and not exists "
            "(select 1 from HarrowbyCode c where %1)"_s.arg(isEntry({})),
            {std::int64_t{2}, id}};
}

RecordStatement leaveOutRows(std::int64_t id, int leftOut)
{
    return {u"update HarrowbyImportRow set LeftOut = ?, Reason = ? where ImportID = ? and LeftOut = 0 and What < 3 and "
            "Line in (select k.Line from HarrowbyImportCode k where k.ImportID = ? and k.LeftOut = ?)"_s,
            {std::int64_t{leftOut}, leftOutWords(leftOut), id, id, std::int64_t{leftOut}}};
}

RecordStatement leaveOutCodes(std::int64_t id, int leftOut)
{
    return {u"update HarrowbyImportCode set LeftOut = ? where ImportID = ? and LeftOut = 0 and Line in "
            "(select r.Line from HarrowbyImportRow r where r.ImportID = ? and r.LeftOut = ?)"_s,
            {std::int64_t{leftOut}, id, id, std::int64_t{leftOut}}};
}

RecordStatement countCodes(std::int64_t id, RowKind kind)
{
    return {u"select count(*) from HarrowbyImportCode k where "_s + codesOf(kind), {id}};
}

RecordStatement markCategories(std::int64_t id)
{
    return {u"update HarrowbyImportCategory as k set LeftOut = 1 where k.ImportID = ? and exists "
            "(select 1 from InventoryCategory c where c.CategoryName = k.CategoryName)"_s,
            {id}};
}

RecordStatement dateCategories(std::int64_t id, const QString &entered)
{
    return {u"update HarrowbyImportCategory set EntryDate = ? where ImportID = ?"_s, {entered, id}};
}

RecordStatement insertCategories(std::int64_t id)
{
    return {u"insert into InventoryCategory (CategoryName, EntryDate) select k.CategoryName, k.EntryDate "
            "from HarrowbyImportCategory k where k.ImportID = ? and k.LeftOut = 0 order by k.Line"_s,
            {id}};
}

RecordStatement markUsedCategories(std::int64_t id)
{
    return {u"update HarrowbyImportCategory as k set LeftOut = 2 where k.ImportID = ? and k.LeftOut = 0 and "
            "(exists (select 1 from StockList s where s.StockCategory = k.CategoryName) or not exists "
            "(select 1 from InventoryCategory c where c.CategoryName is not distinct from k.CategoryName and "
            "c.EntryDate is not distinct from k.EntryDate))"_s,
            {id}};
}

RecordStatement markRepeatedCategories(std::int64_t id)
{
    const auto isSame = u"o.CategoryName is not distinct from k.CategoryName and "
                        "o.EntryDate is not distinct from k.EntryDate"_s;
    return {u"update HarrowbyImportCategory as k set LeftOut = 2 where k.ImportID = ? and k.LeftOut = 0 and "
            "(select count(*) from InventoryCategory o where %1) <> (select count(*) from HarrowbyImportCategory o "
            "where o.ImportID = k.ImportID and %1)"_s.arg(isSame),
            {id}};
}

RecordStatement removeCategories(std::int64_t id)
{
    return {u"delete from InventoryCategory where exists (select 1 from HarrowbyImportCategory k where "
            "k.ImportID = ? and k.LeftOut = 0 and k.CategoryName is not distinct from InventoryCategory.CategoryName "
            "and k.EntryDate is not distinct from InventoryCategory.EntryDate)"_s,
            {id}};
}

RecordStatement leaveOutCategoryRows(std::int64_t id, int leftOut)
{
    return {
        u"update HarrowbyImportRow set LeftOut = ?, Reason = ? where ImportID = ? and LeftOut = 0 and What = 1 and "
        "Line in (select k.Line from HarrowbyImportCategory k where k.ImportID = ? and k.LeftOut = ?)"_s,
        {std::int64_t{leftOut}, leftOut == 1 ? leftOutWords(1) : categoryStaysWords(), id, id, std::int64_t{leftOut}}};
}

} // namespace harrowby::app
