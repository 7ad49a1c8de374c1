// SPDX-License-Identifier: MIT
#pragma once

class QScrollArea;
class QWidget;

namespace harrowby::app {

/// What scrolls up and down where a small screen has no room for it, and brings what gets the focus into sight. Takes
/// the ownership of `inner`.
[[nodiscard]] QScrollArea *makeScrolling(QWidget *inner, QWidget *parent);

} // namespace harrowby::app
