// SPDX-License-Identifier: MIT
#include "tests/program/test_program.h"
#include "tests/support/counter.h"

#include "ui/widgets/pick_list.h"
#include "ui/widgets/row_list.h"
#include "ui/widgets/text_table_model.h"

#include <QAbstractButton>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::test;

/// Choosing a row of the existing-stock list: for the entry fields, for a reorder, and to delete it.
class StockChoiceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void clickLoadsTheFields();
    void enterLoadsTheFields();
    void clickOnTheReorderTab();
    void editButton();
    void editButtonWithoutSelection();
    void editOfAnIdInSmallLetters();
    void editOfTheFirstOfTwo();
    void editOfAnItemThatIsGone();
    void editOfMissingValues();
    void editOfACostInWords();
    void editWhenTheQueryFails();
    void removeWithoutSelection();
    void remove();
    void removeRefused();
    void removeTellsBeforeTheRowGoes();
    void removeTakesOtherCapitalsToo();
    void removeOfAQuotedId();
    void removeWhenTheStatementFails();
    void removeNeedsNoMoreRows();
};

namespace {

const QStringList fields{u"Combo6"_s, u"Combo5"_s, u"Combo7"_s, u"Combo8"_s, u"Combo13"_s, u"Combo14"_s, u"Combo15"_s};

QStringList entered(const Counter &counter)
{
    QStringList all;
    for (const QString &field : fields)
        all << counter.text(field.toLatin1());
    return all;
}

RowList &list(const Counter &counter)
{
    return *counter.find<RowList>("LV");
}

QStringList ids(const Counter &counter)
{
    QStringList all;
    for (int row = 0; row < list(counter).rows().rowCount(); ++row)
        all << list(counter).rows().text(row, 0);
    return all;
}

void clickRow(const Counter &counter, int row)
{
    const QPoint place = list(counter).visualRect(list(counter).rows().index(row, 0)).center();
    QTest::mouseClick(list(counter).viewport(), Qt::LeftButton, {}, place);
}

void openStock(Counter &counter, int tab = WorkArea::EditStock)
{
    counter.file.sql(u"INSERT INTO StockList VALUES "
                     "('A1','Green Tea','Drinks',1234.5,5,6.5,'Enabled','then','x','y','z'),"
                     "('B2','Jam','FOOD',2,1,9,'Disabled','','','','')"_s);
    counter.open();
    counter.logIn();
    counter.chooseTab("TabStrip1", WorkArea::EditStock);
    counter.chooseTab("TabStrip1", tab);
    list(counter).selectRow(-1);
    counter.connection->statements.clear();
}

const QStringList freshFields{u"(Auto ID)"_s, u"OTHER CATEGORY"_s, QString(),   QString(),
                              QString(),      QString(),           u"Enabled"_s};
const QStringList teaFields{u"A1"_s, u"Drinks"_s, u"GREEN TEA"_s, u"1234.50"_s, u"5"_s, u"6.5"_s, u"Enabled"_s};
const QStringList jamFields{u"B2"_s, u"FOOD"_s, u"JAM"_s, u"2.00"_s, u"1"_s, u"9"_s, u"Disabled"_s};

const QString question = u"Delete Stock [GREEN TEA] with A1?"_s;
const QString deleteTea = u"Delete from StockList where Upper(StockID) = 'A1'"_s;
const QString deletedTea = u"Stock [GREEN TEA] with A1 has been deleted!"_s;

} // namespace

void StockChoiceTest::clickLoadsTheFields()
{
    Counter counter;
    openStock(counter);
    QCOMPARE(entered(counter), freshFields);
    QVERIFY(!counter.find("Command26")->isEnabled());
    clickRow(counter, 0);
    QCOMPARE(counter.connection->statements, QStringList{u"Select * from StockList where StockID = 'A1'"_s});
    QCOMPARE(entered(counter), teaFields);
    QVERIFY(counter.find("Command26")->isEnabled());
    clickRow(counter, 1);
    QCOMPARE(entered(counter), jamFields);
    QCOMPARE(ids(counter), (QStringList{u"A1"_s, u"B2"_s}));
}

void StockChoiceTest::enterLoadsTheFields()
{
    Counter counter;
    openStock(counter);
    list(counter).selectRow(1);
    QCOMPARE(entered(counter), freshFields); // moving the current row chooses nothing
    QTest::keyClick(&list(counter), Qt::Key_Return);
    QCOMPARE(entered(counter), jamFields);
}

void StockChoiceTest::clickOnTheReorderTab()
{
    Counter counter;
    openStock(counter, WorkArea::ReorderStock);
    const QStringList before = entered(counter);
    counter.setText("Combo12", u"FOOD"_s);
    counter.connection->statements.clear();
    clickRow(counter, 0);
    QCOMPARE(counter.text("Combo12"), u"(All Category)"_s);
    QCOMPARE(counter.text("Combo11"), u"A1  |  GREEN TEA"_s);
    QCOMPARE(entered(counter), before);
    QVERIFY(!counter.connection->statements.contains(u"Select * from StockList where StockID = 'A1'"_s));
    QVERIFY(!counter.find("Command26")->isEnabled());
}

void StockChoiceTest::editButton()
{
    Counter counter;
    openStock(counter);
    list(counter).selectRow(0);
    counter.click("Command5");
    QCOMPARE(entered(counter), teaFields);
    QVERIFY(counter.find("Command26")->isEnabled());
}

void StockChoiceTest::editButtonWithoutSelection()
{
    Counter counter;
    openStock(counter);
    counter.boxes.expect(u"No Stock Item Selected!"_s, box::Exclamation);
    counter.click("Command5");
    QCOMPARE(entered(counter), freshFields);
    QVERIFY(counter.connection->statements.isEmpty());
    QVERIFY(!counter.find("Command26")->isEnabled());
}

void StockChoiceTest::editOfAnIdInSmallLetters()
{
    Counter counter;
    openStock(counter);
    counter.file.sql(u"UPDATE StockList SET StockID = 'a1' WHERE StockID = 'A1'"_s);
    clickRow(counter, 0);
    QCOMPARE(entered(counter), freshFields); // looked up by the listed ID, compared exactly
    QVERIFY(counter.find("Command26")->isEnabled());
}

void StockChoiceTest::editOfTheFirstOfTwo()
{
    Counter counter;
    openStock(counter);
    counter.file.addItem(u"A1"_s, u"OTHER"_s, 1, 1);
    clickRow(counter, 0);
    QCOMPARE(entered(counter), teaFields);
}

void StockChoiceTest::editOfAnItemThatIsGone()
{
    Counter counter;
    openStock(counter);
    clickRow(counter, 1);
    counter.file.sql(u"DELETE FROM StockList"_s);
    clickRow(counter, 0);
    QCOMPARE(entered(counter), jamFields);
    QVERIFY(counter.find("Command26")->isEnabled());
}

void StockChoiceTest::editOfMissingValues()
{
    Counter counter;
    openStock(counter);
    counter.file.sql(u"UPDATE StockList SET StockCategory = NULL, StockReorderLevel = NULL"_s);
    clickRow(counter, 0);
    QCOMPARE(counter.text("Combo5"), QString());
    QCOMPARE(counter.text("Combo13"), QString());
    QCOMPARE(counter.text("Combo14"), u"6.5"_s);
}

void StockChoiceTest::editOfACostInWords()
{
    Counter counter;
    openStock(counter);
    counter.file.sql(u"UPDATE StockList SET StockCost = 'free'"_s);
    clickRow(counter, 0);
    QCOMPARE(counter.text("Combo8"), u"0.00"_s);
    QCOMPARE(counter.text("Combo14"), u"6.5"_s);
}

void StockChoiceTest::editWhenTheQueryFails()
{
    Counter counter;
    openStock(counter);
    counter.connection->fails = [](const QString &) { return true; };
    clickRow(counter, 0);
    QCOMPARE(entered(counter), freshFields);
    QVERIFY(counter.find("Command26")->isEnabled());
}

void StockChoiceTest::removeWithoutSelection()
{
    Counter counter;
    openStock(counter);
    const QString status = counter.text("StatusBar1_2");
    counter.click("Command6");
    QVERIFY(counter.connection->statements.isEmpty());
    QCOMPARE(ids(counter), (QStringList{u"A1"_s, u"B2"_s}));
    QCOMPARE(counter.text("StatusBar1_2"), status);
}

void StockChoiceTest::remove()
{
    Counter counter;
    openStock(counter);
    list(counter).selectRow(0);
    counter.boxes.expect(question, box::AskDefaultNo, Answer::Yes);
    counter.click("Command6");
    QCOMPARE(counter.connection->statements,
             (QStringList{deleteTea, u"INSERT INTO SysUsage (SystemUsage,Times,Dates) Values ('%1',"
                                     "'2018-03-05 14:07:09','2018-03-05 14:07:09')"_s.arg(deletedTea)}));
    QCOMPARE(ids(counter), QStringList{u"B2"_s});
    QCOMPARE(list(counter).selectedRow(), -1); // the row that took its place is not selected
    QCOMPARE(counter.text("StatusBar1_2"), deletedTea);
    QCOMPARE(counter.file.rows(u"SELECT StockID FROM StockList"_s), QStringList{u"B2"_s});
    QCOMPARE(counter.find<PickList>("Combo7")->count(), 2); // the names stay until the next fill
}

void StockChoiceTest::removeRefused()
{
    Counter counter;
    openStock(counter);
    list(counter).selectRow(0);
    counter.boxes.expect(question, box::AskDefaultNo, Answer::No);
    counter.click("Command6");
    QVERIFY(counter.connection->statements.isEmpty());
    QCOMPARE(ids(counter), (QStringList{u"A1"_s, u"B2"_s}));
    QCOMPARE(list(counter).selectedRow(), 0);
}

void StockChoiceTest::removeTellsBeforeTheRowGoes()
{
    Counter counter;
    counter.file.sql(u"UPDATE StoreSettings SET ShowDetails = 1"_s);
    openStock(counter);
    list(counter).selectRow(0);
    counter.boxes.expect(question, box::AskDefaultNo, Answer::Yes);
    counter.boxes.expect(deletedTea, box::Information, Answer::Ok, [&] {
        QCOMPARE(counter.file.cell(u"SELECT count(*) FROM StockList"_s), u"1"_s);
        QCOMPARE(ids(counter), (QStringList{u"A1"_s, u"B2"_s}));
    });
    counter.click("Command6");
    QCOMPARE(ids(counter), QStringList{u"B2"_s});
}

void StockChoiceTest::removeTakesOtherCapitalsToo()
{
    Counter counter;
    openStock(counter);
    counter.file.addItem(u"a1"_s, u"OTHER"_s, 1, 1);
    list(counter).selectRow(0);
    counter.boxes.expect(question, box::AskDefaultNo, Answer::Yes);
    counter.click("Command6");
    QCOMPARE(counter.file.rows(u"SELECT StockID FROM StockList"_s), QStringList{u"B2"_s});
}

void StockChoiceTest::removeOfAQuotedId()
{
    Counter counter;
    openStock(counter);
    counter.file.sql(u"UPDATE StockList SET StockID = 'A''1' WHERE StockID = 'A1'"_s);
    counter.click("Command7");
    list(counter).selectRow(0);
    counter.boxes.expect(u"Delete Stock [GREEN TEA] with A'1?"_s, box::AskDefaultNo, Answer::Yes);
    counter.click("Command6");
    QCOMPARE(counter.text("StatusBar1_2"), u"Stock [GREEN TEA] with A'1 has been deleted!"_s);
    QCOMPARE(ids(counter), QStringList{u"B2"_s});
    QCOMPARE(counter.file.cell(u"SELECT count(*) FROM StockList"_s), u"2"_s);
}

void StockChoiceTest::removeWhenTheStatementFails()
{
    Counter counter;
    openStock(counter);
    list(counter).selectRow(0);
    counter.connection->fails = [](const QString &statement) { return statement == deleteTea; };
    counter.boxes.expect(question, box::AskDefaultNo, Answer::Yes);
    counter.click("Command6");
    QCOMPARE(counter.text("StatusBar1_2"), deletedTea);
    QCOMPARE(ids(counter), QStringList{u"B2"_s});
    QCOMPARE(counter.file.cell(u"SELECT count(*) FROM StockList"_s), u"2"_s);
}

void StockChoiceTest::removeNeedsNoMoreRows()
{
    Counter counter;
    openStock(counter);
    for (const QString &text : {u"Delete Stock [JAM] with B2?"_s, question}) {
        list(counter).selectRow(list(counter).rows().lastRow());
        counter.boxes.expect(text, box::AskDefaultNo, Answer::Yes);
        counter.click("Command6");
    }
    QCOMPARE(ids(counter), QStringList());
    counter.click("Command6");
    counter.boxes.expect(u"No Stock Item Selected!"_s, box::Exclamation);
    counter.click("Command5");
}

HARROWBY_TEST(stock_choice_test, StockChoiceTest)
#include "stock_choice_test.moc"
