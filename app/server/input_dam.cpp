// SPDX-License-Identifier: MIT
#include "app/server/input_dam.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QInputEvent>
#include <QMouseEvent>
#include <QTimerEvent>

namespace harrowby::app {

namespace {

std::chrono::milliseconds timeOf(const QInputEvent &event)
{
    return std::chrono::milliseconds(static_cast<qint64>(event.timestamp()));
}

} // namespace

InputDam::InputDam(QObject *parent) : QObject(parent)
{
    const auto turned = [this] { m_hasLoopTurned = true; };
    connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, this, turned);
    connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::awake, this, turned);
}

void InputDam::hold(std::chrono::milliseconds begin, std::chrono::milliseconds end)
{
    if (!m_untilIdle.isActive())
        m_begin = begin;
    m_end = end;
    m_hasLoopTurned = false;
    m_untilIdle.start(0, this); // comes after all that lies in the queue
    // Each time: the filter that was installed last is asked first.
    QCoreApplication::instance()->removeEventFilter(this);
    QCoreApplication::instance()->installEventFilter(this);
}

void InputDam::timerEvent(QTimerEvent *event)
{
    if (event->timerId() == m_untilIdle.timerId())
        m_untilIdle.stop();
}

/// X servers count in 32 bits.
bool InputDam::isWithin(std::chrono::milliseconds time) const
{
    const auto begin = static_cast<quint32>(m_begin.count());
    const auto end = static_cast<quint32>(m_end.count());
    return time.count() != 0 && static_cast<quint32>(time.count()) - begin <= end - begin;
}

/// What comes after it in the queue is later, too.
void InputDam::noteLater(std::chrono::milliseconds time)
{
    const auto after = static_cast<quint32>(time.count()) - static_cast<quint32>(m_end.count());
    if (time.count() != 0 && !isWithin(time) && after < (1U << 31))
        m_untilIdle.stop();
}

bool InputDam::eventFilter(QObject *watched, QEvent *event)
{
    if (event->isInputEvent())
        noteLater(timeOf(*static_cast<QInputEvent *>(event)));
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick: {
        const auto *press = static_cast<QMouseEvent *>(event);
        m_kept.setFlag(press->button(), isWithin(timeOf(*press)));
        return m_kept.testFlag(press->button());
    }
    case QEvent::MouseButtonRelease: {
        const Qt::MouseButton button = static_cast<QMouseEvent *>(event)->button();
        return m_kept.testFlag(button);
    }
    case QEvent::ShortcutOverride:
    case QEvent::KeyPress:
    case QEvent::Wheel:
    case QEvent::TouchBegin:
    case QEvent::TabletPress:
        if (!isWithin(timeOf(*static_cast<QInputEvent *>(event))))
            break;
        event->accept(); // of a ShortcutOverride: no shortcut either
        return true;
    case QEvent::Close: // says no time, and is called spontaneous also when the program closes a window itself
        if (!event->spontaneous() || !m_untilIdle.isActive() || !m_hasLoopTurned)
            break;
        event->ignore();
        return true;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

} // namespace harrowby::app
