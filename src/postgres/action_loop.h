// SPDX-License-Identifier: MIT
#pragma once

#include "postgres/action_time.h"

#include <QObject>

namespace harrowby::postgres {

/// An action of the user ends where this thread's outermost event loop waits for the next one; a box belongs to the
/// action that shows it. Without an event loop nothing is followed.
class ActionLoop
{
public:
    /// The time must outlive it.
    explicit ActionLoop(ActionTime &time);

private:
    QObject m_context; ///< of the loop's signal
};

} // namespace harrowby::postgres
