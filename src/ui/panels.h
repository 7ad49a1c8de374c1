// SPDX-License-Identifier: MIT
#pragma once

#include <initializer_list>

class QFrame;

namespace harrowby {

struct Controls;

/// In front of every other panel, but for a keypad that is shown: nothing covers that until it is hidden.
void bringForward(const Controls &controls, QFrame &panel);
void hidePanels(std::initializer_list<QFrame *> panels);

} // namespace harrowby
