// SPDX-License-Identifier: MIT
#include "app/shop/busy_wait.h"

#include <QAbstractEventDispatcher>
#include <QThread>

#include <sqlite3.h>

#include <algorithm>
#include <thread>
#include <utility>

namespace harrowby::app {

namespace {

using namespace std::chrono_literals;
using Milliseconds = std::chrono::milliseconds;

void sleepFor(Milliseconds time)
{
    std::this_thread::sleep_for(time);
}

Milliseconds stepOf(int attempt)
{
    return wait_times::steps.at(std::min(static_cast<std::size_t>(attempt), wait_times::steps.size() - 1));
}

} // namespace

BusyWait::BusyWait(Milliseconds budget, Sleeper sleeper) :
    m_budget(budget), m_remaining(budget), m_sleeper(sleeper ? std::move(sleeper) : Sleeper(sleepFor))
{
}

void BusyWait::attach(sqlite3 *database)
{
    sqlite3_busy_handler(database, &BusyWait::onBusy, this);
}

void BusyWait::followEventLoop()
{
    if (auto *dispatcher = QAbstractEventDispatcher::instance())
        connect(dispatcher, &QAbstractEventDispatcher::aboutToBlock, this, &BusyWait::onIdle, Qt::UniqueConnection);
}

void BusyWait::onIdle()
{
    // Nested loops do not refill the budget: a box belongs to the action that shows it, whose statements before and
    // after it share one budget.
    constexpr int outermost = 1;
    if (QThread::currentThread()->loopLevel() <= outermost)
        refill();
}

void BusyWait::refill()
{
    m_remaining = m_budget;
}

int BusyWait::onBusy(void *self, int attempt) noexcept
{
    try {
        return static_cast<BusyWait *>(self)->waitStep(attempt) ? 1 : 0;
    } catch (...) {
        return 0;
    }
}

bool BusyWait::waitStep(int attempt)
{
    if (m_remaining <= 0ms)
        return false;
    const Milliseconds step = std::min(stepOf(attempt), m_remaining);
    const auto start = std::chrono::steady_clock::now();
    m_sleeper(step);
    const auto slept = std::chrono::duration_cast<Milliseconds>(std::chrono::steady_clock::now() - start);
    m_remaining -= std::max(step, slept);
    if (m_watcher && m_budget - m_remaining >= wait_times::quiet)
        m_watcher();
    return true;
}

} // namespace harrowby::app
