// SPDX-License-Identifier: MIT
#pragma once

namespace harrowby {

/// The least height of what a finger touches, in device-independent pixels: buttons, entries, tabs, check boxes,
/// entries of lists to choose from. Style sheets call it `@finger@`.
inline constexpr int touchHeight = 44;

} // namespace harrowby
