// SPDX-License-Identifier: MIT
#pragma once

#include <QElapsedTimer>

#include <algorithm>
#include <limits>
#include <vector>

namespace harrowby::test {

/// How long a window had to wait between two pictures of itself, while something was waited for.
class PaintedGaps
{
public:
    PaintedGaps() { m_since.start(); }

    /// Of a wait that begins now.
    void begin()
    {
        m_gaps.clear();
        m_since.start();
    }
    void paint() { m_gaps.push_back(m_since.restart()); }

    /// In milliseconds. A busy machine makes some gaps longer, not most of them; of too few it is without end.
    [[nodiscard]] qint64 median() const
    {
        constexpr std::size_t fewest = 4;
        if (m_gaps.size() < fewest)
            return std::numeric_limits<qint64>::max();
        std::vector<qint64> sorted = m_gaps;
        std::ranges::sort(sorted);
        return sorted[sorted.size() / 2];
    }

private:
    QElapsedTimer m_since;
    std::vector<qint64> m_gaps;
};

} // namespace harrowby::test
