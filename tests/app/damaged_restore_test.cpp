// SPDX-License-Identifier: MIT
#include "app/records/deeds.h"
#include "app/records/sqlite_records.h"
#include "app/shop/busy_wait.h"
#include "app/shop/store_open.h"
#include "tests/app/full_disk.h"
#include "tests/app/restore_desk.h"
#include "tests/app/store_files.h"
#include "tests/program/test_program.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QSet>
#include <QTest>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <optional>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::app::test;

using Ending = RestoreResult::Outcome;

namespace {

ino_t inodeOf(const QString &file)
{
    struct stat facts = {};
    return ::stat(QFile::encodeName(file).constData(), &facts) == 0 ? facts.st_ino : 0;
}

void write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    QCOMPARE(file.write(bytes), bytes.size());
}

} // namespace

/// A backup that takes the place of a store which SQLite cannot read, or not to its end.
class DamagedRestoreTest : public RestoreDesk
{
    Q_OBJECT

private Q_SLOTS:
    void damagedStoreIsKeptAndReplaced_data();
    void damagedStoreIsKeptAndReplaced();
    void damagedLogIsKept_data();
    void damagedLogIsKept();
    void soundLogIsNoDamage();
    void whatCanBeReadIsCarriedOver();
    void damageThatIsSeenLate();
    void openDamagedStoreIsRefused();
    void fullDiskStopsItBeforeAnything();
    void fullDiskLeavesTheDamagedStore();
    void stopLeavesTheDamagedStore();
    void takenNamesAreLeft();
    void killLeavesOldBytesOrTheBackup_data();
    void killLeavesOldBytesOrTheBackup();

private:
    [[nodiscard]] QStringList kept() const { return QDir(path(u"kept"_s)).entryList(QDir::Files, QDir::Name); }
    /// In place of what init() has made.
    void damage(const QString &how) const;
    /// A log of a program that was killed, with three rows in it.
    void leaveLog() const;
    void verifyRestored(const RestoreResult &result, const Bytes &before) const;
    void verifyOld(const QByteArray &bytes) const;
    void setBytes(const Bytes &bytes) const;
};

void DamagedRestoreTest::damage(const QString &how) const
{
    static const QHash<QString, std::pair<int, int>> spoilt = {
        {u"a page in the middle"_s, {40000, 20000}},    {u"a torn header"_s, {0, 60}},
        {u"a header without its name"_s, {0, 3}},       {u"a first page torn behind its name"_s, {16, 4000}},
        {u"a version that forbids writing"_s, {18, 1}}, {u"a size of pages that none has"_s, {16, 2}},
    };
    const QByteArray bytes = bytesOf(store()).file;
    if (spoilt.contains(how))
        spoil(store(), spoilt.value(how).first, spoilt.value(how).second);
    else if (how == u"only zeros"_s)
        write(store(), QByteArray(bytes.size(), '\0'));
    else if (how == u"cut at a page"_s)
        QVERIFY(QFile::resize(store(), bytes.size() / 8192 * 4096));
    else if (how == u"cut within a page"_s)
        QVERIFY(QFile::resize(store(), bytes.size() / 2 + 77));
    else if (how == u"cut within its header"_s)
        QVERIFY(QFile::resize(store(), 50));
    else if (how == u"one byte"_s)
        write(store(), "x");
    else if (how == u"empty"_s)
        write(store(), {});
    else
        write(store(), QByteArray("no store, but another file\n").repeated(20000));
}

void DamagedRestoreTest::leaveLog() const
{
    const QString aside = path(u"aside.sqlite"_s);
    {
        SqliteDatabase till;
        QVERIFY(!into(till, openDatabase(store(), OpenMode::Write)));
        for (int row = 0; row < 3; ++row)
            QVERIFY(!runSql(till.get(), u"INSERT INTO SysUsage VALUES ('sold %1', '', '')"_s.arg(row)));
        copyAsAfterCrash(store(), aside);
    }
    copyAsAfterCrash(aside, store());
    QVERIFY(bytesOf(store()).log.size() > qint64{3} * 4096);
    QVERIFY(QFile::remove(aside) && QFile::remove(aside + u"-wal"_s));
}

void DamagedRestoreTest::setBytes(const Bytes &bytes) const
{
    write(store(), bytes.file);
    for (const auto &[ending, content] : {std::pair(u"-wal"_s, bytes.log), std::pair(u"-journal"_s, bytes.journal)}) {
        QFile::remove(store() + ending);
        if (!content.isEmpty())
            write(store() + ending, content);
    }
    QFile::remove(store() + u"-shm"_s);
}

void DamagedRestoreTest::verifyRestored(const RestoreResult &result, const Bytes &before) const
{
    QCOMPARE(result.problem, QString());
    QCOMPARE(result.outcome, Ending::Done);
    QVERIFY(result.isReplaced && !result.damaged.isEmpty());
    QCOMPARE(result.kept, result.damaged.constFirst());
    QVERIFY2(QFileInfo(result.kept).fileName().startsWith(u"shop-damaged-before-restore-"_s), qPrintable(result.kept));
    QVERIFY(bytesOf(result.kept) == before);
    QCOMPARE(QFile::permissions(result.kept) & (QFile::ReadGroup | QFile::ReadOther), QFile::Permissions());
    QCOMPARE(column(store(), u"SELECT StockName FROM StockList"_s), QStringList{u"OLD TEA"_s});
    QCOMPARE(column(store(), u"PRAGMA integrity_check"_s), QStringList{u"ok"_s});
    QVERIFY(column(store(), u"SELECT What FROM HarrowbyActivity WHERE Kind = 'Restored'"_s)
                .constFirst()
                .contains(result.kept));
    verifyNoLeftovers();
}

void DamagedRestoreTest::damagedStoreIsKeptAndReplaced_data()
{
    QTest::addColumn<int>("pageSize");
    const QStringList all = {u"a page in the middle"_s,
                             u"a torn header"_s,
                             u"a header without its name"_s,
                             u"a first page torn behind its name"_s,
                             u"a version that forbids writing"_s,
                             u"a size of pages that none has"_s,
                             u"only zeros"_s,
                             u"cut at a page"_s,
                             u"cut within a page"_s,
                             u"cut within its header"_s,
                             u"one byte"_s,
                             u"empty"_s,
                             u"garbage"_s};
    int row = 0;
    for (const QString &how : all) {
        const int size = std::array{4096, 1024, 65536}.at(row++ % 3);
        QTest::newRow(qPrintable(u"%1, pages of %2"_s.arg(how).arg(size))) << size;
    }
}

void DamagedRestoreTest::damagedStoreIsKeptAndReplaced()
{
    QFETCH(int, pageSize);
    runAll(backup(), {u"PRAGMA page_size = %1"_s.arg(pageSize), u"VACUUM"_s});
    damage(QString::fromLatin1(QTest::currentDataTag()).section(u',', 0, 0));
    const Bytes before = bytesOf(store());
    const ino_t inode = inodeOf(store());
    const RestoreResult result = restore();
    verifyRestored(result, before);
    QCOMPARE(result.damaged.size(), 1);
    QCOMPARE(inodeOf(store()), inode); // its very file
    QCOMPARE(column(store(), u"PRAGMA page_size"_s), QStringList{QString::number(pageSize)});
    const RestoreResult again = restore(); // of a sound store again
    QVERIFY(again.damaged.isEmpty() && again.kept.contains(u"shop-before-restore-"_s));
}

void DamagedRestoreTest::damagedLogIsKept_data()
{
    QTest::addColumn<int>("at");
    QTest::addColumn<QString>("storeToo");
    QTest::newRow("its head") << 5 << QString();
    QTest::newRow("its first row") << 1000 << QString();
    QTest::newRow("its second frame's salt") << 32 + 4120 + 10 << QString();
    QTest::newRow("and a page in the middle") << 5000 << u"a page in the middle"_s;
    QTest::newRow("and the header") << 5000 << u"a torn header"_s;
    QTest::newRow("and all of it") << 5000 << u"garbage"_s;
    QTest::newRow("and all of it, with a journal") << 5000 << u"garbage"_s;
}

void DamagedRestoreTest::damagedLogIsKept()
{
    QFETCH(int, at);
    QFETCH(QString, storeToo);
    leaveLog();
    spoil(store() + u"-wal"_s, at, 4);
    if (!storeToo.isEmpty())
        damage(storeToo);
    const bool hasJournal = QByteArray(QTest::currentDataTag()).endsWith("journal");
    if (hasJournal)
        write(store() + u"-journal"_s, QByteArray(5000, 'j'));
    const Bytes before = bytesOf(store());
    const RestoreResult result = restore();
    verifyRestored(result, before);
    const QStringList journal = hasJournal ? QStringList(result.kept + u"-journal"_s) : QStringList();
    QCOMPARE(result.damaged, QStringList({result.kept, result.kept + u"-wal"_s}) + journal);
}

/// A crash leaves such a log; also one that was begun anew over an older one.
void DamagedRestoreTest::soundLogIsNoDamage()
{
    leaveLog();
    const RestoreResult result = restore();
    QCOMPARE(result.problem, QString());
    QVERIFY(result.damaged.isEmpty());
    QCOMPARE(column(result.kept, u"SELECT count(*) FROM SysUsage WHERE rowid > 4000"_s), QStringList{u"3"_s});
    {
        const QString aside = path(u"aside.sqlite"_s);
        SqliteDatabase till;
        QVERIFY(!into(till, openDatabase(store(), OpenMode::Write)));
        QVERIFY(!runSql(till.get(), u"INSERT INTO SysUsage VALUES (hex(zeroblob(40000)), '', '')"_s));
        QVERIFY(!runSql(till.get(), u"PRAGMA wal_checkpoint(RESTART)"_s));
        QVERIFY(!runSql(till.get(), u"INSERT INTO SysUsage VALUES ('after it', '', '')"_s));
        copyAsAfterCrash(store(), aside);
        till.reset();
        copyAsAfterCrash(aside, store());
    }
    QVERIFY(bytesOf(store()).log.size() > 40000);
    const RestoreResult again = restore();
    QCOMPARE(again.problem, QString());
    QVERIFY(again.damaged.isEmpty());
    QCOMPARE(column(again.kept, u"SELECT count(*) FROM SysUsage WHERE SysUsage.rowid = "
                                "(SELECT max(rowid) FROM SysUsage)"_s),
             QStringList{u"1"_s});
}

void DamagedRestoreTest::whatCanBeReadIsCarriedOver()
{
    {
        SqliteDatabase database;
        QVERIFY(!into(database, openDatabase(store(), OpenMode::Write)));
        SqliteRecords records(database.get());
        QVERIFY(!Deeds(records, officePlace).add({deed::exported, u"ANNA"_s, u"before"_s}));
    }
    const auto deeds = u"SELECT Kind FROM HarrowbyActivity ORDER BY Kind"_s;
    const QByteArray sound = bytesOf(store()).file;
    damage(u"a page in the middle"_s); // not one of the deeds
    QCOMPARE(restore().problem, QString());
    QCOMPARE(column(store(), deeds), (QStringList{u"Exported"_s, u"Restored"_s}));
    // The deeds' own page: they stay in what is kept.
    setBytes({sound, {}, {}});
    const int page =
        column(store(), u"SELECT rootpage FROM sqlite_master WHERE name = 'HarrowbyActivity'"_s).constFirst().toInt();
    QVERIFY(page > 1);
    spoil(store(), (page - 1) * qint64{4096}, 4096);
    QCOMPARE(restore().problem, QString());
    QCOMPARE(column(store(), deeds), QStringList{u"Restored"_s});
}

/// The first look can be cut short; the copy's check sees it.
void DamagedRestoreTest::damageThatIsSeenLate()
{
    runAll(store(), {u"INSERT INTO SysUsage VALUES (hex(zeroblob(2000000)), '', '')"_s});
    bool isSpoilt = false;
    Bytes before;
    const RestoreResult result = restore([&](const WorkStep &step) {
        if (!isSpoilt && step.words.contains(u"present store is being kept"_s)) {
            isSpoilt = true;
            spoil(store(), 3000000, 20000);
            before.file = bytesOf(store()).file;
        }
        return true;
    });
    verifyRestored(result, before);
}

/// Damaged under a till that goes on.
void DamagedRestoreTest::openDamagedStoreIsRefused()
{
    std::array<int, 2> said = {};
    QCOMPARE(::pipe(said.data()), 0);
    const pid_t till = ::fork();
    if (till == 0) {
        BusyWait wait;
        const auto open = openStore(store(), wait);
        (void)runSql(open->get(), u"UPDATE StockList SET StockID = 'SELLING'"_s);
        (void)::write(said[1], ".", 1);
        ::pause();
    }
    char open = 0;
    QCOMPARE(::read(said[0], &open, 1), 1);
    for (const QString &how : {u"a page in the middle"_s, u"garbage"_s}) {
        damage(how);
        const Bytes before = bytesOf(store());
        const RestoreResult result = restore();
        QCOMPARE(result.outcome, Ending::Failed);
        QVERIFY2(result.problem.contains(u"(process %1)"_s.arg(till)), qPrintable(result.problem));
        QVERIFY(bytesOf(store()) == before);
        QCOMPARE(kept(), QStringList());
        verifyNoLeftovers();
    }
    ::kill(till, SIGKILL);
    QCOMPARE(::waitpid(till, nullptr, 0), till);
    const Bytes before = bytesOf(store());
    verifyRestored(restore(), before);
}

void DamagedRestoreTest::fullDiskStopsItBeforeAnything()
{
    for (const QString &how : {u"a page in the middle"_s, u"garbage"_s, u"with a journal"_s}) {
        init();
        damage(how);
        if (how == u"with a journal"_s)
            write(store() + u"-journal"_s, QByteArray(5000, 'j'));
        const Bytes before = bytesOf(store());
        RestoreResult result;
        {
            const FullDisk disk(static_cast<rlim_t>(before.file.size() - 5000));
            result = restore();
        }
        QCOMPARE(result.outcome, Ending::Failed);
        QVERIFY2(result.problem.contains(u"could not be kept, so nothing was restored"_s), qPrintable(result.problem));
        QVERIFY(bytesOf(store()) == before);
        QCOMPARE(kept(), QStringList());
        verifyNoLeftovers();
    }
}

void DamagedRestoreTest::fullDiskLeavesTheDamagedStore()
{
    runAll(backup(), {u"INSERT INTO SysUsage VALUES (hex(zeroblob(400000)), '', '')"_s});
    write(store(), QByteArray(40960, 'g'));
    const Bytes before = bytesOf(store());
    bool isReplacing = false;
    RestoreResult result;
    {
        std::optional<FullDisk> disk;
        result = restore([&](const WorkStep &step) {
            isReplacing = isReplacing || step.words.contains(u"put in place"_s);
            if (isReplacing && !disk)
                disk.emplace(rlim_t{200000});
            return true;
        });
    }
    QVERIFY(isReplacing && result.outcome == Ending::Failed && !result.isReplaced);
    QVERIFY2(result.problem.contains(result.kept), qPrintable(result.problem));
    QVERIFY(bytesOf(store()) == before && bytesOf(result.kept) == before);
    verifyRestored(restore(), before);
}

void DamagedRestoreTest::stopLeavesTheDamagedStore()
{
    for (const QString &how : {u"a page in the middle"_s, u"only zeros"_s}) {
        for (const QString &at : {u"read"_s, u"nobody else"_s, u"kept"_s, u"put in place"_s}) {
            init();
            damage(how);
            const QByteArray before = bytesOf(store()).file;
            bool isReached = false;
            const RestoreResult result = restore([&](const WorkStep &step) {
                isReached = isReached || step.words.contains(at);
                return !isReached;
            });
            QVERIFY2(isReached, qPrintable(at));
            QCOMPARE(result.outcome, Ending::Stopped);
            verifyOld(before);
            QCOMPARE(kept().size(), at == u"put in place"_s ? 1 : 0);
            verifyNoLeftovers();
        }
    }
}

/// Restores within one second.
void DamagedRestoreTest::takenNamesAreLeft()
{
    QSet<QString> names;
    for (const QString &how : {u"one byte"_s, u"garbage"_s, u"only zeros"_s}) {
        damage(how);
        const Bytes before = bytesOf(store());
        const RestoreResult result = restore();
        verifyRestored(result, before);
        names << result.kept;
    }
    QCOMPARE(names.size(), 3);
    QCOMPARE(kept().size(), 3);
}

void DamagedRestoreTest::killLeavesOldBytesOrTheBackup_data()
{
    QTest::addColumn<int>("pageSize");
    int row = 0;
    for (const QString &how :
         {u"a page in the middle"_s, u"a torn header"_s, u"only zeros"_s, u"cut at a page"_s, u"garbage"_s}) {
        const int size = row++ % 2 == 0 ? 4096 : 1024;
        QTest::newRow(qPrintable(u"%1, pages of %2"_s.arg(how).arg(size))) << size;
    }
}

/// But for the bytes of the header by which SQLite leaves a log, and zeros that fill its last page up.
void DamagedRestoreTest::verifyOld(const QByteArray &bytes) const
{
    const QByteArray now = bytesOf(store()).file;
    QVERIFY(now.size() - bytes.size() < 4096);
    QVERIFY(now.mid(100) == bytes.mid(100).leftJustified(now.size() - 100, '\0'));
}

/// A process of its own is killed at its first step, its second one, and so on; and the same command once more brings
/// it to its end.
void DamagedRestoreTest::killLeavesOldBytesOrTheBackup()
{
    QFETCH(int, pageSize);
    runAll(backup(), {u"INSERT INTO SysUsage VALUES (hex(zeroblob(1200000)), '', '')"_s,
                      u"PRAGMA page_size = %1"_s.arg(pageSize), u"VACUUM"_s});
    damage(QString::fromLatin1(QTest::currentDataTag()).section(u',', 0, 0));
    const Bytes original = bytesOf(store());
    // The checks count their steps by the time: on a machine that has become idle meanwhile there are fewer.
    const auto countedSteps = [&] {
        setBytes(original);
        int steps = 0;
        (void)restore([&](const WorkStep &) { return ++steps > 0; });
        return steps;
    };
    int torn = 0;
    int kills = 0;
    int at = countedSteps();
    QVERIFY(at > 0);
    for (int stride = 1 + at / 7; at > 0; at -= stride) {
        setBytes(original);
        const pid_t child = ::fork();
        if (child == 0) {
            int step = 0;
            (void)restore([&](const WorkStep &) {
                if (++step == at)
                    ::raise(SIGKILL);
                return true;
            });
            ::_exit(0);
        }
        int status = 0;
        QCOMPARE(::waitpid(child, &status, 0), child);
        kills += WIFSIGNALED(status) ? 1 : 0;
        torn += bytesOf(store()).journal.isEmpty() ? 0 : 1;
        (void)column(store(), u"SELECT 1 FROM sqlite_master"_s); // whoever opens it first undoes what is half done
        const bool isWhole = column(store(), u"PRAGMA integrity_check"_s) == QStringList{u"ok"_s};
        if (isWhole)
            QCOMPARE(column(store(), u"SELECT StockName FROM StockList"_s), QStringList{u"OLD TEA"_s});
        else
            verifyOld(original.file);
        const RestoreResult again = restore();
        QCOMPARE(again.problem, QString());
        QCOMPARE(again.damaged.isEmpty(), isWhole);
        QCOMPARE(column(store(), u"SELECT StockName FROM StockList"_s), QStringList{u"OLD TEA"_s});
        QCOMPARE(column(store(), u"PRAGMA integrity_check"_s), QStringList{u"ok"_s});
        verifyNoLeftovers();
        if (const int now = WIFSIGNALED(status) ? at : countedSteps(); now < at) {
            stride = 1 + now / 7;
            at = now + stride;
        }
    }
    QVERIFY2(torn > 0 && kills > 3, qPrintable(u"%1 torn of %2"_s.arg(torn).arg(kills)));
}

HARROWBY_CORE_TEST(app_damaged_restore_test, DamagedRestoreTest)
#include "damaged_restore_test.moc"
