// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>

namespace harrowby {

/// A moment of a clock that only goes forward, whatever is done to the machine's time.
inline std::chrono::milliseconds steadyNow()
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now().time_since_epoch());
}

} // namespace harrowby
