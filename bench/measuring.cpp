// SPDX-License-Identifier: MIT
#include "bench/measuring.h"

#include <stdexcept>

using namespace Qt::StringLiterals;

namespace harrowby::bench {

double checked(double milliseconds, const QString &work)
{
    require(milliseconds >= 0.0, work);
    return milliseconds;
}

void require(bool done, const QString &what)
{
    if (!done)
        throw std::runtime_error(("Failed: "_L1 + what).toStdString());
}

double timed(const std::function<bool()> &work)
{
    const Stopwatch watch;
    return work() ? watch.milliseconds() : -1.0;
}

double Measuring::rawMs(const RawStatements &statements, const QString &name) const
{
    return checked(timed([&] { return runRaw(m_database, statements); }), name + u" (raw)"_s);
}

Line &Measuring::measure(const QString &name, const Limit &limit, const Work &work,
                         const std::function<RawStatements()> &raw, const std::function<void()> &prepare)
{
    const auto makeReady = [&] {
        if (prepare)
            prepare();
        m_till.repaint();
    };
    std::vector<double> samples;
    std::vector<double> rawSamples;
    for (int i = -warmUpRuns; i < m_options.runs; ++i) {
        m_till.nextSecond();
        makeReady();
        const double workMs = checked(work(), name);
        makeReady();
        const double plainMs = rawMs(raw(), name);
        if (i >= 0) {
            samples.push_back(workMs);
            rawSamples.push_back(plainMs);
        }
    }
    const double plain = median(rawSamples);
    Line line{name, m_options.items, median(samples), plain, plain > 0.0 ? median(samples) / plain : 0.0, {}, {}};
    if (isLimited())
        line.limit = limit.ratio + limit.plusMs / plain;
    return m_lines.emplace_back(line);
}

Line measureGrowth(const QString &name, const WorksOptions &options, Till &small, Till &big,
                   const std::function<double(Till &)> &work)
{
    Till *const tills[] = {&small, &big};
    std::vector<double> samples[2];
    for (int i = -warmUpRuns; i < options.runs; ++i) {
        for (std::size_t which : {0U, 1U}) {
            Till &till = *tills[which];
            till.use();
            till.nextSecond();
            till.repaint();
            const double ms = checked(work(till), name);
            if (i >= 0)
                samples[which].push_back(ms);
        }
    }
    const double smallMs = median(samples[0]);
    const double bigMs = median(samples[1]);
    return {name, options.items, bigMs, smallMs, bigMs / smallMs, {}, {}};
}

} // namespace harrowby::bench
