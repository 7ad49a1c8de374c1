// SPDX-License-Identifier: MIT
#include "app/backup/backup.h"
#include "app/backup/backup_copy.h"
#include "app/backup/backup_job.h"
#include "app/backup/backup_names.h"
#include "app/backup/backup_place.h"
#include "app/shop/busy_wait.h"
#include "app/shop/store_access.h"
#include "app/shop/store_judge.h"
#include "app/shop/workshop.h"
#include "tests/app/bad_disk.h"
#include "tests/app/full_disk.h"
#include "tests/app/quick_folder.h"
#include "tests/app/store_files.h"
#include "tests/program/test_program.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <sqlite3.h>

#include <optional>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::app::test;

using Outcome = BackupResult::Outcome;
using Stage = BackupProgress::Stage;

namespace {

bool goOn(const BackupProgress &)
{
    return true;
}

QByteArray bytes(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

class BackupTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { m_folder.reset(); }

    void copyHoldsEverythingInOneFile();
    void copyIsAStore();
    void tillWritesMeanwhile();
    void tillWithoutALogWritesMeanwhile();
    void stopLeavesNothing_data();
    void stopLeavesNothing();
    void fileIsReplacedOnlyWhenAsked();
    void failureKeepsTheOldBackup();
    void damagedStoreIsTold();
    void fullDiskIsTold();
    void failingSideIsTold_data();
    void failingSideIsTold();
    void storeThatCannotBeOpenedIsNoFaultOfThePlace();
    void copyIsTheOwnersAlone();
    void leftFoldersAreRemoved();
    void badPlaceIsTold_data();
    void badPlaceIsTold();
    void storeUnderAnotherNameIsRefused();
    void readOnlyPlaceIsTold();
    void linkLeadsToTheRealFile();
    void reasonIsToldOfItsSide_data();
    void reasonIsToldOfItsSide();
    void usualName();
    void jobReportsAndEnds();
    void jobEndsWithItsObject();

private:
    [[nodiscard]] QString store() const { return m_folder->filePath(u"shop.sqlite"_s); }
    [[nodiscard]] QString target() const { return m_folder->filePath(u"away/copy.db"_s); }
    [[nodiscard]] QStringList away() const
    {
        return QDir(m_folder->filePath(u"away"_s)).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }
    void grow();

    std::unique_ptr<QTemporaryDir> m_folder;
};

void BackupTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>(quickFolder() + u"/backup-XXXXXX"_s);
    QVERIFY(QDir(m_folder->path()).mkdir(u"away"_s));
    makeBigStore(store());
}

/// To more pages than one step copies.
void BackupTest::grow()
{
    runAll(store(), {u"INSERT INTO SysUsage SELECT SystemUsage || hex(randomblob(500)), '', '' FROM SysUsage"_s});
    QVERIFY(QFile(store()).size() > qint64{3} * 256 * 4096);
}

void BackupTest::copyHoldsEverythingInOneFile()
{
    QList<int> percents;
    bool checked = false;
    const BackupResult result = backUpStore(store(), target(), false, [&](const BackupProgress &progress) {
        if (progress.stage == Stage::Copying)
            percents << progress.percent;
        checked = checked || progress.stage == Stage::Checking;
        return true;
    });
    QCOMPARE(result.problem, QString());
    QCOMPARE(result.outcome, Outcome::Done);
    QCOMPARE(result.bytes, QFile(target()).size());
    QCOMPARE(away(), QStringList{u"copy.db"_s});
    QCOMPARE(percents.constLast(), 100);
    QVERIFY(std::is_sorted(percents.cbegin(), percents.cend()));
    QVERIFY(checked);
    QCOMPARE(column(target(), u"PRAGMA journal_mode"_s), QStringList{u"delete"_s});
    QCOMPARE(column(target(), u"PRAGMA integrity_check"_s), QStringList{u"ok"_s});
    for (const QString &table : {u"StockList"_s, u"Users"_s, u"SysUsage"_s})
        QCOMPARE(column(target(), u"SELECT * FROM "_s + table), column(store(), u"SELECT * FROM "_s + table));
    QCOMPARE(away(), QStringList{u"copy.db"_s});
}

void BackupTest::copyIsAStore()
{
    QCOMPARE(backUpStore(store(), target(), false, goOn).outcome, Outcome::Done);
    BusyWait wait;
    QVERIFY(!judgeStore(target(), wait));
}

void BackupTest::tillWritesMeanwhile()
{
    grow();
    SqliteDatabase till;
    QVERIFY(!into(till, openDatabase(store(), OpenMode::Write)));
    int written = 0;
    const BackupResult result = backUpStore(store(), target(), false, [&](const BackupProgress &progress) {
        if (progress.stage == Stage::Copying &&
            !runSql(till.get(), u"INSERT INTO PurchaseCart (PurchaseID) VALUES ('HV1')"_s))
            ++written;
        return true;
    });
    QCOMPARE(result.problem, QString());
    QCOMPARE(result.outcome, Outcome::Done);
    QVERIFY(written >= 3); // the sales did not wait for the backup
    QCOMPARE(column(target(), u"SELECT count(*) FROM PurchaseCart"_s),
             QStringList{u"0"_s}); // a snapshot of the beginning
    QCOMPARE(column(store(), u"SELECT count(*) FROM PurchaseCart"_s), QStringList{QString::number(written)});
}

void BackupTest::tillWithoutALogWritesMeanwhile()
{
    grow();
    runAll(store(), {u"PRAGMA journal_mode = DELETE"_s});
    SqliteDatabase till;
    QVERIFY(!into(till, openDatabase(store(), OpenMode::Write)));
    int steps = 0;
    int written = 0;
    const BackupResult result = backUpStore(store(), target(), false, [&](const BackupProgress &progress) {
        if (progress.stage == Stage::Copying && ++steps < 1000 &&
            !runSql(till.get(), u"INSERT INTO PurchaseCart (PurchaseID) VALUES ('HV1')"_s))
            ++written;
        return steps < 1000;
    });
    QCOMPARE(result.problem, QString());
    QCOMPARE(result.outcome, Outcome::Done);
    QVERIFY(written > 0);
    QVERIFY2(steps < 20, qPrintable(QString::number(steps))); // the till waits before the copy begins anew for ever
    QCOMPARE(column(target(), u"PRAGMA integrity_check"_s), QStringList{u"ok"_s});
}

void BackupTest::stopLeavesNothing_data()
{
    QTest::addColumn<int>("stage");
    QTest::newRow("copying") << static_cast<int>(Stage::Copying);
    QTest::newRow("checking") << static_cast<int>(Stage::Checking);
}

void BackupTest::stopLeavesNothing()
{
    QFETCH(int, stage);
    grow();
    const auto stopAt = [&](const BackupProgress &progress) { return static_cast<int>(progress.stage) != stage; };
    QCOMPARE(backUpStore(store(), target(), false, stopAt).outcome, Outcome::Stopped);
    QCOMPARE(away(), QStringList());
}

void BackupTest::fileIsReplacedOnlyWhenAsked()
{
    runAll(target(), {u"CREATE TABLE Other (x)"_s});
    const QByteArray before = bytes(target());
    const BackupResult refused = backUpStore(store(), target(), false, goOn);
    QCOMPARE(refused.outcome, Outcome::Failed);
    QVERIFY2(refused.problem.contains(u"in the meantime"_s), qPrintable(refused.problem));
    QCOMPARE(bytes(target()), before);
    QCOMPARE(backUpStore(store(), target(), true, goOn).outcome, Outcome::Done);
    QCOMPARE(column(target(), u"SELECT StockID FROM StockList"_s), QStringList{u"TEA-0001"_s});
    QCOMPARE(away(), QStringList{u"copy.db"_s});
}

void BackupTest::failureKeepsTheOldBackup()
{
    QCOMPARE(backUpStore(store(), target(), false, goOn).outcome, Outcome::Done);
    const QByteArray before = bytes(target());
    spoil(store(), 4096, 200000);
    QCOMPARE(backUpStore(store(), target(), true, goOn).outcome, Outcome::Failed);
    QCOMPARE(bytes(target()), before);
    QCOMPARE(away(), QStringList{u"copy.db"_s});
}

void BackupTest::damagedStoreIsTold()
{
    spoil(store(), 40000, 20000);
    const BackupResult result = backUpStore(store(), target(), false, goOn);
    QCOMPARE(result.outcome, Outcome::Failed);
    QVERIFY2(result.problem.contains(u"store file is damaged"_s), qPrintable(result.problem));
    QCOMPARE(away(), QStringList());
}

void BackupTest::failingSideIsTold_data()
{
    using Fault = BadDisk::Fault;
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<int>("fault");
    QTest::addColumn<int>("percent");
    QTest::addColumn<QString>("said");
    const auto row = [](const char *name, const QByteArray &file, Fault fault, int percent, const QString &said) {
        QTest::newRow(name) << file << static_cast<int>(fault) << percent << said;
    };
    row("store cannot be read", "shop.sqlite", Fault::Read, 1, u"The store file cannot be read"_s);
    row("copy cannot be written", "backup.db", Fault::Write, 1, u"The place of the backup cannot be"_s);
    row("copy cannot be read", "backup.db", Fault::Read, 100, u"The place of the backup"_s);
    row("copy does not keep what is written", "backup.db", Fault::Forget, 1, u"The place of the backup does not"_s);
}

void BackupTest::failingSideIsTold()
{
    QFETCH(QByteArray, file);
    QFETCH(int, fault);
    QFETCH(int, percent);
    QFETCH(QString, said);
    grow();
    std::optional<BadDisk> disk;
    const BackupResult result = backUpStore(store(), target(), false, [&](const BackupProgress &progress) {
        if (!disk && progress.stage == Stage::Copying && progress.percent >= percent)
            disk.emplace(file, static_cast<BadDisk::Fault>(fault));
        return true;
    });
    QVERIFY(disk);
    disk.reset();
    QCOMPARE(result.outcome, Outcome::Failed);
    QVERIFY2(result.problem.contains(said), qPrintable(result.problem));
    QCOMPARE(away(), QStringList());
}

void BackupTest::storeThatCannotBeOpenedIsNoFaultOfThePlace()
{
    // A folder lies where the log would be.
    QVERIFY(QDir(m_folder->path()).mkdir(u"shop.sqlite-wal"_s));
    const BackupResult result = backUpStore(store(), target(), false, goOn);
    QCOMPARE(result.outcome, Outcome::Failed);
    QVERIFY2(result.problem.contains(u"store file cannot be read"_s), qPrintable(result.problem));
    QVERIFY(!result.problem.contains(u"stick"_s));
}

void BackupTest::copyIsTheOwnersAlone()
{
    QFile::setPermissions(store(), QFile::Permissions(0x6644));
    QCOMPARE(backUpStore(store(), target(), false, goOn).outcome, Outcome::Done);
    QCOMPARE(permissionsText(target()), u"0600"_s);
}

void BackupTest::leftFoldersAreRemoved()
{
    const QDir place(m_folder->filePath(u"away"_s));
    QVERIFY(place.mkpath(u".harrowby-backup-AbCdEf/deep"_s));
    QVERIFY(QFile(place.filePath(u".harrowby-backup-AbCdEf/backup.db"_s)).open(QIODevice::WriteOnly));
    QVERIFY(place.mkdir(u".harrowby-new-AbCdEf"_s));
    QVERIFY(place.mkdir(u".harrowby-backup-notes of mine"_s));
    QVERIFY(place.mkdir(u"kept"_s));
    QVERIFY(QFile::link(place.filePath(u"kept"_s), place.filePath(u".harrowby-backup-LinkTo"_s)));
    const Workshop alive(place.path(), Workshop::Purpose::Backup);
    QVERIFY(alive.isValid());
    const QString name = QFileInfo(alive.filePath(u"x"_s)).dir().dirName();
    QCOMPARE(backUpStore(store(), target(), false, goOn).outcome, Outcome::Done);
    QStringList expected = {u".harrowby-backup-LinkTo"_s, u".harrowby-backup-notes of mine"_s, name, u"copy.db"_s,
                            u"kept"_s};
    expected.sort();
    QStringList found = away();
    found.sort();
    QCOMPARE(found, expected);
}

void BackupTest::fullDiskIsTold()
{
    grow();
    BackupResult result;
    {
        const FullDisk disk(1000000);
        result = backUpStore(store(), target(), false, goOn);
    }
    QCOMPARE(result.outcome, Outcome::Failed);
    QVERIFY2(result.problem.contains(u"place of the backup"_s), qPrintable(result.problem));
    QCOMPARE(away(), QStringList());
}

void BackupTest::badPlaceIsTold_data()
{
    QTest::addColumn<QString>("place");
    QTest::addColumn<QString>("said");
    QTest::newRow("nothing") << QString() << u"choose a place"_s;
    QTest::newRow("the store") << u"shop.sqlite"_s << u"store file itself"_s;
    QTest::newRow("the store, written otherwise") << u"away/../shop.sqlite"_s << u"store file itself"_s;
    QTest::newRow("its log") << u"shop.sqlite-wal"_s << u"store file itself"_s;
    QTest::newRow("its journal") << u"away/../shop.sqlite-journal"_s << u"store file itself"_s;
    QTest::newRow("a folder") << u"away"_s << u"is a folder"_s;
    QTest::newRow("in no folder") << u"gone/copy.db"_s << u"There is no folder"_s;
    QTest::newRow("a device") << u"/dev/null"_s << u"not an ordinary file"_s;
    QTest::newRow("a used one") << u"away/used.db"_s << u"another program uses"_s;
}

void BackupTest::badPlaceIsTold()
{
    QFETCH(QString, place);
    QFETCH(QString, said);
    QFile log(m_folder->filePath(u"away/used.db-wal"_s));
    QVERIFY(log.open(QIODevice::WriteOnly));
    const QByteArray before = bytes(store());
    const QString path = place.isEmpty() || place.startsWith(u'/') ? place : m_folder->path() + u'/' + place;
    const BackupResult result = backUpStore(store(), path, true, goOn);
    QCOMPARE(result.outcome, Outcome::Failed);
    QVERIFY2(result.problem.contains(said), qPrintable(result.problem));
    QCOMPARE(bytes(store()), before);
    QCOMPARE(away(), QStringList{u"used.db-wal"_s});
}

void BackupTest::storeUnderAnotherNameIsRefused()
{
    const QString link = m_folder->filePath(u"away/link.db"_s);
    QVERIFY(QFile::link(store(), link));
    QVERIFY(reasonOf(checkBackupPlace(store(), link)).contains(u"store file itself"_s));
    const QString second = m_folder->filePath(u"away/second.db"_s);
    QCOMPARE(::link(QFile::encodeName(store()).constData(), QFile::encodeName(second).constData()), 0);
    QVERIFY(reasonOf(checkBackupPlace(store(), second)).contains(u"store file itself"_s));
    QVERIFY(reasonOf(checkBackupPlace(link, store())).contains(u"store file itself"_s));
}

void BackupTest::readOnlyPlaceIsTold()
{
    const QString folder = m_folder->filePath(u"away"_s);
    QVERIFY(QFile::setPermissions(m_folder->path(), QFile::Permissions(0x7775)));
    QVERIFY(QFile::setPermissions(folder, QFile::ReadOwner | QFile::ExeOwner | QFile::ReadOther | QFile::ExeOther));
    {
        const DropRights asNobody;
        QVERIFY(reasonOf(checkBackupPlace(store(), target())).contains(u"cannot be written"_s));
    }
    QVERIFY(QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
}

void BackupTest::linkLeadsToTheRealFile()
{
    const QString real = m_folder->filePath(u"away/real.db"_s);
    QVERIFY(QFile(real).open(QIODevice::WriteOnly));
    QVERIFY(QFile::link(real, target()));
    QCOMPARE(backUpStore(store(), target(), true, goOn).outcome, Outcome::Done);
    QVERIFY(QFileInfo(target()).isSymLink());
    QCOMPARE(column(real, u"SELECT StockID FROM StockList"_s), QStringList{u"TEA-0001"_s});
}

void BackupTest::reasonIsToldOfItsSide_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<bool>("ofStore");
    QTest::addColumn<QString>("said");
    const auto noSpace = u"There is no space left "_s;
    QTest::newRow("store full") << SQLITE_FULL << true << noSpace + u"on the disk of the store file"_s;
    QTest::newRow("place full") << SQLITE_FULL << false << noSpace + u"at the place of the backup"_s;
    QTest::newRow("busy") << SQLITE_BUSY << true << u"Another program keeps the store file locked."_s;
    QTest::newRow("locked") << SQLITE_LOCKED << true << u"Another program keeps the store file locked."_s;
    QTest::newRow("no database") << SQLITE_NOTADB << true << u"The store file is damaged."_s;
    QTest::newRow("store not opened") << SQLITE_CANTOPEN << true << u"The store file cannot be read"_s;
    QTest::newRow("place not written") << SQLITE_READONLY << false << u"The place of the backup cannot be written"_s;
    QTest::newRow("another") << SQLITE_NOMEM << true << u"The backup could not be made (why)."_s;
}

void BackupTest::reasonIsToldOfItsSide()
{
    QFETCH(const int, code);
    QFETCH(const bool, ofStore);
    QFETCH(const QString, said);
    const QString told = copyProblem({code, u"why"_s}, ofStore ? BackupSide::Store : BackupSide::Place);
    QVERIFY2(told.startsWith(said), qPrintable(told));
}

void BackupTest::usualName()
{
    QCOMPARE(usualBackupName(QDate(2026, 3, 5)), u"harrowby-2026-03-05.db"_s);
}

void BackupTest::jobReportsAndEnds()
{
    BackupJob job;
    QSignalSpy progress(&job, &BackupJob::progressed);
    BackupResult result;
    connect(&job, &BackupJob::finished, this, [&](const BackupResult &ended) { result = ended; });
    job.start(store(), target(), false);
    QVERIFY(job.isRunning());
    QTRY_VERIFY_WITH_TIMEOUT(!job.isRunning(), 30000);
    QCOMPARE(result.outcome, Outcome::Done);
    QVERIFY(!progress.isEmpty());
    job.start(store(), m_folder->filePath(u"gone/copy.db"_s), false);
    QTRY_VERIFY_WITH_TIMEOUT(!job.isRunning(), 30000);
    QCOMPARE(result.outcome, Outcome::Failed);
}

void BackupTest::jobEndsWithItsObject()
{
    grow();
    {
        BackupJob job;
        job.start(store(), target(), false);
    }
    QVERIFY(away().isEmpty() || away() == QStringList{u"copy.db"_s});
}

HARROWBY_CORE_TEST(app_backup_test, BackupTest)
#include "backup_test.moc"
