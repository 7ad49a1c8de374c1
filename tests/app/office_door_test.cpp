// SPDX-License-Identifier: MIT
#include "app/office/office_door.h"
#include "app/office/office_password_dialog.h"
#include "app/office/wrong_tries.h"
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
    void passwordOpens();
    void wrongPasswordIsRefusedAndSlowsDown();
    void pauseOutlivesTheDialog();
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

void OfficeDoorTest::passwordOpens()
{
    QString asked;
    OfficePasswordDialog dialog([&](const QString &password) {
        asked = password;
        return Result<void, QString>();
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
        return Unexpected(u"Not this one."_s);
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
        OfficePasswordDialog dialog([&](const QString &) { return ++asked, Unexpected(u"Not this one."_s); },
                                    WrongTries(file));
        for (int i = 0; i < 5; ++i)
            dialog.accept();
    }
    QCOMPARE(asked, 3);
    for (int i = 0; i < 7; ++i) // so many that the pause lasts longer than the test
        WrongTries(file).add(QDateTime::currentDateTimeUtc());
    const auto open = [&](const QString &) { return ++asked, Result<void, QString>(); };
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
