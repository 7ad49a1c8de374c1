// SPDX-License-Identifier: MIT
#include "input/held_keys.h"

#include "input/key_repeats.h"

#include <QApplication>
#include <QWidget>

#include <algorithm>
#include <iterator>
#include <utility>

namespace harrowby {

/// As QWidgetWindow looks for it.
QObject *keyTarget(QWindow &window)
{
    if (QWidget *popup = QApplication::activePopupWidget())
        return popup->focusWidget() != nullptr ? popup->focusWidget() : popup;
    return window.focusObject();
}

bool HeldKeys::addRelease(QWindow &window, const QKeyEvent &release)
{
    const auto press = std::find_if(m_keys.rbegin(), m_keys.rend(), [&release](const HeldKey &key) {
        return physicalKey(*key.event) == physicalKey(release);
    });
    if (press == m_keys.rend() || press->event->type() != QEvent::KeyPress)
        return false;
    m_keys.push_back({.ordinal = press->ordinal,
                      .window = &window,
                      .target = press->target,
                      .asked = nullptr,
                      .event = std::unique_ptr<QKeyEvent>(release.clone())});
    return true;
}

std::vector<HeldKey> HeldKeys::take(int count)
{
    std::vector<HeldKey> all = takeAll();
    const auto rest =
        std::stable_partition(all.begin(), all.end(), [count](const HeldKey &key) { return key.ordinal < count; });
    std::move(rest, all.end(), std::back_inserter(m_keys));
    all.erase(rest, all.end());
    for (HeldKey &key : m_keys)
        key.ordinal -= count;
    return all;
}

std::vector<HeldKey> HeldKeys::takeAll()
{
    return std::exchange(m_keys, {});
}

QSet<quint32> HeldKeys::down() const
{
    QSet<quint32> keys;
    for (const HeldKey &key : m_keys) {
        if (key.event->type() == QEvent::KeyPress)
            keys.insert(physicalKey(*key.event));
        else
            keys.remove(physicalKey(*key.event));
    }
    return keys;
}

} // namespace harrowby
