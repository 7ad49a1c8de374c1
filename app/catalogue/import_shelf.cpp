// SPDX-License-Identifier: MIT
#include "app/catalogue/import_shelf.h"

#include "app/catalogue/import_owner.h"
#include "app/shop/failure_text.h"

#include <algorithm>
#include <chrono>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

const QStringList &partNames()
{
    static const QStringList names = {u"Name"_s, u"Category"_s, u"Cost"_s,     u"Level"_s, u"Available"_s,
                                      u"Use"_s,  u"Updated"_s,  u"Modified"_s, u"Added"_s, u"ReorderUser"_s};
    return names;
}

/// Of "Added" nothing old is kept: an item that changes keeps it.
QStringList rowColumns()
{
    QStringList columns = {u"ImportID"_s, u"Line"_s, u"What"_s, u"Mask"_s, u"LeftOut"_s, u"StockID"_s};
    for (const QString &name : partNames())
        columns << u"New"_s + name;
    for (const QString &name : partNames()) {
        if (name != partNames().at(AddedPart))
            columns << u"Old"_s + name;
    }
    return columns << u"AtColumn"_s << u"Reason"_s;
}

std::int64_t microsecondsNow()
{
    using namespace std::chrono;
    return duration_cast<microseconds>(system_clock::now().time_since_epoch()).count();
}

/// Of these values (from 0) bytes go in as a text.
QString insertInto(const QString &table, const QStringList &columns, const QSet<int> &texts = {})
{
    QStringList marks(columns.size(), u"?"_s);
    for (const int text : texts)
        marks[text] = u"cast(? as text)"_s;
    return u"insert into %1 (%2) values (%3)"_s.arg(table, columns.join(u", "_s), marks.join(u", "_s));
}

QList<RecordValue> valuesOf(std::int64_t id, const StagedRow &row)
{
    QList<RecordValue> values;
    values.reserve(32);
    values << id << std::int64_t{row.line} << static_cast<std::int64_t>(row.what) << std::int64_t{row.mask}
           << std::int64_t{0} << row.stockId;
    for (const RecordValue &value : row.fresh)
        values << value;
    for (int part = 0; part < itemParts; ++part) {
        if (part != AddedPart)
            values << row.old.at(static_cast<std::size_t>(part));
    }
    const auto orNull = [](const QString &text) { return text.isEmpty() ? RecordValue() : RecordValue(text); };
    return values << orNull(row.column) << orNull(row.reason);
}

const QString importFields =
    u"ImportID, Kind, State, FileName, FileHash, Choices, Owner, StagedAt, DoneAt, DoneBy, DoneUser, "
    "TakenBackAt, "
    "NewRows, ChangedRows, UnchangedRows, RefusedRows"_s;

ShelvedImport importOf(const RecordRow &row)
{
    ShelvedImport import;
    import.id = recordNumber(row.at(0));
    QString *const texts[] = {&import.kind,    &import.state,    &import.file,       &import.hash,
                              &import.choices, &import.owner,    &import.stagedAt,   &import.doneAt,
                              &import.doneBy,  &import.doneUser, &import.takenBackAt};
    qsizetype at = 1;
    for (QString *text : texts)
        *text = recordText(row.at(at++));
    qint64 *const numbers[] = {&import.counts.fresh, &import.counts.changed, &import.counts.unchanged,
                               &import.counts.refused};
    for (qint64 *number : numbers)
        *number = recordNumber(row.at(at++));
    return import;
}

} // namespace

QString kindText(ImportKind kind)
{
    return kind == ImportKind::Categories ? u"Categories"_s : kind == ImportKind::Codes ? u"Codes"_s : u"Items"_s;
}

QString partColumn(int part)
{
    return part == UpdatedPart    ? u"StockLastUpdated"_s
           : part == ModifiedPart ? u"StockLastModified"_s
                                  : u"Stock"_s + (part == LevelPart ? u"ReorderLevel"_s : partName(part));
}

QString partName(int part)
{
    return partNames().at(part);
}

ImportKind ShelvedImport::importKind() const
{
    for (const ImportKind one : {ImportKind::Categories, ImportKind::Codes}) {
        if (kind == kindText(one))
            return one;
    }
    return ImportKind::Items;
}

Records::Answer<std::int64_t> ImportShelf::begin(const ShelvedImport &import)
{
    std::int64_t id = 0;
    std::optional<DbFailure> failure;
    const auto kept = m_records.together(kept::import(), [&] {
        const auto last = m_records.read(kept::import(), {u"select max(ImportID) from HarrowbyImport"_s, {}});
        if (!last) {
            failure = last.error();
            return false;
        }
        // Never the number of one that was cleared away: its office may still have it on the screen.
        id = std::max(recordNumber(last->constFirst().constFirst()) + 1, microsecondsNow());
        const auto written = m_records.write(
            kept::import(), {insertInto(u"HarrowbyImport"_s, (importFields + u", TakenBackBy"_s).split(u", "_s)),
                             {id, import.kind, QString(import_state::staging), import.file, import.hash, import.choices,
                              thisOwner(), import.stagedAt, u""_s, u""_s, u""_s, u""_s, std::int64_t{0},
                              std::int64_t{0}, std::int64_t{0}, std::int64_t{0}, u""_s}});
        if (!written)
            failure = written.error();
        return written.has_value();
    });
    if (failure)
        return Unexpected(*failure);
    if (!kept)
        return Unexpected(kept.error());
    return id;
}

/// Also holds off whoever would take it away, until the transaction ends.
bool ImportShelf::isBeingStaged(std::int64_t id)
{
    const auto same =
        m_records.write(kept::import(), {u"update HarrowbyImport set State = ? where ImportID = ? and State = ?"_s,
                                         {QString(import_state::staging), id, QString(import_state::staging)}});
    if (!same)
        m_failure = same.error();
    return same && *same == 1;
}

Records::Answer<bool> ImportShelf::put(std::int64_t id, const StagedPiece &piece)
{
    m_failure.reset();
    bool isThere = false;
    const auto kept = m_records.together(kept::import(), [&] {
        isThere = isBeingStaged(id);
        return isThere && putRows(id, piece.rows) && putCodes(id, piece.codes) && putCategories(id, piece.categories);
    });
    if (m_failure)
        return Unexpected(*m_failure);
    if (!kept)
        return Unexpected(kept.error());
    if (isThere && !*kept) // the work has thrown, which the records have logged
        return Unexpected(DbFailure());
    return isThere;
}

bool ImportShelf::putAll(const QString &table, const QStringList &columns, const QList<TableRow> &rows)
{
    QList<QList<RecordValue>> usual;
    usual.reserve(rows.size());
    for (const TableRow &row : rows) {
        if (row.texts.isEmpty()) {
            usual << row.values;
        } else if (const auto put =
                       m_records.write(kept::import(), {insertInto(table, columns, row.texts), row.values});
                   !put) {
            m_failure = put.error();
            return false;
        }
    }
    if (usual.isEmpty())
        return true;
    const auto put = m_records.writeEach(kept::import(), insertInto(table, columns), usual);
    if (!put)
        m_failure = put.error();
    return put.has_value();
}

bool ImportShelf::putRows(std::int64_t id, const QList<StagedRow> &rows)
{
    static const QStringList columns = rowColumns();
    constexpr int idPlace = 5;
    QList<TableRow> all;
    all.reserve(rows.size());
    for (const StagedRow &row : rows) {
        all << TableRow{valuesOf(id, row), {}};
        for (const int part : row.bytesOfTexts)
            all.last().texts << idPlace + 1 + part;
    }
    return putAll(u"HarrowbyImportRow"_s, columns, all);
}

bool ImportShelf::putCodes(std::int64_t id, const QList<StagedCode> &codes)
{
    static const QStringList columns = {u"ImportID"_s, u"Line"_s,      u"What"_s,      u"LeftOut"_s,
                                        u"Code"_s,     u"StockID"_s,   u"Units"_s,     u"OldStockID"_s,
                                        u"OldUnits"_s, u"Spelling1"_s, u"Spelling2"_s, u"Spelling3"_s};
    constexpr int codePlace = 4;
    QList<TableRow> all;
    for (const StagedCode &code : codes) {
        const auto spelling = [&](qsizetype at) {
            return at < code.spellings.size() ? RecordValue(code.spellings.at(at)) : RecordValue();
        };
        all << TableRow{{id, std::int64_t{code.line}, static_cast<std::int64_t>(code.what), std::int64_t{0},
                         code.code.value, code.stockId.value, code.units, code.oldStockId, code.oldUnits, spelling(0),
                         spelling(1), spelling(2)},
                        {}};
        if (code.code.isText)
            all.last().texts << codePlace;
        if (code.stockId.isText)
            all.last().texts << codePlace + 1;
        if (code.unitsAreText)
            all.last().texts << codePlace + 2;
    }
    return putAll(u"HarrowbyImportCode"_s, columns, all);
}

bool ImportShelf::putCategories(std::int64_t id, const QList<StagedCategory> &categories)
{
    static const QStringList columns = {u"ImportID"_s, u"Line"_s, u"LeftOut"_s, u"CategoryName"_s, u"EntryDate"_s};
    constexpr int namePlace = 3;
    QList<TableRow> all;
    for (const StagedCategory &category : categories) {
        all << TableRow{
            {id, std::int64_t{category.line}, std::int64_t{0}, category.name.value, category.entryDate.value}, {}};
        if (category.name.isText)
            all.last().texts << namePlace;
        if (category.entryDate.isText)
            all.last().texts << namePlace + 1;
    }
    return putAll(u"HarrowbyImportCategory"_s, columns, all);
}

Records::Answer<bool> ImportShelf::finish(std::int64_t id, const ImportCounts &counts)
{
    const auto written = m_records.write(
        kept::import(),
        {u"update HarrowbyImport set State = ?, NewRows = ?, ChangedRows = ?, UnchangedRows = ?, RefusedRows = ? "
         "where ImportID = ? and State = ?"_s,
         {QString(import_state::staged), std::int64_t{counts.fresh}, std::int64_t{counts.changed},
          std::int64_t{counts.unchanged}, std::int64_t{counts.refused}, id, QString(import_state::staging)}});
    if (!written)
        return Unexpected(written.error());
    return *written == 1;
}

Records::Answer<QList<ShelvedImport>> ImportShelf::select(const QString &where, const QList<RecordValue> &values)
{
    const auto rows = m_records.read(
        kept::import(), {u"select %1 from HarrowbyImport%2 order by ImportID desc"_s.arg(importFields, where), values});
    if (!rows)
        return Unexpected(rows.error());
    QList<ShelvedImport> imports;
    for (const RecordRow &row : *rows)
        imports << importOf(row);
    return imports;
}

Records::Answer<std::optional<ShelvedImport>> ImportShelf::find(std::int64_t id)
{
    const auto found = select(u" where ImportID = ?"_s, {id});
    if (!found)
        return Unexpected(found.error());
    return found->isEmpty() ? std::nullopt : std::optional(found->constFirst());
}

Records::Answer<QList<ShelvedImport>> ImportShelf::all()
{
    return select({}, {});
}

Records::Answer<QList<RecordRow>> readTable(Records &records, ImportKind kind, const QString &columns,
                                            const QString &rest)
{
    const QString table = kind == ImportKind::Categories ? u"InventoryCategory"_s
                          : kind == ImportKind::Codes    ? kept::code().name
                                                         : u"StockList"_s;
    const RecordStatement statement = {u"select %1 from %2%3"_s.arg(columns, table, rest), {}};
    return kind == ImportKind::Codes ? records.read(kept::code(), statement) : records.read(statement);
}

ImportEnd importGone()
{
    return {ImportEnd::Kind::Outdated, u"This import is gone: another program has cleared it away."_s};
}

ImportEnd importSettled()
{
    return {ImportEnd::Kind::Outdated, u"This import was too long ago: its rows are not kept any longer."_s};
}

ImportEnd previewGone()
{
    return {ImportEnd::Kind::Outdated,
            u"This preview is gone: another office has carried it out or cleared it away. Nothing was imported now."_s};
}

ImportEnd importFailed(const QString &what, const DbFailure &failure)
{
    return {ImportEnd::Kind::Failed, failureWords(what, failure)};
}

} // namespace harrowby::app
