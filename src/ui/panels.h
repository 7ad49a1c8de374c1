// SPDX-License-Identifier: MIT
#pragma once

#include <initializer_list>

class QFrame;

namespace harrowby {

struct Controls;

/// Raises a panel above all others except a visible keypad.
void bringForward(const Controls &controls, QFrame &panel);
void hidePanels(std::initializer_list<QFrame *> panels);

} // namespace harrowby
