// SPDX-License-Identifier: MIT
#pragma once

#include "plugins/report/sales_reading.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

namespace harrowby::report {

/// Runs a reading in short steps from the event loop, so that the window answers all the while.
class ReadingRunner : public QObject
{
    Q_OBJECT

public:
    explicit ReadingRunner(QObject *parent = nullptr);

    /// Drops the reading that runs, and starts this one.
    void start(std::unique_ptr<SalesReading> reading);
    /// Drops the reading; no signal follows.
    void stop();
    [[nodiscard]] bool isRunning() const { return m_reading != nullptr; }

Q_SIGNALS:
    /// Progress from 0 to 1; emitted only when the reading takes longer than a moment.
    void progressed(double share);
    void done(const harrowby::report::Sales &sales, const harrowby::report::SalesQuery &query);
    void failed();

private:
    void step();

    std::unique_ptr<SalesReading> m_reading;
    QTimer m_timer;
    QElapsedTimer m_running;
};

} // namespace harrowby::report
