// SPDX-License-Identifier: MIT
#include "app/backup/backup.h"
#include "app/records/deeds.h"
#include "app/records/sqlite_records.h"
#include "app/shop/busy_wait.h"
#include "app/shop/store_judge.h"
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

class DeedsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void deedIsStoredAsItWas();
    void deedIsALineToRead();
    void deedIsStoredWithWhatItTellsOrNeither();
    void nothingChangesOrDeletesADeed();
    void nothingPutsAnotherDeedInItsPlace();
    void openingsOfBeforeAreKeptToo();
    void storeWithDeedsIsJudgedCopiedAndPacked();
    void failedDeedIsTold();
    void commandLineUserIsNamed();

private:
    [[nodiscard]] QString read(const QString &select) const { return readText(m_database.get(), select); }
    [[nodiscard]] Deeds deeds() { return Deeds(*m_records, u"office"_s); }

    QTemporaryDir m_folder;
    QString m_path;
    SqliteDatabase m_database;
    std::unique_ptr<SqliteRecords> m_records;
    QList<DbFailure> m_told;
};

void DeedsTest::init()
{
    m_path = m_folder.filePath(QString::fromLatin1(QTest::currentTestFunction()) + u".db"_s);
    makeStore(m_path);
    QVERIFY(!into(m_database, openDatabase(m_path, OpenMode::Write)));
    m_records = std::make_unique<SqliteRecords>(m_database.get());
    m_told.clear();
    m_records->setFailureHandler([this](const DbFailure &failure) { m_told << failure; });
}

void DeedsTest::cleanup()
{
    m_records.reset();
    m_database.reset();
}

void DeedsTest::deedIsStoredAsItWas()
{
    const QString before = recordTime(QDateTime::currentDateTimeUtc());
    QVERIFY(!deeds().add({deed::priceByHand, u"O'NEIL"_s, u"TEA from \"2.00\" to 1.50?"_s}));
    QVERIFY(!deeds().add({deed::drawerOpened, {}, u"other"_s}));
    QCOMPARE(read(u"select Kind || '|' || Who || '|' || Place || '|' || What from HarrowbyActivity where Who <> ''"_s),
             u"PriceByHand|O'NEIL|office|TEA from \"2.00\" to 1.50?"_s);
    QCOMPARE(read(u"select count(distinct DeedID) from HarrowbyActivity"_s), u"2"_s);
    QVERIFY(read(u"select min(DoneAt) from HarrowbyActivity"_s) >= before);
}

void DeedsTest::deedIsALineToRead()
{
    QVERIFY(!deeds().add({deed::exported, u"A"_s, u"two\nlines\u0000 and "_s + QString(5000, u'x')}));
    const QString what = read(u"select What from HarrowbyActivity"_s);
    QVERIFY2(what.startsWith(u"two lines and xxx"_s), qPrintable(what.left(30)));
    QCOMPARE(what.size(), 2000);
}

void DeedsTest::deedIsStoredWithWhatItTellsOrNeither()
{
    const RecordStatement told = deeds().statement({deed::settingChanged, u"A"_s, u"cash"_s});
    const RecordStatement setting{u"insert into HarrowbySetting (Name, Value) values (?, ?)"_s, {u"a"_s, u"b"_s}};
    QVERIFY(m_records->writeTogether(kept::setting(), {setting, told}));
    QCOMPARE(read(u"select count(*) from HarrowbyActivity"_s), u"1"_s);
    // The setting is there already: the deed is not told of what did not happen.
    const RecordStatement again = deeds().statement({deed::settingChanged, u"A"_s, u"cash"_s});
    QVERIFY(!m_records->writeTogether(kept::setting(), {again, setting}));
    QCOMPARE(read(u"select count(*) from HarrowbyActivity"_s), u"1"_s);
    // Nor does it happen when the deed cannot be stored.
    const RecordStatement other{u"insert into HarrowbySetting (Name, Value) values (?, ?)"_s, {u"c"_s, u"d"_s}};
    QVERIFY(!m_records->writeTogether(kept::setting(), {other, told}));
    QCOMPARE(read(u"select count(*) from HarrowbySetting"_s), u"1"_s);
}

void DeedsTest::nothingChangesOrDeletesADeed()
{
    QVERIFY(!deeds().add({deed::exported, u"A"_s, u"items"_s}));
    for (const QString &text : {u"update HarrowbyActivity set Who = 'B'"_s, u"delete from HarrowbyActivity"_s,
                                u"delete from HarrowbyActivity where Who = 'A'"_s}) {
        const auto error = runSql(m_database.get(), text);
        QVERIFY2(error, qPrintable(text));
        QCOMPARE(error->reason, u"HarrowbyActivity is only ever added to"_s);
    }
    QCOMPARE(read(u"select Who from HarrowbyActivity"_s), u"A"_s);
}

/// For the row that goes, REPLACE runs no trigger.
void DeedsTest::nothingPutsAnotherDeedInItsPlace()
{
    QVERIFY(!deeds().add({deed::exported, u"A"_s, u"items"_s}));
    const QString rest = u"DoneAt, Kind, %1, Place, What from HarrowbyActivity"_s;
    const QString insert = u"insert or %1 into HarrowbyActivity %2 select %3"_s;
    const QString columns = u"(rowid, DeedID, DoneAt, Kind, Who, Place, What)"_s;
    for (const QString &text : {insert.arg(u"replace"_s, QString(), u"DeedID, "_s + rest.arg(u"'B'"_s)),
                                insert.arg(u"replace"_s, columns, u"rowid, 'other', "_s + rest.arg(u"'B'"_s))}) {
        const auto error = runSql(m_database.get(), text);
        QVERIFY2(error, qPrintable(text));
        QCOMPARE(error->reason, u"HarrowbyActivity is only ever added to"_s);
    }
    // What comes back from a backup with the very same row is none.
    QVERIFY(!runSql(m_database.get(), insert.arg(u"ignore"_s, QString(), u"DeedID, "_s + rest.arg(u"Who"_s))));
    QCOMPARE(read(u"select group_concat(Who) from HarrowbyActivity"_s), u"A"_s);
    // Nor does a store whose tables were made before stay without it.
    QVERIFY(!runSql(m_database.get(), u"drop trigger harrowby_activity_insert"_s));
    QVERIFY(!deeds().add({deed::exported, u"C"_s, u"items"_s}));
    QVERIFY(runSql(m_database.get(), insert.arg(u"replace"_s, QString(), u"DeedID, "_s + rest.arg(u"'B'"_s))));
    QCOMPARE(read(u"select group_concat(Who) from HarrowbyActivity"_s), u"A,C"_s);
}

void DeedsTest::openingsOfBeforeAreKeptToo()
{
    runAll(m_path, kept::drawerOpening().making +
                       QStringList{u"insert into HarrowbyDrawerOpening values ('1', '2', 'A', 'Till', 'change')"_s,
                                   u"update HarrowbyDrawerOpening set Reason = 'money'"_s});
    QVERIFY(m_records->write(
        kept::drawerOpening(),
        {u"insert into HarrowbyDrawerOpening (OpeningID, OpenedAt, OpenedBy, Drawer, Reason) values (?, ?, ?, ?, ?)"_s,
         {u"2"_s, u"3"_s, u"B"_s, u"Till"_s, u"look"_s}}));
    QVERIFY(runSql(m_database.get(), u"update HarrowbyDrawerOpening set Reason = 'nothing'"_s));
    QVERIFY(runSql(m_database.get(), u"delete from HarrowbyDrawerOpening where OpeningID = '1'"_s));
    QCOMPARE(read(u"select group_concat(Reason) from HarrowbyDrawerOpening"_s), u"money,look"_s);
}

void DeedsTest::storeWithDeedsIsJudgedCopiedAndPacked()
{
    QVERIFY(!deeds().add({deed::exported, u"A"_s, u"items"_s}));
    BusyWait wait;
    QVERIFY(!judgeStore(m_path, wait));
    const QString copy = m_folder.filePath(u"copy.db"_s);
    QCOMPARE(backUpStore(m_path, copy, false, [](const BackupProgress &) { return true; }).problem, QString());
    QVERIFY(!judgeStore(copy, wait));
    QCOMPARE(column(copy, u"select Who from HarrowbyActivity"_s), QStringList{u"A"_s});
    QVERIFY(!runSql(m_database.get(), u"vacuum"_s));
    QCOMPARE(read(u"select Who from HarrowbyActivity"_s), u"A"_s);
    // Any other program's own work goes on.
    QVERIFY(!runSql(m_database.get(), u"delete from StockList"_s));
}

void DeedsTest::failedDeedIsTold()
{
    QVERIFY(!runSql(m_database.get(), u"pragma query_only = 1"_s));
    const auto failure = deeds().add({deed::exported, u"A"_s, u"items"_s});
    QVERIFY(failure);
    QCOMPARE(failure->engineCode & 0xff, SQLITE_READONLY);
    QCOMPARE(m_told.size(), 1);
    QVERIFY(m_told.constFirst().statement.startsWith(u"insert into HarrowbyActivity"_s));
}

void DeedsTest::commandLineUserIsNamed()
{
    qputenv("USER", "paula");
    QCOMPARE(commandLineUser(), u"command line (paula)"_s);
    qunsetenv("USER");
    qputenv("LOGNAME", "night");
    QCOMPARE(commandLineUser(), u"command line (night)"_s);
    qunsetenv("LOGNAME");
    QCOMPARE(commandLineUser(), u"command line"_s);
}

HARROWBY_CORE_TEST(app_deeds_test, DeedsTest)
#include "deeds_test.moc"
