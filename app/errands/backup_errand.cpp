// SPDX-License-Identifier: MIT
#include "app/errands/backup_errand.h"

#include "app/backup/good_backups.h"
#include "app/backup/kept_backups.h"
#include "app/records/deeds.h"
#include "app/start/start_message.h"

#include <QDateTime>
#include <QLocale>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

/// In the store, for its office. The backup is good without it.
void note(const ErrandStore &store, const BackupResult &made)
{
    store.beginAction();
    auto failure = noteGoodBackup(store.records, made.file, made.bytes, QDateTime::currentDateTimeUtc());
    if (!failure)
        failure = Deeds(store.records, commandLinePlace).add({deed::backedUp, commandLineUser(), made.file});
    if (failure)
        tellOfErrand(
            u"The store could not note that this backup was made (%1). The backup is good."_s.arg(failure->reason));
}

ExitCode backUp(const ErrandStore &store, const QString &folder, int keep)
{
    const KeptBackup kept = keepBackup(store.address, folder, keep, QDateTime::currentDateTime(),
                                       [](const BackupProgress &) { return true; });
    if (!storeIsStillThere(store))
        return ExitCode::ErrandFailed;
    if (kept.result.outcome != BackupResult::Outcome::Done) {
        tellOfErrand(kept.result.problem);
        return ExitCode::ErrandFailed;
    }
    note(store, kept.result);
    for (const QString &left : kept.notRemoved)
        tellOfErrand(u"The old backup \"%1\" could not be removed."_s.arg(left));
    const QString size = QLocale::c().formattedDataSize(kept.result.bytes);
    printOut(u"The backup is made and checked: %1, %2\n"_s.arg(kept.result.file, size));
    return ExitCode::Done;
}

} // namespace

Result<Errand, QString> readBackupErrand(const ErrandLine &line)
{
    int keep = 0;
    if (line.options.contains(u"--keep"_s)) {
        bool isNumber = false;
        keep = line.options.value(u"--keep"_s).toInt(&isNumber);
        if (!isNumber || !mayKeep(keep))
            return Unexpected(
                u"--keep takes how many backups stay, from %1 to %2."_s.arg(fewestToKeep).arg(mostToKeep));
    }
    return Errand(
        [folder = line.values.constFirst(), keep](const ErrandStore &store) { return backUp(store, folder, keep); });
}

} // namespace harrowby::app
