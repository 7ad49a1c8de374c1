// SPDX-License-Identifier: MIT
#include "app/backup/backup.h"

#include "app/backup/backup_copy.h"
#include "app/backup/backup_names.h"
#include "app/backup/backup_place.h"
#include "app/backup/server_backup.h"
#include "app/backup/stoppable_check.h"
#include "app/shop/file_naming.h"
#include "app/shop/workshop.h"
#include "basic/logging.h"
#include "basic/store_address.h"

#include <QFileInfo>

#include <sqlite3.h>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

using Outcome = BackupResult::Outcome;

BackupResult failed(const QString &problem)
{
    qCWarning(lcStore).noquote() << "The backup failed:" << problem;
    return {Outcome::Failed, problem, 0};
}

QuickCheck checkFile(sqlite3 *database, const BackupWatch &watch)
{
    return checkUnlessStopped(database, [&watch] { return watch({BackupProgress::Stage::Checking, 100}); });
}

/// Where a copy comes from.
struct Source
{
    std::function<CopyEnd(sqlite3 *copy)> copyInto;
    std::function<bool()> isBad;
};

bool isBad(sqlite3 *store, const BackupWatch &watch)
{
    const QuickCheck check = checkFile(store, watch);
    return check.result == QuickCheck::Result::Damaged || check.result == QuickCheck::Result::Failed;
}

bool isBadFile(const QString &store, const BackupWatch &watch)
{
    const auto opened = openToCopy(store);
    return !opened || isBad(opened->get(), watch);
}

QString damageText(BackupSide side, const QString &reason)
{
    if (side == BackupSide::Store)
        return u"The store file is damaged; the place of the backup is not to blame. Keep the backups that you have."
               "\n(%1)"_s.arg(reason);
    return u"The place of the backup does not keep what is written to it; the store is sound. Please choose another "
           "place.\n(%1)"_s.arg(reason);
}

BackupResult checkCopy(sqlite3 *copy, const Source &source, const RowCounts &expected, const BackupWatch &watch)
{
    const QuickCheck check = checkFile(copy, watch);
    if (!watch({BackupProgress::Stage::Checking, 100}))
        return {Outcome::Stopped, {}, 0};
    if (check.result == QuickCheck::Result::Failed && check.error.code == SQLITE_IOERR)
        return failed(copyProblem(check.error, BackupSide::Place));
    if (check.result != QuickCheck::Result::Sound) {
        // The store passes the check and the copy does not: the backup's disk is at fault.
        const BackupSide side = source.isBad() ? BackupSide::Store : BackupSide::Place;
        if (!watch({BackupProgress::Stage::Checking, 100}))
            return {Outcome::Stopped, {}, 0};
        return failed(damageText(side, check.error.reason));
    }
    const RowCounts counted = countRows(copy);
    if (counted.size() < expected.size())
        return failed(copyProblem({SQLITE_IOERR, u"the copy cannot be read back"_s}, BackupSide::Place));
    if (!expected.isEmpty() && counted != expected)
        return failed(u"The copy does not hold as many rows as the store. Please try again."_s);
    return {Outcome::Done, {}, 0};
}

/// journal_mode DELETE: a file in WAL mode could not be opened from a read-only medium.
BackupResult closeCopy(SqliteDatabase &copy)
{
    const auto error = runSql(copy.get(), u"PRAGMA journal_mode = DELETE"_s);
    copy.reset();
    return error ? failed(copyProblem(*error, BackupSide::Place)) : BackupResult{Outcome::Done, {}, 0};
}

BackupResult makeCopy(const Source &source, const QString &file, const BackupWatch &watch)
{
    auto copy = openDatabase(file, OpenMode::Create);
    if (!copy)
        return failed(copyProblem(copy.error(), BackupSide::Place));
    const CopyEnd end = source.copyInto(copy->get());
    if (end.stopped)
        return {Outcome::Stopped, {}, 0};
    if (end.error)
        return failed(end.words.isEmpty() ? copyProblem(*end.error, end.side) : end.words);
    if (auto result = checkCopy(copy->get(), source, end.counts, watch); result.outcome != Outcome::Done)
        return result;
    return closeCopy(*copy);
}

/// What becomes of a copy whose name a file has already.
enum class IfTaken {
    Fail,
    Replace,
    Number,
};

Naming nameCopy(const QString &file, const QString &target, IfTaken ifTaken)
{
    return ifTaken == IfTaken::Replace ? replaceFile(file, target) : nameNewFileAnywhere(file, target);
}

BackupResult giveName(const QString &file, const QString &wanted, IfTaken ifTaken)
{
    QString target = wanted;
    Naming named = syncFile(file);
    if (named)
        named = nameCopy(file, target, ifTaken);
    for (int number = 2;
         !named && named.error() == std::errc::file_exists && ifTaken == IfTaken::Number && number <= mostNumber;
         ++number) {
        target = numberedName(wanted, number);
        named = nameCopy(file, target, ifTaken);
    }
    if (!named && named.error() == std::errc::file_exists)
        return failed(u"A file \"%1\" has appeared there in the meantime. It was left as it was."_s.arg(target));
    if (!named)
        return failed(u"The backup could not be written to its place (%1)."_s.arg(
            QString::fromLocal8Bit(named.error().message())));
    syncFolder(QFileInfo(target).absolutePath());
    return {Outcome::Done, {}, QFileInfo(target).size(), target};
}

BackupResult copyTo(const QString &target, IfTaken ifTaken, const Source &source, const BackupWatch &watch)
{
    const QString place = realTarget(target);
    const QString folder = QFileInfo(place).absolutePath();
    removeLeftWorkshops(folder);
    const Workshop workshop(folder, Workshop::Purpose::Backup);
    if (!workshop.isValid())
        return failed(u"Nothing can be written there: %1"_s.arg(workshop.errorString()));
    const QString file = workshop.filePath(u"backup.db"_s);
    if (auto result = makeCopy(source, file, watch); result.outcome != Outcome::Done)
        return result;
    return giveName(file, place, ifTaken);
}

/// Its damage is not ours to find: when the copy is damaged, its own disk is at fault.
Source serverSource(const QString &store, const BackupWatch &watch)
{
    return {[&](sqlite3 *copy) { return copyServerStore(store, copy, watch); }, [] { return false; }};
}

BackupResult backUp(const QString &store, const QString &target, IfTaken ifTaken, const BackupWatch &watch)
{
    if (const auto place = checkBackupPlace(store, target); !place)
        return failed(place.error());
    if (isServer(store))
        return copyTo(target, ifTaken, serverSource(store, watch), watch);
    const Source source = {
        [&](sqlite3 *copy) { return copyStore(store, copy, watch); },
        [&] { return isBadFile(store, watch); },
    };
    return copyTo(target, ifTaken, source, watch);
}

BackupResult copyOpened(sqlite3 *store, const QString &path, const QString &target, IfTaken ifTaken,
                        const BackupWatch &watch)
{
    if (const auto place = checkBackupPlace(path, target); !place)
        return failed(place.error());
    const Source source = {
        [&](sqlite3 *copy) { return copyOpenStore(store, copy, watch); },
        [&] { return isBad(store, watch); },
    };
    return copyTo(target, ifTaken, source, watch);
}

} // namespace

BackupResult backUpStore(const QString &store, const QString &target, bool replace, const BackupWatch &watch)
{
    return backUp(store, target, replace ? IfTaken::Replace : IfTaken::Fail, watch);
}

BackupResult backUpStoreNumbered(const QString &store, const QString &target, const BackupWatch &watch)
{
    return backUp(store, target, IfTaken::Number, watch);
}

BackupResult rescueStore(sqlite3 *store, const QString &path, const QString &target, const BackupWatch &watch)
{
    return copyOpened(store, path, target, IfTaken::Fail, watch);
}

BackupResult backUpOpenStore(sqlite3 *store, const QString &path, const QString &target, const BackupWatch &watch)
{
    return copyOpened(store, path, target, IfTaken::Number, watch);
}

} // namespace harrowby::app
