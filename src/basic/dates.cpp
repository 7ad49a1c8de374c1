// SPDX-License-Identifier: MIT
#include "basic/dates.h"

#include <QLocale>

namespace harrowby {

namespace {

using namespace Qt::StringLiterals;

QString formatted(const QDateTime &time, const QString &format)
{
    return QLocale::c().toString(time, format);
}

} // namespace

QString purchasedDate(const QDateTime &time)
{
    return formatted(time, u"yyMMddHHmmss"_s);
}

QString dayKey(const QDateTime &time)
{
    return formatted(time, u"yyMMdd"_s);
}

QString dayKeyOf(const QString &purchased)
{
    constexpr qsizetype digits = 6;
    return purchased.left(digits);
}

QString activityLogTime(const QDateTime &time)
{
    return formatted(time, u"dd.MM.yy HH:mm:ss"_s);
}

QString usageTime(const QDateTime &time)
{
    return formatted(time, u"yyyy-MM-dd HH:mm:ss"_s);
}

QString stockTime(const QDateTime &time)
{
    return formatted(time, u"dd-MMM-yy HH:mm:ss"_s);
}

QString receiptTime(const QDateTime &time)
{
    return formatted(time, u"dd/MMM/yyyy HH:mm:ss"_s);
}

QString summaryTime(const QDateTime &time)
{
    return formatted(time, u"yyyy/MMM/dd HH:mm:ss"_s);
}

} // namespace harrowby
