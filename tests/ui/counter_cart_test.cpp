// SPDX-License-Identifier: MIT
#include "basic/numbers.h"
#include "tests/program/test_program.h"
#include "tests/support/inventory_probe.h"
#include "tests/ui/counter_guest.h"
#include "ui/widgets/row_list.h"

#include <QPlainTextEdit>
#include <QSignalSpy>

#include <cmath>
#include <functional>
#include <limits>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::test;

namespace {

using Prepare = std::function<void(test::Counter &)>;
using Lines = std::vector<CounterLine>;

harrowby::Counter &guestCounter()
{
    return harrowby::Counter::instance();
}

void nothing(test::Counter &) {}

CounterLine tea(double quantity, double cost, bool byHand = false)
{
    return {u"A1"_s, u"TEA"_s, quantity, cost, byHand};
}

} // namespace

/// A cart that a host takes and puts back.
class CounterCartTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void takenAsByALogout();
    void takenAndPutBack();
    void putLines_data();
    void putLines();
    void logLines();
    void gate();
    void emptyCart();
    void withinATransactionOfTheHosts();
};

void CounterCartTest::takenAsByALogout()
{
    test::Counter till;
    openForGuests(till);
    till.click("Command1_3");
    Guest guest;
    static_cast<void>(guest.heard());
    till.connection->statements.clear();
    Lines lines;
    QCOMPARE(name(guestCounter().takeCart(lines)), "Done");
    QCOMPARE(lineTexts(lines), QStringList{u"A1|TEA|1|2.5|"_s});
    QCOMPARE(till.cart(), QStringList());
    QCOMPARE(till.text("Label5"), u"Total: 0.00"_s);
    QCOMPARE(till.connection->statements, QStringList()); // no stock changes, nothing is logged
    QCOMPARE(guest.heard(), QStringList{u"cartChanged"_s});
}

void CounterCartTest::takenAndPutBack()
{
    test::Counter till;
    openForGuests(till);
    till.click("Command1_2");
    till.click("Command1_3");
    till.click("Command1_3");
    till.boxes.expectInput(u"Enter new price for item [S1  |  SAFE]?"_s, {}, u"1,250.00"_s, u"1199.9"_s);
    till.find<RowList>("LV3")->selectRow(0);
    Q_EMIT till.find<RowList>("LV3")->rowOpened(0);
    const QStringList before = till.cart();
    QCOMPARE(before, (QStringList{u"S1  |  SAFE|1|1199.90"_s, u"A1  |  TEA|2|5.00"_s}));
    Lines lines;
    QCOMPARE(name(guestCounter().takeCart(lines)), "Done");
    till.chooseTab("TabStrip2", SidePanel::SalesActivity);
    std::vector<CounterMisfit> misfits;
    QCOMPARE(name(guestCounter().putCart(lines, misfits)), "Done");
    QCOMPARE(misfitTexts(misfits), QStringList());
    QCOMPARE(till.cart(), before);
    QCOMPARE(lineTexts(guestCounter().cart()), lineTexts(lines));
    QCOMPARE(till.text("Label5"), u"Total: 1,204.90"_s);
    QCOMPARE(till.find<RowList>("LV3")->selectedRow(), 1);
    QCOMPARE(till.selectedTab("TabStrip2"), SidePanel::Cart);
}

void CounterCartTest::putLines_data()
{
    QTest::addColumn<Prepare>("prepare");
    QTest::addColumn<Lines>("lines");
    QTest::addColumn<QStringList>("misfits");
    QTest::addColumn<QStringList>("cart");

    const auto row = [](const char *title, const Prepare &prepare, const Lines &lines, const QStringList &misfits,
                        const QStringList &cart) { QTest::newRow(title) << prepare << lines << misfits << cart; };
    const auto sql = [](const QString &text) { return [text](test::Counter &till) { till.file.sql(text); }; };
    const auto inCart = [](int units) {
        return [units](test::Counter &) { QCOMPARE(guestCounter().sell(u"A1"_s, units), CounterAnswer::Done); };
    };
    const auto byHand = [inCart](int units, const QString &price) {
        return [=](test::Counter &till) {
            inCart(units)(till);
            till.boxes.expectInput(u"Enter new price for item [A1  |  TEA]?"_s, {},
                                   QString::number(units * 2.5, 'f', 2), price);
            Q_EMIT till.find<RowList>("LV3")->rowOpened(0);
        };
    };
    const auto left = [&sql](const QString &units) { return sql(u"UPDATE StockList SET StockAvailable = "_s + units); };
    const Prepare unread = [](test::Counter &till) {
        till.connection->fails = [](const QString &statement) { return statement.startsWith(u"Select * from"_s); };
    };
    row("nothing", nothing, {}, {}, {});
    row("all there is", nothing, {tea(10, 25)}, {}, {u"A1  |  TEA|10|25.00"_s});
    row("by hand", nothing, {tea(3, 1000, true)}, {}, {u"A1  |  TEA|3|1000.00"_s});
    row("a free one", nothing, {tea(1, 0, true)}, {}, {u"A1  |  TEA|1|0.00"_s});
    row("more than there is", nothing, {tea(12, 30)}, {u"not enough: A1|TEA|12|30| -> 10|25"_s},
        {u"A1  |  TEA|10|25.00"_s});
    row("more, by hand", nothing, {tea(12, 20, true)}, {u"not enough: A1|TEA|12|20|hand -> 10|25"_s},
        {u"A1  |  TEA|10|25.00"_s});
    row("half a unit is none", left(u"0.5"_s), {tea(1, 2.5)}, {u"not enough: A1|TEA|1|2.5| -> 0|0"_s}, {});
    row("sold out", left(u"0"_s), {tea(1, 2.5), {u"S1"_s, u"SAFE"_s, 1, 1250, false}},
        {u"sold out: A1|TEA|1|2.5| -> 0|0"_s, u"sold out: S1|SAFE|1|1250| -> 0|0"_s}, {});
    row("below nothing", left(u"-3"_s), {tea(1, 2.5, true)}, {u"sold out: A1|TEA|1|2.5|hand -> 0|0"_s}, {});
    row("price changed", sql(u"UPDATE StockList SET StockCost = 3"_s), {tea(2, 5)}, {u"price: A1|TEA|2|5| -> 2|6"_s},
        {u"A1  |  TEA|2|6.00"_s});
    row("price changed, by hand", sql(u"UPDATE StockList SET StockCost = 3"_s), {tea(2, 5, true)}, {},
        {u"A1  |  TEA|2|5.00"_s});
    row("gone", nothing, {{u"Z9"_s, u"TEA"_s, 1, 1, false}}, {u"gone: Z9|TEA|1|1| -> 0|0"_s}, {});
    row("another case", nothing, {{u"A2"_s, u"GREEN TEA"_s, 1, 3, false}}, {u"gone: A2|GREEN TEA|1|3| -> 0|0"_s}, {});
    row("renamed", nothing, {{u"A1"_s, u"BLACK TEA"_s, 1, 2.5, false}}, {u"gone: A1|BLACK TEA|1|2.5| -> 0|0"_s}, {});
    row("disabled", nothing, {{u"X1"_s, u"OLD TEA"_s, 1, 1, true}}, {u"disabled: X1|OLD TEA|1|1|hand -> 0|0"_s}, {});
    row("not in capitals", nothing, {{u"M1"_s, u"MINT TEA"_s, 1, 1, false}},
        {u"not in capitals: M1|MINT TEA|1|1| -> 0|0"_s}, {});
    row("a quote", nothing, {{u"A1'--"_s, u"TEA"_s, 1, 1, false}}, {u"gone: A1'--|TEA|1|1| -> 0|0"_s}, {});
    row("not read", unread, {tea(12, 30), {u"A1"_s, u"TEA"_s, 1, 7, true}},
        {u"not read: A1|TEA|12|30| -> 12|30"_s, u"not read: A1|TEA|1|7|hand -> 1|37"_s}, {u"A1  |  TEA|13|37.00"_s});
    row("merged", inCart(2), {tea(3, 7.5)}, {}, {u"A1  |  TEA|5|12.50"_s});
    row("merged, as much as there is", inCart(2), {tea(8, 20)}, {}, {u"A1  |  TEA|10|25.00"_s});
    row("merged, too much", inCart(2), {tea(9, 22.5)}, {u"not enough: A1|TEA|9|22.5| -> 8|25"_s},
        {u"A1  |  TEA|10|25.00"_s});
    row("cart has all", inCart(10), {tea(1, 2.5)}, {u"not enough: A1|TEA|1|2.5| -> 0|0"_s}, {u"A1  |  TEA|10|25.00"_s});
    row("cart has all, by hand", inCart(10), {tea(1, 0.5, true)}, {u"not enough: A1|TEA|1|0.5|hand -> 0|0"_s},
        {u"A1  |  TEA|10|25.00"_s});
    row("by hand into another", inCart(2), {tea(1, 0.99, true)}, {}, {u"A1  |  TEA|3|5.99"_s});
    row("into one by hand", byHand(2, u"4"_s), {tea(1, 2.5)}, {}, {u"A1  |  TEA|3|6.50"_s});
    row("by hand into one by hand", byHand(2, u"4"_s), {tea(1, 1.25, true)}, {}, {u"A1  |  TEA|3|5.25"_s});
    row("merged, price changed",
        [=](test::Counter &till) {
            inCart(2)(till);
            till.file.sql(u"UPDATE StockList SET StockCost = 3"_s);
        },
        {tea(1, 2.5)}, {u"price: A1|TEA|1|2.5| -> 1|9"_s}, {u"A1  |  TEA|3|9.00"_s});
    row("same item twice", nothing, {tea(1, 2.5), tea(1, 9, true), tea(1, 2.5)}, {}, {u"A1  |  TEA|3|14.00"_s});
    row("beyond sixteen bits", left(u"65534"_s), {tea(65534, 163835)}, {}, {u"A1  |  TEA|65534|163,835.00"_s});
    row("an odd quantity", nothing, {tea(-2, -5)}, {}, {u"A1  |  TEA|-2|-5.00"_s});
    row("no number", nothing,
        {tea(std::numeric_limits<double>::quiet_NaN(), 1), tea(1, std::numeric_limits<double>::infinity(), true)},
        {u"gone: A1|TEA|nan|1| -> 0|0"_s, u"gone: A1|TEA|1|inf|hand -> 0|0"_s}, {});
}

void CounterCartTest::putLines()
{
    QFETCH(const Prepare, prepare);
    QFETCH(const Lines, lines);
    QFETCH(const QStringList, misfits);
    QFETCH(const QStringList, cart);
    test::Counter till;
    openForGuests(till);
    prepare(till);
    std::vector<CounterMisfit> found{{}};
    QCOMPARE(name(guestCounter().putCart(lines, found)), "Done"); // the queue of boxes expects none
    QCOMPARE(misfitTexts(found), misfits);
    QCOMPARE(till.cart(), cart);
    const bool hasHand =
        std::any_of(lines.begin(), lines.end(), [](const CounterLine &line) { return line.costByHand; });
    const Lines now = guestCounter().cart();
    if (!hasHand && now.size() == 1 && QByteArray(QTest::currentDataTag()) != "into one by hand")
        QVERIFY(!now.front().costByHand);
    if (hasHand && misfits.isEmpty())
        QVERIFY(now.front().costByHand);
    QCOMPARE(till.text("Label5"), u"Total: "_s + formatMoney(guestCounter().total()));
}

void CounterCartTest::logLines()
{
    test::Counter till;
    openForGuests(till);
    Guest guest;
    static_cast<void>(guest.heard());
    std::vector<CounterMisfit> misfits;
    const QSignalSpy layouts(till.find<QPlainTextEdit>("Text1")->document(), &QTextDocument::contentsChange);
    QCOMPARE(name(guestCounter().putCart({tea(2, 5), tea(1, 2.5), {u"Z9"_s, u"NONE"_s, 1, 1, false}}, misfits)),
             "Done");
    QCOMPARE(layouts.count(), 1); // a long cart's lines are not laid out one by one
    const QString log = till.text("Text1");
    QVERIFY(log.indexOf(u"3 of A1  |  TEA Added!"_s) < log.indexOf(u"2 of A1  |  TEA Added to Cart!"_s));
    QCOMPARE(till.file.rows(u"SELECT SystemUsage FROM SysUsage ORDER BY rowid DESC LIMIT 2"_s),
             (QStringList{u"3 of A1  |  TEA Added!"_s, u"2 of A1  |  TEA Added to Cart!"_s}));
    QCOMPARE(guest.heard(), QStringList{u"cartChanged"_s});
}

void CounterCartTest::gate()
{
    test::Counter till;
    openForGuests(till);
    till.boxes.expect(u"Log out User[ANN]?"_s, box::AskDefaultNo, Answer::Yes);
    till.click("Command27");
    Lines lines{tea(1, 2.5)};
    std::vector<CounterMisfit> misfits;
    till.boxes.expect(u"You must Login in First!"_s, box::Exclamation);
    QCOMPARE(name(guestCounter().putCart(lines, misfits)), "NotLoggedIn");
    till.boxes.expect(u"You must Login in First!"_s, box::Exclamation);
    QCOMPARE(name(guestCounter().takeCart(lines)), "NotLoggedIn");
    QVERIFY(lines.empty() && misfits.empty());
    QCOMPARE(till.cart(), QStringList());
}

void CounterCartTest::emptyCart()
{
    test::Counter till;
    openForGuests(till);
    Lines lines{tea(1, 2.5)};
    QCOMPARE(name(guestCounter().takeCart(lines)), "CartEmpty");
    QVERIFY(lines.empty());
}

void CounterCartTest::withinATransactionOfTheHosts()
{
    test::Counter till;
    openForGuests(till);
    till.file.sql(u"BEGIN IMMEDIATE"_s);
    std::vector<CounterMisfit> misfits;
    QCOMPARE(name(guestCounter().putCart({tea(2, 5)}, misfits)), "Done");
    till.file.sql(u"COMMIT"_s);
    QCOMPARE(till.cart(), QStringList{u"A1  |  TEA|2|5.00"_s});
    QCOMPARE(till.file.cell(u"SELECT count(*) FROM SysUsage WHERE SystemUsage LIKE '2 of%'"_s), u"1"_s);
}

HARROWBY_TEST(counter_cart_test, CounterCartTest)
#include "counter_cart_test.moc"
