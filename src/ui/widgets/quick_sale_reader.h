// SPDX-License-Identifier: MIT
#pragma once

namespace harrowby {

/// Lets a screen reader hear of quick-sale buttons: their name follows their caption, so that a new caption is told
/// once.
void installQuickSaleReader();

} // namespace harrowby
