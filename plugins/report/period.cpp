// SPDX-License-Identifier: MIT
#include "plugins/report/period.h"

#include "basic/dates.h"
#include "tables/table.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace harrowby::report {

Period today(const QDate &now)
{
    return {now, now};
}

Period thisWeek(const QDate &now)
{
    const QDate monday = now.addDays(Qt::Monday - now.dayOfWeek());
    return {monday, monday.addDays(6)};
}

Period thisMonth(const QDate &now)
{
    const QDate first(now.year(), now.month(), 1);
    return {first, first.addMonths(1).addDays(-1)};
}

QDate firstDay()
{
    return {2000, 1, 1};
}

QDate lastDay()
{
    return {2099, 12, 31};
}

QString dayKey(const QDate &day)
{
    return harrowby::dayKey(QDateTime(day, QTime(0, 0), Qt::UTC));
}

std::optional<QDate> dayOfKey(const QString &key)
{
    const bool digits = std::all_of(key.begin(), key.end(), [](QChar digit) { return digit >= u'0' && digit <= u'9'; });
    if (!digits || key.size() != 6)
        return {};
    const QDate day(2000 + key.left(2).toInt(), key.mid(2, 2).toInt(), key.right(2).toInt());
    return day.isValid() ? std::optional(day) : std::nullopt;
}

QString periodText(const Period &period)
{
    const QString first = tables::dayText(period.from);
    return period.days() == 1 ? first : u"%1 to %2"_s.arg(first, tables::dayText(period.to));
}

} // namespace harrowby::report
