// SPDX-License-Identifier: MIT
#pragma once

#include "bench/report.h"
#include "bench/shop_file.h"

namespace harrowby::bench {

/// The office's search of what happened, in an activity log of that many entries that it writes into the shop: the
/// first page, and a text that is nowhere.
[[nodiscard]] std::vector<Line> measureActivity(const ShopFile &shop, qint64 entries, int runs);

} // namespace harrowby::bench
