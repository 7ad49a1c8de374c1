// SPDX-License-Identifier: MIT
#pragma once

class QMainWindow;
class QWidget;

namespace harrowby {

/// Whether a visible widget lies wholly under other widgets of its window: its middle and its four corners are
/// theirs.
[[nodiscard]] bool isCovered(const QWidget &widget, const QWidget &window);

/// Moves the focus to the next (or previous) widget of the tab order that a person can see and use; false when there
/// is none other.
bool focusNextUncovered(QMainWindow &window, bool next);

} // namespace harrowby
