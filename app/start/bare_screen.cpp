// SPDX-License-Identifier: MIT
#include "app/start/bare_screen.h"

#include "app/start/window_edge.h"
#include "app/start/window_manager.h"

#include <QApplication>
#include <QDialog>
#include <QEvent>
#include <QScreen>
#include <QWindow>

#include <utility>

namespace harrowby::app {

namespace {

/// A window that a person works in: not a list that drops down, a tool tip, or a notice that takes no keys.
bool takesKeys(const QWidget &window)
{
    const Qt::WindowType type = window.windowType();
    return window.isWindow() && (type == Qt::Window || type == Qt::Dialog || type == Qt::Sheet) &&
           !window.windowFlags().testFlag(Qt::WindowDoesNotAcceptFocus);
}

bool isOnScreen(const QWidget &window)
{
    return window.isVisible() && window.windowHandle() != nullptr && window.windowHandle()->isExposed();
}

void fillScreen(QWidget &window)
{
    const QRect room = window.screen()->availableGeometry();
    if (window.isMaximized() && isOnScreen(window) && window.geometry() != room)
        window.windowHandle()->setGeometry(room);
}

} // namespace

BareScreen::BareScreen(QObject *parent) : QObject(parent)
{
    m_arranging.setSingleShot(true);
    connect(&m_arranging, &QTimer::timeout, this, &BareScreen::arrange);
    qApp->installEventFilter(this);
}

bool BareScreen::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::Show:
    case QEvent::WindowStateChange:
        if (auto *window = qobject_cast<QWidget *>(watched); window != nullptr && takesKeys(*window))
            add(*window);
        break;
    case QEvent::MouseButtonPress:
        if (QApplication::activeWindow() != nullptr)
            break;
        m_pressed = true;
        [[fallthrough]];
    case QEvent::Hide:
        if (watched->isWidgetType())
            m_arranging.start();
        break;
    case QEvent::Expose: // before it, XSetInputFocus on the window fails
        m_arranging.start();
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

void BareScreen::add(QWidget &window)
{
    if (!window.isVisible() || hasWindowManager())
        return;
    m_windows.removeAll(&window);
    m_windows << &window;
    if (qobject_cast<QDialog *>(&window) != nullptr && window.findChild<WindowEdge *>() == nullptr)
        new WindowEdge(window);
    m_arranging.start(); // Qt handles the state change after this event
}

/// Takes the input focus from another program's window only when a person presses one of ours.
void BareScreen::arrange()
{
    const bool pressed = std::exchange(m_pressed, false);
    m_windows.removeIf([](const QPointer<QWidget> &window) { return window.isNull() || !window->isVisible(); });
    if (m_windows.isEmpty() || hasWindowManager())
        return;
    for (const QPointer<QWidget> &window : std::as_const(m_windows))
        fillScreen(*window);
    QWidget *box = QApplication::activeModalWidget();
    QWidget *front = box != nullptr ? box : m_windows.constLast().data();
    if (isOnScreen(*front) && (pressed || keyboardIsFree()))
        giveKeyboard(*front->windowHandle());
}

} // namespace harrowby::app
