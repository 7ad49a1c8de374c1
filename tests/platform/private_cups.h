// SPDX-License-Identifier: MIT
#pragma once

#include <QProcess>
#include <QString>
#include <QTemporaryDir>

#include <memory>

namespace harrowby::testing {

/// A print service of the test's own, on the loopback interface: cupsd with a queue "till" that leads to a real IPP
/// printer. Independent of the machine's own service; all of its processes end with the test.
class PrivateCups
{
public:
    PrivateCups();
    ~PrivateCups();
    Q_DISABLE_COPY_MOVE(PrivateCups)

    /// Starts printer, service and queue and points this process at the service. An empty text, or what went wrong.
    [[nodiscard]] QString start();
    /// Runs one of the service's commands; its output, or an empty text when it fails.
    QString command(const QString &program, const QStringList &arguments) const;
    /// What the printer has received, oldest first.
    [[nodiscard]] QStringList printedFiles() const;
    /// The jobs that wait in the service, as lpstat lists them.
    [[nodiscard]] QString waitingJobs() const;

    [[nodiscard]] bool addQueue() const;
    void removeQueue() const;
    void killPrinter();
    void killService();
    /// SIGSTOP: the service accepts connections and never answers.
    void hangService();
    void resumeService();

    /// The last lines of the service's and the printer's logs, for a failing test.
    [[nodiscard]] QString logs() const;

private:
    [[nodiscard]] QString path(const QString &below) const { return m_dir.filePath(below); }
    [[nodiscard]] bool startBus();
    [[nodiscard]] bool startPrinter();
    [[nodiscard]] bool startService();
    void writeConfiguration() const;
    void guardService();
    void dismissGuard();

    QTemporaryDir m_dir;
    int m_servicePort = 0;
    int m_printerPort = 0;
    QString m_busAddress;
    std::unique_ptr<QProcess> m_bus;
    std::unique_ptr<QProcess> m_printer;
    std::unique_ptr<QProcess> m_service;
    std::unique_ptr<QProcess> m_guard; ///< ends the service when this process has died
};

} // namespace harrowby::testing
