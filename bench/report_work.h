// SPDX-License-Identifier: MIT
#pragma once

#include "bench/measuring.h"

namespace harrowby::bench {

/// Measures the sales report over all purchases of the shop; nothing when it has been left out of the build.
/// Throws std::runtime_error when the report does not show them all.
[[nodiscard]] std::vector<Line> measureReport(MeasuredStore &store, const WorksOptions &options);

} // namespace harrowby::bench
