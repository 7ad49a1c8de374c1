// SPDX-License-Identifier: MIT
#include "tests/app/screen.h"
#include "tests/app/store_files.h"
#include "tests/program/test_program.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QScopeGuard>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <sqlite3.h>
#include <sys/stat.h>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::app::test;

/// From a new file to a committed sale: the real program on a real X server, operated by mouse and keyboard.
class SaleTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cancelledFirstStartLeavesNothing();
    void newStoreIsCreatedAndClosed();
    void itemIsSold();
    void rescuedStoreSellsOn();
    void waitForALockIsSaid();
    void waitBeforeTheWindowIsSaid();
    void failedWriteIsShownAtOnce();
    void logThatCannotBeWrittenIsToldAtTheStart();
    void whatIsLostOutsideTheDatabaseIsShown();
    void demoShopTellsHowToLogIn();

private:
    [[nodiscard]] QString store() const { return m_home.filePath(u"data/Harrowby/store.sqlite"_s); }
    void logIn(RunningProgram &program, const QString &name, const QString &password);
    void searchFinds(RunningProgram &program, const QString &text);
    void closeWindow(RunningProgram &program);
    [[nodiscard]] QString receiptText() const;

    QTemporaryDir m_home;
    Screen m_screen;
};

void SaleTest::initTestCase()
{
    for (const QString &tool : {u"Xvfb"_s, u"openbox"_s, u"xdotool"_s, u"pdftotext"_s})
        QVERIFY2(!QStandardPaths::findExecutable(tool).isEmpty(), qPrintable(tool + u" is needed"_s));
    QVERIFY(m_screen.start(u"1280x1024"_s));
}

void SaleTest::logIn(RunningProgram &program, const QString &name, const QString &password)
{
    QVERIFY2(program.press(u"Text3"_s), qPrintable(program.errors()));
    m_screen.type(name);
    QVERIFY(program.press(u"Text4"_s));
    m_screen.type(password);
    m_screen.key(u"Return"_s);
    QTRY_COMPARE_WITH_TIMEOUT(program.text(u"StatusBar1_1"_s), u"User: "_s + name.toUpper(), 30000);
}

void SaleTest::searchFinds(RunningProgram &program, const QString &text)
{
    QVERIFY(program.press(u"Command8"_s));
    QTRY_VERIFY_WITH_TIMEOUT(program.has(u"OK"_s), 30000);
    m_screen.type(text);
    QVERIFY(program.press(u"OK"_s));
    QTRY_COMPARE_WITH_TIMEOUT(program.focus(), u"LV2"_s, 30000); // else a box says that there is nothing
}

void SaleTest::closeWindow(RunningProgram &program)
{
    QVERIFY(program.press(u"Command10"_s));
    QTRY_COMPARE_WITH_TIMEOUT(program.box(), u"Close Inventory?"_s, 30000);
    QVERIFY(program.press(u"Yes"_s));
    const int code = program.waitForEnd();
    QVERIFY2(code == 0, qPrintable(u"%1\n%2"_s.arg(code).arg(program.errors())));
}

QString SaleTest::receiptText() const
{
    const QDir folder(m_home.filePath(u"Documents/Harrowby Receipts"_s));
    const QStringList receipts = folder.entryList({u"*.pdf"_s}, QDir::Files);
    if (receipts.size() != 1)
        return u"%1 receipts"_s.arg(receipts.size());
    QProcess reader;
    reader.start(u"pdftotext"_s, {u"-layout"_s, folder.filePath(receipts.constFirst()), u"-"_s});
    return reader.waitForFinished() ? QString::fromUtf8(reader.readAllStandardOutput()) : QString();
}

void SaleTest::cancelledFirstStartLeavesNothing()
{
    RunningProgram program(m_screen, m_home.path());
    QVERIFY(program.start({}));
    QVERIFY2(program.press(u"Cancel"_s), qPrintable(program.errors()));
    const int code = program.waitForEnd();
    QVERIFY2(code == 5, qPrintable(program.errors()));
    QVERIFY(!QDir(m_home.filePath(u"data/Harrowby"_s)).exists(u"store.sqlite"_s));
    QCOMPARE(QDir(m_home.filePath(u"data/Harrowby"_s)).entryList({u".harrowby*"_s}, QDir::AllEntries | QDir::Hidden),
             QStringList());
}

void SaleTest::newStoreIsCreatedAndClosed()
{
    RunningProgram program(m_screen, m_home.path());
    QVERIFY(program.start({}));
    QVERIFY2(program.press(u"password"_s), qPrintable(program.errors()));
    m_screen.type(u"pass1"_s);
    QVERIFY(program.press(u"passwordAgain"_s));
    m_screen.type(u"pass1"_s);
    QVERIFY(program.press(u"Create Store"_s));
    logIn(program, u"administrator"_s, u"PASS1"_s);
    closeWindow(program);
    QVERIFY(!QFile::exists(store() + u"-wal"_s));
    QCOMPARE(column(store(), u"PRAGMA integrity_check"_s), QStringList{u"ok"_s});
    QCOMPARE(column(store(), u"SELECT count(*) FROM StoreSettings"_s), QStringList{u"1"_s});
}

void SaleTest::itemIsSold()
{
    runAll(store(), {u"INSERT INTO StockList (StockID, StockName, StockCategory, StockCost, StockReorderLevel, "
                     "StockAvailable, StockUse) VALUES ('TEA-0001', 'TEA', 'DRINKS', '2.50', 5, 20, 'Enabled')"_s});
    RunningProgram program(m_screen, m_home.path());
    QVERIFY(program.start({u"--drawer"_s, u"Front desk"_s}));
    logIn(program, u"administrator"_s, u"pass1"_s);
    QVERIFY(program.press(u"Command1_0"_s));
    QTRY_COMPARE_WITH_TIMEOUT(program.text(u"Label5"_s), u"Total: 2.50"_s, 30000);
    QVERIFY(program.press(u"Command1_0"_s));
    QTRY_COMPARE_WITH_TIMEOUT(program.text(u"Label5"_s), u"Total: 5.00"_s, 30000);

    QVERIFY(program.press(u"Command14"_s));
    QTRY_VERIFY_WITH_TIMEOUT(program.box().contains(u"1. 2 x TEA-0001  |  TEA = 5.00"_s), 30000);
    QVERIFY(program.press(u"Yes"_s));
    QTRY_VERIFY_WITH_TIMEOUT(program.box().startsWith(u"Items have been purchased!"_s), 30000);
    QVERIFY(program.press(u"OK"_s));
    QTRY_COMPARE_WITH_TIMEOUT(program.text(u"Label5"_s), u"Total: 0.00"_s, 30000);
    QTRY_COMPARE_WITH_TIMEOUT(program.text(u"Label6_4"_s).trimmed(), u"5.00"_s, 30000);
    closeWindow(program);

    QCOMPARE(column(store(), u"SELECT StockAvailable FROM StockList"_s), QStringList{u"18"_s});
    QCOMPARE(column(store(),
                    u"SELECT PurchasedItems || '/' || PurchasedItemsTotal || '/' || PurchasedItemsCost || '/' || "
                    "Users FROM PurchaseCart"_s),
             QStringList{u"2 x TEA-0001  |  TEA = 5.00/1/5/ADMINISTRATOR"_s});
    QCOMPARE(column(store(), u"SELECT State || '/' || Way || '/' || Amount || '/' || Drawer || '/' || "
                             "(PurchaseID = (SELECT PurchaseID FROM PurchaseCart)) FROM HarrowbyPayment"_s),
             QStringList{u"PAID/Cash/500/Front desk/1"_s});
    QCOMPARE(column(store(), u"SELECT count(*) FROM HarrowbyRun WHERE EndedAt = ''"_s), QStringList{u"0"_s});
    QVERIFY(!QFile::exists(store() + u"-runs"_s));
    // As if that till had been killed before it could write the payment; the next starts see to it.
    runAll(store(), {u"DELETE FROM HarrowbyPayment"_s,
                     u"UPDATE HarrowbyRun SET EndedAt = '' WHERE Run = (SELECT max(Run) FROM HarrowbyRun)"_s});
    const QString receipt = receiptText();
    QVERIFY2(receipt.contains(u"Payment Receipt"_s), qPrintable(receipt));
    QVERIFY2(receipt.contains(column(store(), u"SELECT PurchaseID FROM PurchaseCart"_s).constFirst()),
             qPrintable(receipt));
}

void SaleTest::failedWriteIsShownAtOnce()
{
    RunningProgram program(m_screen, m_home.path());
    QVERIFY(program.start({}));
    logIn(program, u"administrator"_s, u"pass1"_s);
    QVERIFY(!program.has(u"failureNotice"_s));
    runAll(store(), {u"ALTER TABLE SysUsage RENAME TO Lost"_s});
    QVERIFY(program.press(u"Command27"_s));
    QVERIFY(program.press(u"Yes"_s));
    QTRY_COMPARE_WITH_TIMEOUT(program.text(u"failureWork"_s), u"The activity was not recorded."_s, 30000);
    QVERIFY(program.text(u"failureReason"_s).contains(u"no such table: SysUsage"_s));

    // The notice takes no focus: keys still go to the till.
    QVERIFY(program.press(u"Text3"_s));
    m_screen.type(u"anna"_s);
    QTRY_COMPARE_WITH_TIMEOUT(program.text(u"Text3"_s), u"ANNA"_s, 30000);
    QVERIFY(program.press(u"failureDismiss"_s));
    QTRY_VERIFY_WITH_TIMEOUT(!program.has(u"failureNotice"_s), 30000);
    m_screen.type(u"b"_s);
    QTRY_COMPARE_WITH_TIMEOUT(program.text(u"Text3"_s), u"ANNAB"_s, 30000);
    closeWindow(program);

    QFile log(m_home.filePath(u"data/Harrowby/harrowby.log"_s));
    QVERIFY(log.open(QIODevice::ReadOnly));
    QVERIFY(log.readAll().contains("no such table: SysUsage"));
}

void SaleTest::logThatCannotBeWrittenIsToldAtTheStart()
{
    const QTemporaryDir home;
    QVERIFY(QDir(home.path()).mkpath(u"data/Harrowby/harrowby.log"_s));
    const QString shop = home.filePath(u"data/Harrowby/shop.sqlite"_s);
    makeStore(shop);
    // A print service without printers: there is nothing to warn of.
    QVERIFY(QFile::link(u"/bin/true"_s, home.filePath(u"lpstat"_s)));
    const QByteArray path = qgetenv("PATH");
    const auto end = qScopeGuard([&] { qputenv("PATH", path); });
    qputenv("PATH", QFile::encodeName(home.path()) + ':' + path);
    RunningProgram program(m_screen, home.path());
    QVERIFY(program.start({u"--database"_s, shop}));
    QTRY_COMPARE_WITH_TIMEOUT(program.text(u"failureWork"_s),
                              u"The log file cannot be written; warnings go to the terminal."_s, 30000);
    closeWindow(program);
    QVERIFY2(!program.errors().contains(u"harrowby."_s), qPrintable(program.errors()));
}

void SaleTest::whatIsLostOutsideTheDatabaseIsShown()
{
    const QTemporaryDir home; // in which nothing but the store can be written
    const auto block = [&](const QString &name) { return QFile(home.filePath(name)).open(QIODevice::WriteOnly); };
    QVERIFY(QDir(home.path()).mkpath(u"data/Harrowby/harrowby.log"_s));
    QVERIFY(QDir(home.path()).mkpath(u"config/Harrowby"_s));
    QVERIFY(block(u"Documents"_s) && block(u"data/Harrowby/Harrowby Receipts"_s));
    const QByteArray settings = QFile::encodeName(home.filePath(u"config/Harrowby/Harrowby.ini"_s));
    QCOMPARE(::mkfifo(settings.constData(), 0600), 0);
    const QString shop = home.filePath(u"data/Harrowby/shop.sqlite"_s);
    makeStore(shop);

    RunningProgram program(m_screen, home.path());
    QVERIFY(program.start({u"--database"_s, shop}));
    QTRY_VERIFY2_WITH_TIMEOUT(program.has(u"failureNotice"_s), qPrintable(program.errors()), 60000);
    QTRY_VERIFY_WITH_TIMEOUT(program.text(u"failureWork"_s).contains(u"saved settings cannot be read"_s), 30000);
    QVERIFY(program.text(u"failureWork"_s).contains(u"log file cannot be written"_s));
    logIn(program, u"administrator"_s, u"secret"_s);
    QVERIFY(program.press(u"failureDismiss"_s));
    QVERIFY(program.press(u"Command1_0"_s));
    QTRY_VERIFY_WITH_TIMEOUT(program.text(u"Label5"_s) != u"Total: 0.00"_s, 30000);
    QVERIFY(program.press(u"Command14"_s));
    QTRY_VERIFY_WITH_TIMEOUT(program.box().contains(u"Purchased Cart?"_s), 30000);
    QVERIFY(program.press(u"Yes"_s));
    QTRY_VERIFY_WITH_TIMEOUT(program.box().startsWith(u"Items have been purchased!"_s), 30000);
    QVERIFY(program.press(u"OK"_s));
    QTRY_COMPARE_WITH_TIMEOUT(program.text(u"failureWork"_s), u"A receipt was neither printed nor kept."_s, 30000);

    // The till's own texts are unchanged; the reason stands in the notice beside them.
    QVERIFY(program.press(u"failureDismiss"_s));
    QTRY_VERIFY_WITH_TIMEOUT(!program.has(u"failureNotice"_s), 30000);
    QVERIFY(program.press(u"TabStrip1"_s));
    QTRY_COMPARE_WITH_TIMEOUT(program.focus(), u"TabStrip1"_s, 30000);
    m_screen.key(u"End"_s);
    QVERIFY(program.press(u"Command18"_s));
    QTRY_COMPARE_WITH_TIMEOUT(program.text(u"StatusBar1_2"_s), u"Setting Saved!"_s, 30000);
    QTRY_VERIFY_WITH_TIMEOUT(program.text(u"failureWork"_s).startsWith(u"The settings of this computer were not"_s),
                             30000);
    const QString errors = program.errors();
    QVERIFY2(errors.contains(u"harrowby.print: Receipt"_s), qPrintable(errors));
    closeWindow(program);
}

void SaleTest::waitForALockIsSaid()
{
    constexpr QRgb accent = 0x006256;
    constexpr QRect place(460, 40, 360, 70); // within the sign, at the top of a window that fills the screen
    constexpr int most = 360 * 70 / 2;
    SqliteDatabase other;
    QVERIFY(!into(other, openDatabase(store(), OpenMode::Write)));
    sqlite3_busy_timeout(other.get(), 5000); // the till may be at the end of its own writing
    QVERIFY(!runSql(other.get(), u"BEGIN IMMEDIATE"_s));
    RunningProgram program(m_screen, m_home.path());
    QVERIFY(program.start({u"--look"_s, u"light"_s}));
    QTRY_VERIFY_WITH_TIMEOUT(program.text(u"openingText"_s).contains(u"keeps the store \"store.sqlite\" locked"_s),
                             30000);
    QVERIFY(!runSql(other.get(), u"ROLLBACK"_s));
    logIn(program, u"administrator"_s, u"pass1"_s);
    QVERIFY(!program.has(u"openingText"_s));

    const QPoint card = program.awaitPlace(u"Command1_0"_s);
    const auto seen = [&] { return m_screen.count(accent, place); };
    QTRY_VERIFY_WITH_TIMEOUT(seen() >= 0 && seen() < most / 4, 30000);
    QVERIFY(!runSql(other.get(), u"BEGIN IMMEDIATE"_s));
    m_screen.press(card);
    QTRY_VERIFY_WITH_TIMEOUT(m_screen.count(accent, place) > most, 9000);
    QVERIFY(!runSql(other.get(), u"ROLLBACK"_s));
    QTRY_COMPARE_WITH_TIMEOUT(program.text(u"Label5"_s), u"Total: 2.50"_s, 30000);
    QTRY_VERIFY_WITH_TIMEOUT(m_screen.count(accent, place) < most / 4, 30000);
    closeWindow(program);
}

void SaleTest::waitBeforeTheWindowIsSaid()
{
    constexpr QRgb accent = 0x006256;
    constexpr QRect place(460, 477, 360, 70); // within the sign, in the middle of the screen
    constexpr int most = 360 * 70 / 2;
    runAll(store(), {u"DELETE FROM StoreSettings"_s}); // loading adds the row
    SqliteDatabase other;
    QVERIFY(!into(other, openDatabase(store(), OpenMode::Write)));
    RunningProgram program(m_screen, m_home.path());
    QVERIFY2(program.startUpTo(u"Sales Inventory"_s, {u"--look"_s, u"light"_s}), qPrintable(program.errors()));
    QVERIFY(!runSql(other.get(), u"BEGIN IMMEDIATE"_s));
    QCOMPARE(m_screen.count(accent, place), 0);
    program.goOn();
    QTRY_VERIFY_WITH_TIMEOUT(m_screen.count(accent, place) > most, 9000);
    QVERIFY(!runSql(other.get(), u"ROLLBACK"_s));
    logIn(program, u"administrator"_s, u"pass1"_s);
    QTRY_VERIFY_WITH_TIMEOUT(m_screen.count(accent, place) < most / 4, 30000);
    closeWindow(program);
    QCOMPARE(column(store(), u"SELECT count(*) FROM StoreSettings"_s), QStringList{u"1"_s});
}

void SaleTest::rescuedStoreSellsOn()
{
    const QStringList before = column(store(), u"SELECT SystemUsage FROM SysUsage ORDER BY rowid"_s);
    {
        RunningProgram program(m_screen, m_home.path());
        QVERIFY(program.start({}));
        logIn(program, u"administrator"_s, u"pass1"_s);
        QVERIFY(QFile::remove(store()));
        QTRY_VERIFY_WITH_TIMEOUT(program.text(u"lostStoreWhat"_s).contains(u"was removed"_s), 30000);
        QVERIFY(program.press(u"Make a Rescue Copy"_s));
        QTRY_VERIFY_WITH_TIMEOUT(program.text(u"rescueOutcome"_s).contains(u"made and checked"_s), 30000);
        // The till asks before closing as usual, and "No" leads back to the box.
        QVERIFY(program.press(u"Close the Till"_s));
        QTRY_COMPARE_WITH_TIMEOUT(program.box(), u"Close Inventory?"_s, 30000);
        QVERIFY(program.press(u"No"_s));
        QVERIFY(program.press(u"Close the Till"_s));
        QTRY_COMPARE_WITH_TIMEOUT(program.box(), u"Close Inventory?"_s, 30000);
        QVERIFY(program.press(u"Yes"_s));
        const int code = program.waitForEnd();
        QVERIFY2(code == 0, qPrintable(u"%1\n%2"_s.arg(code).arg(program.errors())));
    }
    const QDir folder = QFileInfo(store()).absoluteDir();
    const QStringList copies = folder.entryList({u"store-rescue-*.db"_s});
    QCOMPARE(copies.size(), 1);
    QCOMPARE(folder.entryList({u"store.sqlite*"_s}), QStringList());
    QVERIFY(QFile::rename(folder.filePath(copies.constFirst()), store()));
    RunningProgram program(m_screen, m_home.path());
    QVERIFY(program.start({}));
    logIn(program, u"administrator"_s, u"pass1"_s);
    closeWindow(program);
    const auto login = u"ADMINISTRATOR successfully logged in!"_s;
    const QStringList after = before + QStringList{login, login};
    QCOMPARE(column(store(), u"SELECT SystemUsage FROM SysUsage ORDER BY rowid"_s), after);
    QCOMPARE(column(store(), u"SELECT State || '/' || Way || '/' || Amount || '/' || Drawer || '/' || Origin "
                             "FROM HarrowbyPayment"_s),
             QStringList{u"PAID/Cash/500/Front desk/2"_s});
}

void SaleTest::demoShopTellsHowToLogIn()
{
    {
        RunningProgram program(m_screen, m_home.path());
        QVERIFY(program.start({u"--demo"_s}));
        QTRY_VERIFY_WITH_TIMEOUT(program.box().contains(u"MANAGER"_s), 30000);
        QVERIFY(program.press(u"OK"_s));
        logIn(program, u"cashier"_s, u"cashier"_s);
        closeWindow(program);
    }
    // The second start opens the same shop without a first-user dialog.
    RunningProgram program(m_screen, m_home.path());
    QVERIFY(program.start({u"--demo"_s}));
    logIn(program, u"manager"_s, u"manager"_s);
    searchFinds(program, u"ole miLK"_s);
    closeWindow(program);
    QCOMPARE(
        column(m_home.filePath(u"data/Harrowby/demo.sqlite"_s), u"SELECT SystemUsage FROM SysUsage ORDER BY rowid"_s),
        (QStringList{u"CASHIER successfully logged in!"_s, u"MANAGER successfully logged in!"_s}));
}

HARROWBY_CORE_TEST(app_sale_test, SaleTest)
#include "sale_test.moc"
