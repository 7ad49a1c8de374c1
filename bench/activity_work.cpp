// SPDX-License-Identifier: MIT
#include "bench/activity_work.h"

#include "app/activity/activity_search.h"
#include "app/records/sqlite_records.h"
#include "bench/measuring.h"

using namespace Qt::StringLiterals;

namespace harrowby::bench {

namespace {

constexpr int page = 200;
constexpr double pageLimitMs = 50.0;
constexpr double searchLimit = 4.0;
constexpr qint64 limitedEntries = 1'000'000;

RawStatements pageByHand()
{
    return {{"select Dates, SystemUsage from SysUsage where Dates is not null order by Dates desc limit 200",
             {"Dates", "SystemUsage"},
             {}}};
}

/// In the order in which it is shown, each row's text looked through.
RawStatements searchByHand()
{
    return {{"select Dates, SystemUsage from SysUsage where Dates is not null and SystemUsage like '%no such text%' "
             "order by Dates desc",
             {"Dates", "SystemUsage"},
             {}}};
}

} // namespace

std::vector<Line> measureActivity(const ShopFile &shop, qint64 entries, int runs)
{
    const QByteArray count = QByteArray::number(entries);
    // One a minute, as the till writes them.
    require(runRaw(shop.database(),
                   {{"delete from SysUsage", {}, {}},
                    {"insert into SysUsage with recursive n(i) as (select 1 union all select i + 1 from n where i < " +
                         count +
                         ") select case i % 3 when 0 then 'JACK logged in!' else '2 of ART-' || i || ' added!' "
                         "end, datetime('2024-01-01', i || ' minutes'), datetime('2024-01-01', i || ' minutes') "
                         "from n",
                     {},
                     {}}}),
            u"filling the activity log"_s);
    app::SqliteRecords records(shop.database());
    const auto measured = [&](const QString &work, const QString &text, const RawStatements &byHand) {
        BesideRaw times;
        for (int run = -1; run < runs; ++run) { // the first one does not count
            app::ActivityFilter filter;
            filter.text = text;
            const double ms = checked(timed([&] {
                                          app::ActivitySearch search(filter);
                                          const auto found =
                                              search.next(records, page, [](const app::WorkStep &) { return true; });
                                          return found && (found->size() == page) == text.isEmpty();
                                      }),
                                      work);
            const double rawMs = checked(timed([&] { return runRaw(shop.database(), byHand); }), work + u" (raw)"_s);
            if (run >= 0)
                times.add(ms, rawMs);
        }
        return times.line(work, entries);
    };
    std::vector<Line> lines = {measured(u"activity: the first page"_s, {}, pageByHand()),
                               measured(u"activity: a text that is nowhere"_s, u"no such text"_s, searchByHand())};
    if (entries == limitedEntries) {
        lines[0].limit = pageLimitMs / *lines[0].rawMs;
        lines[1].limit = searchLimit;
    }
    return lines;
}

} // namespace harrowby::bench
