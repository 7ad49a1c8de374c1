// SPDX-License-Identifier: MIT
#pragma once

#include "app/work/work_step.h"
#include "basic/result.h"

#include <QObject>

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

namespace harrowby::app {

/// Runs long pieces of work on a thread of its own, one at a time. Signals are emitted, and what waits for the end is
/// called, on the thread that this object lives on. The end of the object cancels the work and waits for it; nobody
/// is called any more then.
class WorkJob final : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// `work` makes an Outcome on the job's thread: a database that it needs it opens itself. `end` gets the outcome,
    /// or what the work has thrown, in words; it may start the next work. False, and nothing is done, while one runs.
    template <typename Outcome>
    bool start(std::function<Outcome(const WorkWatch &)> work, std::function<void(Result<Outcome, QString>)> end);

    /// The work is to stop. What it has come to by then its outcome says.
    void cancel();
    [[nodiscard]] bool isRunning() const { return m_thread.joinable(); }
    /// Whether cancel() was called since the last start.
    [[nodiscard]] bool isCancelled() const { return m_cancelled; }

Q_SIGNALS:
    void started();
    /// Not each step, and none without words: what is new when the event loop comes to it.
    void progressed(const harrowby::app::WorkStep &step);
    void cancelled();
    /// Right before `end` is called; isRunning() is false.
    void finished();

private:
    using Action = std::function<void()>;

    bool run(std::function<Action(const WorkWatch &)> work);
    void report(const WorkStep &step);
    void deliver();
    void end(const Action &action);
    [[nodiscard]] static QString thrownWords();

    bool m_cancelled = false;
    std::mutex m_mutex;            ///< of the two below
    std::optional<WorkStep> m_new; ///< that is not delivered yet; while there is one, a delivery is on its way
    WorkStep m_last;
    std::jthread m_thread; ///< last, so that it is joined before the other members are destroyed
};

template <typename Outcome>
bool WorkJob::start(std::function<Outcome(const WorkWatch &)> work, std::function<void(Result<Outcome, QString>)> end)
{
    return run([work = std::move(work), end = std::move(end)](const WorkWatch &watch) -> Action {
        std::shared_ptr<Outcome> outcome; // an Action is copied, an outcome may be movable alone
        QString thrown;
        try {
            outcome = std::make_shared<Outcome>(work(watch));
        } catch (...) {
            thrown = thrownWords();
        }
        return [outcome, thrown, end] {
            if (outcome)
                end(std::move(*outcome));
            else
                end(Unexpected(thrown));
        };
    });
}

} // namespace harrowby::app
