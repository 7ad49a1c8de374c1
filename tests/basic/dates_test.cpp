// SPDX-License-Identifier: MIT
#include "basic/dates.h"
#include "basic/purchase_id.h"

#include "tests/program/test_program.h"

#include <QLocale>
#include <QTest>

using namespace harrowby;
using namespace Qt::StringLiterals;

class TestDates : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void formats_data();
    void formats();
    void namesMonthsInEnglish();
    void takenPurchaseId();
};

void TestDates::initTestCase()
{
    // Neither the names of months nor the digits may follow the user's language.
    QLocale::setDefault(QLocale(QLocale::Arabic, QLocale::Egypt));
}

void TestDates::formats_data()
{
    QTest::addColumn<QDateTime>("time");
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("afternoon") << QDateTime({2018, 3, 5}, {14, 7, 9})
                               << QStringList{
                                      u"HV18030514070907"_s,    u"180305140709"_s,        u"180305"_s,
                                      u"05.03.18 14:07:09"_s,   u"2018-03-05 14:07:09"_s, u"05/Mar/2018 14:07:09"_s,
                                      u"2018/Mar/05 14:07:09"_s};
    QTest::newRow("morning") << QDateTime({2026, 11, 15}, {5, 31, 0})
                             << QStringList{
                                    u"HV26111505310031"_s,    u"261115053100"_s,        u"261115"_s,
                                    u"15.11.26 05:31:00"_s,   u"2026-11-15 05:31:00"_s, u"15/Nov/2026 05:31:00"_s,
                                    u"2026/Nov/15 05:31:00"_s};
    QTest::newRow("midnight") << QDateTime({2000, 1, 1}, {0, 0, 0})
                              << QStringList{
                                     u"HV00010100000000"_s,    u"000101000000"_s,        u"000101"_s,
                                     u"01.01.00 00:00:00"_s,   u"2000-01-01 00:00:00"_s, u"01/Jan/2000 00:00:00"_s,
                                     u"2000/Jan/01 00:00:00"_s};
    QTest::newRow("last second") << QDateTime({2099, 12, 31}, {23, 59, 59, 999})
                                 << QStringList{
                                        u"HV99123123595959"_s,    u"991231235959"_s,        u"991231"_s,
                                        u"31.12.99 23:59:59"_s,   u"2099-12-31 23:59:59"_s, u"31/Dec/2099 23:59:59"_s,
                                        u"2099/Dec/31 23:59:59"_s};
}

void TestDates::formats()
{
    QFETCH(const QDateTime, time);
    QFETCH(const QStringList, expected);
    const QStringList texts{purchaseId(time), purchasedDate(time), dayKey(time),     activityLogTime(time),
                            usageTime(time),  receiptTime(time),   summaryTime(time)};
    QCOMPARE(texts, expected);
    QCOMPARE(dayKeyOf(purchasedDate(time)), dayKey(time));
}

void TestDates::namesMonthsInEnglish()
{
    QStringList names;
    for (int month = 1; month <= 12; ++month)
        names.append(receiptTime(QDateTime({2026, month, 1}, {0, 0})).section(u'/', 1, 1));
    QCOMPARE(names.join(u' '), u"Jan Feb Mar Apr May Jun Jul Aug Sep Oct Nov Dec"_s);
}

void TestDates::takenPurchaseId()
{
    int looks = 0;
    const auto now = [&looks] {
        ++looks;
        return QDateTime({2018, 3, 5}, {14, 7, 10});
    };
    QCOMPARE(purchaseIdToSave(u"HV18030514070907"_s, false, now), u"HV18030514070907"_s);
    QCOMPARE(looks, 0); // reading the clock is left to the caller
    QCOMPARE(purchaseIdToSave(u"HV18030514070907"_s, true, now), u"HE18030514071007"_s);
}

HARROWBY_CORE_TEST(dates_test, TestDates)
#include "dates_test.moc"
