// SPDX-License-Identifier: MIT
#include "tests/app/store_guard_peace.h"

#include "app/shop/busy_wait.h"
#include "app/shop/file_facts.h"
#include "app/shop/store_guard.h"
#include "tests/app/guarded_worker.h"
#include "tests/app/store_files.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <memory>
#include <vector>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::app::test;

namespace {

const QString usageLines = u"SELECT SystemUsage FROM SysUsage ORDER BY rowid"_s;

} // namespace

/// Several programs at one store that nobody moves: no loss may be reported.
class StoreGuardPeaceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        makeStore(path());
    }

    void ownWorkIsNoLoss();
    void otherTillsWorkIsNoLoss();
    void workAtTheSameTimeIsNoLoss();
    void aMoveUnderWayIsNoLoss();
    void openLogIsNotWaitedFor();

private:
    [[nodiscard]] QString path() const { return m_folder->filePath(u"shop.sqlite"_s); }

    std::unique_ptr<QTemporaryDir> m_folder;
    BusyWait m_wait{std::chrono::seconds(5)};
};

void StoreGuardPeaceTest::ownWorkIsNoLoss()
{
    {
        const auto store = guardStore(path(), m_wait);
        const auto many = u"INSERT INTO SysUsage WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n "
                          "WHERE i < 40000) SELECT printf('line %d of many', i), '', '' FROM n"_s;
        for (int i = 0; i < 4; ++i) {
            QVERIFY(!runSql(store->database(), many));
            QVERIFY(store->check());
            if (i % 2 == 0)
                store->tick();
            QVERIFY(!store->isLost());
        }
        store->tick();
        QCOMPARE(QFile(logFileOf(path())).size(), 0);
    }
    QVERIFY(!QFile::exists(logFileOf(path())));
    QCOMPARE(column(path(), u"SELECT count(*) FROM SysUsage"_s), QStringList{u"160000"_s});
}

void StoreGuardPeaceTest::otherTillsWorkIsNoLoss()
{
    Worker other(u"till"_s, path());
    const auto store = guardStore(path(), m_wait);
    const auto add = u"INSERT INTO SysUsage (SystemUsage) VALUES ('ours')"_s;
    for (int i = 0; i < 50; ++i) {
        QCOMPARE(other.ask(u"write theirs"_s), u"ok"_s);
        if (i % 3 == 0)
            QCOMPARE(other.ask(u"tick"_s), u"fine"_s);
        QVERIFY(!runSql(store->database(), add));
        if (i % 5 == 0)
            store->tick();
        QVERIFY(!store->isLost());
    }
    // A program without a StoreGuard.
    QProcess tool;
    tool.start(u"sqlite3"_s,
               {path(), u"INSERT INTO SysUsage VALUES ('tool', '', ''); PRAGMA wal_checkpoint(TRUNCATE);"_s});
    QVERIFY(tool.waitForFinished());
    store->tick();
    QVERIFY(!store->isLost());
    QCOMPARE(other.ask(u"tick"_s), u"fine"_s);
}

/// Each runs checkpoints at any time, and sees those of the others.
void StoreGuardPeaceTest::workAtTheSameTimeIsNoLoss()
{
    constexpr int writes = 200;
    std::vector<std::unique_ptr<Worker>> crew;
    for (const QString &role : {u"till"_s, u"office"_s, u"till"_s})
        crew.push_back(std::make_unique<Worker>(role, path()));
    for (const auto &worker : crew)
        worker->send(u"work %1"_s.arg(writes));
    for (const auto &worker : crew)
        QCOMPARE(worker->hear(), u"ok"_s);
    for (const auto &worker : crew)
        QCOMPARE(worker->close(), 0);
    QCOMPARE(column(path(), u"SELECT count(*) FROM SysUsage"_s), QStringList{QString::number(3 * writes)});
    QCOMPARE(column(path(), u"PRAGMA integrity_check"_s), QStringList{u"ok"_s});
}

/// While another program runs a checkpoint, the file changes at any moment; the wal-index shows that one is running.
void StoreGuardPeaceTest::aMoveUnderWayIsNoLoss()
{
    constexpr int movedOrTried = 128;
    Worker worker(u"till"_s, path());
    QCOMPARE(worker.ask(u"tick"_s), u"fine"_s);
    QFile index(logIndexOf(path()));
    QVERIFY(index.open(QIODevice::ReadWrite));
    uchar *bytes = index.map(0, 4096);
    QVERIFY(bytes != nullptr);
    ++bytes[movedOrTried];
    runInFolder(m_folder->path(), u"touch $S"_s);
    QCOMPARE(worker.ask(u"tick"_s), u"fine"_s);
    --bytes[movedOrTried];
    QCOMPARE(worker.ask(u"tick"_s), QString::number(static_cast<int>(StoreLoss::Kind::Overwritten)));
}

/// Another program that writes or reads keeps the log from being emptied; the checkpoint must not wait for it.
void StoreGuardPeaceTest::openLogIsNotWaitedFor()
{
    const auto store = guardStore(path(), m_wait);
    SqliteDatabase other;
    QVERIFY(!into(other, openDatabase(path(), OpenMode::Write)));
    QVERIFY(!runSql(other.get(), u"BEGIN IMMEDIATE"_s));
    QVERIFY(!runSql(other.get(), u"INSERT INTO SysUsage (SystemUsage) VALUES ('theirs')"_s));
    m_wait.refill();
    store->tick();
    QCOMPARE(m_wait.remaining(), std::chrono::milliseconds(5000));
    QVERIFY(!store->isLost());
    QVERIFY(!runSql(other.get(), u"COMMIT"_s));
    SqliteStatement reading(other.get(), usageLines);
    QVERIFY(reading.next());
    store->tick();
    QCOMPARE(m_wait.remaining(), std::chrono::milliseconds(5000));
    QVERIFY(QFile(logFileOf(path())).size() > 0);
}

int harrowby::app::test::runPeaceTest(int argc, char **argv)
{
    StoreGuardPeaceTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "store_guard_peace.moc"
