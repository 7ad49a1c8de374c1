// SPDX-License-Identifier: MIT
#include "tests/program/test_program.h"
#include "tests/ui/counter_guest.h"
#include "tests/ui/interruption.h"
#include "ui/widgets/quick_sale_button.h"
#include "ui/widgets/row_list.h"

#include <QDialog>
#include <QListWidget>
#include <QPushButton>

#include <functional>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::test;

namespace {

using Prepare = std::function<void(test::Counter &)>;

harrowby::Counter &guestCounter()
{
    return harrowby::Counter::instance();
}

const QString onlyTen = u"There are only 10 item(s) in stock for A1  |  TEA"_s;
const QString teaQuestion = u"Item List:\r\n\r\n1. 2 x A1  |  TEA = 5.00\r\n\r\n\r\n\r\nPurchased Cart?"_s;

void nothing(test::Counter &) {}

} // namespace

/// What a host presses: sell() and purchase(), each with what comes of it.
class CounterPressesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sale_data();
    void sale();
    void saleIsAPressOnTheButton();
    void saleClearsTheButtonsMark();
    void saleWhileAListFills();
    void saleFromASlotOfAnOpenBoxIsBusy();
    void saleUnderAnotherModalWindowIsBusy();
    void saleEndsEarly();
    void quantitiesAddUpBeyondSixteenBits();
    void purchase_data();
    void purchase();
    void purchaseReprintsNothing();
    void readsAgainWhatAnEngineThatWasGoneHasLeftEmpty();
    void readsAgainTheOneListThatIsEmpty();
    void savedSettingsAreNotReadOver();
    void readsAgainThePageThatWasTurnedTo();
    void readingAgainDisturbsNobody();
    void withoutAWindow();
};

void CounterPressesTest::sale_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<int>("units");
    QTest::addColumn<Prepare>("prepare");
    QTest::addColumn<int>("answer");
    QTest::addColumn<QStringList>("cart");

    const auto row = [](const char *title, const QString &id, int units, const Prepare &prepare, CounterAnswer answer,
                        const QStringList &cart) {
        QTest::newRow(title) << id << units << prepare << static_cast<int>(answer) << cart;
    };
    const Prepare logOut = [](test::Counter &till) {
        till.boxes.expect(u"Log out User[ANN]?"_s, box::AskDefaultNo, Answer::Yes);
        till.click("Command27");
        till.boxes.expect(u"You must Login in First!"_s, box::Exclamation);
    };
    const auto expectInfo = [](const QString &text) {
        return [text](test::Counter &till) { till.boxes.expect(text, box::Information); };
    };
    const auto sql = [](const QString &text) { return [text](test::Counter &till) { till.file.sql(text); }; };
    const auto fails = [](const QString &begin) {
        return [begin](test::Counter &till) {
            till.connection->fails = [begin](const QString &statement) { return statement.startsWith(begin); };
        };
    };
    using enum CounterAnswer;
    row("one", u"A1"_s, 1, nothing, Done, {u"A1  |  TEA|1|2.50"_s});
    row("a case", u"A1"_s, 10, nothing, Done, {u"A1  |  TEA|10|25.00"_s});
    row("its case kept", u"a2"_s, 1, nothing, Done, {u"a2  |  GREEN TEA|1|3.00"_s});
    row("another case", u"A2"_s, 1, nothing, Unknown, {});
    row("nobody's", u"4006381333931"_s, 1, nothing, Unknown, {});
    row("empty", {}, 1, nothing, Unknown, {});
    row("a quote", u"A1' or 'a'='a"_s, 1, nothing, Unknown, {});
    row("a NUL", u"A1"_s + QChar(0), 1, nothing, Unknown, {});
    row("wildcards", u"A%"_s, 1, nothing, Unknown, {});
    row("very long", QString(10'000, u'A'), 1, nothing, Unknown, {});
    row("disabled", u"X1"_s, 1, nothing, Disabled, {});
    row("not in capitals", u"M1"_s, 1, nothing, NotInCapitals, {});
    row("blanks around the name", u"A1"_s, 1, sql(u"UPDATE StockList SET StockName = ' TEA' WHERE StockID = 'A1'"_s),
        NotInCapitals, {});
    row("separator in the ID", u"A1  |  B"_s, 1,
        sql(u"UPDATE StockList SET StockID = 'A1  |  B' WHERE StockID = 'a2'"_s), NotInCapitals, {});
    row("second of one ID", u"A1"_s, 1,
        sql(u"INSERT INTO StockList (StockID, StockName, StockCost, StockAvailable, StockUse) VALUES ('A1', 'OLD', 1, "
            u"5, "
            "'Disabled'); UPDATE StockList SET rowid = 1000 WHERE StockName = 'TEA'"_s),
        Done, {u"A1  |  TEA|1|1.00"_s}); // Intended: the price is looked up by the ID alone
    row("none left", u"A1"_s, 1,
        [=](test::Counter &till) {
            till.file.sql(u"UPDATE StockList SET StockAvailable = 0"_s);
            expectInfo(u"There is no available stock item(s) for A1  |  TEA. Kindly reorder Stock!"_s)(till);
        },
        NotEnough, {});
    row("too many", u"A1"_s, 11, expectInfo(onlyTen + u". Kindly reorder Stock!"_s), NotEnough, {});
    row("most units there are", u"A1"_s, 32767, sql(u"UPDATE StockList SET StockAvailable = 32767"_s), Done,
        {u"A1  |  TEA|32767|81,917.50"_s});
    row("most units, too many", u"A1"_s, 32767, expectInfo(onlyTen + u". Kindly reorder Stock!"_s), NotEnough, {});
    row("beyond sixteen bits", u"A1"_s, 32768, nothing, WrongUnits, {});
    row("far beyond", u"A1"_s, 65537, nothing, WrongUnits, {});
    row("no units", u"A1"_s, 0, nothing, WrongUnits, {});
    row("fewer than none", u"A1"_s, -1, nothing, WrongUnits, {});
    row("logged out", u"A1"_s, 1, logOut, NotLoggedIn, {});
    row("nobody's, logged out", u"?"_s, 1, logOut, NotLoggedIn, {});
    row("lookup fails", u"A1"_s, 1, fails(u"Select * from StockList where StockID"_s), Failed, {});
    row("check of the stock fails", u"A1"_s, 1, fails(u"Select * from Stocklist where StockUse"_s), Failed, {});
    row("log fails", u"A1"_s, 1, fails(u"INSERT INTO SysUsage"_s), Done, {u"A1  |  TEA|1|2.50"_s});
}

void CounterPressesTest::sale()
{
    QFETCH(const QString, id);
    QFETCH(const int, units);
    QFETCH(const Prepare, prepare);
    QFETCH(const int, answer);
    QFETCH(const QStringList, cart);
    test::Counter till;
    openForGuests(till);
    prepare(till);
    QCOMPARE(name(guestCounter().sell(id, units)), name(static_cast<CounterAnswer>(answer)));
    QCOMPARE(till.cart(), cart);
    QVERIFY(till.find("Command14")->isEnabled());
    QVERIFY(!guestCounter().isBusy());
}

void CounterPressesTest::saleIsAPressOnTheButton()
{
    const auto sold = [](const std::function<void(test::Counter &)> &press) {
        test::Counter till;
        openForGuests(till);
        till.chooseTab("TabStrip2", SidePanel::SalesActivity);
        till.connection->statements.clear();
        press(till);
        press(till);
        return std::tuple(till.connection->statements, till.cart(), till.text("Text1"), till.text("Label5"),
                          till.text("StatusBar1_2"), till.selectedTab("TabStrip2"));
    };
    auto byButton = sold([](test::Counter &till) { till.click("Command1_3"); });
    auto byHost = sold([](test::Counter &) { QCOMPARE(guestCounter().sell(u"A1"_s), CounterAnswer::Done); });
    // The host's finds the item first.
    QStringList &statements = std::get<0>(byHost);
    const QString lookup = u"Select * from StockList where StockID = 'A1'"_s;
    QCOMPARE(statements.count(lookup), 2 * std::get<0>(byButton).count(lookup));
    QCOMPARE(statements.takeFirst(), lookup);
    statements.removeAt(std::get<0>(byButton).size() / 2);
    QCOMPARE(statements, std::get<0>(byButton));
    QVERIFY(byHost == byButton);
}

void CounterPressesTest::saleClearsTheButtonsMark()
{
    test::Counter till;
    openForGuests(till);
    auto *button = till.find<QuickSaleButton>("Command1_3");
    button->setOutOfStock(true);
    till.find<QuickSaleButton>("Command1_2")->setOutOfStock(true);
    QCOMPARE(guestCounter().sell(u"A1"_s), CounterAnswer::Done);
    QVERIFY(!button->isOutOfStock());
    QVERIFY(till.find<QuickSaleButton>("Command1_2")->isOutOfStock());
}

void CounterPressesTest::saleWhileAListFills()
{
    test::Counter till;
    openForGuests(till);
    CounterAnswer answer = CounterAnswer::Failed;
    Interruption sale(1, [&] { answer = guestCounter().sell(u"A1"_s, 2); });
    sale.watchButton(*till.find("Command1_1"));
    till.click("Command24");
    QVERIFY(sale.isDone());
    QCOMPARE(name(answer), "Done");
    QCOMPARE(till.cart(), QStringList{u"A1  |  TEA|2|5.00"_s});
}

void CounterPressesTest::saleFromASlotOfAnOpenBoxIsBusy()
{
    test::Counter till;
    openForGuests(till);
    QCOMPARE(guestCounter().sell(u"A1"_s, 2), CounterAnswer::Done);
    std::vector<CounterLine> lines;
    std::vector<CounterMisfit> misfits;
    QStringList answers;
    till.boxes.expect(u"Clear Cart?"_s, box::Ask, Answer::No, [&] {
        answers << QLatin1StringView(name(guestCounter().sell(u"A1"_s)))
                << QLatin1StringView(name(guestCounter().purchase()))
                << QLatin1StringView(name(guestCounter().takeCart(lines)))
                << QLatin1StringView(name(guestCounter().putCart(guestCounter().cart(), misfits)));
    });
    till.click("Command13");
    till.boxes.expectInput(u"Please Enter Search item name or ID?"_s, u"Searching for Stock Item"_s, {}, std::nullopt);
    till.click("Command8");
    QCOMPARE(answers, (QStringList{u"Busy"_s, u"Busy"_s, u"Busy"_s, u"Busy"_s}));
    QVERIFY(lines.empty());
    QCOMPARE(till.cart(), QStringList{u"A1  |  TEA|2|5.00"_s});
    QCOMPARE(guestCounter().sell(u"A1"_s), CounterAnswer::Done);
}

void CounterPressesTest::saleUnderAnotherModalWindowIsBusy()
{
    test::Counter till;
    openForGuests(till);
    QDialog dialog;
    dialog.setModal(true);
    dialog.show();
    QVERIFY(guestCounter().isBusy());
    QCOMPARE(name(guestCounter().sell(u"A1"_s)), "Busy");
    dialog.close();
    QVERIFY(!guestCounter().isBusy());
    dialog.setModal(false);
    dialog.show();
    QCOMPARE(name(guestCounter().sell(u"A1"_s)), "Done");
}

void CounterPressesTest::saleEndsEarly()
{
    test::Counter till;
    openForGuests(till);
    till.boxes.expect(onlyTen + u". Kindly reorder Stock!"_s, box::Information);
    QCOMPARE(name(guestCounter().sell(u"A1"_s, 11)), "NotEnough");
    QVERIFY(till.find("Command14")->isEnabled());
    QCOMPARE(name(guestCounter().sell(u"A1"_s)), "Done");
}

void CounterPressesTest::quantitiesAddUpBeyondSixteenBits()
{
    test::Counter till;
    openForGuests(till);
    till.file.sql(u"UPDATE StockList SET StockAvailable = 65534 WHERE StockID = 'A1'"_s);
    QCOMPARE(name(guestCounter().sell(u"A1"_s, 32767)), "Done");
    QCOMPARE(name(guestCounter().sell(u"A1"_s, 32767)), "Done");
    QCOMPARE(till.cart(), QStringList{u"A1  |  TEA|65534|163,835.00"_s});
    till.boxes.expect(
        u"There are only 65534 item(s) in stock for A1  |  TEA and have already of 65534 this item(s) in cart."_s,
        box::Information);
    QCOMPARE(name(guestCounter().sell(u"A1"_s)), "NotEnough");
    QCOMPARE(lineTexts(guestCounter().cart()), QStringList{u"A1|TEA|65534|163835|"_s});
}

void CounterPressesTest::purchase_data()
{
    QTest::addColumn<Prepare>("prepare");
    QTest::addColumn<int>("answer");
    QTest::addColumn<int>("purchases");

    const auto row = [](const char *title, const Prepare &prepare, CounterAnswer answer, int purchases) {
        QTest::newRow(title) << prepare << static_cast<int>(answer) << purchases;
    };
    const auto sell = [] { QCOMPARE(guestCounter().sell(u"A1"_s, 2), CounterAnswer::Done); };
    const auto answerWith = [sell](Answer answer) {
        return [=](test::Counter &till) {
            sell();
            till.boxes.expect(teaQuestion, box::Ask, answer);
        };
    };
    using enum CounterAnswer;
    row("Yes", answerWith(Answer::Yes), Done, 1);
    row("No", answerWith(Answer::No), Declined, 0);
    row("an empty cart", nothing, CartEmpty, 0);
    row(
        "logged out",
        [](test::Counter &till) {
            till.boxes.expect(u"Log out User[ANN]?"_s, box::AskDefaultNo, Answer::Yes);
            till.click("Command27");
            till.boxes.expect(u"You must Login in First!"_s, box::Exclamation);
        },
        NotLoggedIn, 0);
    row(
        "the row is refused",
        [=](test::Counter &till) {
            answerWith(Answer::Yes)(till);
            till.connection->fails = [](const QString &statement) { return statement == u"insert PurchaseCart"_s; };
        },
        Done, 0);
    row(
        "the button is disabled",
        [sell](test::Counter &till) {
            sell();
            till.find("Command14")->setEnabled(false);
        },
        Busy, 0);
}

void CounterPressesTest::purchase()
{
    QFETCH(const Prepare, prepare);
    QFETCH(const int, answer);
    QFETCH(const int, purchases);
    test::Counter till;
    openForGuests(till);
    prepare(till);
    Guest guest;
    static_cast<void>(guest.heard());
    const QStringList before = till.cart();
    QCOMPARE(name(guestCounter().purchase()), name(static_cast<CounterAnswer>(answer)));
    QCOMPARE(till.file.cell(u"SELECT count(*) FROM PurchaseCart"_s).toInt(), purchases);
    const bool isDone = static_cast<CounterAnswer>(answer) == CounterAnswer::Done;
    QCOMPARE(till.cart(), isDone ? QStringList() : before);
    QCOMPARE(guest.purchases.size(), 0U); // not before this has returned
    QCOMPARE(guest.heard().size(), isDone ? 2 : 0);
    QCOMPARE(guest.purchases.size(), isDone ? 1U : 0U);
}

void CounterPressesTest::purchaseReprintsNothing()
{
    test::Counter till;
    openForGuests(till);
    till.find<QAbstractButton>("Check5")->setChecked(true);
    QCOMPARE(guestCounter().sell(u"A1"_s, 2), CounterAnswer::Done);
    till.boxes.expect(teaQuestion, box::Ask, Answer::Yes);
    QCOMPARE(name(guestCounter().purchase()), "Done");
    QVERIFY(!till.state().last.ReceiptText.isEmpty());
    QCOMPARE(name(guestCounter().purchase()), "CartEmpty");
}

/// As a server that went away while the window was loading: nobody is logged in yet, and nothing is asked.
void CounterPressesTest::readsAgainWhatAnEngineThatWasGoneHasLeftEmpty()
{
    test::Counter till;
    till.file.addItem(u"A1"_s, u"TEA"_s, 2.5, 10);
    till.file.sql(u"INSERT INTO InventoryCategory (CategoryName) VALUES ('DRINKS'); "
                  "UPDATE StoreSettings SET EmailAddress = 'shop@example.com', AutoPurchaseCart = 1"_s);
    const QStringList read{u"(ALL CATEGORY)"_s, u"DRINKS"_s, u"OTHER CATEGORY"_s};
    till.connection->fails = [](const QString &) { return true; };
    till.open();
    QCOMPARE(till.text("Command1_0"), u"(empty)"_s);
    QVERIFY(!till.entries("Combo1").contains(u"DRINKS"_s));
    QCOMPARE(name(guestCounter().readAgain()), "Done"); // gone still
    QCOMPARE(till.text("Command1_0"), u"(empty)"_s);

    till.connection->fails = [](const QString &) { return false; };
    QCOMPARE(name(guestCounter().readAgain()), "Done");
    QCOMPARE(till.text("Command1_0"), u"A1\r\nTEA\r\n2.50"_s);
    QCOMPARE(till.entries("Combo1"), read);
    QCOMPARE(till.text("Combo1"), read.constFirst());
    QCOMPARE(till.find<QListWidget>("List2")->count(), 1);
    QCOMPARE(till.text("Text2"), u"shop@example.com"_s);
    QCOMPARE(till.state().settings.HideFinishedFlag, std::int16_t{1});
    QCOMPARE(till.text("Label6_8"), u"  10"_s);
    till.logIn();
    till.click("Command1_0");
    QCOMPARE(till.cart(), QStringList{u"A1  |  TEA|1|2.50"_s});
}

void CounterPressesTest::readsAgainTheOneListThatIsEmpty()
{
    test::Counter till;
    till.file.sql(u"INSERT INTO InventoryCategory (CategoryName) VALUES ('DRINKS')"_s);
    int lists = 0;
    till.connection->fails = [&lists](const QString &text) {
        return text.contains(u"InventoryCategory"_s) && ++lists == 2;
    };
    till.open();
    QVERIFY(till.entries("Combo1").contains(u"DRINKS"_s));
    QCOMPARE(till.find<QListWidget>("List2")->count(), 0);
    QCOMPARE(name(guestCounter().readAgain()), "Done");
    QCOMPARE(till.find<QListWidget>("List2")->count(), 1);
    QVERIFY(till.entries("Combo1").contains(u"DRINKS"_s));
}

/// The window runs with what was saved in it, even when the table could not take it.
void CounterPressesTest::savedSettingsAreNotReadOver()
{
    test::Counter till;
    till.open();
    till.logIn();
    till.chooseTab("TabStrip1", WorkArea::Settings);
    till.setText("Text2", u"new@example.com"_s);
    till.connection->fails = [](const QString &text) {
        return text.startsWith(u"Update StoreSettings"_s, Qt::CaseInsensitive);
    };
    till.boxes.answerTheRest([](const QString &) { return Answer::Yes; });
    till.click("Command18");
    QCOMPARE(till.state().settings.ReportEmailAddress, u"new@example.com"_s);
    till.setText("Text2", u"being typed"_s);
    till.connection->fails = [](const QString &) { return false; };
    QCOMPARE(name(guestCounter().readAgain()), "Done");
    QCOMPARE(till.state().settings.ReportEmailAddress, u"new@example.com"_s);
    QCOMPARE(till.text("Text2"), u"being typed"_s);
}

void CounterPressesTest::readsAgainThePageThatWasTurnedTo()
{
    test::Counter till;
    till.file.sql(u"INSERT INTO InventoryCategory (CategoryName) VALUES ('DRINKS')"_s);
    for (int item = 0; item < 20; ++item)
        till.file.addItem(u"A%1"_s.arg(item), u"TEA %1"_s.arg(QChar(u'A' + item)), 2.5, 10);
    till.open();
    till.logIn();
    till.click("CmdNext");
    const QString first = till.text("Command1_0");
    till.connection->fails = [](const QString &statement) { return statement.startsWith(u"Select"_s); };
    till.chooseTab("TabStrip1", WorkArea::CustomSales); // refreshes the page, too
    QVERIFY(!till.find("CmdPrev")->isEnabled());
    till.connection->fails = [](const QString &) { return false; };
    till.file.sql(u"UPDATE StockList SET StockCost = 3"_s);
    till.setText("Combo2", u"JAM"_s);
    QCOMPARE(name(guestCounter().readAgain()), "Done");
    QVERIFY(till.find("CmdNext")->isEnabled() && till.find("CmdPrev")->isEnabled());
    QCOMPARE(till.text("Command1_0"), QString(first).replace(u"2.50"_s, u"3.00"_s));
    QCOMPARE(till.selectedTab("TabStrip1"), WorkArea::CustomSales);
    QCOMPARE(till.text("Combo2"), u"JAM"_s);
}

/// Settings that a person is changing, and what was chosen, are left alone; so is a box.
void CounterPressesTest::readingAgainDisturbsNobody()
{
    test::Counter till;
    openForGuests(till);
    till.setText("Text2", u"being typed"_s);
    const QString log = till.text("Text1");
    till.connection->statements.clear();
    QCOMPARE(name(guestCounter().readAgain()), "Done");
    QCOMPARE(till.text("Text2"), u"being typed"_s);
    QCOMPARE(till.text("Text1"), log);
    QVERIFY(till.connection->statements.filter(u"StoreSettings"_s).isEmpty());
    QVERIFY(till.connection->statements.filter(u"InventoryCategory"_s).isEmpty());
    QCOMPARE(guestCounter().sell(u"A1"_s), CounterAnswer::Done);
    till.boxes.expect(u"Clear Cart?"_s, box::Ask, Answer::No,
                      [] { QCOMPARE(name(guestCounter().readAgain()), "Busy"); });
    till.click("Command13");
}

void CounterPressesTest::withoutAWindow()
{
    std::vector<CounterLine> lines{{}};
    std::vector<CounterMisfit> misfits{{}};
    QVERIFY(!guestCounter().isOpen());
    QCOMPARE(name(guestCounter().sell(u"A1"_s)), "NoWindow");
    QCOMPARE(name(guestCounter().purchase()), "NoWindow");
    QCOMPARE(name(guestCounter().putCart(lines, misfits)), "NoWindow");
    QCOMPARE(name(guestCounter().takeCart(lines)), "NoWindow");
    QCOMPARE(name(guestCounter().readAgain()), "NoWindow");
    QVERIFY(lines.empty() && misfits.empty());
    QPushButton button;
    QVERIFY(!guestCounter().addButton(&button));
    QVERIFY(!guestCounter().setBanner(nullptr));
    guestCounter().finishReading();
    test::Counter till;
    till.open();
    QVERIFY(!guestCounter().addButton(nullptr));
}

HARROWBY_TEST(counter_presses_test, CounterPressesTest)
#include "counter_presses_test.moc"
