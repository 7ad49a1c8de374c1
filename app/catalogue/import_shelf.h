// SPDX-License-Identifier: MIT
#pragma once

#include "app/catalogue/import_types.h"
#include "app/csv/stored_cell.h"
#include "app/records/records.h"
#include "app/work/work_step.h"

#include <QDateTime>
#include <QList>
#include <QSet>
#include <QString>

#include <array>
#include <optional>

namespace harrowby::app {

/// What becomes of a row; as stored.
enum class RowKind {
    New = 1,
    Changed = 2,
    Unchanged = 3,
    Refused = 4,
};

/// The columns of an item behind its ID, in the order of StockList and of the tables of staged rows. The bit of a
/// column in a mask is 1 << its number.
enum ItemPart {
    NamePart,
    CategoryPart,
    CostPart,
    LevelPart,
    AvailablePart,
    UsePart,
    UpdatedPart,
    ModifiedPart,
    AddedPart,
    ReorderUserPart,
};
inline constexpr int itemParts = 10;
inline constexpr int importedParts = 6; ///< those that a file can bring

[[nodiscard]] constexpr int maskOf(int part)
{
    return 1 << part;
}

/// The columns of codes in a mask.
inline constexpr int codeItemMask = 1;
inline constexpr int codeUnitsMask = 2;

/// "Items", "Categories", "Codes"
[[nodiscard]] QString kindText(ImportKind kind);

/// "StockName"
[[nodiscard]] QString partColumn(int part);
/// "Name": behind "New" and "Old" it is the column of HarrowbyImportRow.
[[nodiscard]] QString partName(int part);

/// A row of the file, of whatever kind. The key is in `stockId`: an ID, a code or a category.
struct StagedRow
{
    qint64 line = 0;
    RowKind what = RowKind::Refused;
    int mask = 0;            ///< of a changed item: what changes
    bool isRepeated = false; ///< an unchanged row whose key stands in several rows of the file; not kept
    RecordValue stockId;
    std::array<RecordValue, itemParts> fresh; ///< of a changed item all that a file can bring
    std::array<RecordValue, itemParts> old;   ///< all, of an item that changes
    QSet<int> bytesOfTexts;                   ///< of `fresh` those (the ID: -1) whose bytes are to be a text
    QString column;
    QString reason;
};

/// A code that comes or changes with a row.
struct StagedCode
{
    qint64 line = 0;
    RowKind what = RowKind::New;
    StoredValue code;
    StoredValue stockId;
    RecordValue units;
    bool unitsAreText = false; ///< bytes that are to be a text
    RecordValue oldStockId;
    RecordValue oldUnits;
    QStringList spellings; ///< other lengths of the same number, three at most
};

struct StagedCategory
{
    qint64 line = 0;
    StoredValue name;
    StoredValue entryDate; ///< null for the moment of the import
};

struct StagedPiece
{
    QList<StagedRow> rows;
    QList<StagedCode> codes;
    QList<StagedCategory> categories;
};

/// An import as HarrowbyImport has it.
struct ShelvedImport
{
    std::int64_t id = 0;
    QString kind;
    QString state;
    QString file;
    QString hash;
    QString choices;
    QString owner;
    QString stagedAt;
    QString doneAt;
    QString doneBy;
    QString doneUser; ///< as the items bear it
    QString takenBackAt;
    ImportCounts counts;

    [[nodiscard]] ImportKind importKind() const;
    [[nodiscard]] bool isAsStored() const { return choices.contains(QStringLiteral("as stored")); }
};

/// States of an import, as stored.
namespace import_state {
inline constexpr QLatin1StringView staging("STAGING");
inline constexpr QLatin1StringView clearing("CLEARING"); ///< somebody is taking it away
inline constexpr QLatin1StringView staged("STAGED");
inline constexpr QLatin1StringView applied("APPLIED");
inline constexpr QLatin1StringView takenBack("TAKENBACK");
inline constexpr QLatin1StringView settled("SETTLED"); ///< carried out so long ago that its rows are not kept
} // namespace import_state

/// The tables of imports: what is staged, and what was done.
class ImportShelf
{
public:
    template <typename T>
    using Answer = Records::Answer<T>;

    /// Of so many imports that were carried out the rows are kept.
    static constexpr int mostKept = 10;

    /// The records must outlive it.
    explicit ImportShelf(Records &records) : m_records(records) {}

    /// A new import, without rows; its number.
    [[nodiscard]] Answer<std::int64_t> begin(const ShelvedImport &import);
    /// A piece of its rows, in a transaction of its own; false when somebody has taken the import away meanwhile.
    [[nodiscard]] Answer<bool> put(std::int64_t id, const StagedPiece &piece);
    /// All rows are there; false as above.
    [[nodiscard]] Answer<bool> finish(std::int64_t id, const ImportCounts &counts);

    [[nodiscard]] Answer<std::optional<ShelvedImport>> find(std::int64_t id);
    /// The latest first.
    [[nodiscard]] Answer<QList<ShelvedImport>> all();

    /// Takes an import away that was not carried out, and what is left of one that is gone. In pieces, so that no till
    /// waits.
    [[nodiscard]] std::optional<DbFailure> discard(std::int64_t id, const WorkWatch &watch);
    /// What killed programs have left, what nobody has carried out for a day, and rows that are not kept any longer.
    [[nodiscard]] std::optional<DbFailure> clear(const QDateTime &now, const WorkWatch &watch);

private:
    /// A row of a table, and which of its values (from 0) are the bytes of a text.
    struct TableRow
    {
        QList<RecordValue> values;
        QSet<int> texts;
    };
    [[nodiscard]] bool isBeingStaged(std::int64_t id);
    [[nodiscard]] bool putAll(const QString &table, const QStringList &columns, const QList<TableRow> &rows);
    [[nodiscard]] bool putRows(std::int64_t id, const QList<StagedRow> &rows);
    [[nodiscard]] bool putCodes(std::int64_t id, const QList<StagedCode> &codes);
    [[nodiscard]] bool putCategories(std::int64_t id, const QList<StagedCategory> &categories);
    [[nodiscard]] std::optional<DbFailure> settle(const ShelvedImport &import, const WorkWatch &watch);
    [[nodiscard]] std::optional<DbFailure> dropRows(std::int64_t id, const WorkWatch &watch);
    [[nodiscard]] Answer<QList<ShelvedImport>> select(const QString &where, const QList<RecordValue> &values);

    Records &m_records;
    std::optional<DbFailure> m_failure;
};

/// Columns of the rows of the store's own table that such a file goes into; `rest`: what stands behind the table's
/// name.
[[nodiscard]] Records::Answer<QList<RecordRow>> readTable(Records &records, ImportKind kind, const QString &columns,
                                                          const QString &rest = {});

/// The words of a failure.
[[nodiscard]] ImportEnd importFailed(const QString &what, const DbFailure &failure);
/// Another program has cleared the import away, or its rows.
[[nodiscard]] ImportEnd importGone();
[[nodiscard]] ImportEnd importSettled();
/// Another office has carried the preview out, or cleared it away.
[[nodiscard]] ImportEnd previewGone();

} // namespace harrowby::app
