// SPDX-License-Identifier: MIT
#include "tests/doubles/private_cluster.h"
#include "tests/postgres/acting_till.h"
#include "tests/postgres/server_store.h"
#include "tests/program/test_program.h"

#include <QDir>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>

#include <algorithm>
#include <atomic>
#include <map>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

using namespace harrowby;
using namespace harrowby::postgres;
using namespace harrowby::test;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using Outcome = Actions::Outcome;

/// Each write exactly once, on a primary with a synchronous standby that takes over.
class ActionsFailoverTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void waitsForTheStandby();
    void countsNoUnconfirmedWrite_data();
    void countsNoUnconfirmedWrite();
    void keepsToTheNewerPrimary();
    void losesAndDoublesNothing();

private:
    [[nodiscard]] QList<quint16> ports() const { return {m_primary->port(), m_standby->port()}; }
    [[nodiscard]] QString journal() const { return m_home->filePath(u"actions"_s); }
    [[nodiscard]] int timesSold(qint64 sale)
    {
        return m_primary->sql(u"select count(*) from harrowby.sold where sale = %1"_s.arg(sale)).value(0).toInt();
    }
    /// Kills the primary; the standby takes over, under the other's name from now on.
    void failOver();
    /// The old primary comes back as standby.
    void repair();
    struct SellingTill
    {
        std::atomic<qint64> lastSale = 0; ///< when, by m_clock
        bool isResolved = false;
        std::map<qint64, Outcome> told;
    };
    /// Sells until the shop closes, on a thread of its own.
    void sellOn(SellingTill &till, int number);
    /// What is wrong; empty when nothing is.
    [[nodiscard]] QString judged(const std::map<qint64, Outcome> &told) const;

    std::unique_ptr<PrivateCluster> m_primary;
    std::unique_ptr<PrivateCluster> m_standby;
    std::unique_ptr<QTemporaryDir> m_home;
    QElapsedTimer m_clock;
    std::atomic<bool> m_isClosing = false;
    qint64 m_longest = 0;      ///< from a promotion to the last till's first sale, in milliseconds
    qint64 m_longestInAll = 0; ///< from the kill
};

namespace {

/// Fails soon on a standby that does not answer, and is patient then.
ActingTill::Times patientTimes()
{
    ActingTill::Times times = ActingTill::shortTimes();
    times.patience = {10s, 30s, 10s};
    return times;
}

} // namespace

void ActionsFailoverTest::initTestCase()
{
    if (const QString missing = PrivateCluster::missing(); !missing.isEmpty())
        QSKIP(qPrintable(missing));
    // A standby that has just lost its primary sleeps so long, and is promoted only then: 5 seconds otherwise.
    m_primary = std::make_unique<PrivateCluster>(QStringList{u"wal_retrieve_retry_interval = 100ms"_s});
    m_primary->start();
    for (const QString &text : schemaFiles())
        m_primary->sql(text);
    m_primary->sql(ActingTill::tables());
    m_standby = m_primary->standby();
}

void ActionsFailoverTest::init()
{
    m_home = std::make_unique<QTemporaryDir>();
    m_primary->sql(u"truncate harrowby.sold; update harrowby.stock set pieces = 1000000"_s);
}

/// Whatever a test did, the stock goes with what was sold.
void ActionsFailoverTest::cleanup()
{
    QCOMPARE(m_primary->sql(u"select pieces + (select count(*) from harrowby.sold) from harrowby.stock"_s).value(0),
             u"1000000"_s);
}

void ActionsFailoverTest::failOver()
{
    m_primary->kill9();
    m_standby->promote();
    std::swap(m_primary, m_standby);
}

void ActionsFailoverTest::repair()
{
    m_standby->follow(*m_primary);
    m_primary->sql(u"update harrowby.stock set pieces = pieces"_s); // confirmed: the standby has all that was before
}

void ActionsFailoverTest::waitsForTheStandby()
{
    ActingTill::Times times = ActingTill::shortTimes();
    times.waits.lock = 20s; // which the first sending keeps, while it waits
    ActingTill till(ports(), journal(), times);
    QCOMPARE(till.sell(1), Outcome::Done);
    m_standby->stop();
    QElapsedTimer clock;
    clock.start();
    QCOMPARE(till.sell(2), Outcome::Unknown);
    QVERIFY(clock.elapsed() < 10000); // the two phases take less than two seconds
    QCOMPARE(timesSold(2), 0);        // nobody sees what is not confirmed
    QCOMPARE(till.sell(3), Outcome::Refused);
    m_standby->cont();
    QTRY_COMPARE(till.sell(4), Outcome::Done);
    QCOMPARE(till.told().at(2), Outcome::Done);
    QCOMPARE(timesSold(2), 1);
    QCOMPARE(timesSold(3), 0);
}

void ActionsFailoverTest::countsNoUnconfirmedWrite_data()
{
    QTest::addColumn<QString>("end");
    QTest::addColumn<bool>("fails");
    for (const auto *end : {"pg_cancel_backend", "pg_terminate_backend"}) {
        QTest::addRow("%s, and the standby comes back", end) << QString::fromLatin1(end) << false;
        QTest::addRow("%s, and the primary is lost", end) << QString::fromLatin1(end) << true;
    }
}

/// A wait for the standby that an administrator ends leaves a write that everybody sees and one machine has.
void ActionsFailoverTest::countsNoUnconfirmedWrite()
{
    QFETCH(const QString, end);
    QFETCH(const bool, fails);
    ActingTill till(ports(), journal(), patientTimes());
    QCOMPARE(till.sell(1), Outcome::Done);
    m_standby->stop();
    bool isEnded = false;
    bool isOver = false;
    till.setWaiting([&] {
        if (isOver)
            return;
        const QString waiting = u"from pg_stat_activity where wait_event = 'SyncRep'"_s;
        if (!isEnded) {
            isEnded = m_primary->sql(u"select %1(pid) "_s.arg(end) + waiting).value(0) == u"t";
            return;
        }
        // Everybody sees it now; the till waits for a further write to be confirmed.
        isOver = timesSold(2) == 1 && m_primary->sql(u"select count(*) "_s + waiting).value(0) == u"1";
        if (isOver && fails) {
            m_primary->kill9();
            m_standby->cont();
            m_standby->promote();
            std::swap(m_primary, m_standby);
        } else if (isOver) {
            m_standby->cont();
        }
    });
    QCOMPARE(till.sell(2), Outcome::Done);
    QVERIFY(isEnded);
    QVERIFY(isOver); // not told as done before
    QCOMPARE(timesSold(2), 1);
    if (fails)
        repair();
}

/// The old one lives on and takes connections; it can confirm nothing.
void ActionsFailoverTest::keepsToTheNewerPrimary()
{
    ActingTill till(ports(), journal(), patientTimes());
    QCOMPARE(till.sell(1), Outcome::Done);
    m_standby->promote();
    QCOMPARE(till.sell(2), Outcome::Done); // begun on the old one
    std::swap(m_primary, m_standby);
    QCOMPARE(timesSold(2), 1);
    m_standby->shutDown();
    repair();
    QCOMPARE(timesSold(1), 1);
    QCOMPARE(timesSold(2), 1);
}

void ActionsFailoverTest::sellOn(SellingTill &till, int number)
{
    ActingTill::Times times;
    times.patience = {60s, 60s, 10s};
    ActingTill program(ports(), journal(), times);
    for (qint64 sale = 1; !m_isClosing; ++sale) {
        if (program.sell(number * 10000000LL + sale) == Outcome::Done)
            till.lastSale = m_clock.elapsed();
    }
    till.isResolved = program.actions().resolve();
    till.told = program.told();
}

/// Every sale against what its till was told.
QString ActionsFailoverTest::judged(const std::map<qint64, Outcome> &told) const
{
    std::map<qint64, int> sold;
    for (const QString &sale : m_primary->sql(u"select sale from harrowby.sold"_s))
        ++sold[sale.toLongLong()];
    QString wrong;
    for (const auto &[sale, outcome] : told) {
        const int times = sold.contains(sale) ? sold.at(sale) : 0;
        if (outcome == Outcome::Unknown || times != (outcome == Outcome::Done ? 1 : 0))
            wrong += u"sale %1 is there %2 times; "_s.arg(sale).arg(times);
        sold.erase(sale);
    }
    return sold.empty() ? wrong : wrong + u"%1 sales of nobody"_s.arg(sold.size());
}

void ActionsFailoverTest::losesAndDoublesNothing()
{
    bool isGiven = false;
    const int given = qEnvironmentVariableIntValue("HARROWBY_ROUNDS", &isGiven);
    const int rounds = isGiven ? given : 5;
    m_clock.start();
    std::vector<SellingTill> tills(4); // with one journal, as programs of one machine
    std::vector<std::thread> threads;
    for (std::size_t number = 0; number < tills.size(); ++number)
        threads.emplace_back([this, &tills, number] { sellOn(tills[number], static_cast<int>(number) + 1); });
    const auto longAgo = [&tills](qint64 moment) {
        return std::ranges::any_of(tills, [moment](const SellingTill &till) { return till.lastSale <= moment; });
    };
    for (int round = 0; round < rounds; ++round) {
        QTRY_VERIFY(!longAgo(m_clock.elapsed() - 200)); // all of them sell
        const qint64 killed = m_clock.elapsed();
        failOver();
        const qint64 promoted = m_clock.elapsed();
        while (longAgo(promoted) && m_clock.elapsed() < promoted + 10000)
            QThread::msleep(5);
        const qint64 took = m_clock.elapsed() - promoted;
        QVERIFY2(took < 10000, "a till did not go on");
        m_longest = std::max(m_longest, took);
        m_longestInAll = std::max(m_longestInAll, m_clock.elapsed() - killed);
        repair();
    }
    m_isClosing = true;
    for (std::thread &thread : threads)
        thread.join();
    std::map<qint64, Outcome> told;
    for (const SellingTill &till : tills) {
        QVERIFY(till.isResolved);
        told.insert(till.told.begin(), till.told.end());
    }
    QCOMPARE(judged(told), QString());
    QVERIFY(QDir(journal()).isEmpty());
    qInfo("%zu sales over %d failovers; all four tills had sold again %lld ms after a promotion at most, %lld ms after "
          "the kill",
          told.size(), rounds, m_longest, m_longestInAll);
    QVERIFY2(m_longest < 1000, "later than a second after the promotion");
}

HARROWBY_CORE_TEST(actions_failover_test, ActionsFailoverTest)
#include "actions_failover_test.moc"
