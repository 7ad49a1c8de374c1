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

QString systemReason()
{
    return qt_error_string(errno);
}

QString isNotOrdinary()
{
    return u"it is not an ordinary file"_s;
}

/// Some devices do something when they are opened; what is not there yet may be made.
bool mayBeOpened(const QByteArray &name)
{
    struct stat facts = {};
    return ::stat(name.constData(), &facts) != 0 || S_ISREG(facts.st_mode);
}

int openDescriptor(const QByteArray &name, QIODevice::OpenMode mode)
{
    // A pipe that has taken the name meanwhile must not be waited for either.
    constexpr int careful = O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    if (mode.testFlag(QIODevice::Append))
        return ::open(name.constData(), careful | O_WRONLY | O_APPEND | O_CREAT, S_IRUSR | S_IWUSR);
    return ::open(name.constData(), careful | O_RDONLY);
}

bool isOrdinary(int descriptor)
{
    struct stat facts = {};
    return ::fstat(descriptor, &facts) == 0 && S_ISREG(facts.st_mode);
}

} // namespace

QString makePrivateFolder(const QString &path)
{
    const QString folder = QDir::cleanPath(QFileInfo(path).absoluteFilePath());
    if (QFileInfo(folder).isDir())
        return {};
    if (const QString parent = QFileInfo(folder).path(); parent != folder) {
        if (const QString reason = makePrivateFolder(parent); !reason.isEmpty())
            return reason;
    }
    if (::mkdir(QFile::encodeName(folder).constData(), S_IRWXU) == 0)
        return {};
    const int error = errno;
    if (QFileInfo(folder).isDir())
        return {}; // another program was faster
    return qt_error_string(error == EEXIST ? ENOTDIR : error);
}

QString openOrdinaryFile(QFile &file, QIODevice::OpenMode mode)
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
    return file.errorString();
}

QString writeAll(int descriptor, QByteArrayView bytes)
{
    while (!bytes.isEmpty()) {
        const auto written = ::write(descriptor, bytes.data(), static_cast<std::size_t>(bytes.size()));
        if (written < 0 && errno != EINTR)
            return systemReason();
        bytes = bytes.sliced(std::max<qsizetype>(written, 0));
    }
    return {};
}

QString writeToDisk(int descriptor, QByteArrayView bytes)
{
    if (const QString reason = writeAll(descriptor, bytes); !reason.isEmpty())
        return reason;
    // A file system that cannot promise it is not to blame.
    if (::fsync(descriptor) == 0 || errno == EINVAL || errno == ENOSYS || errno == EOPNOTSUPP)
        return {};
    return systemReason();
}

QString writePrivateFile(const QString &path, const QByteArray &bytes)
{
    if (const QString reason = makePrivateFolder(QFileInfo(path).absolutePath()); !reason.isEmpty())
        return reason;
    const bool isNew = !QFileInfo::exists(path);
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return file.errorString();
    if (isNew)
        file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    if (const QString reason = writeToDisk(file.handle(), bytes); !reason.isEmpty())
        return reason;
    return file.commit() ? QString() : file.errorString();
}

} // namespace harrowby
