// SPDX-License-Identifier: MIT
#include "busy_wait.h"
#include "sql.h"
#include "store_files.h"

#include <QEventLoop>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <sqlite3.h>

#include <numeric>
#include <stdexcept>
#include <vector>

using namespace Qt::StringLiterals;
using namespace harrowby::app;
using namespace harrowby::app::test;
using namespace std::chrono_literals;

class BusyWaitTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void budgetIsOneForManyStatements();
    void stepsAreShortAndEndWithTheBudget();
    void lockThatGoesLetsTheStatementThrough();
    void idleEventLoopFillsUp();
    void boxWithinAnActionDoesNotFillUp();
    void yieldingWithinAnActionDoesNotFillUp();
    void sleeperThatThrowsEndsTheWait();
    void longWaitIsWatched();

private:
    /// Runs a change on the locked file. True when it failed because of the lock.
    bool isRefused()
    {
        const auto error = runSql(m_till.get(), u"UPDATE StockList SET StockAvailable = 1"_s);
        return error && error->code == SQLITE_BUSY;
    }
    void lock() { QVERIFY(!runSql(m_other.get(), u"BEGIN IMMEDIATE"_s)); }
    void unlock() { QVERIFY(!runSql(m_other.get(), u"ROLLBACK"_s)); }
    [[nodiscard]] std::chrono::milliseconds slept() const
    {
        return std::accumulate(m_steps.begin(), m_steps.end(), 0ms);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::vector<std::chrono::milliseconds> m_steps;
    Database m_other;
    Database m_till;
};

void BusyWaitTest::init()
{
    m_till.reset();
    m_other.reset();
    m_steps.clear();
    m_folder = std::make_unique<QTemporaryDir>();
    const QString path = m_folder->filePath(u"shop.sqlite"_s);
    makeStore(path);
    QVERIFY(!openDatabase(path, OpenMode::Write, m_other));
    QVERIFY(!openDatabase(path, OpenMode::Write, m_till));
}

void BusyWaitTest::budgetIsOneForManyStatements()
{
    BusyWait wait(10s, [this](auto step) { m_steps.push_back(step); });
    wait.attach(m_till.get());
    lock();
    for (int i = 0; i < 20; ++i)
        QVERIFY(isRefused());
    QCOMPARE(slept().count(), (10s / 1ms));
    QCOMPARE(wait.remaining().count(), 0);

    wait.refill();
    QVERIFY(isRefused());
    QCOMPARE(slept().count(), (20s / 1ms));
}

void BusyWaitTest::stepsAreShortAndEndWithTheBudget()
{
    BusyWait wait(120ms, [this](auto step) { m_steps.push_back(step); });
    wait.attach(m_till.get());
    lock();
    QVERIFY(isRefused());
    QCOMPARE(m_steps, (std::vector<std::chrono::milliseconds>{1ms, 2ms, 5ms, 10ms, 15ms, 25ms, 50ms, 12ms}));
}

void BusyWaitTest::lockThatGoesLetsTheStatementThrough()
{
    BusyWait wait(10s, [this](auto step) {
        m_steps.push_back(step);
        if (m_steps.size() == 3)
            unlock();
    });
    wait.attach(m_till.get());
    lock();
    QVERIFY(!isRefused());
    QCOMPARE(wait.remaining().count(), (10s / 1ms) - 8);
}

void BusyWaitTest::idleEventLoopFillsUp()
{
    BusyWait wait(100ms, [](auto) {});
    wait.attach(m_till.get());
    wait.followEventLoop();
    lock();
    QVERIFY(isRefused());
    QCOMPARE(wait.remaining().count(), 0);
    QEventLoop loop;
    QTimer::singleShot(1, &loop, &QEventLoop::quit);
    loop.exec(); // has nothing to do until the timer: the action is over
    QCOMPARE(wait.remaining().count(), 100);
}

void BusyWaitTest::boxWithinAnActionDoesNotFillUp()
{
    BusyWait wait(100ms, [](auto) {});
    wait.attach(m_till.get());
    wait.followEventLoop();
    lock();
    QEventLoop action;
    QTimer::singleShot(1, &action, [&] {
        QVERIFY(isRefused());
        QEventLoop box; // waits for its answer in the middle of the action
        QTimer::singleShot(1, &box, &QEventLoop::quit);
        box.exec();
        QCOMPARE(wait.remaining().count(), 0);
        action.quit();
    });
    action.exec();
}

void BusyWaitTest::yieldingWithinAnActionDoesNotFillUp()
{
    BusyWait wait(100ms, [](auto) {});
    wait.attach(m_till.get());
    wait.followEventLoop();
    lock();
    QVERIFY(isRefused());
    QCoreApplication::processEvents();
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    QCOMPARE(wait.remaining().count(), 0);
}

void BusyWaitTest::sleeperThatThrowsEndsTheWait()
{
    BusyWait wait(100ms, [](auto) { throw std::runtime_error("no sleep"); });
    wait.attach(m_till.get());
    lock();
    QVERIFY(isRefused());
}

void BusyWaitTest::longWaitIsWatched()
{
    BusyWait wait(1s, [this](auto step) { m_steps.push_back(step); });
    std::vector<std::chrono::milliseconds> seen;
    wait.setWatcher([&] { seen.push_back(slept()); });
    wait.attach(m_till.get());
    lock();
    QVERIFY(isRefused());
    QVERIFY(!seen.empty());
    QVERIFY2(seen.front() >= 300ms && seen.front() < 360ms, qPrintable(QString::number(seen.front().count())));
    QCOMPARE(seen.back(), slept());
    // What is waited for in the same action is said at once; in the next one only after a while.
    seen.clear();
    m_steps.clear();
    wait.refill();
    QVERIFY(isRefused());
    QVERIFY(seen.front() >= 300ms);
    wait.setWatcher({});
    wait.refill();
    QVERIFY(isRefused());
}

QTEST_GUILESS_MAIN(BusyWaitTest)
#include "busy_wait_test.moc"
