// SPDX-License-Identifier: MIT
#pragma once

#include "bench/measuring.h"

namespace harrowby::bench {

/// Measures what the manager does at the counter: stock, custom sale, undo and deletion.
/// Throws std::runtime_error when a piece of work does not do what it should.
[[nodiscard]] std::vector<Line> measureCounter(MeasuredStore &store, const WorksOptions &options);

/// How filling the stock list grows from a small shop to a big one.
[[nodiscard]] Line measureListGrowth(MeasuredStore &small, MeasuredStore &big, const WorksOptions &options);

} // namespace harrowby::bench
