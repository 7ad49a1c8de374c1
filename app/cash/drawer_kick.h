// SPDX-License-Identifier: MIT
#pragma once

#include "app/cash/drawer.h"
#include "basic/helper_process.h"

#include <QByteArray>
#include <QElapsedTimer>
#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>

namespace harrowby::app {

/// One job that opens the drawer: handed to the print service, watched until the printer has it, withdrawn when that
/// takes too long.
class DrawerKick final : public QObject
{
public:
    /// Called once, with an empty reason when the printer has taken it.
    using Done = std::function<void(const QString &reason)>;

    DrawerKick(QString queue, const DrawerOptions &options, QObject *parent);

    void start(const QByteArray &pulse, Done done);
    /// Waits until the job is handed over, if that is still to come.
    void finish(std::chrono::milliseconds time);

private:
    using Outcome = HelperProcess::Outcome;

    void run(const QString &program, const QStringList &arguments, std::chrono::milliseconds deadline,
             void (DrawerKick::*then)(const Outcome &), const QByteArray &input = {});
    void handedOver(const Outcome &outcome);
    void look();
    void looked(const Outcome &outcome);
    void withdraw();
    void withdrawn(const Outcome &outcome);
    [[nodiscard]] std::chrono::milliseconds left() const;
    void settle(const QString &reason);

    QString m_queue;
    DrawerOptions m_options;
    Done m_done;
    HelperProcess *m_program = nullptr; ///< the one that runs; a child of this object
    QElapsedTimer m_time;               ///< since the start
    QString m_job;                      ///< as the service calls it
};

} // namespace harrowby::app
