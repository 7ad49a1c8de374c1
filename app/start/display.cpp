// SPDX-License-Identifier: MIT
#include "app/start/display.h"

#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QLibraryInfo>
#include <QStringList>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <cstring>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

const QString howToRun = u"Start it from a desktop session, or set DISPLAY to a running X server."_s;

bool isX11(const QString &platform)
{
    return platform == u"xcb"_s;
}

bool isWayland(const QString &platform)
{
    return platform.startsWith(u"wayland"_s);
}

QByteArray waylandSocket()
{
    QByteArray name = qgetenv("WAYLAND_DISPLAY");
    if (name.isEmpty())
        name = "wayland-0";
    return name.startsWith('/') ? name : qgetenv("XDG_RUNTIME_DIR") + '/' + name;
}

bool waylandAnswers()
{
    const QByteArray path = waylandSocket();
    sockaddr_un address = {};
    if (path.size() >= static_cast<qsizetype>(sizeof(address.sun_path)))
        return false;
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, path.constData(), static_cast<std::size_t>(path.size()));
    const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (socket < 0)
        return false;
    const bool answers = ::connect(socket, reinterpret_cast<const sockaddr *>(&address), sizeof(address)) == 0;
    ::close(socket);
    return answers;
}

bool hasPlugin(const QString &platform)
{
    if (qEnvironmentVariableIsSet("QT_QPA_PLATFORM_PLUGIN_PATH"))
        return true; // the folder that a person has set counts as right
    QStringList folders = {QLibraryInfo::path(QLibraryInfo::PluginsPath)};
    folders << qEnvironmentVariable("QT_PLUGIN_PATH").split(u':', Qt::SkipEmptyParts);
    const QString pattern = isWayland(platform) ? u"libqwayland*"_s : u"libq%1.so*"_s.arg(platform);
    for (const QString &folder : folders) {
        if (!QDir(folder + u"/platforms"_s).entryList({pattern}, QDir::Files).isEmpty())
            return true;
    }
    return false;
}

/// Names of the platforms that Qt will try, without their arguments.
QStringList wantedPlatforms(const QString &option)
{
    const QString wanted = option.isEmpty() ? qEnvironmentVariable("QT_QPA_PLATFORM") : option;
    QStringList names;
    for (const QString &entry : wanted.split(u';', Qt::SkipEmptyParts))
        names << entry.section(u':', 0, 0).toLower();
    if (!names.isEmpty())
        return names;
    const bool wayland = qEnvironmentVariableIsSet("WAYLAND_DISPLAY") || qgetenv("XDG_SESSION_TYPE") == "wayland";
    return wayland ? QStringList{u"wayland"_s, u"xcb"_s} : QStringList{u"xcb"_s};
}

QString describeDesktop(const QString &option)
{
    QString name = option.isEmpty() ? qEnvironmentVariable("DISPLAY") : option;
    if (name.isEmpty())
        name = qEnvironmentVariable("WAYLAND_DISPLAY");
    if (name.isEmpty())
        return u"There is no display: neither DISPLAY nor WAYLAND_DISPLAY is set. "_s + howToRun;
    return u"The display \"%1\" cannot be reached. "_s.arg(name) + howToRun;
}

bool x11Answers(const QString &display, FoundDisplay &found)
{
    const QByteArray name = display.toLocal8Bit();
    found.reset(xcb_connect(display.isEmpty() ? nullptr : name.constData(), nullptr));
    return xcb_connection_has_error(found.get()) == 0;
}

bool works(const QString &platform, const QString &display, FoundDisplay &found)
{
    if (!hasPlugin(platform))
        return false;
    if (isX11(platform))
        return x11Answers(display, found);
    return !isWayland(platform) || waylandAnswers();
}

} // namespace

void CloseDisplay::operator()(xcb_connection_t *connection) const noexcept
{
    xcb_disconnect(connection);
}

Result<FoundDisplay, QString> findDisplay(const QString &platform, const QString &display)
{
    const QStringList names = wantedPlatforms(platform);
    FoundDisplay found;
    const auto answers = [&](const QString &name) { return works(name, display, found); };
    if (std::any_of(names.cbegin(), names.cend(), answers))
        return found;
    const QString &first = names.constFirst();
    if (names.contains(u"xcb"_s))
        return Unexpected(describeDesktop(display));
    if (!hasPlugin(first))
        return Unexpected(u"Qt has no platform \"%1\" here. "_s.arg(first) + howToRun);
    return Unexpected(u"The display of platform \"%1\" cannot be reached. "_s.arg(first) + howToRun);
}

bool canShowBoxes()
{
    if (qobject_cast<QGuiApplication *>(QCoreApplication::instance()) == nullptr)
        return false;
    const QString platform = QGuiApplication::platformName();
    return platform != u"offscreen"_s && platform != u"minimal"_s;
}

} // namespace harrowby::app
