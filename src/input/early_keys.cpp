// SPDX-License-Identifier: MIT
#include "input/early_keys.h"

#include <QApplication>
#include <QKeyEvent>
#include <QTimer>
#include <QWidget>
#include <QWindow>

using namespace Qt::StringLiterals;

namespace harrowby {

namespace {

const auto childName = u"earlyKeys"_s;

/// The key on the keyboard: with another modifier at its release than at its press it is still the same one.
quint32 keyOf(const QKeyEvent &event)
{
    return event.nativeScanCode() != 0 ? event.nativeScanCode() : ~static_cast<quint32>(event.key());
}

} // namespace

EarlyKeys::EarlyKeys(QWidget &box) : QObject(&box), m_box(box)
{
    setObjectName(childName);
    QCoreApplication::instance()->installEventFilter(this);
}

bool EarlyKeys::guard(const QWidget &box)
{
    return box.findChild<QObject *>(childName, Qt::FindDirectChildrenOnly) != nullptr;
}

bool EarlyKeys::areOver(const QWidget &box)
{
    const auto *guard = box.findChild<EarlyKeys *>({}, Qt::FindDirectChildrenOnly);
    return guard == nullptr || guard->m_listening;
}

bool EarlyKeys::eventFilter(QObject *watched, QEvent *event)
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
        event->accept(); // else it would be tried as an accelerator
        return true;
    default:
        return false;
    }
}

/// An event meets the window of the system first, then its widgets.
bool EarlyKeys::isOfBox(const QObject *object) const
{
    if (const auto *widget = qobject_cast<const QWidget *>(object))
        return widget->window() == &m_box;
    return object->isWindowType() && object == m_box.windowHandle();
}

void EarlyKeys::begin()
{
    m_painted = false;
    m_listening = false;
    m_meant.clear();
}

void EarlyKeys::notePaint()
{
    if (m_painted)
        return;
    m_painted = true;
    // What was pressed until now stands in the queue still.
    QTimer::singleShot(0, this, [this] { m_listening = m_painted; });
}

void EarlyKeys::noteRelease(const QKeyEvent &key)
{
    m_releasedAt.insert(keyOf(key), key.timestamp());
}

/// A held key is a row of releases and presses, each pair of one moment. Qt calls it repeated when it sees the pair
/// together, which it need not.
bool EarlyKeys::isRepeated(const QKeyEvent &key) const
{
    return key.isAutoRepeat() || (key.timestamp() != 0 && m_releasedAt.value(keyOf(key)) == key.timestamp());
}

/// Comes more than once for an event, which goes from the window to the widget in the focus and up to its parents.
bool EarlyKeys::answers(const QKeyEvent &key)
{
    if (!m_listening)
        return false;
    if (key.type() != QEvent::KeyRelease && !isRepeated(key))
        m_meant.insert(keyOf(key));
    return m_meant.contains(keyOf(key));
}

} // namespace harrowby
