// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

class QElapsedTimer;

namespace harrowby {

/// Lets the window breathe during a long loop: call breathe() once per row. It handles pending events (clicks
/// and keys too), but looks at the clock first and does so at most every few milliseconds, so a row does not
/// cost a repaint. One object serves the whole window, nested loops included. It may be destroyed by an event
/// that it handles.
class Breather
{
public:
    Breather();
    void breathe();

private:
    // Shared, so that breathe() can still restart it when the events have destroyed the window and this object.
    std::shared_ptr<QElapsedTimer> m_sinceLast;
};

} // namespace harrowby
