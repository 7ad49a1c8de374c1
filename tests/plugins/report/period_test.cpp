// SPDX-License-Identifier: MIT
#include "plugins/report/period.h"

#include "tests/program/test_program.h"

#include <QTest>

using namespace harrowby::report;
using namespace Qt::StringLiterals;

class PeriodTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void choices_data()
    {
        QTest::addColumn<QDate>("now");
        QTest::addColumn<QString>("week");
        QTest::addColumn<QString>("month");
        QTest::newRow("Saturday") << QDate(2026, 11, 21) << u"16 Nov 2026 to 22 Nov 2026"_s
                                  << u"1 Nov 2026 to 30 Nov 2026"_s;
        QTest::newRow("Monday") << QDate(2026, 11, 16) << u"16 Nov 2026 to 22 Nov 2026"_s
                                << u"1 Nov 2026 to 30 Nov 2026"_s;
        QTest::newRow("Sunday") << QDate(2026, 11, 22) << u"16 Nov 2026 to 22 Nov 2026"_s
                                << u"1 Nov 2026 to 30 Nov 2026"_s;
        QTest::newRow("over New Year") << QDate(2026, 1, 1) << u"29 Dec 2025 to 4 Jan 2026"_s
                                       << u"1 Jan 2026 to 31 Jan 2026"_s;
        QTest::newRow("leap day") << QDate(2028, 2, 29) << u"28 Feb 2028 to 5 Mar 2028"_s
                                  << u"1 Feb 2028 to 29 Feb 2028"_s;
    }

    void choices()
    {
        QFETCH(const QDate, now);
        QCOMPARE(periodText(today(now)), periodText({now, now}));
        QTEST(periodText(thisWeek(now)), "week");
        QTEST(periodText(thisMonth(now)), "month");
    }

    void days()
    {
        QCOMPARE(today(QDate(2026, 11, 21)).days(), 1);
        QCOMPARE(thisWeek(QDate(2026, 11, 21)).days(), 7);
        QCOMPARE(periodText(today(QDate(2026, 11, 1))), u"1 Nov 2026"_s);
    }

    void keys_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QDate>("day");
        QTest::newRow("a day") << u"261121"_s << QDate(2026, 11, 21);
        QTest::newRow("the first one") << u"000101"_s << firstDay();
        QTest::newRow("the last one") << u"991231"_s << lastDay();
        QTest::newRow("no such day") << u"260230"_s << QDate();
        QTest::newRow("short") << u"2611"_s << QDate();
        QTest::newRow("letters") << u"26112x"_s << QDate();
        QTest::newRow("sign") << u"26+121"_s << QDate();
        QTest::newRow("blanks") << u"26 1 1"_s << QDate();
        QTest::newRow("foreign digits") << u"\u0662\u0666\u0661\u0661\u0662\u0661"_s << QDate();
        QTest::newRow("empty") << QString() << QDate();
    }

    void keys()
    {
        QFETCH(const QString, key);
        QFETCH(const QDate, day);
        QCOMPARE(dayOfKey(key).value_or(QDate()), day);
        if (day.isValid())
            QCOMPARE(dayKey(day), key);
    }
};

HARROWBY_CORE_TEST(report_period_test, PeriodTest)
#include "period_test.moc"
