// SPDX-License-Identifier: MIT
#include "bench/server_works.h"

#include "bench/bench_server.h"
#include "bench/counter_works.h"
#include "bench/hold_works.h"
#include "bench/report_work.h"
#include "bench/resident.h"
#include "bench/walk_work.h"
#include "bench/works.h"

#include <QTextStream>

#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::bench {

namespace {

constexpr std::chrono::milliseconds farAway{1};
/// As on a file.
constexpr double residentLimitMb = 40.0;
constexpr double stockListLimitMb = 120.0;

class ServerBench
{
public:
    ServerBench(const ShopFile &shop, WorksOptions options) : m_options(std::move(options)), m_server(shop) {}

    std::vector<Line> run();

private:
    void measure(ServerShop &shop);
    void add(const std::vector<Line> &lines);
    void addResident(const QString &name, const char *window, double limitMb);

    WorksOptions m_options;
    BenchServer m_server;
    QString m_place;
    std::vector<Line> m_lines;
};

std::vector<Line> ServerBench::run()
{
    const std::unique_ptr<ServerShop> alone = m_server.shop(u"a server alone"_s);
    measure(*alone);
    add(measureReport(*alone, m_options));
    addResident(u"resident memory, logged in, over an empty Qt window"_s, loggedInTill, residentLimitMb);
    addResident(u"the same with the stock list filled"_s, tillWithStockList, stockListLimitMb);
    m_server.addStandby();
    measure(*m_server.shop(u"with a synchronous standby"_s));
    measure(*m_server.shopBehind(u"with a synchronous standby, a millisecond away"_s, farAway));
    return m_lines;
}

void ServerBench::measure(ServerShop &shop)
{
    m_place = shop.place();
    QTextStream(stderr) << "Measuring " << m_place << ", " << m_options.runs << " runs each ..." << Qt::endl;
    add({measureWalk(shop, m_options)});
    add(measureWorks(shop, m_options));
    add(measureCounter(shop, m_options));
    add(measureHold(shop, m_options));
}

void ServerBench::add(const std::vector<Line> &lines)
{
    for (const Line &line : lines)
        m_lines.emplace_back(line).place = m_place;
}

void ServerBench::addResident(const QString &name, const char *window, double limitMb)
{
    Line line{name, m_options.items, {}, {}, {}, {}, {}};
    line.megabytes = residentMegabytesOverEmptyWindow(QString::fromLatin1(window), m_server.conninfo());
    if (m_options.items == limitedItems)
        line.limit = limitMb;
    add({line});
}

} // namespace

std::vector<Line> measureServer(const ShopFile &shop, const WorksOptions &options)
{
    return ServerBench(shop, options).run();
}

std::unique_ptr<MeasuredStore> serverShop(const QString &conninfo)
{
    return std::make_unique<ServerShop>(QString(), conninfo);
}

} // namespace harrowby::bench
