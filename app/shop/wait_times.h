// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <chrono>

/// How long the program waits for a store file: for the lock of another program, until it says so, and for the check at
/// the start.
namespace harrowby::app::wait_times {

using Milliseconds = std::chrono::milliseconds;

/// For a lock: one action of the user, however many statements it runs, or one step of a backup.
inline constexpr Milliseconds longest{10'000};

/// What takes less is not shown on the screen: an action's waits for locks together, or the opening of a store. An
/// action ends where the program's outermost event loop waits for the next event.
inline constexpr Milliseconds quiet{300};

/// Between two tries to get a lock, the last one again and again. Short at first: another till's sale holds the lock
/// for milliseconds.
inline constexpr std::array<Milliseconds, 7> steps = {Milliseconds(1),  Milliseconds(2),  Milliseconds(5),
                                                      Milliseconds(10), Milliseconds(15), Milliseconds(25),
                                                      Milliseconds(50)};

/// For the quick check of a file that is opened; then it is cut short, so that a big store still opens in seconds.
inline constexpr Milliseconds longestCheck{5'000};

} // namespace harrowby::app::wait_times
