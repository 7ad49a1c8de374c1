// SPDX-License-Identifier: MIT
#include "app/keyboard/keyboard_room.h"

#include "app/keyboard/above_keyboard.h"

#include <QEvent>
#include <QList>
#include <QScreen>

namespace harrowby::app {

namespace {

bool canBeMoved(const QWidget &window)
{
    return !window.isMaximized() && !window.isFullScreen();
}

QRect onScreen(const QWidget &widget)
{
    return {widget.mapToGlobal(QPoint(0, 0)), widget.size()};
}

/// The entry and what is around it inside the window, from the entry outwards, without any shift.
QList<QRect> surroundings(const QWidget &entry, int shift)
{
    QList<QRect> around;
    for (const QWidget *widget = &entry; widget != nullptr && !widget->isWindow(); widget = widget->parentWidget())
        around << onScreen(*widget).translated(0, shift);
    return around;
}

/// The child of the window that holds the entry, or the entry itself.
QWidget *outermost(QWidget &entry)
{
    QWidget *widget = &entry;
    while (!widget->isWindow() && !widget->parentWidget()->isWindow())
        widget = widget->parentWidget();
    return widget;
}

} // namespace

void KeyboardRoom::makeRoom(QWidget &entry, const QRect &keyboard)
{
    adopt(entry);
    lift(keyboard);
    const int windowTop = onScreen(*m_window).top();
    shiftTo(contentShift(surroundings(entry, m_shift), windowTop, keyboard.top(), m_shift));
}

void KeyboardRoom::giveBack()
{
    if (m_content) {
        shiftTo(0);
        m_content->removeEventFilter(this);
    }
    // The window is not moved back when a person has moved it meanwhile.
    if (m_window && m_lift > 0 && m_window->geometry().topLeft() == m_place - QPoint(0, m_lift))
        m_window->move(m_window->pos() + QPoint(0, m_lift));
    m_content = nullptr;
    m_window = nullptr;
    m_shift = 0;
    m_lift = 0;
}

void KeyboardRoom::adopt(QWidget &entry)
{
    QWidget *window = entry.window();
    QWidget *content = outermost(entry);
    if (m_window == window && m_content == content)
        return;
    giveBack();
    m_window = window;
    m_place = window->geometry().topLeft();
    m_content = content;
    m_home = content->pos();
    content->installEventFilter(this);
}

void KeyboardRoom::lift(const QRect &keyboard)
{
    if (!canBeMoved(*m_window))
        return;
    const int screenTop = m_window->screen()->availableGeometry().top();
    const QRect frame = wholeFrame(m_window->frameGeometry(), m_window->geometry());
    const int further = windowLift(frame, screenTop, keyboard.top());
    if (further == 0)
        return;
    m_window->move(m_window->pos() - QPoint(0, further));
    m_lift = m_place.y() - m_window->geometry().y();
}

void KeyboardRoom::shiftTo(int shift)
{
    m_shift = shift;
    m_shifting = true;
    m_content->move(m_home - QPoint(0, shift));
    m_shifting = false;
}

/// A layout (or the placing of the login panel) has moved its widget to the unshifted position.
bool KeyboardRoom::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_content && event->type() == QEvent::Move && !m_shifting) {
        m_home = m_content->pos();
        shiftTo(m_shift);
    }
    return QObject::eventFilter(watched, event);
}

} // namespace harrowby::app
