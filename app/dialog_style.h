// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

class QWidget;

/// Looks of the program's own boxes: everything that is touched is at least 44 px high.
namespace harrowby::app {

/// Makes the buttons and entries within large enough for a thumb.
void makeTouchSized(QWidget &window);

[[nodiscard]] QString failureNoticeStyle();

} // namespace harrowby::app
