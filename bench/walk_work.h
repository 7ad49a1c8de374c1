// SPDX-License-Identifier: MIT
#pragma once

#include "bench/measuring.h"

namespace harrowby::bench {

/// Measures walking all items through the till's connection, without a window.
/// Throws std::runtime_error when it does not yield them all.
[[nodiscard]] Line measureWalk(MeasuredStore &store, const WorksOptions &options);

} // namespace harrowby::bench
