// SPDX-License-Identifier: MIT
#include "tests/doubles/private_cluster.h"
#include "tests/doubles/proxy.h"
#include "tests/doubles/server_shop.h"
#include "tests/program/test_program.h"
#include "tests/ui/purchase_desk.h"

#include <harrowby/postgres_connection.h>

#include <QUrl>

#include <memory>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::test;
using namespace harrowby::test::purchase_desk;

/// A purchase is taken back while the way to the server breaks, at each of its round trips in turn: every stock is
/// raised once, the purchase is gone, its cart is back, and nobody is told of a fault.
class UndoCutTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void eachAnswerLost_data();
    void eachAnswerLost();
    void serverAwayBetweenItsLines();
    void serverGoneBetweenItsLines();

private:
    void openShopBehind(Counter &counter);
    void takeBack(Counter &counter, bool isUndo) const;
    /// Just before the stock of this line of the purchase is raised.
    void loseServerAtLine(Counter &counter, int line) const;

    std::unique_ptr<Proxy> m_proxy;
    std::shared_ptr<DbConnection> m_server;
    QStringList m_failures; ///< statements
    QStringList m_missed;   ///< those that were to write
};

void UndoCutTest::initTestCase()
{
    if (const QString missing = PrivateCluster::missing(); !missing.isEmpty())
        QSKIP(qPrintable(missing));
}

void UndoCutTest::openShopBehind(Counter &counter)
{
    QUrl way(counter.file.path());
    m_proxy = std::make_unique<Proxy>(static_cast<quint16>(way.port()));
    way.setPort(m_proxy->port());
    m_server = connectToServer(way.toString(), {});
    m_server->setFailureHandler([this](const DbFailure &failure) {
        m_failures << failure.statement;
        if (failure.kind == DbFailure::Kind::Write)
            m_missed << failure.statement;
    });
    m_failures.clear();
    m_missed.clear();
    counter.connection = std::make_shared<RecordingConnection>(m_server);
    openShop(counter);
    commit(counter);
    QCOMPARE(purchases(counter), QStringList{firstId});
}

void UndoCutTest::takeBack(Counter &counter, bool isUndo) const
{
    dynamic_cast<PostgresConnection &>(*m_server).beginAction();
    if (isUndo)
        undo(counter);
    else
        deletePurchase(counter, firstId);
}

void UndoCutTest::loseServerAtLine(Counter &counter, int line) const
{
    counter.connection->beforeWrite = [this, line, raised = 0](const QString &write) mutable {
        if (!write.contains(u"StockAvailable +"_s) || ++raised != line)
            return;
        m_proxy->refuse(true);
        m_proxy->cut();
    };
}

void UndoCutTest::eachAnswerLost_data()
{
    QTest::addColumn<bool>("isUndo");
    QTest::newRow("undo") << true;
    QTest::newRow("delete") << false;
}

void UndoCutTest::eachAnswerLost()
{
    QFETCH(const bool, isUndo);
    int trips = 1;
    for (int lost = 0; lost <= trips; ++lost) { // 0: none
        Counter counter;
        openShopBehind(counter);
        const int before = m_proxy->roundTrips();
        if (lost > 0)
            m_proxy->loseAnswerOf(lost);
        takeBack(counter, isUndo);
        if (lost == 0)
            trips = m_proxy->roundTrips() - before;
        const QByteArray where = "round trip " + QByteArray::number(lost) + " of " + QByteArray::number(trips);
        QVERIFY2(m_proxy->breaks() == (lost > 0 ? 1 : 0), where);
        QVERIFY2(m_failures.isEmpty(), where + ": " + m_failures.join(u", "_s).toUtf8());
        QVERIFY2(stock(counter) == untouched, where + ": " + stock(counter).join(u", "_s).toUtf8());
        QVERIFY2(purchases(counter).isEmpty(), where);
        QVERIFY2(counter.cart() == committedCart, where + ": " + counter.cart().join(u", "_s).toUtf8());
    }
    QVERIFY2(trips >= 4, qPrintable(QString::number(trips))); // two lines, the purchase, and a look at least
}

/// As during a failover: nobody answers for a while, and the rest of the undo waits for it.
void UndoCutTest::serverAwayBetweenItsLines()
{
    Counter counter;
    openShopBehind(counter);
    loseServerAtLine(counter, 2);
    int waits = 0;
    m_server->setWaitHook([this, &waits](const DbWait &) {
        if (++waits == 5)
            m_proxy->refuse(false);
        return true;
    });
    takeBack(counter, true);
    QVERIFY(waits >= 5);
    QCOMPARE(m_failures, QStringList());
    QCOMPARE(stock(counter), untouched);
    QCOMPARE(purchases(counter), QStringList());
    QCOMPARE(counter.cart(), committedCart);
}

/// A person gives up: each of the statements that were not done is told, and done is what was told as done.
void UndoCutTest::serverGoneBetweenItsLines()
{
    Counter counter;
    openShopBehind(counter);
    loseServerAtLine(counter, 2);
    m_server->setWaitHook([](const DbWait &wait) { return !wait.mayGiveUp; });
    takeBack(counter, true);
    QCOMPARE(m_missed.filter(u"StockAvailable +"_s).size(), 1);
    QCOMPARE(m_missed.filter(u"PurchaseCart"_s).size(), 1);
    QCOMPARE(stock(counter), (QStringList{u"A1|10"_s, u"A2|18"_s, u"0012|30"_s}));
    QCOMPARE(purchases(counter), QStringList{firstId});
}

HARROWBY_TEST(undo_cut_test, UndoCutTest)
#include "undo_cut_test.moc"
