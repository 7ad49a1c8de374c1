// SPDX-License-Identifier: MIT
#include "app/shop/busy_wait.h"
#include "app/shop/file_facts.h"
#include "app/shop/store_guard.h"
#include "app/shop/store_judge.h"
#include "tests/app/guarded_worker.h"
#include "tests/app/store_files.h"
#include "tests/app/store_guard_peace.h"
#include "tests/program/test_program.h"

#include <harrowby/sqlite_connection.h>

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <sqlite3.h>

#include <memory>
#include <vector>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::app::test;

namespace {

/// What somebody does to the store file $S in the folder; $O is another store.
struct Attack
{
    const char *name;
    const char *commands;
    StoreLoss::Kind kind;
};

constexpr Attack attacks[] = {
    {"rm", "rm $S", StoreLoss::Kind::Removed},
    {"rm with all beside it", "rm $S $S-wal $S-shm", StoreLoss::Kind::Removed},
    {"mv", "mv $S moved.sqlite", StoreLoss::Kind::Moved},
    {"mv over it", "mv $O $S", StoreLoss::Kind::Replaced},
    {"cp over it", "cp $O $S", StoreLoss::Kind::Overwritten},
    {"rm and cp", "rm $S && cp $O $S", StoreLoss::Kind::Replaced},
    {"mv and cp", "mv $S moved.sqlite && cp $O $S", StoreLoss::Kind::Replaced},
    {"truncate", "truncate -s 0 $S", StoreLoss::Kind::Overwritten},
    {"cut short", "truncate -s 8192 $S", StoreLoss::Kind::Overwritten},
    {"log removed", "rm $S-wal", StoreLoss::Kind::LogLost},
    {"log and index removed", "rm $S-wal $S-shm", StoreLoss::Kind::LogLost},
};

const QString lines = u"SELECT SystemUsage FROM SysUsage ORDER BY rowid"_s;

QByteArray bytesAt(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("none");
}

} // namespace

/// Files that are moved or replaced under a running till: acknowledged sales are kept, the file now at the path is
/// unchanged, and nothing more is acknowledged.
class StoreGuardTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void fileMoves_data();
    void fileMoves();
    void killedBeforeItIsNoticed_data();
    void killedBeforeItIsNoticed();
    void movedBetweenTheLookAndTheCommit();
    void aChangeOfNoRowFailsToo();
    void aHoldIsNotCommitted();
    void anOpenListEnds();
    void statementsWithoutALogFail();
    void closedBeforeItIsNoticed_data();
    void closedBeforeItIsNoticed();
    void aLinkThatLeadsElsewhereIsALoss();
    void failureSaysWhatHappened();
    void logOfAnotherFileIsNotPlayedIn();

private:
    [[nodiscard]] QString path(const QString &name = u"shop.sqlite"_s) const { return m_folder->filePath(name); }
    void attack(const QString &commands) { runInFolder(m_folder->path(), commands); }
    [[nodiscard]] std::unique_ptr<StoreGuard> guard() { return guardStore(path(), m_wait); }
    void checkPath(const QString &commands, const QStringList &acknowledged);

    QTemporaryDir m_templates;
    std::unique_ptr<QTemporaryDir> m_folder;
    BusyWait m_wait{std::chrono::seconds(5)};
    QByteArray m_other; ///< the bytes of the other store
};

void StoreGuardTest::initTestCase()
{
    // The other store is one that differs in a row and in nothing that stands in the file's header.
    const QString ours = m_templates.filePath(u"shop.sqlite"_s);
    const QString other = m_templates.filePath(u"other.sqlite"_s);
    makeStore(ours);
    QVERIFY(QFile::copy(ours, other));
    runAll(other, {u"INSERT INTO SysUsage (SystemUsage) VALUES ('of another store')"_s});
    QCOMPARE(bytesAt(ours).left(100), bytesAt(other).left(100));
    m_other = bytesAt(other);
}

void StoreGuardTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
    for (const QString &name : {u"shop.sqlite"_s, u"other.sqlite"_s})
        QVERIFY(QFile::copy(m_templates.filePath(name), path(name)));
}

/// The file at the path is what was put there, also when it is opened next.
void StoreGuardTest::checkPath(const QString &commands, const QStringList &acknowledged)
{
    if (commands.contains(u"$O"_s)) {
        QCOMPARE(bytesAt(path()), m_other);
        QCOMPARE(column(path(), lines), QStringList{u"of another store"_s});
        QCOMPARE(column(path(), u"PRAGMA integrity_check"_s), QStringList{u"ok"_s});
    } else if (commands.contains(u"truncate"_s)) {
        QCOMPARE(bytesAt(path()).size(), commands.contains(u"8192"_s) ? 8192 : 0);
        QVERIFY(QFile(logFileOf(path())).size() == 0);
    } else if (commands.contains(u"-wal"_s) && !commands.startsWith(u"rm $S "_s)) {
        QCOMPARE(column(path(), lines), acknowledged);
        QCOMPARE(column(path(), u"PRAGMA integrity_check"_s), QStringList{u"ok"_s});
    } else {
        QVERIFY(!QFile::exists(path()));
        QVERIFY(QFile(logFileOf(path())).size() == 0);
    }
}

void StoreGuardTest::fileMoves_data()
{
    QTest::addColumn<QString>("commands");
    QTest::addColumn<int>("kind");
    QTest::addColumn<QStringList>("roles");
    QTest::addColumn<bool>("killed");
    const std::pair<const char *, QStringList> crews[] = {
        {"till", {u"till"_s}}, {"office", {u"office"_s}}, {"both", {u"till"_s, u"office"_s}}};
    for (const Attack &attack : attacks) {
        for (const auto &[crew, roles] : crews) {
            for (const bool killed : {false, true})
                QTest::addRow("%s, %s, %s", attack.name, crew, killed ? "killed" : "closed")
                    << QString::fromLatin1(attack.commands) << static_cast<int>(attack.kind) << roles << killed;
        }
    }
}

void StoreGuardTest::fileMoves()
{
    QFETCH(const QString, commands);
    QFETCH(const int, kind);
    QFETCH(const QStringList, roles);
    QFETCH(const bool, killed);
    std::vector<std::unique_ptr<Worker>> crew;
    for (const QString &role : roles)
        crew.push_back(std::make_unique<Worker>(role, path()));
    QStringList acknowledged;
    const auto write = [&](Worker &worker, const QString &line) {
        if (worker.ask(u"write "_s + line) == u"ok"_s)
            acknowledged << line;
    };
    for (const QString &line : {u"one"_s, u"two"_s}) {
        for (const auto &worker : crew)
            write(*worker, line);
        if (line == u"one"_s)
            QCOMPARE(crew.front()->ask(u"tick"_s), u"fine"_s); // the second stays in the log
    }
    const QStringList before = acknowledged;
    QCOMPARE(before.size(), crew.size() * 2);

    attack(commands);
    for (const auto &worker : crew) {
        write(*worker, u"too late"_s);
        QVERIFY(worker->ask(u"touch"_s) != u"ok"_s);
        QVERIFY(worker->ask(u"read"_s) != u"ok"_s);
        QCOMPARE(worker->ask(u"tick"_s), QString::number(kind));
        write(*worker, u"far too late"_s);
    }
    QCOMPARE(acknowledged, before);

    const bool overwritten = kind == static_cast<int>(StoreLoss::Kind::Overwritten);
    const QString now = crew.front()->ask(u"now"_s);
    const QString aside = crew.front()->ask(u"aside"_s);
    QString kept = overwritten ? QString() : now;
    if (!overwritten && now.isEmpty()) {
        kept = path(u"rescue.sqlite"_s);
        QCOMPARE(crew.front()->ask(u"rescue "_s + kept), u"ok"_s);
    }
    for (const auto &worker : crew) {
        if (killed)
            worker->kill();
        else
            QCOMPARE(worker->close(), 0);
    }
    if (!killed && !overwritten)
        QVERIFY(!QFile::exists(logFileOf(path())) && !QFile::exists(logIndexOf(path())));
    checkPath(commands, before);
    if (overwritten) {
        QVERIFY2(QFile(aside).size() > 0, qPrintable(aside));
    } else {
        QCOMPARE(column(kept, lines), before);
        QCOMPARE(column(kept, u"PRAGMA integrity_check"_s), QStringList{u"ok"_s});
    }
}

void StoreGuardTest::killedBeforeItIsNoticed_data()
{
    QTest::addColumn<QString>("commands");
    for (const Attack &attack : attacks)
        QTest::newRow(attack.name) << QString::fromLatin1(attack.commands);
}

/// An idle till has emptied its log, so no log is left beside another file.
void StoreGuardTest::killedBeforeItIsNoticed()
{
    QFETCH(const QString, commands);
    Worker worker(u"till"_s, path());
    QCOMPARE(worker.ask(u"write one"_s), u"ok"_s);
    QCOMPARE(worker.ask(u"tick"_s), u"fine"_s);
    QCOMPARE(QFile(logFileOf(path())).size(), 0);
    attack(commands);
    worker.kill();
    checkPath(commands, {u"one"_s});
    if (QFile::exists(path(u"moved.sqlite"_s)))
        QCOMPARE(column(path(u"moved.sqlite"_s), lines), QStringList{u"one"_s});
}

void StoreGuardTest::movedBetweenTheLookAndTheCommit()
{
    const auto store = guard();
    SqliteConnection till(store->database());
    // Replaces the commit hook, which checks, by one that moves the file: only the check after the commit can see that.
    const auto move = [](void *self) {
        static_cast<StoreGuardTest *>(self)->attack(u"mv $S moved.sqlite"_s);
        return 0;
    };
    sqlite3_commit_hook(store->database(), move, this);
    QVERIFY(!till.Execute(u"INSERT INTO SysUsage (SystemUsage) VALUES ('one')"_s));
    QVERIFY(store->isLost());
    store->tick();
    QVERIFY(store->loss().isComplete);
    QCOMPARE(store->loss().nowAt, path(u"moved.sqlite"_s));
}

/// A statement that changes no row commits nothing, but must be refused as well.
void StoreGuardTest::aChangeOfNoRowFailsToo()
{
    const auto store = guard();
    attack(u"mv $S moved.sqlite"_s);
    QVERIFY(runSql(store->database(), u"UPDATE StockList SET StockAvailable = 1 WHERE StockID = 'none'"_s));
    QVERIFY(store->isLost());
    // Statements cannot even be prepared.
    sqlite3_stmt *statement = nullptr;
    QCOMPARE(sqlite3_prepare_v2(store->database(), "SELECT 1", -1, &statement, nullptr), SQLITE_AUTH);
}

void StoreGuardTest::aHoldIsNotCommitted()
{
    const auto store = guard();
    QVERIFY(!runSql(store->database(), u"BEGIN IMMEDIATE"_s));
    QVERIFY(!runSql(store->database(), u"UPDATE StockList SET StockAvailable = StockAvailable + 1"_s));
    attack(u"mv $S moved.sqlite"_s);
    QVERIFY(runSql(store->database(), u"COMMIT"_s));
    QVERIFY(store->isLost());
    store->tick();
    QVERIFY(store->loss().isComplete);
    QCOMPARE(column(path(u"moved.sqlite"_s), u"SELECT StockAvailable FROM StockList"_s), QStringList{u"20"_s});
}

/// A SELECT under way when the file is lost fails; the log is checkpointed once it has ended.
void StoreGuardTest::anOpenListEnds()
{
    const auto store = guard();
    QVERIFY(!runSql(store->database(), u"INSERT INTO SysUsage (SystemUsage) VALUES ('one'), ('two'), ('three')"_s));
    const QSignalSpy changes(store.get(), &StoreGuard::lossChanged);
    {
        SqliteStatement list(store->database(), lines);
        QVERIFY(list.next());
        attack(u"mv $S moved.sqlite"_s);
        store->tick();
        QVERIFY(store->isLost() && !store->loss().isComplete);
        QVERIFY(!list.next());
        QVERIFY(list.error());
        QCOMPARE(list.error()->code, SQLITE_READONLY_DBMOVED);
    }
    store->tick();
    QVERIFY(store->loss().isComplete);
    QCOMPARE(changes.size(), 2);
    QCOMPARE(column(path(u"moved.sqlite"_s), u"SELECT count(*) FROM SysUsage"_s), QStringList{u"3"_s});
}

void StoreGuardTest::statementsWithoutALogFail()
{
    runAll(path(), {u"PRAGMA journal_mode = DELETE"_s});
    SqliteDatabase reader;
    QVERIFY(!into(reader, openDatabase(path(), OpenMode::Read)));
    std::unique_ptr<StoreGuard> store;
    {
        SqliteStatement reading(reader.get(), u"SELECT * FROM StockList"_s);
        QVERIFY(reading.next()); // an open read blocks the checkpoint
        store = guard();
    }
    QCOMPARE(readText(store->database(), u"PRAGMA journal_mode"_s), u"delete"_s);
    const auto add = u"INSERT INTO SysUsage (SystemUsage) VALUES ('one')"_s;
    QVERIFY(!runSql(store->database(), add));
    store->tick();
    QVERIFY(!store->isLost());
    attack(u"mv $S moved.sqlite"_s);
    QVERIFY(runSql(store->database(), add));
    store->tick();
    QVERIFY(store->isLost() && store->loss().isComplete);
    store.reset();
    QCOMPARE(column(path(u"moved.sqlite"_s), lines), QStringList{u"one"_s});
}

void StoreGuardTest::closedBeforeItIsNoticed_data()
{
    killedBeforeItIsNoticed_data();
}

/// Closing checks first: the log goes into the file that was opened, not into the one at the path.
void StoreGuardTest::closedBeforeItIsNoticed()
{
    QFETCH(const QString, commands);
    Worker worker(u"till"_s, path());
    QCOMPARE(worker.ask(u"write one"_s), u"ok"_s);
    attack(commands);
    QCOMPARE(worker.close(), 0);
    checkPath(commands, {u"one"_s});
    if (QFile::exists(path(u"moved.sqlite"_s)))
        QCOMPARE(column(path(u"moved.sqlite"_s), lines), QStringList{u"one"_s});
}

void StoreGuardTest::aLinkThatLeadsElsewhereIsALoss()
{
    QVERIFY(QFile::rename(path(), path(u"real.sqlite"_s)));
    attack(u"ln -s real.sqlite $S"_s);
    const auto store = guard();
    QVERIFY(!runSql(store->database(), u"INSERT INTO SysUsage (SystemUsage) VALUES ('one')"_s));
    attack(u"ln -sf $O $S"_s);
    store->tick();
    QVERIFY(store->isLost());
    QVERIFY(store->loss().kind == StoreLoss::Kind::Replaced);
    QCOMPARE(store->loss().nowAt, path(u"real.sqlite"_s));
    QVERIFY(store->loss().isComplete);
}

void StoreGuardTest::failureSaysWhatHappened()
{
    const auto store = guard();
    SqliteConnection till(store->database());
    DbFailure heard;
    till.setFailureHandler([&](const DbFailure &failure) { heard = store->explained(failure); });
    QVERIFY(!till.Execute(u"UPDATE Nowhere SET A = 1"_s));
    QVERIFY(heard.reason.contains(u"Nowhere"_s));
    attack(u"mv $S moved.sqlite"_s);
    const auto sale = u"UPDATE StockList SET StockAvailable = 1"_s;
    QVERIFY(!till.Execute(sale));
    QCOMPARE(heard.statement, sale);
    QCOMPARE(heard.engineCode, SQLITE_READONLY_DBMOVED);
    QCOMPARE(heard.reason, u"The store file \"%1\" was moved or renamed while it was in use."_s.arg(path()));
}

/// A till that is killed right after a sale leaves a log, which is marked with its file's inode.
void StoreGuardTest::logOfAnotherFileIsNotPlayedIn()
{
    Worker worker(u"till"_s, path());
    QCOMPARE(worker.ask(u"write one"_s), u"ok"_s);
    attack(u"mv $S moved.sqlite && cp $O $S"_s);
    worker.kill();
    QVERIFY(QFile(logFileOf(path())).size() > 0);
    const Bytes before = bytesOf(path());
    const auto problem = judgeStore(path(), m_wait);
    QVERIFY(problem);
    QVERIFY2(problem->kind == ProblemKind::ForeignLog, qPrintable(problem->text));
    QVERIFY(bytesOf(path()) == before);
    // With the log moved beside its file again, both are one store.
    attack(u"mv moved.sqlite $S"_s);
    QVERIFY(!judgeStore(path(), m_wait));
    QCOMPARE(column(path(), lines), QStringList{u"one"_s});
}

int app_store_guard_test(int argc, char **argv)
{
    if (isWorker(argc, argv))
        return runWorker(argc, argv);
    const QCoreApplication application(argc, argv);
    StoreGuardTest test;
    const int failures = QTest::qExec(&test, argc, argv);
    return failures + runPeaceTest(argc, argv);
}

#include "store_guard_test.moc"
