// SPDX-License-Identifier: MIT
// Loaded by Qt into the real program (QT_QPA_GENERIC_PLUGINS), this tells a test on the other end of stdin and stdout
// where things are on the screen and what they say. The program itself knows nothing of it, and the test presses and
// types through the X server.
#include <QAbstractButton>
#include <QAbstractNativeEventFilter>
#include <QApplication>
#include <QGenericPlugin>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QSocketNotifier>
#include <QWidget>
#include <QWindow>

#include <unistd.h>
#include <xcb/xcb.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>

using namespace Qt::StringLiterals;

namespace {

/// What a caption says without its accelerator.
QString plain(QString caption)
{
    return caption.remove(u'&');
}

bool answersTo(const QWidget &widget, const QString &name)
{
    const auto *button = qobject_cast<const QAbstractButton *>(&widget);
    return widget.objectName() == name || (button != nullptr && plain(button->text()) == name);
}

/// The widget of that name or caption that can be seen and pressed; a box in front hides all others.
QWidget *find(const QString &name)
{
    QWidget *front = QApplication::activeModalWidget();
    if (front != nullptr && front->windowModality() == Qt::WindowModal && front->parentWidget() == nullptr)
        front = nullptr; // other windows can be used beside it
    for (QWidget *widget : QApplication::allWidgets()) {
        const bool reachable = front == nullptr || widget->window() == front;
        if (reachable && widget->isVisible() && answersTo(*widget, name))
            return widget;
    }
    return nullptr;
}

/// True once the window manager has placed the window and given it the focus, if it accepts any.
bool isReady(const QWidget &window)
{
    const QWindow *handle = window.windowHandle();
    const bool focuses = !window.windowFlags().testFlag(Qt::WindowDoesNotAcceptFocus);
    return handle != nullptr && handle->isExposed() && (window.isActiveWindow() || !focuses);
}

/// Where the X server has a point of the one window in the other, and which window within that one lies there. Qt may
/// think for good that a window stands where a slow window manager has moved it from.
auto translate(xcb_window_t from, xcb_window_t to, const QPoint &point)
{
    xcb_connection_t *server = qApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
    const auto asked =
        xcb_translate_coordinates(server, from, to, static_cast<qint16>(point.x()), static_cast<qint16>(point.y()));
    return std::unique_ptr<xcb_translate_coordinates_reply_t, decltype(&std::free)>(
        xcb_translate_coordinates_reply(server, asked, nullptr), &std::free);
}

xcb_window_t rootWindow()
{
    xcb_connection_t *server = qApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
    return xcb_setup_roots_iterator(xcb_get_setup(server)).data->root;
}

xcb_window_t windowOf(const QWidget &widget)
{
    return static_cast<xcb_window_t>(widget.window()->internalWinId());
}

/// The middle of the widget on the screen.
std::optional<QPoint> middleOf(const QWidget &widget)
{
    const auto place = translate(windowOf(widget), rootWindow(), widget.mapTo(widget.window(), widget.rect().center()));
    return place ? std::optional(QPoint(place->dst_x, place->dst_y)) : std::nullopt;
}

/// Whether another window lies over the widget there.
bool isCovered(const QWidget &widget, const QPoint &place)
{
    xcb_window_t top = rootWindow();
    while (top != XCB_NONE && top != windowOf(widget)) {
        const auto there = translate(rootWindow(), top, place);
        top = there ? there->child : XCB_NONE;
    }
    return top == XCB_NONE;
}

/// `isPressed`: only where a press would meet it.
QString where(const QString &name, bool isPressed)
{
    const QWidget *widget = find(name);
    if (widget == nullptr || !widget->isEnabled() || !isReady(*widget->window()))
        return u"-"_s;
    const auto middle = middleOf(*widget);
    if (!middle || (isPressed && isCovered(*widget, *middle)))
        return u"-"_s;
    return u"%1 %2"_s.arg(middle->x()).arg(middle->y());
}

QString textOf(const QString &name)
{
    const QWidget *widget = find(name);
    QVariant text = widget != nullptr ? widget->property("text") : QVariant();
    if (widget != nullptr && !text.isValid())
        text = widget->property("currentText"); // of a list that is picked from
    return text.isValid() ? text.toString() : u"-"_s;
}

QString boxText()
{
    const auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
    return box != nullptr ? box->text() : u"-"_s;
}

QString focused()
{
    const QWidget *widget = QApplication::focusWidget();
    return widget != nullptr ? widget->objectName() : u"-"_s;
}

/// Whether a menu or a list that drops down takes the keys.
QString popup()
{
    const QWidget *widget = QApplication::activePopupWidget();
    return widget == nullptr                                            ? u"-"_s
           : widget->isVisible() && widget->windowHandle()->isExposed() ? u"open"_s
                                                                        : u"opens"_s;
}

QString answer(const QString &line)
{
    const QString verb = line.section(u' ', 0, 0);
    const QString name = line.section(u' ', 1);
    if (verb == u"where"_s || verb == u"target"_s)
        return where(name, verb == u"target"_s);
    if (verb == u"text"_s)
        return textOf(name);
    if (verb == u"box"_s)
        return boxText();
    if (verb == u"popup"_s)
        return popup();
    return verb == u"focus"_s ? focused() : u"?"_s;
}

/// Counts the key presses that the X server has sent, the repeats of a key that is held down among them, before anybody
/// in the program can drop them.
class KeyCounter : public QAbstractNativeEventFilter
{
public:
    bool nativeEventFilter(const QByteArray &, void *event, qintptr *) override
    {
        const auto type = static_cast<const xcb_generic_event_t *>(event)->response_type;
        if ((type & ~sentByAClient) == XCB_KEY_PRESS)
            ++m_presses;
        return false;
    }

    [[nodiscard]] int presses() const { return m_presses; }

private:
    static constexpr int sentByAClient = 0x80;

    int m_presses = 0;
};

class Driver : public QObject
{
    Q_OBJECT

public:
    Driver() : m_stopAt(qEnvironmentVariable("HARROWBY_DRIVER_STOP")), m_input(STDIN_FILENO, QSocketNotifier::Read)
    {
        connect(&m_input, &QSocketNotifier::activated, this, &Driver::readLines);
        qApp->installNativeEventFilter(&m_keys);
        qApp->installEventFilter(this);
    }

    /// Counts clicks, and stops the program where the window of the wanted title is created, until the test writes a
    /// line.
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::MouseButtonRelease && watched->isWindowType())
            ++m_clicks;
        if (event->type() != QEvent::WindowTitleChange || m_stopAt.isEmpty())
            return false;
        const auto *window = qobject_cast<QWidget *>(watched);
        if (window != nullptr && window->windowTitle() == m_stopAt) {
            m_stopAt.clear();
            reply(u"stopped"_s);
            char bytes[16];
            (void)!::read(STDIN_FILENO, bytes, sizeof(bytes));
        }
        return false;
    }

private:
    void readLines()
    {
        char bytes[4096];
        const ssize_t count = ::read(STDIN_FILENO, bytes, sizeof(bytes));
        if (count <= 0)
            return m_input.setEnabled(false);
        m_pending.append(bytes, count);
        for (qsizetype end = m_pending.indexOf('\n'); end >= 0; end = m_pending.indexOf('\n')) {
            const QString line = QString::fromUtf8(m_pending.left(end));
            if (line.startsWith(u"presses"_s))
                reply(QString::number(m_keys.presses()));
            else if (line.startsWith(u"clicks"_s))
                reply(QString::number(m_clicks));
            else
                reply(answer(line));
            m_pending.remove(0, end + 1);
        }
    }

    static void reply(QString text)
    {
        const QByteArray line = text.replace(u"\r\n"_s, u"\n"_s).replace(u'\n', u'\t').toUtf8();
        std::printf("> %s\n", line.constData());
        std::fflush(stdout);
    }

    QString m_stopAt;
    QSocketNotifier m_input;
    KeyCounter m_keys;
    int m_clicks = 0;
    QByteArray m_pending;
};

} // namespace

class DriverPlugin : public QGenericPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "driver_plugin.json")

public:
    QObject *create(const QString &, const QString &) override { return new Driver; }
};

#include "driver_plugin.moc"
