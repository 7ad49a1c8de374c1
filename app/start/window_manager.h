// SPDX-License-Identifier: MIT
#pragma once

class QWindow;

/// What the program asks of the X server where it has to do without a window manager.
namespace harrowby::app {

/// Whether there is a window manager (_NET_SUPPORTING_WM_CHECK), or the platform is not X11.
[[nodiscard]] bool hasWindowManager();

/// Whether keys go to no window: to the root window, or nowhere. Another program's window counts as somebody's.
[[nodiscard]] bool keyboardIsFree();

/// Sends the keys to a window that is on the screen.
void giveKeyboard(const QWindow &window);

} // namespace harrowby::app
