// SPDX-License-Identifier: MIT
#include "tests/doubles/database.h"
#include "tests/doubles/server_shop.h"
#include "tests/program/test_program.h"
#include "tests/store/faulty_vfs.h"
#include "tests/store/scratch_store.h"

#include "store/recordset.h"
#include "store/statement_texts.h"

#include <harrowby/sqlite_connection.h>

#include <QTest>

#include <sqlite3.h>

using namespace harrowby;
using namespace Qt::StringLiterals;

namespace {

using Outcome = DbRecordset::Outcome;

Outcome addPurchase(const std::shared_ptr<DbConnection> &connection, bool isHeld)
{
    DbRecordset purchase;
    if (isHeld)
        purchase.OpenHeld(statements::purchase(u"HV1"_s), connection, DbRecordset::Access::Read);
    else
        purchase.Open(statements::purchase(u"HV1"_s), connection);
    purchase.AddNew();
    purchase.Field(u"PurchasedItems"_s).assign(QString(5000, u'x')); // more than a page
    purchase.Field(u"PurchaseID"_s).assign(u"HV1"_s);
    return purchase.Update();
}

bool isStored(const ScratchStore &store)
{
    return store.column(u"select count(*) from PurchaseCart"_s) == QStringList{u"1"_s};
}

/// Fails after the commit, as the check of a store file does that finds it moved away.
int findMoved(void *, sqlite3 *, const char *, int)
{
    return SQLITE_READONLY_DBMOVED;
}

int refuseCommit(void *)
{
    return 1;
}

} // namespace

/// Whether a write that failed is in the file: what Update() answers is true, and not more than is known.
class WriteOutcomeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY(FaultyVfs::name()); }
    void outcome_data();
    void outcome();
    void updateOfARow();
    void withoutAConnection();
    void brokenDisk_data();
    void brokenDisk();
};

void WriteOutcomeTest::outcome_data()
{
    QTest::addColumn<QString>("trouble");
    QTest::addColumn<Outcome>("held");
    QTest::addColumn<Outcome>("alone");
    QTest::addColumn<bool>("stored");

    QTest::newRow("none") << QString() << Outcome::Written << Outcome::Written << true;
    QTest::newRow("moved after the commit") << u"moved"_s << Outcome::NotKnown << Outcome::NotKnown << true;
    QTest::newRow("commit refused") << u"refused"_s << Outcome::NotWritten << Outcome::NotWritten << false;
    QTest::newRow("row refused") << u"trigger"_s << Outcome::NotWritten << Outcome::NotWritten << false;
    QTest::newRow("no table") << u"table"_s << Outcome::NotWritten << Outcome::NotWritten << false;
    QTest::newRow("locked") << u"locked"_s << Outcome::NotWritten << Outcome::NotWritten << false;
}

void WriteOutcomeTest::outcome()
{
    QFETCH(const QString, trouble);
    QFETCH(const bool, stored);
    if (test::shopsAreOnAServer() && (trouble == u"moved"_s || trouble == u"refused"_s))
        QSKIP("a hook of SQLite");
    for (const bool isHeld : {true, false}) {
        ScratchStore store;
        if (store.handle() != nullptr)
            QCOMPARE(store.column(u"pragma journal_mode = wal"_s), QStringList{u"wal"_s});
        test::Database other(store.file());
        if (trouble == u"moved"_s)
            sqlite3_wal_hook(store.handle(), &findMoved, nullptr);
        if (trouble == u"refused"_s)
            sqlite3_commit_hook(store.handle(), &refuseCommit, nullptr);
        if (trouble == u"trigger"_s)
            QVERIFY(
                store.run(u"create trigger no before insert on PurchaseCart begin select raise(abort, 'no'); end"_s));
        if (trouble == u"table"_s)
            QVERIFY(store.run(u"alter table PurchaseCart rename to Away"_s));
        if (trouble == u"locked"_s)
            QVERIFY(other.run(u"begin immediate"_s));
        const Outcome outcome = addPurchase(store.connection(), isHeld);
        if (trouble == u"locked"_s)
            QVERIFY(other.run(u"rollback"_s));
        if (store.handle() != nullptr) {
            sqlite3_wal_hook(store.handle(), nullptr, nullptr);
            sqlite3_commit_hook(store.handle(), nullptr, nullptr);
        }
        QTEST(outcome, isHeld ? "held" : "alone");
        if (test::shopsAreOnAServer())
            QTRY_VERIFY(!store.isInTransaction()); // it need not have answered yet
        QVERIFY(!store.isInTransaction());
        if (trouble == u"table"_s)
            QVERIFY(store.run(u"alter table Away rename to PurchaseCart"_s));
        QCOMPARE(isStored(store), stored);
    }
}

void WriteOutcomeTest::updateOfARow()
{
    ScratchStore store;
    store.addItem(u"1"_s, u"TEA"_s);
    DbRecordset item;
    item.Open(statements::stockById(u"1"_s), store.connection(), DbRecordset::Access::Edit);
    QCOMPARE(item.Update(), Outcome::NotWritten); // nothing was assigned
    item.Field(u"StockCost"_s).assign(2.0);
    QCOMPARE(item.Update(), Outcome::Written);
    QVERIFY(store.run(u"create trigger no before update on StockList begin select raise(abort, 'no'); end"_s));
    item.Field(u"StockCost"_s).assign(3.0);
    QCOMPARE(item.Update(), Outcome::NotWritten);
    item.Open(statements::stockById(u"1"_s), store.connection(), DbRecordset::Access::Read);
    item.Field(u"StockCost"_s).assign(3.0);
    QCOMPARE(item.Update(), Outcome::NotWritten);
}

void WriteOutcomeTest::withoutAConnection()
{
    QCOMPARE(addPurchase(nullptr, true), Outcome::NotWritten);
    QCOMPARE(addPurchase(nullptr, false), Outcome::NotWritten);
    QCOMPARE(addPurchase(std::make_shared<SqliteConnection>(nullptr), true), Outcome::NotWritten);
}

void WriteOutcomeTest::brokenDisk_data()
{
    QTest::addColumn<QString>("journal");
    QTest::addColumn<bool>("isHeld");
    for (const QString &journal : {u"delete"_s, u"wal"_s}) {
        for (const bool isHeld : {true, false})
            QTest::addRow("%s, %s", qPrintable(journal), isHeld ? "held" : "alone") << journal << isHeld;
    }
}

/// Each write and sync of an insert fails in turn.
void WriteOutcomeTest::brokenDisk()
{
    QFETCH(const QString, journal);
    QFETCH(const bool, isHeld);
    int faultyRuns = 0;
    for (int operation = 1;; ++operation) {
        ScratchStore store(FaultyVfs::name());
        QCOMPARE(store.column(u"pragma journal_mode = "_s + journal), QStringList{journal});
        QVERIFY(store.run(u"pragma synchronous = full"_s));
        FaultyVfs::failAt(operation, FaultyVfs::Mode::Once);
        const Outcome outcome = addPurchase(store.connection(), isHeld);
        const int faults = FaultyVfs::failures();
        FaultyVfs::failAt(0);
        if (outcome != Outcome::NotKnown)
            QCOMPARE(isStored(store), outcome == Outcome::Written);
        if (faults == 0)
            break;
        ++faultyRuns;
    }
    QVERIFY2(faultyRuns >= 3, qPrintable(QString::number(faultyRuns)));
}

HARROWBY_CORE_TEST(write_outcome_test, WriteOutcomeTest)
#include "write_outcome_test.moc"
