// SPDX-License-Identifier: MIT
#include "platform/clock.h"

#include "tests/program/test_program.h"

#include <QTest>

using namespace harrowby;

class ClockTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsTheLocalTime()
    {
        const QDateTime before = QDateTime::currentDateTime();
        const QDateTime now = SystemClock().now();
        const QDateTime after = QDateTime::currentDateTime();
        QVERIFY(before <= now && now <= after);
        QCOMPARE(now.timeSpec(), Qt::LocalTime);
    }
};

HARROWBY_CORE_TEST(clock_test, ClockTest)
#include "clock_test.moc"
