// SPDX-License-Identifier: MIT
#include "plugins/report/reading_runner.h"

#include <utility>

using namespace std::chrono_literals;

namespace harrowby::report {

namespace {

constexpr auto stepTime = 25ms;
constexpr qint64 quietMilliseconds = 700;

} // namespace

ReadingRunner::ReadingRunner(QObject *parent) : QObject(parent)
{
    m_timer.setInterval(0);
    connect(&m_timer, &QTimer::timeout, this, &ReadingRunner::step);
}

void ReadingRunner::start(std::unique_ptr<SalesReading> reading)
{
    m_reading = std::move(reading);
    m_running.start();
    m_timer.start();
}

void ReadingRunner::stop()
{
    m_timer.stop();
    m_reading.reset();
}

void ReadingRunner::step()
{
    const SalesReading::State state = m_reading->step(stepTime);
    if (state == SalesReading::State::Reading) {
        if (m_running.elapsed() > quietMilliseconds)
            Q_EMIT progressed(m_reading->progress());
        return;
    }
    // Last, as a receiver may start the next reading.
    const std::unique_ptr<SalesReading> ended = std::move(m_reading);
    stop();
    if (state == SalesReading::State::Done)
        Q_EMIT done(ended->sales(), ended->query());
    else
        Q_EMIT failed();
}

} // namespace harrowby::report
