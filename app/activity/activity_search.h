// SPDX-License-Identifier: MIT
#pragma once

#include "app/activity/activity_source.h"
#include "app/work/work_step.h"
#include "basic/result.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>
#include <vector>

namespace harrowby::app {

struct ActivityFilter
{
    ActivityDays days;
    std::optional<ActivityKind> kind;
    QString who;              ///< as stored, in capitals or not; empty for all
    bool onlyUnknown = false; ///< only what nobody is known of
    QString text;             ///< anywhere in what, user or place, in capitals or not
};

/// Looks for what happened, newest first, from page to page. It keeps no connection: the records may be others each
/// time, of any thread.
class ActivitySearch
{
public:
    explicit ActivitySearch(ActivityFilter filter);

    /// The next entries, at most so many; fewer at the end and when `watch` says that it is enough. What was looked
    /// through is not looked through again.
    [[nodiscard]] Records::Answer<QList<ActivityEntry>> next(Records &records, int most, const WorkWatch &watch);
    [[nodiscard]] bool isAtEnd() const { return m_isAtEnd; }

private:
    [[nodiscard]] Records::Answer<ActivitySource *> newest(Records &records);
    [[nodiscard]] bool fits(const ActivityEntry &entry) const;

    ActivityFilter m_filter;
    std::vector<ActivitySource> m_sources;
    bool m_isAtEnd = false;
};

/// The users that the store has, and those that deeds name, by name.
[[nodiscard]] Records::Answer<QStringList> usersOfActivity(Records &records);

/// Runs `work` with records over a connection of its own to that store, on any thread; their statements hear the watch,
/// too. Not where the watch has ended the opening. Why else it could not be opened.
[[nodiscard]] Result<void, QString> withOwnRecords(const QString &store, const WorkWatch &watch,
                                                   const std::function<void(Records &, const WorkWatch &)> &work);

} // namespace harrowby::app
