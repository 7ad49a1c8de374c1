// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <chrono>
#include <vector>

namespace harrowby::bench {

class Stopwatch
{
public:
    Stopwatch() : m_start(std::chrono::steady_clock::now()) {}
    [[nodiscard]] double milliseconds() const
    {
        return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - m_start).count();
    }

private:
    std::chrono::steady_clock::time_point m_start;
};

/// 0 without samples.
[[nodiscard]] inline double median(std::vector<double> samples)
{
    if (samples.empty())
        return 0.0;
    std::sort(samples.begin(), samples.end());
    const std::size_t middle = samples.size() / 2;
    return samples.size() % 2 == 1 ? samples[middle] : (samples[middle - 1] + samples[middle]) / 2.0;
}

} // namespace harrowby::bench
