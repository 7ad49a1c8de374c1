// SPDX-License-Identifier: MIT
#pragma once

#include "bench/stopwatch.h"

#include <QTimer>

namespace harrowby::bench {

/// How long a window leaves its user waiting: the longest time between two events that it answers.
class AnswerWatch
{
public:
    AnswerWatch();

    /// The longest wait since the watch was made, the one that is under way counted in.
    [[nodiscard]] double longestMs() const;

private:
    void answered();

    QTimer m_timer;
    Stopwatch m_sinceLast;
    double m_longestMs = 0.0;
};

} // namespace harrowby::bench
