// SPDX-License-Identifier: MIT
#pragma once

class QMainWindow;

namespace harrowby {

struct Controls;

/// Marks the window, and what no other window may cover; see harrowby/window_marks.h.
void markForHost(QMainWindow &form, const Controls &controls);

} // namespace harrowby
