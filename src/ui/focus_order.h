// SPDX-License-Identifier: MIT
#pragma once

#include <Qt>

class QMainWindow;
class QWidget;

namespace harrowby {

/// Whether a visible control is covered by other widgets of its window at its centre and its four corners.
[[nodiscard]] bool isCovered(const QWidget &control, const QWidget &window);

/// Sets the focus, and selects the whole text of an entry. Works also while the window is not active: right after a box
/// has closed, or without a window manager.
void leadTo(QWidget &control, Qt::FocusReason reason = Qt::OtherFocusReason);

/// Moves the focus to the next (or previous) widget of the tab order that a person can see and use; false when there
/// is none other.
bool focusNextUncovered(QMainWindow &window, bool next);

} // namespace harrowby
