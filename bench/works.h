// SPDX-License-Identifier: MIT
#pragma once

#include "bench/report.h"

#include <QDateTime>

struct sqlite3;

namespace harrowby::bench {

struct WorksOptions
{
    qint64 items = 0;
    int runs = 0;
    QDateTime now;
};

/// Measures every piece of work of the till on one database, the till and the raw statements in turns.
/// Throws std::runtime_error when a piece of work does not do what it should.
[[nodiscard]] std::vector<Line> measureWorks(sqlite3 *database, const WorksOptions &options);

/// How a press of a quick-sale button grows from a small shop to a big one. The two are pressed in turns, as the disk
/// that each press waits for is faster at one time than at another. The line's raw time is the small shop's.
[[nodiscard]] Line measurePressGrowth(sqlite3 *small, sqlite3 *big, const WorksOptions &options);

inline constexpr auto PressWork = "press a quick-sale button until cart and total are painted, 1 line";

} // namespace harrowby::bench
