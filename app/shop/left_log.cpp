// SPDX-License-Identifier: MIT
#include "app/shop/left_log.h"

#include "app/shop/file_naming.h"
#include "basic/logging.h"

#include <QDateTime>
#include <QFile>

#include <fcntl.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <array>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr auto mark = "user.harrowby.log-of";
const auto asideMark = u"-aside-"_s;

bool bears(const QByteArray &path, const FileId &id)
{
    const auto facts = factsOf(path);
    return facts && facts->id == id;
}

/// Each connection of SQLite to a log keeps this byte of the index locked.
bool isOpenElsewhere(const QByteArray &index)
{
    constexpr off_t everybody = 128;
    const int descriptor = ::open(index.constData(), O_RDWR | O_CLOEXEC);
    if (descriptor < 0)
        return true;
    struct flock lock = {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    lock.l_start = everybody;
    lock.l_len = 1;
    const bool asked = ::fcntl(descriptor, F_GETLK, &lock) == 0;
    ::close(descriptor);
    return !asked || lock.l_type != F_UNLCK;
}

/// Device and inode of the log itself, and inode of its store file. In a copied log the first two do not match, so its
/// attribute is ignored.
QByteArray markOf(const QByteArray &file, const QByteArray &log)
{
    const auto ofFile = factsOf(file);
    const auto ofLog = factsOf(log);
    if (!ofFile || !ofLog)
        return {};
    return QByteArray::number(static_cast<quint64>(ofLog->id.device)) + ':' +
           QByteArray::number(static_cast<quint64>(ofLog->id.inode)) + ':' +
           QByteArray::number(static_cast<quint64>(ofFile->id.inode));
}

QByteArray storedMark(const QByteArray &log)
{
    std::array<char, 128> value = {};
    const ssize_t length = ::getxattr(log.constData(), mark, value.data(), value.size());
    return length > 0 ? QByteArray(value.data(), length) : QByteArray();
}

} // namespace

QString putLogAside(const LogFiles &files)
{
    if (!bears(files.log, files.logId))
        return {};
    const QString log = QFile::decodeName(files.log);
    const QString first = log + asideMark + QDateTime::currentDateTime().toString(u"yyyyMMdd-HHmmss"_s);
    QString name = first;
    auto named = nameNewFile(log, name);
    for (int i = 2; !named && named.error() == std::errc::file_exists && i < 100; ++i) {
        name = u"%1-%2"_s.arg(first).arg(i);
        named = nameNewFile(log, name);
    }
    if (!named) {
        qCWarning(lcStore) << "The log" << log << "could not be put aside:" << named.error().message().c_str();
        return {};
    }
    if (bears(files.log, files.logId)) // after link() the old name must be removed
        ::unlink(files.log.constData());
    if (bears(files.index, files.indexId))
        ::unlink(files.index.constData());
    return name;
}

bool isPutAside(const QString &log)
{
    return log.contains(asideMark);
}

void removeLeftLog(const LogFiles &files)
{
    const auto log = factsOf(files.log);
    const bool logStands = log && log->id == files.logId;
    if ((log && (!logStands || log->size > 0)) || !bears(files.index, files.indexId) || isOpenElsewhere(files.index))
        return;
    ::unlink(files.index.constData());
    if (logStands)
        ::unlink(files.log.constData());
}

void markLog(const QByteArray &file, const QByteArray &log)
{
    const QByteArray value = markOf(file, log);
    if (!value.isEmpty())
        (void)::setxattr(log.constData(), mark, value.constData(), static_cast<std::size_t>(value.size()), 0);
}

bool logIsOfAnotherFile(const QByteArray &file, const QByteArray &log)
{
    const QByteArray stored = storedMark(log);
    const QByteArray now = markOf(file, log);
    const auto logPart = [](const QByteArray &text) { return text.left(text.lastIndexOf(':')); };
    return !stored.isEmpty() && !now.isEmpty() && logPart(stored) == logPart(now) && stored != now;
}

} // namespace harrowby::app
