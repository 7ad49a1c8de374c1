// SPDX-License-Identifier: MIT
#include "support/counter.h"
#include "support/database.h"
#include "support/till.h"

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

/// A store: waits for the word to start, and sells.
int runTill(const QStringList &arguments)
{
    Till till(arguments.at(2));
    till.logIn(arguments.at(3), u"PASS"_s);
    if (!till.state().IsLoggedIn)
        return 1;
    say(u"ready"_s);
    std::string word;
    std::getline(std::cin, word);
    till.reportStatements();
    QRandomGenerator random(arguments.at(4).toUInt());
    for (int cart = 0; cart < cartsOfEach; ++cart)
        till.sell(random);
    return 0;
}

/// Units that each item lost by the statements that were done.
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

private:
    static void start(QProcess &process, const QStringList &arguments);
    static TillReport finish(QProcess &process);
};

void TwoStoresTest::start(QProcess &process, const QStringList &arguments)
{
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(QCoreApplication::applicationFilePath(), QStringList{u"--till"_s} + arguments);
    QVERIFY(process.waitForReadyRead(60000));
    QCOMPARE(process.readAllStandardOutput(), "ready\n");
}

TillReport TwoStoresTest::finish(QProcess &process)
{
    TillReport report;
    process.waitForFinished(100000);
    report.read(process.readAllStandardOutput());
    return report;
}

void TwoStoresTest::noSaleIsLost()
{
    ShopFile shop;
    for (int i = 0; i < items; ++i)
        shop.addItem(u"A%1"_s.arg(i), u"ITEM %1"_s.arg(i), 1.25, startingStock);
    shop.sql(u"INSERT INTO StoreSettings VALUES (0, 0, '', 0, 0); PRAGMA journal_mode = WAL"_s);
    const QStringList sellers{u"JACK"_s, u"JILL"_s};
    QProcess stores[2];
    for (int i = 0; i < 2; ++i) {
        shop.addUser(sellers.at(i), u"PASS"_s, {u"Sales"_s});
        start(stores[i], {shop.path(), sellers.at(i), QString::number(i + 1)});
    }
    for (QProcess &store : stores) {
        store.write("go\n");
        store.waitForBytesWritten();
    }
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
    // They did get in each other's way: their rows alternate.
    const QString alternations = u"SELECT count(*) FROM PurchaseCart a, PurchaseCart b "
                                 "WHERE b.rowid = a.rowid + 1 AND a.Users <> b.Users"_s;
    QVERIFY(shop.cell(alternations).toInt() > 1);
    QCOMPARE(shop.cell(u"PRAGMA integrity_check"_s), u"ok"_s);
}

int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    if (argc == 5 && qstrcmp(argv[1], "--till") == 0)
        return runTill(QCoreApplication::arguments());
    TwoStoresTest test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}

#include "two_stores_test.moc"
