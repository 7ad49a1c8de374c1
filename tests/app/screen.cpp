// SPDX-License-Identifier: MIT
#include "tests/app/screen.h"

#include <QDir>
#include <QElapsedTimer>
#include <QProcessEnvironment>
#include <QTest>

#include <xcb/xcb.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <vector>

using namespace Qt::StringLiterals;

namespace harrowby::app::test {

namespace {

constexpr int patience = 30000; // milliseconds; a loaded machine under the sanitizers is slow
constexpr QPoint nowhere(-1, -1);

void end(QProcess &process)
{
    if (process.state() == QProcess::NotRunning)
        return;
    process.terminate();
    if (!process.waitForFinished(5000))
        process.kill();
    process.waitForFinished();
}

QPoint pointOf(const QString &place)
{
    return place.contains(u' ') ? QPoint(place.section(u' ', 0, 0).toInt(), place.section(u' ', 1, 1).toInt())
                                : nowhere;
}

} // namespace

Screen::~Screen()
{
    end(m_manager);
    end(m_server);
}

bool Screen::start(const QString &size, Manager manager)
{
    m_server.start(u"Xvfb"_s, {u"-displayfd"_s, u"1"_s, u"-screen"_s, u"0"_s, size + u"x24"_s, u"-nolisten"_s, u"tcp"_s,
                               u"-noreset"_s});
    QByteArray number;
    while (!number.contains('\n')) {
        if (!m_server.waitForReadyRead(patience))
            return false;
        number += m_server.readAllStandardOutput();
    }
    m_display = u':' + QString::fromLatin1(number.trimmed());
    letKeysRepeat(false);
    if (manager == Manager::None)
        return true;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"DISPLAY"_s, m_display);
    m_manager.setProcessEnvironment(environment);
    // openbox tells when it is ready; a window that is mapped earlier is never given the focus.
    m_manager.start(u"openbox"_s, {u"--startup"_s, u"echo ready"_s});
    return m_manager.waitForReadyRead(patience);
}

void Screen::input(const QStringList &arguments) const
{
    QProcess tool;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"DISPLAY"_s, m_display);
    tool.setProcessEnvironment(environment);
    tool.start(u"xdotool"_s, arguments);
    QVERIFY2(tool.waitForFinished(patience), qPrintable(arguments.join(u' ')));
    QCOMPARE(tool.exitCode(), 0);
}

void Screen::letKeysRepeat(bool repeat) const
{
    const std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> server(
        xcb_connect(m_display.toLatin1().constData(), nullptr), &xcb_disconnect);
    const quint32 mode = repeat ? XCB_AUTO_REPEAT_MODE_ON : XCB_AUTO_REPEAT_MODE_OFF;
    const auto asked = xcb_change_keyboard_control_checked(server.get(), XCB_KB_AUTO_REPEAT_MODE, &mode);
    const std::unique_ptr<xcb_generic_error_t, decltype(&std::free)> error(xcb_request_check(server.get(), asked),
                                                                           &std::free);
    QVERIFY(!error && xcb_connection_has_error(server.get()) == 0);
}

void Screen::press(const QPoint &place) const
{
    QVERIFY2(place != nowhere, "what is to be pressed is not there");
    input({u"mousemove"_s, QString::number(place.x()), QString::number(place.y()), u"click"_s, u"1"_s});
}

void Screen::type(const QString &text) const
{
    input({u"type"_s, u"--delay"_s, u"20"_s, text});
    constexpr int breath = 60; // an Enter right behind would be a code reader's
    QTest::qWait(breath);
}

void Screen::key(const QString &name) const
{
    input({u"key"_s, name});
}

int Screen::count(QRgb colour, const QRect &part) const
{
    const std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> server(
        xcb_connect(m_display.toLatin1().constData(), nullptr), &xcb_disconnect);
    if (xcb_connection_has_error(server.get()) != 0)
        return -1;
    const xcb_screen_t *screen = xcb_setup_roots_iterator(xcb_get_setup(server.get())).data;
    const auto asked = xcb_get_image(server.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, screen->root,
                                     static_cast<qint16>(part.x()), static_cast<qint16>(part.y()),
                                     static_cast<quint16>(part.width()), static_cast<quint16>(part.height()), ~0U);
    const std::unique_ptr<xcb_get_image_reply_t, decltype(&std::free)> image(
        xcb_get_image_reply(server.get(), asked, nullptr), &std::free);
    if (!image)
        return -1;
    const auto size = static_cast<std::size_t>(xcb_get_image_data_length(image.get()));
    std::vector<quint32> pixels(size / sizeof(quint32));
    std::memcpy(pixels.data(), xcb_get_image_data(image.get()), pixels.size() * sizeof(quint32));
    return static_cast<int>(
        std::ranges::count_if(pixels, [colour](quint32 pixel) { return (pixel & RGB_MASK) == (colour & RGB_MASK); }));
}

bool Screen::isOfTheSign(const QRect &part) const
{
    constexpr QRgb accent = qRgb(0, 98, 86);
    return count(accent, part) > part.width() * part.height() * 9 / 10;
}

void Screen::keyDown(const QString &name) const
{
    letKeysRepeat(true);
    input({u"keydown"_s, name});
}

void Screen::keyUp(const QString &name) const
{
    input({u"keyup"_s, name});
    letKeysRepeat(false);
}

void Screen::moveTo(const QPoint &place) const
{
    QVERIFY2(place != nowhere, "there is nothing to move to");
    input({u"mousemove"_s, QString::number(place.x()), QString::number(place.y())});
}

void Screen::moveWindow(const QString &title, const QPoint &place) const
{
    input({u"search"_s, u"--onlyvisible"_s, u"--name"_s, u'^' + title + u'$', u"windowmove"_s,
           QString::number(place.x()), QString::number(place.y())});
}

void Screen::bringToFront(qint64 process, const QString &title) const
{
    input({u"search"_s, u"--sync"_s, u"--onlyvisible"_s, u"--all"_s, u"--pid"_s, QString::number(process), u"--name"_s,
           u'^' + title + u'$', u"windowactivate"_s, u"--sync"_s});
}

void Screen::turnWheel(bool down) const
{
    input({u"click"_s, down ? u"5"_s : u"4"_s});
}

RunningProgram::RunningProgram(const Screen &screen, const QString &home, const QString &program) :
    m_screen(screen), m_program(program.isEmpty() ? QStringLiteral(HARROWBY_PROGRAM) : program)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"DISPLAY"_s, screen.display());
    environment.insert(u"QT_QPA_PLATFORM"_s, u"xcb"_s);
    environment.insert(u"QT_PLUGIN_PATH"_s, QStringLiteral(HARROWBY_DRIVER_FOLDER));
    environment.insert(u"QT_QPA_GENERIC_PLUGINS"_s, u"harrowbydriver"_s);
    environment.insert(u"HOME"_s, home);
    environment.insert(u"XDG_DATA_HOME"_s, home + u"/data"_s);
    environment.insert(u"XDG_CONFIG_HOME"_s, home + u"/config"_s);
    environment.insert(u"CUPS_SERVER"_s, u"127.0.0.1:1"_s); // no print service answers there
    environment.insert(u"XDG_SESSION_TYPE"_s, u"x11"_s);
    environment.remove(u"WAYLAND_DISPLAY"_s);
    // libX11 reads keyboard names that are not terminated, which strict_string_checks reports.
    environment.insert(u"ASAN_OPTIONS"_s, environment.value(u"ASAN_OPTIONS"_s) + u":strict_string_checks=0"_s);
    m_process.setProcessEnvironment(environment);
}

RunningProgram::~RunningProgram()
{
    end(m_process);
}

bool RunningProgram::start(const QStringList &arguments)
{
    m_process.start(m_program, arguments);
    return m_process.waitForStarted(patience);
}

bool RunningProgram::startUpTo(const QString &title, const QStringList &arguments)
{
    QProcessEnvironment environment = m_process.processEnvironment();
    environment.insert(u"HARROWBY_DRIVER_STOP"_s, title);
    m_process.setProcessEnvironment(environment);
    return start(arguments) && answer() == u"stopped"_s;
}

int RunningProgram::waitForEnd()
{
    m_process.closeWriteChannel();
    const bool hasEnded = m_process.state() == QProcess::NotRunning || m_process.waitForFinished(patience);
    if (!hasEnded || m_process.exitStatus() != QProcess::NormalExit)
        return -1;
    return m_process.exitCode();
}

QString RunningProgram::ask(const QString &question)
{
    m_process.write(question.toUtf8() + '\n');
    return answer();
}

QString RunningProgram::answer()
{
    QElapsedTimer time;
    time.start();
    while (time.elapsed() < patience) {
        while (m_process.canReadLine()) {
            const QString line = QString::fromUtf8(m_process.readLine()).chopped(1);
            if (line.startsWith(u"> "_s))
                return line.mid(2);
        }
        if (!m_process.waitForReadyRead(patience))
            break;
    }
    return u"?"_s;
}

QPoint RunningProgram::awaitPlace(const QString &name)
{
    QElapsedTimer time;
    time.start();
    QPoint before = nowhere;
    while (time.elapsed() < patience && m_process.state() == QProcess::Running) {
        // Twice at the same place, as the window manager may still move a new window.
        const QPoint now = pointOf(ask(u"target "_s + name));
        if (now != nowhere && now == before)
            return now;
        before = now;
        QTest::qWait(100);
    }
    qWarning("\"%s\" does not come. The focus: %s; a box: %s", qPrintable(name), qPrintable(focus()),
             qPrintable(box()));
    return nowhere;
}

bool RunningProgram::press(const QString &name)
{
    const QPoint place = awaitPlace(name);
    return place != nowhere && press(place);
}

bool RunningProgram::press(const QPoint &place)
{
    const int before = clicks();
    m_screen.press(place);
    const auto arrived = [&] { return clicks() > before || m_process.state() == QProcess::NotRunning; };
    if (QTest::qWaitFor(arrived, patience))
        return true;
    qWarning("A press at %d, %d does not arrive", place.x(), place.y());
    return false;
}

bool RunningProgram::awaitKeysOf(const QString &name)
{
    return QTest::qWaitFor([&] { return has(name); }, patience);
}

QPoint RunningProgram::place(const QString &name)
{
    return pointOf(ask(u"where "_s + name));
}

} // namespace harrowby::app::test
