// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

#include <chrono>
#include <functional>
#include <utility>

struct sqlite3;

namespace harrowby::app {

/// How long the till waits for a store file that another program keeps locked: `longestWait`, a budget for each action
/// of the user, however many statements the action runs. Once it is used up, further statements fail at once; it is
/// filled up again when the event loop has nothing left to do and waits for the next action; a box's own loop does
/// not count.
class BusyWait final : public QObject
{
    Q_OBJECT

public:
    using Sleeper = std::function<void(std::chrono::milliseconds)>;

    using Watcher = std::function<void()>;

    static constexpr std::chrono::milliseconds longestWait = std::chrono::seconds(10);
    /// A wait that nobody notices.
    static constexpr std::chrono::milliseconds quietTime{300};

    /// `sleeper` stands in for a real sleep.
    explicit BusyWait(std::chrono::milliseconds budget = longestWait, Sleeper sleeper = {});

    /// Becomes the database's busy handler. It must outlive the database's last statement.
    void attach(sqlite3 *database);
    /// Called again and again while an action waits, from `quietTime` on, on the thread that waits. The database must
    /// not be used in it.
    void setWatcher(Watcher watcher) { m_watcher = std::move(watcher); }
    /// Fills up whenever this thread's outermost event loop is about to wait.
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
