// SPDX-License-Identifier: MIT
#include "tests/doubles/database.h"
#include "tests/doubles/server_shop.h"
#include "tests/program/test_program.h"
#include "tests/store/scratch_store.h"

#include "store/hold.h"
#include "store/recordset.h"
#include "store/statement_texts.h"

#include <harrowby/sqlite_connection.h>

#include <QLoggingCategory>
#include <QRegularExpression>
#include <QTest>

#include <sqlite3.h>

#include <stdexcept>

using namespace harrowby;
using namespace Qt::StringLiterals;
using Access = DbRecordset::Access;

namespace {

/// Another connection to the same store, which waits for no lock.
class OtherTill final : public test::Database
{
public:
    using Database::Database;
    [[nodiscard]] bool sells() { return run(u"update StockList set StockAvailable = StockAvailable - 1"_s); }
};

/// A connection with only the mandatory functions, which throws where a test asks for it.
class OtherEngine final : public DbConnection
{
public:
    bool knowsHolds = false;
    bool throwsAtHold = false;
    bool throwsAtSettle = false;
    int written = 0;

    bool Execute(const QString &) override { return true; }
    [[nodiscard]] std::unique_ptr<DbCursor> query(const QString &) override { return nullptr; }
    [[nodiscard]] std::optional<std::int64_t> countRows(const QString &) override { return 0; }
    [[nodiscard]] std::optional<std::vector<DbRowId>> rowIds(const QString &) override { return {}; }
    bool insertRow(const QString &, const DbAssignments &) override { return ++written > 0; }
    bool updateRow(const QString &, DbRowId, const DbAssignments &) override { return ++written > 0; }
    [[nodiscard]] QString location() const override { return {}; }
    bool hold() override
    {
        if (throwsAtHold)
            throw std::runtime_error("no hold");
        return knowsHolds || DbConnection::hold();
    }
    bool settle(const QString &write) override
    {
        if (throwsAtSettle)
            throw std::runtime_error("no settling");
        return DbConnection::settle(write);
    }
};

int refuseCommit(void *)
{
    return 1;
}

} // namespace

/// A read and the write that is computed from it, with another till at the same file.
class TestHold : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void nobodyWritesInBetween();
    void nobodyAddsInBetween();
    void endsWithoutAWrite_data();
    void endsWithoutAWrite();
    void finishesWalks();
    void refusedHoldChangesNothing();
    void withinTheHostsTransaction();
    void settlesNothingOfTheHosts();
    void commitRefused();
    void commitWaitedForInVain();
    void failedWriteIsTakenBack_data();
    void failedWriteIsTakenBack();
    void secondUpdateStandsAlone();
    void engineWithoutHolds();
    void engineThatThrows();
    void withoutConnection();

private:
    void openHeld(DbRecordset &stock, Access access = Access::Edit) const;
    static void add(DbRecordset &stock, int units);
    [[nodiscard]] QString available() const;
    [[nodiscard]] bool isHeld() const { return m_store->isInTransaction(); }

    std::unique_ptr<ScratchStore> m_store;
    std::unique_ptr<OtherTill> m_other;
};

void TestHold::init()
{
    m_store = std::make_unique<ScratchStore>();
    m_store->run(u"pragma journal_mode = wal"_s);
    m_store->addItem(u"1"_s, u"TEA"_s, 10);
    m_other = std::make_unique<OtherTill>(m_store->file());
}

/// Whether no statement is open, so that the host could close the connection.
void TestHold::cleanup()
{
    m_other.reset();
    QVERIFY(!isHeld());
    QCOMPARE(m_store->close(), SQLITE_OK);
    m_store.reset();
}

void TestHold::openHeld(DbRecordset &stock, Access access) const
{
    stock.OpenHeld(statements::stockById(u"1"_s), m_store->connection(), access);
}

void TestHold::add(DbRecordset &stock, int units)
{
    stock.Field(u"StockAvailable"_s).assign(stock.Field(u"StockAvailable"_s).number() + units);
    stock.Update();
}

QString TestHold::available() const
{
    return m_store->column(u"select StockAvailable from StockList"_s).join(u' ');
}

void TestHold::nobodyWritesInBetween()
{
    DbRecordset stock;
    openHeld(stock);
    QCOMPARE(stock.RecordCount(), 1);
    QVERIFY(!m_other->sells());
    add(stock, 5);
    QCOMPARE(stock.Field(u"StockAvailable"_s).number(), 15.0);
    QVERIFY(m_other->sells()); // the lock ends with the write, while the recordset still exists
    QCOMPARE(available(), u"14"_s);
    QVERIFY(m_store->failures.empty());
}

void TestHold::nobodyAddsInBetween()
{
    const QString sale = u"insert into PurchaseCart (PurchaseID) values ('HV1')"_s;
    DbRecordset purchase;
    purchase.OpenHeld(statements::purchase(u"HV1"_s), m_store->connection(), Access::Read);
    QCOMPARE(purchase.RecordCount(), 0);
    QVERIFY(!m_other->run(sale));
    purchase.AddNew();
    purchase.Field(u"PurchaseID"_s).assign(u"HV1"_s);
    purchase.Update();
    QVERIFY(m_other->run(sale));
    QCOMPARE(m_store->column(u"select count(*) from PurchaseCart"_s), QStringList{u"2"_s});
}

void TestHold::endsWithoutAWrite_data()
{
    using End = std::function<void(std::unique_ptr<DbRecordset> &)>;
    QTest::addColumn<End>("end");
    QTest::newRow("closed") << End([](auto &stock) { stock.reset(); });
    QTest::newRow("nothing assigned") << End([](auto &stock) { stock->Update(); });
    QTest::newRow("no such column") << End([](auto &stock) {
        stock->Field(u"Nothing"_s).assign(u"x"_s);
        stock->Update();
    });
    QTest::newRow("past the row") << End([](auto &stock) {
        stock->MoveNext();
        stock->Field(u"StockName"_s).assign(u"x"_s);
        stock->Update();
    });
    QTest::newRow("opened again") << End([](auto &stock) { stock->Open(statements::allStock(), {}); });
}

void TestHold::endsWithoutAWrite()
{
    using End = std::function<void(std::unique_ptr<DbRecordset> &)>;
    QFETCH(const End, end);
    auto stock = std::make_unique<DbRecordset>();
    openHeld(*stock);
    QVERIFY(isHeld());
    end(stock);
    QVERIFY(!isHeld());
    QVERIFY(m_other->sells());
}

/// With a walk's older snapshot open, SQLite would refuse the write lock.
void TestHold::finishesWalks()
{
    for (int i = 2; i < 60; ++i)
        m_store->addItem(QString::number(i), u"ITEM %1"_s.arg(i));
    DbRecordset walk;
    walk.Open(statements::allStock(), m_store->connection(), Access::Walk);
    walk.MoveNext();
    QVERIFY(m_other->sells());
    DbRecordset stock;
    openHeld(stock);
    QVERIFY(isHeld());
    QCOMPARE(stock.Field(u"StockAvailable"_s).number(), 9.0);
    add(stock, 5);
    QVERIFY(m_store->failures.empty());
    QCOMPARE(walk.Field(u"StockID"_s).text(), u"2"_s);
    QCOMPARE(walk.Field(u"StockAvailable"_s).number(), 10.0);
}

void TestHold::refusedHoldChangesNothing()
{
    QLoggingCategory::setFilterRules(u"harrowby.store.warning=true"_s);
    QVERIFY(m_other->run(u"begin immediate"_s));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"^Nothing could be held.*locked"_s));
    DbRecordset stock;
    openHeld(stock);
    QVERIFY(m_store->failures.empty()); // nothing is reported
    QCOMPARE(stock.Field(u"StockAvailable"_s).number(), 10.0);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"UPDATE StockList"_s));
    add(stock, 5);
    QLoggingCategory::setFilterRules(QString());
    QCOMPARE(m_store->failures.size(), 1u);
    QCOMPARE(m_store->failures.front().engineCode, SQLITE_BUSY);
    QVERIFY(m_other->run(u"commit"_s));
    add(stock, 5);
    QCOMPARE(available(), u"15"_s);
    QCOMPARE(m_store->failures.size(), 1u);
}

void TestHold::withinTheHostsTransaction()
{
    m_store->run(u"begin"_s);
    DbRecordset stock;
    openHeld(stock);
    add(stock, 5);
    QVERIFY(isHeld()); // the host's own transaction, still open
    QCOMPARE(available(), u"15"_s);
    m_store->run(u"rollback"_s);
    QCOMPARE(available(), u"10"_s);
    QVERIFY(m_store->failures.empty());
}

void TestHold::settlesNothingOfTheHosts()
{
    QVERIFY(m_store->connection()->settle(u"UPDATE StockList"_s));
    m_store->run(u"begin; update StockList set StockAvailable = 3"_s);
    QVERIFY(!m_store->connection()->hold());
    QVERIFY(m_store->connection()->settle(u"UPDATE StockList"_s));
    QVERIFY(m_store->connection()->settle(QString()));
    QVERIFY(isHeld());
    m_store->run(u"commit"_s);
    QCOMPARE(available(), u"3"_s);
    QVERIFY(!SqliteConnection(nullptr).hold());
}

void TestHold::commitRefused()
{
    sqlite3_commit_hook(m_store->handle(), refuseCommit, nullptr);
    DbRecordset stock;
    openHeld(stock);
    add(stock, 5);
    sqlite3_commit_hook(m_store->handle(), nullptr, nullptr);
    QCOMPARE(m_store->failures.size(), 1u);
    QCOMPARE(m_store->failures.front().kind, DbFailure::Kind::Write);
    QCOMPARE(m_store->failures.front().statement, u"UPDATE StockList"_s);
    QCOMPARE(m_store->failures.front().engineCode, SQLITE_CONSTRAINT_COMMITHOOK);
    QCOMPARE(stock.Field(u"StockAvailable"_s).number(), 10.0); // as after any other failed write
    QCOMPARE(available(), u"10"_s);
    QVERIFY(m_other->sells());
}

/// A reader stands in the way of a rollback journal's commit, after which the transaction is still there.
void TestHold::commitWaitedForInVain()
{
    m_store->run(u"pragma journal_mode = delete"_s);
    QVERIFY(m_other->run(u"begin; select * from StockList"_s));
    m_store->connection()->setFailureHandler([this](const DbFailure &failure) {
        m_store->failures.push_back(failure);
        QVERIFY(!isHeld()); // the host is told when it is over
    });
    DbRecordset purchase;
    purchase.OpenHeld(statements::purchase(u"HV1"_s), m_store->connection(), Access::Read);
    purchase.AddNew();
    purchase.Field(u"PurchaseID"_s).assign(u"HV1"_s);
    purchase.Update();
    QCOMPARE(m_store->failures.size(), 1u);
    QCOMPARE(m_store->failures.front().statement, u"INSERT PurchaseCart"_s);
    QCOMPARE(m_store->failures.front().engineCode, SQLITE_BUSY);
    QVERIFY(purchase.IsEof());
    QVERIFY(!isHeld());
    QVERIFY(m_other->run(u"commit"_s));
    QCOMPARE(m_store->column(u"select count(*) from PurchaseCart"_s), QStringList{u"0"_s});
}

void TestHold::failedWriteIsTakenBack_data()
{
    QTest::addColumn<QString>("how");
    QTest::newRow("the statement") << u"abort"_s;
    QTest::newRow("with what it did") << u"fail"_s;
    QTest::newRow("the transaction") << u"rollback"_s;
}

void TestHold::failedWriteIsTakenBack()
{
    QFETCH(const QString, how);
    m_store->run(u"create trigger T after update on StockList begin update StoreSettings set Email = 1; "
                 "select raise(%1, 'no'); end"_s.arg(how));
    m_store->run(u"insert into StoreSettings (Email) values (0)"_s);
    DbRecordset stock;
    openHeld(stock);
    QVERIFY(isHeld());
    add(stock, 5);
    QCOMPARE(m_store->failures.size(), 1u);
    QCOMPARE(m_store->failures.front().reason, u"no"_s);
    if (test::shopsAreOnAServer())
        QTRY_VERIFY(!isHeld()); // it need not have answered yet
    QVERIFY(!isHeld());
    QCOMPARE(stock.Field(u"StockAvailable"_s).number(), 10.0);
    QCOMPARE(available(), u"10"_s);
    QCOMPARE(m_store->column(u"select Email from StoreSettings"_s), QStringList{u"0"_s});
}

void TestHold::secondUpdateStandsAlone()
{
    DbRecordset stock;
    openHeld(stock);
    add(stock, 5);
    QVERIFY(m_other->sells());
    stock.Field(u"StockName"_s).assign(u"GREEN TEA"_s);
    stock.Update();
    QCOMPARE(m_store->column(u"select StockName from StockList"_s), QStringList{u"GREEN TEA"_s});
    QCOMPARE(available(), u"14"_s);
}

void TestHold::engineWithoutHolds()
{
    const auto engine = std::make_shared<OtherEngine>();
    QVERIFY(!engine->hold());
    QVERIFY(engine->settle(QString()));
    for (const bool knows : {false, true}) {
        engine->knowsHolds = knows;
        DbRecordset stock;
        stock.OpenHeld(statements::stockById(u"1"_s), engine, Access::Edit);
        stock.AddNew();
        stock.Field(u"StockID"_s).assign(u"1"_s);
        stock.Update();
        QVERIFY(!stock.IsEof()); // the new row can be read
    }
    QCOMPARE(engine->written, 2);
}

void TestHold::engineThatThrows()
{
    const auto engine = std::make_shared<OtherEngine>();
    std::vector<DbFailure> failures;
    engine->setFailureHandler([&](const DbFailure &failure) { failures.push_back(failure); });
    engine->throwsAtHold = true;
    {
        Hold hold(engine);
        QVERIFY(failures.empty());
        QVERIFY(hold.settle(u"UPDATE StockList"_s));
    }
    engine->throwsAtHold = false;
    engine->knowsHolds = true;
    engine->throwsAtSettle = true;
    Hold hold(engine);
    QVERIFY(!hold.settle(u"UPDATE StockList"_s));
    QCOMPARE(failures.size(), 1u);
    QCOMPARE(failures.front().statement, u"UPDATE StockList"_s);
    QCOMPARE(failures.front().reason, u"no settling"_s);
}

void TestHold::withoutConnection()
{
    DbRecordset stock;
    stock.OpenHeld(statements::stockById(u"1"_s), nullptr, Access::Edit);
    QCOMPARE(stock.RecordCount(), 0);
    stock.AddNew();
    stock.Update();
    QVERIFY(stock.IsEof());
}

HARROWBY_CORE_TEST(hold_test, TestHold)
#include "hold_test.moc"
