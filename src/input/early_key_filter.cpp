// SPDX-License-Identifier: MIT
#include "input/early_key_filter.h"

#include "input/key_repeats.h"

#include <QApplication>
#include <QKeyEvent>
#include <QTimer>
#include <QWidget>
#include <QWindow>

using namespace Qt::StringLiterals;

namespace harrowby {

namespace {

const auto childName = u"earlyKeys"_s;

} // namespace

EarlyKeyFilter::EarlyKeyFilter(QWidget &box) : QObject(&box), m_box(box)
{
    setObjectName(childName);
    QCoreApplication::instance()->installEventFilter(this);
}

bool EarlyKeyFilter::isInstalled(const QWidget &box)
{
    return box.findChild<QObject *>(childName, Qt::FindDirectChildrenOnly) != nullptr;
}

bool EarlyKeyFilter::acceptsKeys(const QWidget &box)
{
    const auto *filter = box.findChild<EarlyKeyFilter *>({}, Qt::FindDirectChildrenOnly);
    return filter == nullptr || filter->m_listening;
}

bool EarlyKeyFilter::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::Show:
        if (watched == &m_box && !event->spontaneous())
            begin();
        return false;
    case QEvent::Paint:
        if (isOfBox(watched))
            notePaint();
        return false;
    case QEvent::KeyRelease:
        noteRelease(*static_cast<QKeyEvent *>(event));
        [[fallthrough]];
    case QEvent::KeyPress:
    case QEvent::ShortcutOverride:
        if (!isOfBox(watched) || answers(*static_cast<QKeyEvent *>(event)))
            return false;
        event->accept(); // an unaccepted ShortcutOverride or press goes on to QShortcutMap
        return true;
    default:
        return false;
    }
}

/// A key event is delivered to the QWindow first, then to its widgets.
bool EarlyKeyFilter::isOfBox(const QObject *object) const
{
    if (const auto *widget = qobject_cast<const QWidget *>(object))
        return widget->window() == &m_box;
    return object->isWindowType() && object == m_box.windowHandle();
}

void EarlyKeyFilter::begin()
{
    m_painted = false;
    m_listening = false;
    m_pressedSince.clear();
}

void EarlyKeyFilter::notePaint()
{
    if (m_painted)
        return;
    m_painted = true;
    // Queued: keys pressed before this paint are still in the event queue.
    QTimer::singleShot(0, this, [this] { m_listening = m_painted; });
}

void EarlyKeyFilter::noteRelease(const QKeyEvent &key)
{
    m_releasedAt.insert(physicalKey(key), key.timestamp());
}

/// X11 repeats a held key as release and press with one timestamp. Qt sets isAutoRepeat() only when both are in its
/// queue at once, so the timestamps are compared too.
bool EarlyKeyFilter::isRepeated(const QKeyEvent &key) const
{
    return key.isAutoRepeat() || (key.timestamp() != 0 && m_releasedAt.value(physicalKey(key)) == key.timestamp());
}

/// Called several times for one event, which goes from the window to the focus widget and up its parents.
bool EarlyKeyFilter::answers(const QKeyEvent &key)
{
    if (!m_listening)
        return false;
    if (key.type() != QEvent::KeyRelease && !isRepeated(key))
        m_pressedSince.insert(physicalKey(key));
    return m_pressedSince.contains(physicalKey(key));
}

} // namespace harrowby
