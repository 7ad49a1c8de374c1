// SPDX-License-Identifier: MIT
#include "input/key_repeats.h"

#include <QKeyEvent>

namespace harrowby {

namespace {

constexpr quint32 soonestRepeatMs = 50; // X servers begin after 660 ms, the quickest setting of a desktop is 100

} // namespace

quint32 physicalKey(const QKeyEvent &event)
{
    return event.nativeScanCode() != 0 ? event.nativeScanCode() : ~static_cast<quint32>(event.key());
}

bool KeyRepeats::isRepeat(const QKeyEvent &press)
{
    Times &times = m_keys[physicalKey(press)];
    const bool looksRepeated = press.isAutoRepeat() || (times.released != 0 && times.released == press.timestamp());
    if (looksRepeated && static_cast<quint32>(press.timestamp() - times.pressed) > soonestRepeatMs)
        return true;
    times.pressed = press.timestamp();
    return false;
}

void KeyRepeats::noteRelease(const QKeyEvent &release)
{
    m_keys[physicalKey(release)].released = release.timestamp();
}

} // namespace harrowby
