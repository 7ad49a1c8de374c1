// SPDX-License-Identifier: MIT
#include "tests/app/screen.h"
#include "tests/app/store_files.h"
#include "tests/program/test_program.h"

#include <QDir>
#include <QFile>
#include <QSettings>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace harrowby::app::test;

/// The real office beside a real till, with the same store.
class OfficeRunTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void wrongPasswordStaysOutside();
    void newCashierLogsInAtTheOpenTill();
    void replacedStoreEndsTheOffice();
    void tillAndOfficeRescueOneLostStore();
    void storeWithoutAdministratorIsTold();

private:
    [[nodiscard]] QString store() const { return m_home.filePath(u"shop.sqlite"_s); }
    [[nodiscard]] QStringList officeArguments() const { return {u"--office"_s, u"--database"_s, store()}; }
    [[nodiscard]] QStringList deedsAtTheDoor() const;
    void enter(RunningProgram &program, const QString &entry, const QString &text);
    void openOffice(RunningProgram &office);
    void rescueAndClose(RunningProgram &program, bool isTill);

    QTemporaryDir m_home;
    Screen m_screen;
};

void OfficeRunTest::initTestCase()
{
    for (const QString &tool : {u"Xvfb"_s, u"openbox"_s, u"xdotool"_s})
        QVERIFY2(!QStandardPaths::findExecutable(tool).isEmpty(), qPrintable(tool + u" is needed"_s));
    QVERIFY(m_screen.start(u"1280x1024"_s));
    makeStore(store());
}

QStringList OfficeRunTest::deedsAtTheDoor() const
{
    return column(store(),
                  u"SELECT Kind || ' ' || Who FROM HarrowbyActivity WHERE Kind IN ('LoginRefused', 'LoggedIn') "
                  "ORDER BY DoneAt"_s);
}

void OfficeRunTest::enter(RunningProgram &program, const QString &entry, const QString &text)
{
    QVERIFY2(program.press(entry), qPrintable(entry + program.errors()));
    m_screen.type(text);
    QTRY_COMPARE_WITH_TIMEOUT(program.text(entry).toUpper(), text.toUpper(), 30000);
}

void OfficeRunTest::openOffice(RunningProgram &office)
{
    enter(office, u"officePassword"_s, u"secret"_s);
    m_screen.key(u"Return"_s);
    QTRY_VERIFY_WITH_TIMEOUT(office.has(u"addUser"_s), 30000);
}

void OfficeRunTest::rescueAndClose(RunningProgram &program, bool isTill)
{
    QVERIFY2(program.press(u"makeRescueCopy"_s), qPrintable(program.errors()));
    QTRY_VERIFY_WITH_TIMEOUT(program.text(u"rescueOutcome"_s).contains(u"made and checked"_s), 30000);
    QVERIFY(program.press(u"closeLostStore"_s));
    if (isTill) {
        QTRY_COMPARE_WITH_TIMEOUT(program.box(), u"Close Inventory?"_s, 30000);
        QVERIFY(program.press(u"Yes"_s));
    }
    QCOMPARE(program.waitForEnd(), 0);
}

void OfficeRunTest::wrongPasswordStaysOutside()
{
    RunningProgram office(m_screen, m_home.path());
    QVERIFY(office.start(officeArguments()));
    enter(office, u"officePassword"_s, u"wrong"_s);
    m_screen.key(u"Return"_s);
    QTRY_VERIFY_WITH_TIMEOUT(office.text(u"problem"_s).contains(u"not the password"_s), 30000);
    QVERIFY(office.press(u"Cancel"_s));
    const int code = office.waitForEnd();
    QVERIFY2(code == 0, qPrintable(office.errors()));
    QCOMPARE(deedsAtTheDoor(), QStringList{u"LoginRefused ADMINISTRATOR"_s});
}

void OfficeRunTest::newCashierLogsInAtTheOpenTill()
{
    RunningProgram till(m_screen, m_home.path());
    QVERIFY(till.start({u"--database"_s, store()}));
    QTRY_VERIFY2_WITH_TIMEOUT(till.has(u"Text3"_s), qPrintable(till.errors()), 60000);
    {
        RunningProgram office(m_screen, m_home.path());
        QVERIFY(office.start(officeArguments()));
        openOffice(office);
        QVERIFY(office.press(u"addUser"_s));
        enter(office, u"userName"_s, u"clara"_s);
        enter(office, u"userPassword"_s, u"key1"_s);
        enter(office, u"userPasswordAgain"_s, u"key1"_s);
        m_screen.key(u"Return"_s);
        QTRY_COMPARE_WITH_TIMEOUT(office.text(u"chosenUser"_s), u"CLARA"_s, 30000);

        QVERIFY(office.awaitKeysOf(u"addUser"_s));
        m_screen.key(u"alt+r"_s);
        enter(office, u"receiptTitle"_s, u"corner shop"_s);
        QVERIFY(office.press(u"saveReceipt"_s));
        QTRY_VERIFY_WITH_TIMEOUT(office.text(u"receiptOutcome"_s).startsWith(u"Saved."_s), 30000);

        m_screen.key(u"alt+k"_s);
        QVERIFY(office.press(u"startBackup"_s));
        QTRY_VERIFY_WITH_TIMEOUT(office.text(u"backupOutcome"_s).contains(u"made and checked"_s), 30000);
        QVERIFY(office.press(u"closeOffice"_s));
        QCOMPARE(office.waitForEnd(), 0);
    }
    QCOMPARE(deedsAtTheDoor().constLast(), u"LoggedIn ADMINISTRATOR"_s);
    const QStringList copies = QDir(m_home.path()).entryList({u"harrowby-*.db"_s}) +
                               QDir(m_home.filePath(u"Documents"_s)).entryList({u"harrowby-*.db"_s});
    QCOMPARE(copies.size(), 1);
    QCOMPARE(QSettings(m_home.filePath(u"config/Harrowby/Harrowby.ini"_s), QSettings::IniFormat)
                 .value(u"option/Title"_s)
                 .toString(),
             u"corner shop"_s);

    enter(till, u"Text3"_s, u"clara"_s);
    enter(till, u"Text4"_s, u"KEY1"_s);
    m_screen.key(u"Return"_s);
    QTRY_COMPARE_WITH_TIMEOUT(till.text(u"StatusBar1_1"_s), u"User: CLARA"_s, 30000);
    QVERIFY(till.press(u"Close Inventory"_s));
    QVERIFY(till.press(u"Yes"_s));
    QCOMPARE(till.waitForEnd(), 0); // a killed one would leave its lock file beside the store
}

void OfficeRunTest::replacedStoreEndsTheOffice()
{
    const QString other = m_home.filePath(u"other.sqlite"_s);
    makeStore(other);
    const QString moved = m_home.filePath(u"moved.sqlite"_s);
    RunningProgram office(m_screen, m_home.path());
    QVERIFY(office.start(officeArguments()));
    openOffice(office);
    QVERIFY(office.press(u"addUser"_s));
    enter(office, u"userName"_s, u"dora"_s);
    // Another store takes the place of this one while a box is open.
    QVERIFY(QFile::rename(store(), moved) && QFile::rename(other, store()));
    QTRY_VERIFY_WITH_TIMEOUT(office.text(u"lostStoreWhat"_s).contains(u"Another file was put"_s), 30000);
    QVERIFY(office.text(u"lostStoreAdvice"_s).contains(moved));
    QVERIFY(office.press(u"Close the Office"_s));
    QCOMPARE(office.waitForEnd(), 0);
    QCOMPARE(QDir(m_home.path()).entryList({u"shop.sqlite*"_s}), QStringList{u"shop.sqlite"_s});
    QCOMPARE(column(store(), u"SELECT Username FROM Users"_s), QStringList{u"ADMINISTRATOR"_s});
    QCOMPARE(column(moved, u"SELECT Username FROM Users"_s), (QStringList{u"ADMINISTRATOR"_s, u"CLARA"_s}));
}

/// Each says it in a box of its own, and makes a copy of its own.
void OfficeRunTest::tillAndOfficeRescueOneLostStore()
{
    RunningProgram till(m_screen, m_home.path());
    QVERIFY(till.start({u"--database"_s, store()}));
    QTRY_VERIFY2_WITH_TIMEOUT(till.place(u"Text3"_s).x() >= 0, qPrintable(till.errors()), 60000);
    RunningProgram office(m_screen, m_home.path());
    QVERIFY(office.start(officeArguments()));
    openOffice(office);
    QVERIFY(QFile::remove(store()));
    for (RunningProgram *program : {&till, &office})
        QTRY_VERIFY_WITH_TIMEOUT(program->text(u"lostStoreWhat"_s).contains(u"was removed"_s), 30000);
    // Each box asks for the front, and the window manager grants it one after the other; then a person chooses.
    for (RunningProgram *program : {&office, &till})
        program->bringToFront(u"Nothing Is Being Saved"_s);
    rescueAndClose(till, true);
    rescueAndClose(office, false);

    const QDir folder(m_home.path());
    const QStringList copies = folder.entryList({u"shop-rescue-*.db"_s});
    QCOMPARE(copies.size(), 2);
    for (const QString &copy : copies)
        QCOMPARE(column(folder.filePath(copy), u"PRAGMA integrity_check"_s), QStringList{u"ok"_s});
    QCOMPARE(folder.entryList({u"shop.sqlite*"_s}), QStringList());
    makeStore(store());
}

void OfficeRunTest::storeWithoutAdministratorIsTold()
{
    runAll(store(), {u"UPDATE Users SET Type = 'VIEWER'"_s});
    RunningProgram office(m_screen, m_home.path());
    QVERIFY(office.start(officeArguments()));
    QTRY_VERIFY_WITH_TIMEOUT(office.box().contains(u"no user ADMINISTRATOR"_s), 60000);
    QVERIFY(office.press(u"OK"_s));
    QCOMPARE(office.waitForEnd(), 4);
}

HARROWBY_CORE_TEST(app_office_run_test, OfficeRunTest)
#include "office_run_test.moc"
