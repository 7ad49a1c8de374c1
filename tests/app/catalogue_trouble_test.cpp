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

namespace {

const QByteArray dearerTea = "StockID,StockName,StockCost\nTEA-0001,TEA,3.00\n";

} // namespace

class CatalogueTroubleTest : public CatalogueDesk
{
    Q_OBJECT

private Q_SLOTS:
    void wrongFilesAreTold_data();
    void wrongFilesAreTold();
    void wrongDropsAreTold_data();
    void wrongDropsAreTold();
    void listWithoutRowsIsTold();
    void anotherFileIsTakenInstead();
    void wrongFileInTheMiddleLosesNothing();
    void changedFileLeadsToTheFirstStep();
    void vanishedFileIsNotMissed();
    void cancelledPreviewLeavesNothing();
    void cancelledImportWritesNothing();
    void pressesMeanwhileDoNothing();
    void failedReadingIsTold();
    void lostStoreIsTold();
    void changedStoreIsComparedAnew();
    void othersAreImportedWhileTillsSell();
    void twoOfficesTakeBackOnce();
    void dropAmidAnImportAsks();
    void leavingAsks();
    void pageEndsAmidWork();

private:
    void toPreview(const QByteArray &bytes);
    /// The store's write lock, which another program has for a long time.
    void lockStore() { run(u"BEGIN IMMEDIATE"_s); }
    void letGo() { run(u"COMMIT"_s); }
    [[nodiscard]] QString costOfTea() const
    {
        return read(u"SELECT printf('%.2f', StockCost) FROM StockList WHERE StockID = 'TEA-0001'"_s);
    }
};

void CatalogueTroubleTest::toPreview(const QByteArray &bytes)
{
    begin(bytes);
    for (const int step : {2, 3, 4})
        nextIs(step);
}

void CatalogueTroubleTest::wrongFilesAreTold_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("words");
    QTest::newRow("empty") << QByteArray() << u"\u26a0 The file is empty."_s;
    QTest::newRow("picture") << QByteArray("\x89PNG\r\n\x1a\n") << u"\u26a0 This is a picture and no list of items."_s;
    QTest::newRow("spreadsheet") << QByteArray("PK\x03\x04whatever")
                                 << u"\u26a0 This is a spreadsheet in its own form, which only that program reads."_s;
    QTest::newRow("older spreadsheet") << QByteArray("\xD0\xCF\x11\xE0whatever")
                                       << u"\u26a0 This is a spreadsheet in its own form"_s;
    QTest::newRow("paper") << QByteArray("%PDF-1.7") << u"\u26a0 This is a PDF file and no list of items."_s;
    QTest::newRow("backup") << QByteArray("SQLite format 3\0", 16) << u"\u26a0 This is a store or a backup"_s;
}

void CatalogueTroubleTest::wrongFilesAreTold()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, words);
    drop({file(u"prices.csv"_s, bytes)});
    QTRY_VERIFY2(text("catalogueOutcome").startsWith(words), qPrintable(text("catalogueOutcome")));
    QVERIFY(text("catalogueOutcome").contains(u"choose \"CSV\""_s));
    QVERIFY(part<QWidget>("beginImport")->isVisible());
}

void CatalogueTroubleTest::wrongDropsAreTold_data()
{
    QTest::addColumn<QStringList>("paths");
    QTest::addColumn<QString>("words");
    QTest::newRow("two") << QStringList{u"/a.csv"_s, u"/b.csv"_s} << u"Please drag one file at a time."_s;
    QTest::newRow("web") << QStringList{u"https://example.com/a.csv"_s}
                         << u"Please drag a file of this computer. What comes from a web page, save first."_s;
}

void CatalogueTroubleTest::wrongDropsAreTold()
{
    QFETCH(QStringList, paths);
    QFETCH(QString, words);
    answerNextBox(QMessageBox::AcceptRole);
    drop(paths);
    QTRY_COMPARE(m_boxText, words);
    m_boxText.clear();
    drop({m_folder->path()});
    QTRY_VERIFY(text("catalogueOutcome").startsWith(u"\u26a0 This is a folder."_s));
    drop({m_folder->filePath(u"nowhere.csv"_s)});
    QTRY_VERIFY(text("catalogueOutcome").startsWith(u"\u26a0 The file is not there: "_s));
}

void CatalogueTroubleTest::listWithoutRowsIsTold()
{
    begin("StockID,StockName\n");
    press("importNext");
    QVERIFY(isAtStep(1));
    QCOMPARE(text("importOutcome"), u"\u26a0 Below its headings the file holds no row: there is nothing to import. "
                                    "Please choose another file."_s);
    QVERIFY(part<QPushButton>("anotherFile")->hasFocus());
}

void CatalogueTroubleTest::anotherFileIsTakenInstead()
{
    begin("StockID,StockName\n");
    const QString other = file(u"other.csv"_s, dearerTea);
    inNextDialog([&](QDialog &dialog) {
        dialog.findChild<QLineEdit *>(u"fileNameEdit"_s)->setText(other);
        dialog.accept();
    });
    press("anotherFile");
    QTRY_VERIFY(text("importFile").contains(u"other.csv"_s));
    QCOMPARE(listed("sampleRows"), QStringList{u"2 | TEA-0001 | TEA | 3.00"_s});
}

void CatalogueTroubleTest::wrongFileInTheMiddleLosesNothing()
{
    toPreview(dearerTea);
    answerNextBox(QMessageBox::AcceptRole);
    drop({file(u"empty.csv"_s, {})});
    QTRY_VERIFY(text("importOutcome").startsWith(u"\u26a0 The file is empty."_s));
    QVERIFY(isAtStep(4));
    nextIs(5);
    QCOMPARE(costOfTea(), u"3.00"_s);
}

void CatalogueTroubleTest::changedFileLeadsToTheFirstStep()
{
    toPreview(dearerTea);
    file(u"list.csv"_s, "StockID,StockName,StockCost\nTEA-0001,TEA,4.00\n");
    nextIs(1);
    QVERIFY2(
        text("importOutcome").startsWith(u"\u26a0 The file has changed since the preview. Nothing was imported."_s),
        qPrintable(text("importOutcome")));
    QCOMPARE(listed("sampleRows"), QStringList{u"2 | TEA-0001 | TEA | 4.00"_s});
    QCOMPARE(costOfTea(), u"1.00"_s);
    for (const int step : {2, 3, 4, 5})
        nextIs(step);
    QCOMPARE(costOfTea(), u"4.00"_s);
}

void CatalogueTroubleTest::vanishedFileIsNotMissed()
{
    toPreview(dearerTea);
    QVERIFY(QFile::remove(m_folder->filePath(u"list.csv"_s)));
    nextIs(5);
    QCOMPARE(costOfTea(), u"3.00"_s);
}

void CatalogueTroubleTest::cancelledPreviewLeavesNothing()
{
    begin(dearerTea);
    nextIs(2);
    nextIs(3);
    lockStore();
    press("importNext");
    QTRY_VERIFY(workCancel());
    QTest::mouseClick(workCancel(), Qt::LeftButton);
    letGo();
    QTRY_VERIFY2(text("importOutcome").startsWith(u"Stopped. "_s), qPrintable(text("importOutcome")));
    QVERIFY(isAtStep(3));
    QCOMPARE(read(u"SELECT count(*) FROM HarrowbyImport"_s), u"0"_s);
    nextIs(4); // anew
}

void CatalogueTroubleTest::cancelledImportWritesNothing()
{
    toPreview(dearerTea);
    std::unique_lock held(m_clock); // the store's lock would hold no backup up, and what follows it is not cancelled
    press("importNext");
    QTRY_VERIFY(workCancel());
    QTest::mouseClick(workCancel(), Qt::LeftButton);
    held.unlock();
    QTRY_VERIFY2(text("importOutcome").startsWith(u"Stopped. "_s), qPrintable(text("importOutcome")));
    QVERIFY(isAtStep(4));
    QCOMPARE(costOfTea(), u"1.00"_s);
    nextIs(5); // the preview still counts
    QCOMPARE(costOfTea(), u"3.00"_s);
}

void CatalogueTroubleTest::pressesMeanwhileDoNothing()
{
    begin(dearerTea);
    nextIs(2);
    nextIs(3);
    lockStore();
    press("importNext");
    QVERIFY(isAtStep(3));
    QVERIFY(m_window->leaving());
    for (const char *name : {"importNext", "importBack", "importCancel"})
        press(name); // not switched off before the work is shown
    QVERIFY(isAtStep(3));
    QTRY_VERIFY(workCancel() && workCancel()->hasFocus());
    QVERIFY(!part<QPushButton>("importNext")->isEnabled());
    letGo();
    QTRY_VERIFY(isAtStep(4));
    QVERIFY(part<QPushButton>("importNext")->hasFocus());
}

void CatalogueTroubleTest::failedReadingIsTold()
{
    toPreview(dearerTea);
    m_fussy->failAll = true;
    chooseEntry("importFilter", u"changed (1)"_s);
    QVERIFY2(text("importRowWords").startsWith(u"\u26a0 "_s), qPrintable(text("importRowWords")));
    m_fussy->failAll = false;
    chooseEntry("importFilter", u"all rows (1)"_s);
    QCOMPARE(listed("importRows").size(), 1);
    m_fussy->failAll = true;
    press("importCancel");
    QVERIFY2(text("catalogueOutcome").startsWith(u"\u26a0 The imports so far could not be read: "_s),
             qPrintable(text("catalogueOutcome")));
}

void CatalogueTroubleTest::lostStoreIsTold()
{
    toPreview(dearerTea);
    m_lost = u"The store file is gone."_s;
    press("importNext");
    QCOMPARE(text("importOutcome"), u"\u26a0 The store file is gone."_s);
    press("importCancel");
    press("beginExport");
    press("exportNow");
    QCOMPARE(text("exportOutcome"), u"\u26a0 The store file is gone."_s);
    press("exportBack");
    drop({file(u"more.csv"_s, dearerTea)});
    QTRY_COMPARE(text("catalogueOutcome"), u"\u26a0 The store file is gone."_s);
    QCOMPARE(costOfTea(), u"1.00"_s);
}

void CatalogueTroubleTest::changedStoreIsComparedAnew()
{
    toPreview(dearerTea);
    run(u"UPDATE StockList SET StockCost = '2.00' WHERE StockID = 'TEA-0001'"_s);
    press("importNext");
    QTRY_COMPARE(text("importOutcome"), u"\u26a0 Nothing was imported: 1 of 1 rows changed in the store since the "
                                        "preview, perhaps by a sale. \"Compare Again\" makes a new preview."_s);
    QVERIFY(!part<QPushButton>("importOthers")->isVisible()); // there are none
    QCOMPARE(part<QPushButton>("importNext")->text(), u"&Compare Again"_s);
    QCOMPARE(costOfTea(), u"2.00"_s);
    press("importNext");
    QTRY_VERIFY(isAtStep(4) && part<QPushButton>("importNext")->text() == u"Import &Now"_s);
    QCOMPARE(listed("importRows"), QStringList{u"2 | changed | TEA-0001 | TEA | Unit cost 2 \u2192 3.00"_s});
}

void CatalogueTroubleTest::othersAreImportedWhileTillsSell()
{
    run(u"INSERT INTO StockList SELECT * FROM StockList WHERE StockID = 'TEA-0001'"_s);
    run(u"UPDATE StockList SET StockID = 'BUN-0001', StockName = 'BUN' WHERE rowid = last_insert_rowid()"_s);
    begin("StockID,StockCost,StockAvailable\nTEA-0001,3.00,50\nMIL-0001,4.00,60\nBUN-0001,5.00,70\n");
    nextIs(2);
    nextIs(3);
    part<QCheckBox>("importStockInHand")->setChecked(true);
    nextIs(4);
    const auto sell = [this](const QString &id) {
        run(u"UPDATE StockList SET StockAvailable = StockAvailable - 1 WHERE StockID = '%1'"_s.arg(id));
    };
    sell(u"TEA-0001"_s);
    press("importNext");
    auto *others = part<QPushButton>("importOthers");
    QTRY_VERIFY(others->isVisible());
    QCOMPARE(others->text(), u"I&mport the Other 2 Rows"_s);
    QVERIFY(others->height() >= 44);
    QVERIFY2(text("importOutcome").contains(u"1 of 3 rows"_s), qPrintable(text("importOutcome")));
    QCOMPARE(listed("importRows").size(), 1); // the one that changed
    QVERIFY(listed("importRows").constFirst().contains(u"TEA-0001"_s));
    sell(u"BUN-0001"_s); // the tills go on
    press("importOthers");
    QTRY_VERIFY2(isAtStep(5), qPrintable(text("importOutcome")));
    QVERIFY2(text("importDone").contains(u"0 new, 1 changed"_s), qPrintable(text("importDone")));
    QVERIFY(part<QLabel>("importLeftOut")->text().contains(u"2 rows were left out"_s));
    QCOMPARE(read(u"SELECT group_concat(printf('%s %.2f %d', StockName, StockCost, StockAvailable)) FROM "
                  "(SELECT * FROM StockList ORDER BY StockName)"_s),
             u"BUN 1.00 19,MILK 4.00 60,TEA 1.00 19"_s);
}

void CatalogueTroubleTest::twoOfficesTakeBackOnce()
{
    toPreview(dearerTea);
    nextIs(5);
    press("importNext");
    SqliteDatabase second;
    QVERIFY(!into(second, openDatabase(m_store, OpenMode::Write)));
    FussyRecords records(second.get());
    ImportDesk desk;
    desk.store = m_store;
    desk.who = u"BOB"_s;
    desk.user = u"BOB"_s;
    desk.place = u"office"_s;
    QVERIFY(
        CatalogueImport(records, desk)
            .takeBack(CatalogueImport(records, desk).past()->constFirst().id, [](const WorkStep &) { return true; }));
    QCOMPARE(costOfTea(), u"1.00"_s);
    run(u"UPDATE StockList SET StockCost = '7.00' WHERE StockID = 'TEA-0001'"_s);
    answerNextBox(QMessageBox::AcceptRole);
    press("takeBack");
    QTRY_VERIFY2(text("catalogueOutcome").startsWith(u"\u26a0 "_s), qPrintable(text("catalogueOutcome")));
    QVERIFY(!part<QPushButton>("takeBack")->isEnabled()); // as the other office has done it
    QCOMPARE(costOfTea(), u"7.00"_s);
}

void CatalogueTroubleTest::dropAmidAnImportAsks()
{
    toPreview(dearerTea);
    const QString other = file(u"other.csv"_s, "StockID,StockName\nMIL-0001,MILK\n");
    answerNextBox(QMessageBox::RejectRole);
    drop({other});
    QTRY_COMPARE(m_boxText, u"Leave the import that is not finished, and begin with this file?"_s);
    QVERIFY(isAtStep(4));
    answerNextBox(QMessageBox::AcceptRole);
    drop({other});
    QTRY_VERIFY(isAtStep(1));
    QVERIFY(text("importFile").contains(u"other.csv"_s));
}

void CatalogueTroubleTest::leavingAsks()
{
    QVERIFY(!m_window->leaving());
    toPreview(dearerTea);
    QCOMPARE(m_window->leaving()->text, u"The import is not finished, and nothing of it has been written. Leave it?"_s);
    lockStore();
    press("importNext");
    QVERIFY(m_window->leaving()->text.startsWith(u"The import is being carried out."_s));
    letGo();
    QTRY_VERIFY(isAtStep(5));
    QVERIFY(!m_window->leaving());
}

void CatalogueTroubleTest::pageEndsAmidWork()
{
    toPreview(dearerTea);
    press("importNext");
    m_window.reset();
    const QString cost = costOfTea();
    QVERIFY2(cost == u"1.00"_s || cost == u"3.00"_s, qPrintable(cost)); // all or nothing
}

HARROWBY_TEST(app_catalogue_trouble_test, CatalogueTroubleTest)
#include "catalogue_trouble_test.moc"
