// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace harrowby {

/// What is taken as the burst of a code reader that types like a keyboard.
struct CodeReaderSettings
{
    static constexpr int LeastGapMs = 20;
    static constexpr int UsualGapMs = 50;
    static constexpr int GreatestGapMs = 300;
    static constexpr int UsualShortest = 4;
    static constexpr int UsualLongest = 64;

    /// Between two keys, by the events' own timestamps. Below LeastGapMs and above GreatestGapMs that bound counts.
    int longestGapMs = UsualGapMs;
    int shortest = UsualShortest; ///< characters (code points), the prefix not counted
    int longest = UsualLongest;
    QString prefix{}; ///< typed before each code and taken off; empty when the reader types none
};

} // namespace harrowby
