// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QProcess>
#include <QStringList>
#include <QTimer>

#include <chrono>
#include <functional>

namespace harrowby {

/// A program that is run in the background, with a deadline, and tells once how it ended.
///
/// The print service is asked through its programs and not through QPrinter, which loads the service's library into the
/// till: there a dead server blocks the calling thread, and nothing says whether a job was taken. A process can be
/// killed at its deadline. QProcess alone knows no deadline and may tell of one end twice, by an error and by
/// finishing.
class HelperProcess final : public QObject
{
public:
    struct Outcome
    {
        bool succeeded = false;
        QByteArray output; ///< also of a failed one
        QString reason;    ///< why it failed
    };
    using Done = std::function<void(const Outcome &)>;

    explicit HelperProcess(QObject *parent);
    /// Kills the program when it still runs. Tells nothing.
    ~HelperProcess() override;

    /// What the program reads, to its end; without, it reads nothing. Before start().
    void setInput(const QByteArray &input);
    /// Never waits. `done` is called exactly once, unless this object is destroyed before. It may destroy this
    /// object by deleteLater().
    void start(const QString &program, const QStringList &arguments, std::chrono::milliseconds deadline, Done done);
    /// Waits for the end without handling any other event.
    void wait(std::chrono::milliseconds time);
    /// True when `done` has been called.
    [[nodiscard]] bool isSettled() const { return !m_done; }
    /// Kills the program and tells `done` this reason.
    void abandon(const QString &reason);

private:
    void onError(QProcess::ProcessError error);
    void onFinished(int exitCode, QProcess::ExitStatus status);
    void settle(const Outcome &outcome);

    QByteArray m_input;
    QProcess m_process;
    QTimer m_deadline;
    Done m_done;
};

} // namespace harrowby
