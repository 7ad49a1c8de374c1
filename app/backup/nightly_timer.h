// SPDX-License-Identifier: MIT
#pragma once

#include "app/backup/nightly_units.h"
#include "app/work/work_step.h"

#include <QString>

#include <functional>
#include <optional>

namespace harrowby::app {

/// How a change of the timer has ended, in words for a person.
struct NightlyEnd
{
    QString problem; ///< why nothing has changed; empty when it has
    QString warning; ///< what is not as it should be all the same
};

/// A systemd timer of this user that backs one store up every day. It is known by its files below
/// ~/.config/systemd/user alone, which bear the store's mark. What asks or tells systemd waits for it, some seconds at
/// most.
class NightlyTimer
{
public:
    explicit NightlyTimer(NightlyJob job);

    /// The plan by the timer's file; nothing when none is set up.
    [[nodiscard]] std::optional<ReadNightly> read() const;
    /// Whether systemd has the timer running.
    [[nodiscard]] bool isRunning() const;

    /// Sets it up anew or changes it. What fails leaves the timer that was there before.
    [[nodiscard]] NightlyEnd setUp(const NightlyPlan &plan, const WorkWatch &watch) const;
    [[nodiscard]] NightlyEnd switchOff(const WorkWatch &watch) const;

    [[nodiscard]] QString timerPath() const;
    [[nodiscard]] QString servicePath() const;

private:
    [[nodiscard]] QString timerName() const;
    [[nodiscard]] QString write(const NightlyPlan &plan) const;
    [[nodiscard]] QString start(const std::function<bool()> &goesOn) const;

    NightlyJob m_job;
    QString m_name;
};

} // namespace harrowby::app
