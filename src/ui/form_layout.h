// SPDX-License-Identifier: MIT
#pragma once

#include "theme/measures.h"

namespace harrowby {

struct Controls;

/// Widths of the stock form's two columns: a price in the thousands needs more room than what stands beside it.
inline constexpr int priceShare = 11;
inline constexpr int besidePriceShare = 10;

/// Puts the controls of stock, reorder, settings and dashboard into the rows and columns that their panels have room
/// for.
void arrangeForms(const Controls &controls, Shape shape);

} // namespace harrowby
