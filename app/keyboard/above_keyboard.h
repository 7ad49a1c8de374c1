// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QRect>

/// Where a window goes while a keyboard covers the lower part of the screen. All in screen coordinates.
namespace harrowby::app {

/// The frame around a window. On X11 Qt 6.4 tells one that is smaller than the window, and goes on telling it until the
/// window is moved, where it has asked while the window manager was still making the frame.
[[nodiscard]] QRect wholeFrame(const QRect &told, const QRect &window);

/// How far a window that can be moved goes up, so that it stands above the keyboard; as far as the screen has room
/// above it, if that is not enough.
[[nodiscard]] int windowLift(const QRect &frame, int screenTop, int keyboardTop);

/// How far the contents of a window are shifted up, so that the entry can be seen and as much around it as fits.
/// `around` holds the entry and the panels around it, from the entry outwards, where they lie without any shift;
/// `windowTop` is where the window begins, and `now` how far it is shifted already: a shift that serves is kept.
[[nodiscard]] int contentShift(const QList<QRect> &around, int windowTop, int keyboardTop, int now);

} // namespace harrowby::app
