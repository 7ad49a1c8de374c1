// SPDX-License-Identifier: MIT
#include "app/catalogue/import_columns.h"
#include "tests/app/import_desk.h"
#include "tests/program/test_program.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::app::test;

namespace {

const QByteArray itemsHead = "StockID,StockName,StockCategory,StockCost,StockReorderLevel,StockAvailable,StockUse,"
                             "StockLastUpdated,StockLastModified,StockAdded,StockReorderUser,As Stored\n";
const QByteArray editors = ",01-Jan-26 08:00:00,JACK,JACK,JACK,";

} // namespace

/// Files that a spreadsheet or a person has changed.
class ImportEditedTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_bench = std::make_unique<ImportBench>(); }
    void cleanup() { m_bench.reset(); }

    void emptiedFiguresOfAnExport();
    void otherEditsOfAnExport();
    void nameWithNulMayBeReplaced();
    void columnsOfAnExportMatchedOtherwise();
    void bytesInAnEditedRowAreTold();
    void shortRowsEndWithEmptyCells();
    void addedCategoriesOfAnExport();
    void codesInAnotherLength();
    void codesWithoutTheirZeros();
    void itemsByCodesWithoutTheirZeros();
    void codeOfSeveralItems();
    void spoiltMemoryOfColumns();
    void firstLineThatIsARow_data();
    void firstLineThatIsARow();
    void firstLineTakenAsARow();
    void openQuoteTellsItsLines();
    void unseenBlanks();
    void equalRowsAreCounted();

private:
    [[nodiscard]] QStringList preview(const QByteArray &text, ImportKind kind = ImportKind::Items,
                                      bool capitals = false)
    {
        ImportChoices choices = ImportBench::choicesFor(text, kind);
        choices.putIntoCapitals = capitals;
        choices.stockInHand = true;
        return m_bench->list(m_bench->stage(text, choices).id);
    }
    void addCodes(const QString &values)
    {
        m_bench->sql(u"create table if not exists HarrowbyCode (Code text not null primary key, StockID text not null, "
                     "Units integer not null)"_s);
        m_bench->sql(u"insert into HarrowbyCode values "_s + values);
    }

    std::unique_ptr<ImportBench> m_bench;
};

void ImportEditedTest::emptiedFiguresOfAnExport()
{
    m_bench->addItem(u"TEA-1"_s, u"TEA"_s, u"1.5"_s);
    m_bench->addItem(u"COLA"_s, u"COLA"_s, u"2"_s);
    QCOMPARE(preview(itemsHead + "TEA-1,TEA,DRINKS,,,,Enabled" + editors + "\nCOLA,COLA,DRINKS,2.50,,10,Enabled" +
                     editors + "\nNEW,NEW,DRINKS,,2,3,Enabled" + editors + '\n'),
             (QStringList{u"2 unchanged TEA-1"_s, u"3 changed COLA StockCost 2>2.50"_s,
                          u"4 refused NEW [StockCost: Non-numeric or Invalid Stock Cost!]"_s}));
    addCodes(u"('ABC', 'TEA-1', 2)"_s);
    QCOMPARE(preview("Code,StockID,Units,As Stored\nABC,TEA-1,,\nDEF,COLA,,\n", ImportKind::Codes),
             (QStringList{u"2 unchanged ABC"_s, u"3 new DEF StockID >COLA Units >1"_s}));
}

void ImportEditedTest::otherEditsOfAnExport()
{
    m_bench->addItem(u"TEA-1"_s, u"TEA"_s, u"1.5"_s);
    m_bench->addItem(u"COLA"_s, u"COLA"_s, u"null"_s);
    QCOMPARE(preview(itemsHead + "TEA-1,TEA,DRINKS,much,2,10,Enabled" + editors + "\nCOLA,COLA,DRINKS,3,2,10,Enabled" +
                     editors + "StockCost:null\nNEW,NEW,DRINKS,1,2,3,Enabled" + editors + "new one\n"),
             (QStringList{u"2 refused TEA-1 [StockCost: Non-numeric or Invalid Stock Cost! (much)]"_s,
                          u"3 changed COLA StockCost >3.00"_s,
                          u"4 new NEW StockName >NEW StockCategory >DRINKS StockCost >1.00 StockReorderLevel >2 "
                          "StockAvailable >3 StockUse >Enabled"_s}));
}

void ImportEditedTest::nameWithNulMayBeReplaced()
{
    m_bench->addItem(u"TEA-1"_s, u"TEA"_s, u"1.5"_s);
    m_bench->sql(u"update StockList set StockName = 'A' || char(0) || 'B' where StockID = 'TEA-1'"_s);
    const QByteArray named = itemsHead + "TEA-1,BLACK TEA,DRINKS,1.5,2,10,Enabled" + editors + "StockName:escaped\n";
    QCOMPARE(m_bench->stage(named).counts, (ImportCounts{0, 1, 0, 0}));
}

/// Else an ID of bytes would come in as the text "0x41FF".
/// Equal is what the chosen columns make of a row, not what its own would.
void ImportEditedTest::columnsOfAnExportMatchedOtherwise()
{
    m_bench->addItem(u"TEA-1"_s, u"TEA"_s, u"1.5"_s);
    m_bench->sql(u"update StockList set StockUse = null"_s); // which "As Stored" tells
    const QByteArray text = itemsHead + "TEA-1,TEA,DRINKS,1.5,2,10," + editors + "StockUse:null\n";
    ImportChoices choices = ImportBench::choicesFor(text);
    QCOMPARE(m_bench->list(m_bench->stage(text, choices).id), QStringList{u"2 unchanged TEA-1"_s});
    choices.columns.swapItemsAt(3, 4); // cost and reorder level
    QCOMPARE(m_bench->list(m_bench->stage(text, choices).id),
             QStringList{u"2 changed TEA-1 StockCost 1.5>2.00 StockReorderLevel 2>1.5"_s});
}

void ImportEditedTest::bytesInAnEditedRowAreTold()
{
    QCOMPARE(preview(itemsHead + "0x41FF,TEA,DRINKS,,2,10,Enabled" + editors + "StockID:blob\n"),
             QStringList{u"2 refused 0x41FF [StockID: The cell holds bytes, and the row was changed so that it is no "
                         "longer as an export writes it. Empty its cell \"As Stored\" to import the row as it "
                         "reads.]"_s});
}

void ImportEditedTest::shortRowsEndWithEmptyCells()
{
    m_bench->addItem(u"TEA-1"_s, u"TEA"_s, u"1.5"_s);
    QCOMPARE(preview("StockID,StockName,StockCost,Code\nTEA-1,TEA,1.60\nTEA-2\nA,TEA BAG\nB,BUN,1,ABC,\n"),
             (QStringList{u"2 changed TEA-1 StockCost 1.5>1.60"_s,
                          u"3 refused TEA-2 [StockName: Invalid Item Name Entry!]"_s,
                          u"4 refused A [StockCost: Non-numeric or Invalid Stock Cost!]"_s,
                          u"5 refused B [: The row has more cells than the first one.]"_s}));
    const QByteArray exported = itemsHead + "TEA-1,TEA,DRINKS,1.5,2,10,Enabled,01-Jan-26 08:00:00,JACK,JACK,JACK\n";
    QCOMPARE(preview(exported), QStringList{u"2 unchanged TEA-1"_s});
    QCOMPARE(preview("CategoryName,EntryDate,As Stored\nDRINKS\nFOOD,2026\n", ImportKind::Categories).size(), 2);
    QCOMPARE(m_bench->import().count(m_bench->last, RowFilter::Refused).value_or(-1), 0);
}

void ImportEditedTest::addedCategoriesOfAnExport()
{
    m_bench->sql(u"insert into InventoryCategory values ('Old ones', '')"_s);
    const QByteArray text = "CategoryName,EntryDate,As Stored\nOld ones,,\nSnacks,,\n Fruit ,,\n";
    QCOMPARE(preview(text, ImportKind::Categories, true),
             (QStringList{u"2 unchanged Old ones"_s, u"3 new SNACKS"_s, u"4 new FRUIT"_s}));
    QCOMPARE(preview(text, ImportKind::Categories).at(1), u"3 refused Snacks [CategoryName: It is not in capitals.]"_s);
}

void ImportEditedTest::codesInAnotherLength()
{
    m_bench->addItem(u"TEA-1"_s, u"TEA"_s, u"1.5"_s);
    m_bench->addItem(u"COLA"_s, u"COLA"_s, u"2"_s);
    addCodes(u"('036000291452', 'COLA', 1), ('04006381333931', 'TEA-1', 1)"_s);
    const QByteArray text = "Code,StockID,Units\n0036000291452,COLA,1\n4006381333931,TEA-1,6\n";
    QCOMPARE(preview(text, ImportKind::Codes),
             (QStringList{u"2 unchanged 0036000291452"_s, u"3 changed 4006381333931 Units 1>6"_s}));
    m_bench->importValid(text, ImportBench::choicesFor(text, ImportKind::Codes));
    QCOMPARE(m_bench->rows(u"select * from HarrowbyCode order by Code"_s),
             (QStringList{u"036000291452|COLA|1"_s, u"04006381333931|TEA-1|6"_s}));
    QCOMPARE(preview("Code,StockID\n0036000291452,TEA-1\n", ImportKind::Codes),
             QStringList{u"2 refused 0036000291452 [Code: The code is taken: it belongs to COLA (COLA).]"_s});
}

void ImportEditedTest::codesWithoutTheirZeros()
{
    m_bench->addItem(u"TEA-1"_s, u"TEA"_s, u"1.5"_s);
    m_bench->addItem(u"COLA"_s, u"COLA"_s, u"2"_s);
    addCodes(u"('036000291452', 'COLA', 1), ('1234565', 'TEA-1', 1)"_s);
    QCOMPARE(
        preview("Code,StockID,Units\n36000291452,COLA,2\n1234565,TEA-1,1\n12345670,COLA,1\n2345673,COLA,1\n"
                "12345,COLA,1\n36000291453,COLA,1\n",
                ImportKind::Codes),
        (QStringList{
            u"2 changed 36000291452 Units 1>2"_s, u"3 unchanged 1234565"_s, u"4 new 12345670 StockID >COLA Units >1"_s,
            u"5 refused 2345673 [Code: Its leading zeros are missing, as a spreadsheet leaves them out: with them it "
            "is 02345673. Format the column as text there.]"_s,
            u"6 new 12345 StockID >COLA Units >1"_s, u"7 new 36000291453 StockID >COLA Units >1"_s}));
}

void ImportEditedTest::itemsByCodesWithoutTheirZeros()
{
    m_bench->addItem(u"TEA-1"_s, u"TEA"_s, u"1.5"_s);
    m_bench->addItem(u"012345678905"_s, u"SOAP"_s, u"3"_s);
    addCodes(u"('036000291452', 'TEA-1', 1)"_s);
    QCOMPARE(preview("Barcode,Name,Price\n36000291452,,1.60\n12345678905,,4\n2345673,MILK,1\n"),
             (QStringList{u"2 changed TEA-1 StockCost 1.5>1.60"_s, u"3 changed 012345678905 StockCost 3>4.00"_s,
                          u"4 refused  [Barcode: Its leading zeros are missing, as a spreadsheet leaves them out: with "
                          "them it is 02345673. Format the column as text there.]"_s}));
    QCOMPARE(preview("ID,Barcode\nTEA-1,36000291452\n"), QStringList{u"2 unchanged TEA-1"_s});
}

/// Two lengths of one number, as other programs may have entered them.
void ImportEditedTest::codeOfSeveralItems()
{
    m_bench->addItem(u"A"_s, u"SOAP"_s, u"1"_s);
    m_bench->addItem(u"B"_s, u"FOAM"_s, u"1"_s);
    addCodes(u"('036000291452', 'A', 1), ('0036000291452', 'B', 1)"_s);
    QCOMPARE(preview("Code,Price\n00036000291452,2\n036000291452,3\n").constFirst(),
             u"2 refused  [Code: The code is that of several items.]"_s);
}

void ImportEditedTest::spoiltMemoryOfColumns()
{
    const QStringList headings = {u"No"_s, u"What"_s};
    RememberedColumns remembered(*m_bench->records);
    QVERIFY(!remembered.remember(ImportKind::Items, headings, {0, 3}));
    QCOMPARE(remembered.match(ImportKind::Items, headings), (ColumnMatch{0, 3}));
    m_bench->sql(u"update HarrowbySetting set Value = 'StockID' where Name like 'ImportColumns.%'"_s);
    QVERIFY(!remembered.match(ImportKind::Items, headings));
}

void ImportEditedTest::firstLineThatIsARow_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("isRow");
    QTest::newRow("row") << QByteArray("A1,TEA,1.50\n") << true;
    QTest::newRow("comma") << QByteArray("A1,TEA,\"1,50\"\n") << true;
    QTest::newRow("code") << QByteArray("4006381333931,TEA\n") << true;
    QTest::newRow("headings") << QByteArray("ID,Name,Price\n") << false;
    QTest::newRow("a known one") << QByteArray("What,Price,2026\n") << false;
    QTest::newRow("unknown ones") << QByteArray("Foo,Bar\n") << false;
    QTest::newRow("nothing") << QByteArray() << false;
}

void ImportEditedTest::firstLineThatIsARow()
{
    QFETCH(QByteArray, text);
    QFETCH(bool, isRow);
    QCOMPARE(looksLikeARow(headingsOf(text, {})), isRow);
}

void ImportEditedTest::firstLineTakenAsARow()
{
    ImportChoices choices;
    choices.hasHeadings = false;
    choices.columns = {0, 1, 3};
    const StagedImport staged = m_bench->stage("A1,TEA,1.50\nA2,BUN\n", choices);
    QCOMPARE(m_bench->list(staged.id),
             (QStringList{u"1 new A1 StockName >TEA StockCategory >OTHER CATEGORY StockCost >1.50 StockReorderLevel >0 "
                          "StockAvailable >0 StockUse >Enabled"_s,
                          u"2 refused A2 [Column 3: Non-numeric or Invalid Stock Cost!]"_s}));
}

void ImportEditedTest::openQuoteTellsItsLines()
{
    const auto words = u"A quotation mark opens the cell, and none closes it. Everything behind it is in this cell"_s;
    QCOMPARE(preview("StockID,StockName,StockCost\nA,TEA,1\nB,\"BUN,2\nC,CAKE,3\nD,DATE,4\n").at(1),
             u"3 refused B [StockName: %1, lines 3 to 5.]"_s.arg(words));
    QCOMPARE(preview("StockID,StockName,StockCost\nB,\"BUN,2").constFirst(),
             u"2 refused B [StockName: %1.]"_s.arg(words));
}

void ImportEditedTest::unseenBlanks()
{
    m_bench->addItem(u"TEA-1"_s, u"TEA"_s, u"1.5"_s);
    const auto nameOfMany = u"It holds a line break or another character that cannot be seen."_s;
    QCOMPARE(
        preview(u"StockID,StockName,StockCategory,StockCost\n"
                "\u00a0TEA-1\u200b,TEA\u00a0,\ufeffDRINKS,1.60\u00a0\n"
                "B\u200bC,BUN,FOOD,1\nD,CA\u00adKE,FOOD,1\nE,E,FO\u200bOD,1\n"_s.toUtf8()),
        (QStringList{u"2 changed TEA-1 StockCost 1.5>1.60"_s, u"3 refused B\u200bC [StockID: %1]"_s.arg(nameOfMany),
                     u"4 refused D [StockName: %1]"_s.arg(nameOfMany),
                     u"5 refused E [StockCategory: %1]"_s.arg(nameOfMany)}));
    QCOMPARE(preview(u"Category\nDRINKS\u00a0\n\u200bFOOD\n"_s.toUtf8(), ImportKind::Categories),
             (QStringList{u"2 unchanged DRINKS"_s, u"3 new FOOD"_s}));
    QCOMPARE(preview(u"Code,StockID\nABC\u00a0,\u200bTEA-1\n"_s.toUtf8(), ImportKind::Codes),
             QStringList{u"2 new ABC StockID >TEA-1 Units >1"_s});
}

void ImportEditedTest::equalRowsAreCounted()
{
    m_bench->sql(u"insert into StockList values ('A', ' tea ', 'DRINKS', 1, 2, 3, 'Enabled', '', '', '', '')"_s);
    m_bench->addItem(u"B"_s, u"BUN"_s, u"1"_s);
    const QByteArray odd = "A, tea ,DRINKS,1,2,3,Enabled,,,,,\n";
    const QByteArray usual = "B,BUN,DRINKS,1,2,10,Enabled" + editors + '\n';
    const QStringList rows = preview(itemsHead + odd + odd + usual + usual);
    QCOMPARE(m_bench->import().count(m_bench->last, RowFilter::Unchanged).value_or(-1), 2);
    QCOMPARE(m_bench->import().count(m_bench->last, RowFilter::Refused).value_or(-1), 2);
    QVERIFY2(rows.at(1).contains(u"The file has this row more often than the store."_s), qPrintable(rows.join(u'\n')));
}

HARROWBY_CORE_TEST(app_import_edited_test, ImportEditedTest)
#include "import_edited_test.moc"
