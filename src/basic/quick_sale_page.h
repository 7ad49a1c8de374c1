// SPDX-License-Identifier: MIT
#pragma once

namespace harrowby {

/// Buttons of the quick sales, which is how many items a page has and how far "Next" and "Prev" go.
inline constexpr int quickSaleButtons = 9;

} // namespace harrowby
