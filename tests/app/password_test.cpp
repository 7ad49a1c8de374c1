// SPDX-License-Identifier: MIT
#include "app/shop/password_rules.h"
#include "app/shop/store_create.h"
#include "engine/database.h"
#include "store/statement_texts.h"
#include "tests/app/store_files.h"
#include "tests/program/test_program.h"

#include "basic/text.h"

#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace harrowby::app;
using namespace harrowby::app::test;

class PasswordTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void takenPasswordIsFoundByTheLogin_data();
    void takenPasswordIsFoundByTheLogin();
    void refusedPassword_data();
    void refusedPassword();
};

void PasswordTest::takenPasswordIsFoundByTheLogin_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("typedAtLogin");
    QTest::newRow("plain") << u"secret"_s << u"SECRET"_s;
    QTest::newRow("other case") << u"SeCrEt"_s << u"sEcReT"_s;
    QTest::newRow("blanks around") << u"  two words "_s << u"Two Words"_s;
    QTest::newRow("digits") << u"0012"_s << u"0012"_s;
    QTest::newRow("double quote and percent") << u"a\"b%_*\\"_s << u"A\"B%_*\\"_s;
    QTest::newRow("umlaut") << u"müller"_s << u"MÜLLER"_s;
    QTest::newRow("sharp s") << u"straße"_s << u"STRASSE"_s;
    QTest::newRow("dotless i") << u"ışık"_s << u"ışık"_s;
    QTest::newRow("ligature") << u"ﬁsh"_s << u"FISH"_s;
    QTest::newRow("greek") << u"σίγμας"_s << u"ΣΊΓΜΑΣ"_s;
    QTest::newRow("emoji") << u"😀pay"_s << u"😀PAY"_s;
    QTest::newRow("arabic") << u"متجر"_s << u"متجر"_s;
}

void PasswordTest::takenPasswordIsFoundByTheLogin()
{
    QFETCH(QString, typed);
    QFETCH(QString, typedAtLogin);
    QCOMPARE(reasonOf(checkPassword(typed)), QString());

    QTemporaryDir folder;
    const QString path = folder.filePath(u"shop.sqlite"_s);
    const auto fill = [&](sqlite3 *database) { return addAdministrator(database, typed); };
    QVERIFY(!createStore(path, false, fill));
    const auto login = harrowby::statements::login(u"ADMINISTRATOR"_s, harrowby::trimmedUpper(typedAtLogin));
    QVERIFY(!login.isRefused());
    QCOMPARE(column(path, login.sql()), QStringList{u"ADMINISTRATOR"_s});
    const auto wrong = harrowby::statements::login(u"ADMINISTRATOR"_s, harrowby::trimmedUpper(typed + u'x'));
    QCOMPARE(column(path, wrong.sql()), QStringList());
}

void PasswordTest::refusedPassword_data()
{
    QTest::addColumn<QString>("typed");
    QTest::newRow("empty") << QString();
    QTest::newRow("blank") << u"   "_s;
    QTest::newRow("no-break blank") << u"\u00a0"_s;
    QTest::newRow("single quote") << u"o'clock"_s;
    QTest::newRow("NUL") << u"a\0b"_s;
    QTest::newRow("line break") << u"a\nb"_s;
    QTest::newRow("line separator") << u"a\u2028b"_s;
    QTest::newRow("half a surrogate pair") << u"a"_s + QChar(0xd83d);
}

void PasswordTest::refusedPassword()
{
    QFETCH(QString, typed);
    QVERIFY(!reasonOf(checkPassword(typed)).isEmpty());
}

HARROWBY_CORE_TEST(app_password_test, PasswordTest)
#include "password_test.moc"
