// SPDX-License-Identifier: MIT
#pragma once

#include "theme/measures.h"

class QIcon;
class QString;
class QWidget;

namespace harrowby {

/// Sets the till's theme on the window and the boxes that open over it, and again whenever the application's palette
/// changes. The host's other windows are not changed.
void applyTillStyle(QWidget &window);
/// The same for a window beside the till. A dialog rather calls dressDialog().
void applyDialogStyle(QWidget &window);
/// The style sheet of the failure notice, by the object names of its parts.
void applyNoticeStyle(QWidget &window);

/// Sets fonts and lengths of the theme by the room that a window has; before or after the theme is set on it.
void setTillDensity(QWidget &window, Density density);

/// A drawing of the till's own ("help", "refresh", "dashboard", "keypad", "search") in the colour that text has
/// when it is painted.
[[nodiscard]] QIcon tillIcon(const QString &name);

} // namespace harrowby
