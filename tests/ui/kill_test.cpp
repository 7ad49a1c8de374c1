// SPDX-License-Identifier: MIT
#include "support/counter.h"
#include "support/database.h"
#include "support/till.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <sqlite3.h>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::test;

namespace {

constexpr int kills = 60;
constexpr qint64 longestDelayUs = 4000;

/// Sells until it is killed.
int runTill(const QStringList &arguments)
{
    Till till(arguments.at(2));
    till.reportStatements();
    till.logIn(u"JACK"_s, u"PASS"_s);
    if (!till.state().IsLoggedIn)
        return 1;
    QRandomGenerator random(arguments.at(3).toUInt());
    for (;;)
        till.sell(random);
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

bool isPurchase(const QString &statement)
{
    return statement.startsWith(u"INSERT INTO PurchaseCart"_s);
}

} // namespace

/// The process is killed at random points, again and again, on one file.
class KillTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void theFileHoldsWhatWasDone();

private:
    TillReport sellUntilKilled();
    void checkFile(const TillReport &report);

    [[nodiscard]] QString path() const { return m_folder.filePath(u"shop.sqlite"_s); }

    QTemporaryDir m_folder;             ///< of a file that nobody has open between two tills
    Database m_expected{u":memory:"_s}; ///< what the file must hold
    QRandomGenerator m_random;
};

void KillTest::init()
{
    m_random.seed(seed());
    qInfo("HARROWBY_SEED=%u", seed());
    const ShopFile shop;
    shop.sql(u"INSERT INTO StoreSettings VALUES (0, 0, '', 0, 0)"_s);
    shop.addUser(u"JACK"_s, u"PASS"_s, {u"Sales"_s});
    for (int i = 0; i < 9; ++i)
        shop.addItem(u"A%1"_s.arg(i), u"ITEM %1"_s.arg(i), 1.25, 100000);
    QVERIFY(m_expected.copy(Database(shop.path())));
    QVERIFY(Database(path()).copy(m_expected));
}

/// Lets a till make at least one whole sale, and kills it at a random point of a later one.
TillReport KillTest::sellUntilKilled()
{
    QProcess till;
    till.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    till.start(QCoreApplication::applicationFilePath(), {u"--till"_s, path(), QString::number(m_random.generate())});
    const int moreLines = m_random.bounded(1, 60);
    QByteArray heard;
    qsizetype sold = -1;
    while ((sold < 0 || heard.count('\n') < heard.first(sold).count('\n') + moreLines) &&
           till.waitForReadyRead(60000)) {
        heard += till.readAllStandardOutput();
        sold = heard.indexOf("\nA1 INSERT INTO PurchaseCart");
    }
    wait(m_random.bounded(longestDelayUs));
    till.kill();
    till.waitForFinished(60000);
    heard += till.readAllStandardOutput();
    TillReport report;
    report.read(heard);
    return report;
}

void KillTest::checkFile(const TillReport &report)
{
    Database file(path());
    // What the next till finds is what the killed one left, log and all.
    sqlite3_db_config(file.handle(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
    QCOMPARE(file.integrity(), u"ok"_s);
    for (const QString &statement : report.done)
        QVERIFY2(m_expected.run(statement), qPrintable(statement));
    const QStringList found = file.everything();
    if (found != m_expected.everything() && !report.underWay.isEmpty())
        QVERIFY2(m_expected.run(report.underWay), qPrintable(report.underWay));
    QCOMPARE(found, m_expected.everything());
}

void KillTest::theFileHoldsWhatWasDone()
{
    int underWay = 0;
    for (int kill = 0; kill < kills; ++kill) {
        const TillReport report = sellUntilKilled();
        QCOMPARE(report.failed, QStringList());
        QVERIFY(std::ranges::any_of(report.done, isPurchase)); // it sold, whatever the one before it left behind
        checkFile(report);
        if (QTest::currentTestFailed())
            return;
        underWay += report.underWay.isEmpty() ? 0 : 1;
    }
    qInfo("%d of %d were killed within a statement", underWay, kills);
    QVERIFY(underWay > 0);
}

int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    if (argc == 4 && qstrcmp(argv[1], "--till") == 0)
        return runTill(QCoreApplication::arguments());
    KillTest test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}

#include "kill_test.moc"
