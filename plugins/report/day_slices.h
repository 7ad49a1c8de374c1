// SPDX-License-Identifier: MIT
#pragma once

#include "plugins/report/period.h"

#include <functional>

namespace harrowby::report {

/// A few days that are read with one statement.
struct Slice
{
    Period days;
    bool big = false; ///< one day alone, with more purchases than a statement should sum in one go
};

/// Cuts a period into slices that one statement sums in a few hundredths of a second, so that the window answers in
/// between. It learns from slice to slice how many days that are.
class DaySlices
{
public:
    /// Counts the purchases of the days, up to `most` only; below 0 when that failed.
    using Probe = std::function<int(const Period &days, int most)>;

    static constexpr int mostPurchases = 60'000;

    explicit DaySlices(const Period &period);

    [[nodiscard]] bool atEnd() const { return m_next > m_period.to; }
    /// The next slice; empty when the probe failed.
    [[nodiscard]] std::optional<Slice> next(const Probe &probe);
    /// 0 to 1: the days that have been given out.
    [[nodiscard]] double share() const;

private:
    [[nodiscard]] Period days(qint64 count) const;

    Period m_period;
    QDate m_next;
    qint64 m_length;
};

} // namespace harrowby::report
