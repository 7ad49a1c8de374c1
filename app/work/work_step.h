// SPDX-License-Identifier: MIT
#pragma once

#include "app/work/watch.h"

#include <QString>

namespace harrowby::app {

/// How far a long piece of work is.
struct WorkStep
{
    static constexpr int unknown = -1;

    /// What is being done: "The rows are being compared …". Empty where nothing is told, and only asked whether it goes
    /// on.
    QString words;
    int percent = unknown; ///< of the whole work or of this step, 0 to 100

    friend bool operator==(const WorkStep &, const WorkStep &) = default;
};

/// Called with each step, as often as is convenient, on the work's thread. False: the work is to stop soon, and leave
/// nothing half done; it goes on returning false then.
using WorkWatch = Watch<WorkStep>;

/// `part` of `whole` in percent, for WorkStep.
[[nodiscard]] constexpr int percentOf(qint64 part, qint64 whole)
{
    if (whole <= 0)
        return WorkStep::unknown;
    return static_cast<int>(part >= whole ? 100 : part * 100 / whole);
}

} // namespace harrowby::app
