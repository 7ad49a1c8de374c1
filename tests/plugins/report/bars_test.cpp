// SPDX-License-Identifier: MIT
#include "plugins/report/bars.h"

#include "tests/program/test_program.h"

#include <QTest>

using namespace harrowby::report;
using namespace Qt::StringLiterals;

Q_DECLARE_METATYPE(harrowby::report::Period)

namespace {

double sum(const Bars &bars)
{
    double all = 0.0;
    for (const Bar &bar : bars.bars)
        all += bar.amount;
    return all;
}

} // namespace

class BarsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void daysThatCanBeRead_data()
    {
        QTest::addColumn<Period>("period");
        QTest::addColumn<int>("count");
        QTest::addColumn<QString>("first");
        QTest::addColumn<QString>("last");
        const QDate first(2026, 1, 1); // a Thursday
        QTest::newRow("a day") << Period{first, first} << 1 << u"1"_s << u"1"_s;
        QTest::newRow("a month") << Period{first, QDate(2026, 1, 31)} << 31 << u"1"_s << u"31"_s;
        QTest::newRow("weeks") << Period{first, QDate(2026, 2, 1)} << 5 << u"29 Dec"_s << u"26 Jan"_s;
        QTest::newRow("months") << Period{first, QDate(2026, 12, 31)} << 12 << u"Jan 2026"_s << u"Dec 2026"_s;
        QTest::newRow("years") << Period{first, QDate(2035, 1, 1)} << 10 << u"2026"_s << u"2035"_s;
        QTest::newRow("all") << Period{firstDay(), lastDay()} << 100 << u"2000"_s << u"2099"_s;
    }

    void daysThatCanBeRead()
    {
        QFETCH(const Period, period);
        Sales sales;
        sales.byDay = {{dayKey(period.from), {1, 5.0}}, {u"26010x"_s, {1, 70.0}}};
        sales.byDay[dayKey(period.to)].add(1, 2.0);
        const Bars bars = salesBars(sales, {period, Grouping::Day, {}});
        QTEST(static_cast<int>(bars.bars.size()), "count");
        QTEST(bars.bars.front().label, "first");
        QTEST(bars.bars.back().label, "last");
        QCOMPARE(sum(bars), 7.0);
        QVERIFY(!bars.across);
    }

    void onlyALeadingFewNames_data()
    {
        QTest::addColumn<int>("names");
        QTest::addColumn<int>("count");
        QTest::addColumn<QString>("last");
        QTest::newRow("none") << 0 << 0 << QString();
        QTest::newRow("as many as fit") << 7 << 7 << u"N0"_s;
        QTest::newRow("too many") << 8 << 7 << u"2 others"_s;
        QTest::newRow("far too many") << 500 << 7 << u"494 others"_s;
    }

    void onlyALeadingFewNames()
    {
        QFETCH(const int, names);
        QFETCH(const int, count);
        Sales sales;
        double all = 0.0;
        for (int i = 0; i < names; ++i) {
            sales.bySeller[u"N%1"_s.arg(i)] = {1, i * 1.0};
            sales.byItem.add(u"I%1  |  N%1"_s.arg(i), 1.0, i * 1.0);
            all += i;
        }
        sales.byItem.settle();
        for (const Grouping grouping : {Grouping::Seller, Grouping::Item}) {
            const Bars bars = salesBars(sales, {{}, grouping, {}});
            QCOMPARE(static_cast<int>(bars.bars.size()), count);
            QCOMPARE(sum(bars), all);
            QVERIFY(bars.across);
            if (count > 0) {
                QCOMPARE(bars.bars.front().label, u"N%1"_s.arg(names - 1));
                QTEST(bars.bars.back().label, "last");
            }
        }
    }
};

HARROWBY_CORE_TEST(report_bars_test, BarsTest)
#include "bars_test.moc"
