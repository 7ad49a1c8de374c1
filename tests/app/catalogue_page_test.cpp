// SPDX-License-Identifier: MIT
#include "tests/app/catalogue_desk.h"
#include "tests/program/test_program.h"

#include <QAbstractItemModelTester>
#include <QAccessible>
#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QLineEdit>
#include <QTreeView>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::app::test;

namespace {

/// As a spreadsheet of a shop in Berlin saves it.
const QByteArray germanList = "Artikelnummer;Bezeichnung;Preis;Warengruppe;Bestand;Farbe\r\n"
                              "TEA-0001;TEA;2,50;DRINKS;7;green\r\n"
                              "MIL-0001;MILK;1,00;DRINKS;20;white\r\n"
                              "HON-0001;Honey;5,90;FOOD;4;gold\r\n";

} // namespace

class CataloguePageTest : public CatalogueDesk
{
    Q_OBJECT

private Q_SLOTS:
    void listComesInStepByStep();
    void formIsFoundAndCanBeChanged();
    void openDecimalSignIsAsked();
    void signChosenByHandIsNotAsked();
    void columnsAreChosenByHandAndRemembered();
    void missingKeyIsTold();
    void categoriesAndCodesComeInToo();
    void refusedRowsAreLeftOutWhenSaid();
    void rowsAreShownByWhatBecomesOfThem();
    void listIsSaved();
    void stockInHandIsTouchedOnlyWhenTicked();
    void namesStayAsTheyAreWhenSaid();
    void nothingNewIsTold();
    void backLeadsThroughTheSteps();
    void importIsTakenBack();
    void changedRowsAreListedWhenTakenBack();
    void everythingIsLargeEnoughForAThumbAndNamed();

private:
    void importAll(const QByteArray &bytes);
    void checkParts();
};

/// From the file to the last step, with what is chosen anyway.
void CataloguePageTest::importAll(const QByteArray &bytes)
{
    begin(bytes);
    for (const int step : {2, 3, 4, 5})
        nextIs(step);
}

void CataloguePageTest::listComesInStepByStep()
{
    QVERIFY(part<QLabel>("noImports")->isVisible());
    begin(germanList, u"prices.csv"_s);
    QCOMPARE(text("importHeading"), u"Step 1 of 4: The file and how it is read"_s);
    QVERIFY(text("importFile").contains(u"prices.csv"_s));
    nextIs(2);
    QCOMPARE(part<QComboBox>("columnStockName")->currentText(), u"Bezeichnung"_s);
    QCOMPARE(text("leftOutColumns"), u"Not used of your file: Farbe"_s);
    nextIs(3);
    QVERIFY(!part<QWidget>("signAnswer")->isVisible());
    QVERIFY(!part<QWidget>("importAsStored")->isVisible());
    nextIs(4);
    QCOMPARE(text("importHeading"), u"Step 4 of 4: 1 new, 1 changed, 1 unchanged, 0 refused"_s);
    QVERIFY2(text("importAbout").startsWith(u"Categories that are made: FOOD. Nothing is written yet."_s),
             qPrintable(text("importAbout")));
    QCOMPARE(part<QPushButton>("importNext")->text(), u"Import &Now"_s);
    QCOMPARE(read(u"SELECT count(*) FROM StockList"_s), u"2"_s);
    nextIs(5);
    QCOMPARE(text("importDone"),
             u"\u2713 Imported from \"prices.csv\": 1 new, 1 changed. Already as in the file: 1."_s);
    QVERIFY2(text("importBackup").contains(u"harrowby-before-import-"_s), qPrintable(text("importBackup")));
    QCOMPARE(read(u"SELECT StockName || StockCost || StockAvailable FROM StockList WHERE StockID = 'HON-0001'"_s),
             u"HONEY5.94"_s);
    QCOMPARE(read(u"SELECT StockCost || ' ' || StockAvailable FROM StockList WHERE StockID = 'TEA-0001'"_s),
             u"2.5 20"_s);
    press("importNext");
    QVERIFY(part<QWidget>("beginImport")->isVisible());
    QCOMPARE(listed("imports").size(), 1);
    QVERIFY2(listed("imports").at(0).endsWith(u"| prices.csv | Items | 1 | 1 | ANNA"_s),
             qPrintable(listed("imports").at(0)));
}

void CataloguePageTest::formIsFoundAndCanBeChanged()
{
    begin("Artikelnummer;Bezeichnung;Preis\r\nCAF-1;Caf\xe9;2,50\r\n");
    QCOMPARE(part<QComboBox>("importSeparator")->currentText(), u"Semicolon ( ; )"_s);
    QCOMPARE(part<QComboBox>("importDecimalSign")->currentText(), u"Comma: 1,50"_s);
    QCOMPARE(part<QComboBox>("importEncoding")->currentText(), u"Windows-1252"_s);
    QCOMPARE(part<QComboBox>("importKind")->currentText(), u"Items"_s);
    QCOMPARE(listed("sampleRows"), QStringList{u"2 | CAF-1 | Caf\u00e9 | 2,50"_s});
    chooseEntry("importSeparator", u"Comma ( , )"_s);
    QCOMPARE(listed("sampleRows"), QStringList{u"2 | CAF-1;Caf\u00e9;2"_s});
    QVERIFY(text("sampleHint").startsWith(u"Only one column was found."_s));
    chooseEntry("importSeparator", u"Semicolon ( ; )"_s);
    chooseEntry("importEncoding", u"UTF-8"_s);
    QCOMPARE(listed("sampleRows"), QStringList{u"2 | CAF-1 | Caf\ufffd | 2,50"_s});
    const QAbstractItemModelTester tester(part<QTreeView>("sampleRows")->model());
}

void CataloguePageTest::openDecimalSignIsAsked()
{
    begin("StockID,StockName,StockCost\nTEA-0001,TEA,\"1,234\"\n");
    QCOMPARE(part<QComboBox>("importDecimalSign")->currentText(), u"Not clear yet"_s);
    nextIs(2);
    nextIs(3);
    QCOMPARE(text("signQuestion"), u"In line 2, column \"StockCost\", stands 1,234. How much is that?"_s);
    QCOMPARE(part<QComboBox>("signAnswer")->itemText(1), u"1234, a whole number"_s);
    QCOMPARE(part<QComboBox>("signAnswer")->itemText(2), u"1,234, about 1"_s);
    press("importNext");
    QVERIFY(isAtStep(3));
    QCOMPARE(text("importOutcome"),
             u"\u26a0 Please choose first how much 1,234 is: all figures of the file are read so."_s);
    QVERIFY(part<QComboBox>("signAnswer")->hasFocus());
    part<QComboBox>("signAnswer")->setCurrentIndex(1);
    nextIs(4);
    QCOMPARE(listed("importRows"), QStringList{u"2 | changed | TEA-0001 | TEA | Unit cost 1 \u2192 1234.00"_s});
}

void CataloguePageTest::signChosenByHandIsNotAsked()
{
    begin("StockID,StockName,StockCost\nTEA-0001,TEA,\"1,234\"\n");
    chooseEntry("importDecimalSign", u"Comma: 1,50"_s);
    nextIs(2);
    nextIs(3);
    QVERIFY(!part<QWidget>("signAnswer")->isVisible());
    nextIs(4);
    QCOMPARE(listed("importRows"), QStringList{u"2 | changed | TEA-0001 | TEA | Unit cost 1 \u2192 1.23"_s});
}

void CataloguePageTest::columnsAreChosenByHandAndRemembered()
{
    const QByteArray bytes = "StockID,Foo,Bar\nTEA-0001,GREEN TEA,3.00\n";
    begin(bytes);
    nextIs(2);
    QCOMPARE(part<QComboBox>("columnStockCost")->currentText(), u"(not in this file)"_s);
    chooseEntry("columnStockCost", u"Foo"_s);
    chooseEntry("columnStockName", u"Foo"_s); // a column is one thing
    QCOMPARE(part<QComboBox>("columnStockCost")->currentText(), u"(not in this file)"_s);
    chooseEntry("columnStockName", u"Bar"_s); // and so is what it holds
    QCOMPARE(text("leftOutColumns"), u"Not used of your file: Foo"_s);
    chooseEntry("columnStockName", u"Foo"_s);
    chooseEntry("columnStockCost", u"Bar"_s);
    QCOMPARE(text("leftOutColumns"), u"Every column of your file is used."_s);
    nextIs(3);
    press("importCancel");
    begin(bytes);
    nextIs(2);
    QCOMPARE(part<QComboBox>("columnStockName")->currentText(), u"Foo"_s);
    QCOMPARE(part<QComboBox>("columnStockCost")->currentText(), u"Bar"_s);
    nextIs(3);
    nextIs(4);
    QCOMPARE(listed("importRows"),
             QStringList{u"2 | changed | TEA-0001 | GREEN TEA | Name TEA \u2192 GREEN TEA; Unit cost 1 \u2192 3.00"_s});
}

void CataloguePageTest::missingKeyIsTold()
{
    begin("Preis;Farbe\n1,50;red\n");
    nextIs(2);
    press("importNext");
    QVERIFY(isAtStep(2));
    QCOMPARE(text("importOutcome"), u"\u26a0 No column of the file is the ID, the code or the name of the items."_s);
    QVERIFY(part<QComboBox>("columnStockID")->hasFocus());
}

void CataloguePageTest::categoriesAndCodesComeInToo()
{
    begin("CategoryName\nFood\nDRINKS\n");
    QCOMPARE(part<QComboBox>("importKind")->currentText(), u"Categories"_s);
    nextIs(2);
    nextIs(3);
    QVERIFY(!part<QWidget>("importStockInHand")->isVisible());
    nextIs(4);
    QCOMPARE(part<QTreeView>("importRows")->model()->headerData(2, Qt::Horizontal).toString(), u"Category"_s);
    nextIs(5);
    QCOMPARE(column(m_store, u"SELECT CategoryName FROM InventoryCategory ORDER BY CategoryName"_s),
             (QStringList{u"DRINKS"_s, u"FOOD"_s}));
    press("importNext");
    begin("Code;StockID;Units\n4006381333931;TEA-0001;1\n4006381333948;NONE-1;1\n");
    QCOMPARE(part<QComboBox>("importKind")->currentText(), u"Codes of items"_s);
    nextIs(2);
    nextIs(3);
    QVERIFY(part<QWidget>("nothingToChoose")->isVisible());
    nextIs(4);
    part<QCheckBox>("importValidRows")->setChecked(true);
    nextIs(5);
    QCOMPARE(read(u"SELECT Code || StockID FROM HarrowbyCode"_s), u"4006381333931TEA-0001"_s);
}

void CataloguePageTest::refusedRowsAreLeftOutWhenSaid()
{
    begin("StockID,StockName,StockCost\nTEA-0001,TEA,3.00\nMIL-0001,MILK,cheap\n");
    nextIs(2);
    nextIs(3);
    nextIs(4);
    QCOMPARE(part<QCheckBox>("importValidRows")->text(), u"Leave the re&fused row out, and import the others"_s);
    press("importNext");
    QVERIFY(isAtStep(4));
    QCOMPARE(text("importOutcome"),
             u"\u26a0 Some rows are refused. Mend them in the file, or choose to leave them out."_s);
    QCOMPARE(read(u"SELECT StockCost FROM StockList WHERE StockID = 'TEA-0001'"_s), u"1"_s);
    part<QCheckBox>("importValidRows")->setChecked(true);
    nextIs(5);
    QVERIFY(text("importDone").endsWith(u"0 new, 1 changed. Refused and left out: 1."_s));
    QCOMPARE(read(u"SELECT StockCost FROM StockList WHERE StockID = 'TEA-0001'"_s), u"3"_s);
}

void CataloguePageTest::rowsAreShownByWhatBecomesOfThem()
{
    begin(germanList + "GUM-0001;GUM;cheap;DRINKS;1;red\r\n");
    nextIs(2);
    nextIs(3);
    nextIs(4);
    const QComboBox &filter = *part<QComboBox>("importFilter");
    QStringList entries;
    for (int i = 0; i < filter.count(); ++i)
        entries << filter.itemText(i);
    QCOMPARE(entries,
             (QStringList{u"all rows (4)"_s, u"new (1)"_s, u"changed (1)"_s, u"unchanged (1)"_s, u"refused (1)"_s}));
    QCOMPARE(listed("importRows").size(), 4);
    const QAbstractItemModelTester tester(part<QTreeView>("importRows")->model());
    chooseEntry("importFilter", u"refused (1)"_s);
    QCOMPARE(listed("importRows").size(), 1);
    QVERIFY2(text("importRowWords").startsWith(u"Line 5, refused GUM-0001 GUM: Column \"Preis\": "_s),
             qPrintable(text("importRowWords")));
    chooseEntry("importFilter", u"changed (1)"_s);
    QCOMPARE(text("importRowWords"), u"Line 2, changed TEA-0001 TEA: Unit cost 1 \u2192 2.50"_s);
}

void CataloguePageTest::listIsSaved()
{
    for (const QString &statement : kept::setting().making)
        run(statement);
    run(u"insert into HarrowbySetting values ('ExportSeparator', 'tab')"_s); // chosen for the last list
    begin(germanList);
    nextIs(2);
    nextIs(3);
    nextIs(4);
    const QString path = m_folder->filePath(u"rows.csv"_s);
    inNextDialog([&](QDialog &dialog) {
        dialog.findChild<QLineEdit *>(u"fileNameEdit"_s)->setText(path);
        dialog.accept();
    });
    press("importSave");
    QTRY_COMPARE(text("importRowWords"), u"\u2713 3 rows are saved: %1"_s.arg(path));
    QFile saved(path);
    QVERIFY(saved.open(QIODevice::ReadOnly));
    const QByteArray rows = saved.readAll();
    QVERIFY2(rows.startsWith("\xef\xbb\xbf") && rows.contains("HON-0001\t"), rows.constData());
}

void CataloguePageTest::stockInHandIsTouchedOnlyWhenTicked()
{
    begin("StockID,StockAvailable\nTEA-0001,99\n");
    nextIs(2);
    nextIs(3);
    QVERIFY(!part<QCheckBox>("importStockInHand")->isChecked());
    nextIs(4);
    QCOMPARE(text("importHeading"), u"Step 4 of 4: 0 new, 0 changed, 1 unchanged, 0 refused"_s);
    press("importBack");
    part<QCheckBox>("importStockInHand")->setChecked(true);
    nextIs(4);
    QCOMPARE(listed("importRows"), QStringList{u"2 | changed | TEA-0001 | TEA | Stock in hand 20 \u2192 99"_s});
    nextIs(5);
    QCOMPARE(read(u"SELECT StockAvailable FROM StockList WHERE StockID = 'TEA-0001'"_s), u"99"_s);
}

void CataloguePageTest::namesStayAsTheyAreWhenSaid()
{
    begin("StockID,StockName\nTEA-0001,Green tea\n");
    nextIs(2);
    nextIs(3);
    QVERIFY(part<QCheckBox>("importCapitals")->isChecked());
    part<QCheckBox>("importCapitals")->setChecked(false);
    nextIs(4);
    QCOMPARE(text("importHeading"), u"Step 4 of 4: 0 new, 0 changed, 0 unchanged, 1 refused"_s);
    press("importNext");
    QVERIFY(text("importOutcome").startsWith(u"\u26a0 No row can be imported."_s));
}

void CataloguePageTest::nothingNewIsTold()
{
    begin("StockID,StockName\nTEA-0001,TEA\n");
    nextIs(2);
    nextIs(3);
    nextIs(4);
    press("importNext");
    QVERIFY(isAtStep(4));
    QCOMPARE(
        text("importOutcome"),
        u"\u26a0 The store holds all of this already: there is nothing to import. \"Cancel Import\" leads back."_s);
    press("importCancel");
    QVERIFY(part<QWidget>("beginImport")->isVisible());
    QCOMPARE(listed("imports"), QStringList());
}

void CataloguePageTest::backLeadsThroughTheSteps()
{
    begin(germanList);
    QVERIFY(!part<QPushButton>("importBack")->isEnabled());
    nextIs(2);
    nextIs(3);
    nextIs(4);
    for (const int step : {3, 2, 1}) {
        press("importBack");
        QVERIFY(isAtStep(step));
    }
    QTRY_COMPARE(read(u"SELECT count(*) FROM HarrowbyImport"_s), u"0"_s);
}

void CataloguePageTest::importIsTakenBack()
{
    importAll(germanList);
    answerNextBox(QMessageBox::RejectRole);
    press("takeBackNow");
    QVERIFY2(m_boxText.startsWith(u"Take back the import of \"list.csv\" of "_s), qPrintable(m_boxText));
    QCOMPARE(read(u"SELECT count(*) FROM StockList"_s), u"3"_s);
    answerNextBox(QMessageBox::AcceptRole);
    press("takeBack");
    QTRY_COMPARE(text("catalogueOutcome"), u"\u2713 Taken back: \"list.csv\". 1 deleted, 1 as before."_s);
    QCOMPARE(column(m_store, u"SELECT StockID FROM StockList WHERE StockCost = 1 ORDER BY StockID"_s),
             (QStringList{u"MIL-0001"_s, u"TEA-0001"_s}));
    QCOMPARE(read(u"SELECT count(*) FROM StockList"_s), u"2"_s);
    QVERIFY(listed("imports").at(0).contains(u"list.csv (taken back)"_s));
    QVERIFY(!part<QPushButton>("takeBack")->isEnabled());
    QVERIFY(!part<QPushButton>("showNotTakenBack")->isVisible()); // there is none
    const QAbstractItemModelTester tester(part<QTreeView>("imports")->model());
}

void CataloguePageTest::changedRowsAreListedWhenTakenBack()
{
    importAll(germanList);
    run(u"UPDATE StockList SET StockCost = '9.00' WHERE StockID = 'TEA-0001'"_s);
    press("importNext");
    QString about;
    QStringList rows;
    answerNextBox(QMessageBox::AcceptRole);
    press("takeBack");
    inNextDialog([&](QDialog &dialog) { // comes by itself
        about = dialog.findChild<QLabel *>()->text();
        const QAbstractItemModel &model = *dialog.findChild<QTreeView *>(u"dialogRows"_s)->model();
        for (int row = 0; row < model.rowCount(); ++row)
            rows << model.index(row, 2).data().toString();
    });
    QTRY_VERIFY(text("catalogueOutcome").contains(u"1 left as they are"_s));
    QTRY_VERIFY(!about.isEmpty());
    QVERIFY(part<QPushButton>("showNotTakenBack")->isVisible());
    QCOMPARE(about, u"These rows of \"list.csv\" were changed since the import, so they were left as they are:"_s);
    QCOMPARE(rows, QStringList{u"TEA-0001"_s});
}

void CataloguePageTest::checkParts()
{
    for (QWidget *control : m_window->findChildren<QWidget *>()) {
        const bool counts = qobject_cast<QPushButton *>(control) != nullptr ||
                            qobject_cast<QComboBox *>(control) != nullptr ||
                            qobject_cast<QCheckBox *>(control) != nullptr;
        if (!counts || !control->isVisible())
            continue;
        const QAccessibleInterface *spoken = QAccessible::queryAccessibleInterface(control);
        QVERIFY2(!spoken->text(QAccessible::Name).isEmpty(), qPrintable(control->objectName()));
        QVERIFY2(control->height() >= 44, qPrintable(control->objectName()));
        QVERIFY2(control->focusPolicy() & Qt::TabFocus, qPrintable(control->objectName()));
    }
    QCOMPARE(m_window->size(), QSize(746, 440)); // no step needs more
}

void CataloguePageTest::everythingIsLargeEnoughForAThumbAndNamed()
{
    checkParts();
    begin("StockID,StockName,StockCost\nTEA-0001,TEA,\"1,234\"\nMIL-0001,MILK,x\n");
    checkParts();
    nextIs(2);
    checkParts();
    nextIs(3);
    checkParts();
    part<QComboBox>("signAnswer")->setCurrentIndex(1);
    nextIs(4);
    checkParts();
    part<QCheckBox>("importValidRows")->setChecked(true);
    nextIs(5);
    checkParts();
    press("importNext");
    checkParts();
    press("beginExport");
    chooseEntry("exportKind", u"Purchases"_s);
    checkParts();
}

HARROWBY_TEST(app_catalogue_page_test, CataloguePageTest)
#include "catalogue_page_test.moc"
