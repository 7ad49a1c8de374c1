// SPDX-License-Identifier: MIT
#include "tests/doubles/database.h"
#include "tests/program/test_program.h"
#include "tests/support/counter.h"

#include "ui/widgets/row_list.h"
#include "ui/widgets/tab_strip.h"
#include "ui/widgets/text_table_model.h"

#include <QCheckBox>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::test;

/// Committing a purchase, and its receipt.
class PurchaseTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void emptyCart();
    void refusedConfirmationChangesNothing();
    void commitMovesStockAndWritesTheRow();
    void statementsInOrder();
    void numbersOfTheRow();
    void twoCommitsInOneSecond();
    void anotherTillInOneSecond();
    void quantitiesWithCommas();
    void stockMayFallBelowZero();
    void renamedItemStillSells();
    void quotedNameIsSkippedAndTheRestGoesOn();
    void failingRowStillEmptiesTheCart();
    void resetsTheSellingPanels();
    void summaryBox();
    void noSummaryWithoutShowDetails();
    void dashboardMoves();
    void receiptsOff();
    void receipt();
    void receiptFonts();
    void receiptDefaults();
    void reprint();
    void reprintRefused();
    void unprintableReceiptIsStillKept();
};

namespace {

constexpr auto separator = "---------------------------------------------------------------"_L1;

void openShop(Counter &counter)
{
    counter.file.addItem(u"A1"_s, u"SAFE"_s, 1250, 10);
    counter.file.addItem(u"A2"_s, u"TEA"_s, 2.5, 10);
    counter.open();
    counter.logIn();
}

void fillCart(Counter &counter)
{
    openShop(counter);
    counter.click("Command1_0");
    counter.click("Command1_1");
    counter.click("Command1_1");
}

constexpr auto question =
    "Item List:\r\n\r\n1. 1 x A1  |  SAFE = 1,250.00\r\n2. 2 x A2  |  TEA = 5.00\r\n\r\n\r\n\r\nPurchased Cart?"_L1;

void commit(Counter &counter)
{
    counter.boxes.expect(question, box::Ask, Answer::Yes);
    counter.click("Command14");
}

void commitOne(Counter &counter, int button, const QString &line)
{
    counter.click(qPrintable(u"Command1_%1"_s.arg(button)));
    counter.boxes.expect(u"Item List:\r\n\r\n1. "_s + line + u"\r\n\r\n\r\n\r\nPurchased Cart?"_s, box::Ask,
                         Answer::Yes);
    counter.click("Command14");
}

} // namespace

void PurchaseTest::emptyCart()
{
    Counter counter;
    openShop(counter);
    counter.boxes.expect(u"Cart is Empty!"_s, box::Exclamation);
    counter.click("Command14");
    QVERIFY2(counter.boxes.isDone(), counter.boxes.problems().constData());
}

void PurchaseTest::refusedConfirmationChangesNothing()
{
    Counter counter;
    fillCart(counter);
    const QStringList cart = counter.cart();
    counter.connection->statements.clear();
    counter.boxes.expect(question, box::Ask, Answer::No);
    counter.click("Command14");
    QCOMPARE(counter.cart(), cart);
    QVERIFY(counter.connection->statements.isEmpty());
    QCOMPARE(counter.state().last.LastPurchaseID, QString());
}

void PurchaseTest::commitMovesStockAndWritesTheRow()
{
    Counter counter;
    fillCart(counter);
    commit(counter);
    QCOMPARE(counter.file.rows(u"SELECT StockID, StockAvailable FROM StockList ORDER BY StockID"_s),
             (QStringList{u"A1|9"_s, u"A2|8"_s}));
    QCOMPARE(
        counter.file.rows(u"SELECT PurchaseID, PurchasedItems, PurchasedItemsTotal, PurchasedItemsCost, PurchasedDate,"
                          " Users FROM PurchaseCart"_s),
        QStringList{u"HV18030514070907|1 x A1  |  SAFE = 1,250.00, 2 x A2  |  TEA = 5.00|2|1255|180305140709|"
                    "ADMINISTRATOR"_s});
    QCOMPARE(counter.state().last.LastPurchaseID, u"HV18030514070907"_s);
    QVERIFY(counter.cart().isEmpty());
    QVERIFY(counter.text("Text1").contains(u"-- 2 item(s) of Total Cost 1,255.00 Purchased.\n"_s));
}

void PurchaseTest::statementsInOrder()
{
    Counter counter;
    fillCart(counter);
    counter.connection->statements.clear();
    commit(counter);
    const QStringList expected{
        u"Update Stocklist Set StockAvailable = StockAvailable - 1 where StockID = 'A1' and UPPER(StockName) = 'SAFE'"_s,
        u"Update Stocklist Set StockAvailable = StockAvailable - 2 where StockID = 'A2' and UPPER(StockName) = 'TEA'"_s,
        u"Select * from PurchaseCart where PurchaseID = 'HV18030514070907'"_s,
        u"insert PurchaseCart"_s,
        u"Select count(*) as totals from PurchaseCart where substr(PurchasedDate,1,6) = '180305'"_s,
    };
    QCOMPARE(counter.connection->statements.mid(0, expected.size()), expected);
}

void PurchaseTest::numbersOfTheRow()
{
    Counter counter;
    counter.file.addItem(u"A1"_s, u"BUN"_s, 99.99, 10);
    counter.open();
    counter.logIn();
    commitOne(counter, 0, u"1 x A1  |  BUN = 99.99"_s);
    QCOMPARE(counter.file.cell(u"SELECT PurchasedItemsCost FROM PurchaseCart"_s), u"99.99"_s);
    QCOMPARE(counter.file.cell(u"SELECT PurchasedItemsCost = 99.99 FROM PurchaseCart"_s), u"1"_s);
    QCOMPARE(counter.file.cell(u"SELECT PurchasedItemsTotal FROM PurchaseCart"_s), u"1"_s);
}

void PurchaseTest::twoCommitsInOneSecond()
{
    Counter counter;
    openShop(counter);
    for (int i = 0; i < 3; ++i)
        commitOne(counter, 1, u"1 x A2  |  TEA = 2.50"_s);
    // The third purchase gets the second's ID: the replacement is not checked again.
    QCOMPARE(counter.file.rows(u"SELECT PurchaseID FROM PurchaseCart ORDER BY rowid"_s),
             (QStringList{u"HV18030514070907"_s, u"HE18030514070907"_s, u"HE18030514070907"_s}));
    QCOMPARE(counter.state().last.LastPurchaseID, u"HE18030514070907"_s);
}

/// Another till cannot take the ID between the check and the insert.
void PurchaseTest::anotherTillInOneSecond()
{
    Counter counter;
    openShop(counter);
    Database other(counter.file.path());
    const QString row = u"INSERT INTO PurchaseCart (PurchaseID) VALUES ('HV18030514070907')"_s;
    QList<bool> added;
    counter.connection->before = [&](const QString &statement) {
        if (statement == u"insert PurchaseCart"_s)
            added << other.run(row);
    };
    commitOne(counter, 1, u"1 x A2  |  TEA = 2.50"_s);
    QCOMPARE(added, QList<bool>{false});
    counter.file.sql(u"DELETE FROM PurchaseCart; "_s + row); // the other till's row came first
    commitOne(counter, 1, u"1 x A2  |  TEA = 2.50"_s);
    QCOMPARE(added, (QList<bool>{false, false}));
    QCOMPARE(counter.state().last.LastPurchaseID, u"HE18030514070907"_s);
    QVERIFY(other.run(row)); // the write lock is released
}

void PurchaseTest::quantitiesWithCommas()
{
    Counter counter;
    openShop(counter);
    counter.find<RowList>("LV3")->rows().appendRow({u"A2  |  TEA"_s, u"1,000"_s, u"1,000.50"_s});
    counter.boxes.expect(u"Item List:\r\n\r\n1. 1,000 x A2  |  TEA = 1,000.50\r\n\r\n\r\n\r\nPurchased Cart?"_s,
                         box::Ask, Answer::Yes);
    counter.click("Command14");
    QCOMPARE(counter.file.cell(u"SELECT StockAvailable FROM StockList WHERE StockID = 'A2'"_s), u"-990"_s);
    QCOMPARE(counter.file.cell(u"SELECT PurchasedItemsCost FROM PurchaseCart"_s), u"1000.5"_s);
    QCOMPARE(counter.file.cell(u"SELECT replace(PurchasedItems, '|', '!') FROM PurchaseCart"_s),
             u"1,000 x A2  !  TEA = 1,000.50"_s);
}

void PurchaseTest::stockMayFallBelowZero()
{
    Counter counter;
    openShop(counter);
    counter.click("Command1_1");
    counter.file.sql(u"UPDATE StockList SET StockAvailable = 0"_s); // sold elsewhere meanwhile
    counter.boxes.expect(u"Item List:\r\n\r\n1. 1 x A2  |  TEA = 2.50\r\n\r\n\r\n\r\nPurchased Cart?"_s, box::Ask,
                         Answer::Yes);
    counter.click("Command14");
    QCOMPARE(counter.file.cell(u"SELECT StockAvailable FROM StockList WHERE StockID = 'A2'"_s), u"-1"_s);
}

void PurchaseTest::renamedItemStillSells()
{
    Counter counter;
    fillCart(counter);
    counter.file.sql(u"UPDATE StockList SET StockName = 'VAULT' WHERE StockID = 'A1'"_s);
    commit(counter);
    QCOMPARE(counter.file.cell(u"SELECT StockAvailable FROM StockList WHERE StockID = 'A1'"_s), u"10"_s);
    QCOMPARE(counter.file.cell(u"SELECT PurchasedItemsTotal FROM PurchaseCart"_s), u"2"_s);
}

void PurchaseTest::quotedNameIsSkippedAndTheRestGoesOn()
{
    Counter counter;
    openShop(counter);
    TextTableModel &cart = counter.find<RowList>("LV3")->rows();
    cart.appendRow({u"A1  |  O'SAFE"_s, u"1"_s, u"3.00"_s});
    cart.appendRow({u"A2  |  TEA"_s, u"1"_s, u"2.50"_s});
    counter.boxes.expect(
        u"Item List:\r\n\r\n1. 1 x A1  |  O'SAFE = 3.00\r\n2. 1 x A2  |  TEA = 2.50\r\n\r\n\r\n\r\nPurchased Cart?"_s,
        box::Ask, Answer::Yes);
    counter.click("Command14");
    QCOMPARE(counter.file.rows(u"SELECT StockID, StockAvailable FROM StockList ORDER BY StockID"_s),
             (QStringList{u"A1|10"_s, u"A2|9"_s}));
    // The row is written with typed values: no quoting is involved.
    QCOMPARE(counter.file.cell(u"SELECT replace(PurchasedItems, '|', '!') FROM PurchaseCart"_s),
             u"1 x A1  !  O'SAFE = 3.00, 1 x A2  !  TEA = 2.50"_s);
}

void PurchaseTest::failingRowStillEmptiesTheCart()
{
    Counter counter;
    fillCart(counter);
    counter.connection->fails = [](const QString &statement) { return statement.startsWith(u"insert"_s); };
    commit(counter);
    QVERIFY(counter.cart().isEmpty());
    QCOMPARE(counter.state().last.LastPurchaseID, u"HV18030514070907"_s);
    QCOMPARE(counter.file.cell(u"SELECT count(*) FROM PurchaseCart"_s), u"0"_s);
    QCOMPARE(counter.file.cell(u"SELECT StockAvailable FROM StockList WHERE StockID = 'A1'"_s), u"9"_s);
}

void PurchaseTest::resetsTheSellingPanels()
{
    Counter counter;
    fillCart(counter);
    for (const char *label : {"Label7", "Label9", "Label14", "Label15"})
        counter.setText(label, u"old"_s);
    commit(counter);
    QCOMPARE(counter.text("Label7"), u"0.00"_s);
    QCOMPARE(counter.text("Label9"), u"0.00"_s);
    QCOMPARE(counter.text("Label14"), QString());
    QCOMPARE(counter.text("Label15"), u"Nil"_s);
    QCOMPARE(counter.text("Label5"), u"Total: 0.00"_s);
    QCOMPARE(counter.find<TabStrip>("TabStrip2")->tabText(0), u"Cart(0)"_s);
    QCOMPARE(counter.text("StatusBar1_2"), u"2 item(s) of Total Cost 1,255.00 Purchased."_s);
}

void PurchaseTest::summaryBox()
{
    Counter counter;
    counter.file.sql(u"UPDATE StoreSettings SET ShowDetails = 1"_s);
    fillCart(counter);
    counter.boxes.expect(question, box::Ask, Answer::Yes);
    counter.boxes.expect(u"Items have been purchased!\r\n\r\nPurchase ID: HV18030514070907\r\nPurchased Items: \r\n"
                         "1 x A1  |  SAFE = 1,250.00\r\n2 x A2  |  TEA = 5.00\r\nPurchased Items: 2\r\n"
                         "Purchased Items Cost: 1,255.00\r\n\r\nPurchased Item Date: 2018/Mar/05 14:07:09\r\n\r\n"_s,
                         box::Information);
    counter.click("Command14");
    QVERIFY2(counter.boxes.isDone(), counter.boxes.problems().constData());
}

void PurchaseTest::noSummaryWithoutShowDetails()
{
    Counter counter;
    fillCart(counter);
    commit(counter);
    QVERIFY2(counter.boxes.isDone(), counter.boxes.problems().constData());
}

void PurchaseTest::dashboardMoves()
{
    Counter counter;
    fillCart(counter);
    QCOMPARE(counter.text("Label6_8"), u"  20"_s);
    commit(counter);
    QCOMPARE(counter.text("Label6_3"), u"1"_s);
    QCOMPARE(counter.text("Label6_4"), u"  1,255.00"_s);
    QCOMPARE(counter.text("Label6_8"), u"  17"_s);
}

void PurchaseTest::receiptsOff()
{
    Counter counter;
    fillCart(counter);
    commit(counter);
    QCOMPARE(counter.state().last.ReceiptText, QString());
    QVERIFY(counter.printers->paper().lines.empty());
    QCOMPARE(counter.printers->paper().documents, 0);
    counter.boxes.expect(u"Cart is Empty!"_s, box::Exclamation);
    counter.click("Command14");
}

void PurchaseTest::receipt()
{
    Counter counter;
    counter.settings->values = {{u"option/title"_s, u"corner shop"_s},
                                {u"option/address"_s, u"1 high street"_s},
                                {u"option/currency"_s, u"EUR"_s},
                                {u"pos/com"_s, u"Till"_s}};
    fillCart(counter);
    commit(counter);
    const QStringList lines{u"CORNER SHOP"_s,
                            u"1 HIGH STREET"_s,
                            separator,
                            u"Payment Receipt"_s,
                            separator,
                            u"1 x A1  |  SAFE = 1,250.00"_s,
                            u"2 x A2  |  TEA = 5.00"_s,
                            QString(),
                            separator,
                            u"Total Type of Item(s):2"_s,
                            u"Total Cost (EUR): 1255"_s,
                            separator,
                            QString(),
                            QString(),
                            u"Purchase ID: HV18030514070907"_s,
                            QString(),
                            QString(),
                            QString(),
                            separator,
                            u"Print Date: 05/Mar/2018 14:07:09"_s};
    QCOMPARE(counter.printers->paper().deviceName(), u"Till"_s);
    QCOMPARE(counter.printers->paper().texts(), lines);
    QCOMPARE(counter.printers->paper().documents, 1);
    QCOMPARE(counter.state().last.ReceiptText, u"\r\n"_s + lines.join(u"\r\n"_s));
}

void PurchaseTest::receiptFonts()
{
    Counter counter;
    counter.settings->values.clear();
    fillCart(counter);
    commit(counter);
    const std::vector<std::pair<int, bool>> fonts{{12, true}, {7, true},   {10, true}, {8, true},   {10, true},
                                                  {8, false}, {8, false},  {8, false}, {10, false}, {8, true},
                                                  {8, true},  {10, false}, {8, false}, {8, false},  {8, false},
                                                  {8, false}, {8, false},  {8, false}, {8, false},  {8, false}};
    const std::vector<PrintedLine> &lines = counter.printers->paper().lines;
    QCOMPARE(lines.size(), fonts.size());
    for (std::size_t i = 0; i < fonts.size(); ++i) {
        QCOMPARE(lines[i].fontSize, fonts[i].first);
        QCOMPARE(lines[i].bold, fonts[i].second);
    }
}

void PurchaseTest::receiptDefaults()
{
    Counter counter;
    counter.settings->values.clear();
    fillCart(counter);
    commit(counter);
    const QStringList lines = counter.printers->paper().texts();
    QCOMPARE(lines.at(0), QString());
    QCOMPARE(lines.at(1), QString());
    QVERIFY(lines.contains(u"Total Cost (N): 1255"_s));
}

void PurchaseTest::reprint()
{
    Counter counter;
    counter.settings->values.clear();
    fillCart(counter);
    commit(counter);
    const QString receipt = counter.state().last.ReceiptText;
    PaperPrinter &paper = counter.printers->paper();
    for (int i = 0; i < 2; ++i) {
        paper.lines.clear();
        counter.boxes.expect(u"Reprint Last Purchase?"_s, box::Ask, Answer::Yes);
        counter.click("Command14");
        QCOMPARE(paper.texts(), (QStringList{u"***REPRINTED COPY***"_s, QString(), receipt}));
        QCOMPARE(paper.documents, 2 + i);
        QCOMPARE(counter.state().last.ReceiptText, receipt);
    }
}

void PurchaseTest::reprintRefused()
{
    Counter counter;
    counter.settings->values.clear();
    fillCart(counter);
    commit(counter);
    counter.boxes.expect(u"Reprint Last Purchase?"_s, box::Ask, Answer::No);
    counter.click("Command14");
    QCOMPARE(counter.printers->paper().documents, 1);
}

void PurchaseTest::unprintableReceiptIsStillKept()
{
    class Jam final : public Printer
    {
    public:
        [[nodiscard]] QString deviceName() const override { return u"Jam"_s; }
        void setFontSize(int) override {}
        void setFontBold(bool) override {}
        void printLine(const QString &) override {}
        void endDocument() override {}
    };
    Counter counter;
    counter.settings->values.clear();
    fillCart(counter);
    counter.printers->setCurrent(std::make_shared<Jam>());
    commit(counter);
    QVERIFY(counter.state().last.ReceiptText.contains(u"Purchase ID: HV18030514070907"_s));
    QCOMPARE(counter.file.cell(u"SELECT count(*) FROM PurchaseCart"_s), u"1"_s);
}

HARROWBY_TEST(purchase_test, PurchaseTest)
#include "purchase_test.moc"
