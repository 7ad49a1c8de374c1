// SPDX-License-Identifier: MIT
#include "app/backup/good_backups.h"
#include "app/backup/store_users.h"
#include "app/cash/run_locks.h"
#include "app/records/deeds.h"
#include "app/records/sqlite_records.h"
#include "app/shop/busy_wait.h"
#include "app/shop/schema.h"
#include "app/shop/store_judge.h"
#include "app/shop/store_open.h"
#include "tests/app/full_disk.h"
#include "tests/app/restore_desk.h"
#include "tests/app/store_files.h"
#include "tests/program/test_program.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QSysInfo>
#include <QTest>

#include <sqlite3.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <optional>
#include <thread>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::app::test;

using Outcome = RestoreResult::Outcome;

/// A backup that takes the place of a store.
class RestoreTest : public RestoreDesk
{
    Q_OBJECT

private Q_SLOTS:
    void storeHoldsWhatTheBackupHeld();
    void otherPageSize_data();
    void otherPageSize();
    void foreignFileIsRestored();
    void backupOnAReadOnlyMedium();
    void whatIsOnlyAddedToIsCarriedOver();
    void badBackupIsRefused_data();
    void badBackupIsRefused();
    void foreignStoreIsRefused();
    void openStoreIsRefused();
    void openFileIsNamed();
    void livingTillIsSeen();
    void tillComesInToTheRestoredStore();
    void tillThatSellsAtOnceIsNoFault();
    void stopLeavesTheStore();
    void fullDiskLeavesTheStore_data();
    void fullDiskLeavesTheStore();
    void placeThatCannotKeepStopsIt();
    void killLeavesOldOrNew_data();
    void killLeavesOldOrNew();

private:
    [[nodiscard]] static QStringList items(const QString &file)
    {
        return column(file, u"SELECT StockName FROM StockList ORDER BY rowid"_s);
    }
    [[nodiscard]] QStringList everything() const
    {
        return QDir(m_folder->path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }
    void verifyUntouched() const;
    /// How often the watch is called by this thread; a check has another one call it now and then.
    [[nodiscard]] int stepsOf(const RestoreOrder &order) const;
};

void RestoreTest::verifyUntouched() const
{
    QCOMPARE(items(store()), QStringList{u"TEA"_s});
    BusyWait wait;
    QVERIFY(!judgeStore(store(), wait));
    verifyNoLeftovers();
}

void RestoreTest::storeHoldsWhatTheBackupHeld()
{
    const QStringList items = RestoreTest::items(store());
    const QStringList usage = column(store(), u"SELECT count(*) FROM SysUsage"_s);
    const ino_t inode = [this] {
        struct stat facts = {};
        return ::stat(QFile::encodeName(store()).constData(), &facts) == 0 ? facts.st_ino : 0;
    }();
    QStringList said;
    int last = 0;
    const RestoreResult result = restore([&](const WorkStep &step) {
        if (said.isEmpty() || said.constLast() != step.words)
            said << step.words;
        last = step.percent;
        return true;
    });
    QCOMPARE(result.problem, QString());
    QCOMPARE(result.outcome, Outcome::Done);
    QVERIFY(result.isReplaced && said.size() >= 5);
    QCOMPARE(last, WorkStep::unknown);

    QCOMPARE(RestoreTest::items(store()), QStringList{u"OLD TEA"_s});
    QCOMPARE(column(store(), u"PRAGMA journal_mode"_s), QStringList{u"wal"_s});
    QCOMPARE(column(store(), u"PRAGMA integrity_check"_s), QStringList{u"ok"_s});
    QCOMPARE(column(store(), u"PRAGMA application_id"_s), QStringList{QString::number(storeApplicationId)});
    QVERIFY(bytesOf(store()).log.isEmpty() && bytesOf(store()).journal.isEmpty());
    struct stat facts = {};
    QCOMPARE(::stat(QFile::encodeName(store()).constData(), &facts), 0);
    QCOMPARE(facts.st_ino, inode); // its very file

    QCOMPARE(RestoreTest::items(result.kept), items);
    QCOMPARE(column(result.kept, u"SELECT count(*) FROM SysUsage"_s), usage);
    QVERIFY2(QFileInfo(result.kept).fileName().startsWith(u"shop-before-restore-"_s), qPrintable(result.kept));
    QCOMPARE(column(store(), u"select Kind || Who || Place from HarrowbyActivity"_s),
             QStringList{u"RestoredANNAoffice"_s});
    QCOMPARE(everything(), (QStringList{u"kept"_s, u"old.db"_s, u"shop.sqlite"_s}));
    QCOMPARE(RestoreTest::items(backup()), QStringList{u"OLD TEA"_s});
}

void RestoreTest::otherPageSize_data()
{
    QTest::addColumn<int>("bytes");
    for (const int bytes : {512, 1024, 8192, 65536})
        QTest::newRow(qPrintable(QString::number(bytes))) << bytes;
}

void RestoreTest::otherPageSize()
{
    QFETCH(int, bytes);
    runAll(backup(), {u"PRAGMA page_size = %1"_s.arg(bytes), u"VACUUM"_s});
    QCOMPARE(restore().problem, QString());
    QCOMPARE(items(store()), QStringList{u"OLD TEA"_s});
    QCOMPARE(column(store(), u"PRAGMA page_size"_s), QStringList{QString::number(bytes)});
    QCOMPARE(column(store(), u"PRAGMA journal_mode"_s), QStringList{u"wal"_s});
    QCOMPARE(column(store(), u"PRAGMA integrity_check"_s), QStringList{u"ok"_s});
    BusyWait wait;
    QVERIFY(openStore(store(), wait));
}

/// Of another program: another application id, no indexes, a log of its own.
void RestoreTest::foreignFileIsRestored()
{
    runAll(backup(), {u"PRAGMA application_id = 7"_s, u"PRAGMA journal_mode = WAL"_s});
    for (const StoreIndex &index : storeIndexes())
        runAll(backup(), {u"DROP INDEX IF EXISTS "_s + index.name});
    QCOMPARE(restore().problem, QString());
    QCOMPARE(items(store()), QStringList{u"OLD TEA"_s});
    QCOMPARE(column(store(), u"PRAGMA application_id"_s), QStringList{u"7"_s});
    QVERIFY(
        !column(store(), u"SELECT name FROM sqlite_master WHERE type = 'index' AND name LIKE 'harrowby%'"_s).isEmpty());
}

void RestoreTest::backupOnAReadOnlyMedium()
{
    for (const QString &mode : {u"WAL"_s, u"DELETE"_s}) {
        runAll(backup(), {u"PRAGMA journal_mode = "_s + mode, u"UPDATE StockList SET StockName = 'OF %1'"_s.arg(mode)});
        QVERIFY(QDir(m_folder->path()).mkdir(u"stick "_s + mode));
        RestoreOrder order = this->order();
        order.backup = path(u"stick %1/old.db"_s.arg(mode));
        QVERIFY(QFile::copy(backup(), order.backup));
        QVERIFY(QFile::setPermissions(order.backup, QFile::Permissions(0x4444)));
        QVERIFY(QFile::setPermissions(path(u"stick "_s + mode), QFile::Permissions(0x5555)));
        QCOMPARE(restoreStore(order, carryOn).problem, QString());
        QCOMPARE(items(store()), QStringList{u"OF "_s + mode});
        QVERIFY(QFile::setPermissions(path(u"stick "_s + mode), QFile::Permissions(0x7777)));
    }
}

void RestoreTest::whatIsOnlyAddedToIsCarriedOver()
{
    const auto add = [](const QString &file, const QString &what) {
        SqliteDatabase database;
        QVERIFY(!into(database, openDatabase(file, OpenMode::Write)));
        SqliteRecords records(database.get());
        QVERIFY(!Deeds(records, officePlace).add({deed::exported, u"ANNA"_s, what}));
        QVERIFY(!noteGoodBackup(records, u"/b/%1.db"_s.arg(what), 1, QDateTime::currentDateTimeUtc()));
    };
    add(store(), u"before"_s);
    QCOMPARE(restore().problem, QString()); // the deed of the restored one as well
    add(store(), u"later"_s);
    runAll(store(), kept::drawerOpening().making +
                        QStringList{u"insert into HarrowbyDrawerOpening values ('1', '', 'ANNA', '', 'change')"_s});
    runAll(store(),
           {u"update HarrowbySetting set Value = replace(Value, '%1', 'till-2')"_s.arg(QSysInfo::machineHostName())});
    QVERIFY(QFile::remove(backup()));
    QVERIFY(QFile::copy(path(u"kept/"_s + QDir(path(u"kept"_s)).entryList(QDir::Files).constFirst()), backup()));
    QCOMPARE(restore().problem, QString());
    QCOMPARE(column(store(), u"select What from HarrowbyActivity where Kind = 'Exported' order by What"_s),
             (QStringList{u"before"_s, u"later"_s}));
    QCOMPARE(column(store(), u"select count(*) from HarrowbyActivity where Kind = 'Restored'"_s), QStringList{u"2"_s});
    SqliteDatabase database;
    QVERIFY(!into(database, openDatabase(store(), OpenMode::Write)));
    SqliteRecords records(database.get());
    QCOMPARE(readText(database.get(), u"select Reason from HarrowbyDrawerOpening"_s), u"change"_s);
    QCOMPARE(goodBackups(records).size(), 2); // the kept stores are none of this one
    QCOMPARE(goodBackups(records).constFirst().machine, u"till-2"_s);
    QVERIFY(runSql(database.get(), u"delete from HarrowbyActivity"_s));
}

void RestoreTest::badBackupIsRefused_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("said");
    QTest::newRow("missing") << u"none.db"_s << u"There is no file"_s;
    QTest::newRow("a folder") << u"kept"_s << u"There is no file"_s;
    QTest::newRow("the store itself") << u"shop.sqlite"_s << u"the store file itself"_s;
    QTest::newRow("a link to it") << u"link"_s << u"the store file itself"_s;
    QTest::newRow("its log") << u"shop.sqlite-wal"_s << u"the store file itself"_s;
    QTest::newRow("empty") << u"empty"_s << u"is empty"_s;
    QTest::newRow("a text") << u"text"_s << u"not an SQLite database"_s;
    QTest::newRow("no store") << u"other.db"_s << u"lacks the table"_s;
    QTest::newRow("damaged") << u"damaged.db"_s << u"damaged"_s;
    QTest::newRow("cut short") << u"short.db"_s << u"damaged"_s;
}

void RestoreTest::badBackupIsRefused()
{
    QFETCH(QString, name);
    QFETCH(QString, said);
    QVERIFY(QFile::link(store(), path(u"link"_s)));
    QVERIFY(QFile(path(u"empty"_s)).open(QIODevice::WriteOnly));
    QFile text(path(u"text"_s));
    QVERIFY(text.open(QIODevice::WriteOnly) && text.write(QByteArray(2000, 't')) == 2000 && text.flush());
    runAll(path(u"other.db"_s), {u"CREATE TABLE Other (x)"_s});
    QVERIFY(QFile::copy(store(), path(u"damaged.db"_s)) && QFile::copy(store(), path(u"short.db"_s)));
    spoil(path(u"damaged.db"_s), 40000, 20000);
    QVERIFY(QFile::resize(path(u"short.db"_s), QFileInfo(store()).size() / 8192 * 4096));
    RestoreOrder order = this->order();
    order.backup = path(name);
    const RestoreResult result = restoreStore(order, carryOn);
    QCOMPARE(result.outcome, Outcome::Failed);
    QVERIFY2(result.problem.contains(said), qPrintable(result.problem));
    QVERIFY(result.kept.isEmpty() && !result.isReplaced);
    verifyUntouched();
}

/// A sound file that is no store may be another program's. A damaged one: damaged_restore_test.cpp.
void RestoreTest::foreignStoreIsRefused()
{
    runAll(store(), {u"DROP TABLE Users"_s});
    const QByteArray before = bytesOf(store()).file;
    const RestoreResult result = restore();
    QCOMPARE(result.outcome, Outcome::Failed);
    QVERIFY2(result.problem.contains(u"lacks the table Users"_s) &&
                 result.problem.contains(u"copy the backup to its place"_s),
             qPrintable(result.problem));
    QCOMPARE(bytesOf(store()).file, before);
}

void RestoreTest::openStoreIsRefused()
{
    BusyWait wait;
    SqliteDatabase till;
    QCOMPARE(into(till, openStore(store(), wait)).has_value(), false);
    const RestoreResult result = restore();
    QCOMPARE(result.outcome, Outcome::Failed);
    QVERIFY2(result.problem.contains(u"needs the store for itself"_s), qPrintable(result.problem));
    QVERIFY(!runSql(till.get(), u"UPDATE StockList SET StockID = 'STILL SELLING'"_s));
    till.reset();
    verifyUntouched();
    QCOMPARE(restore().problem, QString());
}

void RestoreTest::openFileIsNamed()
{
    QProcess other;
    other.start(u"sh"_s, {u"-c"_s, u"exec 3<\"$1\"; echo open; read end"_s, u"sh"_s, store()});
    QVERIFY(other.waitForReadyRead());
    const StoreUsers users = findStoreUsers(store());
    QCOMPARE(users.programs.size(), 1);
    QCOMPARE(users.programs.constFirst().process, other.processId());
    const RestoreResult result = restore();
    QCOMPARE(result.outcome, Outcome::Failed);
    QVERIFY2(result.problem.contains(u"(process %1)"_s.arg(other.processId())), qPrintable(result.problem));
    other.write("\n");
    QVERIFY(other.waitForFinished());
    verifyUntouched();
    QCOMPARE(restore().problem, QString());
}

/// Also one that holds no lock of SQLite's, as in a folder of the network.
void RestoreTest::livingTillIsSeen()
{
    runAll(store(), {u"PRAGMA journal_mode = DELETE"_s});
    {
        FileRunLocks till(store());
        QVERIFY(till.hold(3));
        const RestoreResult result = restore();
        QCOMPARE(result.outcome, Outcome::Failed);
        QVERIFY2(result.problem.contains(u"a till, under another user name or on another computer"_s),
                 qPrintable(result.problem));
        verifyUntouched();
    }
    QCOMPARE(restore().problem, QString());
}

/// A process of its own restores: locks of one process do not keep it out itself.
void RestoreTest::tillComesInToTheRestoredStore()
{
    char sign = 'r';
    int ends[2] = {};
    QCOMPARE(::socketpair(AF_UNIX, SOCK_STREAM, 0, ends), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        bool isMet = false;
        const RestoreResult result = restore([&](const WorkStep &step) {
            if (!isMet && step.words.contains(u"put in place"_s))
                isMet = ::write(ends[1], &sign, 1) == 1 && ::read(ends[1], &sign, 1) == 1;
            return true;
        });
        ::_exit(isMet && result.outcome == Outcome::Done ? 0 : 1);
    }
    QVERIFY(::close(ends[1]) == 0); // a restore that ends is heard
    QCOMPARE(::read(ends[0], &sign, 1), ssize_t(1));
    BusyWait brief(std::chrono::milliseconds(5));
    const auto refused = openStore(store(), brief);
    QVERIFY(!refused && refused.error().text.contains(u"is locked by another program"_s));
    int pauses = 0;
    BusyWait wait(wait_times::longest, [&](std::chrono::milliseconds pause) {
        if (pauses++ == 0)
            QCOMPARE(::write(ends[0], &sign, 1), ssize_t(1));
        std::this_thread::sleep_for(pause);
    });
    SqliteDatabase till;
    QVERIFY(!into(till, openStore(store(), wait)));
    QCOMPARE(readText(till.get(), u"SELECT StockName FROM StockList"_s), u"OLD TEA"_s);
    QVERIFY(!runSql(till.get(), u"INSERT INTO SysUsage VALUES ('sold', '', '')"_s));
    int status = 0;
    QVERIFY(::waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0);
    QCOMPARE(readText(till.get(), u"SELECT count(*) FROM SysUsage WHERE SystemUsage = 'sold'"_s), u"1"_s);
}

void RestoreTest::tillThatSellsAtOnceIsNoFault()
{
    const RestoreResult result = restore([this](const WorkStep &step) {
        if (step.words.contains(u"being opened"_s))
            runAll(store(), {u"INSERT INTO SysUsage VALUES ('sold', '', '')"_s, u"DELETE FROM StockList"_s});
        return true;
    });
    QCOMPARE(result.problem, QString());
}

int RestoreTest::stepsOf(const RestoreOrder &order) const
{
    const QString aside = path(u"aside.sqlite"_s);
    (void)QFile::remove(aside);
    if (!QFile::copy(order.store, aside))
        return 0;
    int steps = 0;
    RestoreOrder tried = order;
    tried.store = aside;
    const RestoreResult result = restoreStore(tried, [&, own = std::this_thread::get_id()](const WorkStep &) {
        steps += std::this_thread::get_id() == own ? 1 : 0;
        return true;
    });
    (void)QFile::remove(aside);
    (void)QFile::remove(result.kept);
    return result.outcome == Outcome::Done ? steps : 0;
}

void RestoreTest::stopLeavesTheStore()
{
    const QStringList before = everything();
    for (const QString &at : {u"read"_s, u"checked"_s, u"nobody else"_s, u"kept"_s, u"put in place"_s}) {
        bool isReached = false;
        const RestoreResult result = restore([&](const WorkStep &step) {
            isReached = isReached || step.words.contains(at);
            return !isReached;
        });
        QVERIFY2(isReached, qPrintable(at));
        QCOMPARE(result.outcome, Outcome::Stopped);
        verifyUntouched();
        QCOMPARE(everything(), before);
    }
    // In the middle of the last step; so many pages do not go in at once.
    runAll(backup(), {u"INSERT INTO SysUsage VALUES (hex(zeroblob(1500000)), '', '')"_s});
    bool isReplacing = false;
    const RestoreResult result = restore([&](const WorkStep &step) {
        isReplacing = isReplacing || (step.words.contains(u"put in place"_s) && step.percent > 0);
        return !isReplacing;
    });
    QVERIFY(isReplacing);
    QCOMPARE(result.outcome, Outcome::Stopped);
    QVERIFY(!result.isReplaced);
    verifyUntouched();
}

void RestoreTest::fullDiskLeavesTheStore_data()
{
    QTest::addColumn<QString>("at");
    QTest::addColumn<int>("limit");
    QTest::addColumn<int>("more");
    QTest::addColumn<bool>("isKept");
    QTest::newRow("the copy of the backup, at once") << u"read"_s << 20000 << 0 << false;
    QTest::newRow("the copy of the backup") << u"read"_s << 600000 << 0 << false;
    QTest::newRow("the copy of the store") << u"kept"_s << 100000 << 1000000 << false;
    QTest::newRow("the deed") << u"kept"_s << 100000 << 0 << true;
    QTest::newRow("the store") << u"put in place"_s << 600000 << 0 << true;
}

void RestoreTest::fullDiskLeavesTheStore()
{
    QFETCH(QString, at);
    QFETCH(int, limit);
    QFETCH(int, more);
    QFETCH(bool, isKept);
    // A backup larger than the store, which grows by it; but for the row whose store is not copied in one step.
    runAll(store(), {u"INSERT INTO SysUsage VALUES (hex(zeroblob(%1)), '', '')"_s.arg(more)});
    runAll(backup(), {u"INSERT INTO SysUsage VALUES (hex(zeroblob(400000)), '', '')"_s});
    RestoreResult result;
    {
        std::optional<FullDisk> disk;
        result = restore([&](const WorkStep &step) {
            if (!disk && step.words.contains(at))
                disk.emplace(static_cast<rlim_t>(limit));
            return true;
        });
        QVERIFY(disk);
    }
    QCOMPARE(result.outcome, Outcome::Failed);
    QVERIFY2(result.problem.contains(at == u"kept"_s ? u"so nothing was restored"_s : u"is as it was"_s),
             qPrintable(result.problem));
    QCOMPARE(!result.kept.isEmpty(), isKept);
    QVERIFY(!result.isReplaced);
    verifyUntouched();
    QCOMPARE(restore().problem, QString());
}

void RestoreTest::placeThatCannotKeepStopsIt()
{
    RestoreOrder order = this->order();
    order.keepIn = path(u"nowhere"_s);
    const RestoreResult result = restoreStore(order, carryOn);
    QCOMPARE(result.outcome, Outcome::Failed);
    QVERIFY2(result.problem.contains(u"could not be kept, so nothing was restored"_s), qPrintable(result.problem));
    verifyUntouched();
}

void RestoreTest::killLeavesOldOrNew_data()
{
    QTest::addColumn<int>("pageSize");
    QTest::newRow("the same page size") << 4096;
    QTest::newRow("smaller pages") << 1024;
    QTest::newRow("larger pages") << 16384;
}

/// A process of its own is killed at its first step, its second one, and so on.
void RestoreTest::killLeavesOldOrNew()
{
    QFETCH(int, pageSize);
    runAll(backup(), {u"INSERT INTO SysUsage VALUES (hex(zeroblob(2000000)), '', '')"_s,
                      u"PRAGMA page_size = %1"_s.arg(pageSize), u"VACUUM"_s});
    runAll(store(), {u"INSERT INTO SysUsage VALUES (hex(zeroblob(3000000)), '', '')"_s});
    const QByteArray original = bytesOf(store()).file;
    const int steps = stepsOf(order());
    QVERIFY(steps > 15);
    int olds = 0;
    for (int at = steps; at > 0; at -= 1 + steps / 12) {
        const pid_t child = ::fork();
        if (child == 0) {
            int step = 0;
            (void)restore([&, own = std::this_thread::get_id()](const WorkStep &) {
                if (std::this_thread::get_id() == own && ++step == at)
                    ::raise(SIGKILL);
                return true;
            });
            ::_exit(0);
        }
        int status = 0;
        QCOMPARE(::waitpid(child, &status, 0), child);
        QVERIFY(WIFSIGNALED(status));
        BusyWait wait;
        QVERIFY(openStore(store(), wait));
        QCOMPARE(column(store(), u"PRAGMA integrity_check"_s), QStringList{u"ok"_s});
        const QStringList found = items(store());
        const bool isOld = found == QStringList{u"TEA"_s};
        QVERIFY(isOld || found == QStringList{u"OLD TEA"_s});
        QCOMPARE(column(store(), u"PRAGMA page_size"_s), QStringList{QString::number(isOld ? 4096 : pageSize)});
        olds += isOld ? 1 : 0;
        QVERIFY(QFile::remove(store()));
        QFile again(store());
        QVERIFY(again.open(QIODevice::WriteOnly) && again.write(original) == original.size());
    }
    QVERIFY(olds > 5);
    QCOMPARE(restore().problem, QString()); // and cleans up
    verifyNoLeftovers();
}

HARROWBY_CORE_TEST(app_restore_test, RestoreTest)
#include "restore_test.moc"
