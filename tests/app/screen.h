// SPDX-License-Identifier: MIT
#pragma once

#include <QPoint>
#include <QProcess>
#include <QRect>
#include <QRgb>
#include <QString>
#include <QStringList>

#include <memory>

namespace harrowby::app::test {

/// An X server of the test's own (Xvfb), with a small window manager or none. Ends with the object.
class Screen
{
public:
    enum class Manager { Openbox, None };

    Screen() = default;
    ~Screen();
    Screen(const Screen &) = delete;
    Screen &operator=(const Screen &) = delete;

    /// False when it cannot be started.
    [[nodiscard]] bool start(const QString &size, Manager manager = Manager::Openbox);
    [[nodiscard]] const QString &display() const { return m_display; }

    /// Real input, through the X server.
    void press(const QPoint &place) const;
    void type(const QString &text) const;
    void key(const QString &name) const;
    /// How many pixels of that part of the screen have this colour now; -1 when it cannot be read.
    [[nodiscard]] int count(QRgb colour, const QRect &part) const;
    /// Whether the part is covered by the sign of a wait, in the light look.
    [[nodiscard]] bool isOfTheSign(const QRect &part) const;
    /// Holds a key down until keyUp(); meanwhile it repeats. Else keys do not, as a server that stands still for a
    /// while would repeat one that is released already.
    void keyDown(const QString &name) const;
    void keyUp(const QString &name) const;
    void moveTo(const QPoint &place) const;
    void turnWheel(bool down) const;
    /// Moves the window of that title, so that what it covered is repainted.
    void moveWindow(const QString &title, const QPoint &place) const;
    /// Waits for the window of that title of that process, and until the window manager has put it in front.
    void bringToFront(qint64 process, const QString &title) const;

private:
    void input(const QStringList &arguments) const;
    void letKeysRepeat(bool repeat) const;

    QProcess m_server;
    QProcess m_manager;
    QString m_display;
};

/// The real program, running on a screen, with a home of its own.
class RunningProgram
{
public:
    /// `program`: another host of the window, in place of the store program.
    RunningProgram(const Screen &screen, const QString &home, const QString &program = {});
    ~RunningProgram();

    [[nodiscard]] bool start(const QStringList &arguments);
    /// The same, and stops the program where it creates the window of that title. False when it does not get there.
    [[nodiscard]] bool startUpTo(const QString &title, const QStringList &arguments);
    void goOn() { m_process.write("\n"); }
    /// Waits for the end and gives the exit code; -1 when there is none.
    [[nodiscard]] int waitForEnd();
    [[nodiscard]] QString errors() { return QString::fromUtf8(m_process.readAllStandardError()); }

    /// Presses the control (object name or caption) as soon as it is there, and waits until the program has the press:
    /// a window manager may hold it back, and keys that are sent meanwhile overtake it. False when the control does not
    /// come, or the press does not arrive.
    [[nodiscard]] bool press(const QString &name);
    /// The same at a place of the program's windows.
    [[nodiscard]] bool press(const QPoint &place);
    /// True when the control is there now.
    [[nodiscard]] bool has(const QString &name) { return ask(QStringLiteral("where ") + name) != QLatin1String("-"); }
    /// Waits until the control is there and its window has the keys: a window manager gives them to it a while after
    /// the window before it has closed.
    [[nodiscard]] bool awaitKeysOf(const QString &name);
    /// The middle of the control on the screen; (-1, -1) while it is not there. A box has its text before it is.
    [[nodiscard]] QPoint place(const QString &name);
    /// The same once a press would meet it; (-1, -1) when it does not come.
    [[nodiscard]] QPoint awaitPlace(const QString &name);
    [[nodiscard]] QString text(const QString &name) { return ask(QStringLiteral("text ") + name); }
    /// Text of the message box in front, its line breaks as tabs; "-" when there is none.
    [[nodiscard]] QString box() { return ask(QStringLiteral("box ")); }
    /// "open" once a menu or a list that drops down can be seen; "-" when there is none.
    [[nodiscard]] QString popup() { return ask(QStringLiteral("popup ")); }
    [[nodiscard]] QString focus() { return ask(QStringLiteral("focus ")); }
    /// How many key presses have reached the program so far, the repeats of a key that is held down among them.
    [[nodiscard]] int keyPresses() { return ask(QStringLiteral("presses ")).toInt(); }
    void bringToFront(const QString &title) const { m_screen.bringToFront(m_process.processId(), title); }

private:
    [[nodiscard]] int clicks() { return ask(QStringLiteral("clicks ")).toInt(); }
    [[nodiscard]] QString ask(const QString &question);
    [[nodiscard]] QString answer();

    const Screen &m_screen;
    QString m_program;
    QProcess m_process;
};

} // namespace harrowby::app::test
