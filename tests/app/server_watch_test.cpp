// SPDX-License-Identifier: MIT
#include "app/server/server_watch.h"

#include "app/server/return_to_server.h"
#include "app/server/server_opening.h"
#include "tests/doubles/private_cluster.h"
#include "tests/doubles/server_shop.h"
#include "tests/program/test_program.h"

#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTest>
#include <QUuid>

using namespace Qt::StringLiterals;
using namespace harrowby::app;
using namespace std::chrono_literals;
using harrowby::test::PrivateCluster;

/// What a till that nobody touches learns of its servers.
class ServerWatchTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void tellsHowSafeTheShopIs();
    void followsTheStore_data();
    void followsTheStore();
    void saysWhyTheServerCannotBeUsed();
    void storeFollowsAServerThatFellSilent();

private:
    /// What the server says of itself from now on: an expression.
    static void say(PrivateCluster &cluster, const QString &protection);
};

namespace {

constexpr int patience = 20'000;

} // namespace

void ServerWatchTest::initTestCase()
{
    if (const QString missing = PrivateCluster::missing(); !missing.isEmpty())
        QSKIP(qPrintable(missing));
}

void ServerWatchTest::say(PrivateCluster &cluster, const QString &protection)
{
    cluster.sql(u"create or replace function harrowby.protection() returns text language sql as $$select %1$$"_s.arg(
        protection));
}

void ServerWatchTest::tellsHowSafeTheShopIs()
{
    PrivateCluster cluster;
    cluster.start();
    harrowby::test::setUpShop(cluster, u"shop"_s);
    {
        const ServerWatch unprepared(cluster.conninfo(), {},
                                     10ms); // nobody has set this server up with a standby in mind
        QTRY_COMPARE_WITH_TIMEOUT(unprepared.state().protection, u"single"_s, patience);
    }
    say(cluster, u"'protected'"_s);
    const ServerWatch watch(cluster.conninfo(), {}, 10ms);
    for (const QString &how : {u"protected"_s, u"waiting"_s, u"alone"_s, u"single"_s}) {
        say(cluster, u'\'' + how + u'\'');
        QTRY_COMPARE_WITH_TIMEOUT(watch.state().protection, how, patience);
        QVERIFY(watch.state().isReached);
    }
    cluster.kill9();
    QTRY_VERIFY_WITH_TIMEOUT(!watch.state().isReached, patience);
    QCOMPARE(watch.state().protection, u"single"_s);
    cluster.start();
    QTRY_VERIFY_WITH_TIMEOUT(watch.state().isReached, patience);
}

/// A primary that was replaced lives on, and waits for a standby that it has no more, or does without. What it says of
/// itself may be what its successor says, too.
void ServerWatchTest::followsTheStore_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("after");
    QTest::newRow("waited") << u"waiting"_s << u"single"_s;
    QTest::newRow("alone, as the one before") << u"alone"_s << u"alone"_s;
}

void ServerWatchTest::followsTheStore()
{
    QFETCH(const QString, before);
    QFETCH(const QString, after);
    PrivateCluster primary;
    primary.start();
    harrowby::test::setUpShop(primary, u"shop"_s);
    say(primary, u"case when current_setting('port') = '%1' then '%2' else '%3' end"_s.arg(
                     QString::number(primary.port()), before, after));
    const auto standby = primary.standby();
    const ServerWatch watch(
        u"host=127.0.0.1,127.0.0.1 port=%1,%2 user=postgres dbname=shop sslmode=disable"_s.arg(primary.port())
            .arg(standby->port()),
        {}, 10ms);
    QTRY_COMPARE_WITH_TIMEOUT(watch.state().protection, before, patience);
    bool isBack = false; // for sessions that are with the primary still
    connect(&watch, &ServerWatch::answered, this, [&](bool isBackNow) { isBack = isBack || isBackNow; });
    standby->promote();
    QTRY_VERIFY_WITH_TIMEOUT(isBack, patience);
    QCOMPARE(watch.state().protection, after);
}

/// Nobody tells the session of a primary that hangs. The first look-up after its standby has taken over is served at
/// once, and the run's lock is where the other tills look.
void ServerWatchTest::storeFollowsAServerThatFellSilent()
{
    PrivateCluster primary;
    primary.start();
    harrowby::test::setUpShop(primary, u"shop"_s);
    const auto standby = primary.standby();
    const QString address =
        u"host=127.0.0.1,127.0.0.1 port=%1,%2 user=postgres dbname=shop sslmode=disable"_s.arg(primary.port())
            .arg(standby->port());
    const QTemporaryDir states;
    ServerOptions options;
    options.stateFolder = states.path();
    const auto opened = openServerStore(address, options);
    QVERIFY2(opened, qPrintable(opened ? QString() : opened.error()));
    ServerStore &store = **opened;
    const auto records = store.records();
    const RecordStatement look = {u"select count(*) from StockList"_s, {}};
    const auto lock = store.lock(17);
    QVERIFY(lock && records->read(look));
    bool isBack = false;
    ReturnToServer returning(store);
    const ServerWatch watch(address, {}, 10ms);
    connect(&watch, &ServerWatch::answered, this, [&](bool isBackNow) {
        isBack = returning.serverAnswers(watch.state(), isBackNow, false).value_or(false) || isBack;
    });
    QTRY_VERIFY_WITH_TIMEOUT(!watch.state().protection.isEmpty(), patience);
    primary.stop();
    standby->promote();
    QTRY_VERIFY_WITH_TIMEOUT(isBack, patience);
    QElapsedTimer took;
    took.start();
    const auto rows = records->read(look);
    QVERIFY2(rows, qPrintable(rows ? QString() : rows.error().reason));
    QVERIFY2(took.elapsed() < 1'000, qPrintable(QString::number(took.elapsed())));
    QCOMPARE(standby->sql(u"select count(*) from pg_locks where locktype = 'advisory'"_s), QStringList{u"1"_s});
    primary.cont();
}

/// Each is told again for as long as it is so, and the server counts as back when it is over.
void ServerWatchTest::saysWhyTheServerCannotBeUsed()
{
    PrivateCluster cluster;
    cluster.start();
    harrowby::test::setUpShop(cluster, u"shop"_s);
    const auto identity = QUuid::fromString(cluster.sql(u"select harrowby.store_identity()"_s).value(0));
    QVERIFY(!identity.isNull());
    const ServerWatch watch(cluster.conninfo(u"till"_s), identity, 10ms);
    QTRY_COMPARE_WITH_TIMEOUT(watch.state().protection, u"single"_s, patience);
    const auto breaks = [&](const QString &how, const QString &mended, const QString &why) {
        cluster.sql(how);
        cluster.sql(u"select pg_terminate_backend(pid) from pg_stat_activity where usename = 'till'"_s);
        QTRY_COMPARE_WITH_TIMEOUT(watch.state().why, why, patience);
        QVERIFY(!watch.state().isReached);
        cluster.sql(mended);
        QTRY_VERIFY_WITH_TIMEOUT(watch.state().isReached, patience);
        QCOMPARE(watch.state().why, QString());
    };
    breaks(u"alter role till nologin"_s, u"alter role till login"_s, u"The server does not let this machine in"_s);
    breaks(u"alter role till connection limit 0"_s, u"alter role till connection limit -1"_s,
           u"The server has no room for one more till or office"_s);
    breaks(u"alter role till set default_transaction_read_only = on"_s,
           u"alter role till reset default_transaction_read_only"_s,
           u"Each server that can be reached is a standby, which takes no sales"_s);
    breaks(u"update harrowby.store_mark set identity = gen_random_uuid()"_s,
           u"update harrowby.store_mark set identity = '%1'"_s.arg(identity.toString(QUuid::WithoutBraces)),
           u"The database \"shop\" is another store's"_s);
}

HARROWBY_TEST(app_server_watch_test, ServerWatchTest)
#include "server_watch_test.moc"
