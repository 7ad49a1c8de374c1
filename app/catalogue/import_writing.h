// SPDX-License-Identifier: MIT
#pragma once

#include "app/catalogue/catalogue_import.h"
#include "app/catalogue/import_shelf.h"
#include "app/catalogue/item_statements.h"

#include <QList>

#include <optional>

namespace harrowby::app {

/// Carries a staged import into the store, or out of it again, in one transaction.
///
/// First it is tried as if nothing had changed in the store, which each statement looks at by itself. Where one then
/// writes fewer rows than it should, all of it is undone and done once more: now the rows that do not fit are looked
/// for and marked first. So the usual import keeps no till waiting for a search.
class ImportWriting
{
public:
    enum class Way {
        Into,
        OutOf,
    };

    /// All must outlive it.
    ImportWriting(Records &records, const ImportDesk &desk, const ShelvedImport &import, Way way);

    /// `all`: when some rows do not fit, they are marked and nothing is written.
    [[nodiscard]] Imported<ImportOutcome> run(bool all);

private:
    /// How one try has ended.
    enum class Try {
        Done,
        Mismatch, ///< fewer rows were written than there are
        Outdated, ///< the import is no longer in the state that was seen
        Failed,
    };

    [[nodiscard]] Try tryOnce(bool careful, bool write);
    [[nodiscard]] bool prepareTables();
    [[nodiscard]] bool work(bool careful, bool write);
    [[nodiscard]] bool changeState();
    [[nodiscard]] bool readGroups();
    [[nodiscard]] bool mark();
    [[nodiscard]] bool writeItems();
    [[nodiscard]] bool takeItemsBack();
    [[nodiscard]] bool writeCodes();
    [[nodiscard]] bool takeCodesBack();
    [[nodiscard]] bool writeCategories();
    [[nodiscard]] bool takeCategoriesBack();
    [[nodiscard]] bool tellDeed();
    [[nodiscard]] bool countDone();
    [[nodiscard]] Imported<ImportOutcome> end(Try how) const;
    [[nodiscard]] ImportEnd outdatedReturn() const;

    /// A statement that must change so many rows.
    [[nodiscard]] bool change(const RecordStatement &statement, std::int64_t expected);
    [[nodiscard]] bool change(const RecordStatement &statement);
    [[nodiscard]] std::optional<std::int64_t> number(const RecordTable &table, const RecordStatement &statement);
    [[nodiscard]] bool failed(const DbFailure &failure);
    [[nodiscard]] QString what() const;

    Records &m_records;
    const ImportDesk &m_desk;
    const ShelvedImport &m_import;
    Way m_way;
    QDateTime m_now;
    ItemStamp m_stamp; ///< of the writing, also where it is undone
    bool m_hasCodes = false;
    QList<ItemGroup> m_groups;
    std::int64_t m_newRows = 0;
    Try m_how = Try::Done;
    std::optional<DbFailure> m_failure;
    ImportOutcome m_outcome;
};

} // namespace harrowby::app
