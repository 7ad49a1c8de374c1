// SPDX-License-Identifier: MIT
#include "app/shop/file_naming.h"

#include "app/shop/file_facts.h"

#include <QFile>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

namespace harrowby::app {

namespace {

/// What a call of the system came to that returns 0 when it has worked.
Naming outcome(int returned)
{
    if (returned == 0)
        return {};
    return Unexpected(std::error_code(errno, std::system_category()));
}

Naming syncOpened(const QString &path, int flags)
{
    const int descriptor = ::open(QFile::encodeName(path).constData(), flags | O_RDONLY | O_CLOEXEC);
    if (descriptor < 0)
        return outcome(descriptor);
    const Naming synced = outcome(::fsync(descriptor));
    ::close(descriptor);
    return synced;
}

} // namespace

Naming nameNewFile(const QString &file, const QString &path)
{
    const QByteArray from = QFile::encodeName(file);
    const QByteArray to = QFile::encodeName(path);
    if (::renameat2(AT_FDCWD, from.constData(), AT_FDCWD, to.constData(), RENAME_NOREPLACE) == 0)
        return {};
    if (errno != EINVAL && errno != ENOSYS)
        return outcome(-1);
    // The file system has no RENAME_NOREPLACE; link() does not replace either.
    return outcome(::link(from.constData(), to.constData()));
}

Naming nameNewFileAnywhere(const QString &file, const QString &path)
{
    const Naming named = nameNewFile(file, path);
    if (named || nameIsTaken(path))
        return named;
    // FAT, network folders and FUSE each have their own word for a link() that they lack.
    const bool canNot = named.error() == std::errc::operation_not_permitted ||
                        named.error() == std::errc::not_supported || named.error() == std::errc::function_not_supported;
    return canNot ? replaceFile(file, path) : named;
}

Naming replaceFile(const QString &file, const QString &path)
{
    return outcome(::rename(QFile::encodeName(file).constData(), QFile::encodeName(path).constData()));
}

Naming syncFile(const QString &file)
{
    return syncOpened(file, 0);
}

void syncFolder(const QString &folder)
{
    (void)syncOpened(folder, O_DIRECTORY);
}

} // namespace harrowby::app
