// SPDX-License-Identifier: MIT
#include "app/shop/busy_wait.h"
#include "app/shop/store_opening.h"
#include "app/shop/wait_sign.h"
#include "engine/database.h"
#include "tests/app/store_files.h"
#include "tests/program/test_program.h"

#include <QApplication>
#include <QEventLoop>
#include <QLabel>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QWidget>
#include <QWindow>

#include <algorithm>

#include <sqlite3.h>

#include <numeric>
#include <stdexcept>
#include <vector>

using namespace Qt::StringLiterals;
using namespace harrowby;
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
    void shortOpeningMakesNoWindow();
    void openingThatWaitsIsSaid();
    void signIsAPartOfTheWindowInFront();
    void signStandsAloneWithoutAWindow();
    void waitWhileTheWindowLoadsIsSaid_data();
    void waitWhileTheWindowLoadsIsSaid();

private:
    /// Runs a change on the locked file. True when it failed because of the lock.
    bool isRefused()
    {
        const auto error = runSql(m_till.get(), u"UPDATE StockList SET StockAvailable = 1"_s);
        return error && error->code == SQLITE_BUSY;
    }
    [[nodiscard]] QString path() const { return m_folder->filePath(u"shop.sqlite"_s); }
    void lock() { QVERIFY(!runSql(m_other.get(), u"BEGIN IMMEDIATE"_s)); }
    void unlock() { QVERIFY(!runSql(m_other.get(), u"ROLLBACK"_s)); }
    [[nodiscard]] std::chrono::milliseconds slept() const
    {
        return std::accumulate(m_steps.begin(), m_steps.end(), 0ms);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::vector<std::chrono::milliseconds> m_steps;
    SqliteDatabase m_other;
    SqliteDatabase m_till;
};

void BusyWaitTest::init()
{
    m_till.reset();
    m_other.reset();
    m_steps.clear();
    m_folder = std::make_unique<QTemporaryDir>();
    makeStore(path());
    QVERIFY(!into(m_other, openDatabase(path(), OpenMode::Write)));
    QVERIFY(!into(m_till, openDatabase(path(), OpenMode::Write)));
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
    loop.exec(); // an idle event loop ends the action
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
    // A further wait of the same action is told at once; one of the next action only after a while.
    seen.clear();
    m_steps.clear();
    wait.refill();
    QVERIFY(isRefused());
    QVERIFY(seen.front() >= 300ms);
    wait.setWatcher({});
    wait.refill();
    QVERIFY(isRefused());
}

/// The text in the opening's window; empty while there is none.
static QString saidOfOpening()
{
    for (const QWidget *window : QApplication::topLevelWidgets()) {
        if (const auto *text = window->findChild<QLabel *>(u"openingText"_s))
            return text->text();
    }
    return {};
}

void BusyWaitTest::shortOpeningMakesNoWindow()
{
    BusyWait wait;
    bool looked = false;
    QString said;
    QMetaObject::invokeMethod(
        qApp,
        [&] {
            looked = true;
            said = saidOfOpening();
        },
        Qt::QueuedConnection);
    m_till.reset();
    QVERIFY(!into(m_till, openStoreBeside(path(), wait)));
    QVERIFY(looked);
    QCOMPARE(said, QString());
}

void BusyWaitTest::openingThatWaitsIsSaid()
{
    BusyWait wait;
    lock();
    QString said;
    QTimer look;
    connect(&look, &QTimer::timeout, this, [&] {
        said = saidOfOpening();
        if (!said.contains(u"locked"_s))
            return;
        look.stop();
        unlock();
    });
    look.start(5);
    m_till.reset();
    QVERIFY(!into(m_till, openStoreBeside(path(), wait)));
    QCOMPARE(said, u"Another program keeps the store \"shop.sqlite\" locked. Waiting for it \u2026"_s);
    QCOMPARE(saidOfOpening(), QString());
}

/// The sign's own window; null while it is not shown.
static const QWindow *loneSign()
{
    const QWindowList windows = QGuiApplication::topLevelWindows();
    const auto found = std::ranges::find_if(
        windows, [](const QWindow *window) { return window->objectName() == u"waitSign"_s && window->isVisible(); });
    return found != windows.end() ? *found : nullptr;
}

void BusyWaitTest::signIsAPartOfTheWindowInFront()
{
    QWidget window;
    window.resize(800, 600);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    WaitSign sign(u"Waiting"_s, u"It is locked."_s);
    sign.show();
    const auto *part = window.findChild<QWidget *>(u"waitSign"_s);
    QVERIFY(part != nullptr && part->isVisible());
    QCOMPARE(loneSign(), nullptr);
    QCoreApplication::processEvents();
    QVERIFY(!part->isVisible());
}

void BusyWaitTest::signStandsAloneWithoutAWindow()
{
    QWidget window; // shown, but nothing can be painted into it before the next event
    window.show();
    WaitSign sign(u"Waiting"_s, u"It is locked."_s);
    sign.show();
    QVERIFY(loneSign() != nullptr);
    QCOMPARE(QApplication::topLevelWidgets(), QWidgetList{&window}); // the sign counts as no window of the program
    sign.show();
    QVERIFY(loneSign() != nullptr);

    // The next event hides it, which must not end the program as its last window closing.
    window.hide();
    bool ended = false;
    connect(qApp, &QGuiApplication::lastWindowClosed, this, [&] { ended = true; });
    QVERIFY(QGuiApplication::quitOnLastWindowClosed());
    QCoreApplication::processEvents();
    QCOMPARE(loneSign(), nullptr);
    QVERIFY(!ended);
    sign.show();
    QVERIFY(loneSign() != nullptr);
}

void BusyWaitTest::waitWhileTheWindowLoadsIsSaid_data()
{
    QTest::addColumn<bool>("logged");
    QTest::addColumn<QString>("statement");
    const auto change = u"UPDATE StockList SET StockAvailable = 1"_s;
    QTest::newRow("write-ahead log, a change") << true << change;
    QTest::newRow("rollback journal, a change") << false << change;
    QTest::newRow("rollback journal, a read") << false << u"SELECT * FROM StockList"_s;
}

/// Opening is an action of its own. Even when it has waited in vain for the write-ahead log, loading waits anew, and
/// says so.
void BusyWaitTest::waitWhileTheWindowLoadsIsSaid()
{
    QFETCH(const bool, logged);
    QFETCH(const QString, statement);
    m_till.reset();
    runAll(path(), {u"PRAGMA journal_mode = DELETE"_s});
    BusyWait wait(10s, [](auto) {});
    {
        SqliteStatement reading(m_other.get(), u"SELECT * FROM StockList"_s);
        QVERIFY(logged || reading.next()); // keeps the store from its log
        QVERIFY(!into(m_till, openStoreBeside(path(), wait)));
    }
    QCOMPARE(readText(m_till.get(), u"PRAGMA journal_mode"_s), logged ? u"wal"_s : u"delete"_s);
    WaitSign sign(u"Waiting"_s, u"It is locked."_s);
    bool isSaid = false;
    wait.setWatcher([&] {
        sign.show();
        isSaid = loneSign() != nullptr;
        unlock();
    });
    QVERIFY(!runSql(m_other.get(), u"BEGIN EXCLUSIVE"_s));
    QVERIFY(!runSql(m_till.get(), statement));
    QVERIFY(isSaid);
    m_till.reset();
}

HARROWBY_TEST(app_busy_wait_test, BusyWaitTest)
#include "busy_wait_test.moc"
