// SPDX-License-Identifier: MIT
#include "app/activity/activity_search.h"

#include "app/work/watched_store.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr int rowsBetweenSteps = 1000;
constexpr qsizetype lettersOfDay = 10;

} // namespace

ActivitySearch::ActivitySearch(ActivityFilter filter) : m_filter(std::move(filter))
{
    const ActivityDays &days = m_filter.days;
    const bool allDays = !days.from.isValid() && !days.to.isValid();
    if (!m_filter.kind || isInLog(*m_filter.kind)) {
        m_sources.push_back(logSource(days, m_filter.who));
        if (allDays && m_filter.who.isEmpty())
            m_sources.push_back(timelessLogSource());
    }
    m_sources.push_back(deedSource(days));
    m_sources.push_back(openingSource(days));
}

Records::Answer<QList<ActivityEntry>> ActivitySearch::next(Records &records, int most, const WorkWatch &watch)
{
    QList<ActivityEntry> found;
    QString day;
    const auto goesOn = [&] { return watch({u"Looking back \u2026 "_s + day, WorkStep::unknown}); };
    for (int looked = 0; found.size() < most; ++looked) {
        const auto source = newest(records);
        if (!source && !goesOn())
            break; // that is what has ended the statement
        if (!source)
            return Unexpected(source.error());
        m_isAtEnd = *source == nullptr;
        if (m_isAtEnd)
            break;
        const ActivityEntry &entry = **(*source)->head(records);
        day = entry.when.left(lettersOfDay);
        if (looked % rowsBetweenSteps == rowsBetweenSteps - 1 && !goesOn())
            break;
        if (fits(entry))
            found << entry;
        (*source)->take();
    }
    return found;
}

/// Null when all are at their end.
Records::Answer<ActivitySource *> ActivitySearch::newest(Records &records)
{
    ActivitySource *best = nullptr;
    QString when;
    for (ActivitySource &source : m_sources) {
        const auto head = source.head(records);
        if (!head)
            return Unexpected(head.error());
        if (*head != nullptr && (best == nullptr || (*head)->when > when)) {
            best = &source;
            when = (*head)->when;
        }
    }
    return best;
}

bool ActivitySearch::fits(const ActivityEntry &entry) const
{
    const auto has = [this](const QString &text) { return text.contains(m_filter.text, Qt::CaseInsensitive); };
    return (!m_filter.kind || entry.kind == *m_filter.kind) && (!m_filter.onlyUnknown || entry.who.isEmpty()) &&
           (m_filter.who.isEmpty() || entry.who.compare(m_filter.who, Qt::CaseInsensitive) == 0) &&
           (m_filter.text.isEmpty() || has(entry.what) || has(entry.who) || has(entry.place));
}

Records::Answer<QStringList> usersOfActivity(Records &records)
{
    QStringList names;
    const auto gather = [&names](const QList<RecordRow> &rows) {
        for (const RecordRow &row : rows) {
            if (const QString name = recordText(row.constFirst()); !names.contains(name, Qt::CaseInsensitive))
                names << name;
        }
    };
    const auto users = records.read({u"select Username from Users where Username <> ''"_s, {}});
    const auto doers =
        records.read(kept::activity(), {u"select distinct Who from HarrowbyActivity where Who <> ''"_s, {}});
    if (!users)
        return Unexpected(users.error());
    if (!doers)
        return Unexpected(doers.error());
    gather(*users);
    gather(*doers);
    names.sort(Qt::CaseInsensitive);
    return names;
}

Result<void, QString> withOwnRecords(const QString &store, const WorkWatch &watch,
                                     const std::function<void(Records &, const WorkWatch &)> &work)
{
    const auto own = WatchedStore::open(store, Access::Read, watch);
    if (!own && own.error().wasStopped)
        return {};
    if (!own)
        return Unexpected(own.error().words);
    work((*own)->records(), (*own)->watch());
    return {};
}

} // namespace harrowby::app
