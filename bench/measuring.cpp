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

void BesideRaw::add(double ms, double rawMs)
{
    m_samples.push_back(ms);
    m_rawSamples.push_back(rawMs);
}

Line BesideRaw::line(const QString &work, qint64 items) const
{
    const double ms = median(m_samples);
    const double raw = median(m_rawSamples);
    return {work, items, ms, raw, raw > 0.0 ? ms / raw : 0.0, {}, {}};
}

Line BesideRaw::line(const QString &work, qint64 items, const Limit &limit) const
{
    Line line = this->line(work, items);
    if (items == limitedItems)
        line.limit = limit.ratio + limit.plusMs / *line.rawMs;
    return line;
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
    BesideRaw times;
    int mostTrips = 0;
    std::size_t statements = 0;
    for (int i = -warmUps(m_options.runs); i < m_options.runs; ++i) {
        m_till.nextSecond();
        makeReady();
        const int tripsBefore = m_store.roundTrips().value_or(0);
        const double workMs = checked(work(), name);
        const int trips = m_store.roundTrips().value_or(0) - tripsBefore;
        makeReady();
        const RawStatements plainWork = raw();
        const double plainMs = rawMs(plainWork, name);
        if (i >= 0) {
            times.add(workMs, plainMs);
            mostTrips = std::max(mostTrips, trips);
            statements = plainWork.size();
        }
    }
    m_lines.push_back(times.line(name, m_options.items, m_store.isServer() ? limits.onServer : limits.onFile));
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
    for (int i = -warmUps(options.runs); i < options.runs; ++i) {
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
