// SPDX-License-Identifier: MIT
#include "tests/program/test_program.h"
#include "tests/support/database.h"
#include "tests/support/inventory_probe.h"
#include "tests/ui/counter_guest.h"
#include "tests/ui/interruption.h"
#include "ui/widgets/pick_list.h"
#include "ui/widgets/row_list.h"
#include "ui/widgets/text_table_model.h"

#include <QCheckBox>

#include <stdexcept>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::test;

namespace {

const QString firstId = u"HV18030514070907"_s;
using Row = CounterPurchase::Row;

/// The question before a purchase of one tea.
const QString teaQuestion = u"Item List:\r\n\r\n1. 1 x A1  |  TEA = 2.50\r\n\r\n\r\n\r\nPurchased Cart?"_s;

/// Breaks at the end of a receipt, when the purchase has been stored.
class JammedPrinter final : public Printer
{
public:
    [[nodiscard]] QString deviceName() const override { return {}; }
    void setFontSize(int) override {}
    void setFontBold(bool) override {}
    void printLine(const QString &) override {}
    void endDocument() override { throw std::runtime_error("out of paper"); }
};

} // namespace

/// What a host is told of, and when.
class CounterFollowTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cartChangesOnceForAHandler();
    void priceByHandIsTold();
    void purchaseIsTold();
    void purchaseOfALogoutIsTold();
    void rowOfThePurchase_data();
    void rowOfThePurchase();
    void undoAndDeletion();
    void failedDeletionIsNotTold();
    void stockSavedAndDeleted();
    void stockThatWasNotWrittenIsNotTold();
    void toldAfterTheOutermostHandler();
    void toldAlsoWhenAHandlerEndsEarly();
    void closedWindow();
    void windowClosedWithinAHandler();
    void destroyedWindow();
    void slotThatThrows();
    void slotThatSells();
    void whatIsOnTheCounter();
};

void CounterFollowTest::cartChangesOnceForAHandler()
{
    test::Counter till;
    openForGuests(till);
    Guest guest;
    static_cast<void>(guest.heard());
    till.click("Command1_3"); // TEA: GREEN TEA, Mint tea, SAFE, TEA
    QCOMPARE(guest.heard(), QStringList{u"cartChanged"_s});
    till.click("Command1_3");
    QCOMPARE(guest.heard(), QStringList{u"cartChanged"_s});
    till.boxes.expect(u"Delete [A1  |  TEA] from Cart?"_s, box::Ask, Answer::No);
    till.click("Command12");
    QCOMPARE(guest.heard(), QStringList());
    till.boxes.expect(u"Delete [A1  |  TEA] from Cart?"_s, box::Ask, Answer::Yes);
    till.click("Command12");
    QCOMPARE(guest.heard(), QStringList{u"cartChanged"_s});
}

void CounterFollowTest::priceByHandIsTold()
{
    test::Counter till;
    openForGuests(till);
    Guest guest;
    till.click("Command1_3");
    static_cast<void>(guest.heard());
    till.boxes.expectInput(u"Enter new price for item [A1  |  TEA]?"_s, {}, u"2.50"_s, u"2"_s);
    Q_EMIT till.find<RowList>("LV3")->rowOpened(0);
    QCOMPARE(guest.heard(), QStringList{u"cartChanged"_s});
    QCOMPARE(lineTexts(harrowby::Counter::instance().cart()), QStringList{u"A1|TEA|1|2|hand"_s});
    // The same price again is by hand too, but no change of what the cart shows.
    till.click("Command1_3"); // merging prices the line anew
    QCOMPARE(lineTexts(harrowby::Counter::instance().cart()), QStringList{u"A1|TEA|2|5|"_s});
    till.boxes.expectInput(u"Enter new price for item [A1  |  TEA]?"_s, {}, u"5.00"_s, u"5"_s);
    Q_EMIT till.find<RowList>("LV3")->rowOpened(0);
    QCOMPARE(lineTexts(harrowby::Counter::instance().cart()), QStringList{u"A1|TEA|2|5|hand"_s});
    till.boxes.expect(u"Item Already Exist in Cart.\r\nTo Update - YES, To Replace - NO"_s, box::Ask, Answer::No);
    InventoryProbe{till.window()}.addToCart(u"A1  |  TEA"_s, 3, false);
    QCOMPARE(lineTexts(harrowby::Counter::instance().cart()), QStringList{u"A1|TEA|3|7.5|"_s});
}

void CounterFollowTest::purchaseIsTold()
{
    test::Counter till;
    openForGuests(till);
    Guest guest;
    till.click("Command1_2");
    till.click("Command1_3");
    static_cast<void>(guest.heard());
    till.boxes.expect(
        u"Item List:\r\n\r\n1. 1 x S1  |  SAFE = 1,250.00\r\n2. 1 x A1  |  TEA = 2.50\r\n\r\n\r\n\r\nPurchased Cart?"_s,
        box::Ask, Answer::Yes);
    till.click("Command14");
    QCOMPARE(guest.heard(), (QStringList{u"cartChanged"_s, u"purchased "_s + firstId}));
    const CounterPurchase purchase = guest.purchases.back();
    QCOMPARE(purchase.items, u"1 x S1  |  SAFE = 1,250.00, 1 x A1  |  TEA = 2.50"_s);
    QCOMPARE(purchase.items, till.file.rows(u"SELECT PurchasedItems FROM PurchaseCart"_s).first());
    QCOMPARE(purchase.total, 1252.5F);
    QCOMPARE(purchase.user, u"ANN"_s);
    QCOMPARE(lineTexts(purchase.lines), (QStringList{u"S1|SAFE|1|1250|"_s, u"A1|TEA|1|2.5|"_s}));
    QCOMPARE(purchase.row, Row::Written);
}

void CounterFollowTest::purchaseOfALogoutIsTold()
{
    test::Counter till;
    openForGuests(till);
    Guest guest;
    till.click("Command1_3");
    static_cast<void>(guest.heard());
    till.boxes.expect(u"Log out User[ANN]?"_s, box::AskDefaultNo, Answer::Yes);
    till.boxes.expect(u"Cart is not empty, Purchase Cart?"_s, box::AskOrCancel, Answer::Yes);
    till.click("Command27");
    QCOMPARE(guest.heard(), (QStringList{u"cartChanged"_s, u"purchased "_s + firstId, u"loggedOut ANN"_s}));
    QCOMPARE(guest.purchases.back().row, Row::Written);
    QCOMPARE(guest.purchases.back().user, u"ANN"_s);
}

void CounterFollowTest::rowOfThePurchase_data()
{
    QTest::addColumn<QString>("trouble");
    QTest::addColumn<Row>("row");
    QTest::addColumn<int>("rows");

    QTest::newRow("none") << QString() << Row::Written << 1;
    QTest::newRow("insert refused under the lock") << u"insert"_s << Row::NotWritten << 0;
    QTest::newRow("insert refused by the table") << u"trigger"_s << Row::NotWritten << 0;
    QTest::newRow("and without the lock") << u"trigger, no lock"_s << Row::NotWritten << 0;
    QTest::newRow("without the lock, unknown") << u"insert, no lock"_s << Row::NotKnown << 0;
    QTest::newRow("commit lost, certain") << u"commit, certain"_s << Row::NotWritten << 0;
    QTest::newRow("commit lost, unknown") << u"commit"_s << Row::NotKnown << 0;
    QTest::newRow("locked by another program") << u"locked"_s << Row::NotWritten << 0;
    QTest::newRow("check of the ID fails") << u"check"_s << Row::Written << 1;
}

void CounterFollowTest::rowOfThePurchase()
{
    QFETCH(const QString, trouble);
    QFETCH(const Row, row);
    QFETCH(const int, rows);
    test::Counter till;
    openForGuests(till);
    till.click("Command1_3");
    Guest guest;
    static_cast<void>(guest.heard());
    RecordingConnection &connection = *till.connection;
    if (trouble.startsWith(u"insert"_s))
        connection.fails = [](const QString &statement) { return statement == u"insert PurchaseCart"_s; };
    if (trouble.startsWith(u"trigger"_s))
        till.file.sql(u"CREATE TRIGGER no BEFORE INSERT ON PurchaseCart BEGIN SELECT RAISE(ABORT, 'no'); END"_s);
    if (trouble == u"check"_s)
        connection.fails = [](const QString &statement) {
            return statement.startsWith(u"Select * from PurchaseCart"_s);
        };
    connection.refusesHolds = trouble.endsWith(u"no lock"_s);
    connection.losesCommits = trouble.startsWith(u"commit"_s);
    if (trouble == u"commit"_s || trouble == u"insert, no lock"_s)
        connection.mayHave = true;
    if (trouble == u"commit, certain"_s)
        connection.mayHave = false;
    Database other(till.file.path());
    if (trouble == u"locked"_s)
        QVERIFY(other.run(u"BEGIN IMMEDIATE"_s));
    connection.statements.clear();
    till.boxes.expect(teaQuestion, box::Ask, Answer::Yes);
    till.click("Command14");
    QCOMPARE(guest.heard(), (QStringList{u"cartChanged"_s, u"purchased "_s + firstId}));
    QCOMPARE(guest.purchases.back().row, row);
    QVERIFY(trouble != u"locked"_s || other.run(u"ROLLBACK"_s));
    QCOMPARE(till.file.cell(u"SELECT count(*) FROM PurchaseCart"_s).toInt(), rows);
}

void CounterFollowTest::undoAndDeletion()
{
    test::Counter till;
    openForGuests(till);
    till.click("Command1_3");
    till.boxes.expect(teaQuestion, box::Ask, Answer::Yes);
    till.click("Command14");
    Guest guest;
    static_cast<void>(guest.heard());
    till.boxes.expect(u"Undo last Purchased Cart with ID ["_s + firstId + u"]?"_s, box::Ask, Answer::Yes);
    till.click("Command25");
    QCOMPARE(guest.heard(), (QStringList{u"cartChanged"_s, u"purchaseUndone "_s + firstId}));
    till.boxes.expect(teaQuestion, box::Ask, Answer::Yes);
    till.click("Command14");
    static_cast<void>(guest.heard());
    till.setText("Combo17", u" "_s + firstId);
    till.boxes.expect(u"Delete Purchased Cart with ID ["_s + firstId +
                          u"].\r\nAll purchased items will br restored (Y/N)?"_s,
                      box::Ask, Answer::Yes);
    till.click("Command4");
    QCOMPARE(guest.heard(), (QStringList{u"cartChanged"_s, u"purchaseDeleted "_s + firstId}));
    till.setText("Combo17", firstId);
    till.boxes.expect(u"Delete Purchased Cart with ID ["_s + firstId +
                          u"].\r\nAll purchased items will br restored (Y/N)?"_s,
                      box::Ask, Answer::Yes);
    till.boxes.expect(u"Nothing to Undo!"_s, box::Exclamation);
    till.click("Command4");
    QCOMPARE(guest.heard(), QStringList());
}

void CounterFollowTest::failedDeletionIsNotTold()
{
    test::Counter till;
    openForGuests(till);
    till.click("Command1_3");
    till.boxes.expect(teaQuestion, box::Ask, Answer::Yes);
    till.click("Command14");
    Guest guest;
    static_cast<void>(guest.heard());
    till.connection->fails = [](const QString &statement) {
        return statement.startsWith(u"Delete from PurchaseCart"_s);
    };
    till.boxes.expect(u"Undo last Purchased Cart with ID ["_s + firstId + u"]?"_s, box::Ask, Answer::Yes);
    till.click("Command25");
    QCOMPARE(guest.heard(), QStringList{u"cartChanged"_s});
}

void CounterFollowTest::stockSavedAndDeleted()
{
    test::Counter till;
    openForGuests(till);
    till.chooseTab("TabStrip1", WorkArea::EditStock);
    Guest guest;
    static_cast<void>(guest.heard());
    const auto enter = [&till](const QString &id, const QString &name) {
        till.setText("Combo5", u"DRINKS"_s);
        till.setText("Combo6", id);
        till.setText("Combo7", name);
        till.setText("Combo8", u"4.00"_s);
        till.setText("Combo13", u"1"_s);
        till.setText("Combo14", u"9"_s);
        till.setText("Combo15", u"Enabled"_s);
        till.click("Command16");
    };
    till.boxes.answerTheRest([](const QString &) { return Answer::Yes; });
    enter(u"N1"_s, u"NEW TEA"_s);
    QCOMPARE(guest.heard(), QStringList{u"stockSaved >N1"_s});
    enter(u"N2"_s, u"NEW TEA"_s); // found by its name: it has another ID now
    QCOMPARE(guest.heard(), QStringList{u"stockSaved N1>N2"_s});
    enter(u"N2"_s, u"NEWER TEA"_s);
    QCOMPARE(guest.heard(), QStringList{u"stockSaved N2>N2"_s});
    auto *list = till.find<RowList>("LV");
    list->selectRow(list->rows().findRow(u"A2"_s));
    till.click("Command6");
    QCOMPARE(guest.heard(), QStringList{u"stockDeleted A2"_s});
    QCOMPARE(till.file.cell(u"SELECT count(*) FROM StockList WHERE StockID = 'a2'"_s), u"0"_s);
    till.connection->fails = [](const QString &statement) { return statement.startsWith(u"Delete from StockList"_s); };
    list->selectRow(list->rows().findRow(u"S1"_s));
    till.click("Command6");
    QCOMPARE(guest.heard(), QStringList());
}

void CounterFollowTest::stockThatWasNotWrittenIsNotTold()
{
    test::Counter till;
    openForGuests(till);
    till.chooseTab("TabStrip1", WorkArea::EditStock);
    Guest guest;
    static_cast<void>(guest.heard());
    till.connection->fails = [](const QString &statement) { return statement == u"insert StockList"_s; };
    till.setText("Combo5", u"DRINKS"_s);
    till.setText("Combo6", u"N1"_s);
    till.setText("Combo7", u"NEW TEA"_s);
    till.setText("Combo8", u"4.00"_s);
    till.setText("Combo13", u"1"_s);
    till.setText("Combo14", u"9"_s);
    till.setText("Combo15", u"Enabled"_s);
    till.click("Command16");
    QCOMPARE(guest.heard(), QStringList());
}

void CounterFollowTest::toldAfterTheOutermostHandler()
{
    test::Counter till;
    openForGuests(till);
    Guest guest;
    static_cast<void>(guest.heard());
    QStringList meanwhile;
    Interruption sale(1, [&] {
        till.click("Command1_3");
        meanwhile = guest.heard(); // nothing yet: the outer handler still fills its list
        QCOMPARE(till.cart().size(), 1);
    });
    sale.watchButton(*till.find("Command1_1"));
    till.click("Command24");
    QVERIFY(sale.isDone());
    QCOMPARE(meanwhile, QStringList());
    QCOMPARE(guest.heard(), QStringList{u"cartChanged"_s});
}

void CounterFollowTest::toldAlsoWhenAHandlerEndsEarly()
{
    test::Counter till;
    openForGuests(till);
    till.click("Command1_3");
    till.printers->setCurrent(std::make_shared<JammedPrinter>());
    till.find<QCheckBox>("Check5")->setChecked(true);
    Guest guest;
    static_cast<void>(guest.heard());
    till.boxes.expect(teaQuestion, box::Ask, Answer::Yes);
    till.click("Command14");
    QCOMPARE(guest.heard(), (QStringList{u"cartChanged"_s, u"purchased "_s + firstId}));
    QCOMPARE(guest.purchases.back().row, Row::Written);
}

void CounterFollowTest::closedWindow()
{
    test::Counter till;
    openForGuests(till);
    Guest guest;
    static_cast<void>(guest.heard());
    till.boxes.expect(u"Close Inventory?"_s, box::Ask, Answer::No);
    till.window().close();
    QCOMPARE(guest.heard(), QStringList());
    QVERIFY(harrowby::Counter::instance().isOpen());
    till.close();
    QCOMPARE(guest.heard(), QStringList{u"windowClosed"_s});
    QVERIFY(!harrowby::Counter::instance().isOpen());
    QVERIFY(!harrowby::Counter::instance().user());
    QCOMPARE(harrowby::Counter::instance().sell(u"A1"_s), CounterAnswer::NoWindow);
    till.open();
    QCOMPARE(guest.heard(), QStringList{u"windowOpened"_s});
}

void CounterFollowTest::windowClosedWithinAHandler()
{
    test::Counter till;
    openForGuests(till);
    Guest guest;
    static_cast<void>(guest.heard());
    QStringList meanwhile;
    bool wasOpen = true;
    Interruption close(1, [&] {
        till.click("Command1_3");
        till.boxes.expect(u"Close Inventory?"_s, box::Ask, Answer::Yes);
        till.window().close();
        meanwhile = guest.heard();
        wasOpen = harrowby::Counter::instance().isOpen();
    });
    close.watchButton(*till.find("Command1_1"));
    till.click("Command24");
    QVERIFY(close.isDone());
    QVERIFY(!wasOpen);
    QCOMPARE(meanwhile, QStringList());
    QCOMPARE(guest.heard(), (QStringList{u"cartChanged"_s, u"windowClosed"_s}));
}

void CounterFollowTest::destroyedWindow()
{
    test::Counter till;
    openForGuests(till);
    Guest guest;
    static_cast<void>(guest.heard());
    delete &till.window();
    QVERIFY(!harrowby::Counter::instance().isOpen());
    QCOMPARE(guest.heard(), QStringList{u"windowClosed"_s});
}

void CounterFollowTest::slotThatThrows()
{
    test::Counter till;
    openForGuests(till);
    Guest guest;
    static_cast<void>(guest.heard());
    QObject context;
    connect(&harrowby::Counter::instance(), &harrowby::Counter::cartChanged, &context,
            [] { throw std::runtime_error("the host's"); });
    till.click("Command1_3");
    static_cast<void>(guest.heard());
    till.boxes.expect(u"Log out User[ANN]?"_s, box::AskDefaultNo, Answer::Yes);
    till.boxes.expect(u"Cart is not empty, Purchase Cart?"_s, box::AskOrCancel, Answer::No);
    till.click("Command27");
    QCOMPARE(guest.heard(), (QStringList{u"cartChanged"_s, u"loggedOut ANN"_s}));
}

void CounterFollowTest::slotThatSells()
{
    test::Counter till;
    till.file.addUser(u"ANN"_s, u"PW"_s);
    till.file.addItem(u"A1"_s, u"TEA"_s, 2.5, 10);
    till.open();
    Guest guest;
    connect(&harrowby::Counter::instance(), &harrowby::Counter::loggedIn, &guest,
            [] { QCOMPARE(harrowby::Counter::instance().sell(u"A1"_s), CounterAnswer::Done); });
    till.logIn(u"ANN"_s, u"PW"_s);
    QCOMPARE(guest.heard(), (QStringList{u"loggedIn ANN"_s, u"cartChanged"_s}));
    QCOMPARE(till.cart(), QStringList{u"A1  |  TEA|1|2.50"_s});
}

void CounterFollowTest::whatIsOnTheCounter()
{
    harrowby::Counter &counter = harrowby::Counter::instance();
    QVERIFY(!counter.isOpen() && !counter.isBusy() && counter.cart().empty());
    test::Counter till;
    openForGuests(till);
    QVERIFY(counter.isOpen());
    QCOMPARE(counter.total(), 0.0F);
    till.click("Command1_2");
    till.click("Command1_0");
    QCOMPARE(lineTexts(counter.cart()), (QStringList{u"S1|SAFE|1|1250|"_s, u"a2|GREEN TEA|1|3|"_s}));
    QCOMPARE(counter.total(), 1253.0F);
    till.boxes.expectInput(u"Enter new price for item [S1  |  SAFE]?"_s, {}, u"1,250.00"_s, u"1000"_s);
    Q_EMIT till.find<RowList>("LV3")->selectRow(0);
    Q_EMIT till.find<RowList>("LV3")->rowOpened(0);
    QCOMPARE(till.text("Label5"), u"Total: 1,253.00"_s); // stale
    QCOMPARE(counter.total(), 1003.0F);
    bool busy = false;
    till.boxes.expect(u"Clear Cart?"_s, box::Ask, Answer::No, [&] { busy = counter.isBusy(); });
    till.click("Command13");
    QVERIFY(busy);
    QVERIFY(!counter.isBusy());
}

HARROWBY_TEST(counter_follow_test, CounterFollowTest)
#include "counter_follow_test.moc"
