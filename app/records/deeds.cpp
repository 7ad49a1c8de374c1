// SPDX-License-Identifier: MIT
#include "app/records/deeds.h"

#include "basic/text.h"

#include <QUuid>

#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

/// A line that is read in a list: no control characters, and not without end.
constexpr qsizetype longest = 2000;

} // namespace

Deeds::Deeds(Records &records, QString place) : m_records(records), m_place(std::move(place)) {}

RecordStatement Deeds::statement(const Deed &deed) const
{
    const QString id = QUuid::createUuid().toString(QUuid::WithoutBraces);
    return {
        u"insert into HarrowbyActivity (DeedID, DoneAt, Kind, Who, Place, What) values (?, ?, ?, ?, ?, ?)"_s,
        {id, recordTime(QDateTime::currentDateTimeUtc()), deed.kind, deed.who, m_place, tidyLabel(deed.what, longest)},
        &kept::activity()};
}

std::optional<DbFailure> Deeds::add(const Deed &deed) const
{
    const auto written = m_records.write(kept::activity(), statement(deed));
    return written ? std::nullopt : std::optional(written.error());
}

Records::Answer<bool> writeTold(Records &records, const RecordTable &table, const RecordStatement &statement,
                                const std::optional<RecordStatement> &told)
{
    if (told) {
        if (const auto failure = records.prepare(*told->table))
            return Unexpected(*failure);
    }
    std::optional<DbFailure> failure;
    const auto kept = records.together(table, [&] {
        auto changed = records.write(table, statement);
        if (changed && *changed > 0 && told)
            changed = records.write(*told->table, *told);
        if (!changed)
            failure = changed.error();
        return changed && *changed > 0;
    });
    if (failure)
        return Unexpected(*std::move(failure));
    return kept;
}

QString tillPlace(const QString &till)
{
    return u"till %1"_s.arg(till).trimmed();
}

QString commandLineUser()
{
    QString user = qEnvironmentVariable("USER");
    if (user.isEmpty())
        user = qEnvironmentVariable("LOGNAME");
    return user.isEmpty() ? QString(commandLinePlace) : u"%1 (%2)"_s.arg(commandLinePlace, user);
}

} // namespace harrowby::app
