// SPDX-License-Identifier: MIT
#include "app/catalogue/catalogue_import.h"

#include "app/backup/backup.h"
#include "app/backup/backup_names.h"
#include "app/backup/kept_backups.h"
#include "app/catalogue/import_lines.h"
#include "app/catalogue/import_list.h"
#include "app/catalogue/import_writing.h"
#include "app/catalogue/staging.h"
#include "app/csv/csv_writer.h"
#include "app/export/export_file.h"

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

const auto notRead = u"The list of the import could not be read."_s;

ImportEnd notSaved(const QString &why)
{
    return {ImportEnd::Kind::Failed, u"The list was not saved. "_s + why};
}

ImportEnd savingStopped()
{
    return {ImportEnd::Kind::Cancelled, u"The list was not saved."_s};
}

BackupWatch backupWatch(const WorkWatch &watch)
{
    return [&watch](const BackupProgress &progress) {
        const bool isCopying = progress.stage == BackupProgress::Stage::Copying;
        return watch(isCopying ? WorkStep{u"A backup of the store is being made …"_s, progress.percent}
                               : WorkStep{u"The backup is being checked …"_s, WorkStep::unknown});
    };
}

QString listedCells(const ImportedRow &row, QString ImportCell::*which)
{
    QStringList texts;
    for (const ImportCell &cell : row.cells)
        texts << cell.*which;
    return texts.join(u'\n');
}

void writeRow(CsvWriter &out, const ImportedRow &row)
{
    const QString column = row.cells.isEmpty() ? row.column : listedCells(row, &ImportCell::column);
    out.figure(std::int64_t{row.line});
    for (const QString &text : {stateWords(row.state), row.key, row.name, column, listedCells(row, &ImportCell::before),
                                listedCells(row, &ImportCell::after), row.reason})
        out.text(text);
    out.endRow();
}

} // namespace

Imported<bool> CatalogueImport::mayImportAsStored(const ImportFile &file, const ImportChoices &choices)
{
    if (!isExportOf(headingsOf(file.bytes, choices.form), exportColumns(choices.kind)))
        return false;
    const auto rows = readTable(m_records, choices.kind, u"1"_s, u" limit 1"_s);
    if (!rows)
        return Unexpected(importFailed(u"The store could not be read."_s, rows.error()));
    return rows->isEmpty();
}

Imported<StagedImport> CatalogueImport::stage(const ImportFile &file, const ImportChoices &choices,
                                              const WorkWatch &watch)
{
    if (choices.asStored) {
        const auto may = mayImportAsStored(file, choices);
        if (!may)
            return Unexpected(may.error());
        if (!*may)
            return Unexpected(ImportEnd{ImportEnd::Kind::Failed,
                                        u"Only an export of this program can go as it stands into an empty list."_s});
    }
    return Staging(m_records, file, choices, watch).run(m_desk.now());
}

void CatalogueImport::discard(std::int64_t id, const WorkWatch &watch)
{
    (void)ImportShelf(m_records).discard(id, watch);
}

Imported<ShelvedImport> CatalogueImport::find(std::int64_t id) const
{
    const auto found = ImportShelf(m_records).find(id);
    if (!found)
        return Unexpected(importFailed(notRead, found.error()));
    if (!*found)
        return Unexpected(importGone());
    return **found;
}

Imported<qint64> CatalogueImport::count(std::int64_t id, RowFilter filter)
{
    const auto import = find(id);
    if (!import)
        return Unexpected(import.error());
    const auto count = ImportList(m_records, *import).count(filter);
    if (!count)
        return Unexpected(importFailed(notRead, count.error()));
    return *count;
}

Imported<QList<ImportedRow>> CatalogueImport::rows(std::int64_t id, RowFilter filter, qint64 from, qint64 most)
{
    const auto import = find(id);
    if (!import)
        return Unexpected(import.error());
    auto rows = ImportList(m_records, *import).rows(filter, from, most);
    if (!rows)
        return Unexpected(importFailed(notRead, rows.error()));
    return *std::move(rows);
}

Imported<qint64> CatalogueImport::saveList(std::int64_t id, RowFilter filter, const QString &path, const CsvForm &form,
                                           const WorkWatch &watch)
{
    const auto import = find(id);
    if (!import)
        return Unexpected(import.error());
    const auto all = count(id, filter);
    if (!all)
        return Unexpected(all.error());
    if (const auto place = checkExportPlace(m_desk.store, path); !place)
        return Unexpected(notSaved(place.error()));
    CsvWriter out(form);
    out.row({u"Line"_s, u"What"_s, u"Key"_s, u"Name"_s, u"Column"_s, u"Before"_s, u"After"_s, u"Reason"_s});
    qint64 written = 0;
    qint64 line = -1;
    constexpr qint64 most = 1000;
    for (bool isLast = false; !isLast;) {
        const auto rows = ImportList(m_records, *import).rowsBehind(filter, line, most);
        if (!rows)
            return Unexpected(importFailed(notRead, rows.error()));
        for (const ImportedRow &row : *rows)
            writeRow(out, row);
        line = rows->isEmpty() ? line : rows->constLast().line;
        written += rows->size();
        isLast = rows->size() < most;
        if (!watch({u"The list is being saved …"_s, percentOf(written, *all)}))
            return Unexpected(savingStopped());
    }
    const ExportEnd end = putIntoPlace(out.take(), path, watch);
    if (end.outcome == ExportEnd::Outcome::Stopped)
        return Unexpected(savingStopped());
    return end.outcome == ExportEnd::Outcome::Done ? Imported<qint64>(written) : Unexpected(notSaved(end.problem));
}

/// Not noted as one of the store's good backups: it lies on the store's own disk, and would hide for the office that
/// the nightly ones fail.
Imported<QString> CatalogueImport::backUp(const WorkWatch &watch) const
{
    constexpr int keep = 10; // as a file that is imported every night makes one each time
    const QString folder = m_desk.backupFolder.isEmpty() ? usualBackupFolder() : m_desk.backupFolder;
    const BackupResult result =
        keepBackup(m_desk.store, folder, keep, m_desk.now(), backupWatch(watch), u"harrowby-before-import"_s).result;
    if (result.outcome == BackupResult::Outcome::Stopped)
        return Unexpected(ImportEnd{ImportEnd::Kind::Cancelled, u"Nothing was imported."_s});
    if (result.outcome == BackupResult::Outcome::Failed)
        return Unexpected(
            ImportEnd{ImportEnd::Kind::Failed,
                      u"Nothing was imported, as no backup could be made before it.\n"_s + result.problem});
    return result.file;
}

Imported<ImportOutcome> CatalogueImport::apply(std::int64_t id, bool validRows, const ImportFile *file,
                                               const WorkWatch &watch)
{
    const auto import = find(id);
    if (!import)
        return Unexpected(import.error());
    if (file != nullptr && file->hash != import->hash)
        return Unexpected(ImportEnd{ImportEnd::Kind::FileChanged,
                                    u"The file has changed since the preview. Nothing was imported. Compare it with "
                                    "the store again."_s});
    if (import->state != import_state::staged)
        return Unexpected(previewGone());
    if (!validRows && import->counts.refused > 0)
        return Unexpected(ImportEnd{ImportEnd::Kind::RowsRefused,
                                    u"%1 rows are refused. Nothing was imported."_s.arg(import->counts.refused)});
    QString backup;
    if (import->counts.fresh + import->counts.changed > 0) {
        auto made = backUp(watch);
        if (!made)
            return Unexpected(made.error());
        backup = *std::move(made);
    }
    if (!watch({u"The rows are being written into the store …"_s, WorkStep::unknown}))
        return Unexpected(ImportEnd{ImportEnd::Kind::Cancelled, u"Nothing was imported."_s});
    auto outcome = ImportWriting(m_records, m_desk, *import, ImportWriting::Way::Into).run(!validRows);
    if (outcome)
        outcome->backup = backup;
    return outcome;
}

Imported<ImportOutcome> CatalogueImport::takeBack(std::int64_t id, const WorkWatch &watch)
{
    const auto import = find(id);
    if (!import)
        return Unexpected(import.error());
    if (import->state == import_state::settled)
        return Unexpected(importSettled());
    if (!watch({u"The import is being taken back …"_s, WorkStep::unknown}))
        return Unexpected(ImportEnd{ImportEnd::Kind::Cancelled, u"Nothing was taken back."_s});
    return ImportWriting(m_records, m_desk, *import, ImportWriting::Way::OutOf).run(false);
}

Imported<QList<PastImport>> CatalogueImport::past()
{
    const auto imports = ImportShelf(m_records).all();
    if (!imports)
        return Unexpected(importFailed(u"The list of imports could not be read."_s, imports.error()));
    QList<PastImport> past;
    for (const ShelvedImport &import : *imports) {
        if (import.state == import_state::staging || import.state == import_state::clearing)
            continue;
        PastImport one;
        one.id = import.id;
        one.kind = import.importKind();
        one.state = import.state == import_state::staged ? PastImport::State::Staged
                    : !import.takenBackAt.isEmpty()      ? PastImport::State::TakenBack
                                                         : PastImport::State::Applied;
        one.file = import.file;
        one.at = import.doneAt;
        one.who = import.doneBy;
        one.takenBackAt = import.takenBackAt;
        one.counts = import.counts;
        one.canBeTakenBack = import.state == import_state::applied;
        past << one;
    }
    return past;
}

} // namespace harrowby::app
