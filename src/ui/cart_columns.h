// SPDX-License-Identifier: MIT
#pragma once

namespace harrowby::CartColumn {

// Columns of the cart list LV3.
inline constexpr int Item = 0; ///< the item key
inline constexpr int Qty = 1;
inline constexpr int Cost = 2; ///< of the whole line

} // namespace harrowby::CartColumn
