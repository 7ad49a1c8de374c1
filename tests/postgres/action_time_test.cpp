// SPDX-License-Identifier: MIT
#include "postgres/action_time.h"
#include "postgres/reading_habits.h"
#include "postgres/writer.h"
#include "tests/postgres/scripted_server.h"
#include "tests/program/test_program.h"

#include <QTemporaryDir>
#include <QTest>

#include <atomic>
#include <mutex>
#include <utility>

using namespace harrowby;
using namespace harrowby::postgres;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using harrowby::test::ScriptedServer;
using Outcome = Actions::Outcome;

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
    void theRestIsOneForAllWrites();
    void whatIsLeftIsForAWholeWrite();
    void unknownResultsAreCounted();
    void shortOnesAreReadWhole();
    void usedOnesAreReadWhole();
    void unusedOnesNoMore();
    void shortListsAreReadAtOnce();

private:
    std::atomic<std::chrono::milliseconds> m_now{1'000'000ms};
    std::unique_ptr<ActionTime> m_time;
};

namespace {

/// A till whose server takes its time, says what it is told to to each sending of a write, and claims each number.
class SlowTill
{
public:
    enum class Says { Done, Nothing, ReadOnly };
    struct Sending
    {
        std::chrono::seconds takes;
        Says says;
    };

    SlowTill(ActionTime &time, std::atomic<std::chrono::milliseconds> &now) :
        m_now(now), m_server(ScriptedServer::Manners(), [this](const QByteArray &text, int) { return answer(text); }),
        m_access({m_server.conninfo()}, {}, time), m_writer(m_access, m_folder.path(), 60s)
    {
    }

    /// How a write ends whose sendings go like this, and further ones well; these have to be made.
    Outcome write(const QList<Sending> &sendings)
    {
        exchange(sendings);
        const Outcome outcome = m_writer.write({{}, "update", u"a sale"_s}).outcome;
        return exchange({}).isEmpty() ? outcome : Outcome::Unknown;
    }
    void hangUp() { m_server.hangUp(); }

private:
    ScriptedServer::Answer answer(const QByteArray &text)
    {
        if (text.contains("store_identity"))
            return of({"5f0c9a34-3e6a-4c3f-9a52-1f6b7d0e8a11"});
        if (text.contains("claim_action")) {
            const qsizetype number = text.indexOf(", ") + 2;
            return of(QByteArray::number(text.sliced(number).chopped(1).toLongLong() + 1));
        }
        const Sending sending = takeSending();
        m_now = m_now.load() + sending.takes;
        if (sending.says == Says::Nothing)
            return {{}, ScriptedServer::Then::HangUp};
        if (sending.says == Says::ReadOnly)
            return {{ScriptedServer::error("25006", "read-only") + ScriptedServer::ready()}};
        return {{ScriptedServer::rows({"act"}, {{""}}) + ScriptedServer::done() + ScriptedServer::done("UPDATE 1") +
                 ScriptedServer::ready()}};
    }

    QList<Sending> exchange(const QList<Sending> &sendings)
    {
        const std::lock_guard lock(m_mutex);
        return std::exchange(m_sendings, sendings);
    }

    Sending takeSending()
    {
        const std::lock_guard lock(m_mutex);
        return m_sendings.isEmpty() ? Sending{0s, Says::Done} : m_sendings.takeFirst();
    }

    static ScriptedServer::Answer of(const QByteArray &value)
    {
        return {{ScriptedServer::rows({"value"}, {{value}}) + ScriptedServer::done() + ScriptedServer::ready()}};
    }

    std::atomic<std::chrono::milliseconds> &m_now;
    std::mutex m_mutex;
    QList<Sending> m_sendings; ///< those to come
    QTemporaryDir m_folder;
    ScriptedServer m_server;
    ServerAccess m_access;
    Writer m_writer;
};

using Says = SlowTill::Says;

} // namespace

void ActionTimeTest::init()
{
    m_time = std::make_unique<ActionTime>(ActionLimits{5s, 60s, 10s}, [this] { return m_now.load(); });
}

void ActionTimeTest::beforeTheFirstWrite()
{
    QVERIFY(m_time->left() == 5s);
    m_now = m_now.load() + 3s;
    QVERIFY(m_time->left() == 2s);
    QVERIFY(m_time->waited() == 3s);
    m_time->beginStatement();
    QVERIFY(m_time->left() == 5s);
    m_time->noteTrouble(); // changes nothing yet
    m_now = m_now.load() + 5s;
    QVERIFY(m_time->isOver());
    m_now = m_now.load() + 5s;
    QVERIFY(m_time->left() == 0s);
}

void ActionTimeTest::afterIt()
{
    m_time->noteWrite();
    QVERIFY(m_time->hasWritten());
    m_now = m_now.load() + 1h;
    QVERIFY(m_time->left() == 60s); // no trouble yet
    m_time->noteTrouble();
    m_now = m_now.load() + 20s;
    m_time->beginStatement();
    m_time->noteTrouble();
    QVERIFY(m_time->left() == 40s); // one time for all of the rest
    m_now = m_now.load() + 40s;
    QVERIFY(m_time->isOver());
}

void ActionTimeTest::givenUp()
{
    m_time->noteWrite();
    QVERIFY(m_time->isUnderWay());
    m_time->giveUp();
    QVERIFY(m_time->isOver());
    QVERIFY(!m_time->isUnderWay());
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
    m_now = m_now.load() + 10s;
    m_time->begin();
    QVERIFY(!m_time->hasWritten());
    QVERIFY(m_time->left() == 5s);
    QVERIFY(m_time->lockLeft() == 10s);
    m_time->noteWrite();
    QVERIFY(m_time->left() == 60s);
}

/// However many of them meet with trouble.
void ActionTimeTest::theRestIsOneForAllWrites()
{
    SlowTill till(*m_time, m_now);
    QVERIFY(till.write({{1s, Says::Nothing}, {50s, Says::Done}}) == Outcome::Done);
    QVERIFY(m_time->left() == 10s);
    QVERIFY(till.write({{1s, Says::Nothing}, {7s, Says::Done}}) == Outcome::Done);
    QVERIFY(m_time->left() == 2s);
    QVERIFY(till.write({{3s, Says::Done}}) == Outcome::Done);
    QVERIFY(till.write({{0s, Says::Nothing}}) == Outcome::Refused); // not sent again
    m_time->begin();
    QVERIFY(till.write({{1s, Says::Nothing}, {7s, Says::Done}}) == Outcome::Done);
}

/// What it takes to reach a server is of the time that a sending has whose answer is lost.
void ActionTimeTest::whatIsLeftIsForAWholeWrite()
{
    SlowTill till(*m_time, m_now);
    QVERIFY(till.write({{0s, Says::Done}}) == Outcome::Done);
    till.hangUp();
    QVERIFY(till.write({{70s, Says::ReadOnly}, {0s, Says::Nothing}}) == Outcome::Refused);
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
