// SPDX-License-Identifier: MIT
#include "report/bars.h"

#include "report/sales_table.h"

#include <QLocale>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace harrowby::report {

namespace {

constexpr std::size_t mostNames = 6; ///< and one for the others
constexpr qint64 mostDays = 31;
constexpr qint64 mostWeeks = 27;
constexpr qint64 mostMonths = 37;

enum class Step { Day, Week, Month, Year };

Step stepFor(const Period &period)
{
    if (period.days() <= mostDays)
        return Step::Day;
    if (period.days() <= mostWeeks * 7)
        return Step::Week;
    return period.days() <= mostMonths * 31 ? Step::Month : Step::Year;
}

QDate beginOfStep(const QDate &day, Step step)
{
    if (step == Step::Week)
        return thisWeek(day).from;
    if (step == Step::Month)
        return {day.year(), day.month(), 1};
    return step == Step::Year ? QDate(day.year(), 1, 1) : day;
}

QDate nextStep(const QDate &begin, Step step)
{
    if (step == Step::Month)
        return begin.addMonths(1);
    return step == Step::Year ? begin.addYears(1) : begin.addDays(step == Step::Week ? 7 : 1);
}

QString labelOf(const QDate &begin, Step step)
{
    const QLocale english = QLocale::c();
    if (step == Step::Day)
        return QString::number(begin.day());
    if (step == Step::Week)
        return english.toString(begin, u"d MMM"_s);
    return english.toString(begin, step == Step::Month ? u"MMM yyyy"_s : u"yyyy"_s);
}

QString titleOf(const Period &period, Step step)
{
    if (step == Step::Day)
        return u"Amount of each day, "_s + periodText(period);
    if (step == Step::Week)
        return u"Amount of each week, by its Monday"_s;
    return step == Step::Month ? u"Amount of each month"_s : u"Amount of each year"_s;
}

Bars dayBars(const Sales &sales, const Period &period)
{
    const Step step = stepFor(period);
    std::map<QDate, double> amounts;
    for (QDate begin = beginOfStep(period.from, step); begin <= period.to; begin = nextStep(begin, step))
        amounts[begin] = 0.0;
    for (const auto &[key, sums] : sales.byDay) {
        if (const auto day = dayOfKey(key))
            amounts[beginOfStep(*day, step)] += sums.amount;
    }
    Bars bars;
    bars.title = titleOf(period, step);
    bars.longLabels = step == Step::Week || step == Step::Month;
    for (const auto &[begin, amount] : amounts)
        bars.bars.push_back({labelOf(begin, step), amount});
    return bars;
}

/// The largest ones, and the rest as one.
Bars nameBars(std::vector<Bar> all, const QString &title)
{
    std::sort(all.begin(), all.end(), [](const Bar &one, const Bar &other) {
        return one.amount != other.amount ? one.amount > other.amount : one.label < other.label;
    });
    if (all.size() > mostNames + 1) {
        Bar others{u"%1 others"_s.arg(all.size() - mostNames), 0.0};
        for (std::size_t i = mostNames; i < all.size(); ++i)
            others.amount += all.at(i).amount;
        all.resize(mostNames);
        all.push_back(others);
    }
    return {std::move(all), title, true, false};
}

Bars sellerBars(const Sales &sales)
{
    std::vector<Bar> all;
    for (const auto &[name, sums] : sales.bySeller)
        all.push_back({name.trimmed().isEmpty() ? nobodyText : name, sums.amount});
    return nameBars(std::move(all), u"Amount of each seller"_s);
}

QString nameOfKey(const QString &key)
{
    const qsizetype at = key.indexOf(u"  |  "_s);
    return at < 0 ? key : key.mid(at + 5).trimmed();
}

Bars itemBars(const Sales &sales)
{
    std::vector<Bar> all;
    for (const auto &[key, sums] : sales.byItem)
        all.push_back({nameOfKey(key), sums.amount});
    if (sales.unreadable.purchases > 0)
        all.push_back({unreadableText, sales.unreadable.amount});
    return nameBars(std::move(all), u"Items by amount"_s);
}

} // namespace

Bars salesBars(const Sales &sales, const SalesQuery &query)
{
    if (query.grouping == Grouping::Day)
        return dayBars(sales, query.period);
    return query.grouping == Grouping::Seller ? sellerBars(sales) : itemBars(sales);
}

} // namespace harrowby::report
