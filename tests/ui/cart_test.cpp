// SPDX-License-Identifier: MIT
#include "tests/doubles/server_shop.h"
#include "tests/program/test_program.h"
#include "tests/support/counter.h"

#include "ui/widgets/row_list.h"
#include "ui/widgets/tab_strip.h"
#include "ui/widgets/text_table_model.h"

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::test;

/// The cart: its lines and total; deleting a line, changing a cost, emptying it.
class CartTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startsEmpty();
    void newLine();
    void sameItemTwiceIsOneLine();
    void lastLineIsSelected();
    void totalSumsWithoutCommas();
    void costOfLineIsSingleThenDouble();
    void mergedQuantityIsNotSixteenBits();
    void unknownItemCostsNothing();
    void deleteLine();
    void deleteRefused();
    void deleteWithoutSelection();
    void deleteOnlyLine();
    void clearCart();
    void clearEmptyCart();
    void clearRefused();
    void priceChange();
    void priceChangeByEnter();
    void priceChangeCancelled();
    void priceNotNumeric();
    void priceWithCommas();
    void priceChangeNeedsLogin();
    void closingAsksTheEmptyCartText();
};

namespace {

void openShop(Counter &counter)
{
    counter.file.addItem(u"A1"_s, u"MILK"_s, 1.25, 100);
    counter.file.addItem(u"A2"_s, u"SAFE"_s, 1000, 100);
    counter.file.addItem(u"A3"_s, u"TEA"_s, 2.5, 100);
    counter.open();
    counter.logIn();
}

RowList *lines(const Counter &counter)
{
    return counter.find<RowList>("LV3");
}

void openRow(const Counter &counter, int row)
{
    RowList *list = lines(counter);
    const QPoint centre = list->visualRect(list->model()->index(row, 0)).center();
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, centre);
    QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, centre);
}

} // namespace

void CartTest::startsEmpty()
{
    Counter counter;
    counter.open();
    QCOMPARE(counter.text("Label5"), u"Total: 0.00"_s);
    QCOMPARE(counter.find<TabStrip>("TabStrip2")->tabText(0), u"Cart(0)"_s);
    const QAbstractItemModel *model = lines(counter)->model();
    QCOMPARE(model->columnCount(), 3);
    QCOMPARE(model->headerData(0, Qt::Horizontal).toString(), u"Item"_s);
    QCOMPARE(model->headerData(1, Qt::Horizontal).toString(), u"Qty"_s);
    QCOMPARE(model->headerData(2, Qt::Horizontal).toString(), u"Cost"_s);
}

void CartTest::newLine()
{
    Counter counter;
    openShop(counter);
    counter.click("Command1_0");
    QCOMPARE(counter.cart(), QStringList{u"A1  |  MILK|1|1.25"_s});
    QCOMPARE(counter.text("Label5"), u"Total: 1.25"_s);
    QCOMPARE(counter.find<TabStrip>("TabStrip2")->tabText(0), u"Cart(1)"_s);
    QVERIFY(counter.text("Text1").contains(u"-- 1 of A1  |  MILK Added to Cart!"_s));
    QVERIFY(counter.connection->statements.contains(u"Select * from StockList where StockID = 'A1'"_s));
}

void CartTest::sameItemTwiceIsOneLine()
{
    Counter counter;
    openShop(counter);
    counter.click("Command1_0");
    counter.click("Command1_0");
    QCOMPARE(counter.cart(), QStringList{u"A1  |  MILK|2|2.50"_s});
    QVERIFY(counter.text("Text1").contains(u"-- 2 of A1  |  MILK Added!"_s));
}

void CartTest::lastLineIsSelected()
{
    Counter counter;
    openShop(counter);
    counter.click("Command1_0");
    counter.click("Command1_2");
    counter.click("Command1_0");
    QCOMPARE(lines(counter)->selectedRow(), 1);
}

void CartTest::totalSumsWithoutCommas()
{
    Counter counter;
    openShop(counter);
    counter.click("Command1_1");
    counter.click("Command1_2");
    QCOMPARE(counter.cart().first(), u"A2  |  SAFE|1|1,000.00"_s);
    QCOMPARE(counter.text("Label5"), u"Total: 1,002.50"_s);
    QCOMPARE(counter.find<TabStrip>("TabStrip2")->tabText(0), u"Cart(2)"_s);
}

void CartTest::costOfLineIsSingleThenDouble()
{
    Counter counter;
    counter.file.addItem(u"B1"_s, u"GOLD"_s, 16777217.0, 100);
    counter.open();
    counter.logIn();
    counter.click("Command1_0");
    // 16777217 is no 32-bit float: the unit price is its neighbour.
    QCOMPARE(counter.cart(), QStringList{u"B1  |  GOLD|1|16,777,216.00"_s});
    counter.click("Command1_0");
    counter.click("Command1_0");
    QCOMPARE(counter.cart(), QStringList{u"B1  |  GOLD|3|50,331,648.00"_s});
}

void CartTest::mergedQuantityIsNotSixteenBits()
{
    Counter counter;
    counter.file.addItem(u"A1"_s, u"NAIL"_s, 0.5, 100000);
    counter.open();
    counter.logIn();
    counter.click("Command1_0");
    lines(counter)->rows().setText(0, 1, u"40000"_s);
    counter.click("Command1_0");
    QCOMPARE(counter.cart(), QStringList{u"A1  |  NAIL|40001|20,000.50"_s});
}

void CartTest::unknownItemCostsNothing()
{
    Counter counter;
    openShop(counter);
    counter.click("Command1_0");
    const QString cost = shopsAreOnAServer() ? u"NULL"_s : u"'free'"_s; // a server takes no text there
    counter.file.sql(u"UPDATE StockList SET StockCost = %1 WHERE StockID = 'A1'"_s.arg(cost));
    counter.click("Command1_0");
    QCOMPARE(counter.cart(), QStringList{u"A1  |  MILK|2|0.00"_s});
}

void CartTest::deleteLine()
{
    Counter counter;
    openShop(counter);
    for (const char *button : {"Command1_0", "Command1_1", "Command1_2"})
        counter.click(button);
    lines(counter)->selectRow(1);
    counter.boxes.expect(u"Delete [A2  |  SAFE] from Cart?"_s, box::Ask, Answer::Yes);
    counter.click("Command12");
    QCOMPARE(counter.cart(), (QStringList{u"A1  |  MILK|1|1.25"_s, u"A3  |  TEA|1|2.50"_s}));
    QCOMPARE(counter.text("Label5"), u"Total: 3.75"_s);
    // The line that took the deleted one's place is named, not the deleted one.
    QCOMPARE(counter.text("StatusBar1_2"), u"Item [A3  |  TEA] deleted!"_s);
}

void CartTest::deleteRefused()
{
    Counter counter;
    openShop(counter);
    counter.click("Command1_0");
    counter.boxes.expect(u"Delete [A1  |  MILK] from Cart?"_s, box::Ask, Answer::No);
    counter.click("Command12");
    QCOMPARE(counter.cart().size(), 1);
}

void CartTest::deleteWithoutSelection()
{
    Counter counter;
    openShop(counter);
    counter.click("Command12"); // empty cart: nothing asked
    counter.click("Command1_0");
    lines(counter)->clearSelection();
    counter.click("Command12");
    QCOMPARE(counter.cart().size(), 1);
}

void CartTest::deleteOnlyLine()
{
    Counter counter;
    openShop(counter);
    counter.click("Command1_0");
    counter.boxes.expect(u"Delete [A1  |  MILK] from Cart?"_s, box::Ask, Answer::Yes);
    counter.click("Command12");
    QCOMPARE(counter.text("StatusBar1_2"), u"Item [] deleted!"_s);
    QCOMPARE(counter.text("Label5"), u"Total: 0.00"_s);
}

void CartTest::clearCart()
{
    Counter counter;
    openShop(counter);
    counter.click("Command1_0");
    counter.click("Command1_1");
    const QString log = counter.text("Text1");
    counter.boxes.expect(u"Clear Cart?"_s, box::Ask, Answer::Yes);
    counter.click("Command13");
    QVERIFY(counter.cart().isEmpty());
    QCOMPARE(counter.text("Label5"), u"Total: 0.00"_s);
    QCOMPARE(counter.find<TabStrip>("TabStrip2")->tabText(0), u"Cart(0)"_s);
    QCOMPARE(counter.text("Text1"), log);
}

void CartTest::clearEmptyCart()
{
    Counter counter;
    openShop(counter);
    counter.boxes.expect(u"Cart is Empty!"_s, box::Exclamation);
    counter.click("Command13");
    QVERIFY2(counter.boxes.isDone(), counter.boxes.problems().constData());
}

void CartTest::clearRefused()
{
    Counter counter;
    openShop(counter);
    counter.click("Command1_0");
    counter.boxes.expect(u"Clear Cart?"_s, box::Ask, Answer::No);
    counter.click("Command13");
    QCOMPARE(counter.cart().size(), 1);
}

void CartTest::priceChange()
{
    Counter counter;
    openShop(counter);
    counter.click("Command1_1");
    counter.boxes.expectInput(u"Enter new price for item [A2  |  SAFE]?"_s, QString(), u"1,000.00"_s, u" 1234.5 "_s);
    openRow(counter, 0);
    QCOMPARE(counter.cart(), QStringList{u"A2  |  SAFE|1|1234.50"_s});
    QCOMPARE(counter.text("StatusBar1_2"), u"Cost of Item A2  |  SAFE changed to 1234.50!"_s);
    // The total keeps the old sum until the cart changes.
    QCOMPARE(counter.text("Label5"), u"Total: 1,000.00"_s);
    counter.click("Command1_0");
    QCOMPARE(counter.text("Label5"), u"Total: 1,235.75"_s);
}

void CartTest::priceChangeByEnter()
{
    Counter counter;
    openShop(counter);
    counter.click("Command1_0");
    counter.boxes.expectInput(u"Enter new price for item [A1  |  MILK]?"_s, QString(), u"1.25"_s, u"1"_s);
    QTest::keyClick(lines(counter), Qt::Key_Return);
    QCOMPARE(counter.cart(), QStringList{u"A1  |  MILK|1|1.00"_s});
}

void CartTest::priceChangeCancelled()
{
    Counter counter;
    openShop(counter);
    counter.click("Command1_0");
    for (const std::optional<QString> &answer : {std::optional<QString>(), std::optional<QString>(u"  "_s)}) {
        counter.boxes.expectInput(u"Enter new price for item [A1  |  MILK]?"_s, QString(), u"1.25"_s, answer);
        openRow(counter, 0);
    }
    QCOMPARE(counter.cart(), QStringList{u"A1  |  MILK|1|1.25"_s});
}

void CartTest::priceNotNumeric()
{
    Counter counter;
    openShop(counter);
    counter.click("Command1_0");
    counter.boxes.expectInput(u"Enter new price for item [A1  |  MILK]?"_s, QString(), u"1.25"_s, u"1.2.3"_s);
    counter.boxes.expect(u"Non-numeric Entry for Cost"_s, box::Exclamation);
    openRow(counter, 0);
    QCOMPARE(counter.cart(), QStringList{u"A1  |  MILK|1|1.25"_s});
}

void CartTest::priceWithCommas()
{
    Counter counter;
    openShop(counter);
    counter.click("Command1_0");
    counter.boxes.expectInput(u"Enter new price for item [A1  |  MILK]?"_s, QString(), u"1.25"_s, u"1,0 00.005"_s);
    openRow(counter, 0);
    QCOMPARE(counter.cart(), QStringList{u"A1  |  MILK|1|1000.01"_s});
}

void CartTest::priceChangeNeedsLogin()
{
    Counter counter;
    openShop(counter);
    counter.click("Command1_0");
    counter.boxes.expect(u"Username or Password Incorrect!"_s, box::Exclamation);
    counter.logIn(u"ADMINISTRATOR"_s, u"WRONG"_s); // a failed login logs out and keeps the cart
    counter.boxes.expect(u"You must login first!"_s, box::Exclamation);
    openRow(counter, 0);
    QVERIFY2(counter.boxes.isDone(), counter.boxes.problems().constData());
}

void CartTest::closingAsksTheEmptyCartText()
{
    Counter counter;
    openShop(counter);
    counter.click("Command1_0");
    counter.boxes.expect(u"Close Inventory?"_s, box::Ask, Answer::No);
    counter.click("Command10");
    QVERIFY(counter.window().isVisible());
    QCOMPARE(counter.cart().size(), 1);
    counter.close();
}

HARROWBY_TEST(cart_test, CartTest)
#include "cart_test.moc"
