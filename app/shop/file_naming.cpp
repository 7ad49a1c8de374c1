// SPDX-License-Identifier: MIT
#include "app/shop/file_naming.h"

#include <QFile>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

namespace harrowby::app {

namespace {

int syncOpened(const QString &path, int flags)
{
    const int descriptor = ::open(QFile::encodeName(path).constData(), flags | O_RDONLY | O_CLOEXEC);
    if (descriptor < 0)
        return errno;
    const int error = ::fsync(descriptor) == 0 ? 0 : errno;
    ::close(descriptor);
    return error;
}

} // namespace

int nameNewFile(const QString &file, const QString &path)
{
    const QByteArray from = QFile::encodeName(file);
    const QByteArray to = QFile::encodeName(path);
    if (::renameat2(AT_FDCWD, from.constData(), AT_FDCWD, to.constData(), RENAME_NOREPLACE) == 0)
        return 0;
    if (errno != EINVAL && errno != ENOSYS)
        return errno;
    // The file system has no RENAME_NOREPLACE; link() does not replace either.
    return ::link(from.constData(), to.constData()) == 0 ? 0 : errno;
}

int replaceFile(const QString &file, const QString &path)
{
    const int result = ::rename(QFile::encodeName(file).constData(), QFile::encodeName(path).constData());
    return result == 0 ? 0 : errno;
}

int syncFile(const QString &file)
{
    return syncOpened(file, 0);
}

void syncFolder(const QString &folder)
{
    (void)syncOpened(folder, O_DIRECTORY);
}

} // namespace harrowby::app
