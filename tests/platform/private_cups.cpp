// SPDX-License-Identifier: MIT
#include "tests/platform/private_cups.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcessEnvironment>
#include <QTest>

#include <arpa/inet.h>
#include <array>
#include <csignal>
#include <functional>
#include <grp.h>
#include <pwd.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace harrowby::testing {
namespace {

constexpr int startMs = 20'000;

sockaddr_in loopback(int port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    return address;
}

int freePort()
{
    sockaddr_in address = loopback(0);
    auto *const generic = reinterpret_cast<sockaddr *>(&address);
    socklen_t size = sizeof address;
    const int handle = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const bool bound = ::bind(handle, generic, size) == 0 && ::getsockname(handle, generic, &size) == 0;
    ::close(handle);
    return bound ? ntohs(address.sin_port) : 0;
}

bool answers(int port)
{
    const sockaddr_in address = loopback(port);
    const int handle = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const bool connected = ::connect(handle, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0;
    ::close(handle);
    return connected;
}

bool eventually(const std::function<bool()> &condition)
{
    return QTest::qWaitFor(condition, startMs);
}

void dieWithParent()
{
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
}

std::unique_ptr<QProcess> child(const QString &log)
{
    auto process = std::make_unique<QProcess>();
    process->setStandardInputFile(QProcess::nullDevice());
    process->setStandardErrorFile(log);
    return process;
}

void end(std::unique_ptr<QProcess> &process)
{
    if (!process)
        return;
    // SIGTERM first, so that cupsd ends its own children.
    process->terminate();
    if (!process->waitForFinished(5'000)) {
        process->kill();
        process->waitForFinished();
    }
    process.reset();
}

void endAtOnce(std::unique_ptr<QProcess> &process)
{
    process->kill();
    process->waitForFinished();
    process.reset();
}

void signal(const QProcess *process, int number)
{
    if (process && process->processId() > 0)
        ::kill(static_cast<pid_t>(process->processId()), number);
}

bool write(const QString &path, const QString &text)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(text.toUtf8()) > 0;
}

QString tail(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return path + u":\n"_s + QString::fromUtf8(file.readAll().right(3000)) + u'\n';
}

/// The user that cupsd runs its filters as: "lp" when the test runs as root, else the user of the test.
QString filterRights()
{
    if (::geteuid() == 0)
        return u"User lp\nGroup lp\nSystemGroup root\n"_s;
    const passwd *const user = ::getpwuid(::geteuid());
    const group *const own = ::getgrgid(::getegid());
    return u"User %1\nGroup %2\nSystemGroup root\n"_s.arg(QString::fromUtf8(user ? user->pw_name : "nobody"),
                                                          QString::fromUtf8(own ? own->gr_name : "nogroup"));
}

} // namespace

PrivateCups::PrivateCups()
{
    // The filters run as another user and must be able to enter the folder.
    QFile::setPermissions(m_dir.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner | QFile::ReadGroup |
                                            QFile::ExeGroup | QFile::ReadOther | QFile::ExeOther);
}

PrivateCups::~PrivateCups()
{
    resumeService();
    dismissGuard();
    end(m_service);
    end(m_printer);
    end(m_bus);
}

void PrivateCups::writeConfiguration() const
{
    for (const auto &folder : {u"etc"_s, u"spool"_s, u"cache"_s, u"state"_s, u"tmp"_s, u"ssl"_s, u"printed"_s})
        QDir().mkpath(path(folder));
    QFile::setPermissions(path(u"tmp"_s), QFile::Permissions(0x7777));
    write(path(u"etc/cupsd.conf"_s), u"Listen 127.0.0.1:%1\n"
                                     "Browsing No\nDefaultAuthType None\nWebInterface No\nLogLevel info\n"
                                     "<Location />\n  Order allow,deny\n  Allow localhost\n</Location>\n"
                                     "<Policy default>\n  <Limit All>\n    Order allow,deny\n    Allow all\n"
                                     "  </Limit>\n</Policy>\n"_s.arg(m_servicePort));
    write(path(u"etc/cups-files.conf"_s),
          filterRights() + u"ServerRoot %1/etc\nRequestRoot %1/spool\n"
                           "CacheDir %1/cache\nStateDir %1/state\nTempDir %1/tmp\n"
                           "ServerKeychain %1/ssl\nAccessLog %1/access_log\n"
                           "ErrorLog %1/error_log\nPageLog %1/page_log\nPrintcap %1/printcap\n"_s.arg(m_dir.path()));
}

QString PrivateCups::start()
{
    m_servicePort = freePort();
    m_printerPort = freePort();
    writeConfiguration();
    if (!startBus())
        return u"The message bus does not start (dbus-daemon).\n"_s + logs();
    if (!startPrinter())
        return u"The printer does not start (ippeveprinter, package cups-ipp-utils).\n"_s + logs();
    if (!startService())
        return u"The print service does not start (cupsd, package cups).\n"_s + logs();
    return addQueue() ? QString() : u"The queue cannot be made (lpadmin, package cups-client).\n"_s + logs();
}

bool PrivateCups::startBus()
{
    m_bus = child(path(u"bus_log"_s));
    m_bus->setChildProcessModifier(dieWithParent);
    m_bus->start(u"dbus-daemon"_s, {u"--session"_s, u"--nofork"_s, u"--print-address"_s,
                                    u"--address=unix:path=%1"_s.arg(path(u"bus"_s))});
    QElapsedTimer timer;
    timer.start();
    while (!m_bus->canReadLine() && timer.elapsed() < startMs && m_bus->state() != QProcess::NotRunning)
        m_bus->waitForReadyRead(startMs);
    m_busAddress = QString::fromUtf8(m_bus->readLine()).trimmed();
    return !m_busAddress.isEmpty();
}

bool PrivateCups::startPrinter()
{
    m_printer = child(path(u"printer_log"_s));
    m_printer->setChildProcessModifier(dieWithParent);
    // ippeveprinter announces itself over D-Bus and does not start without a system bus.
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"DBUS_SYSTEM_BUS_ADDRESS"_s, m_busAddress);
    m_printer->setProcessEnvironment(environment);
    m_printer->start(u"ippeveprinter"_s,
                     {u"-k"_s, u"-r"_s, u"off"_s, u"-d"_s, path(u"printed"_s), u"-p"_s, QString::number(m_printerPort),
                      u"-n"_s, u"localhost"_s, u"-f"_s, u"application/pdf,image/urf,image/pwg-raster"_s, u"Till"_s});
    return eventually([this] { return m_printer->state() == QProcess::NotRunning || answers(m_printerPort); }) &&
           m_printer->state() == QProcess::Running;
}

bool PrivateCups::startService()
{
    const QByteArray address = "localhost:" + QByteArray::number(m_servicePort);
    qputenv("CUPS_SERVER", address);
    qputenv("CUPS_SERVERROOT", path(u"etc"_s).toUtf8());
    m_service = child(path(u"service_log"_s));
    const QString program = QFile::exists(u"/usr/sbin/cupsd"_s) ? u"/usr/sbin/cupsd"_s : u"cupsd"_s;
    m_service->start(program, {u"-f"_s, u"-c"_s, path(u"etc/cupsd.conf"_s), u"-s"_s, path(u"etc/cups-files.conf"_s)});
    if (!m_service->waitForStarted(startMs))
        return false;
    guardService();
    return eventually([this] { return m_service->state() == QProcess::NotRunning || answers(m_servicePort); }) &&
           m_service->state() == QProcess::Running;
}

bool PrivateCups::addQueue() const
{
    const QString printer = u"ipp://localhost:%1/ipp/print"_s.arg(m_printerPort);
    command(u"lpadmin"_s, {u"-p"_s, u"till"_s, u"-E"_s, u"-v"_s, printer, u"-m"_s, u"everywhere"_s});
    command(u"lpadmin"_s, {u"-d"_s, u"till"_s});
    if (!eventually([this] { return QFile::exists(path(u"etc/ppd/till.ppd"_s)); }))
        return false;
    return command(u"lpstat"_s, {u"-d"_s}).contains(u"destination: till"_s);
}

void PrivateCups::removeQueue() const
{
    command(u"lpadmin"_s, {u"-x"_s, u"till"_s});
}

void PrivateCups::guardService()
{
    // SIGKILL would leave cupsd's backends behind, and a stopped cupsd would never end. So a helper process waits for
    // the end of this one, however it ends, and then ends cupsd.
    m_guard = std::make_unique<QProcess>();
    const QString script = u"read answer || { kill -CONT $0; kill -TERM $0; }"_s;
    m_guard->start(u"sh"_s, {u"-c"_s, script, QString::number(m_service->processId())});
}

void PrivateCups::dismissGuard()
{
    if (!m_guard)
        return;
    m_guard->write("done\n");
    m_guard->closeWriteChannel();
    m_guard->waitForFinished();
    m_guard.reset();
}

QString PrivateCups::command(const QString &program, const QStringList &arguments) const
{
    // The administrator's commands are not in every user's PATH.
    const QString system = u"/usr/sbin/"_s + program;
    QProcess process;
    process.start(QFile::exists(system) ? system : program, arguments);
    if (!process.waitForFinished(startMs) || process.exitCode() != 0) {
        qWarning().noquote() << program << arguments << process.readAllStandardError();
        return {};
    }
    return QString::fromUtf8(process.readAllStandardOutput());
}

QStringList PrivateCups::printedFiles() const
{
    const QDir folder(path(u"printed"_s));
    QStringList files;
    for (const QString &name : folder.entryList({u"*.pdf"_s}, QDir::Files, QDir::Time | QDir::Reversed))
        files += folder.filePath(name);
    return files;
}

QString PrivateCups::waitingJobs() const
{
    return command(u"lpstat"_s, {u"-W"_s, u"not-completed"_s, u"-o"_s});
}

void PrivateCups::killPrinter()
{
    endAtOnce(m_printer);
}

void PrivateCups::killService()
{
    dismissGuard();
    endAtOnce(m_service);
}

void PrivateCups::hangService()
{
    signal(m_service.get(), SIGSTOP);
}

void PrivateCups::resumeService()
{
    signal(m_service.get(), SIGCONT);
}

QString PrivateCups::logs() const
{
    QString all;
    for (const auto &name : {u"bus_log"_s, u"printer_log"_s, u"service_log"_s, u"error_log"_s})
        all += tail(path(name));
    return all;
}

} // namespace harrowby::testing
