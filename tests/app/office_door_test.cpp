// SPDX-License-Identifier: MIT
#include "app/office/office_door.h"
#include "app/office/office_password_dialog.h"
#include "app/office/wrong_tries.h"
#include "app/shop/store_access.h"
#include "app/shop/store_paths.h"
#include "tests/app/store_files.h"
#include "tests/program/test_program.h"

#include <QDateTime>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace harrowby;
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
    void wrongTriesOutliveARestart();
    void officesShareOnePause();
    void clockThatJumpsLocksNobodyOut();
    void spoiltMemoryLocksNobodyOut_data();
    void spoiltMemoryLocksNobodyOut();
    void eachStoreHasItsOwnTries();
    void passwordOpens();
    void wrongPasswordIsRefusedAndSlowsDown();
    void pauseOutlivesTheDialog();
};

namespace {

const QDateTime noon(QDate(2026, 11, 21), QTime(12, 0), Qt::UTC);

} // namespace

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
    SqliteDatabase database;
    QVERIFY(!into(database, openDatabase(path, OpenMode::Write)));
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
    SqliteDatabase database;
    QVERIFY(!into(database, openDatabase(path, OpenMode::Write)));
    QCOMPARE(findAdministrator(database.get()).kind, found);
    QCOMPARE(askAtDoor(database.get(), u"secret"_s).kind, found == Kind::Open ? Kind::Open : Kind::Wrong);
}

void OfficeDoorTest::missingTableIsAFailure()
{
    SqliteDatabase database;
    QVERIFY(!into(database, openDatabase(u":memory:"_s, OpenMode::Create)));
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

void OfficeDoorTest::wrongTriesOutliveARestart()
{
    const QTemporaryDir folder;
    const QString file = folder.filePath(u"deep/tries"_s);
    {
        WrongTries tries(file);
        for (int i = 0; i < 4; ++i)
            tries.add(noon);
        QCOMPARE(tries.pause(noon), 2000ms);
    }
    QCOMPARE(permissionsText(file), u"0600"_s);
    WrongTries later(file);
    QCOMPARE(later.pause(noon.addMSecs(500)), 1500ms);
    QCOMPARE(later.pause(noon.addSecs(2)), 0ms);
    later.add(noon.addSecs(60)); // the fifth in a row
    QCOMPARE(WrongTries(file).pause(noon.addSecs(60)), 4000ms);
    later.forget();
    QVERIFY(!QFile::exists(file));
    QCOMPARE(WrongTries(file).pause(noon.addSecs(60)), 0ms);
}

void OfficeDoorTest::officesShareOnePause()
{
    const QTemporaryDir folder;
    const QString file = folder.filePath(u"tries"_s);
    WrongTries one(file);
    WrongTries other(file);
    one.add(noon);
    other.add(noon);
    one.add(noon);
    QCOMPARE(other.pause(noon), 1000ms);
    WrongTries alone;
    alone.add(noon);
    QCOMPARE(alone.pause(noon), 0ms);
}

void OfficeDoorTest::clockThatJumpsLocksNobodyOut()
{
    const QTemporaryDir folder;
    const QString file = folder.filePath(u"tries"_s);
    for (int i = 0; i < 10; ++i)
        WrongTries(file).add(noon.addYears(20));
    QCOMPARE(WrongTries(file).pause(noon), 16000ms);
    QCOMPARE(WrongTries(file).pause(noon.addSecs(10)), 6000ms);
    QCOMPARE(WrongTries(file).pause(noon.addSecs(16)), 0ms);
    const auto write = [&](const QByteArray &bytes) {
        QFile memory(file);
        return memory.open(QIODevice::WriteOnly) && memory.write(bytes) == bytes.size();
    };
    QVERIFY(write("12 -9223372036854775808\n"));
    QCOMPARE(WrongTries(file).pause(noon), 0ms);
    QVERIFY(write("12 9223372036854775807\n"));
    QCOMPARE(WrongTries(file).pause(noon), 16000ms);
    QCOMPARE(WrongTries(file).pause(noon.addSecs(16)), 0ms);
}

void OfficeDoorTest::spoiltMemoryLocksNobodyOut_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("words") << QByteArray("no numbers");
    QTest::newRow("one number") << QByteArray("12");
    QTest::newRow("too many") << QByteArray("12 13 14");
    QTest::newRow("negative") << QByteArray("-12 1000");
    QTest::newRow("too large") << QByteArray("12 99999999999999999999999");
    QTest::newRow("long") << QByteArray(5'000'000, '1');
    QTest::newRow("zeroes") << QByteArray(20, '\0');
}

void OfficeDoorTest::spoiltMemoryLocksNobodyOut()
{
    QFETCH(QByteArray, bytes);
    const QTemporaryDir folder;
    QFile file(folder.filePath(u"tries"_s));
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    file.close();
    WrongTries tries(file.fileName());
    QCOMPARE(tries.pause(noon), 0ms);
    tries.add(noon);
    tries.add(noon);
    QCOMPARE(tries.pause(noon), 0ms);
    tries.add(noon);
    QCOMPARE(WrongTries(file.fileName()).pause(noon), 1000ms);
}

void OfficeDoorTest::eachStoreHasItsOwnTries()
{
    const QTemporaryDir folder;
    for (const QString &name : {u"one"_s, u"other"_s})
        QVERIFY(QFile(folder.filePath(name)).open(QIODevice::WriteOnly));
    QVERIFY(QFile::link(folder.filePath(u"one"_s), folder.filePath(u"link"_s)));
    QVERIFY(officeTriesPath(folder.filePath(u"one"_s)) != officeTriesPath(folder.filePath(u"other"_s)));
    QCOMPARE(officeTriesPath(folder.filePath(u"one"_s)), officeTriesPath(folder.filePath(u"link"_s)));
}

void OfficeDoorTest::passwordOpens()
{
    QString asked;
    OfficePasswordDialog dialog([&](const QString &password) {
        asked = password;
        return QString();
    });
    dialog.show();
    dialog.findChild<QLineEdit *>(u"officePassword"_s)->setText(u"secret"_s);
    QTest::keyClick(dialog.findChild<QLineEdit *>(), Qt::Key_Return);
    QCOMPARE(dialog.result(), static_cast<int>(QDialog::Accepted));
    QCOMPARE(asked, u"secret"_s);
    QCOMPARE(dialog.findChild<QLineEdit *>()->echoMode(), QLineEdit::Password);
}

void OfficeDoorTest::wrongPasswordIsRefusedAndSlowsDown()
{
    int asked = 0;
    OfficePasswordDialog dialog([&](const QString &) {
        ++asked;
        return u"Not this one."_s;
    });
    dialog.show();
    for (int i = 0; i < 5; ++i)
        dialog.accept();
    QCOMPARE(asked, 3);
    QVERIFY(dialog.isVisible());
    QVERIFY(dialog.findChild<QLabel *>(u"problem"_s)->text().contains(u"Not this one."_s));
}

void OfficeDoorTest::pauseOutlivesTheDialog()
{
    const QTemporaryDir folder;
    const QString file = folder.filePath(u"tries"_s);
    int asked = 0;
    {
        OfficePasswordDialog dialog([&](const QString &) { return ++asked, u"Not this one."_s; }, WrongTries(file));
        for (int i = 0; i < 5; ++i)
            dialog.accept();
    }
    QCOMPARE(asked, 3);
    for (int i = 0; i < 7; ++i) // so many that the pause lasts longer than the test
        WrongTries(file).add(QDateTime::currentDateTimeUtc());
    const auto open = [&](const QString &) { return ++asked, QString(); };
    OfficePasswordDialog later(open, WrongTries(file));
    later.show();
    later.accept();
    QCOMPARE(asked, 3);
    QVERIFY(later.findChild<QLabel *>(u"problem"_s)->text().contains(u"has to wait"_s));

    WrongTries(file).forget();
    WrongTries(file).add(QDateTime::currentDateTimeUtc());
    OfficePasswordDialog right(open, WrongTries(file));
    right.accept();
    QCOMPARE(asked, 4);
    QVERIFY(!QFile::exists(file));
}

HARROWBY_TEST(app_office_door_test, OfficeDoorTest)
#include "office_door_test.moc"
