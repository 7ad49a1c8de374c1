// SPDX-License-Identifier: MIT
#pragma once

#include "bench/measuring.h"

namespace harrowby::bench {

/// Measures every piece of work of the selling till on one store, the till and the raw statements in turns.
/// Throws std::runtime_error when a piece of work does not do what it should.
[[nodiscard]] std::vector<Line> measureWorks(MeasuredStore &store, const WorksOptions &options);

/// A press of a quick-sale button and a scan alone, each of which must end within a frame of the screen and its disk
/// writes.
[[nodiscard]] std::vector<Line> measureWithinFrame(MeasuredStore &store, const WorksOptions &options);

/// How a press of a quick-sale button grows from a small shop to a big one.
[[nodiscard]] Line measurePressGrowth(MeasuredStore &small, MeasuredStore &big, const WorksOptions &options);

} // namespace harrowby::bench
