// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

#include <chrono>
#include <functional>
#include <utility>

struct sqlite3;

namespace harrowby::app {

/// SQLite busy handler: how long the till waits for a store file that another program has locked. `longestWait` is the
/// budget for one action of the user, however many statements it runs; once it is used up, further statements fail at
/// once. It is refilled when this thread's outermost event loop is about to wait, and when a store has been opened
/// (openStoreBeside()); a box's loop does not refill it. Both limits, the 10 s of the budget and the 300 ms before a
/// wait is shown, stand here; the steps are in busy_wait.cpp.
class BusyWait final : public QObject
{
    Q_OBJECT

public:
    using Sleeper = std::function<void(std::chrono::milliseconds)>;

    using Watcher = std::function<void()>;

    static constexpr std::chrono::milliseconds longestWait = std::chrono::seconds(10);
    /// Waits up to this long are not shown on the screen.
    static constexpr std::chrono::milliseconds quietTime{300};

    /// `sleeper` replaces sleeping in tests.
    explicit BusyWait(std::chrono::milliseconds budget = longestWait, Sleeper sleeper = {});

    /// Becomes the database's busy handler. It must outlive the database's last statement.
    void attach(sqlite3 *database);
    /// Called repeatedly while an action waits, after `quietTime`, on the waiting thread. It must not use the database.
    void setWatcher(Watcher watcher) { m_watcher = std::move(watcher); }
    /// Refills the budget whenever this thread's outermost event loop is about to wait.
    void followEventLoop();
    void refill();
    [[nodiscard]] std::chrono::milliseconds remaining() const { return m_remaining; }

private:
    void onIdle();
    static int onBusy(void *self, int attempt) noexcept;
    bool waitStep(int attempt);

    std::chrono::milliseconds m_budget;
    std::chrono::milliseconds m_remaining;
    Sleeper m_sleeper;
    Watcher m_watcher;
};

} // namespace harrowby::app
