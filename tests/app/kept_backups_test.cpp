// SPDX-License-Identifier: MIT
#include "app/backup/good_backups.h"
#include "app/backup/kept_backups.h"
#include "app/records/sqlite_records.h"
#include "tests/app/fussy_records.h"
#include "tests/app/quick_folder.h"
#include "tests/app/store_files.h"
#include "tests/program/test_program.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSysInfo>
#include <QTemporaryDir>
#include <QTest>

#include <thread>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::app::test;

namespace {

const QDateTime morning(QDate(2026, 11, 22), QTime(9, 0));

BackupResult made(const KeptBackup &kept)
{
    if (kept.result.outcome != BackupResult::Outcome::Done)
        QTest::qFail(qPrintable(kept.result.problem), __FILE__, __LINE__);
    return kept.result;
}

} // namespace

/// Backups that the program makes by itself, and what the store knows of its backups.
class KeptBackupsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void nameSaysStoreAndMoment();
    void oldestGo();
    void allStayWithoutANumber();
    void othersStay();
    void failureRemovesNothing();
    void nobodyNeedsToWatch();
    void wrongClockLosesNothing();
    void twoAtOnceLeaveTheNewest();

    void storeKnowsItsBackups();
    void replacedBackupIsNotedOnce();
    void noteThatFailsIsTold();
    void goneBackupDoesNotCount();
    void awayBackupCounts();
    void overdue_data();
    void overdue();

private:
    [[nodiscard]] QString path(const QString &name) const { return m_folder->filePath(name); }
    [[nodiscard]] KeptBackup keepAt(const QDateTime &moment, int keep, const QString &store = u"shop.sqlite"_s) const
    {
        return keepBackup(path(store), path(u"away"_s), keep, moment, [](const BackupProgress &) { return true; });
    }
    [[nodiscard]] QStringList away() const
    {
        return QDir(path(u"away"_s)).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }
    void touch(const QString &name) const { QVERIFY(QFile(path(name)).open(QIODevice::WriteOnly)); }

    std::unique_ptr<QTemporaryDir> m_folder;
};

void KeptBackupsTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>(quickFolder() + u"/kept-XXXXXX"_s);
    QVERIFY(QDir(m_folder->path()).mkpath(u"away"_s) && QDir(m_folder->path()).mkpath(u"second"_s));
    makeStore(path(u"shop.sqlite"_s));
}

void KeptBackupsTest::nameSaysStoreAndMoment()
{
    const QString name = keptBackupName(path(u"shop.sqlite"_s), morning);
    QVERIFY2(name.startsWith(u"shop-2026-11-22-090000-"_s) && name.endsWith(u".db"_s), qPrintable(name));
    QVERIFY(name != keptBackupName(path(u"second/shop.sqlite"_s), morning));
    QVERIFY(QFile::link(path(u"shop.sqlite"_s), path(u"link"_s)));
    QCOMPARE(keptBackupName(path(u"link"_s), morning), name);
}

void KeptBackupsTest::oldestGo()
{
    QStringList files;
    for (int day = 0; day < 4; ++day) {
        const KeptBackup kept = keepAt(morning.addDays(day), 2);
        files << made(kept).file;
        QCOMPARE(kept.removed, day < 2 ? QStringList() : QStringList{files.at(day - 2)});
        QCOMPARE(kept.notRemoved, QStringList());
    }
    QCOMPARE(keptBackups(path(u"away"_s), path(u"shop.sqlite"_s)), (QStringList{files.at(3), files.at(2)}));
    QCOMPARE(away().size(), 2);
}

void KeptBackupsTest::allStayWithoutANumber()
{
    (void)made(keepAt(morning, 0));
    (void)made(keepAt(morning, 0)); // within the same second
    (void)made(keepAt(morning.addDays(1), 0));
    QCOMPARE(away().size(), 3);
    (void)made(keepAt(morning.addDays(1), 2));
    QCOMPARE(away().size(), 2);
    QVERIFY(away().constLast().endsWith(u".db"_s));
    QCOMPARE(keptBackups(path(u"away"_s), path(u"shop.sqlite"_s)).constFirst().endsWith(u"-2.db"_s), true);
}

void KeptBackupsTest::othersStay()
{
    makeStore(path(u"second/shop.sqlite"_s));
    const QString mark = QFileInfo(keptBackupName(path(u"shop.sqlite"_s), morning)).completeBaseName().right(8);
    const QStringList others = {u"shop-2020-01-01-000000.db"_s,
                                u"harrowby-2020-01-01.db"_s,
                                u"shop-2020-01-01-000000-%1.db.part"_s.arg(mark),
                                u"my shop-2020-01-01-000000-%1.db"_s.arg(mark),
                                u"shop-2020-01-01-000000-%1-x.db"_s.arg(mark),
                                u"shop-before-import.db"_s};
    for (const QString &other : others)
        touch(u"away/"_s + other);
    QVERIFY(QDir(path(u"away"_s)).mkdir(u"shop-2020-01-02-000000-%1.db"_s.arg(mark)));
    (void)made(keepAt(morning.addDays(-3), 1, u"second/shop.sqlite"_s));
    (void)made(keepAt(morning, 1));
    (void)made(keepAt(morning.addDays(1), 1));
    for (const QString &other : others)
        QVERIFY2(QFile::exists(path(u"away/"_s + other)), qPrintable(other));
    QCOMPARE(away().size(), others.size() + 3);
}

void KeptBackupsTest::failureRemovesNothing()
{
    (void)made(keepAt(morning, 1));
    const QStringList before = away();
    spoil(path(u"shop.sqlite"_s), 4096, 20000);
    const KeptBackup kept = keepAt(morning.addDays(1), 1);
    QCOMPARE(kept.result.outcome, BackupResult::Outcome::Failed);
    QCOMPARE(kept.removed, QStringList());
    QCOMPARE(away(), before);
}

void KeptBackupsTest::nobodyNeedsToWatch()
{
    QCOMPARE(made(keepBackup(path(u"shop.sqlite"_s), path(u"away"_s), 1, morning, {})).problem, QString());
    QCOMPARE(backUpStore(path(u"shop.sqlite"_s), path(u"away/one.db"_s), false, {}).problem, QString());
    QCOMPARE(away().size(), 2);
}

/// One that seems older than those that are there is the newest all the same.
void KeptBackupsTest::wrongClockLosesNothing()
{
    const QString future = made(keepAt(morning.addYears(10), 0)).file;
    const QString later = made(keepAt(morning.addYears(11), 0)).file;
    const KeptBackup now = keepAt(morning, 1);
    QCOMPARE(now.removed, QStringList());
    QVERIFY(QFile::exists(made(now).file) && QFile::exists(future) && QFile::exists(later));
    const KeptBackup next = keepAt(morning.addDays(1), 1);
    QCOMPARE(next.removed, QStringList{now.result.file});
    QVERIFY(QFile::exists(made(next).file) && QFile::exists(future));
}

void KeptBackupsTest::twoAtOnceLeaveTheNewest()
{
    makeBigStore(path(u"big.sqlite"_s));
    KeptBackup kept[3];
    {
        std::jthread threads[3];
        for (int at = 0; at < 3; ++at)
            threads[at] = std::jthread([&, at] { kept[at] = keepAt(morning, 1, u"big.sqlite"_s); });
    }
    QStringList names;
    for (const KeptBackup &one : kept)
        names << made(one).file;
    const QStringList left = keptBackups(path(u"away"_s), path(u"big.sqlite"_s));
    QVERIFY(!left.isEmpty());
    std::ranges::sort(names, std::less(), [](const QString &name) { return std::pair(name.size(), name); });
    QCOMPARE(left.constFirst(), names.constLast());
    QCOMPARE(column(left.constFirst(), u"PRAGMA integrity_check"_s), QStringList{u"ok"_s});
    QCOMPARE(away().size(), left.size()); // no half file
}

void KeptBackupsTest::storeKnowsItsBackups()
{
    SqliteDatabase database;
    QVERIFY(!into(database, openDatabase(path(u"shop.sqlite"_s), OpenMode::Write)));
    SqliteRecords records(database.get());
    QVERIFY(goodBackups(records).isEmpty());
    QVERIFY(backupState({}, morning).isOverdue);
    QVERIFY(backupStateText({}, morning).contains(u"No backup"_s));
    QVERIFY(backupWarning(records, morning).contains(u"No backup"_s));
    for (int day = 0; day < 25; ++day)
        QVERIFY(!noteGoodBackup(records, u"/b/%1.db"_s.arg(day), 100 + day, morning.addDays(day)));
    const QList<GoodBackup> noted = goodBackups(records);
    QVERIFY(backupWarning(records, morning.addDays(26)).isEmpty());
    QCOMPARE(backupWarning(records, morning.addDays(29)), u"No backup for 5 days"_s);
    QVERIFY(!runSql(database.get(), u"delete from StockList"_s));
    QVERIFY(backupWarning(records, morning.addDays(29)).isEmpty()); // nothing to lose
    QCOMPARE(noted.size(), 20);
    QCOMPARE(noted.constFirst().file, u"/b/24.db"_s);
    QCOMPARE(noted.constFirst().bytes, 124);
    QCOMPARE(noted.constFirst().made, morning.addDays(24).toUTC());
    QCOMPARE(noted.constFirst().machine, QSysInfo::machineHostName());
    QVERIFY(!runSql(database.get(), u"update HarrowbySetting set Value = 'not ours [{'"_s));
    QVERIFY(goodBackups(records).isEmpty());
}

void KeptBackupsTest::replacedBackupIsNotedOnce()
{
    SqliteDatabase database;
    QVERIFY(!into(database, openDatabase(path(u"shop.sqlite"_s), OpenMode::Write)));
    SqliteRecords records(database.get());
    for (const int day : {0, 1, 2})
        QVERIFY(!noteGoodBackup(records, u"/b/same.db"_s, day, morning.addDays(day)));
    QCOMPARE(goodBackups(records).size(), 1);
    QCOMPARE(goodBackups(records).constFirst().bytes, 2);
}

void KeptBackupsTest::noteThatFailsIsTold()
{
    SqliteDatabase database;
    QVERIFY(!into(database, openDatabase(path(u"shop.sqlite"_s), OpenMode::Write)));
    FussyRecords records(database.get());
    QVERIFY(!noteGoodBackup(records, u"/b/1.db"_s, 1, morning));
    bool isNoted = false;
    for (int failing = 0; !isNoted && failing < 50; ++failing) {
        records.texts.clear();
        records.failAt = failing;
        const auto failure = noteGoodBackup(records, u"/b/2.db"_s, 2, morning);
        records.failAt = -1;
        isNoted = records.texts.size() <= failing; // nothing failed any more
        QCOMPARE(failure.has_value(), !isNoted);
        QCOMPARE(goodBackups(records).size(), isNoted ? 2 : 1);
    }
    QVERIFY(isNoted);
}

void KeptBackupsTest::goneBackupDoesNotCount()
{
    const QString machine = QSysInfo::machineHostName();
    touch(u"away/old.db"_s);
    touch(u"away/changed.db"_s);
    const GoodBackup old = {morning, path(u"away/old.db"_s), 0, machine};
    const GoodBackup changed = {morning.addDays(3), path(u"away/changed.db"_s), 10, machine};
    const GoodBackup gone = {morning.addDays(4), path(u"away/gone.db"_s), 10, machine};
    const BackupState state = backupState({gone, changed, old}, morning.addDays(4));
    QVERIFY(state.last && state.isOverdue);
    QCOMPARE(state.last->file, old.file);
    QCOMPARE(state.gone, 2);
    QVERIFY(backupStateText(state, morning.addDays(4)).contains(u"4 days ago"_s));
    const BackupState none = backupState({gone}, morning.addDays(4));
    QVERIFY(!none.last && none.isOverdue);
    QVERIFY(backupStateText(none, morning).contains(u"not there any more"_s));
}

void KeptBackupsTest::awayBackupCounts()
{
    const GoodBackup stick = {morning, u"/media/no such stick/a.db"_s, 10, QSysInfo::machineHostName()};
    const BackupState state = backupState({stick}, morning.addDays(1));
    QVERIFY(state.last && !state.isOverdue);
    QVERIFY(backupStateText(state, morning).contains(u"whose folder is not there now"_s));
    const GoodBackup elsewhere = {morning, path(u"away/a.db"_s), 10, u"till-2"_s};
    const BackupState other = backupState({elsewhere}, morning.addDays(1));
    QVERIFY(other.last && !other.isOverdue);
    QVERIFY(backupStateText(other, morning).contains(u"on the computer \"till-2\""_s));
}

void KeptBackupsTest::overdue_data()
{
    QTest::addColumn<qint64>("age");
    QTest::addColumn<bool>("isOverdue");
    QTest::newRow("just made") << qint64{0} << false;
    QTest::newRow("two days") << qint64{48} * 3600 << false;
    QTest::newRow("a second more") << qint64{48} * 3600 + 1 << true;
    QTest::newRow("another machine's clock") << qint64{-3600} << false;
    QTest::newRow("a wrong clock") << qint64{-3601} << true;
}

void KeptBackupsTest::overdue()
{
    QFETCH(qint64, age);
    QFETCH(bool, isOverdue);
    touch(u"away/a.db"_s);
    const GoodBackup backup = {morning.toUTC(), path(u"away/a.db"_s), 0, QSysInfo::machineHostName()};
    QCOMPARE(backupState({backup}, morning.addSecs(age)).isOverdue, isOverdue);
}

HARROWBY_CORE_TEST(app_kept_backups_test, KeptBackupsTest)
#include "kept_backups_test.moc"
