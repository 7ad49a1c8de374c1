// SPDX-License-Identifier: MIT
#include "bench/answer_watch.h"

#include <QCoreApplication>
#include <QEvent>

namespace harrowby::bench {

AnswerWatch::AnswerWatch(bool waitsUnderASign)
{
    m_timer.setTimerType(Qt::PreciseTimer);
    m_timer.callOnTimeout([this] { answered(); });
    m_timer.start(1);
    if (waitsUnderASign)
        QCoreApplication::instance()->installEventFilter(this);
}

double AnswerWatch::longestMs() const
{
    return std::max(m_longestMs, m_sinceLast.milliseconds());
}

bool AnswerWatch::eventFilter(QObject * /*watched*/, QEvent *event)
{
    if (event->type() == QEvent::Paint)
        answered();
    return false;
}

void AnswerWatch::answered()
{
    m_longestMs = longestMs();
    m_sinceLast = Stopwatch();
}

} // namespace harrowby::bench
