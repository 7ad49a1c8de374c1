// SPDX-License-Identifier: MIT
#include "plugins/report/day_slices.h"

#include <algorithm>

namespace harrowby::report {

DaySlices::DaySlices(const Period &period) :
    m_period(period), m_next(period.from), m_length(std::max<qint64>(1, period.days()))
{
}

Period DaySlices::days(qint64 count) const
{
    return {m_next, std::min(m_next.addDays(count - 1), m_period.to)};
}

std::optional<Slice> DaySlices::next(const Probe &probe)
{
    Slice slice{days(m_length), false};
    int count = probe(slice.days, mostPurchases + 1);
    while (count > mostPurchases && slice.days.days() > 1) {
        m_length = std::max<qint64>(1, slice.days.days() / 2);
        slice.days = days(m_length);
        count = probe(slice.days, mostPurchases + 1);
    }
    if (count < 0)
        return {};
    slice.big = count > mostPurchases;
    if (count < mostPurchases / 3)
        m_length *= 2;
    m_next = slice.days.to.addDays(1);
    return slice;
}

double DaySlices::share() const
{
    return static_cast<double>(m_period.from.daysTo(m_next)) / static_cast<double>(m_period.days());
}

} // namespace harrowby::report
