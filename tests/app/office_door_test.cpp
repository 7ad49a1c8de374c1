// SPDX-License-Identifier: MIT
#include "app/office/office_door.h"
#include "app/office/office_login_dialog.h"
#include "app/office/users_table.h"
#include "app/office/wrong_tries.h"
#include "app/records/sqlite_records.h"
#include "tests/app/shop_place.h"
#include "tests/app/store_files.h"
#include "tests/doubles/server_shop.h"
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

using AtDoor = DoorAnswer::Kind;
Q_DECLARE_METATYPE(DoorAnswer::Kind)

class OfficeDoorTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void loginIsComparedAsAtTheTill_data();
    void loginIsComparedAsAtTheTill();
    void storeWithoutAdministrator_data();
    void storeWithoutAdministrator();
    void missingTableIsAFailure();
    void whoIsInIsAskedOnceMore_data();
    void whoIsInIsAskedOnceMore();
    void ownNewPasswordCounts();
    void whatIsTriedIsTold();
    void loginOpens();
    void wrongPasswordIsRefusedAndSlowsDown();
    void pauseOutlivesTheDialog();
    void othersLoginForgetsNoWrongTries();
};

void OfficeDoorTest::loginIsComparedAsAtTheTill_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("password");
    QTest::addColumn<AtDoor>("answer");
    const auto row = [](const char *what, const QString &name, const QString &password, AtDoor answer) {
        QTest::newRow(what) << name << password << answer;
    };
    row("right", u"ADMINISTRATOR"_s, u"secret"_s, AtDoor::Open);
    row("other capitals and blanks", u" Administrator "_s, u"  SeCret "_s, AtDoor::Open);
    row("wrong", u"ADMINISTRATOR"_s, u"secrets"_s, AtDoor::Wrong);
    row("blank password", u"ADMINISTRATOR"_s, u"  "_s, AtDoor::Blank);
    row("blank name", u" "_s, u"secret"_s, AtDoor::Blank);
    row("no way around", u"ADMINISTRATOR"_s, u"' OR '1'='1"_s, AtDoor::Wrong);
    row("no way around by the name", u"' OR '1'='1"_s, u"' OR '1'='1"_s, AtDoor::Wrong);
    row("another user's", u"ADMINISTRATOR"_s, u"MINE"_s, AtDoor::Wrong);
    row("the type gives nothing", u"BOB"_s, u"MINE"_s, AtDoor::NotEnabled);
    row("stock right", u"anna"_s, u"a"_s, AtDoor::Open);
    row("stock right of any number", u"CLARA"_s, u"c"_s, AtDoor::Open);
    row("no stock right", u"DORA"_s, u"d"_s, AtDoor::NoRight);
    row("stock right, but not the till", u"EVE"_s, u"e"_s, AtDoor::NotEnabled);
    row("1 is not the till", u"FRED"_s, u"f"_s, AtDoor::NotEnabled);
    row("viewer", u"GINA"_s, u"g"_s, AtDoor::Wrong);
    row("of two, the first", u"HUGH"_s, u"h"_s, AtDoor::NoRight);
}

void OfficeDoorTest::loginIsComparedAsAtTheTill()
{
    QFETCH(QString, name);
    QFETCH(QString, password);
    QFETCH(AtDoor, answer);
    const QTemporaryDir folder;
    const ShopPlace place(folder.filePath(u"shop.sqlite"_s));
    const QString &path = place.address();
    makeStore(path);
    runAll(path, {u"INSERT INTO Users (Username, Password, Type, InventoryUse, InventoryReorder) VALUES "
                  "('BOB', 'MINE', 'ADMINISTRATOR', 0, 0), ('Anna', 'a', 'STAFF', -1, -1), "
                  "('CLARA', 'C', 'STAFF', %1, 2), ('DORA', 'D', 'STAFF', -1, 0), ('EVE', 'E', 'STAFF', 0, -1), "
                  "('FRED', 'F', 'STAFF', 1, -1), ('GINA', 'G', 'VIEWER', -1, -1), ('HUGH', 'H', 'STAFF', -1, 0), "
                  "('HUGH', 'H', 'STAFF', -1, -1)"_s.arg(harrowby::test::shopsAreOnAServer() ? u"-1"_s : u"'True'"_s)});
    const OpenShop shop(path);
    Records &records = *shop.records();
    const DoorAnswer found = askAtDoor(records, name, password);
    QCOMPARE(found.kind, answer);
    const bool administrator = name.trimmed().toUpper() == u"ADMINISTRATOR"_s;
    if (answer == AtDoor::Open) {
        QCOMPARE(found.user.name, name.trimmed().toUpper());
        QCOMPARE(found.user.isAdministrator, administrator);
        QVERIFY(found.user.mayKeepStock);
    }
}

void OfficeDoorTest::storeWithoutAdministrator_data()
{
    QTest::addColumn<QString>("change");
    QTest::addColumn<AtDoor>("found");
    QTest::newRow("none") << u"DELETE FROM Users"_s << AtDoor::NobodyCould;
    QTest::newRow("viewer") << u"UPDATE Users SET Type = 'VIEWER'"_s << AtDoor::NobodyCould;
    QTest::newRow("no type") << u"UPDATE Users SET Type = NULL"_s << AtDoor::NobodyCould;
    QTest::newRow("small letters") << u"UPDATE Users SET Username = 'administrator', Password = 'Secret'"_s
                                   << AtDoor::Open;
    QTest::newRow("no flags") << u"UPDATE Users SET InventoryUse = 0"_s << AtDoor::Open;
    QTest::newRow("another name") << u"UPDATE Users SET Username = 'BOSS', InventoryUse = 0"_s << AtDoor::NobodyCould;
    QTest::newRow("another who keeps the stock")
        << u"UPDATE Users SET Username = 'BOSS', InventoryUse = -1, InventoryReorder = -1"_s << AtDoor::Open;
}

void OfficeDoorTest::storeWithoutAdministrator()
{
    QFETCH(QString, change);
    QFETCH(AtDoor, found);
    const QTemporaryDir folder;
    const ShopPlace place(folder.filePath(u"shop.sqlite"_s));
    const QString &path = place.address();
    makeStore(path);
    runAll(path, {change});
    const OpenShop shop(path);
    Records &records = *shop.records();
    QCOMPARE(findKeyHolder(records).kind, found);
}

void OfficeDoorTest::missingTableIsAFailure()
{
    SqliteDatabase database;
    QVERIFY(!into(database, openDatabase(u":memory:"_s, OpenMode::Create)));
    SqliteRecords records(database.get());
    for (const DoorAnswer &answer : {findKeyHolder(records), askAtDoor(records, u"ADMINISTRATOR"_s, u"secret"_s)}) {
        QCOMPARE(answer.kind, AtDoor::Failed);
        QVERIFY(answer.error.reason.contains(u"no such table"_s));
    }
}

void OfficeDoorTest::whoIsInIsAskedOnceMore_data()
{
    QTest::addColumn<QString>("change");
    QTest::addColumn<QString>("refusal");
    QTest::newRow("as before") << u"UPDATE Users SET InventorySales = 0"_s << QString();
    QTest::newRow("password in other capitals") << u"UPDATE Users SET Password = lower(Password)"_s << QString();
    QTest::newRow("no stock") << u"UPDATE Users SET InventoryReorder = 0"_s
                              << u"The right \"Stock\" was taken away from ANNA since"_s;
    QTest::newRow("no till") << u"UPDATE Users SET InventoryUse = 0"_s
                             << u"The right to use the till was taken away from ANNA since"_s;
    QTest::newRow("password") << u"UPDATE Users SET Password = 'NEW'"_s << u"The password of ANNA was changed since"_s;
    QTest::newRow("gone") << u"DELETE FROM Users"_s << u"ANNA can no longer log in: "_s;
    QTest::newRow("renamed") << u"UPDATE Users SET Username = 'EVE'"_s << u"ANNA can no longer log in: "_s;
    QTest::newRow("viewer") << u"UPDATE Users SET Type = 'VIEWER'"_s << u"ANNA can no longer log in: "_s;
    QTest::newRow("unreadable") << u"DROP TABLE Users"_s << u"The users could not be read. Nothing was done."_s;
}

void OfficeDoorTest::whoIsInIsAskedOnceMore()
{
    QFETCH(QString, change);
    QFETCH(QString, refusal);
    const QTemporaryDir folder;
    const ShopPlace place(folder.filePath(u"shop.sqlite"_s));
    const QString &path = place.address();
    makeStore(path);
    runAll(path, {u"INSERT INTO Users (Username, Password, Type, InventoryUse, InventoryReorder) VALUES "
                  "('Anna', 'Ann', 'STAFF', -1, -1)"_s});
    const OpenShop shop(path);
    Records &records = *shop.records();
    const DoorWatch watch(records, askAtDoor(records, u"anna"_s, u"ann"_s).user);
    QCOMPARE(watch.refusal(), QString());
    const QString where = change.startsWith(u"DROP"_s) ? QString() : u" WHERE Username = 'Anna'"_s;
    shop.run(change + where);
    const QString found = watch.refusal();
    QVERIFY2(refusal.isEmpty() ? found.isEmpty() : found.startsWith(refusal), qPrintable(found));
}

void OfficeDoorTest::ownNewPasswordCounts()
{
    const QTemporaryDir folder;
    const ShopPlace place(folder.filePath(u"shop.sqlite"_s));
    const QString &path = place.address();
    makeStore(path);
    runAll(path, {u"INSERT INTO Users (Username, Password, Type) VALUES ('BOB', 'B', 'STAFF')"_s});
    const OpenShop shop(path);
    Records &records = *shop.records();
    const auto watch = std::make_shared<DoorWatch>(records, askAtDoor(records, u"administrator"_s, u"secret"_s).user);
    const UsersTable table(SignedDeeds(records, u"office"_s, u"ADMINISTRATOR"_s), watch);
    const auto user = [&table](const QString &name) {
        for (const StoreUser &one : table.list().users) {
            if (one.name == name)
                return one;
        }
        return StoreUser();
    };
    QVERIFY(!table.setPassword(user(u"ADMINISTRATOR"_s), u"new"_s)); // set here, by herself
    QVERIFY(!table.setRight(user(u"BOB"_s), u"InventorySales"_s, true));
    shop.run(u"UPDATE Users SET Password = 'ELSE' WHERE Username = 'ADMINISTRATOR'"_s);
    const auto refused = table.setRight(user(u"BOB"_s), u"InventorySales"_s, false);
    QVERIFY(refused && refused->startsWith(u"The password of ADMINISTRATOR was changed since"_s));
    QVERIFY(table.add({u"EVE"_s, u"E"_s, u"STAFF"_s, {}}));
    QVERIFY(table.setPassword(user(u"BOB"_s), u"X"_s));
    QVERIFY(user(u"BOB"_s).rights.contains(u"InventorySales"_s));
    QCOMPARE(column(path, u"SELECT count(*) FROM Users"_s), QStringList{u"2"_s});
}

void OfficeDoorTest::whatIsTriedIsTold()
{
    const QTemporaryDir folder;
    const ShopPlace place(folder.filePath(u"store.sqlite"_s));
    const QString &path = place.address();
    makeStore(path);
    runAll(path, {u"INSERT INTO Users (Username, Password, Type, InventoryUse, InventoryReorder) VALUES "
                  "('ANNA', 'A', 'STAFF', -1, 0), ('BOB', 'B', 'STAFF', 0, -1)"_s});
    const OpenShop shop(path);
    Records &records = *shop.records();
    for (const auto &[name, password] : {std::pair(u"ADMINISTRATOR"_s, u"secret"_s),
                                         {u"ADMINISTRATOR"_s, u"wrong"_s},
                                         {u"ANNA"_s, u"a"_s},
                                         {u"BOB"_s, u"b"_s},
                                         {u"SECRET"_s, u"secret"_s}, // in the wrong field
                                         {u"ANNA"_s, QString()}})
        noteAtDoor(records, askAtDoor(records, name, password), name);
    QCOMPARE(column(path, u"SELECT Kind || '|' || Who || '|' || Place || '|' || What FROM HarrowbyActivity "
                          "ORDER BY rowid"_s),
             (QStringList{
                 u"LoggedIn|ADMINISTRATOR|office|Opened the office"_s,
                 u"LoginRefused|ADMINISTRATOR|office|Wrong password"_s, u"LoginRefused|ANNA|office|Not enough rights"_s,
                 u"LoginRefused|BOB|office|Not enough rights"_s, u"LoginRefused||office|Unknown user name"_s}));
}

void OfficeDoorTest::loginOpens()
{
    QStringList asked;
    OfficeLoginDialog dialog([&](const QString &name, const QString &password) {
        asked = {name, password};
        return Result<OfficeUser, QString>(OfficeUser{name, true, true});
    });
    dialog.show();
    auto *password = dialog.findChild<QLineEdit *>(u"officePassword"_s);
    QCOMPARE(dialog.focusWidget(), password); // the name is proposed
    password->setText(u"secret"_s);
    QTest::keyClick(password, Qt::Key_Return);
    QCOMPARE(dialog.result(), static_cast<int>(QDialog::Accepted));
    QCOMPARE(asked, (QStringList{u"ADMINISTRATOR"_s, u"secret"_s}));
    QCOMPARE(dialog.user().name, u"ADMINISTRATOR"_s);
    QCOMPARE(password->echoMode(), QLineEdit::Password);
}

void OfficeDoorTest::wrongPasswordIsRefusedAndSlowsDown()
{
    int asked = 0;
    OfficeLoginDialog dialog([&](const QString &, const QString &) {
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
        OfficeLoginDialog dialog(
            [&](const QString &, const QString &) { return ++asked, Unexpected(u"Not this one."_s); },
            WrongTries(file));
        for (int i = 0; i < 5; ++i)
            dialog.accept();
    }
    QCOMPARE(asked, 3);
    for (int i = 0; i < 7; ++i) // so many that the pause lasts longer than the test
        WrongTries(file).add(QDateTime::currentDateTimeUtc());
    const auto open = [&](const QString &name, const QString &) {
        return ++asked, Result<OfficeUser, QString>(OfficeUser{name, true, true});
    };
    OfficeLoginDialog later(open, WrongTries(file));
    later.show();
    later.accept();
    QCOMPARE(asked, 3);
    QVERIFY(later.findChild<QLabel *>(u"problem"_s)->text().contains(u"has to wait"_s));

    WrongTries(file).forget();
    WrongTries(file).add(QDateTime::currentDateTimeUtc());
    OfficeLoginDialog right(open, WrongTries(file));
    right.accept();
    QCOMPARE(asked, 4);
    QVERIFY(!QFile::exists(file));
}

/// Who knows a password of her own could try others between her logins.
void OfficeDoorTest::othersLoginForgetsNoWrongTries()
{
    const QTemporaryDir folder;
    const QString file = folder.filePath(u"tries"_s);
    for (int i = 0; i < 2; ++i)
        WrongTries(file).add(QDateTime::currentDateTimeUtc());
    OfficeLoginDialog anna(
        [](const QString &name, const QString &) {
            return Result<OfficeUser, QString>(OfficeUser{name, false, true});
        },
        WrongTries(file));
    anna.accept();
    QCOMPARE(anna.result(), static_cast<int>(QDialog::Accepted));
    QCOMPARE(WrongTries(file).pause(QDateTime::currentDateTimeUtc()).count(), 0); // hers was no wrong one
    WrongTries(file).add(QDateTime::currentDateTimeUtc());
    QVERIFY(WrongTries(file).pause(QDateTime::currentDateTimeUtc()).count() > 0);
}

HARROWBY_TEST(app_office_door_test, OfficeDoorTest)
#include "office_door_test.moc"
