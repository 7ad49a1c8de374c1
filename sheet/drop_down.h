// SPDX-License-Identifier: MIT
#pragma once

class QWidget;

namespace harrowby::sheet {

/// Gives the lists that drop down within the window entries that suit a thumb, and lets them drop below or above their
/// box, from the first entry to the last; one that is longer than the screen scrolls.
void dressDropDowns(QWidget &window);

} // namespace harrowby::sheet
