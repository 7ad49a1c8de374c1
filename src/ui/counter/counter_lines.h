// SPDX-License-Identifier: MIT
#pragma once

#include <harrowby/counter.h>

#include <vector>

namespace harrowby {

class TextTableModel;

/// The cart's lines as a host is told of them.
[[nodiscard]] std::vector<CounterLine> counterLines(const TextTableModel &cart);

} // namespace harrowby
