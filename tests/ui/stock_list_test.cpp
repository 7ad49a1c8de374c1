// SPDX-License-Identifier: MIT
#include "tests/program/test_program.h"
#include "tests/support/counter.h"
#include "tests/support/inventory_probe.h"

#include "theme/colours.h"
#include "ui/widgets/pick_list.h"
#include "ui/widgets/row_list.h"
#include "ui/widgets/text_table_model.h"

#include <QAbstractButton>

using namespace Qt::StringLiterals;

using namespace harrowby;
using namespace harrowby::test;

/// The existing-stock list: filling, refreshing, updating single rows, choosing and deleting.
class StockListTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void captions();
    void isEmptyUntilItsTabIsChosen();
    void fill();
    void refreshReadsTheTableAfresh();
    void emptyTable();
    void costs_data();
    void costs();
    void colours_data();
    void colours();
    void coloursOfMissingFigures();
    void valuesOfAnyKind();
    void missingColumn();
    void rowsWithoutAColumn_data();
    void rowsWithoutAColumn();
    void lowRowHasASign();
    void namesKeepTheirTextAndLetters();
    void failingQuery();
    void brokenInTheMiddle();
    void capitalsShareARow();
    void lettersThatGrowInUpperCase();
    void keptRowsAreUpdatedAndColourTheLast();
    void keptRowsStayWhenTheQueryFails();
    void keptRowsStayWhenTheQueryBreaks();
    void putAppends();
    void putOverwrites();
    void findMatchesTheWholeId();
};

namespace {

const QString allStock = u"Select * from StockList"_s;

TextTableModel &rowsOf(const Counter &counter)
{
    return counter.find<RowList>("LV")->rows();
}

QStringList listed(const Counter &counter)
{
    const TextTableModel &rows = rowsOf(counter);
    QStringList all;
    for (int row = 0; row < rows.rowCount(); ++row) {
        QStringList texts;
        for (int column = 0; column < rows.columnCount(); ++column)
            texts << rows.text(row, column);
        all << texts.join(u'|');
    }
    return all;
}

QStringList names(const Counter &counter)
{
    const auto *list = counter.find<PickList>("Combo7");
    QStringList all;
    for (int index = 0; index < list->count(); ++index)
        all << list->itemText(index);
    return all;
}

int selectedRow(const Counter &counter)
{
    return counter.find<RowList>("LV")->selectedRow();
}

QVariant colour(const Counter &counter, int row, int column = 0)
{
    return rowsOf(counter).index(row, column).data(Qt::ForegroundRole);
}

void openStock(Counter &counter)
{
    counter.open();
    counter.logIn();
    counter.chooseTab("TabStrip1", WorkArea::EditStock);
    counter.connection->statements.clear();
}

void addRow(const Counter &counter, const QString &values)
{
    counter.file.sql(u"INSERT INTO StockList (StockID, StockName, StockCategory, StockCost, StockReorderLevel, "
                     "StockAvailable, StockUse, StockLastUpdated) VALUES "_s +
                     values);
}

const QString teaRow = u"('a1','Green Tea','Drinks',1234.5,5,6,'Enabled','05-Mar-18 14:07:09')"_s;
const QString jamRow = u"('b2','Jam','FOOD',0.5,2.5,0,'Disabled','x')"_s;

} // namespace

void StockListTest::captions()
{
    Counter counter;
    openStock(counter);
    QStringList captions;
    for (int column = 0; column < rowsOf(counter).columnCount(); ++column)
        captions << rowsOf(counter).headerData(column, Qt::Horizontal).toString();
    QCOMPARE(captions, (QStringList{u"Stock ID"_s, u"Stock Name"_s, u"Category"_s, u"Unit Cost"_s, u"R. Level"_s,
                                    u"Avail."_s, u"Use"_s, u"Last Updated"_s}));
    QCOMPARE(counter.text("Command6"), u"Delete Stock"_s);
    QCOMPARE(counter.text("Command7"), QString());
}

void StockListTest::isEmptyUntilItsTabIsChosen()
{
    Counter counter;
    addRow(counter, teaRow);
    counter.open();
    counter.logIn();
    QCOMPARE(listed(counter), QStringList());
    QCOMPARE(names(counter), QStringList());
    QVERIFY(!counter.connection->statements.contains(allStock));
    counter.chooseTab("TabStrip1", WorkArea::EditStock);
    QCOMPARE(counter.connection->statements.count(allStock), 1);
    QCOMPARE(listed(counter).size(), 1);
}

void StockListTest::fill()
{
    Counter counter;
    addRow(counter, jamRow + u","_s + teaRow);
    openStock(counter);
    // In the query's order; disabled items and finished ones too.
    QCOMPARE(listed(counter), (QStringList{u"B2|JAM|FOOD|0.50|2.5|0|Disabled|x"_s,
                                           u"A1|GREEN TEA|Drinks|1,234.50|5|6|Enabled|05-Mar-18 14:07:09"_s}));
    QCOMPARE(selectedRow(counter), 1);
}

void StockListTest::refreshReadsTheTableAfresh()
{
    Counter counter;
    addRow(counter, teaRow);
    openStock(counter);
    counter.file.sql(u"UPDATE StoreSettings SET ShowDetails = 1; DELETE FROM StockList"_s);
    addRow(counter, jamRow);
    counter.click("Command7");
    QCOMPARE(counter.connection->statements,
             (QStringList{allStock, u"INSERT INTO SysUsage (SystemUsage,Times,Dates) Values ('Stock List Refreshed.',"
                                    "'2018-03-05 14:07:09','2018-03-05 14:07:09')"_s}));
    QCOMPARE(listed(counter), QStringList{u"B2|JAM|FOOD|0.50|2.5|0|Disabled|x"_s});
    QCOMPARE(names(counter), QStringList{u"Jam"_s});
    QVERIFY(counter.text("Text1").startsWith(u"[05.03.18 14:07:09] -- Stock List Refreshed."_s));
}

void StockListTest::emptyTable()
{
    Counter counter;
    counter.file.sql(u"UPDATE StoreSettings SET ShowDetails = 1"_s); // quiet all the same: no box
    openStock(counter);
    counter.click("Command7");
    QCOMPARE(listed(counter), QStringList());
    QCOMPARE(names(counter), QStringList());
    QCOMPARE(selectedRow(counter), -1);
    QCOMPARE(counter.text("StatusBar1_2"), u"Stock List Refreshed."_s);
    QCOMPARE(counter.file.cell(u"SELECT count(*) FROM SysUsage WHERE SystemUsage = 'Stock List Refreshed.'"_s), u"1"_s);
}

void StockListTest::costs_data()
{
    QTest::addColumn<QString>("stored");
    QTest::addColumn<QString>("shown");
    QTest::newRow("grouped") << u"1234.5"_s << u"1,234.50"_s;
    QTest::newRow("no number") << u"'free'"_s << u"0.00"_s;
    QTest::newRow("starts with one") << u"'2.5 each'"_s << u"2.50"_s;
    QTest::newRow("missing") << u"NULL"_s << u"0.00"_s;
    QTest::newRow("negative") << u"-1234"_s << u"-1,234.00"_s;
    QTest::newRow("half") << u"0.125"_s << u"0.13"_s;
    QTest::newRow("million") << u"1000000"_s << u"1,000,000.00"_s;
}

void StockListTest::costs()
{
    QFETCH(const QString, stored);
    Counter counter;
    if (!counter.file.keepsFigure(stored))
        QSKIP("no figure");
    addRow(counter, u"('A1','TEA','DRINKS',%1,1,2,'Enabled','')"_s.arg(stored));
    openStock(counter);
    QTEST(rowsOf(counter).text(0, 3), "shown");
}

void StockListTest::colours_data()
{
    QTest::addColumn<QString>("level");
    QTest::addColumn<QString>("available");
    QTest::addColumn<bool>("red");
    QTest::newRow("equal") << u"5"_s << u"5"_s << true;
    QTest::newRow("one more") << u"5"_s << u"6"_s << false;
    QTest::newRow("finished") << u"1"_s << u"0"_s << true;
    QTest::newRow("compared as numbers") << u"9"_s << u"10"_s << false;
    QTest::newRow("fractions") << u"2.5"_s << u"2.25"_s << true;
}

void StockListTest::colours()
{
    QFETCH(const QString, level);
    QFETCH(const QString, available);
    QFETCH(const bool, red);
    Counter counter;
    addRow(counter, u"('A1','TEA','DRINKS',1,%1,%2,'Enabled','')"_s.arg(level, available));
    openStock(counter);
    QCOMPARE(rowsOf(counter).isLow(0), red);
    QCOMPARE(colour(counter, 0).value<QColor>(),
             QColor(red ? Colours::current().lowRow : Colours::current().enoughRow));
    QVERIFY(!colour(counter, 0, 1).isValid());
}

void StockListTest::coloursOfMissingFigures()
{
    Counter counter;
    addRow(counter, u"('A1','TEA','DRINKS',1,NULL,-1,'Enabled',''),('A2','JAM','FOOD',1,1,NULL,'Enabled','')"_s);
    openStock(counter);
    QCOMPARE(listed(counter), (QStringList{u"A1|TEA|DRINKS|1.00||-1|Enabled|"_s, u"A2|JAM|FOOD|1.00|1||Enabled|"_s}));
    for (const int row : {0, 1})
        QCOMPARE(colour(counter, row).value<QColor>(), QColor(Colours::current().enoughRow));
}

void StockListTest::valuesOfAnyKind()
{
    Counter counter;
    addRow(counter, u"('é1','Crème brûlée 🥛','süß',' 2.5',' 5',1e3,'?',NULL),"
                    "(x'6231',7,1.5,x'39','many',2.50,x'','a' || char(10) || 'b')"_s);
    openStock(counter);
    QCOMPARE(listed(counter),
             (QStringList{u"É1|CRÈME BRÛLÉE 🥛|süß|2.50|5|1000|?|"_s, u"B1|7|1.5|9.00|many|2.5||a\nb"_s}));
    QCOMPARE(names(counter), (QStringList{u"Crème brûlée 🥛"_s, u"7"_s}));
    QCOMPARE(InventoryProbe{counter.window()}.findStockRow(u"é1"_s), 0);
}

void StockListTest::missingColumn()
{
    Counter counter;
    addRow(counter, teaRow);
    counter.file.sql(u"ALTER TABLE StockList DROP COLUMN StockReorderLevel"_s);
    openStock(counter);
    QCOMPARE(listed(counter), QStringList{u"A1|GREEN TEA|Drinks|1,234.50||6|Enabled|05-Mar-18 14:07:09"_s});
}

void StockListTest::rowsWithoutAColumn_data()
{
    QTest::addColumn<QString>("column");
    QTest::addColumn<QStringList>("rows");
    QTest::addColumn<QStringList>("offered");
    QTest::newRow("ID") << u"StockID"_s << QStringList() << QStringList{u"Green Tea"_s};
    QTest::newRow("name") << u"StockName"_s << QStringList{u"A1||Drinks|1,234.50|5|6|Enabled|05-Mar-18 14:07:09"_s}
                          << QStringList();
}

/// Without its ID a row is not listed, without its name none is offered; other missing columns are empty.
void StockListTest::rowsWithoutAColumn()
{
    QFETCH(const QString, column);
    QFETCH(const QStringList, rows);
    QFETCH(const QStringList, offered);
    Counter counter;
    addRow(counter, teaRow);
    counter.file.sql(u"ALTER TABLE StockList DROP COLUMN "_s + column);
    openStock(counter);
    QCOMPARE(listed(counter), rows);
    QCOMPARE(names(counter), offered);
}

/// Pixels of a cell that differ from its background, so that a mark counts and a colour does not.
int ink(const Counter &counter, int row)
{
    const auto *list = counter.find<RowList>("LV");
    const QRect cell = list->visualRect(list->model()->index(row, 0)).adjusted(2, 2, -2, -2);
    const QImage image = list->viewport()->grab(cell).toImage();
    int dots = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            dots += image.pixel(x, y) == image.pixel(0, 0) ? 0 : 1;
    }
    return dots;
}

void StockListTest::lowRowHasASign()
{
    Counter counter;
    addRow(counter, u"('A1','TEA','DRINKS',1,5,5,'Enabled',''),('A1 ','JAM','FOOD',1,5,6,'Enabled',''),"
                    "('A9','BUN','FOOD',1,5,6,'Enabled','')"_s);
    openStock(counter);
    QVERIFY(ink(counter, 1) > 0);
    QVERIFY2(ink(counter, 0) > ink(counter, 1) + 10, qPrintable(QString::number(ink(counter, 0))));
    const auto said = [&](int row) { return rowsOf(counter).index(row, 0).data(Qt::AccessibleTextRole).toString(); };
    QCOMPARE(said(0), u"A1, low stock"_s);
    QCOMPARE(said(1), QString()); // none: a screen reader takes the cell's text
    QCOMPARE(rowsOf(counter).index(0, 0).data().toString(), u"A1"_s);
    QVERIFY(!rowsOf(counter).index(0, 1).data(Qt::AccessibleTextRole).isValid());
}

void StockListTest::namesKeepTheirTextAndLetters()
{
    Counter counter;
    addRow(counter, teaRow + u",('A2','Green Tea','',1,1,1,'Enabled','')"_s);
    openStock(counter);
    QCOMPARE(names(counter), (QStringList{u"Green Tea"_s, u"Green Tea"_s}));
    QCOMPARE(counter.text("Combo7"), QString());
    counter.setText("Combo7", u"half a na"_s);
    counter.click("Command7");
    QCOMPARE(counter.text("Combo7"), u"half a na"_s);
    QCOMPARE(names(counter).size(), 2);
}

void StockListTest::failingQuery()
{
    Counter counter;
    addRow(counter, teaRow);
    openStock(counter);
    counter.setText("Combo7", u"typed"_s);
    counter.connection->fails = [](const QString &statement) { return statement == allStock; };
    counter.click("Command7");
    QCOMPARE(listed(counter), QStringList());
    QCOMPARE(names(counter), QStringList());
    QCOMPARE(counter.text("Combo7"), u"typed"_s);
    QCOMPARE(counter.text("StatusBar1_2"), u"Stock List Refreshed."_s);
}

void StockListTest::brokenInTheMiddle()
{
    Counter counter;
    for (int i = 0; i < 30; ++i)
        counter.file.addItem(u"A%1"_s.arg(i), u"ITEM"_s, 1, 1);
    openStock(counter);
    QCOMPARE(listed(counter).size(), 30);
    counter.setText("Combo7", u"typed"_s);
    counter.connection->rowsUntilBreak = [](const QString &select) { return select == allStock ? 12 : -1; };
    counter.click("Command7");
    QCOMPARE(listed(counter), QStringList());
    QCOMPARE(names(counter), QStringList());
    QCOMPARE(counter.text("Combo7"), u"typed"_s);
    QCOMPARE(selectedRow(counter), -1);
    QCOMPARE(counter.text("StatusBar1_2"), u"Stock List Refreshed."_s);
}

void StockListTest::capitalsShareARow()
{
    Counter counter;
    addRow(counter, teaRow + u","_s + jamRow + u",('A1','Black Tea','',2,1,9,'Enabled','')"_s);
    openStock(counter);
    QCOMPARE(listed(counter),
             (QStringList{u"A1|BLACK TEA||2.00|1|9|Enabled|"_s, u"B2|JAM|FOOD|0.50|2.5|0|Disabled|x"_s}));
    QCOMPARE(names(counter).size(), 3);
    QCOMPARE(selectedRow(counter), 0);  // the row that was written last
    QVERIFY(!rowsOf(counter).isLow(1)); // the colour is intended to go to the last row
}

void StockListTest::lettersThatGrowInUpperCase()
{
    Counter counter;
    addRow(counter, u"('groß1','TEA','DRINKS',1,1,2,'Enabled','')"_s);
    openStock(counter);
    QCOMPARE(rowsOf(counter).text(0, 0), u"GROSS1"_s);
    InventoryProbe{counter.window()}.loadStock(true);
    QCOMPARE(listed(counter).size(), 1);
}

void StockListTest::keptRowsAreUpdatedAndColourTheLast()
{
    Counter counter;
    addRow(counter, u"('A1','TEA','DRINKS',1,5,6,'Enabled',''),('A2','JAM','FOOD',1,5,6,'Enabled','')"_s);
    openStock(counter);
    rowsOf(counter).appendRow({u"GONE"_s});
    counter.setText("Combo7", u"typed"_s);
    counter.file.sql(u"UPDATE StockList SET StockAvailable = 4 WHERE StockID = 'A2'; "
                     "UPDATE StockList SET StockName = 'OLD TEA' WHERE StockID = 'A1'"_s);
    InventoryProbe{counter.window()}.loadStock(true);
    QCOMPARE(listed(counter), (QStringList{u"A1|OLD TEA|DRINKS|1.00|5|6|Enabled|"_s, u"A2|JAM|FOOD|1.00|5|4|Enabled|"_s,
                                           u"GONE|||||||"_s}));
    QVERIFY(!rowsOf(counter).isLow(0));
    QVERIFY(!rowsOf(counter).isLow(1)); // the low one; the last row has got its colour
    QVERIFY(rowsOf(counter).isLow(2));
    QCOMPARE(selectedRow(counter), 1);
    QCOMPARE(names(counter), (QStringList{u"TEA"_s, u"JAM"_s, u"OLD TEA"_s, u"JAM"_s}));
    QCOMPARE(counter.text("Combo7"), u"typed"_s);
}

void StockListTest::keptRowsStayWhenTheQueryFails()
{
    Counter counter;
    addRow(counter, teaRow);
    openStock(counter);
    const QStringList before = listed(counter);
    counter.connection->fails = [](const QString &statement) { return statement == allStock; };
    InventoryProbe{counter.window()}.loadStock(true);
    QCOMPARE(listed(counter), before);
    QCOMPARE(names(counter), QStringList{u"Green Tea"_s});
}

void StockListTest::keptRowsStayWhenTheQueryBreaks()
{
    Counter counter;
    for (int i = 0; i < 30; ++i)
        counter.file.addItem(u"A%1"_s.arg(i), u"ITEM"_s, 1, 1);
    openStock(counter);
    const QStringList before = listed(counter);
    counter.file.sql(u"UPDATE StockList SET StockName = 'OTHER'"_s);
    counter.connection->rowsUntilBreak = [](const QString &select) { return select == allStock ? 12 : -1; };
    InventoryProbe{counter.window()}.loadStock(true);
    QCOMPARE(listed(counter), before);
    QCOMPARE(names(counter).size(), 30);
}

void StockListTest::putAppends()
{
    Counter counter;
    addRow(counter, teaRow);
    openStock(counter);
    const InventoryProbe probe{counter.window()};
    const ListedStock stock{u"c3"_s, u"bun"_s, u"Food"_s, u"1234.5"_s, u"3"_s, u"0"_s, u"Enabled"_s, u"now"_s};
    probe.putStock(stock, QString());
    QCOMPARE(listed(counter).last(), u"C3|BUN|Food|1,234.50|3|0|Enabled|now"_s);
    QCOMPARE(selectedRow(counter), 1);
    QVERIFY(!colour(counter, 1).isValid()); // only a fill colours
    ListedStock other = stock;
    other.id = u"c4"_s;
    probe.putStock(other, u"c4"_s);
    QCOMPARE(listed(counter).last(), u"C4|BUN|Food|1,234.50|3|0|Enabled|now"_s);
    QCOMPARE(selectedRow(counter), 2);
    QCOMPARE(names(counter).size(), 1);
}

void StockListTest::putOverwrites()
{
    Counter counter;
    addRow(counter, teaRow + u","_s + jamRow);
    openStock(counter);
    const InventoryProbe probe{counter.window()};
    probe.putStock({u"a1"_s, u"Tea"_s, u"X"_s, u"no number"_s, u"L"_s, u"A"_s, u"U"_s, u"T"_s}, QString());
    QCOMPARE(listed(counter).first(), u"A1|TEA|X|0.00|L|A|U|T"_s);
    QCOMPARE(selectedRow(counter), 0);
    probe.putStock({u"B2"_s, u"Jelly"_s, u"Y"_s, u"7"_s, u"1"_s, u"2"_s, u"V"_s, u"W"_s}, u"B2"_s);
    QCOMPARE(listed(counter).last(), u"B2|JELLY|Y|7.00|1|2|V|W"_s);
    QCOMPARE(selectedRow(counter), 1);
    QVERIFY(rowsOf(counter).isLow(1)); // the colour stays what the fill made it
    QCOMPARE(listed(counter).size(), 2);
}

void StockListTest::findMatchesTheWholeId()
{
    Counter counter;
    addRow(counter, u"('A12','TEA','',1,1,1,'Enabled',''),('a1','JAM','',1,1,1,'Enabled','')"_s);
    openStock(counter);
    const InventoryProbe probe{counter.window()};
    QCOMPARE(probe.findStockRow(u"A1"_s), 1);
    QCOMPARE(probe.findStockRow(u"a12"_s), 0);
    QCOMPARE(probe.findStockRow(u"A"_s), -1);
    QCOMPARE(probe.findStockRow(u"JAM"_s), -1);
    QCOMPARE(probe.findStockRow(QString()), -1);
}

HARROWBY_TEST(stock_list_test, StockListTest)
#include "stock_list_test.moc"
