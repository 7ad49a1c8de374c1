// SPDX-License-Identifier: MIT
#include "app/activity/activity_export.h"

#include "app/csv/csv_writer.h"
#include "app/shop/failure_text.h"
#include "basic/numbers.h"

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr int entriesAtOnce = 2000;

QString notRead(const DbFailure &failure)
{
    const bool isOfServer = !failure.engineState.isEmpty();
    return u"What happened could not be read: %1."_s.arg(failure.reason) +
           (isOfServer ? u'\n' + failureAdvice(failure) : QString());
}

std::optional<ExportStop> writeActivity(Records &records, CsvWriter &out, const ActivityFilter &filter,
                                        const WorkWatch &watch)
{
    out.row({u"Time"_s, u"Kind"_s, u"User"_s, u"Place"_s, u"What"_s});
    ActivitySearch search(filter);
    bool goesOn = true;
    const WorkWatch watchAll = [&](const WorkStep &step) {
        goesOn = watch(step);
        return goesOn;
    };
    while (!search.isAtEnd() && goesOn) {
        const auto entries = search.next(records, entriesAtOnce, watchAll);
        if (!entries)
            return ExportStop{false, notRead(entries.error())};
        for (const ActivityEntry &entry : *entries)
            out.row({entry.when, titleOf(entry.kind), entry.who, entry.place, entry.what});
        goesOn = goesOn && watch({u"The list is being written \u2026"_s, WorkStep::unknown});
    }
    return goesOn ? std::nullopt : std::optional(ExportStop{true, {}});
}

} // namespace

ExportEnd exportActivity(const QString &store, const QString &target, const CsvForm &form, const ActivityFilter &filter,
                         const WorkWatch &watch)
{
    const ExportRows rows = [&filter](StoreRecords &source, CsvWriter &out, const WorkWatch &goesOn) {
        return writeActivity(source.records(), out, filter, goesOn);
    };
    return exportRows(store, target, form, rows, watch);
}

QString proposedActivityName(const ActivityDays &days, const QDate &today)
{
    const auto text = [](const QDate &day) { return day.toString(Qt::ISODate); };
    if (days.from.isValid() && days.to.isValid() && days.from != days.to)
        return u"activity-%1-to-%2.csv"_s.arg(text(days.from), text(days.to));
    return u"activity-%1.csv"_s.arg(text(days.from.isValid() ? days.from : today));
}

QString activityDeedWords(const ExportEnd &end, const QString &target)
{
    const QString rows = end.rows == 1 ? u"1 row"_s : u"%1 rows"_s.arg(formatCount(static_cast<double>(end.rows)));
    return u"Activity, %1, to %2"_s.arg(rows, target);
}

} // namespace harrowby::app
