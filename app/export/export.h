// SPDX-License-Identifier: MIT
#pragma once

#include "app/csv/csv_form.h"
#include "app/csv/csv_writer.h"
#include "app/records/store_records.h"
#include "app/work/work_step.h"
#include "basic/result.h"

#include <QDate>
#include <QLatin1StringView>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

/// Lists of the store as CSV files, while tills sell from it. Nothing here knows a window; each function may run on any
/// thread, as it has a connection of its own.
namespace harrowby::app {

enum class ExportKind {
    Items,
    Categories,
    Codes,
    Purchases,
};

struct ExportRequest
{
    ExportKind kind = ExportKind::Items;
    CsvForm form; ///< separator, decimal sign and byte order mark; what is written is UTF-8
    /// Of purchases: first and last day, by the purchase's date. An invalid one is no limit; with one, purchases whose
    /// date cannot be read are left out.
    QDate from;
    QDate to;
};

struct ExportEnd
{
    enum class Outcome {
        Done,
        Stopped,
        Failed,
    };
    Outcome outcome = Outcome::Failed;
    QString problem; ///< in words for a person, when it has failed
    qint64 rows = 0; ///< without the headings
    qint64 bytes = 0;
};

/// Writes the list as it is at one moment. The file gets its name only when it is whole, in the place of an ordinary
/// file of that name; until then, and when it is stopped or fails, nothing there changes. All of it is read before a
/// byte is written, so that a slow place keeps no till waiting whose store has no log.
///
/// Usual values stand as they are; the last column, "As Stored" (app/csv/stored_cell.h), names what CSV cannot say.
[[nodiscard]] ExportEnd exportList(const QString &store, const QString &target, const ExportRequest &request,
                                   const WorkWatch &watch);

/// Why a list could not be read, or that it was stopped.
struct ExportStop
{
    bool isStopped = false;
    QString problem; ///< in words for a person, unless it was stopped
};
/// Why it stops after a failure of these records.
[[nodiscard]] ExportStop exportStop(const StoreRecords &store, const DbFailure &failure);
/// Writes any list, its headings as the first row. The records only read, and all they read is of one moment; their
/// statements hear the watch, too.
using ExportRows =
    std::function<std::optional<ExportStop>(StoreRecords &store, CsvWriter &out, const WorkWatch &watch)>;

/// The same for any other list.
[[nodiscard]] ExportEnd exportRows(const QString &store, const QString &target, const CsvForm &form,
                                   const ExportRows &rows, const WorkWatch &watch);

/// Whether a list of this store can be written there, or why not, in words for a person. A file that is there already
/// is no reason, unless it is the store's.
[[nodiscard]] Result<void, QString> checkExportPlace(const QString &store, const QString &target);

/// "items", "categories", "codes", "purchases", as the command line names them.
[[nodiscard]] std::optional<ExportKind> exportKindNamed(const QString &name);
[[nodiscard]] QString exportKindName(ExportKind kind);

/// The name that is proposed: "items-2026-11-22.csv", "purchases-2026-11-01-to-2026-11-30.csv".
[[nodiscard]] QString proposedExportName(const ExportRequest &request, const QDate &today);

/// For the table of who did what: "Items, 1,234 rows, to /home/shop/items.csv".
[[nodiscard]] QString exportDeedWords(const ExportRequest &request, const ExportEnd &end, const QString &target);

} // namespace harrowby::app
