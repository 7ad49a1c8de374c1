// SPDX-License-Identifier: MIT
#include "app/errands/backup_errand.h"

#include "app/backup/backup.h"
#include "app/backup/kept_backups.h"
#include "app/start/start_message.h"

#include <QDateTime>
#include <QDir>
#include <QLocale>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

ExitCode backUp(const ErrandStore &store, const QString &folder)
{
    const QString target = QDir(folder).absoluteFilePath(keptBackupName(store.path, QDateTime::currentDateTime()));
    const BackupResult result = backUpStore(store.path, target, false, [](const BackupProgress &) { return true; });
    if (!storeIsStillThere(store))
        return ExitCode::ErrandFailed;
    if (result.outcome != BackupResult::Outcome::Done) {
        tellOfErrand(result.problem);
        return ExitCode::ErrandFailed;
    }
    printOut(u"The backup is made and checked: %1, %2\n"_s.arg(target, QLocale::c().formattedDataSize(result.bytes)));
    return ExitCode::Done;
}

} // namespace

Result<Errand, QString> readBackupErrand(const ErrandLine &line)
{
    return Errand([folder = line.values.constFirst()](const ErrandStore &store) { return backUp(store, folder); });
}

} // namespace harrowby::app
