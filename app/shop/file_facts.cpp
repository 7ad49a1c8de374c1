// SPDX-License-Identifier: MIT
#include "app/shop/file_facts.h"

#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

QString realPath(const QString &path)
{
    const QString real = QFileInfo(path).canonicalFilePath();
    return real.isEmpty() ? path : real;
}

bool allows(const QString &path, int how)
{
    return ::faccessat(AT_FDCWD, QFile::encodeName(path).constData(), how, AT_EACCESS) == 0;
}

bool folderCanBeWritten(const QString &folder)
{
    return allows(folder, W_OK | X_OK);
}

/// The file or one of those beside it that cannot be written; empty when there is none.
QString readOnlyOne(const QString &path)
{
    for (const QString &file : {path, logFileOf(path), logIndexOf(path), journalOf(path)}) {
        if (QFile::exists(file) && !allows(file, W_OK))
            return file;
    }
    return {};
}

QString nearestExisting(QString folder)
{
    while (!QFileInfo::exists(folder) && folder != u"/"_s)
        folder = QFileInfo(folder).absolutePath();
    return folder;
}

} // namespace

QString logFileOf(const QString &path)
{
    return realPath(path) + logEnding;
}

QString runLocksOf(const QString &path)
{
    return realPath(path) + u"-runs"_s;
}

QString logIndexOf(const QString &path)
{
    return realPath(path) + u"-shm"_s;
}

QString journalOf(const QString &path)
{
    return realPath(path) + journalEnding;
}

bool nameIsTaken(const QString &path)
{
    const QFileInfo info(path);
    return info.exists() || info.isSymLink();
}

std::optional<StoreProblem> judgePlace(const QString &path)
{
    const QFileInfo info(path);
    if (info.isDir())
        return storeProblem(ProblemKind::Folder, path);
    if (!info.isFile())
        return storeProblem(ProblemKind::NotAFile, path);
    if (!allows(path, R_OK))
        return storeProblem(ProblemKind::Unreadable, path);
    if (const QString file = readOnlyOne(path); !file.isEmpty())
        return storeProblem(ProblemKind::ReadOnly, path, file);
    if (!folderCanBeWritten(QFileInfo(realPath(path)).absolutePath()))
        return storeProblem(ProblemKind::FolderLocked, realPath(path));
    return {};
}

std::optional<StoreProblem> judgeNewPlace(const QString &path, bool makeFolder)
{
    if (path == memoryName)
        return storeProblem(ProblemKind::NoFile, path);
    // What the name's bytes were cannot be told any more, and the file would be made under another name.
    if (path.contains(QChar::ReplacementCharacter))
        return storeProblem(ProblemKind::BadName, path);
    QString folder = QFileInfo(path).absolutePath();
    if (makeFolder)
        folder = nearestExisting(folder);
    if (!QFileInfo(folder).isDir())
        return storeProblem(ProblemKind::NoFolder, path);
    if (!folderCanBeWritten(folder))
        return storeProblem(ProblemKind::FolderLocked, path);
    return {};
}

} // namespace harrowby::app
