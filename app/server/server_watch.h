// SPDX-License-Identifier: MIT
#pragma once

#include "app/records/server_engine.h"

#include <QDeadlineTimer>
#include <QObject>
#include <QString>
#include <QUuid>

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

namespace harrowby::app {

/// Asks the server again and again, on a thread and over a session of its own, how it is: a till that nobody touches
/// learns of it, too, and no press waits for it.
class ServerWatch final : public QObject
{
    Q_OBJECT

public:
    struct State
    {
        bool isReached = true;
        QString why; ///< it is not: one line without a full stop
        /// As the server last said it; empty before: 'single' (there is no standby), 'protected' (each write is on two
        /// machines), 'waiting' (none can be, so nothing is confirmed) or 'alone' (it goes on without the standby, by
        /// the shop's own choice).
        QString protection;
        QString timeline = {}; ///< of that server: a standby that takes its place begins another one
        bool operator==(const State &) const = default;
    };

    /// Begins with the first state. `store` is the address, `identity` which store counts as reached there, and `every`
    /// the pause between two questions.
    ServerWatch(QString store, const QUuid &identity, std::chrono::milliseconds every = std::chrono::seconds(3),
                QObject *parent = nullptr);
    /// Waits until what is being asked is broken off.
    ~ServerWatch() override;

    [[nodiscard]] const State &state() const { return m_state; }

Q_SIGNALS:
    void changed(const harrowby::app::ServerWatch::State &state);
    /// The server answers, each time that it does. `isBack`: after it had not, or when it is another one than before.
    void answered(bool isBack);

private:
    void run();
    [[nodiscard]] State ask();
    [[nodiscard]] Records::Answer<QList<RecordRow>> read(QLatin1StringView protection);
    [[nodiscard]] State gone(const ServerProblem &problem) const;
    [[nodiscard]] std::optional<ServerProblem> reach();
    void forget();
    /// False when the watch ends.
    [[nodiscard]] bool pause();
    void take(const State &state);

    const QString m_store;
    const QUuid m_identity;
    const std::chrono::milliseconds m_every;
    State m_state;

    // The thread's own.
    State m_last;
    QDeadlineTimer m_patience;     ///< with the question that is asked now
    bool m_tellsProtection = true; ///< the server knows the question

    std::mutex m_mutex;
    std::condition_variable m_wake;
    bool m_ends = false;
    std::unique_ptr<StoreRecords> m_records; ///< made and unmade under the mutex, used by the thread alone
    std::jthread m_thread;
};

} // namespace harrowby::app
