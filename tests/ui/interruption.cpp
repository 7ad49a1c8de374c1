// SPDX-License-Identifier: MIT
#include "tests/ui/interruption.h"

#include <QAbstractItemModel>
#include <QEvent>
#include <QTimer>

#include <sys/syscall.h>
#include <unistd.h>

#include <ctime>
#include <utility>

namespace {

time_t passedSeconds = 0;
long passedNanoseconds = 0;

} // namespace

/// clock_gettime() of the whole process, which a test can put forward.
extern "C" int clock_gettime(clockid_t clock, timespec *time) noexcept
{
    constexpr long aSecond = 1'000'000'000;
    const long result = ::syscall(SYS_clock_gettime, clock, time);
    if (result == 0 && clock == CLOCK_MONOTONIC) {
        time->tv_sec += passedSeconds;
        time->tv_nsec += passedNanoseconds;
        if (time->tv_nsec >= aSecond) {
            time->tv_nsec -= aSecond;
            ++time->tv_sec;
        }
    }
    return static_cast<int>(result);
}

namespace harrowby::test {

Interruption::Interruption(int row, std::function<void()> action) : m_row(row), m_action(std::move(action)) {}

void Interruption::watchRows(const QAbstractItemModel &list)
{
    connect(&list, &QAbstractItemModel::rowsInserted, this, &Interruption::rowFilled);
}

void Interruption::watchButton(QObject &button)
{
    button.installEventFilter(this);
}

bool Interruption::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::ToolTipChange)
        rowFilled();
    return QObject::eventFilter(watched, event);
}

void Interruption::rowFilled()
{
    if (m_row <= 0)
        return;
    if (--m_row > 0)
        return;
    passRest();
    QTimer::singleShot(0, this, [this] {
        m_isDone = true;
        m_action();
    });
}

void passRest()
{
    constexpr long longerThanTheRest = 45'000'000;
    constexpr long aSecond = 1'000'000'000;
    passedNanoseconds += longerThanTheRest;
    if (passedNanoseconds >= aSecond) {
        passedNanoseconds -= aSecond;
        ++passedSeconds;
    }
}

} // namespace harrowby::test
