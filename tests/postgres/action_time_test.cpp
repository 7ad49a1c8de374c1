// SPDX-License-Identifier: MIT
#include "postgres/action_time.h"
#include "postgres/reading_habits.h"
#include "tests/program/test_program.h"

#include <QTest>

using namespace harrowby::postgres;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

/// How long an action may wait, by a clock of the test's; and what is learned of how results are read.
class ActionTimeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void beforeTheFirstWrite();
    void afterIt();
    void givenUp();
    void locks();
    void aNewAction();
    void unknownResultsAreCounted();
    void shortOnesAreReadWhole();
    void usedOnesAreReadWhole();
    void unusedOnesNoMore();
    void shortListsAreReadAtOnce();

private:
    std::chrono::milliseconds m_now{1'000'000};
    std::unique_ptr<ActionTime> m_time;
};

void ActionTimeTest::init()
{
    m_time = std::make_unique<ActionTime>(ActionLimits{5s, 60s, 10s}, [this] { return m_now; });
}

void ActionTimeTest::beforeTheFirstWrite()
{
    QVERIFY(m_time->left() == 5s);
    m_now += 3s;
    QVERIFY(m_time->left() == 2s);
    QVERIFY(m_time->waited() == 3s);
    m_time->beginStatement();
    QVERIFY(m_time->left() == 5s);
    m_time->noteTrouble(); // changes nothing yet
    m_now += 5s;
    QVERIFY(m_time->isOver());
    m_now += 5s;
    QVERIFY(m_time->left() == 0s);
}

void ActionTimeTest::afterIt()
{
    m_time->noteWrite();
    QVERIFY(m_time->hasWritten());
    m_now += 1h;
    QVERIFY(m_time->left() == 60s); // no trouble yet
    m_time->noteTrouble();
    m_now += 20s;
    m_time->beginStatement();
    m_time->noteTrouble();
    QVERIFY(m_time->left() == 40s); // one time for all of the rest
    m_now += 40s;
    QVERIFY(m_time->isOver());
}

void ActionTimeTest::givenUp()
{
    m_time->noteWrite();
    m_time->giveUp();
    QVERIFY(m_time->isOver());
    m_time->beginStatement();
    QVERIFY(m_time->isOver());
}

void ActionTimeTest::locks()
{
    QVERIFY(m_time->lockLeft() == 10s);
    m_time->spendLock(4s);
    QVERIFY(m_time->lockLeft() == 6s);
    m_time->beginStatement();
    QVERIFY(m_time->lockLeft() == 6s);
    m_time->spendLock(7s);
    QVERIFY(m_time->lockLeft() == 0s);
}

void ActionTimeTest::aNewAction()
{
    m_time->noteWrite();
    m_time->noteTrouble();
    m_time->giveUp();
    m_time->spendLock(20s);
    m_now += 10s;
    m_time->begin();
    QVERIFY(!m_time->hasWritten());
    QVERIFY(m_time->left() == 5s);
    QVERIFY(m_time->lockLeft() == 10s);
    m_time->noteWrite();
    QVERIFY(m_time->left() == 60s);
}

void ActionTimeTest::unknownResultsAreCounted()
{
    ReadingHabits habits;
    QVERIFY(!habits.isReadWhole(u"Select * from StockList"_s));
    habits.noteCount(u"Select * from StockList"_s, 11);
    QVERIFY(!habits.isReadWhole(u"Select * from StockList"_s));
}

void ActionTimeTest::shortOnesAreReadWhole()
{
    ReadingHabits habits;
    habits.noteCount(u"Select * from StockList where StockID = 'it'"_s, 10);
    QVERIFY(habits.isReadWhole(u"Select * from StockList where StockID = 'other 7'"_s));
    QVERIFY(habits.isReadWhole(u"Select * from StockList where StockID = ''"_s));
    QVERIFY(!habits.isReadWhole(u"Select * from StockList where StockName = 'it'"_s));
}

void ActionTimeTest::usedOnesAreReadWhole()
{
    ReadingHabits habits;
    habits.noteCount(u"Select * from InventoryCategory"_s, 100);
    habits.noteAllWanted(u"Select * from InventoryCategory"_s);
    QVERIFY(habits.isReadWhole(u"Select * from InventoryCategory"_s));
}

void ActionTimeTest::unusedOnesNoMore()
{
    ReadingHabits habits;
    habits.noteCount(u"Select * from StockList where StockCategory = 'A'"_s, 3);
    habits.noteRestUnwanted(u"Select * from StockList where StockCategory = 'B'"_s);
    QVERIFY(!habits.isReadWhole(u"Select * from StockList where StockCategory = 'A'"_s));
}

/// What is counted by reading it is read once, as long as it was short the last time.
void ActionTimeTest::shortListsAreReadAtOnce()
{
    const QString drinks = u"Select * from StockList where StockCategory = 'DRINKS'"_s;
    const QString food = u"Select * from StockList where StockCategory = 'FOOD'"_s;
    ReadingHabits habits;
    QVERIFY(!habits.isShortList(drinks));
    habits.noteList(drinks, ReadingHabits::shortListRows);
    QVERIFY(habits.isShortList(food));
    QVERIFY(!habits.isReadWhole(food));
    habits.noteList(food, ReadingHabits::shortListRows + 1);
    QVERIFY(!habits.isShortList(drinks));
}

HARROWBY_CORE_TEST(action_time_test, ActionTimeTest)
#include "action_time_test.moc"
