// SPDX-License-Identifier: MIT
#pragma once

#include <QChar>

#include <optional>

namespace harrowby::app {

/// The characters of a reader's keys, as of a US keyboard: readers come so, and nothing but the reader has to be set
/// then, whatever layout the desktop uses.
class ReaderKeys
{
public:
    /// A key event of the kernel: its code (KEY_…), and 1 for pressed, 0 for released, 2 for repeated. What it types:
    /// Enter is a carriage return; nothing for releases, repeats, modifiers and all else.
    [[nodiscard]] std::optional<QChar> key(int code, int value);
    void clear() { *this = {}; }

private:
    bool m_leftShift = false;
    bool m_rightShift = false;
    bool m_capsLock = false;
};

} // namespace harrowby::app
