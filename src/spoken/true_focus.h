// SPDX-License-Identifier: MIT
#pragma once

namespace harrowby {

/// As long as it lives, a screen reader is told of no focus that is none: a tab bar tells of one whenever another tab
/// is chosen, wherever the keyboard focus is.
class TrueFocus
{
public:
    TrueFocus();
    ~TrueFocus();
    TrueFocus(const TrueFocus &) = delete;
    TrueFocus &operator=(const TrueFocus &) = delete;
};

} // namespace harrowby
