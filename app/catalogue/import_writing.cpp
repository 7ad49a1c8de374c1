// SPDX-License-Identifier: MIT
#include "app/catalogue/import_writing.h"

#include "app/catalogue/code_statements.h"
#include "app/records/deeds.h"
#include "basic/dates.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace harrowby::app {

ImportWriting::ImportWriting(Records &records, const ImportDesk &desk, const ShelvedImport &import, Way way) :
    m_records(records), m_desk(desk), m_import(import), m_way(way), m_now(desk.now())
{
    const bool isReturn = way == Way::OutOf;
    m_stamp = {isReturn ? import.doneUser : desk.user,
               stockTime(isReturn ? timeOfRecord(import.doneAt).toLocalTime() : m_now)};
}

QString ImportWriting::what() const
{
    return m_way == Way::Into ? u"The file was not imported. Nothing of it is in the store."_s
                              : u"The import was not taken back. The store is as it was before."_s;
}

Imported<ImportOutcome> ImportWriting::run(bool all)
{
    if (!prepareTables())
        return Unexpected(importFailed(what(), *m_failure));
    Try how = tryOnce(false, true);
    const bool isAsStored = m_import.isAsStored() && m_way == Way::Into;
    if (how == Try::Mismatch && (all || isAsStored)) {
        how = isAsStored ? Try::Done : tryOnce(true, false);
        if (how == Try::Done)
            return Unexpected(ImportEnd{ImportEnd::Kind::StoreChanged,
                                        u"The store has changed since the preview, in rows that the file changes too. "
                                        "Nothing was imported. Compare the file with the store again."_s});
    } else if (how == Try::Mismatch) {
        how = tryOnce(true, true);
    }
    return end(how);
}

/// Why there is no import any longer that could be taken back.
ImportEnd ImportWriting::outdatedReturn() const
{
    const auto now = ImportShelf(m_records).find(m_import.id);
    if (!now)
        return importFailed(what(), now.error());
    if (!*now)
        return importGone();
    return (*now)->state == import_state::settled
               ? importSettled()
               : ImportEnd{ImportEnd::Kind::Outdated, u"This import has been taken back already."_s};
}

Imported<ImportOutcome> ImportWriting::end(Try how) const
{
    switch (how) {
    case Try::Done:
        return m_outcome;
    case Try::Outdated:
        return Unexpected(m_way == Way::OutOf ? outdatedReturn() : previewGone());
    case Try::Failed:
        return Unexpected(importFailed(what(), m_failure.value_or(DbFailure())));
    default:
        return Unexpected(ImportEnd{ImportEnd::Kind::Failed,
                                    what() + u"\nThe store has rows of it more often or less often than it should."_s});
    }
}

bool ImportWriting::failed(const DbFailure &failure)
{
    m_failure = failure;
    m_how = Try::Failed;
    return false;
}

/// Tables are made outside the transaction. Where no code ever was, and none comes, no table of codes is made.
bool ImportWriting::prepareTables()
{
    const auto there = number(kept::code(), {u"select count(*) from HarrowbyCode"_s, {}});
    const auto coming =
        there ? number(kept::import(), {u"select count(*) from HarrowbyImportCode where ImportID = ?"_s, {m_import.id}})
              : std::nullopt;
    if (!coming)
        return false;
    m_hasCodes = *there > 0 || *coming > 0;
    if (const auto failure = m_hasCodes ? m_records.prepare(kept::code()) : std::nullopt)
        return failed(*failure);
    if (const auto failure = m_records.prepare(kept::activity()))
        return failed(*failure);
    return true;
}

ImportWriting::Try ImportWriting::tryOnce(bool careful, bool write)
{
    m_how = Try::Done;
    m_failure.reset();
    m_outcome = {};
    const auto kept = m_records.together(kept::importing(), [&] { return work(careful, write); });
    if (!kept && !m_failure)
        m_failure = kept.error();
    const bool isThrown = kept && !*kept && m_how == Try::Done; // the records have logged what
    return kept && !isThrown ? m_how : Try::Failed;
}

bool ImportWriting::work(bool careful, bool write)
{
    if (write && !changeState())
        return false;
    if (careful && !(readGroups() && mark()))
        return false;
    if (!write)
        return true;
    const bool isInto = m_way == Way::Into;
    return readGroups() && (isInto ? writeItems() : takeItemsBack()) && (isInto ? writeCodes() : takeCodesBack()) &&
           (isInto ? writeCategories() : takeCategoriesBack()) && countDone() && tellDeed();
}

bool ImportWriting::changeState()
{
    const bool isInto = m_way == Way::Into;
    const RecordStatement statement =
        isInto ? RecordStatement{u"update HarrowbyImport set State = ?, DoneAt = ?, DoneBy = ?, DoneUser = ? "
                                 "where ImportID = ? and State = ?"_s,
                                 {QString(import_state::applied), recordTime(m_now), m_desk.who, m_desk.user,
                                  m_import.id, QString(import_state::staged)}}
               : RecordStatement{u"update HarrowbyImport set State = ?, TakenBackAt = ?, TakenBackBy = ? "
                                 "where ImportID = ? and State = ?"_s,
                                 {QString(import_state::takenBack), recordTime(m_now), m_desk.who, m_import.id,
                                  QString(import_state::applied)}};
    const auto changed = m_records.write(kept::import(), statement);
    if (!changed)
        return failed(changed.error());
    if (*changed != 1)
        m_how = Try::Outdated;
    return *changed == 1;
}

bool ImportWriting::readGroups()
{
    const auto rows = m_records.read(
        kept::import(), {u"select What, Mask, count(*) from HarrowbyImportRow where ImportID = ? and LeftOut = 0 "
                         "and What < 3 group by What, Mask"_s,
                         {m_import.id}});
    if (!rows)
        return failed(rows.error());
    m_groups.clear();
    m_newRows = 0;
    for (const RecordRow &row : *rows) {
        const std::int64_t count = recordNumber(row.at(2));
        const int mask = static_cast<int>(recordNumber(row.at(1)));
        if (recordNumber(row.at(0)) == static_cast<int>(RowKind::New))
            m_newRows += count;
        else if (mask != 0) // else it is about a code alone
            m_groups << ItemGroup{mask, false, count};
    }
    m_groups = mixedGroups(m_groups);
    return true;
}

bool ImportWriting::mark()
{
    const bool isInto = m_way == Way::Into;
    const int leftOut = isInto ? 1 : 2;
    const ImportKind kind = m_import.importKind();
    const bool isItems = kind == ImportKind::Items;
    QList<RecordStatement> marks;
    if (m_hasCodes)
        marks << (isInto ? markCodes(m_import.id, isItems) : QList{markTouchedCodes(m_import.id)})
              << leaveOutRows(m_import.id, leftOut);
    if (isItems) {
        for (const ItemGroup &group : std::as_const(m_groups)) {
            marks << markChangedItems(m_import.id, group, !isInto);
            if (!isInto && (group.mask & maskOf(NamePart)) != 0)
                marks << markTakenNames(m_import.id, group);
        }
        if (isInto && !m_import.isAsStored())
            marks << markLostCategories(m_import.id);
        marks << (isInto ? markNewItems(m_import.id, m_hasCodes)
                         : markTouchedItems(m_import.id, m_import.isAsStored(), m_hasCodes));
    }
    if (m_hasCodes)
        marks << leaveOutCodes(m_import.id, leftOut);
    if (kind == ImportKind::Categories && !isInto)
        marks << markRepeatedCategories(m_import.id);
    if (kind == ImportKind::Categories)
        marks << (isInto ? markCategories(m_import.id) : markUsedCategories(m_import.id))
              << leaveOutCategoryRows(m_import.id, leftOut);
    return std::ranges::all_of(marks, [this](const RecordStatement &statement) { return change(statement); });
}

bool ImportWriting::change(const RecordStatement &statement)
{
    const auto changed = m_records.write(kept::import(), statement);
    return changed ? true : failed(changed.error());
}

bool ImportWriting::change(const RecordStatement &statement, std::int64_t expected)
{
    const auto changed = m_records.write(kept::import(), statement);
    if (!changed)
        return failed(changed.error());
    if (*changed != expected)
        m_how = Try::Mismatch;
    return *changed == expected;
}

std::optional<std::int64_t> ImportWriting::number(const RecordTable &table, const RecordStatement &statement)
{
    const auto rows = m_records.read(table, statement);
    if (!rows) {
        (void)failed(rows.error());
        return {};
    }
    return rows->isEmpty() ? 0 : recordNumber(rows->constFirst().constFirst());
}

bool ImportWriting::writeItems()
{
    if (m_import.importKind() != ImportKind::Items)
        return true;
    if (m_import.isAsStored()) {
        const auto there = m_records.read({u"select StockID from StockList limit 1"_s, {}});
        if (!there)
            return failed(there.error());
        if (!there->isEmpty()) {
            m_how = Try::Mismatch;
            return false;
        }
        return change(insertAsStored(m_import.id), m_newRows);
    }
    const bool needCategories = m_newRows > 0 || anyChanges(m_groups, CategoryPart);
    if (const auto lost =
            needCategories ? number(kept::import(), countLostCategories(m_import.id)) : std::optional(std::int64_t{0});
        !lost || *lost > 0) {
        m_how = lost ? Try::Mismatch : m_how;
        return false;
    }
    for (const ItemGroup &group : std::as_const(m_groups)) {
        if (!change(updateItems(m_import.id, group, m_stamp), group.rows))
            return false;
    }
    if (anyChanges(m_groups, CategoryPart) && !change(noteFormerCategories(m_import.id)))
        return false;
    if (m_hasCodes && m_newRows > 0 && !change(stageLeftCodes(m_import.id)))
        return false;
    return m_newRows == 0 || change(insertItems(m_import.id, m_stamp, m_hasCodes), m_newRows);
}

bool ImportWriting::takeItemsBack()
{
    if (m_import.importKind() != ImportKind::Items)
        return true;
    for (const ItemGroup &group : std::as_const(m_groups)) {
        if (!change(restoreItems(m_import.id, group, m_stamp), group.rows))
            return false;
    }
    const bool restoreCategories = anyChanges(m_groups, CategoryPart);
    return (!restoreCategories || change(makeFormerCategories(m_import.id, usageTime(m_now)))) &&
           (m_newRows == 0 || change(removeItems(m_import.id, m_import.isAsStored(), m_hasCodes), m_newRows));
}

bool ImportWriting::writeCodes()
{
    if (!m_hasCodes)
        return true;
    const auto changed = number(kept::import(), countCodes(m_import.id, RowKind::Changed));
    const auto fresh = number(kept::import(), countCodes(m_import.id, RowKind::New));
    return changed && fresh && (*changed == 0 || change(updateCodes(m_import.id), *changed)) &&
           (*fresh == 0 || change(insertCodes(m_import.id, m_import.isAsStored()), *fresh));
}

bool ImportWriting::takeCodesBack()
{
    if (!m_hasCodes)
        return true;
    const auto changed = number(kept::import(), countCodes(m_import.id, RowKind::Changed));
    const auto fresh = number(kept::import(), countCodes(m_import.id, RowKind::New));
    return changed && fresh && (*fresh == 0 || change(removeCodes(m_import.id), *fresh)) &&
           (*changed == 0 || change(restoreCodes(m_import.id), *changed));
}

bool ImportWriting::writeCategories()
{
    if (m_import.isAsStored()) {
        if (m_import.importKind() != ImportKind::Categories)
            return true;
        const auto there = number(kept::import(), {u"select count(*) from InventoryCategory"_s, {}});
        if (there && *there > 0)
            m_how = Try::Mismatch;
        return there && *there == 0 && change(insertCategories(m_import.id), m_newRows);
    }
    if (!change(markCategories(m_import.id)) || !change(dateCategories(m_import.id, usageTime(m_now))))
        return false;
    return m_import.importKind() == ImportKind::Categories ? change(insertCategories(m_import.id), m_newRows)
                                                           : change(insertCategories(m_import.id));
}

/// Those that came with items stay where they have items by now, and none of the rows is to blame.
bool ImportWriting::takeCategoriesBack()
{
    if (!change(markUsedCategories(m_import.id)))
        return false;
    return m_import.importKind() == ImportKind::Categories ? change(removeCategories(m_import.id), m_newRows)
                                                           : change(removeCategories(m_import.id));
}

bool ImportWriting::countDone()
{
    const auto rows = m_records.read(
        kept::import(),
        {u"select What, LeftOut, count(*) from HarrowbyImportRow where ImportID = ? and What < 3 group by What, LeftOut"_s,
         {m_import.id}});
    if (!rows)
        return failed(rows.error());
    const int leftNow = m_way == Way::Into ? 1 : 2;
    for (const RecordRow &row : *rows) {
        const std::int64_t count = recordNumber(row.at(2));
        if (recordNumber(row.at(1)) == leftNow)
            m_outcome.leftOut += count;
        else if (recordNumber(row.at(1)) == 0)
            (recordNumber(row.at(0)) == 1 ? m_outcome.done.fresh : m_outcome.done.changed) += count;
    }
    return true;
}

bool ImportWriting::tellDeed()
{
    const bool isInto = m_way == Way::Into;
    QString words = u"%1 out of \"%2\": %3 new, %4 changed"_s.arg(m_import.kind, m_import.file)
                        .arg(m_outcome.done.fresh)
                        .arg(m_outcome.done.changed);
    if (m_outcome.leftOut > 0)
        words += (isInto ? u", %1 left out"_s : u", %1 left as they are by now"_s).arg(m_outcome.leftOut);
    const Deed deed = {isInto ? deed::imported : deed::importTakenBack, m_desk.who, words};
    const auto told = m_records.write(kept::activity(), Deeds(m_records, m_desk.place).statement(deed));
    return told ? true : failed(told.error());
}

} // namespace harrowby::app
