// SPDX-License-Identifier: MIT
#include "app/catalogue/import_columns.h"
#include "tests/app/import_desk.h"
#include "tests/program/test_program.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::app::test;

/// What becomes of each row of a file: the preview.
class ImportRulesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_bench = std::make_unique<ImportBench>(); }
    void cleanup() { m_bench.reset(); }

    void newChangedUnchangedRefused();
    void keyIsTheIdElseACodeNeverTheName();
    void twoRowsOfOneKeyAreBothRefused();
    void twoKeysOfOneItemAreBothRefused();
    void rowEqualToTheStoresIsNeverRefused_data();
    void rowEqualToTheStoresIsNeverRefused();
    void repeatedKeysAreComparedAsASet();
    void emptyCellLeavesTheValue();
    void stockInHandOnlyWhenTicked();
    void refusedRows_data();
    void refusedRows();
    void capitalsByChoice();
    void figuresInTheFormsOfTheStockForm();
    void decimalComma();
    void categoriesAreMadeOrRefused();
    void automaticIds();
    void namesOfOthers();
    void codesOfItems();
    void whatAFileLacksOfANewItem();
    void faultsOfTheFile_data();
    void faultsOfTheFile();
    void noRows();
    void columnsByTheirNames_data();
    void columnsByTheirNames();
    void priceIsWhatTheCustomerPays_data();
    void priceIsWhatTheCustomerPays();
    void columnsInDoubt();
    void columnsByHandAreRemembered();
    void kindByTheHeadings();

private:
    [[nodiscard]] QStringList preview(const QByteArray &text) { return m_bench->list(m_bench->stage(text).id); }
    [[nodiscard]] QString refusal(const QByteArray &text);

    std::unique_ptr<ImportBench> m_bench;
};

QString ImportRulesTest::refusal(const QByteArray &text)
{
    const QStringList all = preview(text);
    return all.size() == 1 ? all.constFirst() : u"%1 rows"_s.arg(all.size());
}

void ImportRulesTest::newChangedUnchangedRefused()
{
    m_bench->addItem(u"TEA-1"_s, u"TEA"_s, u"1.5"_s);
    m_bench->addItem(u"COLA"_s, u"COLA"_s, u"2"_s);
    const StagedImport staged = m_bench->stage("StockID,StockName,StockCategory,StockCost\n"
                                               "TEA-1,TEA,DRINKS,1.60\n"
                                               "COLA,COLA,DRINKS,2.00\n"
                                               "JUICE,JUICE,DRINKS,3\n"
                                               "WATER,water,DRINKS,1\n");
    QCOMPARE(staged.counts, (ImportCounts{1, 1, 1, 1}));
    QCOMPARE(m_bench->list(staged.id),
             (QStringList{u"2 changed TEA-1 StockCost 1.5>1.60"_s, u"3 unchanged COLA"_s,
                          u"4 new JUICE StockName >JUICE StockCategory >DRINKS StockCost >3.00 StockReorderLevel >0 "
                          "StockAvailable >0 StockUse >Enabled"_s,
                          u"5 refused WATER [StockName: It is not in capitals.]"_s}));
    QCOMPARE(staged.renamed, 0);
    QCOMPARE(m_bench->stage("StockID,StockName,StockCost\nTEA-1,TEE,1\nCOLA,,1\nN,NEW,1\n").renamed, 1);
    QCOMPARE(m_bench->items().size(), 2); // nothing is written
    QCOMPARE(m_bench->list(staged.id, RowFilter::Refused).size(), 1);
    QCOMPARE(*m_bench->import().count(staged.id, RowFilter::New), 1);
}

void ImportRulesTest::keyIsTheIdElseACodeNeverTheName()
{
    m_bench->addItem(u"TEA-1"_s, u"TEA"_s, u"1.5"_s);
    m_bench->addItem(u"036000291452"_s, u"SOAP"_s, u"3"_s);
    m_bench->sql(
        u"create table if not exists HarrowbyCode (Code text not null primary key, StockID text not null, Units integer not null)"_s);
    m_bench->sql(u"insert into HarrowbyCode values ('4006381333931', 'TEA-1', 1), ('96385074', 'GONE', 1)"_s);
    QCOMPARE(
        preview("ID,Barcode,Name,Price\n"
                ",4006381333931,,1.60\n"
                ",0036000291452,,4\n"
                ",96385074,MILK,1\n"
                ",,TEA,9\n"),
        (QStringList{u"2 changed TEA-1 StockCost 1.5>1.60"_s, u"3 changed 036000291452 StockCost 3>4.00"_s,
                     u"4 refused  [Barcode: The code belongs to an item that is gone.]"_s,
                     u"5 refused  [Name: TEA (TEA-1) is in the store. A name alone finds no item: give its ID or a "
                     "code.]"_s}));
}

void ImportRulesTest::twoRowsOfOneKeyAreBothRefused()
{
    m_bench->addItem(u"TEA-1"_s, u"TEA"_s, u"1.5"_s);
    QCOMPARE(preview("StockID,Price\nTEA-1,1\nTEA-1,2\nX,1\nX,1\n"),
             (QStringList{u"2 refused TEA-1 [StockID: TEA-1 stands in 2 rows of the file, first in line 2.]"_s,
                          u"3 refused TEA-1 [StockID: TEA-1 stands in 2 rows of the file, first in line 2.]"_s,
                          u"4 refused X [StockID: X stands in 2 rows of the file, first in line 4.]"_s,
                          u"5 refused X [StockID: X stands in 2 rows of the file, first in line 4.]"_s}));
}

/// One by its ID, the other by a code.
void ImportRulesTest::twoKeysOfOneItemAreBothRefused()
{
    m_bench->addItem(u"TEA-1"_s, u"TEA"_s, u"1.5"_s);
    m_bench->importValid("StockID,Code\nTEA-1,4006381333931\n");
    QCOMPARE(preview("StockID,Code,Price\nTEA-1,,1\n,4006381333931,2\n"),
             (QStringList{u"2 refused TEA-1 [StockID: TEA-1 stands in 2 rows of the file, first in line 2.]"_s,
                          u"3 refused TEA-1 [Code: TEA-1 stands in 2 rows of the file, first in line 2.]"_s}));
}

void ImportRulesTest::rowEqualToTheStoresIsNeverRefused_data()
{
    QTest::addColumn<QString>("values");
    QTest::addColumn<QByteArray>("row");
    QTest::newRow("small letters") << u"'a', 'tea', 'Drinks', 1, 2, 3, 'Enabled'"_s
                                   << QByteArray("a,tea,Drinks,1,2,3,Enabled");
    QTest::newRow("quotes") << u"'A', 'O''NEIL', 'DRINKS', 1, 2, 3, 'Enabled'"_s
                            << QByteArray("A,O'NEIL,DRINKS,1,2,3,Enabled");
    QTest::newRow("no figures") << u"'A', 'TEA', 'DRINKS', 'much', null, '', 'Enabled'"_s
                                << QByteArray("A,TEA,DRINKS,much,,,Enabled");
    QTest::newRow("negative stock") << u"'A', 'TEA', 'DRINKS', 1, 2, -3, 'Enabled'"_s
                                    << QByteArray("A,TEA,DRINKS,1,2,-3,Enabled");
    QTest::newRow("unknown use") << u"'A', 'TEA', 'DRINKS', 1, 2, 3, 'perhaps'"_s
                                 << QByteArray("A,TEA,DRINKS,1,2,3,perhaps");
    QTest::newRow("blanks") << u"'A', ' TEA ', 'DRINKS', 1, 2, 3, 'Enabled'"_s
                            << QByteArray("A,\" TEA \",DRINKS,1,2,3,Enabled");
    QTest::newRow("lines") << u"'A', 'TEA' || char(10) || 'BAG', 'DRINKS', 1, 2, 3, 'Enabled'"_s
                           << QByteArray("A,\"TEA\nBAG\",DRINKS,1,2,3,Enabled");
    QTest::newRow("no ID") << u"'', 'TEA', 'DRINKS', 1, 2, 3, 'Enabled'"_s << QByteArray(",TEA,DRINKS,1,2,3,Enabled");
    QTest::newRow("more decimals") << u"'A', 'TEA', 'DRINKS', 1.255, 2.5, 3, 'Enabled'"_s
                                   << QByteArray("A,TEA,DRINKS,1.255,2.5,3,Enabled");
    QTest::newRow("stored with two decimals")
        << u"'A', 'TEA', 'DRINKS', 1.26, 2, 3, 'Enabled'"_s << QByteArray("A,TEA,DRINKS,1.255,2,3,Enabled");
    QTest::newRow("written otherwise") << u"'A', 'TEA', 'DRINKS', 1.5, 1000, 3, 'Enabled'"_s
                                       << QByteArray("A,TEA,DRINKS,1.50,\"1,000\",3.0,enabled");
}

void ImportRulesTest::rowEqualToTheStoresIsNeverRefused()
{
    QFETCH(QString, values);
    QFETCH(QByteArray, row);
    m_bench->sql(u"insert into StockList values (%1, 't', 'u', 'u', 'u')"_s.arg(values));
    const QByteArray text =
        "StockID,StockName,StockCategory,StockCost,StockReorderLevel,StockAvailable,StockUse\n" + row + '\n';
    ImportChoices choices = ImportBench::choicesFor(text);
    choices.stockInHand = true;
    const StagedImport staged = m_bench->stage(text, choices);
    QVERIFY2(staged.counts == (ImportCounts{0, 0, 1, 0}), qPrintable(m_bench->list(staged.id).join(u'\n')));
}

void ImportRulesTest::repeatedKeysAreComparedAsASet()
{
    m_bench->addItem(u"A"_s, u"ONE"_s, u"1"_s);
    m_bench->addItem(u"A"_s, u"TWO"_s, u"2"_s);
    m_bench->addItem(u"A"_s, u"TWO"_s, u"2"_s);
    QCOMPARE(m_bench->stage("StockID,StockName,StockCost\nA,TWO,2\nA,ONE,1\nA,TWO,2\n").counts,
             (ImportCounts{0, 0, 3, 0}));
    QCOMPARE(m_bench->stage("StockID,StockName,StockCost\nA,TWO,2\n").counts, (ImportCounts{0, 0, 1, 0}));
    QCOMPARE(m_bench->stage("StockID,StockName,StockCost\nA,ONE,1\nA,ONE,1\n").counts, (ImportCounts{0, 0, 1, 1}));
    QCOMPARE(refusal("StockID,StockCost\nA,9\n"), u"2 refused A [StockID: The store has 3 items of this ID.]"_s);
}

void ImportRulesTest::emptyCellLeavesTheValue()
{
    m_bench->addItem(u"TEA-1"_s, u"TEA"_s, u"1.5"_s);
    QCOMPARE(
        preview("StockID,StockName,StockCategory,StockCost,StockReorderLevel\nTEA-1,,,,\nTEA-1X,A,,1,1\n"),
        (QStringList{u"2 unchanged TEA-1"_s, u"3 refused TEA-1X [StockCategory: Invalid Category Name Selection!]"_s}));
    m_bench->importValid("StockID,StockName,StockCategory,StockCost,StockReorderLevel\nTEA-1,,,,7\n");
    QCOMPARE(m_bench->items(), QStringList{u"TEA-1|TEA|DRINKS|1.5|7|10|Enabled"_s});
}

void ImportRulesTest::stockInHandOnlyWhenTicked()
{
    m_bench->addItem(u"TEA-1"_s, u"TEA"_s, u"1.5"_s, u"10"_s);
    const QByteArray text = "StockID,StockName,Price,Stock\nTEA-1,TEA,1.50,99\nNEW,NEW,1,7\n";
    QCOMPARE(m_bench->stage(text).counts, (ImportCounts{1, 0, 1, 0}));
    ImportChoices choices = ImportBench::choicesFor(text);
    choices.stockInHand = true;
    m_bench->importValid(text, choices);
    QCOMPARE(m_bench->rows(u"select StockAvailable from StockList order by StockID"_s), (QStringList{u"7"_s, u"99"_s}));
}

void ImportRulesTest::refusedRows_data()
{
    QTest::addColumn<QByteArray>("row"); // ID, name, category, cost, level, stock in hand, use
    QTest::addColumn<QString>("reason");
    const auto add = [](const char *name, const char *row, const QString &reason) {
        QTest::newRow(name) << QByteArray(row) << reason;
    };
    const auto quote = u"It holds a single quote, with which the till finds nothing."_s;
    const auto unseen = u"It holds a line break or another character that cannot be seen."_s;
    add("name", "A,,DRINKS,1,2,3,Enabled", u"[StockName: Invalid Item Name Entry!]"_s);
    add("cost", "A,TEA,DRINKS,much,2,3,Enabled", u"[StockCost: Non-numeric or Invalid Stock Cost! (much)]"_s);
    add("cost missing", "A,TEA,DRINKS,,2,3,Enabled", u"[StockCost: Non-numeric or Invalid Stock Cost!]"_s);
    add("cost below 0", "A,TEA,DRINKS,-1,2,3,Enabled", u"[StockCost: Non-numeric or Invalid Stock Cost! (-1)]"_s);
    add("cost with a comma", "A,TEA,DRINKS,\"4,20\",2,3,Enabled",
        u"[StockCost: Non-numeric or Invalid Stock Cost! (4,20)]"_s);
    add("level", "A,TEA,DRINKS,1,x,3,Enabled", u"[StockReorderLevel: Non-numeric or Invalid Reorder Level! (x)]"_s);
    add("stock", "A,TEA,DRINKS,1,2,x,Enabled", u"[StockAvailable: Non-numeric or Invalid Available Stock! (x)]"_s);
    add("use", "A,TEA,DRINKS,1,2,3,perhaps", u"[StockUse: Stock must either be Enabled or Disabled! (perhaps)]"_s);
    add("name small", "A,Tea,DRINKS,1,2,3,Enabled", u"[StockName: It is not in capitals.]"_s);
    add("category small", "A,TEA,Food,1,2,3,Enabled", u"[StockCategory: It is not in capitals.]"_s);
    add("category of all", "A,TEA,(ALL CATEGORY),1,2,3,Enabled",
        u"[StockCategory: (ALL CATEGORY) is no category that items belong to.]"_s);
    add("quote in the ID", "A'B,TEA,DRINKS,1,2,3,Enabled", u"[StockID: %1]"_s.arg(quote));
    add("quote in the name", "A,O'NEIL,DRINKS,1,2,3,Enabled", u"[StockName: %1]"_s.arg(quote));
    add("quote in the category", "A,TEA,KID'S,1,2,3,Enabled", u"[StockCategory: %1]"_s.arg(quote));
    add("separator in the ID", "A | B,TEA,DRINKS,1,2,3,Enabled",
        u"[StockID: It holds \" | \", by which lists part ID and name.]"_s);
    add("separator in the name", "A,TEA  |  BAG,DRINKS,1,2,3,Enabled",
        u"[StockName: It holds \"  |  \", by which lists part ID and name.]"_s);
    add("line break", "A,\"TEA\nBAG\",DRINKS,1,2,3,Enabled", u"[StockName: %1]"_s.arg(unseen));
    add("shortened ID", "8.9E+12,TEA,DRINKS,1,2,3,Enabled",
        u"[StockID: 8.9E+12 is a number that a spreadsheet has shortened: its digits are lost. Format the column as "
        u"text "
        "there.]"_s);
}

void ImportRulesTest::refusedRows()
{
    QFETCH(QByteArray, row);
    QFETCH(QString, reason);
    const QString text =
        refusal("StockID,StockName,StockCategory,StockCost,StockReorderLevel,StockAvailable,StockUse\n" + row + '\n');
    QVERIFY2(text.startsWith(u"2 refused"_s), qPrintable(text));
    QCOMPARE(text.sliced(text.indexOf(u" [") + 1), reason);
}

void ImportRulesTest::capitalsByChoice()
{
    m_bench->addItem(u"TEA-1"_s, u"TEA"_s, u"1.5"_s);
    const QByteArray text = "StockID,StockName,StockCategory,StockCost\nTEA-1,Tea,Drinks,1.50\nB,Groß,Food,1\n";
    ImportChoices choices = ImportBench::choicesFor(text);
    QCOMPARE(m_bench->stage(text, choices).counts.refused, 2);
    choices.putIntoCapitals = true;
    const StagedImport staged = m_bench->stage(text, choices);
    QCOMPARE(staged.counts, (ImportCounts{1, 0, 1, 0}));
    QCOMPARE(staged.newCategories, QStringList{u"FOOD"_s});
    m_bench->importValid(text, choices);
    QCOMPARE(m_bench->items().constFirst(), u"B|GROSS|FOOD|1|0|0|Enabled"_s);
}

void ImportRulesTest::figuresInTheFormsOfTheStockForm()
{
    m_bench->sql(
        u"create table Other (StockID TEXT,StockName TEXT,StockCategory TEXT,StockCost TEXT,StockReorderLevel TEXT,"
        "StockAvailable TEXT,StockUse TEXT,StockLastUpdated TEXT,StockLastModified TEXT,StockAdded TEXT,"
        "StockReorderUser TEXT)"_s);
    m_bench->sql(u"drop table StockList"_s);
    m_bench->sql(u"alter table Other rename to StockList"_s);
    m_bench->importValid("StockID,StockName,StockCost,StockReorderLevel,StockAvailable,StockUse\n"
                         "A,TEA,1.255,2.0,\"1,000.5\",ENABLED\nB,JUICE,7,0,3,disabled\n");
    QCOMPARE(
        m_bench->everything(),
        (QStringList{u"text:'A'|text:'TEA'|text:'OTHER CATEGORY'|text:'1.26'|text:'2'|text:'1000.5'|text:'Enabled'|"
                     "text:'22-Nov-26 12:00:05'|text:'JILL'|text:'JILL'|text:'JILL'"_s,
                     u"text:'B'|text:'JUICE'|text:'OTHER CATEGORY'|text:'7.00'|text:'0'|text:'3'|text:'Disabled'|"
                     "text:'22-Nov-26 12:00:05'|text:'JILL'|text:'JILL'|text:'JILL'"_s}));
}

void ImportRulesTest::decimalComma()
{
    const QByteArray text = "Artikelnummer;Bezeichnung;Warengruppe;Preis;Bestand\nA;TEE;DRINKS;4,20;1.000\n";
    ImportChoices choices;
    choices.form.separator = u';';
    choices.form.decimalSign = u',';
    choices.columns = matchColumns(ImportKind::Items, headingsOf(text, choices.form));
    m_bench->importValid(text, choices);
    QCOMPARE(m_bench->items(), QStringList{u"A|TEE|DRINKS|4.2|0|1000|Enabled"_s});
}

void ImportRulesTest::categoriesAreMadeOrRefused()
{
    const QByteArray text =
        "StockID,StockName,StockCategory,StockCost\nA,TEA,FOOD,1\nB,BUN,FOOD,1\nC,X,OTHER CATEGORY,1\n"
        "D,Y,DRINKS,1\n";
    ImportChoices choices = ImportBench::choicesFor(text);
    choices.makeCategories = false;
    const StagedImport refused = m_bench->stage(text, choices);
    QCOMPARE(refused.counts, (ImportCounts{2, 0, 0, 2}));
    QCOMPARE(m_bench->list(refused.id, RowFilter::Refused).constFirst(),
             u"2 refused A [StockCategory: There is no category FOOD, and none is to be made.]"_s);
    choices.makeCategories = true;
    m_bench->importValid(text, choices);
    QCOMPARE(m_bench->rows(u"select CategoryName, EntryDate from InventoryCategory order by 1"_s),
             (QStringList{u"DRINKS|2026-01-01 08:00:00"_s, u"FOOD|2026-11-22 12:00:05"_s}));
}

void ImportRulesTest::automaticIds()
{
    m_bench->addItem(u"DRI-0002"_s, u"COLA"_s, u"1"_s);
    m_bench->importValid("StockID,StockName,StockCategory,StockCost\n"
                         ",TEA,DRINKS,1\n(Auto ID),JUICE,DRINKS,1\nDRI-0004,MILK,DRINKS,1\n,WATER,DRINKS,1\n"
                         ",BUN,FOOD,1\n");
    QCOMPARE(m_bench->rows(u"select StockID || ' ' || StockName from StockList order by 1"_s),
             (QStringList{u"DRI-0001 TEA"_s, u"DRI-0002 COLA"_s, u"DRI-0003 JUICE"_s, u"DRI-0004 MILK"_s,
                          u"DRI-0005 WATER"_s, u"FOO-0001 BUN"_s}));
}

void ImportRulesTest::namesOfOthers()
{
    m_bench->addItem(u"TEA-1"_s, u"TEA"_s, u"1.5"_s);
    m_bench->addItem(u"COLA"_s, u"COLA"_s, u"2"_s);
    QCOMPARE(preview("StockID,StockName,StockCost\nTEA-1,COLA,1\nNEW,TEA,1\nX,SAME,1\nY,SAME,1\n"),
             (QStringList{u"2 refused TEA-1 [StockName: The name is that of COLA (COLA).]"_s,
                          u"3 refused NEW [StockName: The name is that of TEA (TEA-1).]"_s,
                          u"4 refused X [StockName: The name stands in 2 rows of the file, first in line 4.]"_s,
                          u"5 refused Y [StockName: The name stands in 2 rows of the file, first in line 4.]"_s}));
}

void ImportRulesTest::codesOfItems()
{
    m_bench->addItem(u"TEA-1"_s, u"TEA"_s, u"1.5"_s);
    m_bench->addItem(u"COLA"_s, u"COLA"_s, u"2"_s);
    m_bench->importValid("StockID,Code\nTEA-1,4006381333931\nCOLA,036000291452\n");
    QCOMPARE(m_bench->rows(u"select Code, StockID, Units from HarrowbyCode order by 1"_s),
             (QStringList{u"036000291452|COLA|1"_s, u"4006381333931|TEA-1|1"_s}));
    QCOMPARE(
        preview("StockID,StockName,Code,StockCost\n"
                "TEA-1,,04006381333931,\n"
                "COLA,,4006381333931,\n"
                "A,A,8.9E+12,1\n"
                "B,B,0036000291452,1\n"
                "C,C,12345,1\n"
                "D,D,12345,1\n"
                "E,E,COLA,1\n"
                "F,F,\"A\tB\",1\n"),
        (QStringList{u"2 unchanged TEA-1"_s, u"3 refused COLA [Code: The code is taken: it belongs to TEA (TEA-1).]"_s,
                     u"4 refused A [Code: 8.9E+12 is a number that a spreadsheet has shortened: its digits are "
                     "lost. Format the column as text there.]"_s,
                     u"5 refused B [Code: The code is taken: it belongs to COLA (COLA).]"_s,
                     u"6 refused C [Code: The code stands in 2 rows of the file, first in line 6.]"_s,
                     u"7 refused D [Code: The code stands in 2 rows of the file, first in line 6.]"_s,
                     u"8 refused E [Code: The code is taken: it is the ID of COLA (COLA).]"_s,
                     u"9 refused F [Code: This is no code: it holds a character that cannot be seen.]"_s}));
}

void ImportRulesTest::whatAFileLacksOfANewItem()
{
    QCOMPARE(preview("Name,Price\nTEA,1.5\nJUICE,\n"),
             (QStringList{u"2 new OTH-0001 StockName >TEA StockCategory >OTHER CATEGORY StockCost >1.50 "
                          "StockReorderLevel >0 StockAvailable >0 StockUse >Enabled"_s,
                          u"3 refused  [Price: Non-numeric or Invalid Stock Cost!]"_s}));
}

void ImportRulesTest::faultsOfTheFile_data()
{
    QTest::addColumn<QByteArray>("row");
    QTest::addColumn<QString>("column");
    QTest::newRow("open quote") << QByteArray("A,\"TEA,1\nB,X,2\n") << u"StockName"_s;
    QTest::newRow("NUL") << QByteArray("A,T\0A,1\n", 8) << u"StockName"_s;
    QTest::newRow("too few") << QByteArray("A,TEA\n") << u"StockCost"_s;
    QTest::newRow("too many") << QByteArray("A,TEA,1,2\n") << u""_s;
    QTest::newRow("no UTF-8") << QByteArray("A,T\xff,1\n") << u"StockName"_s;
}

void ImportRulesTest::faultsOfTheFile()
{
    QFETCH(QByteArray, row);
    QFETCH(QString, column);
    const StagedImport staged = m_bench->stage("StockID,StockName,StockCost\n" + row);
    QCOMPARE(staged.counts, (ImportCounts{0, 0, 0, 1}));
    const QString text = m_bench->list(staged.id).constFirst();
    QVERIFY2(text.contains(u"[%1: "_s.arg(column)), qPrintable(text));
}

void ImportRulesTest::noRows()
{
    for (const QByteArray &text : {QByteArray("StockID,StockName\n"), QByteArray("StockID,StockName")}) {
        const StagedImport staged = m_bench->stage(text);
        QCOMPARE(staged.counts, ImportCounts());
        const auto outcome = m_bench->import().apply(staged.id, false, nullptr, goOn);
        QVERIFY(outcome.has_value());
        QVERIFY(outcome->backup.isEmpty());
    }
    const auto empty = m_bench->import().stage(ImportBench::file({}), ImportBench::choicesFor({}), goOn);
    QCOMPARE(empty.error().words, u"No column of the file is the ID, the code or the name of the items."_s);
}

void ImportRulesTest::columnsByTheirNames_data()
{
    QTest::addColumn<QString>("headings");
    QTest::addColumn<ColumnMatch>("match");
    const auto add = [](const char *name, const QString &headings, const ColumnMatch &match) {
        QTest::newRow(name) << headings << match;
    };
    add("the store's", u"StockCost,StockName,StockID,As Stored,StockAdded"_s, {3, 1, 0, -1, -1});
    add("English", u"SKU,Product name,Unit price (EUR),Qty,Barcode,Colour"_s, {0, 1, 3, 5, 7, -1});
    add("German", u"Artikelnummer,Bezeichnung,Warengruppe,VK,Mindestbestand,Bestand,EAN"_s, {0, 1, 2, 3, 4, 5, 7});
    add("French", u"Réf.,Désignation,Famille,Prix de vente,Code-barres"_s, {0, 1, 2, 3, 7});
    add("Spanish", u"Referencia,Descripción,Categoría,P.V.P.,Existencias"_s, {0, 1, 2, 3, 5});
    add("own name first", u"Name,StockName"_s, {-1, 1});
    add("none", u",,?"_s, {-1, -1, -1});
}

void ImportRulesTest::columnsByTheirNames()
{
    QFETCH(QString, headings);
    QTEST(matchColumns(ImportKind::Items, headings.split(u',')), "match");
}

void ImportRulesTest::priceIsWhatTheCustomerPays_data()
{
    QTest::addColumn<QString>("headings");
    QTest::addColumn<int>("isPrice");
    QTest::newRow("selling") << u"Price|Unit price|Selling price|Sell price|Sales price|Sale price|Retail price|Retail|"
                                "RRP|Preis|Verkaufspreis|Verkauf|VK|VK-Preis|Ladenpreis|Stückpreis|Einzelpreis|Prix|"
                                "Prix unitaire|Prix de vente|Prix vente|Prix public|Precio|Precio unitario|"
                                "Precio de venta|Precio venta|P.V.P.|Cost|Unit cost|StockCost"_s
                             << 1;
    QTest::newRow("buying") << u"EK|EK-Preis|Einkaufspreis|Purchase price|Purchase cost|Buying price|Buy price|"
                               "Wholesale price|Wholesale|Cost price|Supplier price|Prix d'achat|Prix de revient|"
                               "Prix de gros|Precio de compra|Precio de costo|Precio mayorista|Trade price"_s
                            << 0;
}

/// Each word alone, and those of buying beside a plain price and a cost.
void ImportRulesTest::priceIsWhatTheCustomerPays()
{
    QFETCH(QString, headings);
    QFETCH(int, isPrice);
    const int cost = importColumn(ImportKind::Items, u"StockCost"_s);
    for (const QString &heading : headings.split(u'|')) {
        QCOMPARE(std::pair(heading, matchColumns(ImportKind::Items, {heading})),
                 std::pair(heading, ColumnMatch{isPrice == 1 ? cost : -1}));
        if (isPrice == 0) {
            const QStringList both = {heading, u"Price"_s};
            QCOMPARE(matchColumns(ImportKind::Items, both), (ColumnMatch{-1, cost}));
            QCOMPARE(columnDoubts(ImportKind::Items, both), QList<ColumnDoubt>());
        }
    }
}

void ImportRulesTest::columnsInDoubt()
{
    const auto doubts = [](const QStringList &headings) { return columnDoubts(ImportKind::Items, headings); };
    const auto matched = [](const QStringList &headings) { return matchColumns(ImportKind::Items, headings); };
    const QStringList two = {u"Name"_s, u"Unit Cost"_s, u"Price"_s};
    QCOMPARE(matched(two), (ColumnMatch{1, -1, 3}));
    QCOMPARE(doubts(two), (QList<ColumnDoubt>{{3, {2, 1}}}));
    QCOMPARE(matched({u"Selling price"_s, u"Cost"_s}), (ColumnMatch{3, -1}));
    QCOMPARE(doubts({u"Selling price"_s, u"Cost"_s}), (QList<ColumnDoubt>{{3, {0, 1}}}));
    QCOMPARE(doubts({u"VK"_s, u"EK"_s}), QList<ColumnDoubt>());
    QCOMPARE(doubts({u"Cost"_s, u"Price incl. VAT"_s}), (QList<ColumnDoubt>{{3, {0, 1}}}));
    QCOMPARE(doubts({u"Price"_s, u"Price per kg"_s, u"Wholesale price"_s}), QList<ColumnDoubt>());
    QCOMPARE(doubts({u"StockCost"_s, u"Price"_s, u"Unit cost"_s}), QList<ColumnDoubt>());
    QCOMPARE(doubts({u"Price"_s, u"Price"_s}), (QList<ColumnDoubt>{{3, {0, 1}}}));
    QCOMPARE(doubts({u"Item"_s, u"SKU"_s, u"Description"_s}), (QList<ColumnDoubt>{{1, {0, 2}}}));
    QCOMPARE(doubts({}), QList<ColumnDoubt>());
    // What was chosen is remembered, be it what would be found.
    RememberedColumns remembered(*m_bench->records);
    QVERIFY(!remembered.remember(ImportKind::Items, two, matched(two)));
    QCOMPARE(remembered.match(ImportKind::Items, two), matched(two));
}

void ImportRulesTest::columnsByHandAreRemembered()
{
    const QStringList headings = {u"No"_s, u"What"_s, u"Price"_s};
    const ColumnMatch byHand = {0, 1, -1};
    RememberedColumns remembered(*m_bench->records);
    QVERIFY(!remembered.match(ImportKind::Items, headings));
    QVERIFY(!remembered.remember(ImportKind::Items, headings, byHand));
    QCOMPARE(remembered.match(ImportKind::Items, headings), byHand);
    QVERIFY(!remembered.match(ImportKind::Codes, headings));
    QVERIFY(!remembered.match(ImportKind::Items, {u"No"_s, u"Price"_s, u"What"_s}));
    QVERIFY(!remembered.remember(ImportKind::Items, headings, matchColumns(ImportKind::Items, headings)));
    QVERIFY(!remembered.match(ImportKind::Items, headings));
    QVERIFY(!checkMatch(ImportKind::Items, {3, 3, 0}));
    QVERIFY(!checkMatch(ImportKind::Items, {3, -1}));
    QVERIFY(!checkMatch(ImportKind::Codes, {1}));
    QVERIFY(checkMatch(ImportKind::Items, {-1, 7}));
}

void ImportRulesTest::kindByTheHeadings()
{
    QCOMPARE(guessKind({u"Name"_s, u"Price"_s}), ImportKind::Items);
    QCOMPARE(guessKind({u"Category"_s}), ImportKind::Categories);
    QCOMPARE(guessKind({u"Barcode"_s, u"SKU"_s, u"Units"_s}), ImportKind::Codes);
    QCOMPARE(guessKind({u"CategoryName"_s, u"EntryDate"_s, u"As Stored"_s}), ImportKind::Categories);
}

HARROWBY_CORE_TEST(app_import_rules_test, ImportRulesTest)
#include "import_rules_test.moc"
