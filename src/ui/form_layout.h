// SPDX-License-Identifier: MIT
#pragma once

#include "ui/style/measures.h"

namespace harrowby {

struct Controls;

/// Puts the controls of stock, reorder, settings and dashboard into the rows and columns that their panels have room
/// for.
void arrangeForms(const Controls &controls, Shape shape);

} // namespace harrowby
