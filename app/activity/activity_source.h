// SPDX-License-Identifier: MIT
#pragma once

#include "app/activity/activity_kinds.h"
#include "app/records/records.h"

#include <QDate>
#include <QList>
#include <QString>

#include <cstdint>
#include <deque>
#include <functional>
#include <optional>

namespace harrowby::app {

struct ActivityEntry
{
    QString when; ///< local time, "2026-03-05 14:07:09"; what the store has where that is no time, or nothing
    ActivityKind kind = ActivityKind::Other;
    QString who;   ///< empty where it is not known
    QString place; ///< "office", "till DESK 1", "command line", or "till" for a line of the till's log
    QString what;
};

/// One of the tables that tell what happened, read page by page, the newest first.
class ActivitySource
{
public:
    struct Form
    {
        const RecordTable *table = nullptr; ///< null for one of the component's
        QString select;                     ///< up to and without "where"; its first column is the time
        QString time;                       ///< the time's column; empty where there is none to go by
        QString order;                      ///< behind "order by"
        QList<RecordStatement> conditions;
        std::function<ActivityEntry(const RecordRow &)> entry;
    };

    explicit ActivitySource(Form form) : m_form(std::move(form)) {}

    /// The newest entry that was not taken; null at the end.
    [[nodiscard]] Records::Answer<const ActivityEntry *> head(Records &records);
    void take() { m_entries.pop_front(); }

private:
    [[nodiscard]] RecordStatement nextPage(int rows) const;
    std::optional<DbFailure> read(Records &records);
    void follow(const RecordValue &time);

    Form m_form;
    std::deque<ActivityEntry> m_entries;
    bool m_isAtEnd = false;
    bool m_hasBegun = false;
    // Where the next page begins: behind so many rows of that time.
    RecordValue m_upTo;
    std::int64_t m_skipped = 0;
};

/// Days of local time, both of them included; an invalid one is open.
struct ActivityDays
{
    QDate from;
    QDate to;
};

[[nodiscard]] ActivitySource logSource(const ActivityDays &days, const QString &who);
/// Lines of the log that bear no time, which no day finds.
[[nodiscard]] ActivitySource timelessLogSource();
[[nodiscard]] ActivitySource deedSource(const ActivityDays &days);
[[nodiscard]] ActivitySource openingSource(const ActivityDays &days);

} // namespace harrowby::app
