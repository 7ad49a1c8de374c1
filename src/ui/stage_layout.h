// SPDX-License-Identifier: MIT
#pragma once

#include "theme/measures.h"

class QGridLayout;

namespace harrowby {

struct Controls;

/// Puts the panels into the stage's grid, whether they are in it already or not, as the window's shape wants them.
void arrangePanels(const Controls &controls, QGridLayout &stage, Shape shape, Density density);

/// The search result lies over the lower half of what sells; beside entry fields it lies over their list instead.
void placeSearchPanel(const Controls &controls, QGridLayout &stage, bool besideFields);

} // namespace harrowby
