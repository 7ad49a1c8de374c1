// SPDX-License-Identifier: MIT
#include "tests/doubles/database.h"
#include "tests/program/test_program.h"
#include "tests/support/counter.h"
#include "tests/support/till.h"

#include <QApplication>
#include <QMap>
#include <QProcess>
#include <QRegularExpression>

#include <iostream>
#include <string>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::test;

namespace {

constexpr int cartsOfEach = 60;
constexpr int items = 9;
constexpr int startingStock = 100000;
constexpr int salesAndReorders = 2000;
constexpr int unitsOfAReorder = 3;
const QString soldItem = u"A0  |  ITEM 0"_s;

/// The work of a till's process, begun when the test writes to it.
void sellCarts(Till &till, const QString &seed)
{
    till.reportStatements();
    QRandomGenerator random(seed.toUInt());
    for (int cart = 0; cart < cartsOfEach; ++cart)
        till.sell(random);
}

void sellOnes(Till &till)
{
    for (int sale = 0; sale < salesAndReorders; ++sale) {
        till.choose(0);
        till.purchaseAtOnce(); // all in one second
    }
}

/// Every fourth reorder is undone and made again.
void reorder(Till &till)
{
    for (int i = 1; i <= salesAndReorders; ++i) {
        till.reorder(soldItem, unitsOfAReorder);
        if (i % 4 == 0) {
            till.undoReorder();
            till.reorder(soldItem, unitsOfAReorder);
        }
    }
}

int runTill(const QStringList &arguments)
{
    const QString &work = arguments.at(4);
    const bool carts = work != u"sales"_s && work != u"reorders"_s;
    Till till(arguments.at(2), carts ? Till::Pace::Shop : Till::Pace::Hurried);
    till.logIn(arguments.at(3), u"PASS"_s);
    if (!till.state().login.IsLoggedIn)
        return 1;
    say(u"ready"_s);
    std::string word;
    std::getline(std::cin, word);
    if (carts)
        sellCarts(till, work);
    else
        work == u"sales"_s ? sellOnes(till) : reorder(till);
    return 0;
}

/// Units of each item sold by the statements that were done.
QMap<QString, int> unitsSold(const QStringList &statements)
{
    static const QRegularExpression lowering(
        u"^Update Stocklist Set StockAvailable = StockAvailable - (\\d+) where StockID = '(.*)' and "_s);
    QMap<QString, int> sold;
    for (const QString &statement : statements) {
        if (const auto match = lowering.match(statement); match.hasMatch())
            sold[match.captured(2)] += match.captured(1).toInt();
    }
    return sold;
}

QStringList rowsOf(const QString &seller, const QStringList &statements)
{
    QStringList rows;
    for (const QString &statement : statements) {
        if (statement.startsWith(u"INSERT INTO PurchaseCart"_s) && statement.endsWith(quoted(seller) + u')'))
            rows << statement.section(u"VALUES "_s, 1);
    }
    return rows;
}

} // namespace

/// Two stores' tills on one file.
class TwoStoresTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void noSaleIsLost();
    void stockIsExactAgainstReorders();

private:
    static void openShop(const ShopFile &shop, const QStringList &sellers);
    static void start(QProcess &process, const QStringList &arguments);
    static void letGo(QProcess (&stores)[2]);
    static TillReport finish(QProcess &process);
};

void TwoStoresTest::start(QProcess &process, const QStringList &arguments)
{
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(QCoreApplication::applicationFilePath(), QStringList{u"two_stores_test"_s, u"--till"_s} + arguments);
    QVERIFY(process.waitForReadyRead(60000));
    QCOMPARE(process.readAllStandardOutput(), "ready\n");
}

TillReport TwoStoresTest::finish(QProcess &process)
{
    TillReport report;
    process.waitForFinished(200000);
    report.read(process.readAllStandardOutput());
    return report;
}

void TwoStoresTest::openShop(const ShopFile &shop, const QStringList &sellers)
{
    for (int i = 0; i < items; ++i)
        shop.addItem(u"A%1"_s.arg(i), u"ITEM %1"_s.arg(i), 1.25, startingStock);
    for (const QString &seller : sellers)
        shop.addUser(seller, u"PASS"_s, {u"Sales"_s, u"Reorder"_s, u"Undo"_s});
    shop.sql(u"INSERT INTO StoreSettings VALUES (0, 0, '', 0, 0); PRAGMA journal_mode = WAL"_s);
}

void TwoStoresTest::letGo(QProcess (&stores)[2])
{
    for (QProcess &store : stores) {
        store.write("go\n");
        store.waitForBytesWritten();
    }
}

void TwoStoresTest::noSaleIsLost()
{
    const ShopFile shop;
    const QStringList sellers{u"JACK"_s, u"JILL"_s};
    openShop(shop, sellers);
    QProcess stores[2];
    for (int i = 0; i < 2; ++i)
        start(stores[i], {shop.path(), sellers.at(i), QString::number(i + 1)});
    letGo(stores);
    QStringList done;
    for (int i = 0; i < 2; ++i) {
        const TillReport report = finish(stores[i]);
        QCOMPARE(stores[i].exitStatus(), QProcess::NormalExit);
        QCOMPARE(stores[i].exitCode(), 0);
        QCOMPARE(report.failed, QStringList());
        QCOMPARE(rowsOf(sellers.at(i), report.done).size(), cartsOfEach);
        const QStringList stored = shop.rows(
            u"SELECT '(' || quote(PurchaseID) || ',' || quote(PurchasedItems) FROM PurchaseCart WHERE Users = %1"_s.arg(
                quoted(sellers.at(i))));
        QCOMPARE(stored.size(), cartsOfEach);
        for (int cart = 0; cart < cartsOfEach; ++cart)
            QVERIFY(rowsOf(sellers.at(i), report.done).at(cart).startsWith(stored.at(cart)));
        done += report.done;
    }
    const QMap<QString, int> sold = unitsSold(done);
    QVERIFY(!sold.isEmpty());
    for (int i = 0; i < items; ++i) {
        const QString id = u"A%1"_s.arg(i);
        QCOMPARE(shop.cell(u"SELECT StockAvailable FROM StockList WHERE StockID = %1"_s.arg(quoted(id))).toInt(),
                 startingStock - sold.value(id));
    }
    // The two did run at once: their rows alternate.
    const QString alternations = u"SELECT count(*) FROM PurchaseCart a, PurchaseCart b "
                                 "WHERE b.rowid = a.rowid + 1 AND a.Users <> b.Users"_s;
    QVERIFY(shop.cell(alternations).toInt() > 1);
    // They sold within the same seconds, under different IDs.
    QCOMPARE(shop.cell(u"SELECT count(DISTINCT PurchaseID) FROM PurchaseCart"_s).toInt(), 2 * cartsOfEach);
    QCOMPARE(shop.cell(u"SELECT count(*) FROM PurchaseCart WHERE PurchaseID LIKE 'HE%'"_s).toInt(), cartsOfEach);
    QCOMPARE(shop.cell(u"PRAGMA integrity_check"_s), u"ok"_s);
}

void TwoStoresTest::stockIsExactAgainstReorders()
{
    const ShopFile shop;
    const QStringList sellers{u"JACK"_s, u"JILL"_s};
    openShop(shop, sellers);
    QProcess stores[2];
    start(stores[0], {shop.path(), sellers.at(0), u"sales"_s});
    start(stores[1], {shop.path(), sellers.at(1), u"reorders"_s});
    letGo(stores);
    for (QProcess &store : stores) {
        finish(store);
        QCOMPARE(store.exitStatus(), QProcess::NormalExit);
        QCOMPARE(store.exitCode(), 0);
    }
    QCOMPARE(shop.cell(u"SELECT count(*) FROM PurchaseCart"_s).toInt(), salesAndReorders);
    QCOMPARE(shop.cell(u"SELECT StockAvailable FROM StockList WHERE StockID = 'A0'"_s).toInt(),
             startingStock - salesAndReorders + salesAndReorders * unitsOfAReorder);
    // The two did run at once: there were sales between two reorders.
    QVERIFY(shop.cell(u"SELECT count(*) FROM SysUsage a, SysUsage b WHERE b.rowid = a.rowid + 1 AND "
                      "a.SystemUsage LIKE '%Added%' AND b.SystemUsage LIKE '%New Available%'"_s)
                .toInt() > 1);
    QCOMPARE(shop.cell(u"PRAGMA integrity_check"_s), u"ok"_s);
}

int two_stores_test(int argc, char **argv)
{
    const QApplication application(argc, argv);
    if (argc == 5 && qstrcmp(argv[1], "--till") == 0)
        return runTill(QCoreApplication::arguments());
    TwoStoresTest test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}

#include "two_stores_test.moc"
