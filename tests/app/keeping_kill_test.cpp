// SPDX-License-Identifier: MIT
#include "app/backup/kept_backups.h"
#include "app/backup/restore.h"
#include "app/catalogue/catalogue_import.h"
#include "app/catalogue/import_columns.h"
#include "app/records/deeds.h"
#include "app/records/file_records.h"
#include "app/shop/busy_wait.h"
#include "app/shop/store_open.h"
#include "tests/app/kill_steps.h"
#include "tests/app/quick_folder.h"
#include "tests/app/selling_till.h"
#include "tests/app/store_files.h"
#include "tests/doubles/database.h"
#include "tests/program/test_program.h"
#include "tests/support/forked_process.h"
#include "tests/support/till.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <limits>
#include <memory>
#include <thread>

#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::app::test;

namespace {

using harrowby::test::Database;
using harrowby::test::ForkedProcess;
using harrowby::test::KillSteps;

constexpr int items = 12;
constexpr int keptOnes = 3;

bool carryOn(const WorkStep &)
{
    return true;
}

bool copyOn(const BackupProgress &)
{
    return true;
}

/// The whole stock with other prices, levels, categories and codes than the list before, and an item that is new.
ImportFile priceList(int number)
{
    QByteArray text = "StockID,StockName,StockCategory,StockCost,StockReorderLevel,StockAvailable,StockUse,code\n";
    const QByteArray mark = QByteArray::number(number);
    for (int item = 0; item < items; ++item) {
        const QByteArray id = QByteArray::number(item);
        text += 'A' + id + ",NAME OF A" + id + ",KIND " + mark + ',' + mark + '.' + id + ',' + mark +
                ",,Enabled,CODE-" + mark + '-' + id + '\n';
    }
    text += "NEW" + mark + ",NAME OF NEW" + mark + ",KIND " + mark + ",1.00,2,0,Disabled,\n";
    return {u"/shop/list.csv"_s, text, QString::number(number)};
}

/// Stages and carries out a price list, and takes it back: killed at that step.
int importList(const QString &path, const QString &folder, int number, bool back, KillSteps steps)
{
    const auto own = FileRecords::open(path, Access::Write);
    if (!own)
        return 1;
    steps.watch((*own)->database());
    ImportDesk desk;
    desk.user = desk.who = u"JILL"_s;
    desk.place = officePlace;
    desk.store = path;
    desk.backupFolder = folder;
    CatalogueImport import((*own)->records(), desk);
    const ImportFile file = priceList(number);
    ImportChoices choices;
    choices.columns = matchColumns(ImportKind::Items, headingsOf(file.bytes, choices.form));
    const auto staged = import.stage(file, choices, carryOn);
    if (!staged)
        return 2;
    const auto outcome = import.apply(staged->id, true, &file, carryOn);
    if (!outcome || outcome->leftOut > 0)
        return 3;
    if (back) {
        const auto undone = import.takeBack(staged->id, carryOn);
        if (!undone || undone->leftOut > 0)
            return 4;
    }
    steps.step();
    return 0;
}

} // namespace

/// A program is killed while it imports, takes an import back, restores or makes backups: nothing is half done, nothing
/// is lost, and the next one clears up. HARROWBY_KILLS kills so many times each, HARROWBY_SEED begins elsewhere.
class KeepingKillTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void killedImport();
    void importKilledBesideATill();
    void killedRestore();
    void killedBackup();

private:
    [[nodiscard]] QString path(const QString &name) const { return m_folder->filePath(name); }
    [[nodiscard]] QString store() const { return path(u"shop.sqlite"_s); }
    [[nodiscard]] QString kept() const { return path(u"kept"_s); }
    /// All that imports write, and nothing that a till does.
    [[nodiscard]] QStringList catalogue() const;
    [[nodiscard]] int importsDone() const;
    void checkImport(int number, const QStringList &before, int doneBefore, const QString &where);
    void checkFile(const QString &path) const;
    void checkCopies() const;
    void checkSales(int said) const;
    /// Kills it at some moment of the time that it takes, or when it has ended already.
    void killSoon(ForkedProcess &process, qint64 nsecs);

    QTemporaryDir m_first;
    std::unique_ptr<QTemporaryDir> m_folder;
    QRandomGenerator m_random{static_cast<quint32>(wanted("HARROWBY_SEED", 1))};
    int m_kills = wanted("HARROWBY_KILLS", 20);
    int m_within = 0; ///< kills of the function under way that came before the end
};

void KeepingKillTest::initTestCase()
{
    const QString store = m_first.filePath(u"shop.sqlite"_s);
    makeSellingStore(store, items);
    // What is copied has opened a window once.
    QVERIFY(QFile::copy(store, m_first.filePath(u"other.sqlite"_s)));
    const harrowby::test::Till till(m_first.filePath(u"other.sqlite"_s), harrowby::test::Till::Pace::Hurried);
}

void KeepingKillTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>(quickFolder() + u"/kills-XXXXXX"_s); // copies are synced
    m_within = 0;
    QVERIFY(QDir(m_folder->path()).mkdir(u"kept"_s));
    QVERIFY(QFile::copy(m_first.filePath(u"shop.sqlite"_s), store()));
}

QStringList KeepingKillTest::catalogue() const
{
    const Database file(store());
    return file.rows(u"SELECT StockID, StockName, StockCategory, StockCost, StockReorderLevel, StockUse "
                     "FROM StockList ORDER BY StockID"_s) +
           file.rows(u"SELECT CategoryName FROM InventoryCategory ORDER BY 1"_s) +
           (file.rows(u"SELECT 1 FROM sqlite_schema WHERE name = 'HarrowbyCode'"_s).isEmpty()
                ? QStringList()
                : file.rows(u"SELECT Code, StockID, Units FROM HarrowbyCode ORDER BY 1"_s));
}

/// As the imports' own table has it, which must be what the deeds tell.
int KeepingKillTest::importsDone() const
{
    const Database file(store());
    if (file.rows(u"SELECT 1 FROM sqlite_schema WHERE name = 'HarrowbyImport'"_s).isEmpty())
        return 0;
    const int done = file.rows(u"SELECT count(*) FROM HarrowbyImport WHERE State IN ('APPLIED', 'SETTLED') "
                               "AND coalesce(TakenBackAt, '') = ''"_s)
                         .value(0)
                         .section(u'|', 0, 0)
                         .toInt();
    const QStringList deeds = file.rows(u"SELECT sum(Kind = '%1') - sum(Kind = '%2') FROM HarrowbyActivity"_s.arg(
        deed::imported, deed::importTakenBack));
    if (deeds.value(0).section(u'|', 0, 0).toInt() != done && !(done == 0 && deeds == QStringList{u"(failed)"_s}))
        QTest::qFail(qPrintable(u"deeds %1, imports %2"_s.arg(deeds.join(u' ')).arg(done)), __FILE__, __LINE__);
    return done;
}

void KeepingKillTest::checkFile(const QString &path) const
{
    QCOMPARE(Database(path).rows(u"PRAGMA integrity_check"_s).value(0).section(u'|', 0, 0), u"ok"_s);
}

/// Whatever bears a copy's name is a whole copy.
void KeepingKillTest::checkCopies() const
{
    for (const QFileInfo &copy : QDir(kept()).entryInfoList({u"*.db"_s}, QDir::Files)) {
        checkFile(copy.absoluteFilePath());
        QVERIFY2(!Database(copy.absoluteFilePath()).rows(u"SELECT StockID FROM StockList"_s).isEmpty(),
                 qPrintable(copy.fileName()));
    }
}

/// After a kill: the list is imported whole or not at all, the store knows which, and the next import clears up.
void KeepingKillTest::checkImport(int number, const QStringList &before, int doneBefore, const QString &where)
{
    checkFile(store());
    const QStringList found = catalogue();
    const int done = importsDone();
    QCOMPARE(importList(store(), kept(), number, false, {-1}), 0);
    const QStringList after = catalogue();
    QVERIFY2(after != before, qPrintable(where));
    QVERIFY2(found == before || found == after, qPrintable(where + u":\n"_s + found.join(u'\n')));
    QVERIFY2(done == doneBefore + (found == after ? 1 : 0), qPrintable(where + u": "_s + QString::number(done)));
    const Database file(store());
    QCOMPARE(file.rows(u"SELECT State FROM HarrowbyImport WHERE State LIKE 'STAG%'"_s), QStringList());
    for (const char *table : {"HarrowbyImportRow", "HarrowbyImportCode", "HarrowbyImportCategory"})
        QCOMPARE(file.rows(u"SELECT ImportID FROM %1 WHERE ImportID NOT IN (SELECT ImportID FROM HarrowbyImport)"_s.arg(
                     QLatin1StringView(table))),
                 QStringList());
}

void KeepingKillTest::killSoon(ForkedProcess &process, qint64 nsecs)
{
    const qint64 longest = m_random.bounded(nsecs * 5 / 2);
    QElapsedTimer timer;
    for (timer.start(); timer.nsecsElapsed() < longest;) {
    }
    process.kill();
    m_within += process.hasEnded() ? 0 : 1;
}

/// At steps all over the way: each row that is written, each commit, and the moment after it.
void KeepingKillTest::killedImport()
{
    int steps = 0;
    QCOMPARE(importList(store(), kept(), 1, true, {std::numeric_limits<int>::max(), [&] { ++steps; }}), 0);
    QVERIFY(steps > 100);
    int old = 0;
    for (int kill = 0; kill < m_kills; ++kill) {
        init();
        const int at = static_cast<int>(static_cast<qint64>(steps) * kill / m_kills) +
                       m_random.bounded(std::max(1, steps / m_kills));
        const QStringList before = catalogue();
        ForkedProcess office([&] { return importList(store(), kept(), 1, true, {at}); });
        (void)allSaid(office);
        office.kill();
        QVERIFY(!office.hasEnded());
        old += catalogue() == before ? 1 : 0;
        checkImport(1, before, 0, u"at step %1 of %2"_s.arg(at).arg(steps));
        checkCopies();
    }
    qInfo() << m_kills << "kills in imports," << old << "of them before the rows were in the store";
    QVERIFY(m_kills < 10 || (old > 0 && old < m_kills));
    QCOMPARE(QDir(kept()).entryList({u".harrowby*"_s}, QDir::AllEntries | QDir::Hidden), QStringList());
}

void KeepingKillTest::importKilledBesideATill()
{
    QElapsedTimer timer;
    timer.start();
    {
        ForkedProcess office([&] { return importList(store(), kept(), 1, true, {-1}); });
        (void)allSaid(office);
    }
    const qint64 usual = timer.nsecsElapsed();
    const QString end = path(u"end"_s);
    ForkedProcess till([&] { return sellUntil(store(), end); });
    QVERIFY(till.read().startsWith("SOLD"));
    int done = importsDone();
    int kill = 0;
    for (; m_within < m_kills; ++kill) {
        const QStringList before = catalogue();
        ForkedProcess office([&] { return importList(store(), kept(), 2 + kill, kill % 3 == 0, {-1}); });
        killSoon(office, usual);
        checkImport(2 + kill, before, done, u"kill %1"_s.arg(kill));
        done = importsDone();
    }
    QVERIFY(QFile(end).open(QIODevice::WriteOnly));
    const QByteArray said = allSaid(till);
    till.kill();
    QVERIFY(till.hasEnded());
    checkSales(static_cast<int>(said.count("SOLD")));
    qInfo() << m_within << "kills in imports beside a till, of" << kill << "begun";
    checkCopies();
}

/// What the till has sold is sold, and stands in its purchases.
void KeepingKillTest::checkSales(int said) const
{
    const Database file(store());
    const auto number = [&](const QString &select) { return file.rows(select).value(0).section(u'|', 0, 0).toInt(); };
    QVERIFY(said > 0 && number(u"SELECT count(*) FROM PurchaseCart"_s) >= said);
    QCOMPARE(
        number(u"SELECT %1 - sum(StockAvailable) FROM StockList WHERE StockID LIKE 'A%'"_s.arg(items * stockOfEach)),
        unitsSold(store()));
}

/// Nobody else may have the store open, so no till sells. Killed a moment after each of its steps.
void KeepingKillTest::killedRestore()
{
    const QStringList before = catalogue();
    const auto restore = [this](const WorkWatch &watch) {
        return restoreStore({path(u"old.db"_s), store(), u"JILL"_s, officePlace, kept()}, watch);
    };
    const auto begin = [this] {
        init();
        QVERIFY(QFile::copy(store(), path(u"old.db"_s)));
        runAll(path(u"old.db"_s), {u"UPDATE StockList SET StockCost = 9"_s});
    };
    begin();
    // Of its own thread: how often a check asks on another one is a matter of time.
    const auto isOwn = [own = std::this_thread::get_id()] { return std::this_thread::get_id() == own; };
    int steps = 0;
    const auto counting = [&](const WorkStep &) {
        steps += isOwn() ? 1 : 0;
        return true;
    };
    QCOMPARE(restore(counting).problem, QString());
    const QStringList restored = catalogue();
    QVERIFY(steps > 4 && restored != before);
    int replaced = 0;
    for (int kill = 0; kill < m_kills; ++kill) {
        begin();
        const int at = 1 + steps * kill / m_kills;
        const auto moment = static_cast<useconds_t>(m_random.bounded(1, 1500));
        int step = 0;
        ForkedProcess office([&] {
            (void)restore([&](const WorkStep &) { return !isOwn() || ++step != at || ::ualarm(moment, 0) == 0; });
            ::pause(); // for the alarm, which kills as SIGKILL does
            return 0;
        });
        (void)allSaid(office);
        {
            BusyWait wait;
            QVERIFY(openStore(store(), wait)); // the next start
        }
        checkFile(store());
        const QStringList found = catalogue();
        QVERIFY2(found == before || found == restored, qPrintable(found.join(u'\n')));
        replaced += found == restored ? 1 : 0;
        checkCopies();
        QCOMPARE(restore(carryOn).problem, QString());
        QCOMPARE(catalogue(), restored);
        QCOMPARE(QDir(m_folder->path()).entryList({u".harrowby*"_s}, QDir::AllEntries | QDir::Hidden), QStringList());
    }
    qInfo() << m_kills << "kills in restores," << replaced << "of them when the backup was in place";
    QVERIFY(replaced < m_kills);
}

void KeepingKillTest::killedBackup()
{
    const QString end = path(u"end"_s);
    ForkedProcess till([&] { return sellUntil(store(), end); });
    QVERIFY(till.read().startsWith("SOLD"));
    const QDateTime day(QDate(2026, 11, 22), QTime(9, 0));
    const auto keep = [&](int number) {
        return keepBackup(store(), kept(), keptOnes, day.addSecs(number), copyOn).result.outcome ==
                       BackupResult::Outcome::Done
                   ? 0
                   : 1;
    };
    QElapsedTimer timer;
    timer.start();
    for (int number = 0; number < keptOnes; ++number)
        QCOMPARE(keep(number), 0);
    const qint64 usual = timer.nsecsElapsed() / keptOnes;
    int kill = 0;
    for (; m_within < m_kills; ++kill) {
        const int number = keptOnes + 2 * kill;
        ForkedProcess night([&] { return keep(number); });
        killSoon(night, usual);
        const auto left = keptBackups(kept(), store()).size();
        QVERIFY2(left == keptOnes || left == keptOnes + 1, qPrintable(QString::number(left)));
        checkCopies();
        QCOMPARE(keep(number + 1), 0);
        QCOMPARE(keptBackups(kept(), store()).size(), keptOnes);
        QCOMPARE(QDir(kept()).entryList({u".harrowby*"_s}, QDir::AllEntries | QDir::Hidden), QStringList());
    }
    QVERIFY(QFile(end).open(QIODevice::WriteOnly));
    const QByteArray said = allSaid(till);
    till.kill();
    QVERIFY(till.hasEnded());
    checkFile(store());
    checkSales(static_cast<int>(said.count("SOLD")));
    qInfo() << m_within << "kills in backups, of" << kill << "begun";
}

HARROWBY_TEST(app_keeping_kill_test, KeepingKillTest)
#include "keeping_kill_test.moc"
