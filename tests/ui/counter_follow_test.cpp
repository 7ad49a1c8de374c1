// SPDX-License-Identifier: MIT
#include "tests/doubles/database.h"
#include "tests/program/test_program.h"
#include "tests/support/inventory_probe.h"
#include "tests/ui/counter_guest.h"
#include "tests/ui/interruption.h"
#include "ui/widgets/pick_list.h"
#include "ui/widgets/row_list.h"
#include "ui/widgets/text_table_model.h"

#include <QCheckBox>

#include <memory>
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
    void init();
    void cleanup();
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

private:
    std::unique_ptr<test::Counter> m_till; ///< opened, with ANN logged in
    std::unique_ptr<Guest> m_guest;        ///< who has been told of that
};

void CounterFollowTest::init()
{
    m_till = std::make_unique<test::Counter>();
    openForGuests(*m_till);
    m_guest = std::make_unique<Guest>();
    static_cast<void>(m_guest->heard());
}

void CounterFollowTest::cleanup()
{
    m_guest.reset();
    m_till.reset();
}

void CounterFollowTest::cartChangesOnceForAHandler()
{
    m_till->click("Command1_3"); // TEA: GREEN TEA, Mint tea, SAFE, TEA
    QCOMPARE(m_guest->heard(), QStringList{u"cartChanged"_s});
    m_till->click("Command1_3");
    QCOMPARE(m_guest->heard(), QStringList{u"cartChanged"_s});
    m_till->boxes.expect(u"Delete [A1  |  TEA] from Cart?"_s, box::Ask, Answer::No);
    m_till->click("Command12");
    QCOMPARE(m_guest->heard(), QStringList());
    m_till->boxes.expect(u"Delete [A1  |  TEA] from Cart?"_s, box::Ask, Answer::Yes);
    m_till->click("Command12");
    QCOMPARE(m_guest->heard(), QStringList{u"cartChanged"_s});
}

void CounterFollowTest::priceByHandIsTold()
{
    m_till->click("Command1_3");
    static_cast<void>(m_guest->heard());
    m_till->boxes.expectInput(u"Enter new price for item [A1  |  TEA]?"_s, {}, u"2.50"_s, u"2"_s);
    Q_EMIT m_till->find<RowList>("LV3")->rowOpened(0);
    QCOMPARE(m_guest->heard(), QStringList{u"cartChanged"_s});
    QCOMPARE(lineTexts(harrowby::Counter::instance().cart()), QStringList{u"A1|TEA|1|2|hand"_s});
    // The same price again is by hand too, but no change of what the cart shows.
    m_till->click("Command1_3"); // merging prices the line anew
    QCOMPARE(lineTexts(harrowby::Counter::instance().cart()), QStringList{u"A1|TEA|2|5|"_s});
    m_till->boxes.expectInput(u"Enter new price for item [A1  |  TEA]?"_s, {}, u"5.00"_s, u"5"_s);
    Q_EMIT m_till->find<RowList>("LV3")->rowOpened(0);
    QCOMPARE(lineTexts(harrowby::Counter::instance().cart()), QStringList{u"A1|TEA|2|5|hand"_s});
    m_till->boxes.expect(u"Item Already Exist in Cart.\r\nTo Update - YES, To Replace - NO"_s, box::Ask, Answer::No);
    InventoryProbe{m_till->window()}.addToCart(u"A1  |  TEA"_s, 3, false);
    QCOMPARE(lineTexts(harrowby::Counter::instance().cart()), QStringList{u"A1|TEA|3|7.5|"_s});
}

void CounterFollowTest::purchaseIsTold()
{
    m_till->click("Command1_2");
    m_till->click("Command1_3");
    static_cast<void>(m_guest->heard());
    m_till->boxes.expect(
        u"Item List:\r\n\r\n1. 1 x S1  |  SAFE = 1,250.00\r\n2. 1 x A1  |  TEA = 2.50\r\n\r\n\r\n\r\nPurchased Cart?"_s,
        box::Ask, Answer::Yes);
    m_till->click("Command14");
    QCOMPARE(m_guest->heard(), (QStringList{u"cartChanged"_s, u"purchased "_s + firstId}));
    const CounterPurchase purchase = m_guest->purchases.back();
    QCOMPARE(purchase.items, u"1 x S1  |  SAFE = 1,250.00, 1 x A1  |  TEA = 2.50"_s);
    QCOMPARE(purchase.items, m_till->file.rows(u"SELECT PurchasedItems FROM PurchaseCart"_s).first());
    QCOMPARE(purchase.total, 1252.5F);
    QCOMPARE(purchase.user, u"ANN"_s);
    QCOMPARE(lineTexts(purchase.lines), (QStringList{u"S1|SAFE|1|1250|"_s, u"A1|TEA|1|2.5|"_s}));
    QCOMPARE(purchase.row, Row::Written);
}

void CounterFollowTest::purchaseOfALogoutIsTold()
{
    m_till->click("Command1_3");
    static_cast<void>(m_guest->heard());
    m_till->boxes.expect(u"Log out User[ANN]?"_s, box::AskDefaultNo, Answer::Yes);
    m_till->boxes.expect(u"Cart is not empty, Purchase Cart?"_s, box::AskOrCancel, Answer::Yes);
    m_till->click("Command27");
    QCOMPARE(m_guest->heard(), (QStringList{u"cartChanged"_s, u"purchased "_s + firstId, u"loggedOut ANN"_s}));
    QCOMPARE(m_guest->purchases.back().row, Row::Written);
    QCOMPARE(m_guest->purchases.back().user, u"ANN"_s);
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
    m_till->click("Command1_3");
    static_cast<void>(m_guest->heard());
    RecordingConnection &connection = *m_till->connection;
    if (trouble.startsWith(u"insert"_s))
        connection.fails = [](const QString &statement) { return statement == u"insert PurchaseCart"_s; };
    if (trouble.startsWith(u"trigger"_s))
        m_till->file.sql(u"CREATE TRIGGER no BEFORE INSERT ON PurchaseCart BEGIN SELECT RAISE(ABORT, 'no'); END"_s);
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
    Database other(m_till->file.path());
    if (trouble == u"locked"_s)
        QVERIFY(other.run(u"BEGIN IMMEDIATE"_s));
    connection.statements.clear();
    m_till->boxes.expect(teaQuestion, box::Ask, Answer::Yes);
    m_till->click("Command14");
    QCOMPARE(m_guest->heard(), (QStringList{u"cartChanged"_s, u"purchased "_s + firstId}));
    QCOMPARE(m_guest->purchases.back().row, row);
    QVERIFY(trouble != u"locked"_s || other.run(u"ROLLBACK"_s));
    QCOMPARE(m_till->file.cell(u"SELECT count(*) FROM PurchaseCart"_s).toInt(), rows);
}

void CounterFollowTest::undoAndDeletion()
{
    m_till->click("Command1_3");
    m_till->boxes.expect(teaQuestion, box::Ask, Answer::Yes);
    m_till->click("Command14");
    static_cast<void>(m_guest->heard());
    m_till->boxes.expect(u"Undo last Purchased Cart with ID ["_s + firstId + u"]?"_s, box::Ask, Answer::Yes);
    m_till->click("Command25");
    QCOMPARE(m_guest->heard(), (QStringList{u"cartChanged"_s, u"purchaseUndone "_s + firstId}));
    m_till->boxes.expect(teaQuestion, box::Ask, Answer::Yes);
    m_till->click("Command14");
    static_cast<void>(m_guest->heard());
    m_till->setText("Combo17", u" "_s + firstId);
    m_till->boxes.expect(u"Delete Purchased Cart with ID ["_s + firstId +
                             u"].\r\nAll purchased items will br restored (Y/N)?"_s,
                         box::Ask, Answer::Yes);
    m_till->click("Command4");
    QCOMPARE(m_guest->heard(), (QStringList{u"cartChanged"_s, u"purchaseDeleted "_s + firstId}));
    m_till->setText("Combo17", firstId);
    m_till->boxes.expect(u"Delete Purchased Cart with ID ["_s + firstId +
                             u"].\r\nAll purchased items will br restored (Y/N)?"_s,
                         box::Ask, Answer::Yes);
    m_till->boxes.expect(u"Nothing to Undo!"_s, box::Exclamation);
    m_till->click("Command4");
    QCOMPARE(m_guest->heard(), QStringList());
}

void CounterFollowTest::failedDeletionIsNotTold()
{
    m_till->click("Command1_3");
    m_till->boxes.expect(teaQuestion, box::Ask, Answer::Yes);
    m_till->click("Command14");
    static_cast<void>(m_guest->heard());
    m_till->connection->fails = [](const QString &statement) {
        return statement.startsWith(u"Delete from PurchaseCart"_s);
    };
    m_till->boxes.expect(u"Undo last Purchased Cart with ID ["_s + firstId + u"]?"_s, box::Ask, Answer::Yes);
    m_till->click("Command25");
    QCOMPARE(m_guest->heard(), QStringList{u"cartChanged"_s});
}

void CounterFollowTest::stockSavedAndDeleted()
{
    m_till->chooseTab("TabStrip1", WorkArea::EditStock);
    static_cast<void>(m_guest->heard());
    const auto enter = [this](const QString &id, const QString &name) {
        m_till->setText("Combo5", u"DRINKS"_s);
        m_till->setText("Combo6", id);
        m_till->setText("Combo7", name);
        m_till->setText("Combo8", u"4.00"_s);
        m_till->setText("Combo13", u"1"_s);
        m_till->setText("Combo14", u"9"_s);
        m_till->setText("Combo15", u"Enabled"_s);
        m_till->click("Command16");
    };
    m_till->boxes.answerTheRest([](const QString &) { return Answer::Yes; });
    enter(u"N1"_s, u"NEW TEA"_s);
    QCOMPARE(m_guest->heard(), QStringList{u"stockSaved >N1"_s});
    enter(u"N2"_s, u"NEW TEA"_s); // found by its name: it has another ID now
    QCOMPARE(m_guest->heard(), QStringList{u"stockSaved N1>N2"_s});
    enter(u"N2"_s, u"NEWER TEA"_s);
    QCOMPARE(m_guest->heard(), QStringList{u"stockSaved N2>N2"_s});
    auto *list = m_till->find<RowList>("LV");
    list->selectRow(list->rows().findRow(u"A2"_s));
    m_till->click("Command6");
    QCOMPARE(m_guest->heard(), QStringList{u"stockDeleted A2"_s});
    QCOMPARE(m_till->file.cell(u"SELECT count(*) FROM StockList WHERE StockID = 'a2'"_s), u"0"_s);
    m_till->connection->fails = [](const QString &statement) {
        return statement.startsWith(u"Delete from StockList"_s);
    };
    list->selectRow(list->rows().findRow(u"S1"_s));
    m_till->click("Command6");
    QCOMPARE(m_guest->heard(), QStringList());
}

void CounterFollowTest::stockThatWasNotWrittenIsNotTold()
{
    m_till->chooseTab("TabStrip1", WorkArea::EditStock);
    static_cast<void>(m_guest->heard());
    m_till->connection->fails = [](const QString &statement) { return statement == u"insert StockList"_s; };
    m_till->setText("Combo5", u"DRINKS"_s);
    m_till->setText("Combo6", u"N1"_s);
    m_till->setText("Combo7", u"NEW TEA"_s);
    m_till->setText("Combo8", u"4.00"_s);
    m_till->setText("Combo13", u"1"_s);
    m_till->setText("Combo14", u"9"_s);
    m_till->setText("Combo15", u"Enabled"_s);
    m_till->click("Command16");
    QCOMPARE(m_guest->heard(), QStringList());
}

void CounterFollowTest::toldAfterTheOutermostHandler()
{
    QStringList meanwhile;
    Interruption sale(1, [&] {
        m_till->click("Command1_3");
        meanwhile = m_guest->heard(); // nothing yet: the outer handler still fills its list
        QCOMPARE(m_till->cart().size(), 1);
    });
    sale.watchButton(*m_till->find("Command1_1"));
    m_till->click("Command24");
    QVERIFY(sale.isDone());
    QCOMPARE(meanwhile, QStringList());
    QCOMPARE(m_guest->heard(), QStringList{u"cartChanged"_s});
}

void CounterFollowTest::toldAlsoWhenAHandlerEndsEarly()
{
    m_till->click("Command1_3");
    m_till->printers->setCurrent(std::make_shared<JammedPrinter>());
    m_till->find<QCheckBox>("Check5")->setChecked(true);
    static_cast<void>(m_guest->heard());
    m_till->boxes.expect(teaQuestion, box::Ask, Answer::Yes);
    m_till->click("Command14");
    QCOMPARE(m_guest->heard(), (QStringList{u"cartChanged"_s, u"purchased "_s + firstId}));
    QCOMPARE(m_guest->purchases.back().row, Row::Written);
}

void CounterFollowTest::closedWindow()
{
    m_till->boxes.expect(u"Close Inventory?"_s, box::Ask, Answer::No);
    m_till->window().close();
    QCOMPARE(m_guest->heard(), QStringList());
    QVERIFY(harrowby::Counter::instance().isOpen());
    m_till->close();
    QCOMPARE(m_guest->heard(), QStringList{u"windowClosed"_s});
    QVERIFY(!harrowby::Counter::instance().isOpen());
    QVERIFY(!harrowby::Counter::instance().user());
    QCOMPARE(harrowby::Counter::instance().sell(u"A1"_s), CounterAnswer::NoWindow);
    m_till->open();
    QCOMPARE(m_guest->heard(), QStringList{u"windowOpened"_s});
}

void CounterFollowTest::windowClosedWithinAHandler()
{
    QStringList meanwhile;
    bool wasOpen = true;
    Interruption close(1, [&] {
        m_till->click("Command1_3");
        m_till->boxes.expect(u"Close Inventory?"_s, box::Ask, Answer::Yes);
        m_till->window().close();
        meanwhile = m_guest->heard();
        wasOpen = harrowby::Counter::instance().isOpen();
    });
    close.watchButton(*m_till->find("Command1_1"));
    m_till->click("Command24");
    QVERIFY(close.isDone());
    QVERIFY(!wasOpen);
    QCOMPARE(meanwhile, QStringList());
    QCOMPARE(m_guest->heard(), (QStringList{u"cartChanged"_s, u"windowClosed"_s}));
}

void CounterFollowTest::destroyedWindow()
{
    delete &m_till->window();
    QVERIFY(!harrowby::Counter::instance().isOpen());
    QCOMPARE(m_guest->heard(), QStringList{u"windowClosed"_s});
}

void CounterFollowTest::slotThatThrows()
{
    QObject context;
    connect(&harrowby::Counter::instance(), &harrowby::Counter::cartChanged, &context,
            [] { throw std::runtime_error("the host's"); });
    m_till->click("Command1_3");
    static_cast<void>(m_guest->heard());
    m_till->boxes.expect(u"Log out User[ANN]?"_s, box::AskDefaultNo, Answer::Yes);
    m_till->boxes.expect(u"Cart is not empty, Purchase Cart?"_s, box::AskOrCancel, Answer::No);
    m_till->click("Command27");
    QCOMPARE(m_guest->heard(), (QStringList{u"cartChanged"_s, u"loggedOut ANN"_s}));
}

void CounterFollowTest::slotThatSells()
{
    m_till.reset();
    m_till = std::make_unique<test::Counter>();
    m_till->file.addUser(u"ANN"_s, u"PW"_s);
    m_till->file.addItem(u"A1"_s, u"TEA"_s, 2.5, 10);
    m_till->open();
    connect(&harrowby::Counter::instance(), &harrowby::Counter::loggedIn, m_guest.get(),
            [] { QCOMPARE(harrowby::Counter::instance().sell(u"A1"_s), CounterAnswer::Done); });
    static_cast<void>(m_guest->heard());
    m_till->logIn(u"ANN"_s, u"PW"_s);
    QCOMPARE(m_guest->heard(), (QStringList{u"loggedIn ANN"_s, u"cartChanged"_s}));
    QCOMPARE(m_till->cart(), QStringList{u"A1  |  TEA|1|2.50"_s});
}

void CounterFollowTest::whatIsOnTheCounter()
{
    harrowby::Counter &counter = harrowby::Counter::instance();
    m_till.reset();
    QVERIFY(!counter.isOpen() && !counter.isBusy() && counter.cart().empty());
    m_till = std::make_unique<test::Counter>();
    openForGuests(*m_till);
    QVERIFY(counter.isOpen());
    QCOMPARE(counter.total(), 0.0F);
    m_till->click("Command1_2");
    m_till->click("Command1_0");
    QCOMPARE(lineTexts(counter.cart()), (QStringList{u"S1|SAFE|1|1250|"_s, u"a2|GREEN TEA|1|3|"_s}));
    QCOMPARE(counter.total(), 1253.0F);
    m_till->boxes.expectInput(u"Enter new price for item [S1  |  SAFE]?"_s, {}, u"1,250.00"_s, u"1000"_s);
    Q_EMIT m_till->find<RowList>("LV3")->selectRow(0);
    Q_EMIT m_till->find<RowList>("LV3")->rowOpened(0);
    QCOMPARE(m_till->text("Label5"), u"Total: 1,253.00"_s); // stale
    QCOMPARE(counter.total(), 1003.0F);
    bool busy = false;
    m_till->boxes.expect(u"Clear Cart?"_s, box::Ask, Answer::No, [&] { busy = counter.isBusy(); });
    m_till->click("Command13");
    QVERIFY(busy);
    QVERIFY(!counter.isBusy());
}

HARROWBY_TEST(counter_follow_test, CounterFollowTest)
#include "counter_follow_test.moc"
