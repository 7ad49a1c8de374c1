// SPDX-License-Identifier: MIT
#pragma once

#include "app/catalogue/import_file.h"
#include "app/catalogue/import_types.h"
#include "app/records/records.h"
#include "app/work/work_step.h"

#include <QDateTime>
#include <QList>
#include <QString>

#include <functional>

namespace harrowby::app {

struct ShelvedImport;

/// Who imports, and where.
struct ImportDesk
{
    QString user;         ///< as the stock form writes it into the items
    QString who;          ///< of the deeds; the same in the office
    QString place;        ///< of the deeds: officePlace or commandLinePlace
    QString store;        ///< the store file, of which a backup is made first
    QString backupFolder; ///< empty for usualBackupFolder()
    std::function<QDateTime()> now = [] { return QDateTime::currentDateTime(); };
};

/// Imports items, categories and codes: first a preview, then the rows of it in one go, and perhaps the way back.
///
/// stage() compares the file with the store and keeps what it finds, in pieces, in tables of its own (HarrowbyImport,
/// …Row, …Code, …Category). apply() makes a checked backup and then writes all in one transaction of a few statements;
/// what has changed in the store since the preview is left as it is. takeBack() undoes a row where the imported columns
/// are still as they were imported.
///
/// For any thread, with records of that thread alone. A failed statement has been told through the records, too.
class CatalogueImport
{
public:
    /// The records must outlive it.
    CatalogueImport(Records &records, ImportDesk desk) : m_records(records), m_desk(std::move(desk)) {}

    /// Whether the file is an export of our own, and the table that it goes into has no row yet.
    [[nodiscard]] Imported<bool> mayImportAsStored(const ImportFile &file, const ImportChoices &choices);

    /// The preview. Takes away what earlier previews have left, unless they are of today and their program lives.
    [[nodiscard]] Imported<StagedImport> stage(const ImportFile &file, const ImportChoices &choices,
                                               const WorkWatch &watch);
    /// Takes a preview away.
    void discard(std::int64_t id, const WorkWatch &watch);

    /// How many rows of the list there are.
    [[nodiscard]] Imported<qint64> count(std::int64_t id, RowFilter filter);
    /// So many rows of it from that place (from 0) on, in the order of the file.
    [[nodiscard]] Imported<QList<ImportedRow>> rows(std::int64_t id, RowFilter filter, qint64 from, qint64 most);
    /// Writes the list as CSV: line, what it is, key, name, column, before, after, reason. By the rules of an export:
    /// the file gets its name when it is whole.
    [[nodiscard]] Imported<qint64> saveList(std::int64_t id, RowFilter filter, const QString &path, const CsvForm &form,
                                            const WorkWatch &watch);

    /// Writes the rows of the preview: all or, with `validRows`, those that can be. `file`: as it is now, or nothing
    /// where it was read but once. Tills wait for no longer than one transaction takes. Once that has begun, it cannot
    /// be cancelled.
    [[nodiscard]] Imported<ImportOutcome> apply(std::int64_t id, bool validRows, const ImportFile *file,
                                                const WorkWatch &watch);

    /// The latest first.
    [[nodiscard]] Imported<QList<PastImport>> past();
    /// Without a backup: what it undoes stays listed with the import.
    [[nodiscard]] Imported<ImportOutcome> takeBack(std::int64_t id, const WorkWatch &watch);

private:
    [[nodiscard]] Imported<ShelvedImport> find(std::int64_t id) const;
    [[nodiscard]] Imported<QString> backUp(const WorkWatch &watch) const;

    Records &m_records;
    ImportDesk m_desk;
};

} // namespace harrowby::app
