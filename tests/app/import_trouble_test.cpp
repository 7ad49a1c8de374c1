// SPDX-License-Identifier: MIT
#include "app/codes/code_table.h"
#include "tests/app/fussy_records.h"
#include "tests/app/import_desk.h"
#include "tests/program/test_program.h"
#include "tests/support/failing_disk.h"

#include <QFile>
#include <QTest>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <new>
#include <stop_token>
#include <thread>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::app::test;
namespace FailingDisk = harrowby::test::FailingDisk;

namespace {

/// Has no memory left for one statement.
class GreedyRecords final : public SqliteRecords
{
public:
    using SqliteRecords::SqliteRecords;

    QString failing; ///< its beginning

protected:
    Answer<std::int64_t> change(const RecordStatement &statement) override
    {
        throwFor(statement.text);
        return SqliteRecords::change(statement);
    }
    Answer<std::int64_t> changeEach(const QString &text, const QList<QList<RecordValue>> &rows) override
    {
        throwFor(text);
        return SqliteRecords::changeEach(text, rows);
    }

private:
    void throwFor(const QString &text) const
    {
        if (text.startsWith(failing))
            throw std::bad_alloc();
    }
};

} // namespace

/// Nothing half done, whatever fails, and tills that sell all the while.
class ImportTroubleTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_bench = std::make_unique<ImportBench>(); }
    void cleanup() { m_bench.reset(); }

    void everyStatementFailsOnce_data();
    void everyStatementFailsOnce();
    void memoryRunsOut();
    void everyDiskOperationFails_data();
    void everyDiskOperationFails();
    void listOnAFullDiskIsNotSaved_data();
    void listOnAFullDiskIsNotSaved();
    void cancelledPreviewLeavesNothing();
    void cancelledBackupImportsNothing();
    void whatAKillLeavesIsClearedAway();
    void previewOfALivingProgramStays();
    void storesOfAnyAge_data();
    void storesOfAnyAge();
    void tillSellsAllTheWhile();
    void manyRows();

private:
    /// Everything that a shop works with.
    [[nodiscard]] QStringList shop() const
    {
        return m_bench->everything() + m_bench->everything(u"InventoryCategory"_s) +
               m_bench->rows(u"select * from HarrowbyCode order by 1"_s);
    }
    [[nodiscard]] int leftRows() const
    {
        return m_bench->rows(u"select count(*) from HarrowbyImportRow"_s).constFirst().toInt();
    }

    std::unique_ptr<ImportBench> m_bench;
};

void ImportTroubleTest::everyStatementFailsOnce_data()
{
    QTest::addColumn<QString>("step");
    QTest::addColumn<bool>("meddled");
    QTest::newRow("preview") << u"stage"_s << false;
    QTest::newRow("import") << u"apply"_s << false;
    QTest::newRow("import into a store that has changed") << u"apply"_s << true;
    QTest::newRow("take back") << u"takeBack"_s << false;
    QTest::newRow("take back from a store that has changed") << u"takeBack"_s << true;
}

void ImportTroubleTest::everyStatementFailsOnce()
{
    QFETCH(QString, step);
    QFETCH(bool, meddled);
    m_bench->addItem(u"A"_s, u"A"_s, u"1"_s);
    m_bench->addItem(u"B"_s, u"B"_s, u"1"_s);
    m_bench->importValid("StockID,Code\nA,999\n");
    const QByteArray text = "StockID,Name,Price,Category,Code\nA,,2,,111\nB,,2,,\nN,NEW,1,FOOD,222\n";
    FussyRecords fussy(m_bench->database());
    int told = 0;
    fussy.setFailureHandler([&told](const DbFailure &) { ++told; });
    m_bench->desk.backupFolder = m_bench->folder.path();
    bool isOver = false;
    for (int failing = 0; !isOver && failing < 300; ++failing) {
        std::int64_t id = step == u"stage"_s ? 0 : m_bench->stage(text).id;
        CatalogueImport import(fussy, m_bench->desk);
        if (step == u"takeBack"_s) {
            QVERIFY(m_bench->import().apply(id, true, nullptr, goOn));
            if (meddled)
                m_bench->sql(u"update StockList set StockCost = 7 where StockID = 'B'"_s);
        } else if (meddled) {
            m_bench->sql(u"update StockList set StockCost = 7 where StockID = 'B'"_s);
        }
        const QStringList before = shop();
        fussy.texts.clear();
        fussy.failAt = failing;
        told = 0;
        bool done = false;
        QString words;
        if (step == u"stage"_s) {
            const auto staged = import.stage(ImportBench::file(text), ImportBench::choicesFor(text), goOn);
            done = staged.has_value();
            words = done ? QString() : staged.error().words;
        } else {
            const auto outcome = step == u"apply"_s ? import.apply(id, true, nullptr, goOn) : import.takeBack(id, goOn);
            done = outcome.has_value();
            words = done ? QString() : outcome.error().words;
        }
        isOver = fussy.texts.size() <= failing; // nothing failed any more
        const QString failed = fussy.texts.value(failing);
        fussy.failAt = -1;
        if (!done) {
            QVERIFY2(!isOver && told > 0 && !words.isEmpty(), qPrintable(failed));
            QVERIFY2(!words.contains(u"other office"_s), qPrintable(failed)); // which is to blame for nothing
            QVERIFY2(shop() == before, qPrintable(failed));
        } else if (!isOver) {
            // Of a preview the look for what others have left.
            QVERIFY2(step == u"stage"_s && told > 0, qPrintable(failed));
        }
        // And again, without a failure.
        if (step == u"apply"_s && done)
            QVERIFY(m_bench->import().takeBack(id, goOn));
        if (step == u"takeBack"_s && !done)
            QVERIFY(m_bench->import().takeBack(id, goOn));
        m_bench->sql(u"update StockList set StockCost = 1 where StockID in ('A', 'B')"_s);
        QCOMPARE(m_bench->rows(u"select StockID from StockList"_s), (QStringList{u"A"_s, u"B"_s}));
    }
    QVERIFY(isOver);
}

void ImportTroubleTest::memoryRunsOut()
{
    m_bench->addItem(u"A"_s, u"A"_s, u"1"_s);
    const QByteArray text = "StockID,Price\nA,2\n";
    GreedyRecords greedy(m_bench->database());
    CatalogueImport import(greedy, m_bench->desk);
    greedy.failing = u"insert into HarrowbyImportRow"_s;
    QVERIFY(!import.stage(ImportBench::file(text), ImportBench::choicesFor(text), goOn));
    const StagedImport staged = m_bench->stage(text);
    greedy.failing = u"update StockList"_s;
    const auto outcome = import.apply(staged.id, true, nullptr, goOn);
    QVERIFY(!outcome);
    QVERIFY2(outcome.error().words.startsWith(u"The file was not imported."_s), qPrintable(outcome.error().words));
    QCOMPARE(m_bench->rows(u"select StockCost from StockList"_s), QStringList{u"1"_s});
    greedy.failing = u"insert into HarrowbyCode"_s;
    QVERIFY(CodeTable(greedy).add(u"111"_s, u"A"_s, 1));
}

void ImportTroubleTest::everyDiskOperationFails_data()
{
    QTest::addColumn<QString>("step");
    QTest::addColumn<bool>("forever");
    QTest::addColumn<int>("error");
    for (const char *step : {"stage", "apply", "takeBack"}) {
        QTest::addRow("%s, full", step) << QString::fromLatin1(step) << true << ENOSPC;
        QTest::addRow("%s, a passing fault", step) << QString::fromLatin1(step) << false << EIO;
    }
}

void ImportTroubleTest::everyDiskOperationFails()
{
    QFETCH(QString, step);
    QFETCH(bool, forever);
    QFETCH(int, error);
    const auto mode = forever ? FailingDisk::Mode::Forever : FailingDisk::Mode::Once;
    m_bench->addItem(u"A"_s, u"A"_s, u"1"_s);
    m_bench->importValid("StockID,Code\nA,999\n");
    m_bench->sql(u"pragma synchronous = full"_s);
    const QByteArray text = "StockID,Name,Price,Category,Code\nA,,2,,111\nN,NEW,1,FOOD,222\n";
    const QStringList before = shop();
    const QTemporaryDir backups; // whose failures are tried where backups are
    m_bench->desk.backupFolder = backups.path();
    FailingDisk::mount(m_bench->folder.path());
    int failures = 1;
    int operation = 1;
    for (; operation < 500 && failures > 0; ++operation) {
        const std::int64_t id = step == u"stage"_s ? 0 : m_bench->stage(text).id;
        if (step == u"takeBack"_s)
            QVERIFY(m_bench->import().apply(id, true, nullptr, goOn));
        const QStringList imported = shop();
        FailingDisk::failAt(operation, mode, error);
        QString words;
        if (step == u"stage"_s) {
            const auto staged = m_bench->import().stage(ImportBench::file(text), ImportBench::choicesFor(text), goOn);
            words = staged ? QString() : staged.error().words;
        } else {
            const auto outcome = step == u"apply"_s ? m_bench->import().apply(id, true, nullptr, goOn)
                                                    : m_bench->import().takeBack(id, goOn);
            words = outcome ? QString() : outcome.error().words;
        }
        failures = FailingDisk::failures();
        const QString fault = u"%1: %2"_s.arg(operation).arg(FailingDisk::firstFailure());
        FailingDisk::failAt(0, mode, error);
        if (!words.isEmpty())
            QVERIFY2(failures > 0 && shop() == imported, qPrintable(fault));
        else
            QVERIFY2(step == u"stage"_s || (shop() == before) == (step == u"takeBack"_s), qPrintable(fault));
        if (step == u"takeBack"_s ? !words.isEmpty() : step == u"apply"_s && words.isEmpty())
            QVERIFY2(m_bench->import().takeBack(id, goOn), qPrintable(fault));
        QVERIFY2(shop() == before, qPrintable(fault));
        QCOMPARE(m_bench->rows(u"pragma quick_check"_s), QStringList{u"ok"_s});
    }
    QVERIFY(operation > 3 && operation < 500);
}

void ImportTroubleTest::listOnAFullDiskIsNotSaved_data()
{
    QTest::addColumn<int>("rows");
    QTest::newRow("small enough for any buffer") << 1;
    QTest::newRow("several pieces") << 1'500;
}

/// It is the old list then, or the whole new one, and never said to be saved when it is not.
void ImportTroubleTest::listOnAFullDiskIsNotSaved()
{
    QFETCH(int, rows);
    QByteArray text = "StockID,Name,Price\n";
    for (int i = 0; i < rows; ++i)
        text += "I" + QByteArray::number(i) + ",small,1\n"; // refused
    const StagedImport staged = m_bench->stage(text);
    const QTemporaryDir elsewhere;
    const QString path = elsewhere.filePath(u"list.csv"_s);
    QFile list(path);
    FailingDisk::mount(elsewhere.path());
    int failures = 1;
    int operation = 1;
    for (; operation < 100 && failures > 0; ++operation) {
        QVERIFY(list.open(QIODevice::WriteOnly) && list.write("old") == 3);
        list.close();
        FailingDisk::failAt(operation, FailingDisk::Mode::Once, ENOSPC); // a full disk still renames
        const auto saved = m_bench->import().saveList(staged.id, RowFilter::All, path, {}, goOn);
        failures = FailingDisk::failures();
        const QString fault = u"%1: %2"_s.arg(operation).arg(FailingDisk::firstFailure());
        FailingDisk::failAt(0, FailingDisk::Mode::Once, ENOSPC);
        QVERIFY2(saved || !saved.error().words.isEmpty(), qPrintable(fault));
        QVERIFY(list.open(QIODevice::ReadOnly));
        const QByteArray there = list.readAll();
        list.close();
        QVERIFY2(saved ? there.count('\n') == rows + 1 : there == "old", qPrintable(fault));
    }
    QVERIFY(operation > 3 && operation < 100);
}

void ImportTroubleTest::cancelledPreviewLeavesNothing()
{
    QByteArray text = "StockID,Name,Price\n";
    for (int i = 0; i < 2500; ++i)
        text += "I" + QByteArray::number(i) + ",NAME " + QByteArray::number(i) + ",1\n";
    for (int stopAt = 0;; ++stopAt) {
        int steps = 0;
        const auto staged = m_bench->import().stage(ImportBench::file(text), ImportBench::choicesFor(text),
                                                    [&](const WorkStep &) { return steps++ < stopAt; });
        if (staged) {
            QVERIFY(stopAt > 5);
            break;
        }
        QCOMPARE(staged.error().kind, ImportEnd::Kind::Cancelled);
        QCOMPARE(leftRows(), 0);
        QCOMPARE(m_bench->rows(u"select count(*) from HarrowbyImport"_s), QStringList{u"0"_s});
    }
}

void ImportTroubleTest::cancelledBackupImportsNothing()
{
    const StagedImport staged = m_bench->stage("StockID,Name,Price\nA,A,1\n");
    const auto outcome = m_bench->import().apply(staged.id, true, nullptr, [](const WorkStep &) { return false; });
    QCOMPARE(outcome.error().kind, ImportEnd::Kind::Cancelled);
    QCOMPARE(m_bench->items(), QStringList());
    QVERIFY(m_bench->import().apply(staged.id, true, nullptr, goOn));
}

void ImportTroubleTest::whatAKillLeavesIsClearedAway()
{
    const StagedImport killed = m_bench->stage("StockID,Name,Price\nA,A,1\n");
    m_bench->sql(u"update HarrowbyImport set Owner = replace(Owner, ' ', ' 9999999'), State = 'STAGING'"_s);
    (void)m_bench->stage("StockID,Name,Price\nB,B,1\nC,C,1\n");
    QCOMPARE(m_bench->rows(u"select distinct StockID from HarrowbyImportRow order by 1"_s),
             (QStringList{u"B"_s, u"C"_s}));
    QCOMPARE(m_bench->import().apply(killed.id, true, nullptr, goOn).error().kind, ImportEnd::Kind::Outdated);
}

void ImportTroubleTest::previewOfALivingProgramStays()
{
    const StagedImport first = m_bench->stage("StockID,Name,Price\nA,A,1\n");
    const StagedImport second = m_bench->stage("StockID,Name,Price\nB,B,1\n");
    QVERIFY(m_bench->import().apply(first.id, true, nullptr, goOn));
    QVERIFY(m_bench->import().apply(second.id, true, nullptr, goOn));
    QCOMPARE(m_bench->items().size(), 2);
    m_bench->desk.now = [] { return QDateTime({2026, 11, 24}, {12, 0}); };
    const StagedImport third = m_bench->stage("StockID,Name,Price\nC,C,1\n");
    m_bench->desk.now = [] { return QDateTime({2026, 11, 26}, {12, 0}); };
    (void)m_bench->stage("StockID,Name,Price\nD,D,1\n"); // of another day: nobody waits for it
    QCOMPARE(m_bench->import().apply(third.id, true, nullptr, goOn).error().kind, ImportEnd::Kind::Outdated);
}

void ImportTroubleTest::storesOfAnyAge_data()
{
    QTest::addColumn<QStringList>("statements");
    QTest::newRow("no stock") << QStringList{u"drop table StockList"_s};
    QTest::newRow("no categories") << QStringList{u"drop table InventoryCategory"_s};
    QTest::newRow("no log") << QStringList{u"drop table SysUsage"_s};
    const QString whole = u"create table StockList (StockID TEXT, StockName TEXT, StockCategory TEXT, StockCost "
                          "NUMERIC, StockReorderLevel NUMERIC, StockAvailable NUMERIC, StockUse TEXT, "
                          "StockLastUpdated TEXT, StockLastModified TEXT, StockAdded TEXT, StockReorderUser TEXT)"_s;
    for (const QString &column : {u"StockID"_s, u"StockName"_s, u"StockCost"_s, u"StockReorderUser"_s}) {
        QString table = whole;
        QTest::newRow(qPrintable(column))
            << QStringList{u"drop table StockList"_s, table.replace(column + u' ', u'X' + column + u' ')};
    }
    QTest::newRow("another table of codes") << QStringList{u"create table HarrowbyCode (Other blob)"_s};
    QTest::newRow("another table of imports") << QStringList{u"create table HarrowbyImport (Other blob)"_s};
    QTest::newRow("another table of rows") << QStringList{u"create table HarrowbyImportRow (Other blob)"_s};
    QTest::newRow("no types") << QStringList{
        u"drop table StockList"_s,
        u"create table StockList (StockID, StockName, StockCategory, StockCost, StockReorderLevel, StockAvailable, "
        "StockUse, StockLastUpdated, StockLastModified, StockAdded, StockReorderUser)"_s};
}

/// Done or told, and taken back where it was done; never a crash.
void ImportTroubleTest::storesOfAnyAge()
{
    QFETCH(QStringList, statements);
    for (const QString &statement : statements)
        m_bench->sql(statement);
    for (const QByteArray &text :
         {QByteArray("StockID,Name,Price,Category,Stock,Code\nA,A,1,FOOD,2,111\nB,B,2,DRINKS,3,\n"),
          QByteArray("StockID,Name,Price,Stock\nA,A,3,5\n")}) {
        ImportChoices choices = ImportBench::choicesFor(text);
        choices.stockInHand = true;
        const auto staged = m_bench->import().stage(ImportBench::file(text), choices, goOn);
        if (!staged) {
            QVERIFY(!staged.error().words.isEmpty());
            continue;
        }
        (void)m_bench->import().rows(staged->id, RowFilter::All, 0, 10);
        const auto outcome = m_bench->import().apply(staged->id, true, nullptr, goOn);
        QVERIFY(outcome || !outcome.error().words.isEmpty());
        const auto back = m_bench->import().takeBack(staged->id, goOn);
        QVERIFY(back || !back.error().words.isEmpty());
        QVERIFY(!outcome || (back && back->leftOut == 0));
    }
}

/// Another connection, as another program has it.
void ImportTroubleTest::tillSellsAllTheWhile()
{
    QByteArray text = "StockID,Name,Price\n";
    for (int i = 0; i < 3000; ++i) {
        const QByteArray number = QByteArray::number(i);
        text += "I" + number + ",NAME " + number + ",2\n";
        if (i < 1000)
            m_bench->sql(
                u"insert into StockList values ('I%1', 'NAME %1', 'DRINKS', 1, 2, 100000, 'Enabled', '', '', '', "
                "'')"_s.arg(i));
    }
    std::atomic<int> sold = 0;
    std::jthread till([&](const std::stop_token &isOver) {
        auto own = openStoreRecords(m_bench->path, Access::Write);
        for (int i = 0; !isOver.stop_requested(); i = (i + 7) % 1000) {
            std::this_thread::sleep_for(std::chrono::milliseconds(2)); // no hand is quicker
            const auto written = (*own)->records().write(
                kept::import(),
                {u"update StockList set StockAvailable = StockAvailable - 1 where StockID = ?"_s, {u"I%1"_s.arg(i)}});
            sold += written && *written == 1 ? 1 : 0;
        }
    });
    const StagedImport staged = m_bench->stage(text);
    const auto outcome = m_bench->import().apply(staged.id, true, nullptr, goOn);
    const auto back = m_bench->import().takeBack(staged.id, goOn);
    till.request_stop();
    till.join();
    QVERIFY(outcome);
    QCOMPARE(outcome->leftOut, 0); // sales change no column that is imported
    QCOMPARE(outcome->done, (ImportCounts{2000, 1000, 0, 0}));
    QVERIFY(back);
    QCOMPARE(back->leftOut, 0);
    QVERIFY(sold > 0);
    QCOMPARE(m_bench->rows(u"select count(*), sum(StockAvailable), sum(StockCost) from StockList"_s),
             QStringList{u"1000|%1|1000"_s.arg(100000000 - sold)});
}

void ImportTroubleTest::manyRows()
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    constexpr int rows = 5'000;
#else
    constexpr int rows = 100'000;
#endif
    QByteArray text = "StockID,Name,Category,Price,Code\n";
    for (int i = 0; i < rows; ++i) {
        const QByteArray number = QByteArray::number(i);
        text += "ITEM-" + number + ",NAME " + number + ",CATEGORY " + QByteArray::number(i % 40) + ",1.50,\n";
    }
    QCOMPARE(m_bench->importValid(text).done, (ImportCounts{rows, 0, 0, 0}));
    const QString sum = u"select count(*), sum(StockCost) from StockList"_s;
    QCOMPARE(m_bench->rows(sum), QStringList{u"%1|%2"_s.arg(rows).arg(rows * 1.5, 0, 'f', 1)});
    QCOMPARE(m_bench->import().rows(m_bench->last, RowFilter::All, rows - 1, 10)->constFirst().line, rows + 1);
    QCOMPARE(m_bench->import().takeBack(m_bench->last, goOn)->done, (ImportCounts{rows, 0, 0, 0}));
    QCOMPARE(m_bench->items(), QStringList());
}

HARROWBY_CORE_TEST(app_import_trouble_test, ImportTroubleTest)
#include "import_trouble_test.moc"
