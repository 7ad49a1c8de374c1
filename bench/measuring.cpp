// SPDX-License-Identifier: MIT
#include "bench/measuring.h"

#include <algorithm>
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
    return checked(m_store.rawMs(statements), name + u" (raw)"_s);
}

void Measuring::measure(const QString &name, const Limits &limits, const Work &work,
                        const std::function<RawStatements()> &raw, const std::function<void()> &prepare)
{
    const auto makeReady = [&] {
        if (prepare)
            prepare();
        m_till.repaint();
    };
    std::vector<double> samples;
    std::vector<double> rawSamples;
    int mostTrips = 0;
    std::size_t statements = 0;
    for (int i = -warmUpRuns; i < m_options.runs; ++i) {
        m_till.nextSecond();
        makeReady();
        const int tripsBefore = m_store.roundTrips().value_or(0);
        const double workMs = checked(work(), name);
        const int trips = m_store.roundTrips().value_or(0) - tripsBefore;
        makeReady();
        const RawStatements plainWork = raw();
        const double plainMs = rawMs(plainWork, name);
        if (i >= 0) {
            samples.push_back(workMs);
            rawSamples.push_back(plainMs);
            mostTrips = std::max(mostTrips, trips);
            statements = plainWork.size();
        }
    }
    const double plain = median(rawSamples);
    const Limit &limit = m_store.isServer() ? limits.onServer : limits.onFile;
    Line line{name, m_options.items, median(samples), plain, plain > 0.0 ? median(samples) / plain : 0.0, {}, {}};
    if (isLimited())
        line.limit = limit.ratio + limit.plusMs / plain;
    m_lines.push_back(line);
    if (m_store.roundTrips())
        addRoundTrips(mostTrips, statements);
}

void Measuring::addRoundTrips(int most, std::size_t statements)
{
    m_lines.push_back({u"  round trips for it, and statements"_s,
                       m_options.items,
                       {},
                       {},
                       static_cast<double>(most),
                       static_cast<double>(statements),
                       {}});
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
