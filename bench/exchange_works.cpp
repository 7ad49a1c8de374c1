// SPDX-License-Identifier: MIT
#include "bench/exchange_works.h"

#include "app/catalogue/catalogue_import.h"
#include "app/catalogue/import_columns.h"
#include "app/csv/csv_guess.h"
#include "app/export/export.h"
#include "app/records/deeds.h"
#include "app/records/file_records.h"
#include "bench/measuring.h"
#include "bench/raw_import.h"

#include <QDebug>
#include <QTemporaryDir>

#include <sqlite3.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <thread>

using namespace Qt::StringLiterals;

namespace harrowby::bench {

namespace {

constexpr double importLimit = 2.0;
constexpr double exportLimit = 4.0;
constexpr double tillLimitMs = 2'000.0;
constexpr int turns = 3; ///< of the imports beside a till
constexpr auto betweenSales = std::chrono::milliseconds(5);

bool carryOn(const app::WorkStep &)
{
    return true;
}

class ExchangeBench
{
public:
    ExchangeBench(QString path, const ShopFile &shop, qint64 items, int runs);

    std::vector<Line> run();

private:
    /// The price list of a turn: each item costs something else than in the one before.
    [[nodiscard]] QByteArray priceList(int turn) const;
    [[nodiscard]] bool import(const QByteArray &text);
    [[nodiscard]] double longestWait(const QByteArray &text);
    [[nodiscard]] bool sell() const;
    [[nodiscard]] Line measured(const QString &work, double limit, const std::function<bool(int)> &ours,
                                const std::function<bool(int)> &byHand);
    [[nodiscard]] sqlite3 *own() const { return m_own->database(); }

    QString m_path;
    const ShopFile &m_shop;
    qint64 m_items;
    int m_runs;
    QTemporaryDir m_copies;
    std::unique_ptr<app::FileRecords> m_own;
    QByteArrayList m_keys; ///< of each item: "ID;NAME;CATEGORY;"
};

ExchangeBench::ExchangeBench(QString path, const ShopFile &shop, qint64 items, int runs) :
    m_path(std::move(path)), m_shop(shop), m_items(items), m_runs(runs), m_copies(m_path + u"-copies-XXXXXX"_s)
{
    auto own = app::FileRecords::open(m_path, app::Access::Write);
    require(own.has_value() && m_copies.isValid(), u"opening the store once more"_s);
    m_own = *std::move(own);
    const auto keep = [](void *keys, int, char **cells, char **) {
        static_cast<QByteArrayList *>(keys)->append(cells[0]);
        return 0;
    };
    require(sqlite3_exec(m_shop.database(),
                         "select StockID || ';' || StockName || ';' || StockCategory || ';' from StockList", keep,
                         &m_keys, nullptr) == SQLITE_OK,
            u"reading the items"_s);
    sqlite3_busy_timeout(m_shop.database(), 20'000);
}

QByteArray ExchangeBench::priceList(int turn) const
{
    QByteArray text = "StockID;StockName;StockCategory;StockCost;StockReorderLevel\n";
    for (qsizetype item = 0; item < m_keys.size(); ++item) {
        const auto cost = static_cast<double>(item % 900 + turn % 2) + 0.25;
        text += m_keys.at(item) + QByteArray::number(cost, 'f', 2) + ";10\n";
    }
    return text;
}

bool ExchangeBench::import(const QByteArray &text)
{
    app::ImportDesk desk;
    desk.user = desk.who = u"JILL"_s;
    desk.place = app::officePlace;
    desk.store = m_path;
    desk.backupFolder = m_copies.path();
    app::CatalogueImport import(m_own->records(), desk);
    app::ImportChoices choices;
    choices.form = app::guessForm(text).form;
    choices.columns = app::matchColumns(choices.kind, app::headingsOf(text, choices.form));
    const app::ImportFile file = {u"prices.csv"_s, text, u"a hash"_s};
    const auto staged = import.stage(file, choices, carryOn);
    if (!staged)
        qWarning().noquote() << staged.error().words;
    if (!staged || staged->counts.changed + staged->counts.unchanged != m_items)
        return false;
    const auto outcome = import.apply(staged->id, false, nullptr, carryOn);
    if (!outcome)
        qWarning().noquote() << outcome.error().words;
    return outcome && outcome->done.changed == staged->counts.changed;
}

bool ExchangeBench::sell() const
{
    return sqlite3_exec(m_shop.database(),
                        "update StockList set StockAvailable = StockAvailable - 1 where StockID = 'ART-0000001';"
                        "insert into PurchaseCart values ('BENCH', '1 x ART-0000001  |  ARTICLE = 4.50', 1, 4.5, "
                        "'260305120000', 'JACK')",
                        nullptr, nullptr, nullptr) == SQLITE_OK;
}

/// In milliseconds: two statements of a sale, each as its own commit, while a list is compared and imported.
double ExchangeBench::longestWait(const QByteArray &text)
{
    std::atomic<bool> hasEnded = false;
    bool isDone = false;
    std::jthread office([&] {
        isDone = import(text);
        hasEnded = true;
    });
    double longest = 0.0;
    while (!hasEnded) {
        longest = std::max(longest, checked(timed([this] { return sell(); }), u"a sale beside an import"_s));
        std::this_thread::sleep_for(betweenSales);
    }
    office.join();
    require(isDone, u"import beside a till"_s);
    return longest;
}

Line ExchangeBench::measured(const QString &work, double limit, const std::function<bool(int)> &ours,
                             const std::function<bool(int)> &byHand)
{
    BesideRaw times;
    for (int turn = -1; turn < m_runs; ++turn) { // the first one does not count
        const double ms = checked(timed([&] { return ours(2 * turn); }), work);
        require(forgetImports(own()), u"emptying the tables of imports"_s);
        const double rawMs = checked(timed([&] { return byHand(2 * turn + 1); }), work + u" by hand"_s);
        require(forgetImports(own()), u"emptying the tables of imports"_s);
        if (turn >= 0)
            times.add(ms, rawMs);
    }
    return times.line(work, m_items, {limit, 0.0});
}

std::vector<Line> ExchangeBench::run()
{
    std::vector<Line> lines;
    const QByteArray lists[] = {priceList(0), priceList(1)};
    const QString copy = m_copies.filePath(u"by hand.db"_s);
    lines.push_back(measured(
        u"compare and import a list of all items, with a checked backup"_s, importLimit,
        [&](int turn) { return import(lists[turn & 1]); },
        [&](int turn) { return importByHand(own(), lists[turn & 1], copy); }));
    double longest = 0.0;
    for (int turn = 0; turn < turns; ++turn)
        longest = std::max(longest, longestWait(lists[turn % 2]));
    Line wait{u"longest that a till's sale waits meanwhile"_s, m_items, longest, {}, {}, {}, {}};
    if (m_items == limitedItems)
        wait.limit = tillLimitMs;
    lines.push_back(wait);
    require(forgetImports(own()), u"emptying the tables of imports"_s);
    app::ExportRequest request;
    request.kind = app::ExportKind::Items;
    lines.push_back(measured(
        u"export all items"_s, exportLimit,
        [&](int) {
            return app::exportList(m_path, m_copies.filePath(u"items.csv"_s), request, carryOn).outcome ==
                   app::ExportEnd::Outcome::Done;
        },
        [&](int) { return exportByHand(own(), m_copies.filePath(u"by hand.csv"_s)); }));
    return lines;
}

} // namespace

std::vector<Line> measureExchange(const QString &path, const ShopFile &shop, qint64 items, int runs)
{
    return ExchangeBench(path, shop, items, runs).run();
}

} // namespace harrowby::bench
