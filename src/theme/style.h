// SPDX-License-Identifier: MIT
#pragma once

#include "theme/measures.h"

class QIcon;
class QString;
class QWidget;

namespace harrowby {

/// Gives the window, and the boxes that open over it, the look of the till, and keeps it in step with the
/// application's palette. The rest of the host's windows stay as they are.
void applyTillStyle(QWidget &window);
/// The same for a window beside the till. A dialog rather calls dressDialog().
void applyDialogStyle(QWidget &window);
/// For the notice of what was not saved, by the object names of its parts.
void applyNoticeStyle(QWidget &window);

/// Fits fonts and lengths of a window that wears the look, or is going to, to the room that it has.
void setTillDensity(QWidget &window, Density density);

/// A drawing of the till's own ("help", "refresh", "dashboard", "keypad", "search") in the colour that text has
/// when it is painted.
[[nodiscard]] QIcon tillIcon(const QString &name);

} // namespace harrowby
