// SPDX-License-Identifier: MIT
#pragma once

#include "bench/report.h"
#include "bench/shop_file.h"

namespace harrowby::bench {

/// What lists that go into the store and out of it take, each against the parsing and the statements by hand:
/// preview and import of as many rows as the shop has items, how long a till waits meanwhile, and the export.
[[nodiscard]] std::vector<Line> measureExchange(const QString &path, const ShopFile &shop, qint64 items, int runs);

} // namespace harrowby::bench
