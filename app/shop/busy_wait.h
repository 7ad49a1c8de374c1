// SPDX-License-Identifier: MIT
#pragma once

#include "app/shop/wait_times.h"

#include <QObject>

#include <chrono>
#include <functional>
#include <utility>

struct sqlite3;

namespace harrowby::app {

/// SQLite busy handler: waits for a store file that another program has locked, in the steps and within the limits of
/// wait_times.h. The budget is one for an action of the user, however many statements it runs; once it is used up,
/// further statements fail at once. It is refilled when this thread's outermost event loop is about to wait, and when a
/// store has been opened (openStoreBeside()); a box's loop does not refill it.
class BusyWait final : public QObject
{
    Q_OBJECT

public:
    using Sleeper = std::function<void(std::chrono::milliseconds)>;

    using Watcher = std::function<void()>;

    /// `sleeper` replaces sleeping in tests.
    explicit BusyWait(std::chrono::milliseconds budget = wait_times::longest, Sleeper sleeper = {});

    /// Becomes the database's busy handler. It must outlive the database's last statement.
    void attach(sqlite3 *database);
    /// Called repeatedly while an action waits, after `wait_times::quiet`, on the waiting thread. It must not use the
    /// database.
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
