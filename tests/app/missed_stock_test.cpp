// SPDX-License-Identifier: MIT
#include "app/search/finding_connection.h"
#include "app/shop/failure_notice.h"
#include "store/statement_texts.h"
#include "tests/app/desk_till.h"
#include "tests/app/import_desk.h"
#include "tests/program/test_program.h"

#include <harrowby/counter.h>

#include <QFileInfo>
#include <QLabel>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;

/// Names, categories and prices that an office changes while the till shows the items and has them in the cart: what is
/// sold, what is told, and what is written down, at the real window.
class MissedStockTest : public app::test::DeskTill
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void statementsAreTheComponentsOwn();
    void itemRenamedInTheCartIsLowered();
    void itemRenamedInTheCartIsAddedBack();
    void remarkEndsWithTheNextPurchase();
    void itemGoneFromTheStoreIsTold();
    void itemOfASharedIdIsTold();
    void nothingIsLoweredForAPurchaseThatIsNotStored();
    void whatCannotBeWrittenDownIsNotLowered();
    void oldButtonSaysTheNewName();
    void oldButtonSaysWhyItSellsNothing_data();
    void oldButtonSaysWhyItSellsNothing();

private:
    void importItems(const QByteArray &text) const
    {
        auto own = openStoreRecords(m_counter->file.path(), Access::Write);
        QVERIFY(own.has_value());
        ImportDesk desk;
        desk.user = desk.who = u"JILL"_s;
        desk.place = officePlace;
        desk.store = m_counter->file.path();
        desk.backupFolder = QFileInfo(desk.store).path();
        CatalogueImport import((*own)->records(), desk);
        ImportChoices choices = app::test::ImportBench::choicesFor(text);
        choices.makeCategories = true;
        const auto staged = import.stage(app::test::ImportBench::file(text), choices, app::test::goOn);
        QVERIFY2(staged.has_value(), staged ? "" : qPrintable(staged.error().words));
        const auto done = import.apply(staged->id, false, nullptr, app::test::goOn);
        QVERIFY2(done.has_value(), done ? "" : qPrintable(done.error().words));
    }
    void putTeaIntoTheCart()
    {
        click("Command1_0");
        click("Command1_0");
        QCOMPARE(m_counter->cart().size(), 1);
    }
    [[nodiscard]] QString said() const { return m_till->banner().text(); }
    [[nodiscard]] QString told(const char *label) const
    {
        return m_notice->isHidden() ? QString()
                                    : withoutId(m_notice->findChild<QLabel *>(QLatin1StringView(label))->text());
    }
    [[nodiscard]] QStringList stock() const
    {
        return m_counter->file.rows(u"select StockID, StockName, StockAvailable from StockList order by rowid"_s);
    }
    /// Of the till, each as KIND|WHO|WHAT.
    [[nodiscard]] QStringList deeds() const
    {
        QStringList all;
        const auto rows = m_records->read(
            kept::activity(),
            {u"select Kind, Who, What from HarrowbyActivity where Place = 'till DESK 1' order by rowid"_s, {}});
        for (const RecordRow &row : rows.value_or(QList<RecordRow>()))
            all << recordText(row.at(0)) + u'|' + recordText(row.at(1)) + u'|' + withoutId(recordText(row.at(2)));
        return all;
    }

    std::unique_ptr<FailureNotice> m_notice;
};

void MissedStockTest::init()
{
    makeShop();
    m_notice = std::make_unique<FailureNotice>();
    makeTill();
    const auto connection =
        std::make_shared<FindingConnection>(m_counter->file.handle(), QString(), [] { return true; });
    followMissedStock(*connection, m_till->missedStock(), *m_notice);
    m_counter->connection = std::make_shared<harrowby::test::RecordingConnection>(connection);
    openWindow();
}

void MissedStockTest::cleanup()
{
    m_counter->connection.reset();
    m_counter.reset();
    m_till.reset();
    m_notice.reset();
    m_records.reset();
}

void MissedStockTest::statementsAreTheComponentsOwn()
{
    using Kind = StockMiss::Kind;
    const auto is = [](const Statement &statement, const StockMiss &wanted) {
        const auto miss = missOf(statement.sql());
        return miss && miss->kind == wanted.kind && miss->stockId == wanted.stockId && miss->name == wanted.name &&
               miss->units == wanted.units;
    };
    QVERIFY(is(statements::lowerStock(1250.5, u"A 1"_s, u"BLACK TEA"_s),
               {Kind::NotLowered, u"A 1"_s, u"BLACK TEA"_s, 1250.5}));
    QVERIFY(is(statements::lowerStock(-2, {}, {}), {Kind::NotLowered, {}, {}, -2}));
    QVERIFY(is(statements::raiseStock(3, u"A1"_s), {Kind::NotRaised, u"A1"_s, {}, 3}));
    QVERIFY(is(statements::availableStock(u"A1"_s, u"TEA"_s), {Kind::NotForSale, u"A1"_s, u"TEA"_s, 0}));
    for (const Statement &other : {statements::stockById(u"A1"_s), statements::allStock(), statements::deleteStock({}),
                                   statements::quickSalesPage(true, u"DRINKS"_s, 0)})
        QVERIFY2(!missOf(other.sql()), qPrintable(other.sql()));
    QVERIFY(!missOf(QString(statements::raiseStock(3, u"A1"_s).sql() + u" or 1"_s)));
}

void MissedStockTest::itemRenamedInTheCartIsLowered()
{
    putTeaIntoTheCart();
    importItems("ID,Name,Category,Cost\nA1,GREEN TEA,HOT,3\n");
    click("Command14");
    QCOMPARE(m_counter->file.rows(u"select PurchasedItems, PurchasedItemsCost from PurchaseCart"_s),
             QStringList{u"2 x A1  |  TEA = 5.00|5"_s}); // as it was in the cart
    QCOMPARE(stock(), QStringList{u"A1|GREEN TEA|28"_s});
    QCOMPARE(deeds(), QStringList{u"StockOfRenamed|ADMINISTRATOR|2 x TEA (A1) sold under this name (purchase ID); "
                                  "the item is called GREEN TEA now, and its stock was lowered."_s});
    QCOMPARE(said(), u"TEA (A1) is called GREEN TEA now; its stock was lowered."_s);
    QCOMPARE(told("failureWork"), QString());
}

/// The purchase keeps the old name; what is taken back is added by the ID.
void MissedStockTest::itemRenamedInTheCartIsAddedBack()
{
    putTeaIntoTheCart();
    importItems("ID,Name,Category,Cost\nA1,GREEN TEA,HOT,3\n");
    click("Command14");
    click("Command25");
    QCOMPARE(stock(), QStringList{u"A1|GREEN TEA|30"_s});
    QCOMPARE(m_counter->cart(), QStringList{u"A1  |  TEA|2|6.00"_s}); // at the price of today
    click("Command14");
    QCOMPARE(stock(), QStringList{u"A1|GREEN TEA|28"_s});
    m_counter->setText("Combo17", m_id);
    click("Command4");
    QCOMPARE(stock(), QStringList{u"A1|GREEN TEA|30"_s});
    QCOMPARE(told("failureWork"), QString());
}

void MissedStockTest::remarkEndsWithTheNextPurchase()
{
    putTeaIntoTheCart();
    importItems("ID,Name\nA1,GREEN TEA\n");
    click("Command14");
    QVERIFY(!said().isEmpty());
    m_counter->pick("Combo1", 0); // loads the items
    putTeaIntoTheCart();
    click("Command14");
    QCOMPARE(said(), QString());
    QCOMPARE(stock(), QStringList{u"A1|GREEN TEA|26"_s});
    QCOMPARE(deeds().size(), 1);
}

void MissedStockTest::itemGoneFromTheStoreIsTold()
{
    putTeaIntoTheCart();
    m_counter->file.sql(u"delete from StockList"_s);
    click("Command14");
    QCOMPARE(told("failureWork"), u"2 x TEA (A1) sold, but no stock was lowered (purchase ID)."_s);
    QCOMPARE(told("failureReason"), u"Reason: No item has the ID A1 any more."_s);
    QVERIFY(told("failureAdvice").contains(u"Have the item counted"_s));
    QCOMPARE(deeds(), QStringList{u"StockNotChanged|ADMINISTRATOR|2 x TEA (A1) sold, but no stock was lowered "
                                  "(purchase ID). No item has the ID A1 any more."_s});
    m_notice->dismiss();
    click("Command25");
    QCOMPARE(told("failureWork"), u"2 x TEA (A1) taken back, but no stock was raised (purchase ID)."_s);
    QVERIFY(deeds().contains(u"StockNotChanged|ADMINISTRATOR|2 x TEA (A1) taken back, but no stock was raised "
                             "(purchase ID). No item has the ID A1 any more."_s));
    m_notice->dismiss();
    click("Command14"); // the same once more
    QCOMPARE(told("failureWork"), u"2 x TEA (A1) sold, but no stock was lowered (purchase ID)."_s);
}

void MissedStockTest::itemOfASharedIdIsTold()
{
    putTeaIntoTheCart();
    m_counter->file.sql(u"update StockList set StockName = 'GREEN TEA'"_s);
    m_counter->file.addItem(u"A1"_s, u"CUP"_s, 1, 5);
    click("Command14");
    QCOMPARE(stock(), (QStringList{u"A1|GREEN TEA|30"_s, u"A1|CUP|5"_s}));
    QCOMPARE(told("failureReason"), u"Reason: No item has this name any more, and which of those with the ID A1 it "
                                    "was is not known."_s);
    QCOMPARE(deeds().size(), 1);
}

void MissedStockTest::nothingIsLoweredForAPurchaseThatIsNotStored()
{
    putTeaIntoTheCart();
    importItems("ID,Name\nA1,GREEN TEA\n");
    m_counter->connection->fails = [](const QString &statement) { return statement == "insert PurchaseCart"_L1; };
    click("Command14");
    QCOMPARE(m_counter->file.rows(u"select * from PurchaseCart"_s), QStringList());
    QCOMPARE(stock(), QStringList{u"A1|GREEN TEA|30"_s});
    QCOMPARE(deeds(), QStringList());
}

void MissedStockTest::whatCannotBeWrittenDownIsNotLowered()
{
    putTeaIntoTheCart();
    m_counter->file.sql(u"update StockList set StockName = 'GREEN TEA'; create table HarrowbyActivity (Other text)"_s);
    click("Command14");
    QCOMPARE(stock(), QStringList{u"A1|GREEN TEA|30"_s});
    QCOMPARE(told("failureWork"), u"2 x TEA (A1) sold, but no stock was lowered (purchase ID)."_s);
    QCOMPARE(told("failureReason"), u"Reason: The item is called GREEN TEA now; its stock could not be lowered."_s);
}

void MissedStockTest::oldButtonSaysTheNewName()
{
    importItems("ID,Name,Category,Cost\nA1,GREEN TEA,HOT,3\n");
    click("Command1_0");
    QCOMPARE(m_counter->cart(), QStringList());
    QCOMPARE(said(), u"TEA (A1) is called GREEN TEA now. Choose its category again."_s);
    m_counter->pick("Combo1", 0);
    click("Command1_0");
    QCOMPARE(m_counter->cart(), QStringList{u"A1  |  GREEN TEA|1|3.00"_s});
    QCOMPARE(said(), QString());
    click("Command14");
    QCOMPARE(stock(), QStringList{u"A1|GREEN TEA|29"_s});
    QCOMPARE(deeds(), QStringList());
}

void MissedStockTest::oldButtonSaysWhyItSellsNothing_data()
{
    QTest::addColumn<QString>("change");
    QTest::addColumn<QString>("words");
    const QString again = u" Choose its category again."_s;
    QTest::newRow("gone") << u"delete from StockList"_s << u"TEA (A1) is not in stock any more."_s + again;
    QTest::newRow("switched off") << u"update StockList set StockUse = 'Disabled'"_s
                                  << u"TEA (A1) is switched off in the stock."_s + again;
    QTest::newRow("small letters") << u"update StockList set StockName = 'Tea'"_s
                                   << u"TEA (A1) has small letters in its name. "
                                      "Save it once under \"Add/Edit Stock\"."_s;
    QTest::newRow("sold out") << u"update StockList set StockAvailable = 0"_s << QString(); // the window's own box
}

void MissedStockTest::oldButtonSaysWhyItSellsNothing()
{
    QFETCH(QString, change);
    m_counter->file.sql(change);
    click("Command1_0");
    QCOMPARE(m_counter->cart(), QStringList());
    QTEST(said(), "words");
}

HARROWBY_TEST(app_missed_stock_test, MissedStockTest)
#include "missed_stock_test.moc"
