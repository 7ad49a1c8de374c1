// SPDX-License-Identifier: MIT
#pragma once

#include <Qt>

class QMainWindow;
class QWidget;

namespace harrowby {

/// Whether a visible widget is covered by other widgets of its window at its centre and its four corners.
[[nodiscard]] bool isCovered(const QWidget &widget, const QWidget &window);

/// Gives a control the focus, and marks the whole text of an entry, so that what is typed takes its place. Also where
/// the window is not the active one, because a box has just closed or nothing makes it active.
void leadTo(QWidget &control, Qt::FocusReason reason = Qt::OtherFocusReason);

/// Moves the focus to the next (or previous) widget of the tab order that a person can see and use; false when there
/// is none other.
bool focusNextUncovered(QMainWindow &window, bool next);

} // namespace harrowby
