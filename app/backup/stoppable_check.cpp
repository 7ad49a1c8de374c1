// SPDX-License-Identifier: MIT
#include "app/backup/stoppable_check.h"

#include <sqlite3.h>

#include <condition_variable>
#include <mutex>
#include <stop_token>
#include <thread>

namespace harrowby::app {

namespace {

/// Polls `goesOn` on another thread, and calls sqlite3_interrupt() to stop the check, which is a single step.
class StopWatch
{
public:
    StopWatch(sqlite3 *database, const std::function<bool()> &goesOn) :
        m_thread([=, &goesOn](const std::stop_token &end) { run(database, goesOn, end); })
    {
    }

private:
    static void run(sqlite3 *database, const std::function<bool()> &goesOn, const std::stop_token &end)
    {
        std::mutex mutex;
        std::unique_lock lock(mutex);
        std::condition_variable_any ended;
        bool stopped = false;
        while (!end.stop_requested()) {
            if (!stopped && !goesOn())
                stopped = true;
            if (stopped)
                sqlite3_interrupt(database);
            ended.wait_for(lock, end, std::chrono::milliseconds(50), [] { return false; });
        }
    }

    std::jthread m_thread;
};

} // namespace

QuickCheck checkUnlessStopped(sqlite3 *database, const std::function<bool()> &goesOn)
{
    const StopWatch stopWatch(database, goesOn);
    return quickCheck(database, std::chrono::hours(1));
}

} // namespace harrowby::app
