// SPDX-License-Identifier: MIT
#include "office_door.h"
#include "store_files.h"

#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace harrowby::app;
using namespace harrowby::app::test;
using namespace std::chrono_literals;

using Kind = DoorAnswer::Kind;
Q_DECLARE_METATYPE(DoorAnswer::Kind)

class OfficeDoorTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void passwordIsComparedAsAtTheTill_data();
    void passwordIsComparedAsAtTheTill();
    void storeWithoutAdministrator_data();
    void storeWithoutAdministrator();
    void missingTableIsAFailure();
    void wrongTriesSlowDown();
};

void OfficeDoorTest::passwordIsComparedAsAtTheTill_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<Kind>("answer");
    QTest::newRow("right") << u"secret"_s << Kind::Open;
    QTest::newRow("other capitals and blanks") << u"  SeCret "_s << Kind::Open;
    QTest::newRow("wrong") << u"secrets"_s << Kind::Wrong;
    QTest::newRow("blank") << u"  "_s << Kind::Blank;
    QTest::newRow("no way around") << u"' OR '1'='1"_s << Kind::Wrong;
    QTest::newRow("another user's") << u"MINE"_s << Kind::Wrong;
}

void OfficeDoorTest::passwordIsComparedAsAtTheTill()
{
    QFETCH(QString, typed);
    QFETCH(Kind, answer);
    QTemporaryDir folder;
    const QString path = folder.filePath(u"shop.sqlite"_s);
    makeStore(path);
    runAll(path, {u"INSERT INTO Users (Username, Password, Type) VALUES ('BOB', 'MINE', 'ADMINISTRATOR')"_s});
    Database database;
    QVERIFY(!openDatabase(path, OpenMode::Write, database));
    QCOMPARE(findAdministrator(database.get()).kind, Kind::Open);
    QCOMPARE(askAtDoor(database.get(), typed).kind, answer);
}

void OfficeDoorTest::storeWithoutAdministrator_data()
{
    QTest::addColumn<QString>("change");
    QTest::addColumn<Kind>("found");
    QTest::newRow("none") << u"DELETE FROM Users"_s << Kind::NoAdministrator;
    QTest::newRow("viewer") << u"UPDATE Users SET Type = 'VIEWER'"_s << Kind::NoAdministrator;
    QTest::newRow("no type") << u"UPDATE Users SET Type = NULL"_s << Kind::NoAdministrator;
    QTest::newRow("small letters") << u"UPDATE Users SET Username = 'administrator', Password = 'Secret'"_s
                                   << Kind::Open;
    QTest::newRow("no flags") << u"UPDATE Users SET InventoryUse = 0"_s << Kind::Open;
}

void OfficeDoorTest::storeWithoutAdministrator()
{
    QFETCH(QString, change);
    QFETCH(Kind, found);
    QTemporaryDir folder;
    const QString path = folder.filePath(u"shop.sqlite"_s);
    makeStore(path);
    runAll(path, {change});
    Database database;
    QVERIFY(!openDatabase(path, OpenMode::Write, database));
    QCOMPARE(findAdministrator(database.get()).kind, found);
    QCOMPARE(askAtDoor(database.get(), u"secret"_s).kind, found == Kind::Open ? Kind::Open : Kind::Wrong);
}

void OfficeDoorTest::missingTableIsAFailure()
{
    Database database;
    QVERIFY(!openDatabase(u":memory:"_s, OpenMode::Create, database));
    const DoorAnswer answer = findAdministrator(database.get());
    QCOMPARE(answer.kind, Kind::Failed);
    QVERIFY(answer.error.reason.contains(u"no such table"_s));
}

void OfficeDoorTest::wrongTriesSlowDown()
{
    QCOMPARE(pauseAfter(0), 0ms);
    QCOMPARE(pauseAfter(2), 0ms);
    QCOMPARE(pauseAfter(3), 1000ms);
    QCOMPARE(pauseAfter(5), 4000ms);
    QCOMPARE(pauseAfter(7), 16000ms);
    QCOMPARE(pauseAfter(1000000), 16000ms);
}

QTEST_GUILESS_MAIN(OfficeDoorTest)
#include "office_door_test.moc"
