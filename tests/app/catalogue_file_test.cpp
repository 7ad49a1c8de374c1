// SPDX-License-Identifier: MIT
#include "tests/app/catalogue_desk.h"
#include "tests/program/test_program.h"
#include "tests/support/readable_texts.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QScopeGuard>
#include <QStringEncoder>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::app::test;

/// What is found out about a file, and what of it has to be said by somebody.
class CatalogueFileTest : public CatalogueDesk
{
    Q_OBJECT

private Q_SLOTS:
    void wideLettersComeInWhole_data();
    void wideLettersComeInWhole();
    void signIsThatOfTheFigures();
    void columnInDoubtIsChosen();
    void firstLineThatIsARow();
    void columnInDoubtMayBeNone();
    void otherNamesAreTold_data();
    void otherNamesAreTold();
    void stepsCanBeRead_data();
    void stepsCanBeRead();

private:
    void checkTexts();
};

void CatalogueFileTest::wideLettersComeInWhole_data()
{
    QTest::addColumn<QStringConverter::Encoding>("encoding");
    QTest::addColumn<QString>("shown");
    QTest::newRow("little end first") << QStringConverter::Utf16LE << u"UTF-16"_s;
    QTest::newRow("big end first") << QStringConverter::Utf16BE << u"UTF-16 (big endian)"_s;
}

/// As spreadsheets save it: with a mark, tabs, and letters of more than one plane.
void CatalogueFileTest::wideLettersComeInWhole()
{
    QFETCH(QStringConverter::Encoding, encoding);
    QFETCH(QString, shown);
    QStringEncoder encoder(encoding, QStringConverter::Flag::WriteBom);
    begin(encoder(u"StockID\tStockName\tStockCost\r\nTEA-0001\tTEA\t2,50\r\nCAF-0001\tCAF\u00c9 \u017b "
                  "\U0001F375\t4,00\r\n"_s));
    QCOMPARE(part<QComboBox>("importEncoding")->currentText(), shown);
    QCOMPARE(part<QComboBox>("importSeparator")->currentText(), u"Tab"_s);
    QCOMPARE(part<QComboBox>("importDecimalSign")->currentText(), u"Comma: 1,50"_s);
    QCOMPARE(listed("sampleRows").value(1), u"3 | CAF-0001 | CAF\u00c9 \u017b \U0001F375 | 4,00"_s);
    for (const int step : {2, 3, 4, 5})
        nextIs(step);
    QCOMPARE(read(u"SELECT group_concat(StockName || ' ' || StockCost) FROM (SELECT * FROM StockList WHERE StockID IN "
                  "('TEA-0001', 'CAF-0001') ORDER BY StockID)"_s),
             u"CAF\u00c9 \u017b \U0001F375 4,TEA 2.5"_s);
}

/// What a column says that holds no figure counts only until that is known.
void CatalogueFileTest::signIsThatOfTheFigures()
{
    begin("StockID;StockName;StockCost;Version\nTEA-0001;TEA;3.50;1,5\n");
    QCOMPARE(part<QComboBox>("importDecimalSign")->currentText(), u"Not clear yet"_s);
    nextIs(2);
    nextIs(3);
    QVERIFY(!part<QWidget>("signAnswer")->isVisible());
    nextIs(4);
    QCOMPARE(listed("importRows"), QStringList{u"2 | changed | TEA-0001 | TEA | Unit cost 1 \u2192 3.50"_s});
}

void CatalogueFileTest::columnInDoubtIsChosen()
{
    const QByteArray bytes = "StockID,Unit cost,Price\nTEA-0001,1.10,3.00\n";
    begin(bytes);
    nextIs(2);
    auto *cost = part<QComboBox>("columnStockCost");
    QCOMPARE(cost->currentIndex(), -1);
    QCOMPARE(cost->accessibleDescription(), u"Please choose: \"Price\" or \"Unit cost\""_s);
    QCOMPARE(text("leftOutColumns"), u"Not used of your file: Unit cost, Price"_s);
    press("importNext");
    QVERIFY(isAtStep(2));
    QVERIFY2(text("importOutcome")
                 .startsWith(u"\u26a0 Several columns of your file could be \"Unit cost\". Please "
                             "choose: \"Price\" or \"Unit cost\"."_s),
             qPrintable(text("importOutcome")));
    QVERIFY(cost->hasFocus());
    chooseEntry("columnStockCost", u"Price"_s);
    QCOMPARE(cost->accessibleDescription(), u"3.00"_s);
    nextIs(3);
    press("importBack");
    QCOMPARE(cost->currentText(), u"Price"_s); // and stays chosen
    nextIs(3);
    nextIs(4);
    QCOMPARE(listed("importRows"), QStringList{u"2 | changed | TEA-0001 | TEA | Unit cost 1 \u2192 3.00"_s});
    press("importCancel");
    begin(bytes); // the next such file asks no more
    nextIs(2);
    QCOMPARE(part<QComboBox>("columnStockCost")->currentText(), u"Price"_s);
    nextIs(3);
}

void CatalogueFileTest::firstLineThatIsARow()
{
    begin("TEA-0001,TEA,3.00\nMIL-0001,MILK,2.00\n");
    auto *isRow = part<QCheckBox>("firstLineIsRow");
    QVERIFY(isRow->isVisible());
    QCOMPARE(text("sampleHint"), u"The first line is taken for the headings, but looks like a row of the list:"_s);
    QTest::mouseClick(isRow, Qt::LeftButton, {}, QPoint(12, isRow->height() / 2));
    QCOMPARE(text("sampleHint"), u"The first line is taken for a row. These are the first rows, as they are read:"_s);
    QCOMPARE(part<QAbstractItemView>("sampleRows")->model()->rowCount(), 2);
    nextIs(2);
    chooseEntry("columnStockID", u"Column 1"_s);
    chooseEntry("columnStockCost", u"Column 3"_s);
    nextIs(3);
    nextIs(4);
    QCOMPARE(listed("importRows").value(0), u"1 | changed | TEA-0001 | TEA | Unit cost 1 \u2192 3.00"_s);
    press("importCancel");
    begin("StockID,StockName\nTEA-0001,TEA\n"); // the next file is looked at afresh
    QVERIFY(!isRow->isVisible());
    QVERIFY(!isRow->isChecked());
}

void CatalogueFileTest::columnInDoubtMayBeNone()
{
    begin("StockID,StockName,Unit cost,Price\nTEA-0001,GREEN TEA,1.10,3.00\n");
    nextIs(2);
    chooseEntry("columnStockCost", u"(not in this file)"_s);
    nextIs(3);
    nextIs(4);
    QCOMPARE(listed("importRows"), QStringList{u"2 | changed | TEA-0001 | GREEN TEA | Name TEA \u2192 GREEN TEA"_s});
}

void CatalogueFileTest::otherNamesAreTold_data()
{
    QTest::addColumn<QByteArray>("rows");
    QTest::addColumn<QString>("words");
    QTest::newRow("one") << QByteArray("TEA-0001,GREEN TEA\n")
                         << u"1 item gets another name: tills that are open show the old one until their pages are "
                            "loaded again. Nothing is written yet."_s;
    QTest::newRow("two") << QByteArray("TEA-0001,GREEN TEA\nMIL-0001,WHOLE MILK\n")
                         << u"2 items get another name: tills that are open show the old ones until their pages are "
                            "loaded again. Nothing is written yet."_s;
    QTest::newRow("none") << QByteArray("TEA-0001,TEA\nNEW-0001,NEW\n") << u"Nothing is written yet."_s;
}

void CatalogueFileTest::otherNamesAreTold()
{
    QFETCH(QByteArray, rows);
    QFETCH(QString, words);
    begin("StockID,StockName\n" + rows);
    for (const int step : {2, 3, 4})
        nextIs(step);
    QVERIFY2(text("importAbout").startsWith(words), qPrintable(text("importAbout")));
}

void CatalogueFileTest::checkTexts()
{
    QCoreApplication::processEvents();
    const QStringList unreadable = harrowby::test::unreadableTexts(*m_window);
    QVERIFY2(unreadable.isEmpty(), qPrintable(text("importHeading") + u'\n' + unreadable.join(u'\n')));
}

void CatalogueFileTest::stepsCanBeRead_data()
{
    QTest::addColumn<QPalette>("palette");
    QTest::newRow("light") << harrowby::test::lightPalette();
    QTest::newRow("dark") << harrowby::test::darkPalette();
}

void CatalogueFileTest::stepsCanBeRead()
{
    QFETCH(QPalette, palette);
    const auto usual = qScopeGuard([] { QApplication::setPalette(harrowby::test::lightPalette()); });
    QApplication::setPalette(palette);
    open(true);
    begin("StockID,StockName,Unit cost,Price\nTEA-0001,GREEN TEA,1.10,\"1,234\"\nMIL-0001,MILK,2,x\n");
    checkTexts();
    nextIs(2);
    checkTexts();
    chooseEntry("columnStockCost", u"Price"_s);
    nextIs(3);
    checkTexts();
    part<QComboBox>("signAnswer")->setCurrentIndex(1);
    nextIs(4);
    checkTexts();
    press("importNext"); // one is refused, which is told
    checkTexts();
    part<QCheckBox>("importValidRows")->setChecked(true);
    nextIs(5);
    checkTexts();
    press("importNext");
    checkTexts();
    press("beginExport");
    checkTexts();
}

HARROWBY_TEST(app_catalogue_file_test, CatalogueFileTest)
#include "catalogue_file_test.moc"
