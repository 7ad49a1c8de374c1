// SPDX-License-Identifier: MIT
#pragma once

#include "bench/raw_statements.h"
#include "bench/report.h"
#include "bench/stopwatch.h"
#include "bench/till.h"

#include <QDateTime>

#include <algorithm>
#include <functional>

namespace harrowby::bench {

/// The limits hold at this size; other sizes show how the cost grows.
inline constexpr qint64 limitedItems = 100'000;
/// First runs that do not count.
[[nodiscard]] constexpr int warmUps(int runs)
{
    return std::min(runs, 3);
}

struct WorksOptions
{
    qint64 items = 0;
    int runs = 0;
    QDateTime now;
};

/// A ratio and a time that may come on top of it.
struct Limit
{
    double ratio = 0.0;
    double plusMs = 0.0;
};

struct Limits
{
    Limit onFile;
    Limit onServer = {1.3, 2.0};
};

/// Of a list of very many rows.
inline constexpr Limit walkOnServer{2.0, 0.0};

/// Does the work once and returns its time; below 0 when it failed.
using Work = std::function<double()>;

/// A work's times, and those of the same statements by hand.
class BesideRaw
{
public:
    void add(double ms, double rawMs);
    [[nodiscard]] Line line(const QString &work, qint64 items) const;
    /// With the limit, where `items` are limitedItems.
    [[nodiscard]] Line line(const QString &work, qint64 items, const Limit &limit) const;

private:
    std::vector<double> m_samples;
    std::vector<double> m_rawSamples;
};

/// The time; throws std::runtime_error when the work failed.
double checked(double milliseconds, const QString &work);
/// Throws std::runtime_error when something did not do what it should.
void require(bool done, const QString &what);
/// The work's time; below 0 when it returns false.
[[nodiscard]] double timed(const std::function<bool()> &work);

/// Measures pieces of work of one till, each in turns with its raw statements on the same store.
class Measuring
{
public:
    Measuring(MeasuredStore &store, const WorksOptions &options, Till &till) :
        m_store(store), m_options(options), m_till(till)
    {
    }

    /// `raw` is asked after each run of the work, and `prepare` before each of the two. Adds a line, and where round
    /// trips are counted one of these.
    void measure(const QString &name, const Limits &limits, const Work &work, const std::function<RawStatements()> &raw,
                 const std::function<void()> &prepare = {});
    [[nodiscard]] double rawMs(const RawStatements &statements, const QString &name) const;
    void add(const Line &line) { m_lines.push_back(line); }
    Line &last() { return m_lines.back(); }
    [[nodiscard]] const std::vector<Line> &lines() const { return m_lines; }
    [[nodiscard]] const WorksOptions &options() const { return m_options; }
    [[nodiscard]] bool isLimited() const { return m_options.items == limitedItems; }

private:
    void addRoundTrips(int most, std::size_t statements);

    MeasuredStore &m_store;
    WorksOptions m_options;
    Till &m_till;
    std::vector<Line> m_lines;
};

/// How a piece of work grows from a small shop to a big one. The two tills work in turns, as the machine and its disk
/// are faster at one time than at another. The line's raw time is the small shop's.
[[nodiscard]] Line measureGrowth(const QString &name, const WorksOptions &options, Till &small, Till &big,
                                 const std::function<double(Till &)> &work);

} // namespace harrowby::bench
