// SPDX-License-Identifier: MIT
#include "tests/doubles/cluster_tools.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>

#include <array>
#include <csignal>
#include <optional>

#include <arpa/inet.h>
#include <grp.h>
#include <pwd.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace harrowby::test::cluster {

namespace {

constexpr int oldestVersion = 15;
constexpr int toolMs = 120'000;

struct User
{
    uid_t user;
    gid_t group;
};

/// The one that servers run as, where it is not this process's own.
std::optional<User> serverUser()
{
    const passwd *entry = ::getuid() == 0 ? ::getpwnam("postgres") : nullptr;
    return entry == nullptr ? std::nullopt : std::optional(User{entry->pw_uid, entry->pw_gid});
}

/// The newest version that is installed.
QString programFolder()
{
    const QDir versions(u"/usr/lib/postgresql"_s);
    int newest = 0;
    for (const QString &version : versions.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        if (QFile::exists(versions.filePath(version + u"/bin/initdb"_s)))
            newest = qMax(newest, version.toInt());
    }
    return newest < oldestVersion ? QString() : versions.filePath(QString::number(newest) + u"/bin"_s);
}

/// State and parent of a process out of /proc/PID/stat; the name between them may hold anything.
QStringList stateAndParent(pid_t process)
{
    QFile file(u"/proc/%1/stat"_s.arg(process));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QString line = QString::fromLocal8Bit(file.readAll());
    return line.sliced(line.lastIndexOf(u')') + 1)
        .split(u' ', Qt::SkipEmptyParts)
        .mid(0, 2); // none of a process that has just gone
}

} // namespace

QString missing()
{
    if (programFolder().isEmpty())
        return u"PostgreSQL %1 or newer is not installed"_s.arg(oldestVersion);
    if (::getuid() == 0 && !serverUser())
        return u"there is no user \"postgres\", and as root no server runs"_s;
    return {};
}

QString runFolder(const QString &ofBuild)
{
    return u"%1/%2"_s.arg(ofBuild).arg(::getppid());
}

QString parentFolder()
{
    const QString ofRun = runFolder(qEnvironmentVariable("HARROWBY_TEST_CLUSTERS"));
    return QFileInfo::exists(ofRun) ? ofRun : QDir::tempPath();
}

QString templateFolder()
{
    const QString made = parentFolder() + u"/template"_s;
    if (QFileInfo::exists(made))
        return made;
    static const QTemporaryDir own;
    if (!QFileInfo::exists(own.filePath(u"template"_s)))
        makeTemplateIn(own.path());
    return own.filePath(u"template"_s);
}

void makeTemplateIn(const QString &folder)
{
    const QString data = folder + u"/template"_s;
    giveAway(folder);
    run(program(u"initdb"_s), {u"--pgdata"_s, data, u"--username"_s, u"postgres"_s, u"--auth"_s, u"trust"_s,
                               u"--no-locale"_s, u"--encoding"_s, u"UTF8"_s, u"--data-checksums"_s, u"--no-sync"_s});
    run(program(u"postgres"_s), {u"--single"_s, u"-D"_s, data, u"-F"_s, u"template1"_s},
        "CREATE DATABASE shop STRATEGY FILE_COPY\n");
}

void giveAway(const QString &folder)
{
    const std::optional<User> user = serverUser();
    if (user && ::chown(QFile::encodeName(folder).constData(), user->user, user->group) != 0)
        qFatal("%s cannot be given away", qPrintable(folder));
}

QString program(const QString &name)
{
    return programFolder() + u'/' + name;
}

void prepare(QProcess &process)
{
    process.setWorkingDirectory(u"/"_s); // the one of this process may be closed to the other user
    process.setChildProcessModifier([user = serverUser(), parent = ::getpid()] {
        if (user && (::setgroups(0, nullptr) != 0 || ::setgid(user->group) != 0 || ::setuid(user->user) != 0))
            ::_exit(1);
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (::getppid() != parent)
            ::_exit(1); // it had ended before
    });
}

void run(const QString &program, const QStringList &arguments, const QByteArray &input)
{
    QProcess process;
    prepare(process);
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    process.write(input);
    process.closeWriteChannel();
    if (!process.waitForFinished(toolMs) || process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
        qFatal("%s failed: %s%s", qPrintable(program), qPrintable(process.errorString()),
               process.readAll().constData());
}

quint16 freePort()
{
    const int socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    if (::bind(socket, reinterpret_cast<const sockaddr *>(&address), size) != 0 ||
        ::getsockname(socket, reinterpret_cast<sockaddr *>(&address), &size) != 0)
        qFatal("no port is free");
    ::close(socket);
    return ntohs(address.sin_port);
}

std::vector<pid_t> childrenOf(pid_t process)
{
    std::vector<pid_t> children;
    for (const QString &name : QDir(u"/proc"_s).entryList(QDir::Dirs)) {
        const pid_t candidate = name.toInt();
        if (candidate > 0 && stateAndParent(candidate).value(1).toInt() == process)
            children.push_back(candidate);
    }
    return children;
}

void awaitEnd(pid_t process)
{
    for (QString state = u"?"_s; !state.isEmpty() && state != u"Z"_s; state = stateAndParent(process).value(0))
        QThread::msleep(1);
}

} // namespace harrowby::test::cluster
