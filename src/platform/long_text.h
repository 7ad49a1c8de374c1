// SPDX-License-Identifier: MIT
#pragma once

class QLabel;

namespace harrowby {

/// Keeps a box smaller than the screen: when the label's text (plain text) is too tall or too wide for it, a view
/// that wraps and scrolls takes the label's place in the layout of its dialog. The label keeps the whole text.
void scrollLongText(QLabel &label);

} // namespace harrowby
