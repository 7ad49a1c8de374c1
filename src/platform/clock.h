// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>

namespace harrowby {

class Clock
{
public:
    virtual ~Clock();
    /// The current local time. Two readings can differ, also within one action.
    [[nodiscard]] virtual QDateTime now() const = 0;
};

class SystemClock final : public Clock
{
public:
    [[nodiscard]] QDateTime now() const override;
};

} // namespace harrowby
