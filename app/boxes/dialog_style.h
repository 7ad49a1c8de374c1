// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

class QMessageBox;
class QWidget;

/// Looks of the program's own boxes: everything that is touched is at least 44 px high.
namespace harrowby::app {

/// Letters that are read at arm's length. For a window, before its parts are measured.
void enlargeFont(QWidget &window);

/// Makes the buttons within large enough for a thumb, in a window that does not wear the till's look.
void makeTouchSized(QWidget &window);

/// The look of the till for a box of the program's own, whose text is plain. Its default button, if any, becomes its
/// main one. Once it has its buttons.
void dressBox(QMessageBox &box);

[[nodiscard]] QString failureNoticeStyle();

} // namespace harrowby::app
