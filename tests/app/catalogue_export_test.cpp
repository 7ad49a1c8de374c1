// SPDX-License-Identifier: MIT
#include "tests/app/catalogue_desk.h"
#include "tests/program/test_program.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QLineEdit>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::app::test;

/// Lists out of the store, on the page "Catalogue".
class CatalogueExportTest : public CatalogueDesk
{
    Q_OBJECT

private Q_SLOTS:
    void exportFillsAnEmptyStoreAsItStands();
    void listIsExported();
    void fileIsReplacedOnlyWhenSaid();
    void purchasesAreTheAdministrators();
    void separatorAndSignAreKept();
};

void CatalogueExportTest::exportFillsAnEmptyStoreAsItStands()
{
    run(u"UPDATE StockList SET StockName = 'it''s tea', StockCost = NULL WHERE StockID = 'TEA-0001'"_s);
    const QString whole = u"SELECT quote(StockID) || quote(StockName) || quote(StockCost) || quote(StockAvailable) "
                          "FROM StockList ORDER BY StockID"_s;
    const QStringList before = column(m_store, whole);
    QCOMPARE(before.size(), 2);
    const QString path = m_folder->filePath(u"out.csv"_s);
    press("beginExport");
    part<QLineEdit>("exportPlace")->setText(path);
    press("exportNow");
    QTRY_VERIFY(text("exportOutcome").startsWith(u"\u2713 2 rows saved: "_s));
    QFile out(path);
    QVERIFY(out.open(QIODevice::ReadOnly));
    QVERIFY(out.read(3) == "\xef\xbb\xbf");
    press("exportBack");
    run(u"DELETE FROM StockList"_s);
    drop({path});
    QTRY_VERIFY(isAtStep(1));
    nextIs(2);
    nextIs(3);
    QVERIFY(part<QCheckBox>("importAsStored")->isVisible());
    QVERIFY(part<QCheckBox>("importAsStored")->isChecked());
    QVERIFY(!part<QCheckBox>("importCapitals")->isEnabled());
    nextIs(4);
    nextIs(5);
    QCOMPARE(column(m_store, whole), before);
}

void CatalogueExportTest::listIsExported()
{
    run(u"UPDATE StockList SET StockCost = 1.5"_s);
    const QString path = m_folder->filePath(u"items.csv"_s);
    press("beginExport");
    chooseEntry("exportSeparator", u"Semicolon ( ; )"_s);
    chooseEntry("exportDecimalSign", u"Comma: 1,50"_s);
    part<QLineEdit>("exportPlace")->setText(path);
    press("exportNow");
    QTRY_VERIFY(text("exportOutcome").startsWith(u"\u2713 2 rows saved: "_s));
    QFile saved(path);
    QVERIFY(saved.open(QIODevice::ReadOnly));
    const QByteArray bytes = saved.readAll();
    QVERIFY2(bytes.contains("TEA-0001;TEA;DRINKS;1,5;"), bytes.constData());
    QCOMPARE(read(u"SELECT Who || ' ' || Kind FROM HarrowbyActivity"_s), u"ANNA Exported"_s);
}

void CatalogueExportTest::fileIsReplacedOnlyWhenSaid()
{
    const QString path = file(u"mine.csv"_s, "mine");
    press("beginExport");
    part<QLineEdit>("exportPlace")->setText(path);
    answerNextBox(QMessageBox::RejectRole);
    press("exportNow");
    QCOMPARE(m_boxText, u"There is a file \"%1\" already. Replace it with the new list?"_s.arg(path));
    QCOMPARE(text("exportOutcome"), QString());
    part<QLineEdit>("exportPlace")->setText(m_store);
    press("exportNow");
    QVERIFY(text("exportOutcome").startsWith(u"\u26a0 "_s));
}

void CatalogueExportTest::purchasesAreTheAdministrators()
{
    QVERIFY(part<QComboBox>("exportKind")->findText(u"Purchases"_s) >= 0);
    press("beginExport");
    QVERIFY(!part<QWidget>("exportFrom")->isVisible());
    const auto statements = [this] { return m_fussy ? m_fussy->texts.size() : 0; }; // counted on a file
    const auto asked = statements();
    chooseEntry("exportKind", u"Purchases"_s);
    QCOMPARE(statements(), asked); // a choice asks the store nothing
    QVERIFY(part<QWidget>("exportFrom")->isVisible());
    QVERIFY(part<QLineEdit>("exportPlace")->text().contains(u"/purchases-"_s));
    part<QCheckBox>("exportAllDays")->setChecked(true);
    QVERIFY(!part<QWidget>("exportFrom")->isEnabled());
    const QString path = m_folder->filePath(u"sold.csv"_s);
    part<QLineEdit>("exportPlace")->setText(path);
    press("exportNow");
    QTRY_VERIFY(text("exportOutcome").startsWith(u"\u2713 0 rows saved: "_s));
    open(false);
    QCOMPARE(part<QComboBox>("exportKind")->findText(u"Purchases"_s), -1);
}

void CatalogueExportTest::separatorAndSignAreKept()
{
    press("beginExport");
    chooseEntry("exportSeparator", u"Tab"_s);
    chooseEntry("exportDecimalSign", u"Comma: 1,50"_s);
    part<QLineEdit>("exportPlace")->setText(m_folder->filePath(u"a.csv"_s));
    press("exportNow");
    QTRY_VERIFY(!text("exportOutcome").isEmpty());
    open(true); // as the next one has it
    press("beginExport");
    QCOMPARE(part<QComboBox>("exportSeparator")->currentText(), u"Tab"_s);
    QCOMPARE(part<QComboBox>("exportDecimalSign")->currentText(), u"Comma: 1,50"_s);
}

HARROWBY_TEST(app_catalogue_export_test, CatalogueExportTest)
#include "catalogue_export_test.moc"
