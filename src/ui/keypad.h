// SPDX-License-Identifier: MIT
// The on-screen keypad for the custom sale's quantity.
#pragma once

namespace harrowby {

struct Controls;

/// `key` is the element of Command30; another number does nothing.
void pressKey(const Controls &controls, int key);
/// Shows or hides it.
void toggleKeypad(const Controls &controls);

} // namespace harrowby
