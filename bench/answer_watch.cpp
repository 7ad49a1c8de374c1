// SPDX-License-Identifier: MIT
#include "bench/answer_watch.h"

namespace harrowby::bench {

AnswerWatch::AnswerWatch()
{
    m_timer.setTimerType(Qt::PreciseTimer);
    m_timer.callOnTimeout([this] { answered(); });
    m_timer.start(1);
}

double AnswerWatch::longestMs() const
{
    return std::max(m_longestMs, m_sinceLast.milliseconds());
}

void AnswerWatch::answered()
{
    m_longestMs = longestMs();
    m_sinceLast = Stopwatch();
}

} // namespace harrowby::bench
