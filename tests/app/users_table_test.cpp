// SPDX-License-Identifier: MIT
#include "app/office/user_rules.h"
#include "app/office/users_table.h"
#include "app/shop/password_rules.h"
#include "basic/text.h"
#include "basic/values.h"
#include "store/statement_texts.h"
#include "tests/app/shop_place.h"
#include "tests/app/store_files.h"
#include "tests/program/test_program.h"

#include <QTemporaryDir>
#include <QTest>

#include <sqlite3.h>

#include <memory>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::app::test;

class UsersTableTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void addedUserIsFoundByTheLogin_data();
    void addedUserIsFoundByTheLogin();
    void refusedUser_data();
    void refusedUser();
    void flagsAreWhatTheLoginReads();
    void flagKeepsTheFormOfTheHost();
    void storedFlagsAreReadAsTheLoginDoes_data();
    void storedFlagsAreReadAsTheLoginDoes();
    void administratorKeepsEveryRight();
    void typeAndPasswordChange();
    void whatHindersTheLogin_data();
    void whatHindersTheLogin();
    void otherColumnsAndUsersStayAsTheyAre();
    void vanishedUserIsTold();
    void lockedStoreIsToldAndUnchanged();
    void rightWaitsForATillThatWrites();
    void ruleOfTheHostIsTold();
    void usualRightsOfTypes();
    void roleSetsAllSeven();
    void rolesAreTold();
    void everyChangeIsTold();
    void changeWithoutItsDeedIsNotMade();
    void changeOfAnotherOfficeIsNotLost_data();
    void changeOfAnotherOfficeIsNotLost();

private:
    [[nodiscard]] StoreUser user(const QString &name) const;
    [[nodiscard]] int foundByLogin(const QString &name, const QString &password) const;
    void run(const QString &statement) { m_shop->run(statement); }
    [[nodiscard]] QString read(const QString &select) const { return m_shop->read(select); }
    [[nodiscard]] UsersTable store() const
    {
        return UsersTable(SignedDeeds(*m_records, u"office"_s, u"ADMINISTRATOR"_s));
    }

    QTemporaryDir m_folder;
    QString m_path;
    std::unique_ptr<ShopPlace> m_place;
    std::unique_ptr<OpenShop> m_shop;
    std::shared_ptr<Records> m_records;
};

void UsersTableTest::init()
{
    m_place = std::make_unique<ShopPlace>(
        m_folder.filePath(QString::fromLatin1(QTest::currentTestFunction()) + u'-' +
                          QString::number(reinterpret_cast<quintptr>(QTest::currentDataTag())) + u".sqlite"_s));
    m_path = m_place->address();
    makeStore(m_path);
    m_shop = std::make_unique<OpenShop>(m_path);
    run(u"PRAGMA synchronous = OFF"_s);
    m_records = m_shop->records();
}

void UsersTableTest::cleanup()
{
    m_records.reset();
    m_shop.reset();
    m_place.reset();
}

StoreUser UsersTableTest::user(const QString &name) const
{
    const auto listing = store().list();
    for (const StoreUser &found : listing.users) {
        if (found.name == name)
            return found;
    }
    return {};
}

int UsersTableTest::foundByLogin(const QString &name, const QString &password) const
{
    const auto login = harrowby::statements::login(harrowby::trimmedUpper(name), harrowby::trimmedUpper(password));
    if (login.isRefused())
        return -1;
    const auto rows = m_records->read({login.sql(), {}});
    return rows ? static_cast<int>(rows->size()) : -1;
}

void UsersTableTest::addedUserIsFoundByTheLogin_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("typed");
    QTest::newRow("plain") << u"anna"_s << u"ANNA"_s;
    QTest::newRow("blanks around") << u"  Anna Lee "_s << u"anna lee"_s;
    QTest::newRow("umlaut") << u"jürgen"_s << u"JÜRGEN"_s;
    QTest::newRow("sharp s") << u"strauß"_s << u"STRAUSS"_s;
    QTest::newRow("double quote and percent") << u"a\"b%_;--"_s << u"A\"B%_;--"_s;
    QTest::newRow("greek") << u"μάριος"_s << u"ΜΆΡΙΟΣ"_s;
}

void UsersTableTest::addedUserIsFoundByTheLogin()
{
    QFETCH(QString, name);
    QFETCH(QString, typed);
    const auto problem = store().add({name, u"Päss 1"_s, u"STAFF"_s, usualRights(u"STAFF"_s)});
    QVERIFY2(!problem, problem ? qPrintable(*problem) : "");
    QCOMPARE(foundByLogin(typed, u"PÄSS 1"_s), 1);
    QCOMPARE(foundByLogin(typed, u"other"_s), 0);
    QCOMPARE(loginObstacle(user(storedUserName(name))), QString());
}

void UsersTableTest::refusedUser_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("password");
    QTest::addColumn<QString>("said");
    QTest::newRow("no name") << u"  "_s << u"p"_s << u"Please enter a user name."_s;
    QTest::newRow("no-break blank") << u"\u00a0"_s << u"p"_s << u"Please enter a user name."_s;
    QTest::newRow("quote in the name") << u"o'neill"_s << u"p"_s << u"single quote"_s;
    QTest::newRow("line break") << u"a\nb"_s << u"p"_s << u"cannot be typed"_s;
    QTest::newRow("half a pair") << (u"a"_s + QChar(0xd83d)) << u"p"_s << u"cannot be typed"_s;
    QTest::newRow("no password") << u"anna"_s << u" "_s << u"Please enter a password."_s;
    QTest::newRow("quote in the password") << u"anna"_s << u"a'b"_s << u"single quote"_s;
    QTest::newRow("taken") << u"ADMINISTRATOR"_s << u"p"_s << u"There is a user \"ADMINISTRATOR\" already."_s;
    QTest::newRow("taken in other capitals") << u" administrator"_s << u"p"_s << u"already"_s;
    QTest::newRow("taken by a host's row") << u"bob"_s << u"p"_s << u"already"_s;
    QTest::newRow("taken by a host's umlaut") << u"JÖRG"_s << u"p"_s << u"already"_s;
}

void UsersTableTest::refusedUser()
{
    QFETCH(QString, name);
    QFETCH(QString, password);
    QFETCH(QString, said);
    run(u"INSERT INTO Users (Username, Password, Type) VALUES (' Bob ', 'x', 'STAFF'), ('jörg', 'x', 'STAFF')"_s);
    const auto problem = store().add({name, password, u"STAFF"_s, {}});
    QVERIFY(problem);
    QVERIFY2(problem->contains(said), qPrintable(*problem));
    QCOMPARE(read(u"SELECT count(*) FROM Users"_s), u"3"_s);
    QVERIFY(m_shop->file() == nullptr || sqlite3_get_autocommit(m_shop->file()) != 0);
}

void UsersTableTest::flagsAreWhatTheLoginReads()
{
    QVERIFY(!store().add({u"anna"_s, u"p"_s, u"STAFF"_s, {u"InventorySales"_s}}));
    QCOMPARE(user(u"ANNA"_s).rights, QStringList{u"InventorySales"_s});
    for (const Right &right : userRights()) {
        QVERIFY(!store().setRight(user(u"ANNA"_s), right.column, true));
        const auto flag = m_records->read({u"SELECT %1 FROM Users WHERE Username = 'ANNA'"_s.arg(right.column), {}});
        QVERIFY(flag && harrowby::valueEqualsTrue(flag->value(0).value(0)));
    }
    QCOMPARE(user(u"ANNA"_s).rights.size(), userRights().size());
    QVERIFY(!store().setRight(user(u"ANNA"_s), u"InventoryUndo"_s, false));
    QCOMPARE(read(u"SELECT InventoryUndo FROM Users WHERE Username = 'ANNA'"_s), u"0"_s);
    QVERIFY(store().setRight(user(u"ANNA"_s), u"Password"_s, true)); // no right
}

void UsersTableTest::flagKeepsTheFormOfTheHost()
{
    run(u"INSERT INTO Users (Username, Password, Type, InventoryUse, InventorySales) "
        "VALUES ('ANNA', 'P', 'STAFF', 'False', 'True')"_s);
    QCOMPARE(user(u"ANNA"_s).rights, QStringList{u"InventorySales"_s});
    QVERIFY(!store().setRight(user(u"ANNA"_s), u"InventoryUse"_s, true));
    QVERIFY(!store().setRight(user(u"ANNA"_s), u"InventorySales"_s, false));
    QCOMPARE(read(u"SELECT InventoryUse || InventorySales FROM Users WHERE Username = 'ANNA'"_s), u"TrueFalse"_s);
    QCOMPARE(user(u"ANNA"_s).rights, QStringList{u"InventoryUse"_s});
}

void UsersTableTest::storedFlagsAreReadAsTheLoginDoes_data()
{
    QTest::addColumn<QString>("stored");
    QTest::addColumn<bool>("mayUse");
    QTest::addColumn<bool>("maySell");
    QTest::newRow("minus one") << u"-1"_s << true << true;
    QTest::newRow("one is not equal to true") << u"1"_s << false << true;
    QTest::newRow("nought") << u"0"_s << false << false;
    QTest::newRow("null") << u"NULL"_s << false << false;
    QTest::newRow("True") << u"'True'"_s << true << true;
    QTest::newRow("yes") << u"'yes'"_s << false << false;
}

void UsersTableTest::storedFlagsAreReadAsTheLoginDoes()
{
    QFETCH(QString, stored);
    QFETCH(bool, mayUse);
    QFETCH(bool, maySell);
    run(u"INSERT INTO Users (Username, Password, Type, InventoryUse, InventorySales) "
        "VALUES ('ANNA', 'P', 'STAFF', %1, %1)"_s.arg(stored));
    QCOMPARE(user(u"ANNA"_s).rights.contains(u"InventoryUse"_s), mayUse);
    QCOMPARE(user(u"ANNA"_s).rights.contains(u"InventorySales"_s), maySell);
    QCOMPARE(loginObstacle(user(u"ANNA"_s)).isEmpty(), mayUse);
}

void UsersTableTest::administratorKeepsEveryRight()
{
    run(u"UPDATE Users SET InventoryUse = 0, InventorySales = 0"_s);
    QCOMPARE(user(u"ADMINISTRATOR"_s).rights.size(), userRights().size());
    QCOMPARE(store().setRight(user(u"ADMINISTRATOR"_s), u"InventorySales"_s, false),
             u"ADMINISTRATOR has every right and keeps it."_s);
    QCOMPARE(store().setType(user(u"ADMINISTRATOR"_s), u"VIEWER"_s), u"ADMINISTRATOR must be able to log in."_s);
    QCOMPARE(read(u"SELECT Type || InventorySales FROM Users"_s), u"ADMINISTRATOR0"_s);
}

void UsersTableTest::typeAndPasswordChange()
{
    QVERIFY(!store().add({u"anna"_s, u"old"_s, u"STAFF"_s, {}}));
    QVERIFY(!store().setPassword(user(u"ANNA"_s), u" New one "_s));
    QCOMPARE(foundByLogin(u"anna"_s, u"new ONE"_s), 1);
    QCOMPARE(foundByLogin(u"anna"_s, u"old"_s), 0);
    QVERIFY(store().setPassword(user(u"ANNA"_s), u"a'b"_s));
    QVERIFY(!store().setType(user(u"ANNA"_s), u"VIEWER"_s));
    QCOMPARE(foundByLogin(u"anna"_s, u"new one"_s), 0);
}

void UsersTableTest::whatHindersTheLogin_data()
{
    QTest::addColumn<QString>("row");
    QTest::addColumn<QString>("said");
    QTest::newRow("viewer") << u"'A', 'P', 'VIEWER', -1"_s << u"VIEWER"_s;
    QTest::newRow("no type") << u"'A', 'P', NULL, -1"_s << u"no type"_s;
    QTest::newRow("small umlaut") << u"'jörg', 'P', 'STAFF', -1"_s << u"this name"_s;
    QTest::newRow("blank behind the name") << u"'A ', 'P', 'STAFF', -1"_s << u"this name"_s;
    QTest::newRow("quote") << u"'O''NEILL', 'P', 'STAFF', -1"_s << u"this name"_s;
    QTest::newRow("password of a small umlaut") << u"'A', 'ö', 'STAFF', -1"_s << u"password"_s;
    QTest::newRow("no password") << u"'A', NULL, 'STAFF', -1"_s << u"password"_s;
    QTest::newRow("switched off") << u"'A', 'P', 'STAFF', 0"_s << u"may not use the till"_s;
    QTest::newRow("small letters are found") << u"'abe', 'pass', 'STAFF', -1"_s << QString();
}

void UsersTableTest::whatHindersTheLogin()
{
    QFETCH(QString, row);
    QFETCH(QString, said);
    run(u"DELETE FROM Users"_s);
    run(u"INSERT INTO Users (Username, Password, Type, InventoryUse) VALUES (%1)"_s.arg(row));
    const auto [users, problem] = store().list();
    QVERIFY(!problem);
    QCOMPARE(users.size(), 1);
    const QString obstacle = loginObstacle(users.constFirst());
    QVERIFY2(said.isEmpty() ? obstacle.isEmpty() : obstacle.contains(said), qPrintable(obstacle));
}

void UsersTableTest::otherColumnsAndUsersStayAsTheyAre()
{
    run(u"ALTER TABLE Users ADD COLUMN Telephone TEXT DEFAULT 'none'"_s);
    run(u"INSERT INTO Users (Username, Password, Type, InventoryUse, Telephone) VALUES ('BOB', 'P', 'STAFF', 1, '42')"_s);
    QVERIFY(!store().add({u"anna"_s, u"p"_s, u"STAFF"_s, {}}));
    QVERIFY(!store().setRight(user(u"BOB"_s), u"InventorySales"_s, true));
    QCOMPARE(column(m_path, u"SELECT Username || Telephone || quote(InventoryUse) FROM Users ORDER BY Username"_s),
             (QStringList{u"ADMINISTRATORnone-1"_s, u"ANNAnone0"_s, u"BOB421"_s}));
}

void UsersTableTest::vanishedUserIsTold()
{
    QVERIFY(!store().add({u"anna"_s, u"p"_s, u"STAFF"_s, {}}));
    const StoreUser anna = user(u"ANNA"_s);
    run(u"DELETE FROM Users WHERE Username = 'ANNA'"_s);
    const auto problem = store().setPassword(anna, u"new"_s);
    QVERIFY(problem && problem->contains(u"no user \"ANNA\" any more"_s));
    // Another user may have got its rowid.
    run(u"INSERT INTO Users (rowid, Username, Password, Type) VALUES (%1, 'BOB', 'P', 'STAFF')"_s.arg(anna.row));
    QVERIFY(store().setPassword(anna, u"new"_s));
    QCOMPARE(read(u"SELECT Password FROM Users WHERE Username = 'BOB'"_s), u"P"_s);
}

void UsersTableTest::lockedStoreIsToldAndUnchanged()
{
    SqliteDatabase other;
    QVERIFY(!into(other, openDatabase(m_path, OpenMode::Write)));
    QVERIFY(!runSql(other.get(), u"BEGIN IMMEDIATE"_s));
    const auto added = store().add({u"anna"_s, u"p"_s, u"STAFF"_s, {}});
    QVERIFY(added && added->startsWith(u"The user was not added."_s) && added->contains(u"locked"_s));
    const auto changed = store().setPassword(user(u"ADMINISTRATOR"_s), u"new"_s);
    QVERIFY(changed && changed->contains(u"locked"_s));
    QVERIFY(!runSql(other.get(), u"ROLLBACK"_s));
    QVERIFY(!store().add({u"anna"_s, u"p"_s, u"STAFF"_s, {}}));
}

/// SQLite calls the busy handler only while the writing connection has no open read.
void UsersTableTest::rightWaitsForATillThatWrites()
{
    QVERIFY(!store().add({u"anna"_s, u"p"_s, u"STAFF"_s, {}}));
    run(u"PRAGMA journal_mode = WAL"_s);
    SqliteDatabase till;
    QVERIFY(!into(till, openDatabase(m_path, OpenMode::Write)));
    QVERIFY(!runSql(till.get(), u"BEGIN IMMEDIATE"_s));
    QVERIFY(!runSql(till.get(), u"UPDATE StoreSettings SET ShowDetails = 0"_s));
    const auto tillIsDone = [](void *other, int) { return runSql(static_cast<sqlite3 *>(other), u"COMMIT"_s) ? 0 : 1; };
    sqlite3_busy_handler(m_shop->file(), tillIsDone, till.get());
    const auto problem = store().setRight(user(u"ANNA"_s), u"InventoryUndo"_s, true);
    QVERIFY2(!problem, qPrintable(problem.value_or(QString())));
    QCOMPARE(user(u"ANNA"_s).rights.contains(u"InventoryUndo"_s), true);
}

void UsersTableTest::ruleOfTheHostIsTold()
{
    run(u"CREATE TRIGGER rule BEFORE INSERT ON Users BEGIN SELECT RAISE(ABORT, 'ask the host'); END"_s);
    const auto problem = store().add({u"anna"_s, u"p"_s, u"STAFF"_s, {}});
    QVERIFY(problem && problem->contains(u"ask the host"_s));
    QVERIFY(m_shop->file() == nullptr || sqlite3_get_autocommit(m_shop->file()) != 0);
}

void UsersTableTest::usualRightsOfTypes()
{
    QCOMPARE(usualRights(u"STAFF"_s), (QStringList{u"InventoryUse"_s, u"InventorySales"_s}));
    QCOMPARE(usualRights(u"MANAGER"_s).size(), userRights().size());
    QCOMPARE(usualRights(u"VIEWER"_s), QStringList());
}

void UsersTableTest::roleSetsAllSeven()
{
    run(u"INSERT INTO Users (Username, Password, Type, InventoryUse, InventoryDelete, InventoryReorder) "
        "VALUES ('ANNA', 'P', 'STAFF', 0, -1, 'True')"_s);
    QVERIFY(!store().setRole(user(u"ANNA"_s), userRoles().at(1)));
    QCOMPARE(user(u"ANNA"_s).rights, userRoles().at(1).rights);
    // The form of the host's flags stays.
    QCOMPARE(read(u"SELECT InventoryUse || InventorySales || InventoryReport || InventoryUndo || InventoryDelete || "
                  "InventorySettings || InventoryReorder || Type || Password FROM Users WHERE Username = 'ANNA'"_s),
             u"-1-1-1-100FalseSTAFFP"_s);
    QCOMPARE(roleWith(user(u"ANNA"_s).rights), &userRoles().at(1));
    QCOMPARE(store().setRole(user(u"ADMINISTRATOR"_s), userRoles().at(0)),
             u"ADMINISTRATOR has every right and keeps it."_s);
    QCOMPARE(user(u"ADMINISTRATOR"_s).rights.size(), 7);
}

void UsersTableTest::rolesAreTold()
{
    QCOMPARE(roleWith({u"InventorySales"_s, u"InventoryUse"_s})->name, u"Cashier"_s);
    QVERIFY(roleWith({u"InventoryUse"_s}) == nullptr);
    QVERIFY(roleWith({}) == nullptr);
    QCOMPARE(userRoles().last().rights.size(), 7);
    QCOMPARE(changeWords({u"InventoryUse"_s, u"InventoryReorder"_s}, userRoles().at(1).rights),
             u"Given: Custom sales, Sales report, Undo. Taken away: Stock."_s);
    QCOMPARE(changeWords(userRoles().at(0).rights, userRoles().at(0).rights), QString());
}

void UsersTableTest::everyChangeIsTold()
{
    QVERIFY(!store().add({u"anna"_s, u"P"_s, u"STAFF"_s, usualRights(u"STAFF"_s)}));
    QVERIFY(!store().setRight(user(u"ANNA"_s), u"InventoryUndo"_s, true));
    QVERIFY(!store().setRight(user(u"ANNA"_s), u"InventoryUndo"_s, false));
    QVERIFY(!store().setRole(user(u"ANNA"_s), userRoles().at(1)));
    QVERIFY(!store().setType(user(u"ANNA"_s), u"MANAGER"_s));
    QVERIFY(!store().setPassword(user(u"ANNA"_s), u"secret word"_s));
    QCOMPARE(column(m_path, u"SELECT Kind || '|' || Who || '|' || What FROM HarrowbyActivity ORDER BY rowid"_s),
             (QStringList{u"UserAdded|ADMINISTRATOR|ANNA was added as STAFF with: Use the till, Custom sales."_s,
                          u"RightsChanged|ADMINISTRATOR|ANNA was given the right \"Undo\"."_s,
                          u"RightsChanged|ADMINISTRATOR|ANNA was taken the right \"Undo\" away."_s,
                          u"RightsChanged|ADMINISTRATOR|ANNA was made shift leader. Given: Sales report, Undo."_s,
                          u"RightsChanged|ADMINISTRATOR|The type of ANNA: MANAGER, before STAFF."_s,
                          u"PasswordSet|ADMINISTRATOR|The password of ANNA was changed."_s}));
}

void UsersTableTest::changeWithoutItsDeedIsNotMade()
{
    run(u"CREATE TABLE HarrowbyActivity (Other)"_s);
    const auto problem = store().add({u"anna"_s, u"P"_s, u"STAFF"_s, {}});
    QVERIFY(problem);
    QVERIFY2(problem->startsWith(u"The user was not added."_s), qPrintable(*problem));
    QCOMPARE(user(u"ANNA"_s).name, QString());
    QVERIFY(store().setType(user(u"ADMINISTRATOR"_s), u"MANAGER"_s));
    QCOMPARE(user(u"ADMINISTRATOR"_s).type, u"ADMINISTRATOR"_s);
}

void UsersTableTest::changeOfAnotherOfficeIsNotLost_data()
{
    QTest::addColumn<QString>("theirs");
    QTest::addColumn<QStringList>("mayNot"); // of right, role, type, password
    QTest::newRow("right") << u"InventoryUndo = -1"_s << QStringList{u"right"_s, u"role"_s};
    QTest::newRow("another right") << u"InventoryReport = -1"_s << QStringList{u"role"_s};
    QTest::newRow("type") << u"Type = 'MANAGER'"_s << QStringList{u"type"_s};
    QTest::newRow("password") << u"Password = 'Q'"_s << QStringList{u"password"_s};
}

void UsersTableTest::changeOfAnotherOfficeIsNotLost()
{
    QFETCH(QString, theirs);
    QFETCH(QStringList, mayNot);
    for (const auto &mine : {u"right"_s, u"role"_s, u"type"_s, u"password"_s}) {
        run(u"DELETE FROM Users WHERE Username = 'ANNA'"_s);
        run(u"INSERT INTO Users (Username, Password, Type, InventoryUse) VALUES ('ANNA', 'P', 'STAFF', -1)"_s);
        const StoreUser seen = user(u"ANNA"_s);
        run(u"UPDATE Users SET %1 WHERE Username = 'ANNA'"_s.arg(theirs));
        const auto problem = mine == u"right"  ? store().setRight(seen, u"InventoryUndo"_s, true)
                             : mine == u"role" ? store().setRole(seen, userRoles().at(0))
                             : mine == u"type" ? store().setType(seen, u"VIEWER"_s)
                                               : store().setPassword(seen, u"R"_s);
        QCOMPARE(problem.has_value(), mayNot.contains(mine));
        if (problem)
            QVERIFY2(problem->contains(u"Somebody else has changed ANNA meanwhile."_s), qPrintable(*problem));
        const QString stays = u"SELECT count(*) FROM Users WHERE Username = 'ANNA' AND "_s + theirs;
        if (mine != u"role" || problem)
            QCOMPARE(read(stays), u"1"_s);
    }
}

HARROWBY_CORE_TEST(app_users_table_test, UsersTableTest)
#include "users_table_test.moc"
