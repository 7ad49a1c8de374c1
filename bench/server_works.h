// SPDX-License-Identifier: MIT
#pragma once

#include "bench/measuring.h"

#include <memory>

namespace harrowby::bench {

class ShopFile;

/// Measures the counter's lines on a private server with the shop of a file in it: alone, with a standby whose
/// confirmation each write waits for, and with that a millisecond away.
/// Throws std::runtime_error when a piece of work does not do what it should.
[[nodiscard]] std::vector<Line> measureServer(const ShopFile &shop, const WorksOptions &options);

/// A store on a server, `conninfo` in libpq's "key=value" form.
[[nodiscard]] std::unique_ptr<MeasuredStore> serverShop(const QString &conninfo);

} // namespace harrowby::bench
