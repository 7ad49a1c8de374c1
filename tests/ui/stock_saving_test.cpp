// SPDX-License-Identifier: MIT
#include "tests/program/test_program.h"
#include "tests/support/counter.h"

#include "ui/widgets/pick_list.h"
#include "ui/widgets/row_list.h"
#include "ui/widgets/text_table_model.h"

#include <QAbstractButton>
#include <QLabel>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::test;

/// What a save of a stock item leaves behind: in the table, in the lists, and when a statement fails.
class StockSavingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void columnsOfANewItem();
    void columnsOfAChangedItem();
    void columnsInOrder_data();
    void columnsInOrder();
    void costIsText_data();
    void costIsText();
    void figuresAreNumbers();
    void missingColumn();
    void tellsOnceAllIsDone();
    void tellsOfAChange();
    void customSaleFollows();
    void colourStaysUntilTheNextFill();
    void changesBeyond16Bits();
    void failures_data();
    void failures();
    void failingChange();
    void itemThatGoesWhileAsked();
};

namespace {

const QStringList fields{u"Combo6"_s, u"Combo5"_s, u"Combo7"_s, u"Combo8"_s, u"Combo13"_s, u"Combo14"_s, u"Combo15"_s};
const QStringList bun{u"B1"_s, u"FOOD"_s, u"BUN"_s, u"1.5"_s, u"3"_s, u"20"_s, u"Enabled"_s};
const QString added = u"Stock [BUN] with ID [B1] has been added successfully."_s;
const QString updated = u"Stock [BUN] with ID [B1] has been updated successfully."_s;
const QString question =
    u"Update Stock [B1  |  OLD BUN] with B1  |  BUN, FOOD, Unit Cost 1.50, R. Level 3, Avail. 20, Enabled?"_s;
const QString customSale = u"Select * from StockList where StockUse = 'Enabled'"_s;

void enter(const Counter &counter, const QStringList &texts)
{
    for (qsizetype i = 0; i < fields.size(); ++i)
        counter.setText(fields.at(i).toLatin1(), texts.at(i));
}

void save(const Counter &counter, const QStringList &texts = bun)
{
    enter(counter, texts);
    counter.click("Command16");
}

void saveChange(Counter &counter)
{
    counter.boxes.expect(question, box::AskDefaultNo, Answer::Yes);
    save(counter);
}

void openStock(Counter &counter, const QString &user = u"ADMINISTRATOR"_s)
{
    counter.open();
    counter.logIn(user);
    counter.chooseTab("TabStrip1", WorkArea::EditStock);
    counter.connection->statements.clear();
}

void addOldBun(const Counter &counter)
{
    counter.file.sql(u"INSERT INTO StockList VALUES "
                     "('B1','Old bun','X',9,9,9,'Disabled','then','MODIFIER','ADDER','ORDERER')"_s);
}

TextTableModel &rowsOf(const Counter &counter)
{
    return counter.find<RowList>("LV")->rows();
}

QString rowText(const Counter &counter, int row)
{
    QStringList texts;
    for (int column = 0; column < rowsOf(counter).columnCount(); ++column)
        texts << rowsOf(counter).text(row, column);
    return texts.join(u'|');
}

const QString listedBun = u"B1|BUN|FOOD|1.50|3|20|Enabled|05-Mar-18 14:07:09"_s;
const QString storedBun = u"B1|BUN|FOOD|1.5|3|20|Enabled|05-Mar-18 14:07:09|"_s;

} // namespace

void StockSavingTest::columnsOfANewItem()
{
    Counter counter;
    counter.file.addUser(u"ANNA"_s, u"PASS"_s, {u"Reorder"_s});
    openStock(counter, u" anna "_s);
    save(counter);
    QCOMPARE(counter.file.rows(u"SELECT * FROM StockList"_s), QStringList{storedBun + u"ANNA|ANNA|ANNA"_s});
    QCOMPARE(rowText(counter, 0), listedBun);
    QCOMPARE(counter.find<RowList>("LV")->selectedRow(), 0);
}

void StockSavingTest::columnsOfAChangedItem()
{
    Counter counter;
    counter.file.addItem(u"A1"_s, u"TEA"_s, 1, 1);
    addOldBun(counter);
    counter.file.addItem(u"C1"_s, u"OIL"_s, 1, 1);
    openStock(counter);
    const QStringList others = counter.file.rows(u"SELECT * FROM StockList WHERE StockID <> 'B1'"_s);
    saveChange(counter);
    QCOMPARE(counter.file.rows(u"SELECT * FROM StockList WHERE StockID = 'B1'"_s),
             QStringList{storedBun + u"ADMINISTRATOR|ADDER|ADMINISTRATOR"_s});
    QCOMPARE(counter.file.rows(u"SELECT * FROM StockList WHERE StockID <> 'B1'"_s), others);
    QCOMPARE(rowText(counter, 1), listedBun);
    QCOMPARE(counter.find<RowList>("LV")->selectedRow(), 1);
}

void StockSavingTest::columnsInOrder_data()
{
    QTest::addColumn<bool>("changes");
    QTest::addColumn<QString>("statement");
    QTest::newRow("new") << false
                         << u"INSERT INTO StockList (StockID,StockCategory,StockName,StockCost,StockReorderLevel,"
                            "StockAvailable,StockLastUpdated,StockAdded,StockLastModified,StockReorderUser,StockUse) "
                            "VALUES ('B1','FOOD','BUN','1.50',3,20,'05-Mar-18 14:07:09','ADMINISTRATOR',"
                            "'ADMINISTRATOR','ADMINISTRATOR','Enabled')"_s;
    QTest::newRow("changed") << true
                             << u"UPDATE StockList SET StockID = 'B1',StockCategory = 'FOOD',StockName = 'BUN',"
                                "StockCost = '1.50',StockReorderLevel = 3,StockAvailable = 20,StockLastUpdated = "
                                "'05-Mar-18 14:07:09',StockLastModified = 'ADMINISTRATOR',StockReorderUser = "
                                "'ADMINISTRATOR',StockUse = 'Enabled' WHERE rowid = 1"_s;
}

void StockSavingTest::columnsInOrder()
{
    QFETCH(const bool, changes);
    Counter counter;
    if (changes)
        addOldBun(counter);
    openStock(counter);
    QStringList written;
    counter.connection->beforeWrite = [&](const QString &statement) { written << statement; };
    changes ? saveChange(counter) : save(counter);
    QTEST(written.first(), "statement");
    QCOMPARE(written.size(), 2); // the row, and the activity's
}

void StockSavingTest::costIsText_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("stored");
    QTest::newRow("comma and blank") << u"1, 234.5"_s << u"1234.50"_s;
    QTest::newRow("whole") << u"7"_s << u"7.00"_s;
    QTest::newRow("rounded") << u"0.125"_s << u"0.13"_s;
}

void StockSavingTest::costIsText()
{
    QFETCH(const QString, typed);
    Counter counter;
    counter.file.sql(u"DROP TABLE StockList; CREATE TABLE StockList (StockID, StockName, StockCategory, StockCost, "
                     "StockReorderLevel, StockAvailable, StockUse, StockLastUpdated, StockLastModified, StockAdded, "
                     "StockReorderUser)"_s);
    openStock(counter);
    QStringList texts = bun;
    texts[3] = typed;
    save(counter, texts);
    QTEST(counter.file.cell(u"SELECT StockCost FROM StockList"_s), "stored");
    QCOMPARE(counter.file.rows(u"SELECT typeof(StockCost), typeof(StockReorderLevel), typeof(StockAvailable), "
                               "typeof(StockID) FROM StockList"_s),
             QStringList{u"text|integer|integer|text"_s});
}

void StockSavingTest::figuresAreNumbers()
{
    Counter counter;
    openStock(counter);
    QStringList texts = bun;
    texts[4] = u"1, 000"_s;
    texts[5] = u"2.5"_s;
    save(counter, texts);
    QCOMPARE(counter.file.rows(u"SELECT StockReorderLevel, StockAvailable FROM StockList"_s),
             QStringList{u"1000|2.5"_s});
    QCOMPARE(rowText(counter, 0), u"B1|BUN|FOOD|1.50|1000|2.5|Enabled|05-Mar-18 14:07:09"_s);
    QCOMPARE(counter.text("Combo13"), u"1, 000"_s); // what was typed stays
}

void StockSavingTest::missingColumn()
{
    Counter counter;
    addOldBun(counter);
    counter.file.sql(u"ALTER TABLE StockList DROP COLUMN StockReorderUser"_s);
    openStock(counter);
    saveChange(counter);
    QCOMPARE(counter.file.rows(u"SELECT * FROM StockList"_s), QStringList{storedBun + u"ADMINISTRATOR|ADDER"_s});
}

void StockSavingTest::tellsOnceAllIsDone()
{
    Counter counter;
    counter.file.sql(u"UPDATE StoreSettings SET ShowDetails = 1"_s);
    openStock(counter);
    counter.boxes.expect(added, box::Information, Answer::Ok, [&] {
        QCOMPARE(counter.connection->statements.last(), u"insert StockList"_s);
        QCOMPARE(rowText(counter, 0), listedBun);
        QCOMPARE(counter.find<RowList>("LV")->selectedRow(), 0);
        QCOMPARE(counter.find<PickList>("Combo3")->count(), 0); // the custom sale comes last
    });
    save(counter);
    QCOMPARE(counter.find<PickList>("Combo3")->count(), 1);
    QVERIFY(counter.text("Text1").startsWith(u"[05.03.18 14:07:09] -- "_s + added));
}

void StockSavingTest::tellsOfAChange()
{
    Counter counter;
    counter.file.sql(u"UPDATE StoreSettings SET ShowDetails = 1"_s);
    addOldBun(counter);
    openStock(counter);
    enter(counter, bun);
    counter.boxes.expect(question, box::AskDefaultNo, Answer::Yes,
                         [&] { QCOMPARE(counter.connection->statements.size(), 1); });
    counter.boxes.expect(updated, box::Information);
    counter.click("Command16");
    QCOMPARE(counter.text("StatusBar1_2"), updated);
}

void StockSavingTest::customSaleFollows()
{
    Counter counter;
    openStock(counter);
    counter.setText("Combo2", u" FOOD "_s);
    counter.setText("Combo3", u"typed"_s);
    save(counter);
    QCOMPARE(counter.connection->statements.last(),
             u"Select * from StockList where StockCategory = 'FOOD' and StockUse = 'Enabled'"_s);
    QCOMPARE(counter.find<PickList>("Combo3")->itemText(0), u"B1  |  BUN"_s);
    QCOMPARE(counter.text("Combo3"), QString());
}

void StockSavingTest::colourStaysUntilTheNextFill()
{
    Counter counter;
    addOldBun(counter);
    openStock(counter);
    QVERIFY(rowsOf(counter).isLow(0));
    saveChange(counter);
    QVERIFY(rowsOf(counter).isLow(0));
    counter.click("Command7");
    QVERIFY(!rowsOf(counter).isLow(0));
}

void StockSavingTest::changesBeyond16Bits()
{
    Counter counter;
    counter.file.sql(u"WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i + 1 FROM n WHERE i < 39999) "
                     "INSERT INTO StockList SELECT 'ID-' || i, 'ITEM ' || i, 'X', 1, 1, 2, 'Enabled', '', '', '', '' "
                     "FROM n"_s);
    openStock(counter);
    for (const QString &number : {u"39999"_s, u"32768"_s, u"32767"_s, u"0"_s}) {
        const QString id = u"ID-"_s + number;
        counter.boxes.expect(u"Update Stock [%1  |  ITEM %2] with %1  |  BUN %2, FOOD, Unit Cost 1.50, R. Level 3, "
                             "Avail. 20, Enabled?"_s.arg(id, number),
                             box::AskDefaultNo, Answer::Yes);
        save(counter, {id, u"FOOD"_s, u"BUN "_s + number, u"1.5"_s, u"3"_s, u"20"_s, u"Enabled"_s});
        QCOMPARE(rowsOf(counter).rowCount(), 40'000);
        QCOMPARE(rowsOf(counter).text(number.toInt(), 1), u"BUN "_s + number);
        QCOMPARE(counter.find<RowList>("LV")->selectedRow(), number.toInt());
        QCOMPARE(counter.file.cell(u"SELECT StockName FROM StockList WHERE StockID = '%1'"_s.arg(id)),
                 u"BUN "_s + number);
    }
}

void StockSavingTest::failures_data()
{
    QTest::addColumn<QString>("failing");
    QTest::addColumn<bool>("automatic");
    QTest::addColumn<QStringList>("stored");
    QTest::newRow("look for doubles") << u"UPPER(StockName) = "_s << false << QStringList{u"A1"_s, u"B1"_s};
    QTest::newRow("count") << u"Select count(*) as counts"_s << true << QStringList{u"A1"_s, u"FOO-0001"_s};
    QTest::newRow("look for the ID") << u"where StockID = 'FOO-0001'"_s << true << QStringList{u"A1"_s, u"FOO-0001"_s};
    QTest::newRow("new row") << u"insert StockList"_s << false << QStringList{u"A1"_s};
    QTest::newRow("activity") << u"INSERT INTO SysUsage"_s << false << QStringList{u"A1"_s, u"B1"_s};
    QTest::newRow("custom sale") << customSale << false << QStringList{u"A1"_s, u"B1"_s};
    QTest::newRow("everything") << QString() << true << QStringList{u"A1"_s};
}

void StockSavingTest::failures()
{
    QFETCH(const QString, failing);
    QFETCH(const bool, automatic);
    Counter counter;
    counter.file.addItem(u"A1"_s, u"TEA"_s, 1, 1);
    openStock(counter);
    counter.connection->fails = [failing](const QString &statement) { return statement.contains(failing); };
    QStringList texts = bun;
    if (automatic)
        texts[0] = u"(Auto ID)"_s;
    save(counter, texts);
    const QString id = automatic ? u"FOO-0001"_s : u"B1"_s;
    QTEST(counter.file.rows(u"SELECT StockID FROM StockList ORDER BY StockID"_s), "stored");
    QCOMPARE(counter.text("StatusBar1_2"), u"Stock [BUN] with ID [%1] has been added successfully."_s.arg(id));
    QCOMPARE(rowText(counter, 1), u"%1|BUN|FOOD|1.50|3|20|Enabled|05-Mar-18 14:07:09"_s.arg(id));
    QVERIFY(counter.connection->statements.last().startsWith(customSale));
}

void StockSavingTest::failingChange()
{
    Counter counter;
    addOldBun(counter);
    openStock(counter);
    const QStringList before = counter.file.rows(u"SELECT * FROM StockList"_s);
    counter.connection->fails = [](const QString &statement) { return statement == u"update StockList"_s; };
    saveChange(counter);
    QCOMPARE(counter.file.rows(u"SELECT * FROM StockList"_s), before);
    QCOMPARE(counter.text("StatusBar1_2"), updated);
    QCOMPARE(rowText(counter, 0), listedBun);
}

void StockSavingTest::itemThatGoesWhileAsked()
{
    Counter counter;
    addOldBun(counter);
    openStock(counter);
    counter.boxes.expect(question, box::AskDefaultNo, Answer::Yes,
                         [&] { counter.file.sql(u"DELETE FROM StockList"_s); });
    save(counter);
    QCOMPARE(counter.file.cell(u"SELECT count(*) FROM StockList"_s), u"0"_s);
    QCOMPARE(counter.text("StatusBar1_2"), updated);
}

HARROWBY_TEST(stock_saving_test, StockSavingTest)
#include "stock_saving_test.moc"
