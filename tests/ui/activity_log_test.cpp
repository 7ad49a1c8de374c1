// SPDX-License-Identifier: MIT
#include "tests/program/test_program.h"
#include "tests/support/counter.h"

#include "ui/activity_log_limit.h"
#include "ui/widgets/activity_text.h"
#include "ui/widgets/row_list.h"
#include "ui/widgets/text_table_model.h"

#include <QCheckBox>
#include <QScrollBar>
#include <QSignalSpy>

#include <algorithm>
#include <malloc.h>
#include <memory>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::test;

/// The activity log on screen, in the status bar and in SysUsage.
class ActivityLogTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void entry();
    void newestFirstAndTwiceInASecond();
    void quotesAreShownButNotStored();
    void boxOnlyWithShowDetails();
    void quietNeverShowsABox();
    void failingInsertIsIgnored();
    void clear();
    void clearRefused();
    void newestEntriesAreKept();
    void memoryIsBounded_data();
    void memoryIsBounded();
    void oneHugeEntryStays();
    void batch();
};

namespace {

QStringList entriesOf(const ActivityText &log)
{
    return log.toPlainText().split(u"\n\n"_s, Qt::SkipEmptyParts);
}

qsizetype memoryInUse()
{
    const auto info = ::mallinfo2();
    return static_cast<qsizetype>(info.uordblks) + static_cast<qsizetype>(info.hblkhd);
}

} // namespace

void ActivityLogTest::entry()
{
    Counter counter;
    counter.clock->time = QDateTime(QDate(2026, 11, 15), QTime(5, 31, 0));
    counter.open();
    counter.logIn();
    QCOMPARE(counter.text("Text1"), u"[15.11.26 05:31:00] -- ADMINISTRATOR successfully logged in!\n\n"_s);
    QCOMPARE(counter.file.rows(u"SELECT SystemUsage, Times, Dates FROM SysUsage"_s),
             QStringList{u"ADMINISTRATOR successfully logged in!|2026-11-15 05:31:00|2026-11-15 05:31:00"_s});
    QVERIFY(counter.connection->statements.contains(
        u"INSERT INTO SysUsage (SystemUsage,Times,Dates) Values ('ADMINISTRATOR successfully logged in!',"
        "'2026-11-15 05:31:00','2026-11-15 05:31:00')"_s));
}

void ActivityLogTest::newestFirstAndTwiceInASecond()
{
    Counter counter;
    counter.file.addItem(u"A1"_s, u"TEA"_s, 1, 9);
    counter.open();
    counter.logIn();
    counter.click("Command1_0"); // logs two entries
    const QStringList entries = counter.text("Text1").split(u"\n\n"_s, Qt::SkipEmptyParts);
    QCOMPARE(entries.size(), 3);
    QVERIFY(entries.at(0).endsWith(u"-- A1  |  TEA Added to Cart!"_s));
    QVERIFY(entries.at(1).endsWith(u"-- 1 of A1  |  TEA Added to Cart!"_s));
    QCOMPARE(counter.text("StatusBar1_2"), u"A1  |  TEA Added to Cart!"_s);
    QCOMPARE(counter.file.cell(u"SELECT count(*) FROM SysUsage WHERE Times = '2018-03-05 14:07:09'"_s), u"3"_s);
}

void ActivityLogTest::quotesAreShownButNotStored()
{
    Counter counter;
    counter.open();
    counter.logIn();
    counter.file.sql(u"DELETE FROM SysUsage"_s);
    counter.find<RowList>("LV3")->rows().appendRow({u"A1  |  O'TEA"_s, u"1"_s, u"1.00"_s});
    counter.find<RowList>("LV3")->selectRow(0);
    counter.boxes.expectInput(u"Enter new price for item [A1  |  O'TEA]?"_s, QString(), u"1.00"_s, u"2"_s);
    QTest::keyClick(counter.find("LV3"), Qt::Key_Return);
    QCOMPARE(counter.text("StatusBar1_2"), u"Cost of Item A1  |  O'TEA changed to 2.00!"_s);
    QCOMPARE(counter.file.cell(u"SELECT replace(SystemUsage, '|', '!') FROM SysUsage"_s),
             u"Cost of Item A1  !  OTEA changed to 2.00!"_s);
}

void ActivityLogTest::boxOnlyWithShowDetails()
{
    Counter counter;
    counter.open();
    counter.logIn();
    counter.setText("Combo16", u"FOOD"_s);
    counter.click("Command2"); // "Show Details On Purchase" is off: no box
    counter.find<QCheckBox>("Check3")->setChecked(true);
    counter.click("Command18");
    counter.setText("Combo16", u"DRINKS"_s);
    counter.boxes.expect(u"Category [DRINKS] Added!"_s, box::Information);
    counter.click("Command2");
    QVERIFY2(counter.boxes.isDone(), counter.boxes.problems().constData());
}

void ActivityLogTest::quietNeverShowsABox()
{
    Counter counter;
    counter.file.sql(u"UPDATE StoreSettings SET ShowDetails = 1"_s);
    counter.file.addItem(u"A1"_s, u"TEA"_s, 1, 9);
    counter.open();
    counter.logIn();
    counter.click("Command1_0");
    QCOMPARE(counter.text("StatusBar1_2"), u"A1  |  TEA Added to Cart!"_s);
}

void ActivityLogTest::failingInsertIsIgnored()
{
    Counter counter;
    counter.file.sql(u"DROP TABLE SysUsage"_s);
    counter.open();
    counter.logIn();
    QVERIFY(counter.state().login.IsLoggedIn);
    QCOMPARE(counter.text("StatusBar1_2"), u"ADMINISTRATOR successfully logged in!"_s);
    QVERIFY(counter.text("Text1").contains(u"successfully logged in!"_s));
}

void ActivityLogTest::clear()
{
    Counter counter;
    counter.file.sql(u"UPDATE StoreSettings SET ShowDetails = 1"_s);
    counter.open();
    counter.logIn();
    counter.boxes.expect(u"Clear Activity Log!"_s, box::AskDefaultNo, Answer::Yes);
    counter.click("Command11");
    QCOMPARE(counter.text("Text1"), u"[05.03.18 14:07:09] -- Activity Cleared!\n\n"_s);
    QCOMPARE(counter.text("StatusBar1_2"), u"Activity Cleared!"_s);
    QCOMPARE(counter.file.cell(u"SELECT count(*) FROM SysUsage"_s), u"2"_s); // the table is never emptied
}

void ActivityLogTest::clearRefused()
{
    Counter counter;
    counter.open();
    counter.logIn();
    const QString log = counter.text("Text1");
    counter.boxes.expect(u"Clear Activity Log!"_s, box::AskDefaultNo, Answer::No);
    counter.click("Command11");
    QCOMPARE(counter.text("Text1"), log);
    QCOMPARE(counter.file.cell(u"SELECT count(*) FROM SysUsage"_s), u"1"_s);
}

void ActivityLogTest::newestEntriesAreKept()
{
    Counter counter;
    counter.open();
    counter.logIn();
    auto *log = counter.find<ActivityText>("Text1");
    const int before = static_cast<int>(entriesOf(*log).size());
    QCOMPARE(before, 1);
    for (int i = before; i < 5000; ++i)
        log->prepend(u"[time] -- number %1\n\n"_s.arg(i));
    QStringList entries = entriesOf(*log);
    QCOMPARE(entries.size(), 5000);
    QVERIFY(entries.constLast().endsWith(u"ADMINISTRATOR successfully logged in!"_s));

    counter.click("Command7"); // refreshes the stock list and logs it
    entries = entriesOf(*log);
    QCOMPARE(entries.size(), 5000);
    QVERIFY(entries.at(0).endsWith(u"-- Stock List Refreshed."_s));
    QVERIFY(entries.at(1).endsWith(u"number 4999"_s));
    QCOMPARE(entries.constLast(), u"[time] -- number 1"_s);
    log->prepend(u"[time] -- two\r\nlines\n\n"_s);
    log->prepend(u"[time] -- last\n\n"_s);
    QCOMPARE(entriesOf(*log).size(), 5000);
    QCOMPARE(entriesOf(*log).constLast(), u"[time] -- number 3"_s);
    QVERIFY(log->toPlainText().startsWith(u"[time] -- last\n\n[time] -- two\nlines\n\n["_s));
    QVERIFY(log->toPlainText().endsWith(u"number 3\n\n"_s));

    counter.boxes.expect(u"Clear Activity Log!"_s, box::AskDefaultNo, Answer::Yes);
    counter.click("Command11");
    QCOMPARE(entriesOf(*log).size(), 1);
    for (int i = 0; i < 5001; ++i)
        log->prepend(u"[time] -- again %1\n\n"_s.arg(i));
    QCOMPARE(entriesOf(*log).size(), 5000);
    QCOMPARE(entriesOf(*log).constLast(), u"[time] -- again 1"_s);
}

void ActivityLogTest::memoryIsBounded_data()
{
    QTest::addColumn<QString>("message");
    QTest::addColumn<int>("times");
    QTest::addColumn<int>("kept");
    QTest::addColumn<int>("together");
    const QString usual = u"12 of EARL-GREY-0001  |  EARL GREY TEA, 100 BAGS Added to Cart!"_s;
    QTest::newRow("usual") << usual << 6000 << 5000 << 1;
    QTest::newRow("in batches") << usual << 6000 << 5000 << 50;
    QTest::newRow("long") << QString(1000, u'x') << 3000 << 0 << 1;
    QTest::newRow("very long") << u"word "_s.repeated(2000) << 300 << 0 << 1;
    QTest::newRow("many lines") << u"x\n"_s.repeated(500) << 100 << 0 << 1;
}

void ActivityLogTest::memoryIsBounded()
{
    QFETCH(QString, message);
    QFETCH(int, times);
    QFETCH(int, kept);
    QFETCH(int, together);
    ActivityText log;
    log.setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    log.resize(340, 500);
    log.show();
    QCoreApplication::processEvents();
    const qsizetype before = memoryInUse();
    for (int i = 0; i < times; i += together) {
        const auto batch = together > 1 ? std::make_unique<ActivityText::Batch>(log) : nullptr;
        for (int entry = 0; entry < together; ++entry)
            log.prepend(u"[21.11.26 12:00:00] -- "_s + message + u"\n\n"_s);
    }
    QVERIFY(memoryInUse() - before <= activity_log::mostBytes);
    if (kept > 0)
        QCOMPARE(entriesOf(log).size(), kept);
    // Reading the whole text must not change the limit.
    QScrollBar *bar = log.verticalScrollBar();
    for (int line = 0; line < bar->maximum(); line += std::max(1, bar->maximum() / 200)) {
        bar->setValue(line);
        log.repaint();
    }
    QVERIFY(memoryInUse() - before <= activity_log::mostBytes);
}

void ActivityLogTest::oneHugeEntryStays()
{
    ActivityText log;
    const QString huge(2'600'000, u'x');
    log.prepend(u"old\n\n"_s);
    log.prepend(huge + u"\n\n"_s);
    QCOMPARE(entriesOf(log), QStringList{huge});
    log.prepend(u"new\n\n"_s);
    QCOMPARE(log.toPlainText(), u"new\n\n"_s);
}

void ActivityLogTest::batch()
{
    ActivityText log;
    log.resize(340, 500);
    log.show();
    log.prepend(u"before\n\n"_s);
    const QSignalSpy layouts(log.document(), &QTextDocument::contentsChange);
    {
        const ActivityText::Batch batch(log);
        log.prepend(u"one\n\n"_s);
        log.prepend(u"two\r\nlines\n\n"_s);
        QCOMPARE(log.toPlainText(), u"two\nlines\n\none\n\nbefore\n\n"_s); // whoever reads it meanwhile
        QCOMPARE(layouts.count(), 0);
    }
    QCOMPARE(layouts.count(), 1);
    QCOMPARE(log.toPlainText(), u"two\nlines\n\none\n\nbefore\n\n"_s);
    {
        const ActivityText::Batch batch(log);
        for (int i = 0; i < 5010; ++i)
            log.prepend(u"number %1\n\n"_s.arg(i));
    }
    log.prepend(u"after\n\n"_s);
    const QStringList entries = entriesOf(log);
    QCOMPARE(entries.size(), 5000);
    QCOMPARE(entries.constFirst(), u"after"_s);
    QCOMPARE(entries.constLast(), u"number 11"_s);
}

HARROWBY_TEST(activity_log_test, ActivityLogTest)
#include "activity_log_test.moc"
