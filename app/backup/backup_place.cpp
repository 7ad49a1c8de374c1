// SPDX-License-Identifier: MIT
#include "app/backup/backup_place.h"

#include "app/shop/file_facts.h"

#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QStorageInfo>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

/// One file under two names is one file, also through links of any kind.
bool isSameFile(const QString &one, const QString &other)
{
    struct stat first = {};
    struct stat second = {};
    return ::stat(QFile::encodeName(one).constData(), &first) == 0 &&
           ::stat(QFile::encodeName(other).constData(), &second) == 0 && first.st_dev == second.st_dev &&
           first.st_ino == second.st_ino;
}

bool isInFolder(const QString &file, const QString &other)
{
    return QFileInfo(file).fileName() == QFileInfo(other).fileName() &&
           isSameFile(QFileInfo(file).absolutePath(), QFileInfo(other).absolutePath());
}

Result<void, QString> checkName(const QString &target)
{
    const QFileInfo info(target);
    if (info.isDir())
        return Unexpected(u"\"%1\" is a folder. Please give the backup a name in it."_s.arg(target));
    if (nameIsTaken(target) && !info.isFile())
        return Unexpected(u"\"%1\" is not an ordinary file."_s.arg(target));
    // SQLite would replay a journal or log of this name into the backup.
    for (const QString &file : {logFileOf(target), journalOf(target)}) {
        if (nameIsTaken(file))
            return Unexpected(
                u"\"%1\" lies there: another program uses a file of that name. Please choose another name."_s.arg(
                    file));
    }
    return {};
}

Result<void, QString> checkSpace(const QString &store, const QString &target)
{
    const qint64 needed = QFileInfo(store).size() + QFileInfo(logFileOf(store)).size();
    const qint64 free = QStorageInfo(QFileInfo(realTarget(target)).absolutePath()).bytesAvailable();
    if (free < 0 || free >= needed)
        return {};
    const QLocale locale = QLocale::c();
    return Unexpected(u"There is not enough space: the backup needs %1, and %2 is free."_s.arg(
        locale.formattedDataSize(needed), locale.formattedDataSize(free)));
}

} // namespace

Result<void, QString> checkFolderOf(const QString &target)
{
    const QFileInfo folder(QFileInfo(realTarget(target)).absolutePath());
    if (!folder.isDir())
        return Unexpected(
            u"There is no folder \"%1\". If it is on a stick, plug that in first."_s.arg(folder.filePath()));
    if (judgeNewPlace(realTarget(target), false))
        return Unexpected(u"The folder \"%1\" cannot be written. Please choose another one."_s.arg(folder.filePath()));
    return {};
}

bool belongsToStore(const QString &store, const QString &target)
{
    if (isSameFile(store, target))
        return true;
    for (const QString &file : {logFileOf(store), logIndexOf(store), journalOf(store)}) {
        if (isInFolder(file, target))
            return true;
    }
    return false;
}

Result<void, QString> checkBackupPlace(const QString &store, const QString &target)
{
    if (QFileInfo(target).fileName().isEmpty())
        return Unexpected(u"Please choose a place for the backup."_s);
    if (belongsToStore(store, target))
        return Unexpected(u"This is the store file itself. Please choose another name."_s);
    if (const auto name = checkName(target); !name)
        return name;
    if (const auto folder = checkFolderOf(target); !folder)
        return folder;
    return checkSpace(store, target);
}

std::optional<QString> noBackupWords(const QString &store, const QString &file)
{
    if (belongsToStore(store, file))
        return u"This is the store file itself. Please choose a backup."_s;
    if (!QFileInfo(file).isFile())
        return u"There is no file \"%1\". If it is on a stick, plug that in first."_s.arg(file);
    return {};
}

bool backupWouldReplace(const QString &target)
{
    return QFileInfo(target).isFile();
}

QString realTarget(const QString &target)
{
    const QString real = QFileInfo(target).canonicalFilePath();
    return real.isEmpty() ? QFileInfo(target).absoluteFilePath() : real;
}

} // namespace harrowby::app
