// SPDX-License-Identifier: MIT
#pragma once

#include "app/backup/backup.h"

#include <QObject>

#include <atomic>
#include <functional>
#include <stop_token>
#include <thread>

namespace harrowby::app {

/// Runs a backup on its own thread, one at a time. Signals are emitted on the thread that this object lives on.
class BackupJob final : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject; ///< its end stops the backup and waits for it

    using Work = std::function<BackupResult(const BackupWatch &watch)>;

    void start(const QString &store, const QString &target, bool replace);
    /// Any other way of making one. `work` runs on the job's thread.
    void start(Work work);
    void stop() { m_thread.request_stop(); }
    [[nodiscard]] bool isRunning() const { return m_thread.joinable(); }

Q_SIGNALS:
    void progressed(const harrowby::app::BackupProgress &progress);
    void finished(const harrowby::app::BackupResult &result);

private:
    void run(const Work &work, const std::stop_token &stop);
    void report(const BackupProgress &progress);
    void end(const BackupResult &result);

    std::atomic<int> m_lastPercent = -1;
    std::jthread m_thread; ///< last, so that it is joined before the other members are destroyed
};

} // namespace harrowby::app
