// SPDX-License-Identifier: MIT
#include "app/activity/activity_source.h"

#include "app/records/deeds.h"
#include "basic/dates.h"
#include "basic/text.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

/// The first page is what a person sees; those behind it are looked through.
constexpr int firstRows = 300;
constexpr int laterRows = 5000;

QString shownTime(const QString &record)
{
    const QDateTime time = timeOfRecord(record);
    return time.isValid() ? usageTime(time.toLocalTime()) : record;
}

/// Conditions on the times of the program's own tables, which are in UTC.
QList<RecordStatement> within(const ActivityDays &days, const QString &column)
{
    QList<RecordStatement> conditions;
    if (days.from.isValid())
        conditions << RecordStatement{column + u" >= ?"_s, {recordTime(days.from.startOfDay())}};
    if (days.to.isValid())
        conditions << RecordStatement{column + u" < ?"_s, {recordTime(days.to.addDays(1).startOfDay())}};
    return conditions;
}

ActivityEntry logEntry(const RecordRow &row)
{
    const QString text = recordText(row.at(1));
    LogMeaning meaning = meaningOfLog(text);
    return {recordText(row.at(0)), meaning.kind, std::move(meaning.who), u"till"_s, text};
}

} // namespace

Records::Answer<const ActivityEntry *> ActivitySource::head(Records &records)
{
    while (m_entries.empty() && !m_isAtEnd) {
        if (const auto failure = read(records))
            return Unexpected(*failure);
    }
    return m_entries.empty() ? nullptr : &m_entries.front();
}

std::optional<DbFailure> ActivitySource::read(Records &records)
{
    const int most = m_hasBegun ? laterRows : firstRows;
    const RecordStatement page = nextPage(most);
    const auto rows = m_form.table != nullptr ? records.read(*m_form.table, page) : records.read(page);
    if (!rows)
        return rows.error();
    for (const RecordRow &row : *rows) {
        follow(row.constFirst());
        m_entries.push_back(m_form.entry(row));
    }
    m_isAtEnd = rows->size() < most;
    m_hasBegun = true;
    return {};
}

/// By the time and not by a row number, so that the index serves and any engine can do it. Rows of one time are few.
/// The time as it is stored: in a store of another program's a number is no text.
RecordStatement ActivitySource::nextPage(int rows) const
{
    QList<RecordStatement> conditions = m_form.conditions;
    if (m_hasBegun && !m_form.time.isEmpty())
        conditions << RecordStatement{m_form.time + u" <= ?"_s, {m_upTo}};
    RecordStatement page{m_form.select, {}};
    for (qsizetype i = 0; i < conditions.size(); ++i) {
        page.text += (i == 0 ? u" where "_s : u" and "_s) + conditions.at(i).text;
        page.values += conditions.at(i).values;
    }
    page.text += u" order by %1 limit %2 offset %3"_s.arg(m_form.order).arg(rows).arg(m_skipped);
    return page;
}

void ActivitySource::follow(const RecordValue &time)
{
    if (time != m_upTo)
        m_skipped = 0;
    m_upTo = time;
    ++m_skipped;
}

ActivitySource logSource(const ActivityDays &days, const QString &who)
{
    QList<RecordStatement> conditions{{u"Dates is not null"_s, {}}};
    if (days.from.isValid())
        conditions << RecordStatement{u"Dates >= ?"_s, {days.from.toString(Qt::ISODate)}};
    if (days.to.isValid())
        conditions << RecordStatement{u"Dates < ?"_s, {days.to.addDays(1).toString(Qt::ISODate)}};
    if (!who.isEmpty()) {
        const QStringList texts = logTextsOf(trimmedUpper(who)); // as the till writes it
        conditions << RecordStatement{u"SystemUsage in (?, ?)"_s, {texts.at(0), texts.at(1)}};
    }
    return ActivitySource(
        {nullptr, u"select Dates, SystemUsage from SysUsage"_s, u"Dates"_s, u"Dates desc"_s, conditions, logEntry});
}

ActivitySource timelessLogSource()
{
    return ActivitySource({nullptr,
                           u"select Dates, SystemUsage from SysUsage"_s,
                           {},
                           u"SystemUsage"_s,
                           {{u"Dates is null"_s, {}}},
                           logEntry});
}

ActivitySource deedSource(const ActivityDays &days)
{
    return ActivitySource(
        {&kept::activity(), u"select DoneAt, Kind, Who, Place, What from HarrowbyActivity"_s, u"DoneAt"_s,
         u"DoneAt desc, DeedID desc"_s, within(days, u"DoneAt"_s), [](const RecordRow &row) {
             return ActivityEntry{shownTime(recordText(row.at(0))), kindOfDeed(recordText(row.at(1))),
                                  recordText(row.at(2)), recordText(row.at(3)), recordText(row.at(4))};
         }});
}

ActivitySource openingSource(const ActivityDays &days)
{
    return ActivitySource({&kept::drawerOpening(),
                           u"select OpenedAt, OpenedBy, Drawer, Reason from HarrowbyDrawerOpening"_s, u"OpenedAt"_s,
                           u"OpenedAt desc, OpeningID desc"_s, within(days, u"OpenedAt"_s), [](const RecordRow &row) {
                               return ActivityEntry{shownTime(recordText(row.at(0))), ActivityKind::Drawer,
                                                    recordText(row.at(1)), tillPlace(recordText(row.at(2))),
                                                    u"The drawer was opened by hand: "_s + recordText(row.at(3))};
                           }});
}

} // namespace harrowby::app
