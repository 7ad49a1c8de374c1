// SPDX-License-Identifier: MIT
#include "app/hold/cart_holder.h"
#include "app/shop/busy_wait.h"
#include "app/shop/store_guard.h"
#include "app/shop/store_open.h"
#include "app/till/till.h"

#include "tests/doubles/database.h"
#include "tests/program/test_program.h"
#include "tests/support/counter.h"
#include "tests/support/forked_process.h"
#include "tests/support/till.h"
#include "tests/ui/reporting_records.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QMap>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <sqlite3.h>

#include <algorithm>
#include <memory>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::test;

namespace {

constexpr qint64 longestDelayUs = 4000;
/// Kills after which a new shop is made, so that comparing all of its rows stays quick.
constexpr int killsOfAShop = 60;

/// The store program's own beside the window.
struct Beside
{
    explicit Beside(sqlite3 *database) : records(database) {}

    ReportingRecords records;
    app::Till program{harrowby::Counter::instance(),
                      records,
                      {[](const QString &, const QString &, const QString &defaultValue) { return defaultValue; }, {}},
                      [] {}};
    app::HeldCarts carts{records};
    app::CartHolder holder{harrowby::Counter::instance(), carts};
};

/// Puts two items into the cart.
void scan(QRandomGenerator &random)
{
    for (int codes = 0; codes < 2; ++codes)
        Q_EMIT harrowby::Counter::instance().codeRead(u"CODE%1"_s.arg(random.bounded(9)));
}

void sellByCode(Till &till, Beside &, QRandomGenerator &random)
{
    scan(random);
    till.purchase();
}

/// Some carts are held at each moment.
void holdAndRecall(Till &till, Beside &beside, QRandomGenerator &random)
{
    constexpr qsizetype mostHeld = 3;
    scan(random);
    (void)beside.holder.hold(QString::number(random.bounded(1'000'000)));
    const auto held = beside.carts.list();
    std::vector<CounterMisfit> misfits;
    if (!held || held->size() <= mostHeld ||
        beside.holder.recall(held->constFirst(), misfits) != app::HeldCarts::Taken::Done)
        return;
    till.purchase();
}

/// What a till does again and again.
struct Work
{
    void (*work)(Till &till, Beside &beside, QRandomGenerator &random);
    const char *wholeOnce; ///< beginning of the statement that ends one round
    int kills;
};

const QMap<QString, Work> &works()
{
    static const QMap<QString, Work> all{
        {u"sell"_s,
         {[](Till &till, Beside &, QRandomGenerator &random) { till.sell(random); }, "INSERT INTO PurchaseCart", 60}},
        {u"undo"_s,
         {[](Till &till, Beside &, QRandomGenerator &random) {
              till.sell(random);
              till.undo();
          },
          "Delete from PurchaseCart", 30}},
        {u"save"_s,
         {[](Till &till, Beside &, QRandomGenerator &random) {
              const QString id = u"N%1"_s.arg(random.bounded(1'000'000));
              till.saveItem(id, u"NEW"_s, random.bounded(1000));
              till.saveItem(id, u"CHANGED"_s, random.bounded(1000));
          },
          "UPDATE StockList SET StockID", 30}},
        {u"reorder"_s,
         {[](Till &till, Beside &, QRandomGenerator &random) {
              till.reorder(u"A%1  |  NAME"_s.arg(random.bounded(9)), random.bounded(1, 100));
              till.undoReorder();
          },
          "UPDATE StockList SET StockAvailable", 20}},
        {u"delete a category"_s,
         {[](Till &till, Beside &, QRandomGenerator &random) {
              const QString name = u"C%1"_s.arg(random.bounded(1'000'000));
              till.addCategory(name);
              till.saveItem(u"A%1"_s.arg(random.bounded(9)), name, 1000);
              till.deleteCategory();
          },
          "Update StockList Set StockCategory = 'OTHER CATEGORY'", 30}},
        {u"sell by code"_s, {sellByCode, "INSERT INTO PurchaseCart", 15}},
        {u"hold and recall"_s, {holdAndRecall, "delete from HarrowbyHeld where HeldID", 25}},
    };
    return all;
}

/// Opens the store as the store program does, and works until it is killed.
int runTill(const QString &path, quint32 seed, const Work &work)
{
    app::BusyWait wait;
    auto database = app::openStore(path, wait);
    if (!database)
        return 2;
    const app::StoreGuard store(*std::move(database), path, wait);
    Beside beside(store.database());
    Till till(store.database());
    till.reportStatements([&records = beside.records](const QString &done) { return records.takesPart(done); });
    till.logIn(u"JACK"_s, u"PASS"_s);
    if (!till.state().login.IsLoggedIn)
        return 1;
    QRandomGenerator random(seed);
    for (;;)
        work.work(till, beside, random);
}

quint32 seed()
{
    bool isGiven = false;
    const uint given = qEnvironmentVariable("HARROWBY_SEED").toUInt(&isGiven);
    return isGiven ? given : 20180305U;
}

void wait(qint64 microseconds)
{
    QElapsedTimer timer;
    timer.start();
    while (timer.nsecsElapsed() < microseconds * 1000) {
    }
}

} // namespace

/// The process is killed at random points, again and again, on one file. HARROWBY_SEED begins elsewhere, HARROWBY_KILLS
/// kills so many times at each work.
class KillTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void theFileHoldsWhatWasDone_data();
    void theFileHoldsWhatWasDone();

private:
    void makeShop();
    TillReport workUntilKilled(const Work &work);
    void checkFile(const TillReport &report);
    void killOnce(const Work &work);

    [[nodiscard]] QString path() const { return m_folder->filePath(u"shop.sqlite"_s); }

    std::unique_ptr<QTemporaryDir> m_folder;    ///< of the file, which no process has open between two tills
    std::unique_ptr<test::Database> m_expected; ///< what the file must hold
    QRandomGenerator m_random;
    int m_underWay = 0;   ///< kills within a statement
    qsizetype m_done = 0; ///< statements that had been done
};

void KillTest::initTestCase()
{
    // Before forking, one window is opened but not painted: Qt's painting starts threads, which a fork would not have.
    // The only other thread is Qt Test's watchdog.
    (void)harrowby::Counter::instance();
    const ShopFile shop;
    const Till till(shop.path());
    QVERIFY(QDir(u"/proc/self/task"_s).entryList(QDir::Dirs | QDir::NoDotAndDotDot).size() <= 2);
}

void KillTest::init()
{
    m_random.seed(seed());
    qInfo("HARROWBY_SEED=%u", seed());
    m_underWay = 0;
    m_done = 0;
}

void KillTest::makeShop()
{
    const ShopFile shop;
    shop.sql(u"INSERT INTO StoreSettings VALUES (0, 0, '', 0, 0)"_s);
    shop.addUser(u"JACK"_s, u"PASS"_s, {u"Sales"_s, u"Undo"_s, u"Settings"_s, u"Reorder"_s});
    for (int i = 0; i < 9; ++i)
        shop.addItem(u"A%1"_s.arg(i), u"NAME OF A%1"_s.arg(i), 1.25, 100000);
    shop.sql(app::kept::code().making.join(u';'));
    for (int i = 0; i < 9; ++i)
        shop.sql(u"INSERT INTO HarrowbyCode VALUES ('CODE%1', 'A%1', %1 + 1)"_s.arg(i));
    m_folder = std::make_unique<QTemporaryDir>();
    m_expected = std::make_unique<test::Database>(u":memory:"_s);
    QVERIFY(m_expected->copy(test::Database(shop.path())));
    QVERIFY(test::Database(path()).copy(*m_expected));
}

/// Lets a till do its work once at least, and kills it at a random point of a later time.
TillReport KillTest::workUntilKilled(const Work &work)
{
    const QByteArray wholeOnce = QByteArray("\nA1 ") + work.wholeOnce;
    const quint32 itsSeed = m_random.generate();
    ForkedProcess till([&] { return runTill(path(), itsSeed, work); });
    const int moreLines = m_random.bounded(1, 60);
    QByteArray heard;
    qsizetype done = -1;
    while (done < 0 || heard.count('\n') < heard.first(done).count('\n') + moreLines) {
        const QByteArray more = till.read();
        if (more.isEmpty())
            break;
        heard += more;
        done = heard.indexOf(wholeOnce);
    }
    wait(m_random.bounded(longestDelayUs));
    heard += till.kill();
    TillReport report;
    report.read(heard);
    if (till.hasEnded())
        report.failed << u"the till ended by itself"_s;
    return report;
}

void KillTest::checkFile(const TillReport &report)
{
    test::Database file(path());
    // The next till opens the file and its log as the killed one left them.
    sqlite3_db_config(file.handle(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
    QCOMPARE(file.integrity(), u"ok"_s);
    for (const QString &statement : report.done)
        QVERIFY2(m_expected->run(statement), qPrintable(statement));
    const QStringList found = file.everything();
    if (found != m_expected->everything() && !report.underWay.isEmpty())
        QVERIFY2(m_expected->run(report.underWay), qPrintable(report.underWay));
    QCOMPARE(found, m_expected->everything());
}

void KillTest::theFileHoldsWhatWasDone_data()
{
    QTest::addColumn<QString>("name");
    for (auto work = works().cbegin(); work != works().cend(); ++work)
        QTest::newRow(qPrintable(work.key())) << work.key();
}

void KillTest::killOnce(const Work &work)
{
    const TillReport report = workUntilKilled(work);
    QCOMPARE(report.failed, QStringList());
    // The one before it may have been killed in the middle.
    QVERIFY(std::ranges::any_of(report.done, [&work](const QString &statement) {
        return statement.startsWith(QLatin1StringView(work.wholeOnce));
    }));
    checkFile(report);
    m_underWay += report.underWay.isEmpty() ? 0 : 1;
    m_done += report.done.size();
}

void KillTest::theFileHoldsWhatWasDone()
{
    QFETCH(const QString, name);
    const Work &work = works()[name];
    bool isGiven = false;
    const int given = qEnvironmentVariableIntValue("HARROWBY_KILLS", &isGiven);
    const int kills = isGiven ? given : work.kills;
    // A third of them comes within a statement; that none of a few did would be chance.
    const auto areEnough = [&](int kill) { return kill >= kills && (m_underWay > 0 || kill >= 10 * kills); };
    for (int kill = 0; !areEnough(kill); ++kill) {
        if (kill % killsOfAShop == 0)
            makeShop();
        killOnce(work);
        if (QTest::currentTestFailed()) {
            qWarning("at kill %d", kill + 1);
            return;
        }
    }
    qInfo("%d kills, %d within a statement, after %lld statements", kills, m_underWay, static_cast<qlonglong>(m_done));
    QVERIFY(m_underWay > 0);
}

HARROWBY_TEST(kill_test, KillTest)
#include "kill_test.moc"
