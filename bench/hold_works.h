// SPDX-License-Identifier: MIT
#pragma once

#include "bench/measuring.h"

namespace harrowby::bench {

/// Measures putting a cart of 50 lines aside, and bringing it back.
/// Throws std::runtime_error when a piece of work does not do what it should.
[[nodiscard]] std::vector<Line> measureHold(MeasuredStore &store, const WorksOptions &options);

} // namespace harrowby::bench
