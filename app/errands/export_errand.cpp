// SPDX-License-Identifier: MIT
#include "app/errands/export_errand.h"

#include "app/activity/activity_export.h"
#include "app/errands/form_options.h"
#include "app/export/export.h"
#include "app/records/deeds.h"
#include "app/start/start_message.h"

#include <QFileInfo>

#include <functional>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

using Reason = std::optional<QString>;

/// In the store, for its activity. The file is good without it.
void note(const ErrandStore &store, const QString &what)
{
    store.beginAction();
    if (const auto failure = Deeds(store.records, commandLinePlace).add({deed::exported, commandLineUser(), what}))
        tellOfErrand(
            u"The store could not note that this list was exported (%1). The file is good."_s.arg(failure->reason));
}

/// What a list is, and what the store notes of it.
struct ErrandList
{
    std::function<ExportEnd(const QString &store, const QString &file, const WorkWatch &watch)> write;
    std::function<QString(const ExportEnd &end, const QString &file)> words;
};

ErrandList listOf(const ExportRequest &request)
{
    return {[request](const QString &store, const QString &file, const WorkWatch &watch) {
                return exportList(store, file, request, watch);
            },
            [request](const ExportEnd &end, const QString &file) { return exportDeedWords(request, end, file); }};
}

ErrandList activityList(const ExportRequest &request)
{
    ActivityFilter filter;
    filter.days = {request.from, request.to};
    return {[filter, form = request.form](const QString &store, const QString &file, const WorkWatch &watch) {
                return exportActivity(store, file, form, filter, watch);
            },
            [](const ExportEnd &end, const QString &file) { return activityDeedWords(end, file); }};
}

ExitCode exportFrom(const ErrandStore &store, const ErrandList &list, const QString &file)
{
    const ExportEnd end = list.write(store.address, file, [](const WorkStep &) { return true; });
    if (!storeIsStillThere(store))
        return ExitCode::ErrandFailed;
    if (end.outcome != ExportEnd::Outcome::Done) {
        tellOfErrand(end.problem);
        return ExitCode::ErrandFailed;
    }
    const QString done = list.words(end, file);
    note(store, done);
    printOut(done + u'\n');
    return ExitCode::Done;
}

std::optional<QDate> dayNamed(const QString &text)
{
    const QDate today = QDate::currentDate();
    if (text == u"today"_s)
        return today;
    if (text == u"yesterday"_s)
        return today.addDays(-1);
    const QDate day = QDate::fromString(text, Qt::ISODate);
    return day.isValid() && day.toString(Qt::ISODate) == text ? std::optional(day) : std::nullopt;
}

Reason readDay(const ErrandLine &line, const QString &option, QDate &day)
{
    if (!line.options.contains(option))
        return {};
    const auto named = dayNamed(line.options.value(option));
    if (!named)
        return u"%1 takes a day, such as 2026-11-30, today or yesterday."_s.arg(option);
    day = *named;
    return {};
}

Reason readDays(const ErrandLine &line, ExportRequest &request, bool hasDays)
{
    for (const auto &[option, day] : {std::pair(u"--from"_s, &request.from), std::pair(u"--to"_s, &request.to)}) {
        if (const Reason refused = readDay(line, option, *day))
            return refused;
    }
    const bool isLimited = request.from.isValid() || request.to.isValid();
    if (isLimited && !hasDays)
        return u"--from and --to go with purchases and activity only."_s;
    if (request.from.isValid() && request.to.isValid() && request.from > request.to)
        return u"--from is later than --to."_s;
    return {};
}

} // namespace

Result<Errand, QString> readExportErrand(const ErrandLine &line)
{
    ExportRequest request;
    const bool isActivity = line.values.at(0).compare(u"activity"_s, Qt::CaseInsensitive) == 0;
    const auto kind = exportKindNamed(line.values.at(0));
    if (!kind && !isActivity)
        return Unexpected(u"--export takes items, categories, codes, purchases or activity, then a file."_s);
    request.kind = kind.value_or(ExportKind::Purchases);
    if (const Reason refused = readFormOptions(line, request.form))
        return Unexpected(*refused);
    if (const Reason refused = readDays(line, request, isActivity || kind == ExportKind::Purchases))
        return Unexpected(*refused);
    const ErrandList list = isActivity ? activityList(request) : listOf(request);
    return Errand([list, file = QFileInfo(line.values.at(1)).absoluteFilePath()](const ErrandStore &store) {
        return exportFrom(store, list, file);
    });
}

} // namespace harrowby::app
