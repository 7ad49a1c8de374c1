// SPDX-License-Identifier: MIT
#include "postgres/postgres_session.h"
#include "postgres/server_choice.h"
#include "postgres/server_target.h"
#include "postgres/shop_memory.h"
#include "tests/postgres/painted_gaps.h"
#include "tests/postgres/scripted_server.h"
#include "tests/program/test_program.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QLoggingCategory>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <future>

using namespace harrowby;
using namespace harrowby::postgres;
using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

using harrowby::test::PaintedGaps;
using harrowby::test::ScriptedServer;
using Kind = PgError::Kind;
using Manners = ScriptedServer::Manners;

namespace {

/// Nobody who answers is given up; who says nothing is, soon.
const PgWaits patient{60s, 60s, 60s, 60s, {}};
const PgWaits soon{500ms, 100ms, 60s, 60s, {}};

Manners manners(const QByteArray &timeline, bool isReadOnly = false)
{
    Manners result;
    result.timeline = timeline;
    result.isReadOnly = isReadOnly;
    return result;
}

PgTarget target(const QList<const ScriptedServer *> &servers)
{
    QByteArrayList hosts;
    QByteArrayList ports;
    for (const ScriptedServer *server : servers) {
        hosts.append("127.0.0.1");
        ports.append(QByteArray::number(server->port()));
    }
    return {"user=till dbname=shop host=" + hosts.join(',') + " port=" + ports.join(',')};
}

PgError errorOf(const Result<void, PgError> &result)
{
    return result ? PgError{Kind::Refused, "none", {}} : result.error();
}

ServerFacts facts(quint32 timeline, bool isReadOnly)
{
    ServerFacts result;
    result.server.timeline = timeline;
    result.server.isReadOnly = isReadOnly;
    return result;
}

QByteArray portOf(const ScriptedServer &server)
{
    return QByteArray::number(server.port());
}

} // namespace

class ConnectingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theNewestServerThatTakesWritesIsChosen_data();
    void theNewestServerThatTakesWritesIsChosen();
    void aServerIsAskedAndSetUp();
    void anOldPrimaryIsLeft();
    void aReplacedServerIsNotUsed();
    void aReplacedServerIsKnownToTheNextStart();
    void whatCannotBeRememberedDoesNoHarm();
    void aSilentHostHoldsUpNobodyForLong();
    void aSilentServerIsGivenUp();
    void aSilentNameServiceIsGivenUp();
    void aNameIsLookedUpAside();
    void whoWaitsMayGiveUpConnecting();
    void whatIsWrongIsTold_data();
    void whatIsWrongIsTold();
    void aPasswordThatIsMissingIsTold();
    void aServerThatIsNotTrustedIsTold();
    void aRefusedConnectionIsTold();
    void allHostsAreTold();
    void anEndInTheMiddleOfTheQuestionsIsTold_data();
    void anEndInTheMiddleOfTheQuestionsIsTold();
    void whatIsUnfitIsTold_data();
    void whatIsUnfitIsTold();
    void laterSessionsGoToTheSameServer();
};

void ConnectingTest::theNewestServerThatTakesWritesIsChosen_data()
{
    using Servers = QList<ServerFacts>;
    QTest::addColumn<Servers>("servers");
    QTest::addColumn<quint32>("least");
    QTest::addColumn<int>("chosen");
    QTest::newRow("none") << Servers() << 0U << -1;
    QTest::newRow("one") << Servers{facts(1, false)} << 0U << 0;
    QTest::newRow("a standby alone") << Servers{facts(1, true)} << 0U << -1;
    QTest::newRow("primary and standby") << Servers{facts(1, true), facts(1, false)} << 0U << 1;
    QTest::newRow("two primaries") << Servers{facts(1, false), facts(2, false)} << 0U << 1;
    QTest::newRow("the other way round") << Servers{facts(10, false), facts(9, false)} << 0U << 0;
    QTest::newRow("a newer standby") << Servers{facts(1, false), facts(2, true)} << 0U << -1;
    QTest::newRow("replaced") << Servers{facts(1, false)} << 2U << -1;
    QTest::newRow("successor") << Servers{facts(1, false), facts(3, false)} << 2U << 1;
}

void ConnectingTest::theNewestServerThatTakesWritesIsChosen()
{
    QFETCH(QList<ServerFacts>, servers);
    QFETCH(quint32, least);
    QTEST(static_cast<int>(chosenServer(servers, QUuid(), least).value_or(-1)), "chosen");
}

void ConnectingTest::aServerIsAskedAndSetUp()
{
    const ScriptedServer server(manners("0000001F"));
    PgSession session;
    QVERIFY(session.connect(target({&server}), patient));
    QCOMPARE(session.server().timeline, 31U);
    QCOMPARE(session.server().version, 150004);
    QCOMPARE(session.server().port, portOf(server));
    QVERIFY(!session.isInTransaction());
    const QByteArray asked = server.questions().join();
    QVERIFY(asked.contains("set client_connection_check_interval = 0;"));
    QVERIFY(!asked.contains("synchronous_commit"));

    PgTarget walk = target({&server});
    walk.use = PgTarget::Use::Walk;
    QVERIFY(session.connect(walk, patient));
    QVERIFY(server.questions().last().contains("set client_connection_check_interval = 1000;"));
}

void ConnectingTest::anOldPrimaryIsLeft()
{
    const ScriptedServer old(manners("00000001"));
    const ScriptedServer successor(manners("00000002"));
    const ScriptedServer standby(manners("00000002", true));
    for (const auto &servers : {QList{&old, &standby, &successor}, QList{&successor, &standby, &old}}) {
        PgSession session;
        QVERIFY(session.connect(target(servers), patient));
        QCOMPARE(session.server().port, portOf(successor));
        QVERIFY(session.run("update"));
    }
    QCOMPARE(old.statements(), QByteArrayList());
    QCOMPARE(successor.statements().size(), 2);
}

void ConnectingTest::aReplacedServerIsNotUsed()
{
    const ScriptedServer old(manners("00000001"));
    const ScriptedServer standby(manners("00000002", true));
    PgSession session;
    const PgError error = errorOf(session.connect(target({&old, &standby}), patient));
    QCOMPARE(error.kind, Kind::ReadOnly);
    QVERIFY(error.text.contains("has been replaced"_L1));
    QVERIFY(error.text.contains("takes no writes"_L1));

    PgTarget known = target({&old});
    known.leastTimeline = 2;
    QCOMPARE(errorOf(session.connect(known, patient)).kind, Kind::ReadOnly);
    QVERIFY(session.isLost());
}

void ConnectingTest::aReplacedServerIsKnownToTheNextStart()
{
    const QTemporaryDir folder;
    const auto connects = [&folder](const ScriptedServer &server) {
        PgTarget known = target({&server});
        known.schemaVersion = 1;
        known.stateFolder = folder.path();
        return PgSession().connect(known, patient);
    };
    const auto of = [](const QByteArray &timeline, const QByteArray &store) {
        Manners result = manners(timeline);
        result.schemaVersion = "1";
        result.store = store;
        return result;
    };
    const QByteArray store = "5f0c9a34-3e6a-4c3f-9a52-1f6b7d0e8a11";
    const ScriptedServer old(of("00000002", store));
    const ScriptedServer successor(of("0000000A", store));
    QVERIFY(connects(old));
    QVERIFY(connects(old));
    QVERIFY(connects(successor));
    const PgError error = errorOf(connects(old));
    QCOMPARE(error.kind, Kind::ReadOnly);
    QVERIFY(error.text.contains("has been replaced"_L1));
    QVERIFY(connects(successor));
    const QDir noted(folderOf(QUuid::fromString(QLatin1StringView(store)), folder.path()));
    QCOMPARE(noted.entryList(QDir::Files), QStringList{u"timeline-10"_s});

    const ScriptedServer anotherShop(of("00000001", "00000000-0000-4000-8000-000000000001"));
    QVERIFY(connects(anotherShop));
    const ScriptedServer nameless(of("00000001", ""));
    QVERIFY(connects(nameless));
}

void ConnectingTest::whatCannotBeRememberedDoesNoHarm()
{
    const QTemporaryDir folder;
    QFile inTheWay(folder.filePath(u"file"_s));
    QVERIFY(inTheWay.open(QIODevice::WriteOnly));
    Manners known = manners("00000002");
    known.schemaVersion = "1";
    const ScriptedServer server(known);
    PgTarget wanted = target({&server});
    wanted.schemaVersion = 1;
    wanted.stateFolder = inTheWay.fileName();
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"It is not noted which server was used last"_s));
    QLoggingCategory::setFilterRules(u"harrowby.store=true"_s);
    QVERIFY(PgSession().connect(wanted, patient));
}

void ConnectingTest::aSilentHostHoldsUpNobodyForLong()
{
    Manners silent;
    silent.isSilent = true;
    const ScriptedServer dead(silent);
    const ScriptedServer primary(manners("00000001"));
    PgSession session;
    const PgWaits waits{60s, 100ms, 60s, 60s, {}};
    QElapsedTimer took;
    took.start();
    QVERIFY(session.connect(target({&dead, &primary}), waits));
    QVERIFY(took.elapsed() < 20'000); // not the minute that the one alone would have
    QCOMPARE(session.server().port, portOf(primary));
}

void ConnectingTest::aSilentServerIsGivenUp()
{
    Manners silent;
    silent.isSilent = true;
    const ScriptedServer server(silent);
    QList<PgWaiting> waited;
    PaintedGaps gaps;
    PgWaits waits = soon;
    waits.hook = [&](const PgWait &wait) {
        waited.append(wait.what);
        gaps.paint();
        return true;
    };
    PgSession session;
    gaps.begin();
    const PgError error = errorOf(session.connect(target({&server}), waits));
    QCOMPARE(error.kind, Kind::CannotConnect);
    QVERIFY(error.text.contains("does not answer"_L1));
    QVERIFY(!error.mayBeDone);
    QCOMPARE(waited.last(), PgWaiting::Connection);
    QVERIFY2(gaps.median() <= 100, qPrintable(QString::number(gaps.median())));
}

void ConnectingTest::aSilentNameServiceIsGivenUp()
{
    std::promise<void> end;
    PgTarget named{"host=till1.shop user=till"};
    named.resolver = [over = end.get_future().share()](const QByteArray &) {
        over.wait();
        return PgAddresses();
    };
    PgSession session;
    PaintedGaps gaps;
    PgWaits waits = soon;
    waits.hook = [&gaps](const PgWait &) {
        gaps.paint();
        return true;
    };
    gaps.begin();
    const PgError error = errorOf(session.connect(named, waits));
    end.set_value();
    QVERIFY2(gaps.median() <= 100, qPrintable(QString::number(gaps.median())));
    QCOMPARE(error.kind, Kind::CannotConnect);
    QVERIFY(error.text.contains("till1.shop"_L1));
}

void ConnectingTest::aNameIsLookedUpAside()
{
    const ScriptedServer server;
    PgTarget named{"host=till1.shop,/nowhere user=till port=" + portOf(server)};
    QByteArray asked;
    named.resolver = [&asked](const QByteArray &name) {
        asked += name;
        return PgAddresses{{"127.0.0.1"}, {}};
    };
    PgSession session;
    QVERIFY(session.connect(named, patient));
    QCOMPARE(asked, "till1.shop");
    QCOMPARE(session.server().host, "till1.shop");
    QCOMPARE(session.server().address, "127.0.0.1");

    named.conninfo = "host=till2.shop user=till";
    named.resolver = [](const QByteArray &) { return PgAddresses{{}, u"nobody knows it"_s}; };
    const PgError error = errorOf(session.connect(named, patient));
    QCOMPARE(error.kind, Kind::CannotConnect);
    QCOMPARE(error.text, u"till2.shop is not found: nobody knows it"_s);
}

void ConnectingTest::whoWaitsMayGiveUpConnecting()
{
    Manners silent;
    silent.isSilent = true;
    const ScriptedServer server(silent);
    PgWaits waits = patient;
    waits.hook = [](const PgWait &) { return false; };
    PgSession session;
    QCOMPARE(errorOf(session.connect(target({&server}), waits)).kind, Kind::GivenUp);
}

void ConnectingTest::whatIsWrongIsTold_data()
{
    QTest::addColumn<QByteArray>("state");
    QTest::addColumn<Kind>("kind");
    QTest::newRow("password") << QByteArray("28P01") << Kind::Denied;
    QTest::newRow("not from there, or not without TLS") << QByteArray("28000") << Kind::Denied;
    QTest::newRow("no such database") << QByteArray("3D000") << Kind::Denied;
    QTest::newRow("no right to connect") << QByteArray("42501") << Kind::Denied;
    QTest::newRow("too many") << QByteArray("53300") << Kind::Crowded;
    QTest::newRow("starting") << QByteArray("57P03") << Kind::Starting;
    QTest::newRow("ending") << QByteArray("57P01") << Kind::Starting;
}

void ConnectingTest::whatIsWrongIsTold()
{
    QFETCH(QByteArray, state);
    QFETCH(Kind, kind);
    Manners refusing;
    refusing.loginError = ScriptedServer::error(state, "wegen: etwas", "FATAL");
    const ScriptedServer server(refusing);
    PgSession session;
    const PgError error = errorOf(session.connect(target({&server}), patient));
    QCOMPARE(error.kind, kind);
    QCOMPARE(error.sqlState, state);
    QCOMPARE(error.text, u"127.0.0.1:%1: wegen: etwas"_s.arg(server.port()));
}

void ConnectingTest::aPasswordThatIsMissingIsTold()
{
    Manners asking;
    asking.loginError = ScriptedServer::passwordRequest();
    const ScriptedServer server(asking);
    PgSession session;
    const PgError error = errorOf(session.connect(target({&server}), patient));
    QCOMPARE(error.kind, Kind::Denied);
    QVERIFY2(error.text.endsWith("a password is asked for, and none was found"_L1), qPrintable(error.text));
}

void ConnectingTest::aServerThatIsNotTrustedIsTold()
{
    const ScriptedServer server;
    PgSession session;
    const PgError error = errorOf(session.connect({server.conninfo() + " sslmode=require"}, patient));
    QCOMPARE(error.kind, Kind::NotTrusted);
    QVERIFY(!error.text.isEmpty());
}

void ConnectingTest::aRefusedConnectionIsTold()
{
    QByteArray conninfo;
    {
        const ScriptedServer server;
        conninfo = server.conninfo();
    }
    PgSession session;
    const PgError error = errorOf(session.connect({conninfo}, patient));
    QCOMPARE(error.kind, Kind::CannotConnect);
    QVERIFY2(error.text.endsWith(": Connection refused"_L1), qPrintable(error.text));
    QCOMPARE(errorOf(session.connect({"host=/nowhere user=till"}, patient)).kind, Kind::CannotConnect);
}

void ConnectingTest::allHostsAreTold()
{
    Manners refusing;
    refusing.loginError = ScriptedServer::error("28P01", "wrong password", "FATAL");
    const ScriptedServer denying(refusing);
    const ScriptedServer standby(manners("00000001", true));
    for (const auto &servers : {QList{&denying, &standby}, QList{&standby, &denying}}) {
        PgSession session;
        const PgError error = errorOf(session.connect(target(servers), patient));
        QCOMPARE(error.kind, Kind::Denied);
        QVERIFY(error.text.contains("wrong password"_L1));
        QVERIFY(error.text.contains("takes no writes"_L1));
    }
}

void ConnectingTest::whatIsUnfitIsTold_data()
{
    QTest::addColumn<QByteArray>("what");
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<QString>("text");
    QTest::newRow("version") << QByteArray("version") << QByteArray("13.2")
                             << u"The server is PostgreSQL 13; a store needs 15 or newer"_s;
    QTest::newRow("order") << QByteArray("collation") << QByteArray("de_DE.UTF-8")
                           << u"The database \"shop\" has the locale de_DE.UTF-8; a store needs C"_s;
    QTest::newRow("letters") << QByteArray("letters") << QByteArray("C.UTF-8")
                             << u"The database \"shop\" has the locale C.UTF-8; a store needs C"_s;
    QTest::newRow("encoding") << QByteArray("encoding") << QByteArray("SQL_ASCII")
                              << u"The database \"shop\" has the encoding SQL_ASCII; a store needs UTF8"_s;
    QTest::newRow("no store") << QByteArray("schema") << QByteArray()
                              << u"There is no store in the database \"shop\""_s;
    QTest::newRow("older store")
        << QByteArray("schema") << QByteArray("2")
        << u"The store in the database \"shop\" is older than this program and has to be updated"_s;
    QTest::newRow("store of another generation") << QByteArray("schema") << QByteArray("100")
                                                 << u"The store in the database \"shop\" is newer than this program"_s;
    QTest::newRow("newer store") << QByteArray("schema") << QByteArray("4") << QString();
}

void ConnectingTest::whatIsUnfitIsTold()
{
    QFETCH(QByteArray, what);
    QFETCH(QByteArray, value);
    QFETCH(QString, text);
    Manners unfit;
    unfit.schemaVersion = "3";
    QByteArray &one = what == "version"     ? unfit.version
                      : what == "collation" ? unfit.collation
                      : what == "letters"   ? unfit.letters
                      : what == "encoding"  ? unfit.encoding
                                            : unfit.schemaVersion;
    one = value;
    const ScriptedServer server(unfit);
    PgTarget store = target({&server});
    store.schemaVersion = 3;
    PgSession session;
    const PgError error = errorOf(session.connect(store, patient));
    QCOMPARE(error.text, text);
    QCOMPARE(session.isLost(), !text.isEmpty());
    if (!text.isEmpty())
        QCOMPARE(error.kind, text.contains(u"older")        ? Kind::StoreTooOld
                             : text.contains(u"newer than") ? Kind::StoreTooNew
                                                            : Kind::Unfit);
}

void ConnectingTest::anEndInTheMiddleOfTheQuestionsIsTold_data()
{
    QTest::addColumn<QByteArray>("last");
    QTest::addColumn<Kind>("kind");
    QTest::newRow("the server ends") << ScriptedServer::error("57P01", "terminating connection", "FATAL")
                                     << Kind::Starting;
    QTest::newRow("no word") << QByteArray() << Kind::CannotConnect;
    QTest::newRow("a copy") << QByteArray("H\0\0\0\x07\0\0\0", 8) << Kind::CannotConnect;
}

/// Such a server is tried again; a database without a store is not.
void ConnectingTest::anEndInTheMiddleOfTheQuestionsIsTold()
{
    QFETCH(QByteArray, last);
    Manners ends;
    ends.lastWord = last;
    const ScriptedServer server(ends);
    PgTarget store = target({&server});
    store.schemaVersion = 3;
    PgSession session;
    QTEST(errorOf(session.connect(store, patient)).kind, "kind");
}

void ConnectingTest::laterSessionsGoToTheSameServer()
{
    const ScriptedServer primary(manners("00000002"));
    const ScriptedServer standby(manners("00000002", true));
    PgSession session;
    PgTarget shop = target({&standby, &primary});
    QVERIFY(session.connect(shop, patient));
    shop.server = session.server();
    PgSession walking;
    QVERIFY(walking.connect(shop, patient));
    QCOMPARE(walking.server().port, portOf(primary));
    QCOMPARE(standby.questions().size(), 1);
}

HARROWBY_CORE_TEST(connecting_test, ConnectingTest)
#include "connecting_test.moc"
