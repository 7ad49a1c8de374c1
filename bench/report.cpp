// SPDX-License-Identifier: MIT
#include "bench/report.h"

#include <QJsonObject>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace harrowby::bench {

namespace {

QString number(const std::optional<double> &value, int decimals)
{
    return value ? QString::number(*value, 'f', decimals) : u"-"_s;
}

QJsonValue json(const std::optional<double> &value)
{
    return value ? QJsonValue(*value) : QJsonValue(QJsonValue::Null);
}

QString row(const QString &work, const QString &items, const QString &median, const QString &raw, const QString &ratio,
            const QString &limit, const QString &verdict)
{
    return u"%1 %2 %3 %4 %5 %6  %7\n"_s.arg(work, -69)
        .arg(items, 9)
        .arg(median, 11)
        .arg(raw, 10)
        .arg(ratio, 7)
        .arg(limit, 7)
        .arg(verdict);
}

QString verdict(const Line &line)
{
    if (!line.limit)
        return {};
    return line.isOver() ? u"OVER"_s : u"ok"_s;
}

} // namespace

bool Line::isOver() const
{
    const std::optional<double> measured = megabytes ? megabytes : ratio ? ratio : medianMs;
    return limit && measured && *measured > *limit;
}

QString toText(const std::vector<Line> &lines)
{
    QString text = row(u"work"_s, u"items"_s, u"median ms"_s, u"raw ms"_s, u"ratio"_s, u"limit"_s, {});
    QString place;
    for (const Line &line : lines) {
        if (line.place != place)
            text += line.place + u":\n"_s;
        place = line.place;
        const QString ratio = line.megabytes ? number(line.megabytes, 1) + u" MB"_s : number(line.ratio, 2);
        text += row(line.work, QString::number(line.items), number(line.medianMs, 3), number(line.rawMs, 3), ratio,
                    number(line.limit, 2), verdict(line));
    }
    return text;
}

QJsonArray toJson(const std::vector<Line> &lines)
{
    QJsonArray list;
    for (const Line &line : lines) {
        QJsonObject object{
            {u"work"_s, line.work},          {u"items"_s, line.items},       {u"median_ms"_s, json(line.medianMs)},
            {u"raw_ms"_s, json(line.rawMs)}, {u"ratio"_s, json(line.ratio)}, {u"limit"_s, json(line.limit)}};
        if (line.megabytes)
            object.insert(u"megabytes"_s, *line.megabytes);
        if (!line.place.isEmpty())
            object.insert(u"place"_s, line.place);
        list.append(object);
    }
    return list;
}

} // namespace harrowby::bench
