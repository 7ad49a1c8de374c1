// SPDX-License-Identifier: MIT
#include "bench/works.h"

#include "basic/item_key.h"
#include "bench/catalogue.h"
#include "bench/plain_window.h"
#include "bench/statement_lists.h"
#include "bench/till.h"
#include "store/statements.h"
#include "ui/widgets/row_list.h"
#include "ui/widgets/text_table_model.h"

#include <functional>
#include <stdexcept>

using namespace Qt::StringLiterals;

namespace harrowby::bench {

namespace {

/// The limits hold at this size; other sizes show how the cost grows.
constexpr qint64 LimitedItems = 100'000;
constexpr qint64 FrameLimitItems = 1'000'000;
constexpr double FrameMs = 1000.0 / 60.0;
constexpr int WarmUpRuns = 3;
constexpr int PageSize = 9;

/// A ratio and a time that may come on top of it.
struct Limit
{
    double ratio = 0.0;
    double plusMs = 0.0;
};

/// Does the work once and returns its time; below 0 when it failed.
using Work = std::function<double()>;

double checked(double milliseconds, const QString &work)
{
    if (milliseconds < 0.0)
        throw std::runtime_error(("Failed: "_L1 + work).toStdString());
    return milliseconds;
}

double timed(const std::function<bool()> &work)
{
    const Stopwatch watch;
    return work() ? watch.milliseconds() : -1.0;
}

class Bench
{
public:
    Bench(sqlite3 *database, const WorksOptions &options) :
        m_database(database), m_options(options), m_till(database, options.now)
    {
    }

    std::vector<Line> run();

private:
    void measure(const QString &name, const Limit &limit, const Work &work, const std::function<RawStatements()> &raw);
    void measureLoading();
    void measurePress(int cartLines, const QString &name);
    void measurePressWithinFrame();
    void measurePaging();
    void measureCategory();
    void measureDashboard();
    void measureCommit();

    [[nodiscard]] Line line(const QString &name, double medianMs, double rawMs) const;
    [[nodiscard]] double rawMs(const RawStatements &statements, const QString &name);
    [[nodiscard]] QStringList keysInCart() const;
    [[nodiscard]] int offset() const { return m_till.window().state().QuickSalesOffset; }
    void require(bool done, const QString &what) const { static_cast<void>(checked(done ? 0.0 : -1.0, what)); }

    sqlite3 *m_database;
    WorksOptions m_options;
    Till m_till;
    std::vector<Line> m_lines;
};

Line Bench::line(const QString &name, double medianMs, double rawMs) const
{
    return {name, m_options.items, medianMs, rawMs, rawMs > 0.0 ? medianMs / rawMs : 0.0, {}, {}};
}

double Bench::rawMs(const RawStatements &statements, const QString &name)
{
    return checked(timed([&] { return runRaw(m_database, statements); }), name + u" (raw)"_s);
}

void Bench::measure(const QString &name, const Limit &limit, const Work &work,
                    const std::function<RawStatements()> &raw)
{
    std::vector<double> samples;
    std::vector<double> rawSamples;
    for (int i = -WarmUpRuns; i < m_options.runs; ++i) {
        m_till.nextSecond();
        m_till.repaint();
        const double workMs = checked(work(), name);
        m_till.repaint();
        const double plainMs = rawMs(raw(), name);
        if (i >= 0) {
            samples.push_back(workMs);
            rawSamples.push_back(plainMs);
        }
    }
    Line result = line(name, median(samples), median(rawSamples));
    if (m_options.items == LimitedItems)
        result.limit = limit.ratio + limit.plusMs / *result.rawMs;
    m_lines.push_back(result);
}

std::vector<Line> Bench::run()
{
    measureLoading();
    require(m_till.logIn(), u"login"_s);
    measurePress(1, QString::fromLatin1(PressWork));
    if (m_options.items == FrameLimitItems)
        measurePressWithinFrame();
    measurePress(50, u"press a quick-sale button until cart and total are painted, 50 lines"_s);
    m_till.emptyCart();
    measurePaging();
    measureCategory();
    measureCommit();
    measureDashboard();
    return m_lines;
}

void Bench::measureLoading()
{
    require(m_till.open(), u"load"_s);
    const PlainWindow plain(m_till.window());
    std::vector<double> plainSamples;
    for (int i = -WarmUpRuns; i < m_options.runs; ++i) {
        const double ms = checked(plain.show(), u"plain window"_s);
        if (i >= 0)
            plainSamples.push_back(ms);
    }
    measure(
        u"LoadInventory until the window is painted"_s, {1.5, median(plainSamples)},

        [this] {
            m_till.close();
            return timed([this] { return m_till.open(); });
        },
        [this] { return loadStatements(m_till.now()); });
    m_lines.push_back(
        {u"  a Qt window with as many plain controls"_s, m_options.items, median(plainSamples), {}, {}, {}, {}});
}

QStringList Bench::keysInCart() const
{
    const TextTableModel &cart = m_till.window().controls().LV3->rows();
    QStringList keys;
    for (int row = 0; row < cart.rowCount(); ++row)
        keys.append(cart.text(row, 0));
    return keys;
}

void Bench::measurePress(int cartLines, const QString &name)
{
    m_till.emptyCart();
    require(m_till.fillCart(cartLines), u"filling the cart"_s);
    const QString key = keysInCart().constLast();
    measure(
        name, {1.5, 2.0}, [this] { return timed([this] { return m_till.press(m_till.lastButton()); }); },
        [this, key] { return pressStatements(key, m_till.now()); });
}

void Bench::measurePressWithinFrame()
{
    const QString name = u"  of that, the disk writes"_s;
    const QString key = keysInCart().constLast();
    std::vector<double> writes;
    for (int i = 0; i < m_options.runs; ++i)
        writes.push_back(rawMs(pressWrites(key, m_till.now()), name));
    Line &press = m_lines.back();
    press.limit = (FrameMs + median(writes)) / *press.rawMs;
    m_lines.push_back({name, m_options.items, median(writes), {}, {}, {}, {}});
}

void Bench::measurePaging()
{
    // In turns, so that the pages stay the same two.
    const Work turn = [this] {
        const bool forward = offset() == 0;
        return timed([this, forward] { return forward ? m_till.nextPage() : m_till.previousPage(); });
    };
    require(m_till.firstPage(), u"the first page"_s);
    measure(u"page with \"Next\" / \"Prev\" until painted"_s, {1.5, 2.0}, turn,
            [this] { return pageStatements(statements::allCategories, offset()); });
}

void Bench::measureCategory()
{
    int category = 0;
    const auto next = [&category] { return QString::fromLatin1(categoryName(category)); };
    measure(
        u"choose a category until its page is painted"_s, {1.5, 2.0},
        [&] {
            category = (category + 1) % CategoryCount;
            return timed([&] { return m_till.chooseCategory(next()); });
        },
        [&] { return pageStatements(next(), 0); });
    require(m_till.chooseCategory(statements::allCategories), u"all categories"_s);
}

void Bench::measureCommit()
{
    QStringList keys;
    measure(
        u"commit a cart of 10 lines, from the \"Yes\" to the dashboard"_s, {1.3, 0.0},
        [&] {
            require(m_till.fillCart(10), u"filling the cart"_s);
            keys = keysInCart();
            return m_till.commit();
        },
        [&] { return commitStatements(keys, m_till.now(), offset()); });
}

void Bench::measureDashboard()
{
    measure(
        u"RefreshDashboard"_s, {1.3, 0.0}, [this] { return m_till.refreshDashboard(); },
        [this] { return dashboardStatements(m_till.now(), offset()); });
}

} // namespace

std::vector<Line> measureWorks(sqlite3 *database, const WorksOptions &options)
{
    return Bench(database, options).run();
}

Line measurePressGrowth(sqlite3 *small, sqlite3 *big, const WorksOptions &options)
{
    const QString name = u"that press, over the same in the smallest shop"_s;
    Till tills[] = {{small, options.now}, {big, options.now}};
    std::vector<double> samples[2];
    for (Till &till : tills) {
        till.use();
        const bool ready = till.open() && till.logIn() && till.fillCart(1);
        static_cast<void>(checked(ready ? 0.0 : -1.0, name));
    }
    for (int i = -WarmUpRuns; i < options.runs; ++i) {
        for (std::size_t which : {0U, 1U}) {
            Till &till = tills[which];
            till.use();
            till.nextSecond();
            till.repaint();
            const double ms = checked(timed([&till] { return till.press(till.lastButton()); }), name);
            if (i >= 0)
                samples[which].push_back(ms);
        }
    }
    const double smallMs = median(samples[0]);
    const double bigMs = median(samples[1]);
    return {name, options.items, bigMs, smallMs, bigMs / smallMs, {}, {}};
}

} // namespace harrowby::bench
