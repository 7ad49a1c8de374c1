// SPDX-License-Identifier: MIT
#include "app/cash/run_locks.h"

#include "app/shop/file_facts.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr int openFlags = O_RDWR | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;

struct flock byteOf(std::int64_t run)
{
    struct flock lock = {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    lock.l_start = run;
    lock.l_len = 1;
    return lock;
}

QString systemWords(int error)
{
    return QString::fromLocal8Bit(std::strerror(error));
}

/// Whoever may write the store may lock here. One that another program has just made is taken as it is.
int make(const QByteArray &path, const QByteArray &storePath)
{
    constexpr mode_t readWrite = 0666;
    struct stat store = {};
    const mode_t mode = ::stat(storePath.constData(), &store) == 0 ? store.st_mode & readWrite : 0600;
    const int file = ::open(path.constData(), openFlags | O_CREAT | O_EXCL, mode);
    if (file < 0)
        return errno == EEXIST ? ::open(path.constData(), openFlags) : -1;
    (void)::fchmod(file, mode);
    return file;
}

} // namespace

FileRunLocks::FileRunLocks(const QString &storePath)
{
    const QString real = QFileInfo(storePath).canonicalFilePath();
    m_storePath = real.isEmpty() ? storePath : real;
    m_path = runLocksOf(m_storePath);
}

QList<RunLocks::Holder> RunLocks::holdersOf(const QList<std::int64_t> &runs) const
{
    QList<Holder> holders;
    for (const std::int64_t run : runs)
        holders << holderOf(run);
    return holders;
}

FileRunLocks::~FileRunLocks()
{
    struct flock all = byteOf(0);
    all.l_len = 0;
    if (!m_held.isEmpty() && ::fcntl(m_file, F_OFD_SETLK, &all) == 0 && isAtItsPath())
        (void)::unlink(QFile::encodeName(m_path).constData());
    closeFile();
}

void FileRunLocks::closeFile() const
{
    if (m_file >= 0)
        ::close(m_file);
    m_file = -1;
}

bool FileRunLocks::isAtItsPath() const
{
    struct stat named = {};
    struct stat opened = {};
    return ::stat(QFile::encodeName(m_path).constData(), &named) == 0 && ::fstat(m_file, &opened) == 0 &&
           named.st_dev == opened.st_dev && named.st_ino == opened.st_ino;
}

/// The open file; -1 with errno set when there is none.
int FileRunLocks::open(bool make) const
{
    if (m_file >= 0 && (!m_held.isEmpty() || isAtItsPath()))
        return m_file;
    closeFile();
    const QByteArray path = QFile::encodeName(m_path);
    m_file = ::open(path.constData(), openFlags);
    if (m_file < 0 && errno == ENOENT && make)
        m_file = app::make(path, QFile::encodeName(m_storePath));
    return m_file;
}

Result<void, QString> FileRunLocks::hold(std::int64_t run)
{
    constexpr int tries = 20;
    constexpr useconds_t pause = 1000; // another one that removes the file holds all of it for so long, at most
    for (int left = tries; left > 0; --left) {
        const int file = open(true);
        struct flock lock = byteOf(run);
        const bool isLocked = file >= 0 && ::fcntl(file, F_OFD_SETLK, &lock) == 0;
        if (!isLocked && errno != EAGAIN && errno != EACCES)
            break;
        if (isLocked && (!m_held.isEmpty() || isAtItsPath())) {
            m_held.insert(run);
            return {};
        }
        ::usleep(pause);
    }
    return Unexpected(u"%1: %2"_s.arg(m_path, systemWords(errno)));
}

RunLocks::Holder FileRunLocks::holderOf(std::int64_t run) const
{
    if (m_held.contains(run))
        return Holder::Somebody;
    const int file = open(false);
    if (file < 0)
        return errno == ENOENT ? Holder::Nobody : Holder::NotKnown;
    struct flock lock = byteOf(run);
    if (::fcntl(file, F_OFD_GETLK, &lock) != 0)
        return Holder::NotKnown;
    return lock.l_type == F_UNLCK ? Holder::Nobody : Holder::Somebody;
}

} // namespace harrowby::app
