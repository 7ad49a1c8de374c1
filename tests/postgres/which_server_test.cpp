// SPDX-License-Identifier: MIT
#include "postgres/postgres_session.h"
#include "postgres/server_access.h"
#include "tests/postgres/scripted_server.h"
#include "tests/program/test_program.h"

#include <QTest>

#include <memory>
#include <vector>

using namespace harrowby;
using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

using harrowby::test::ScriptedServer;
using Kind = PgError::Kind;
using Manners = ScriptedServer::Manners;

/// One name that leads to several machines, and machines with several stores.
class WhichServerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aSilentAddressHoldsUpNobody();
    void thePrimaryIsFoundAmongTheAddresses();
    void aHostIsToldOnce();
    void timelinesOfAnotherStoreDoNotCount();
    void anotherStoreIsNotWorkedOn();
    void theFirstStoreIsThatOfTheFirstServer();
};

namespace {

/// Whoever answers is waited for; the others only for a moment then.
const PgWaits waits{60s, 100ms, 60s, 60s, {}};

/// Machines of the same port, on addresses of their own from 127.0.0.1 on.
struct Machines
{
    explicit Machines(const QList<Manners> &each)
    {
        quint16 port = 0;
        for (Manners manners : each) {
            manners.address = "127.0.0." + QByteArray::number(addresses.size() + 1);
            manners.port = port;
            servers.push_back(std::make_unique<ScriptedServer>(manners));
            port = servers.back()->port();
            addresses.append(manners.address);
        }
    }

    /// By one name that all of them have.
    [[nodiscard]] PgTarget target() const
    {
        PgTarget named{"host=shop user=till dbname=shop port=" + QByteArray::number(servers.front()->port())};
        named.resolver = [all = addresses](const QByteArray &) { return PgAddresses{all, {}}; };
        return named;
    }

    std::vector<std::unique_ptr<ScriptedServer>> servers;
    QList<QByteArray> addresses;
};

Manners silent()
{
    Manners manners;
    manners.isSilent = true;
    return manners;
}

Manners standby()
{
    Manners manners;
    manners.isReadOnly = true;
    return manners;
}

constexpr auto ours = "5f0c9a34-3e6a-4c3f-9a52-1f6b7d0e8a11";
constexpr auto theirs = "00000000-0000-4000-8000-000000000001";

Manners storeOf(const char *identity, const QByteArray &timeline)
{
    Manners manners;
    manners.schemaVersion = "1";
    manners.store = identity;
    manners.timeline = timeline;
    return manners;
}

} // namespace

void WhichServerTest::aSilentAddressHoldsUpNobody()
{
    const Machines machines({silent(), Manners()});
    PgSession session;
    QVERIFY(session.connect(machines.target(), waits));
    QCOMPARE(session.server().host, "shop");
    QCOMPARE(session.server().address, "127.0.0.2");
}

void WhichServerTest::thePrimaryIsFoundAmongTheAddresses()
{
    const Machines machines({standby(), Manners()});
    PgSession session;
    PgTarget shop = machines.target();
    QVERIFY(session.connect(shop, waits));
    QCOMPARE(session.server().address, "127.0.0.2");

    shop.server = session.server();
    PgSession beside;
    QVERIFY(beside.connect(shop, waits));
    QCOMPARE(beside.server().address, "127.0.0.2");
    QCOMPARE(machines.servers.front()->questions().size(), 1);
}

void WhichServerTest::aHostIsToldOnce()
{
    const PgWaits soon{200ms, 100ms, 60s, 60s, {}};
    const auto textOf = [&soon](const Machines &machines) {
        const auto connected = PgSession().connect(machines.target(), soon);
        return connected ? QString() : connected.error().text;
    };
    const Machines dead({silent(), silent()});
    QCOMPARE(textOf(dead), u"shop:%1 does not answer"_s.arg(dead.servers.front()->port()));
    const Machines standbyOnly({silent(), standby(), silent()});
    QCOMPARE(textOf(standbyOnly), u"shop:%1 takes no writes"_s.arg(standbyOnly.servers.front()->port()));
}

void WhichServerTest::timelinesOfAnotherStoreDoNotCount()
{
    const Machines machines({storeOf(theirs, "00000009"), storeOf(ours, "00000001")});
    PgTarget shop = machines.target();
    shop.schemaVersion = 1;
    shop.store = QUuid::fromString(QLatin1StringView(ours));
    PgSession session;
    QVERIFY(session.connect(shop, waits));
    QCOMPARE(session.server().address, "127.0.0.2");
    QCOMPARE(session.store(), shop.store);
}

/// A till that stays open goes on in its own store or not at all.
void WhichServerTest::anotherStoreIsNotWorkedOn()
{
    const Machines machines({storeOf(ours, "00000001"), storeOf(theirs, "00000002"), Manners()});
    PgTarget shop = machines.target();
    shop.schemaVersion = 1;
    auto now = std::make_shared<QByteArray>("127.0.0.1");
    shop.resolver = [now](const QByteArray &) { return PgAddresses{{*now}, {}}; };
    postgres::ActionTime time{postgres::ActionLimits()};
    postgres::ServerAccess access(shop, waits, time);
    QVERIFY(access.connect());
    QCOMPARE(access.store().toByteArray(QUuid::WithoutBraces), ours);
    QCOMPARE(access.targetBeside().store, access.store());

    const auto troubleAt = [&](const char *address) {
        *now = address;
        const auto connected = access.connect();
        return connected ? PgError() : connected.error();
    };
    const PgError another = troubleAt("127.0.0.2");
    QCOMPARE(another.kind, Kind::Unfit);
    QCOMPARE(another.text, u"The database \"shop\" is another store's"_s);
    QVERIFY(access.session().isLost());
    QCOMPARE(troubleAt("127.0.0.3").text, u"There is no store in the database \"shop\""_s);
    *now = "127.0.0.1";
    QVERIFY(access.connect());
}

/// Not that of the highest timeline: what another store's server is on says nothing.
void WhichServerTest::theFirstStoreIsThatOfTheFirstServer()
{
    const Machines machines({storeOf(ours, "00000001"), storeOf(theirs, "00000002")});
    PgTarget shop = machines.target();
    shop.schemaVersion = 1;
    PgSession session;
    QVERIFY(session.connect(shop, PgWaits{60s, 60s, 60s, 60s, {}}));
    QCOMPARE(session.server().address, "127.0.0.1");
}

HARROWBY_CORE_TEST(which_server_test, WhichServerTest)
#include "which_server_test.moc"
