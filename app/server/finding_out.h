// SPDX-License-Identifier: MIT
#pragma once

#include "app/server/server_watch.h"

#include <chrono>
#include <functional>

namespace harrowby::app {

/// When what nobody knows yet is looked for, beside what a person does. A try may wait for seconds, in which no input
/// is taken: so none is made while the server waits for its standby, as nothing could be confirmed, but as soon as that
/// is there; nor soon after one in vain.
class FindingOut
{
public:
    using Clock = std::function<std::chrono::milliseconds()>;

    static constexpr std::chrono::seconds rest{30};

    explicit FindingOut(Clock clock = {});

    /// Asked each time that the server answers (ServerWatch::answered) and was reached, and counts as tried when it
    /// says so. That it is back is kept until then.
    [[nodiscard]] bool isDue(const ServerWatch::State &state, bool isBack, bool isInDoubt);

private:
    Clock m_clock;
    bool m_isBack = false; ///< the server, or the standby that a doubt waits for, and nothing was tried since
    std::chrono::milliseconds m_next{0};
};

} // namespace harrowby::app
