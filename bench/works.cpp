// SPDX-License-Identifier: MIT
#include "bench/works.h"

#include "bench/catalogue.h"
#include "bench/plain_window.h"
#include "bench/scan_work.h"
#include "bench/statement_lists.h"
#include "store/statement_texts.h"

using namespace Qt::StringLiterals;

namespace harrowby::bench {

namespace {

constexpr qint64 frameLimitItems = 1'000'000;
constexpr double frameMs = 1000.0 / 60.0;
const auto pressName = u"press a quick-sale button until cart and total are painted, 1 line"_s;

class Bench
{
public:
    Bench(MeasuredStore &store, const WorksOptions &options) :
        m_store(store), m_till(store, options.now), m_measuring(store, options, m_till)
    {
    }

    std::vector<Line> run();
    std::vector<Line> runWithinFrame();

private:
    void measureLoading();
    void measurePress(int cartLines, const QString &name);
    void measureScan();
    void measureWithinFrame();
    void measurePaging();
    void measureCategory();
    void measureDashboard();
    void measureCommit();

    [[nodiscard]] qint64 items() const { return m_measuring.options().items; }
    /// A server's round trips are none of the disk's time.
    [[nodiscard]] bool hasFrameLimit() const { return items() == frameLimitItems && !m_store.isServer(); }
    [[nodiscard]] int offset() const { return m_till.window().state().QuickSalesOffset; }

    MeasuredStore &m_store;
    Till m_till;
    Measuring m_measuring;
};

std::vector<Line> Bench::run()
{
    measureLoading();
    require(m_till.logIn(), u"login"_s);
    measurePress(1, pressName);
    if (hasFrameLimit())
        measureWithinFrame();
    measurePress(50, u"press a quick-sale button until cart and total are painted, 50 lines"_s);
    m_till.emptyCart();
    measurePaging();
    measureCategory();
    measureCommit();
    measureDashboard();
    measureScan();
    if (hasFrameLimit())
        measureWithinFrame();
    return m_measuring.lines();
}

std::vector<Line> Bench::runWithinFrame()
{
    require(m_till.open() && m_till.logIn(), u"login"_s);
    measurePress(1, pressName);
    measureWithinFrame();
    measureScan();
    measureWithinFrame();
    return m_measuring.lines();
}

void Bench::measureLoading()
{
    require(m_till.open(), u"load"_s);
    const PlainWindow plain(m_till.window());
    std::vector<double> plainSamples;
    for (int i = -warmUps(m_measuring.options().runs); i < m_measuring.options().runs; ++i) {
        const double ms = checked(plain.show(), u"plain window"_s);
        if (i >= 0)
            plainSamples.push_back(ms);
    }
    m_measuring.measure(
        u"LoadInventory until the window is painted"_s,
        {{1.5, median(plainSamples)}, {1.3, 2.0 + median(plainSamples)}},
        [this] {
            m_till.close();
            return timed([this] { return m_till.open(); });
        },
        [this] { return loadStatements(m_till.now()); });
    m_measuring.add({u"  a Qt window with as many plain controls"_s, items(), median(plainSamples), {}, {}, {}, {}});
}

void Bench::measurePress(int cartLines, const QString &name)
{
    m_till.emptyCart();
    require(m_till.fillCart(cartLines), u"filling the cart"_s);
    const QString key = m_till.keysInCart().constLast();
    m_measuring.measure(
        name, {{1.5, 2.0}}, [this] { return timed([this] { return m_till.press(m_till.lastButton()); }); },
        [this, key] { return pressStatements(key, m_till.now()); });
}

/// Last, as the banner stays in the window.
void Bench::measureScan()
{
    m_till.emptyCart();
    require(m_till.showQuickSales() && m_till.firstPage() && m_till.fillCart(1), u"filling the cart"_s);
    const QString key = m_till.keysInCart().constLast();
    ScanDesk desk(m_store, m_till);
    const QString code = desk.codeOf(key);
    m_measuring.measure(
        u"a scan's last key until cart and total are painted"_s, {{1.5, 2.0}},
        [&] {
            desk.type(code);
            return timed([&] { return desk.end(); });
        },
        [&] { return ScanDesk::statements(code, key, m_till.now()); });
}

/// Of the press or the scan measured last, in one frame of the screen plus its disk writes.
void Bench::measureWithinFrame()
{
    const QString name = u"  of that, the disk writes"_s;
    const QString key = m_till.keysInCart().constLast();
    const int runs = m_measuring.options().runs;
    std::vector<double> writes;
    writes.reserve(static_cast<std::size_t>(runs));
    for (int i = 0; i < runs; ++i)
        writes.push_back(m_measuring.rawMs(pressWrites(key, m_till.now()), name));
    Line &press = m_measuring.last();
    press.limit = (frameMs + median(writes)) / *press.rawMs;
    m_measuring.add({name, items(), median(writes), {}, {}, {}, {}});
}

void Bench::measurePaging()
{
    // In turns, so that the pages stay the same two.
    const Work turn = [this] {
        const bool forward = offset() == 0;
        return timed([this, forward] { return forward ? m_till.nextPage() : m_till.previousPage(); });
    };
    require(m_till.firstPage(), u"the first page"_s);
    m_measuring.measure(u"page with \"Next\" / \"Prev\" until painted"_s, {{1.5, 2.0}}, turn,
                        [this] { return pageStatements(statements::allCategories, offset()); });
}

void Bench::measureCategory()
{
    int category = 0;
    const auto next = [&category] { return QString::fromLatin1(categoryName(category)); };
    m_measuring.measure(
        u"choose a category until its page is painted"_s, {{1.5, 2.0}},
        [&] {
            category = (category + 1) % categoryCount;
            return timed([&] { return m_till.chooseCategory(next()); });
        },
        [&] { return pageStatements(next(), 0); });
    require(m_till.chooseCategory(statements::allCategories), u"all categories"_s);
}

void Bench::measureCommit()
{
    QStringList keys;
    m_measuring.measure(
        u"commit a cart of 10 lines, from the \"Yes\" to the dashboard"_s, {{1.3, 0.0}},
        [this] { return m_till.commit(); }, [&] { return commitStatements(keys, m_till.now(), offset()); },
        [&] {
            require(m_till.cartLines() > 0 || m_till.fillCart(10), u"filling the cart"_s);
            keys = m_till.keysInCart();
        });
    m_till.emptyCart();
}

void Bench::measureDashboard()
{
    m_measuring.measure(
        u"RefreshDashboard"_s, {{1.3, 0.0}}, [this] { return m_till.refreshDashboard(); },
        [this] { return dashboardStatements(m_till.now(), offset()); });
}

} // namespace

std::vector<Line> measureWorks(MeasuredStore &store, const WorksOptions &options)
{
    return Bench(store, options).run();
}

std::vector<Line> measureWithinFrame(MeasuredStore &store, const WorksOptions &options)
{
    return Bench(store, options).runWithinFrame();
}

Line measurePressGrowth(MeasuredStore &small, MeasuredStore &big, const WorksOptions &options)
{
    const QString name = u"that press, over the same in the smallest shop"_s;
    Till tills[] = {{small, options.now}, {big, options.now}};
    for (Till &till : tills) {
        till.use();
        require(till.open() && till.logIn() && till.fillCart(1), name);
    }
    return measureGrowth(name, options, tills[0], tills[1],
                         [](Till &till) { return timed([&till] { return till.press(till.lastButton()); }); });
}

} // namespace harrowby::bench
