// SPDX-License-Identifier: MIT
#include "app/shop/workshop.h"

#include "basic/logging.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr int mostTries = 10;

QString nameOf(Workshop::Purpose purpose, const QString &ending)
{
    return (purpose == Workshop::Purpose::NewStore ? u".harrowby-new-"_s : u".harrowby-backup-"_s) + ending;
}

int openFolder(const QString &path)
{
    return ::open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
}

/// False when the path names another folder now, or none.
bool isStillThere(int descriptor, const QString &path)
{
    struct stat opened = {};
    struct stat named = {};
    return ::fstat(descriptor, &opened) == 0 && ::lstat(QFile::encodeName(path).constData(), &named) == 0 &&
           opened.st_dev == named.st_dev && opened.st_ino == named.st_ino;
}

bool isOurs(int descriptor)
{
    struct stat facts = {};
    return ::fstat(descriptor, &facts) == 0 && facts.st_uid == ::geteuid();
}

/// The kernel releases the lock when the program ends, however it ends.
void removeUnlessOwned(const QString &path)
{
    const int descriptor = openFolder(path);
    if (descriptor < 0)
        return;
    if (isOurs(descriptor) && ::flock(descriptor, LOCK_EX | LOCK_NB) == 0) {
        const bool removed = QDir(path).removeRecursively();
        qCWarning(lcStore).noquote() << path << "was left by a program that was stopped;"
                                     << (removed ? "it is removed" : "it cannot be removed");
    }
    ::close(descriptor);
}

} // namespace

Workshop::Workshop(const QString &folder, Purpose purpose)
{
    // Another program's clean-up may remove the folder between mkdir() and flock().
    for (int tries = 0; tries < mostTries; ++tries) {
        m_folder = std::make_unique<QTemporaryDir>(folder + u'/' + nameOf(purpose, u"XXXXXX"_s));
        if (!m_folder->isValid() || own())
            return;
    }
}

Workshop::~Workshop()
{
    m_folder.reset();
    if (m_owner >= 0)
        ::close(m_owner);
}

bool Workshop::own()
{
    m_owner = openFolder(m_folder->path());
    if (m_owner < 0)
        return errno != ENOENT;
    const bool isTaken = ::flock(m_owner, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
    if (!isTaken && isStillThere(m_owner, m_folder->path()))
        return true;
    ::close(m_owner);
    m_owner = -1;
    return false;
}

bool Workshop::isValid() const
{
    return m_folder->isValid();
}

QString Workshop::errorString() const
{
    return m_folder->errorString();
}

QString Workshop::filePath(const QString &name) const
{
    return m_folder->filePath(name);
}

void removeLeftWorkshops(const QString &folder)
{
    const QStringList patterns = {nameOf(Workshop::Purpose::NewStore, u"??????"_s),
                                  nameOf(Workshop::Purpose::Backup, u"??????"_s)};
    const QFileInfoList found =
        QDir(folder).entryInfoList(patterns, QDir::Dirs | QDir::Hidden | QDir::NoSymLinks | QDir::NoDotAndDotDot);
    for (const QFileInfo &workshop : found)
        removeUnlessOwned(workshop.filePath());
}

} // namespace harrowby::app
