// SPDX-License-Identifier: MIT
#pragma once

#include <QHash>

class QKeyEvent;

namespace harrowby {

/// Names the physical key: key() can differ between press and release when a modifier changed in between.
[[nodiscard]] quint32 physicalKey(const QKeyEvent &event);

/// Tells which presses are repeats of a key that is held down.
///
/// X11 repeats as release and press with one time, which Qt marks only when both are in its queue at once. A reader
/// that types a character twice within a millisecond looks the same; but no keyboard repeats as soon after the first
/// press.
class KeyRepeats
{
public:
    /// To be asked once of each press.
    [[nodiscard]] bool isRepeat(const QKeyEvent &press);
    void noteRelease(const QKeyEvent &release);

private:
    struct Times
    {
        quint64 pressed = 0; ///< for the first time
        quint64 released = 0;
    };
    QHash<quint32, Times> m_keys;
};

} // namespace harrowby
