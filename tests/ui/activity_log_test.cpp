// SPDX-License-Identifier: MIT
#include "support/counter.h"

#include "ui/widgets/row_list.h"
#include "ui/widgets/text_table_model.h"

#include <QCheckBox>

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
};

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
    QVERIFY(counter.state().IsLoggedIn);
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

QTEST_MAIN(ActivityLogTest)
#include "activity_log_test.moc"
