// SPDX-License-Identifier: MIT
#include "tests/program/test_program.h"
#include "tests/store/faulty_vfs.h"
#include "tests/store/scratch_store.h"

#include "store/recordset.h"
#include "store/statement_texts.h"

#include <QTest>

#include <vector>

using namespace harrowby;
using namespace Qt::StringLiterals;

Q_DECLARE_METATYPE(FaultyVfs::Mode)

namespace {

bool lower(const ScratchStore &store)
{
    return Execute(store.connection(), statements::lowerStock(1, u"1"_s, u"TEA"_s));
}

bool add(const ScratchStore &store)
{
    DbRecordset purchase;
    purchase.Open(statements::purchase(u"HV1"_s), store.connection());
    purchase.AddNew();
    purchase.Field(u"PurchasedItems"_s).assign(QString(5000, u'x')); // more than a page
    purchase.Field(u"PurchaseID"_s).assign(u"HV1"_s);
    purchase.Update();
    return store.failures.empty();
}

bool change(const ScratchStore &store)
{
    DbRecordset item;
    item.Open(statements::stockById(u"2"_s), store.connection(), DbRecordset::Access::Edit);
    item.Field(u"StockName"_s).assign(u"COFFEE"_s);
    item.Update();
    return item.Field(u"StockName"_s).text() == u"COFFEE";
}

bool log(const ScratchStore &store)
{
    return Execute(store.connection(), statements::usage(u"sold"_s, u"t"_s, u"d"_s));
}

/// One step of a sale, and the SELECT that tells by "1" that it was done and by "0" that it was not.
struct Step
{
    bool (*take)(const ScratchStore &);
    QString check;
    bool done = false;
    bool told = false;
};

std::vector<Step> sell(ScratchStore &store)
{
    std::vector<Step> steps{
        {lower, u"select StockAvailable = 9 from StockList where StockID = '1'"_s},
        {add, u"select count(*) from PurchaseCart where length(PurchasedItems) = 5000 and PurchaseID = 'HV1'"_s},
        {change, u"select StockName = 'COFFEE' from StockList where StockID = '2'"_s},
        {log, u"select count(*) from SysUsage"_s},
    };
    for (Step &step : steps) {
        store.failures.clear();
        step.done = step.take(store);
        step.told = !store.failures.empty();
    }
    return steps;
}

} // namespace

/// Each write and sync of a sale fails in turn: nothing crashes, each failure is reported, and the file holds exactly
/// the statements that reported success.
class TestDiskFaults : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void everyFaultIsTold_data();
    void everyFaultIsTold();
    void readingGoesOnWithAFullDisk();
};

void TestDiskFaults::initTestCase()
{
    QVERIFY(FaultyVfs::name());
}

void TestDiskFaults::everyFaultIsTold_data()
{
    QTest::addColumn<QString>("journal");
    QTest::addColumn<FaultyVfs::Mode>("mode");
    QTest::newRow("rollback journal, once") << u"delete"_s << FaultyVfs::Mode::Once;
    QTest::newRow("rollback journal, full") << u"delete"_s << FaultyVfs::Mode::Forever;
    QTest::newRow("write-ahead log, once") << u"wal"_s << FaultyVfs::Mode::Once;
    QTest::newRow("write-ahead log, full") << u"wal"_s << FaultyVfs::Mode::Forever;
}

void TestDiskFaults::everyFaultIsTold()
{
    QFETCH(const QString, journal);
    QFETCH(const FaultyVfs::Mode, mode);
    int faultyRuns = 0;
    for (int operation = 1;; ++operation) {
        ScratchStore store(FaultyVfs::name());
        QCOMPARE(store.column(u"pragma journal_mode = "_s + journal), QStringList{journal});
        QVERIFY(store.run(u"pragma synchronous = full"_s));
        store.addItem(u"1"_s, u"TEA"_s, 10);
        store.addItem(u"2"_s, u"MILK"_s, 10);

        FaultyVfs::failAt(operation, mode);
        const std::vector<Step> steps = sell(store);
        const int faults = FaultyVfs::failures();
        FaultyVfs::failAt(0);

        QCOMPARE(store.column(u"pragma integrity_check"_s), QStringList{u"ok"_s});
        bool isTold = false;
        for (const Step &step : steps) {
            QCOMPARE(step.told, !step.done);
            QCOMPARE(store.column(step.check), QStringList{QString::number(step.done)});
            isTold = isTold || step.told;
        }
        QCOMPARE(isTold, faults > 0);
        if (faults == 0)
            break;
        ++faultyRuns;
    }
    QVERIFY2(faultyRuns >= 8, qPrintable(QString::number(faultyRuns)));
}

void TestDiskFaults::readingGoesOnWithAFullDisk()
{
    ScratchStore store(FaultyVfs::name());
    for (int i = 0; i < 100; ++i)
        store.addItem(QString::number(i), u"TEA"_s);
    FaultyVfs::failAt(1, FaultyVfs::Mode::Forever);
    QVERIFY(!Execute(store.connection(), statements::lowerStock(1, u"1"_s, u"TEA"_s)));
    DbRecordset rows;
    rows.Open(Statement("Select * from StockList"), store.connection(), DbRecordset::Access::Edit);
    QCOMPARE(rows.RecordCount(), 100);
    QCOMPARE(rows.Field(u"StockAvailable"_s).number(), 10.0);
    QCOMPARE(store.failures.size(), 1u);
    FaultyVfs::failAt(0);
}

HARROWBY_CORE_TEST(disk_faults_test, TestDiskFaults)
#include "disk_faults_test.moc"
