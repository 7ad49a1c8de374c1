// SPDX-License-Identifier: MIT
#include "bench/counter_works.h"

#include "bench/answer_watch.h"
#include "bench/catalogue.h"
#include "bench/counter_statements.h"
#include "store/statement_texts.h"

#include <QPushButton>

using namespace Qt::StringLiterals;

namespace harrowby::bench {

namespace {

constexpr int linesSold = 10;
constexpr int oldPurchases = 5000; ///< entry of the list at which deleting begins
constexpr double longestWaitMs = 100.0;

/// The list is painted anew when it shows another cost.
QString otherCost(const QStringList &row)
{
    const QString cost = u"12.34"_s;
    return row.contains(cost) ? u"12.35"_s : cost;
}

class Counter
{
public:
    Counter(MeasuredStore &store, const WorksOptions &options) :
        m_store(store), m_till(store, options.now), m_measuring(store, options, m_till)
    {
    }

    std::vector<Line> run();

private:
    void measureStockList();
    void measureRefresh();
    void measureSave(const QString &saleCategory, const QString &name);
    void measureReorder();
    void measureSaleCategory();
    void measureSearch();
    void measureUndo();
    void measurePurchaseIds();
    void measureDeletion();
    void addLongestWait(double milliseconds);

    [[nodiscard]] int offset() const { return m_till.window().state().QuickSalesOffset; }
    /// A row that no measured work has touched yet.
    int nextRow();

    MeasuredStore &m_store;
    Till m_till;
    Measuring m_measuring;
    int m_row = 0;
};

std::vector<Line> Counter::run()
{
    require(m_till.openAfresh(), u"login"_s);
    measureUndo();
    measureSaleCategory();
    measureSearch();
    measurePurchaseIds();
    measureDeletion();
    measureStockList();
    measureRefresh();
    measureSave(QString::fromLatin1(categoryName(1)), u"save an edited item"_s);
    measureSave(statements::allCategories, u"save an edited item, every item listed in the custom sale"_s);
    measureReorder();
    return m_measuring.lines();
}

int Counter::nextRow()
{
    constexpr int step = 331;
    m_row = static_cast<int>((m_row + step) % m_measuring.options().items);
    return m_row;
}

void Counter::measureStockList()
{
    m_measuring.measure(
        u"LoadStock into an empty list until it answers a key"_s, {{3.0, 0.0}, walkOnServer},
        [this] { return timed([this] { return m_till.loadStockList(); }); }, stockListStatements,
        [this] { require(m_till.openAfresh(), u"login"_s); });
    require(m_till.loadStockList() && m_till.stockRows() == m_measuring.options().items, u"all rows in the list"_s);
}

void Counter::measureRefresh()
{
    m_measuring.measure(
        u"the same with the refresh button, the list in sight"_s, {{3.0, 0.0}, walkOnServer},
        [this] { return timed([this] { return m_till.refreshStockList(); }); },
        [this] { return stockListStatements() + RawStatements{usageRow(u"Stock List Refreshed."_s, m_till.now())}; });
}

void Counter::measureSave(const QString &saleCategory, const QString &name)
{
    require(m_till.showCustomSales() && m_till.chooseSaleCategory(saleCategory) && m_till.loadStockList(), name);
    int row = 0;
    m_measuring.measure(
        name, {{1.3, 2.0}}, [this] { return timed([this] { return m_till.saveStock(); }); },
        [&] { return saveStatements(row, m_till.stockRow(row), saleCategory, m_till.now()); },
        [&] {
            row = nextRow();
            require(m_till.editStock(row, otherCost(m_till.stockRow(row))), name);
        });
}

void Counter::measureReorder()
{
    int row = 0;
    m_measuring.measure(
        u"reorder an item"_s, {{1.3, 2.0}}, [this] { return timed([this] { return m_till.reorder(); }); },
        [&] { return reorderStatements(row, m_till.stockRow(row), m_till.now(), offset()); },
        [&] {
            row = nextRow();
            require(m_till.enterReorder(row, 1), u"choosing an item to reorder"_s);
        });
}

void Counter::measureSaleCategory()
{
    require(m_till.showCustomSales(), u"the custom sale"_s);
    int category = 0;
    const auto name = [&category] { return QString::fromLatin1(categoryName(category)); };
    m_measuring.measure(
        u"choose a category in the custom sale until its items are listed"_s, {{3.0, 2.0}},
        [&] { return timed([&] { return m_till.chooseSaleCategory(name()); }); },
        [&] { return saleCategoryStatements(name()); }, [&] { category = (category + 1) % categoryCount; });
}

void Counter::measureSearch()
{
    const QString text = u"0079"_s; // in the IDs and the names of some items
    m_measuring.measure(
        u"search until the items found are painted"_s, {{1.5, 2.0}},
        [&] { return timed([&] { return m_till.search(text); }); }, [&] { return m_store.search(text); },
        [this] { m_till.window().controls().Command9->click(); });
}

void Counter::measureUndo()
{
    QStringList keys;
    m_measuring.measure(
        u"undo of a purchase of 10 lines"_s, {{1.3, 2.0}},
        [this] { return timed([this] { return m_till.undoPurchase(); }); },
        [&] { return undoStatements(m_till.window().state().last.LastPurchaseID, keys, m_till.now(), offset()); },
        [&] {
            m_till.nextSecond();
            require(m_till.cartLines() > 0 || m_till.fillCart(linesSold), u"filling the cart"_s);
            keys = m_till.keysInCart();
            require(m_till.sell(), u"a purchase"_s);
        });
    m_till.emptyCart();
}

void Counter::measurePurchaseIds()
{
    double longest = 0.0;
    m_measuring.measure(
        u"fill the list of purchase IDs"_s, {{3.0, 0.0}, walkOnServer},
        [&] {
            const AnswerWatch answers(m_store.isServer());
            const double ms = timed([this] { return m_till.loadPurchaseIds(); });
            longest = std::max(longest, answers.longestMs());
            return ms;
        },
        purchaseIdStatements, [this] { require(m_till.showQuickSales(), u"the quick sales"_s); });
    addLongestWait(longest);
}

void Counter::addLongestWait(double milliseconds)
{
    Line line{
        u"  the longest wait for an answer meanwhile"_s, m_measuring.options().items, milliseconds, {}, {}, {}, {}};
    if (m_measuring.isLimited())
        line.limit = longestWaitMs;
    m_measuring.add(line);
}

void Counter::measureDeletion()
{
    require(m_till.loadPurchaseIds(), u"the settings"_s);
    const int runs = m_measuring.options().runs;
    QStringList ids = m_till.purchaseIds(oldPurchases, 2 * (runs + warmUps(runs)));
    QString id;
    QStringList keys;
    m_measuring.measure(
        u"delete an old purchase"_s, {{1.3, 2.0}}, [this] { return timed([this] { return m_till.deletePurchase(); }); },
        [&] { return deletePurchaseStatements(id, keys, m_till.now(), offset()); },
        [&] {
            keys = m_till.keysInCart(); // those of the purchase that the till has taken back
            id = ids.takeFirst();
            m_till.pickPurchase(id);
        });
    m_till.emptyCart();
}

} // namespace

std::vector<Line> measureCounter(MeasuredStore &store, const WorksOptions &options)
{
    return Counter(store, options).run();
}

Line measureListGrowth(MeasuredStore &small, MeasuredStore &big, const WorksOptions &options)
{
    const QString name = u"LoadStock, over the same of 10,000 items"_s;
    Till tills[] = {{small, options.now}, {big, options.now}};
    for (Till &till : tills) {
        till.use();
        require(till.openAfresh(), name);
    }
    return measureGrowth(name, options, tills[0], tills[1], [](Till &till) {
        require(till.openAfresh(), QStringLiteral("login"));
        return timed([&till] { return till.loadStockList(); });
    });
}

} // namespace harrowby::bench
