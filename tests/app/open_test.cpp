// SPDX-License-Identifier: MIT
#include "app/shop/busy_wait.h"
#include "app/shop/file_facts.h"
#include "app/shop/schema.h"
#include "app/shop/store_access.h"
#include "app/shop/store_judge.h"
#include "app/shop/store_open.h"
#include "app/start/log_file.h"
#include "tests/app/store_files.h"
#include "tests/program/test_program.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::app::test;

namespace {

const std::chrono::milliseconds soon(60);

} // namespace

/// Opening files, also locked ones.
class OpenTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        QVERIFY(m_folder->isValid());
    }

    void lockedByAnotherProgram_data();
    void lockedByAnotherProgram();
    void logOfACrashIsRecovered();
    void journalOfACrashIsRecovered();
    void foreignFileKeepsItsIdentityAndGetsIndexes();
    void newerSchemaVersionOpens();
    void openStoreIsSetToLoseNothing();
    void readerInRollbackModeMeansExtra();
    void openStoreIsUsedAsItIsAndLogged_data();
    void openStoreIsUsedAsItIsAndLogged();

private:
    QString path(const QString &name = u"shop.sqlite"_s) const { return m_folder->filePath(name); }
    std::optional<StoreProblem> judge(const QString &file)
    {
        BusyWait wait(soon);
        return judgeStore(file, wait);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
};

void OpenTest::lockedByAnotherProgram_data()
{
    QTest::addColumn<QString>("lock");
    QTest::newRow("log, kept exclusively")
        << u"PRAGMA locking_mode = EXCLUSIVE; BEGIN EXCLUSIVE; UPDATE StockList SET StockAvailable = 1;"_s;
    QTest::newRow("log, a long change") << u"BEGIN IMMEDIATE; UPDATE StockList SET StockAvailable = 1;"_s;
    QTest::newRow("journal, kept exclusively")
        << u"PRAGMA journal_mode = DELETE; BEGIN EXCLUSIVE; UPDATE StockList SET StockAvailable = 1;"_s;
    QTest::newRow("journal, a long change")
        << u"PRAGMA journal_mode = DELETE; BEGIN IMMEDIATE; UPDATE StockList SET StockAvailable = 1;"_s;
}

void OpenTest::lockedByAnotherProgram()
{
    QFETCH(QString, lock);
    makeStore(path());
    QProcess other;
    other.start(u"sqlite3"_s, {path()});
    other.write(lock.toUtf8() + "\nSELECT 'held';\n");
    QByteArray heard;
    while (!heard.contains("held")) {
        QVERIFY(other.waitForReadyRead());
        heard += other.readAllStandardOutput();
    }

    const QByteArray before = bytesOf(path()).file;
    BusyWait wait(soon);
    SqliteDatabase database;
    const auto problem = into(database, openStore(path(), wait));
    QVERIFY(problem);
    QVERIFY2(problem->kind == ProblemKind::Locked, qPrintable(problem->text));
    QVERIFY(problem->text.contains(path()));
    QVERIFY(bytesOf(path()).file == before);

    other.kill();
    QVERIFY(other.waitForFinished());
    wait.refill();
    const auto later = into(database, openStore(path(), wait));
    QVERIFY2(!later, later ? qPrintable(later->text) : "");
    QCOMPARE(readText(database.get(), u"SELECT StockAvailable FROM StockList"_s), u"20"_s);
}

void OpenTest::logOfACrashIsRecovered()
{
    const QString live = path(u"live.sqlite"_s);
    makeStore(live);
    {
        SqliteDatabase database;
        QVERIFY(!into(database, openDatabase(live, OpenMode::Write)));
        QVERIFY(!runSql(database.get(), u"UPDATE StockList SET StockAvailable = 7"_s));
        copyAsAfterCrash(live, path());
    }
    QVERIFY(QFile(logFileOf(path())).size() > 0);
    const Bytes before = bytesOf(path());
    QVERIFY(!judge(path()));
    QVERIFY(bytesOf(path()) == before);
    BusyWait wait(soon);
    SqliteDatabase database;
    QVERIFY(!into(database, openStore(path(), wait)));
    QCOMPARE(readText(database.get(), u"SELECT StockAvailable FROM StockList"_s), u"7"_s);
}

void OpenTest::journalOfACrashIsRecovered()
{
    const QString live = path(u"live.sqlite"_s);
    makeBigStore(live);
    {
        SqliteDatabase database;
        QVERIFY(!into(database, openDatabase(live, OpenMode::Write)));
        QVERIFY(!runSql(database.get(), u"PRAGMA journal_mode = DELETE"_s));
        QVERIFY(!runSql(database.get(), u"PRAGMA cache_size = 5"_s)); // the change spills into the file
        QVERIFY(!runSql(database.get(), u"BEGIN"_s));
        QVERIFY(!runSql(database.get(), u"UPDATE SysUsage SET SystemUsage = SystemUsage || 'half done'"_s));
        copyAsAfterCrash(live, path());
    }
    QVERIFY(QFile(journalOf(path())).size() > 0);
    BusyWait wait(soon);
    SqliteDatabase database;
    const auto problem = into(database, openStore(path(), wait));
    QVERIFY2(!problem, problem ? qPrintable(problem->text) : "");
    QCOMPARE(readText(database.get(), u"SELECT count(*) FROM SysUsage WHERE SystemUsage LIKE '%half done'"_s), u"0"_s);
    QCOMPARE(readText(database.get(), u"PRAGMA integrity_check"_s), u"ok"_s);
}

void OpenTest::foreignFileKeepsItsIdentityAndGetsIndexes()
{
    QStringList statements = {u"PRAGMA application_id = 77"_s, u"PRAGMA user_version = 42"_s};
    for (const StoreTable &table : storeTables()) {
        // Another order, other types, other capitals, and columns of its own.
        QStringList columns = {u"Extra INTEGER PRIMARY KEY"_s};
        for (qsizetype i = table.columns.size(); i > 0; --i)
            columns << table.columns.at(i - 1).toUpper() + u" VARCHAR(50)"_s;
        statements << u"CREATE TABLE %1 (%2)"_s.arg(table.name.toLower(), columns.join(u','));
    }
    statements << u"CREATE UNIQUE INDEX their_own ON [stocklist] ( \"stockid\" )"_s
               << u"CREATE INDEX harrowby_purchase_id ON PurchaseCart (Users)"_s;
    runAll(path(), statements);

    BusyWait wait(soon);
    SqliteDatabase database;
    const auto problem = into(database, openStore(path(), wait));
    QVERIFY2(!problem, problem ? qPrintable(problem->text) : "");
    QCOMPARE(readText(database.get(), u"PRAGMA application_id"_s), u"77"_s);
    QVERIFY(!isOwnStore(database.get()));
    QCOMPARE(readText(database.get(), u"PRAGMA user_version"_s), u"42"_s);
    // An index of this table has one of our definitions already; an old one under our name is created again.
    QCOMPARE(readText(database.get(), u"SELECT count(*) FROM sqlite_master WHERE name LIKE 'harrowby_%'"_s).toInt(),
             storeIndexes().size() - 1);
    QVERIFY(readText(database.get(), u"SELECT sql FROM sqlite_master WHERE name = 'harrowby_purchase_id'"_s)
                .contains(u"(PurchaseID)"_s));
}

void OpenTest::newerSchemaVersionOpens()
{
    makeStore(path());
    runAll(path(), {u"PRAGMA user_version = 900"_s, u"ALTER TABLE StockList ADD COLUMN Shelf"_s});
    BusyWait wait(soon);
    SqliteDatabase database;
    QVERIFY(!into(database, openStore(path(), wait)));
    QCOMPARE(readText(database.get(), u"PRAGMA user_version"_s), u"900"_s);
}

void OpenTest::openStoreIsSetToLoseNothing()
{
    makeStore(path());
    runAll(path(), {u"PRAGMA journal_mode = DELETE"_s});
    BusyWait wait(soon);
    SqliteDatabase database;
    QVERIFY(!into(database, openStore(path(), wait)));
    QCOMPARE(readText(database.get(), u"PRAGMA journal_mode"_s), u"wal"_s);
    QCOMPARE(readText(database.get(), u"PRAGMA synchronous"_s), u"2"_s);
}

void OpenTest::readerInRollbackModeMeansExtra()
{
    makeStore(path());
    runAll(path(), {u"PRAGMA journal_mode = DELETE"_s});
    SqliteDatabase reader;
    QVERIFY(!into(reader, openDatabase(path(), OpenMode::Read)));
    SqliteStatement reading(reader.get(), u"SELECT * FROM StockList"_s);
    QVERIFY(reading.next());

    BusyWait wait(soon);
    SqliteDatabase database;
    const auto problem = into(database, openStore(path(), wait));
    QVERIFY2(!problem, problem ? qPrintable(problem->text) : "");
    QCOMPARE(readText(database.get(), u"PRAGMA journal_mode"_s), u"delete"_s);
    QCOMPARE(readText(database.get(), u"PRAGMA synchronous"_s), u"3"_s);
}

void OpenTest::openStoreIsUsedAsItIsAndLogged_data()
{
    QTest::addColumn<int>("permissions");
    QTest::addColumn<QString>("said");
    QTest::newRow("owner alone") << 0x6600 << QString();
    QTest::newRow("group") << 0x6640 << u"0640"_s;
    QTest::newRow("everybody") << 0x6644 << u"0644"_s;
    QTest::newRow("everybody may write") << 0x6666 << u"0666"_s;
}

void OpenTest::openStoreIsUsedAsItIsAndLogged()
{
    QFETCH(int, permissions);
    QFETCH(QString, said);
    makeStore(path());
    QVERIFY(QFile::setPermissions(path(), QFile::Permissions(permissions)));
    const QString before = permissionsText(path());
    LogFile log(path(u"log"_s));
    SqliteDatabase database;
    {
        const LogRouting routing(log, false);
        BusyWait wait(soon);
        QVERIFY(!into(database, openStore(path(), wait)));
    }
    QCOMPARE(permissionsText(path()), before);
    QFile file(log.path());
    const QString lines = file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    QCOMPARE(lines.contains(u"Others may read the store file "_s + path()), !said.isEmpty());
    QVERIFY2(lines.contains(said), qPrintable(lines));

    QVERIFY(!runSql(database.get(), u"INSERT INTO SysUsage VALUES ('', '', '')"_s));
    QCOMPARE(reasonOf(closeToOthers(path())), QString());
    for (const QString &name : {path(), logFileOf(path()), logIndexOf(path())})
        QCOMPARE(permissionsText(name), u"0600"_s);
    QVERIFY(!isOpenToOthers(path()));
    QVERIFY(!runSql(database.get(), u"INSERT INTO SysUsage VALUES ('', '', '')"_s));
}

HARROWBY_CORE_TEST(app_open_test, OpenTest)
#include "open_test.moc"
