// SPDX-License-Identifier: MIT
#include "plugins/report/bars.h"

#include "plugins/report/sales_table.h"

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

/// Refers to a name instead of copying it: of a hundred thousand only seven are shown.
struct NamedAmount
{
    QStringView name;
    double amount = 0.0;
};

/// The largest ones, and the rest as one.
Bars nameBars(std::vector<NamedAmount> all, const QString &title)
{
    const std::size_t shown = all.size() > mostNames + 1 ? mostNames : all.size();
    const auto rest = all.begin() + static_cast<std::ptrdiff_t>(shown);
    std::partial_sort(all.begin(), rest, all.end(), [](const NamedAmount &one, const NamedAmount &other) {
        return one.amount != other.amount ? one.amount > other.amount : one.name < other.name;
    });
    Bars bars{{}, title, true, false};
    for (auto one = all.begin(); one != rest; ++one)
        bars.bars.push_back({one->name.toString(), one->amount});
    if (rest != all.end()) {
        Bar others{u"%1 others"_s.arg(all.end() - rest), 0.0};
        for (auto one = rest; one != all.end(); ++one)
            others.amount += one->amount;
        bars.bars.push_back(others);
    }
    return bars;
}

Bars sellerBars(const Sales &sales)
{
    std::vector<NamedAmount> all;
    for (const auto &[name, sums] : sales.bySeller)
        all.push_back({QStringView(name).trimmed().isEmpty() ? nobodyText : name, sums.amount});
    return nameBars(std::move(all), u"Amount of each seller"_s);
}

Bars itemBars(const Sales &sales)
{
    std::vector<NamedAmount> all;
    all.reserve(sales.byItem.entries().size() + 1);
    for (const auto &[key, sums] : sales.byItem.entries())
        all.push_back({idAndName(key).name, sums.amount});
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
