// SPDX-License-Identifier: MIT
#pragma once

#include "app/work/work_step.h"

#include <QPointer>
#include <QTimer>
#include <QWidget>

class QLabel;
class QProgressBar;
class QPushButton;

namespace harrowby::app {

class WorkJob;

/// Shows a job's work once it takes longer than half a second: what is done, a bar and "Cancel". Hidden otherwise, so
/// what is quick does not flicker. The page does not switch its controls off before busyChanged() says so, and ignores
/// them while the job runs: a focus that is on one would be passed on to somewhere else.
class WorkStrip final : public QWidget
{
    Q_OBJECT

public:
    static constexpr int usualDelay = 500; ///< ms

    /// The job must outlive it.
    explicit WorkStrip(WorkJob &job, QWidget *parent = nullptr);

    /// When it is shown, in ms after the start of the work.
    void setDelay(int delay) { m_delay.setInterval(delay); }

Q_SIGNALS:
    /// True when it is shown, after "Cancel" has got the focus; false at the end, before the focus returns.
    void busyChanged(bool busy);

private:
    void createParts();
    void begin();
    void appear();
    void follow(const WorkStep &step);
    void sayCancelled();
    void end();

    WorkJob &m_job;
    QTimer m_delay;
    WorkStep m_step;
    bool m_busy = false;
    QPointer<QWidget> m_focusBefore;
    QLabel *m_words = nullptr;
    QProgressBar *m_bar = nullptr;
    QPushButton *m_cancel = nullptr;
};

} // namespace harrowby::app
