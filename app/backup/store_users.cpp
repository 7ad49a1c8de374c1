// SPDX-License-Identifier: MIT
#include "app/backup/store_users.h"

#include "app/shop/errand_names.h"
#include "app/shop/file_facts.h"

#include <QDir>
#include <QFile>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

const auto tillName = u"a till"_s;

struct FileNumber
{
    dev_t device;
    ino_t inode;
    bool operator==(const FileNumber &) const = default;
};

QList<FileNumber> numbersOf(const QString &store)
{
    QList<FileNumber> numbers;
    for (const QString &path : {store, logFileOf(store)}) {
        struct stat facts = {};
        if (::stat(QFile::encodeName(path).constData(), &facts) == 0)
            numbers << FileNumber{facts.st_dev, facts.st_ino};
    }
    return numbers;
}

/// Looks through the names in /proc/PID/fd, which are links that stat() follows also to a file without a name.
bool hasOpen(const QString &process, const QList<FileNumber> &files)
{
    const QDir folder(process + u"/fd"_s);
    const QStringList descriptors = folder.entryList(QDir::System | QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot);
    return std::ranges::any_of(descriptors, [&](const QString &descriptor) {
        struct stat facts = {};
        return ::stat(QFile::encodeName(folder.filePath(descriptor)).constData(), &facts) == 0 &&
               files.contains(FileNumber{facts.st_dev, facts.st_ino});
    });
}

QByteArray readProcessFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QString nameOf(const QString &process)
{
    const QString name = QString::fromLocal8Bit(readProcessFile(process + u"/comm"_s)).trimmed();
    if (name != u"harrowby"_s)
        return name;
    const QList<QByteArray> words = readProcessFile(process + u"/cmdline"_s).split('\0');
    const auto begins = [&](const char *option) {
        return std::ranges::any_of(words, [&](const QByteArray &word) { return word.startsWith(option); });
    };
    if (begins(officeOption.data()))
        return u"the office"_s;
    for (const QLatin1StringView errand : errand::all) {
        if (begins(errand.data()))
            return u"harrowby "_s + errand;
    }
    return tillName;
}

bool tillLivesAt(const QString &store)
{
    const int file = ::open(QFile::encodeName(runLocksOf(store)).constData(), O_RDWR | O_CLOEXEC | O_NONBLOCK);
    if (file < 0)
        return false;
    struct flock all = {};
    all.l_type = F_WRLCK;
    all.l_whence = SEEK_SET;
    const bool lives = ::fcntl(file, F_OFD_GETLK, &all) == 0 && all.l_type != F_UNLCK;
    ::close(file);
    return lives;
}

} // namespace

StoreUsers findStoreUsers(const QString &store)
{
    StoreUsers users;
    users.tillLives = tillLivesAt(store);
    const QList<FileNumber> files = numbersOf(store);
    const QStringList processes = QDir(u"/proc"_s).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString &process : processes) {
        bool isNumber = false;
        const qint64 number = process.toLongLong(&isNumber);
        const QString folder = u"/proc/"_s + process;
        if (isNumber && number != ::getpid() && hasOpen(folder, files))
            users.programs << StoreProgram{number, nameOf(folder)};
    }
    return users;
}

QString storeUsersText(const StoreUsers &users)
{
    QStringList names;
    for (const StoreProgram &user : users.programs)
        names << u"%1 (process %2)"_s.arg(user.name, QString::number(user.process));
    const bool isSeen =
        std::ranges::any_of(users.programs, [](const StoreProgram &user) { return user.name == tillName; });
    if (users.tillLives && !isSeen)
        names << tillName + u", under another user name or on another computer"_s;
    if (names.size() < 2)
        return names.join(QString());
    const QString last = names.takeLast();
    return u"%1 and %2"_s.arg(names.join(u", "_s), last);
}

} // namespace harrowby::app
