// SPDX-License-Identifier: MIT
#pragma once

#include "platform/print_options.h"

#include <QElapsedTimer>
#include <QObject>
#include <QStringList>

#include <memory>

namespace harrowby {

class HelperProcess;

/// The print service's queues, from its last answer. Queried in the background; while the service is dead or hangs, the
/// last answer counts.
class QueueList final : public QObject
{
public:
    explicit QueueList(PrintOptions options);
    ~QueueList() override;

    /// Asks again, in the background, unless the last answer is fresh or a query is running.
    void refresh();
    /// Waits for a running query, for the rest of the time that callers may wait in all (print_deadlines.h). Once that
    /// is used up it returns at once, until the service has answered.
    void wait();

    [[nodiscard]] bool hasAnswered() const { return m_answered; }
    [[nodiscard]] QStringList names() const;
    /// Empty when there is none.
    [[nodiscard]] QString defaultName() const;

private:
    void onInstalled(const QString &answer, const QString &failure);
    void onReachable(const QString &answer);
    [[nodiscard]] bool isFresh() const;

    PrintOptions m_options;
    // Two queries, as the second one also searches the network, which is slow.
    std::unique_ptr<HelperProcess> m_installedQuery;
    std::unique_ptr<HelperProcess> m_reachableQuery;
    QStringList m_installed;
    QStringList m_reachable;
    QString m_default;
    QElapsedTimer m_sinceAnswer;
    std::chrono::milliseconds m_patience;
    std::chrono::milliseconds m_reachablePatience{0};
    bool m_answered = false;
};

} // namespace harrowby
