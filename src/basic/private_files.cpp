// SPDX-License-Identifier: MIT
#include "basic/private_files.h"

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace harrowby {

namespace {

Unexpected<QString> systemReason()
{
    return Unexpected(qt_error_string(errno));
}

Unexpected<QString> isNotOrdinary()
{
    return Unexpected(u"it is not an ordinary file"_s);
}

/// True for a regular file and for a missing one. Asked before open(), as opening alone can trigger some devices.
bool mayBeOpened(const QByteArray &name)
{
    struct stat facts = {};
    return ::stat(name.constData(), &facts) != 0 || S_ISREG(facts.st_mode);
}

int openDescriptor(const QByteArray &name, QIODevice::OpenMode mode)
{
    // O_NONBLOCK: a FIFO may have taken the name since mayBeOpened(), and open() would wait for its other end.
    constexpr int careful = O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    if (mode.testFlag(QIODevice::Append))
        return ::open(name.constData(), careful | O_WRONLY | O_APPEND | O_CREAT, privateFileMode);
    return ::open(name.constData(), careful | O_RDONLY);
}

bool isOrdinary(int descriptor)
{
    struct stat facts = {};
    return ::fstat(descriptor, &facts) == 0 && S_ISREG(facts.st_mode);
}

} // namespace

Result<void, QString> makePrivateFolder(const QString &path)
{
    const QString folder = QDir::cleanPath(QFileInfo(path).absoluteFilePath());
    if (QFileInfo(folder).isDir())
        return {};
    const QString parent = QFileInfo(folder).path();
    if (parent != folder) {
        if (const auto made = makePrivateFolder(parent); !made)
            return made;
    }
    if (::mkdir(QFile::encodeName(folder).constData(), privateFolderMode) == 0) {
        static_cast<void>(syncFolder(parent)); // a folder that cannot be read cannot be synced either
        return {};
    }
    const int error = errno;
    if (QFileInfo(folder).isDir())
        return {}; // another program has created it meanwhile
    return Unexpected(qt_error_string(error == EEXIST ? ENOTDIR : error));
}

Result<void, QString> makePrivateFile(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    const int descriptor = ::open(name.constData(), O_RDONLY | O_CREAT | O_EXCL | O_CLOEXEC, privateFileMode);
    if (descriptor >= 0)
        ::close(descriptor);
    else if (errno != EEXIST)
        return systemReason();
    return {};
}

Result<void, QString> openOrdinaryFile(QFile &file, QIODevice::OpenMode mode)
{
    const QByteArray name = QFile::encodeName(file.fileName());
    if (!mayBeOpened(name))
        return isNotOrdinary();
    const int descriptor = openDescriptor(name, mode);
    if (descriptor < 0)
        return errno == ENXIO ? isNotOrdinary() : systemReason();
    if (!isOrdinary(descriptor)) {
        ::close(descriptor);
        return isNotOrdinary();
    }
    if (file.open(descriptor, mode, QFileDevice::AutoCloseHandle))
        return {};
    ::close(descriptor);
    return Unexpected(file.errorString());
}

Result<void, QString> writeAll(int descriptor, QByteArrayView bytes)
{
    while (!bytes.isEmpty()) {
        const auto written = ::write(descriptor, bytes.data(), static_cast<std::size_t>(bytes.size()));
        if (written < 0 && errno != EINTR)
            return systemReason();
        bytes = bytes.sliced(std::max<qsizetype>(written, 0));
    }
    return {};
}

Result<void, QString> writeToDisk(int descriptor, QByteArrayView bytes)
{
    if (const auto written = writeAll(descriptor, bytes); !written)
        return written;
    // These errors mean that the file system has no fsync().
    if (::fsync(descriptor) == 0 || errno == EINVAL || errno == ENOSYS || errno == EOPNOTSUPP)
        return {};
    return systemReason();
}

Result<void, QString> syncFolder(const QString &path)
{
    const int descriptor = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return systemReason();
    auto synced = writeToDisk(descriptor, {});
    ::close(descriptor);
    return synced;
}

Result<void, QString> writePrivateFile(const QString &path, const QByteArray &bytes)
{
    if (const auto made = makePrivateFolder(QFileInfo(path).absolutePath()); !made)
        return made;
    const bool isNew = !QFileInfo::exists(path);
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return Unexpected(file.errorString());
    if (isNew)
        ::fchmod(file.handle(), privateFileMode);
    if (const auto written = writeToDisk(file.handle(), bytes); !written)
        return written;
    if (!file.commit())
        return Unexpected(file.errorString());
    return {};
}

} // namespace harrowby
