// SPDX-License-Identifier: MIT
#include "tests/doubles/database.h"
#include "tests/support/counter.h"

#include "tests/program/test_program.h"
#include "tests/store/faulty_vfs.h"

#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>

#include <sqlite3.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::test;

namespace {

constexpr int lockWaitMs = 20;
constexpr auto question = "Item List:\r\n\r\n1. 1 x A1  |  TEA = 2.50\r\n\r\n\r\n\r\nPurchased Cart?";

/// Drops the rights of root, for whom no file is read-only.
class PlainRights
{
public:
    PlainRights() : m_wasRoot(::geteuid() == 0)
    {
        if (m_wasRoot && ::seteuid(nobody) != 0)
            QTest::qFail("the rights cannot be dropped", __FILE__, __LINE__);
    }
    ~PlainRights()
    {
        if (m_wasRoot && ::seteuid(0) != 0)
            QTest::qFail("the rights cannot be had back", __FILE__, __LINE__);
    }
    PlainRights(const PlainRights &) = delete;
    PlainRights &operator=(const PlainRights &) = delete;

private:
    static constexpr uid_t nobody = 65534;
    bool m_wasRoot;
};

void openShop(Counter &counter)
{
    sqlite3_busy_timeout(counter.file.handle(), lockWaitMs);
    counter.file.addItem(u"A1"_s, u"TEA"_s, 2.5, 100);
    counter.open();
    counter.logIn();
}

/// Sells one unit; nothing but the question may come up.
void sellOne(Counter &counter)
{
    counter.click("Command1_0");
    counter.boxes.expect(QString::fromLatin1(question), box::Ask, Answer::Yes);
    counter.click("Command14");
}

/// What was written by the sales so far: units in stock, purchases.
QString written(const Counter &counter)
{
    return counter.file.cell(u"SELECT StockAvailable FROM StockList"_s) + u' ' +
           counter.file.cell(u"SELECT count(*) FROM PurchaseCart"_s);
}

/// Runs every handler, and answers its boxes.
void doEverything(Counter &counter)
{
    for (const char *button : {"CmdNext", "CmdPrev", "Command24", "Command18"})
        counter.click(button);
    counter.setText("Combo1", u"DRINKS"_s);
    counter.setText("Combo1", u"(ALL CATEGORY)"_s);
    for (auto tab = WorkArea::all.rbegin(); tab != WorkArea::all.rend(); ++tab)
        counter.chooseTab("TabStrip1", *tab);
    for (auto tab = SidePanel::all.rbegin(); tab != SidePanel::all.rend(); ++tab)
        counter.chooseTab("TabStrip2", *tab);
    counter.boxes.expect(u"Clear Activity Log!"_s, box::AskDefaultNo, Answer::Yes);
    counter.click("Command11");
    counter.boxes.expect(u"Log out User[ADMINISTRATOR]?"_s, box::AskDefaultNo, Answer::Yes);
    counter.click("Command27");
    QCOMPARE(counter.text("StatusBar1_1"), u"User: None"_s);
}

/// Fills the file up to its last page.
void fillUp(const Counter &counter)
{
    counter.file.sql(u"PRAGMA max_page_count = %1"_s.arg(counter.file.cell(u"PRAGMA page_count"_s)));
    Database full(counter.file.path());
    full.run(u"PRAGMA max_page_count = %1"_s.arg(counter.file.cell(u"PRAGMA page_count"_s)));
    for (const char *table : {"PurchaseCart (PurchasedItems)", "SysUsage (SystemUsage)"}) {
        for (int size = 3000; size > 0; size /= 2) {
            while (full.run(u"INSERT INTO %1 VALUES (zeroblob(%2))"_s.arg(QString::fromLatin1(table)).arg(size))) {
            }
        }
    }
}

} // namespace

/// A file that is locked, full or read-only while the till is open: the till shows no further box, and sells again once
/// the file can be written.
class BadFileTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void lockedWhileOpen();
    void lockedWhileLoading();
    void lockedForWritingOnly();
    void fullFile();
    void fullDisk_data();
    void fullDisk();
    void queriesOnly();
    void openedForReadingOnly();
    void readOnlyWhileOpen();
};

void BadFileTest::lockedWhileOpen()
{
    Counter counter;
    openShop(counter);
    counter.click("Command1_0");
    Database other(counter.file.path());
    QVERIFY(other.run(u"BEGIN EXCLUSIVE"_s));
    const qsizetype before = counter.connection->statements.size();
    QElapsedTimer clock;
    clock.start();
    counter.click("Command1_0"); // the stock cannot be looked up: nothing happens
    counter.boxes.expect(QString::fromLatin1(question), box::Ask, Answer::Yes);
    counter.click("Command14");
    doEverything(counter);
    const qsizetype statements = counter.connection->statements.size() - before;
    QVERIFY(statements > 10);
    QVERIFY(clock.elapsed() < 20000 + statements * lockWaitMs * 4); // bounds a hang: each statement waits once
    QVERIFY(other.run(u"ROLLBACK"_s));
    QCOMPARE(written(counter), u"100 0"_s);
    counter.logIn();
    sellOne(counter);
    QCOMPARE(written(counter), u"99 1"_s);
    counter.close();
}

void BadFileTest::lockedWhileLoading()
{
    Counter counter;
    sqlite3_busy_timeout(counter.file.handle(), lockWaitMs);
    counter.file.addItem(u"A1"_s, u"TEA"_s, 2.5, 100);
    Database other(counter.file.path());
    QVERIFY(other.run(u"BEGIN EXCLUSIVE"_s));
    counter.open();
    QCOMPARE(counter.text("Command1_0"), u"(empty)"_s);
    counter.boxes.expect(u"Username or Password Incorrect!"_s, box::Exclamation);
    counter.logIn();
    QVERIFY(other.run(u"ROLLBACK"_s));
    QCOMPARE(counter.file.cell(u"SELECT count(*) FROM StoreSettings"_s), u"1"_s); // no second row of defaults
    counter.logIn();
    sellOne(counter);
    QCOMPARE(written(counter), u"99 1"_s);
}

void BadFileTest::lockedForWritingOnly()
{
    Counter counter;
    counter.file.sql(u"PRAGMA journal_mode = WAL"_s);
    openShop(counter);
    Database other(counter.file.path());
    QVERIFY(other.run(u"BEGIN IMMEDIATE"_s));
    sellOne(counter);
    QVERIFY(counter.cart().isEmpty());
    QCOMPARE(written(counter), u"100 0"_s);
    doEverything(counter);
    QVERIFY(other.run(u"COMMIT"_s));
    counter.logIn();
    sellOne(counter);
    QCOMPARE(written(counter), u"99 1"_s);
}

void BadFileTest::fullFile()
{
    Counter counter;
    openShop(counter);
    fillUp(counter);
    const QString rows = counter.file.cell(u"SELECT count(*) FROM PurchaseCart"_s);
    sellOne(counter);
    // Lowering the stock needs no new page; the purchase's row does.
    QCOMPARE(written(counter), u"99 "_s + rows);
    doEverything(counter);
    counter.logIn();
    counter.file.sql(u"PRAGMA max_page_count = 100000"_s);
    sellOne(counter);
    QCOMPARE(written(counter), u"98 "_s + QString::number(rows.toInt() + 1));
    QCOMPARE(counter.file.cell(u"PRAGMA integrity_check"_s), u"ok"_s);
}

void BadFileTest::fullDisk_data()
{
    QTest::addColumn<int>("operation");
    for (const int operation : {1, 2, 3, 5, 8, 13, 21, 34, 55})
        QTest::addRow("from operation %d on", operation) << operation;
}

void BadFileTest::fullDisk()
{
    QFETCH(int, operation);
    sqlite3_vfs_register(sqlite3_vfs_find(FaultyVfs::name()), 1);
    Counter counter;
    sqlite3_vfs_register(sqlite3_vfs_find("unix"), 1);
    openShop(counter);
    counter.click("Command1_0");
    FaultyVfs::failAt(operation, FaultyVfs::Mode::Forever);
    counter.boxes.expect(QString::fromLatin1(question), box::Ask, Answer::Yes);
    counter.click("Command14");
    doEverything(counter);
    QVERIFY(FaultyVfs::failures() > 0);
    FaultyVfs::failAt(0);
    QCOMPARE(counter.file.cell(u"PRAGMA integrity_check"_s), u"ok"_s);
    const QStringList before = written(counter).split(u' ');
    counter.logIn();
    sellOne(counter);
    QCOMPARE(written(counter),
             QString::number(before.at(0).toInt() - 1) + u' ' + QString::number(before.at(1).toInt() + 1));
}

void BadFileTest::queriesOnly()
{
    Counter counter;
    openShop(counter);
    counter.file.sql(u"PRAGMA query_only = ON"_s);
    sellOne(counter);
    QVERIFY(counter.cart().isEmpty());
    QCOMPARE(written(counter), u"100 0"_s);
    doEverything(counter);
    counter.file.sql(u"PRAGMA query_only = OFF"_s);
    counter.logIn();
    sellOne(counter);
    QCOMPARE(written(counter), u"99 1"_s);
}

void BadFileTest::openedForReadingOnly()
{
    Counter counter;
    counter.file.addItem(u"A1"_s, u"TEA"_s, 2.5, 100);
    counter.file.sql(u"DELETE FROM StoreSettings"_s); // its default row cannot be written
    Database readOnly(counter.file.path(), true);
    counter.connection = std::make_shared<RecordingConnection>(std::make_shared<SqliteConnection>(readOnly.handle()));
    counter.open();
    QCOMPARE(counter.text("Text2"), QString()); // no row, no placeholder: the box keeps what it had
    counter.logIn();
    QCOMPARE(counter.text("StatusBar1_1"), u"User: ADMINISTRATOR"_s);
    sellOne(counter);
    doEverything(counter);
    QCOMPARE(written(counter), u"100 0"_s);
    QCOMPARE(counter.file.cell(u"SELECT count(*) FROM StoreSettings"_s), u"0"_s);
    counter.close();
    counter.connection.reset();
}

void BadFileTest::readOnlyWhileOpen()
{
    Counter counter;
    openShop(counter);
    QFile file(counter.file.path());
    QFile folder(QFileInfo(file).path());
    const auto folderRights = folder.permissions();
    const auto readable = QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther;
    QVERIFY(file.setPermissions(readable));
    QVERIFY(folder.setPermissions(readable | QFile::ExeOwner | QFile::ExeGroup | QFile::ExeOther));
    {
        const PlainRights rights;
        sellOne(counter);
        QVERIFY(counter.cart().isEmpty());
        QCOMPARE(written(counter), u"100 0"_s);
        doEverything(counter);
    }
    QVERIFY(folder.setPermissions(folderRights));
    counter.logIn();
    sellOne(counter);
    QCOMPARE(written(counter), u"99 1"_s);
}

HARROWBY_TEST(bad_file_test, BadFileTest)
#include "bad_file_test.moc"
