// SPDX-License-Identifier: MIT
#include "platform/clock.h"

namespace harrowby {

Clock::~Clock() = default;

QDateTime SystemClock::now() const
{
    return QDateTime::currentDateTime();
}

} // namespace harrowby
