// SPDX-License-Identifier: MIT
#include "app/backup/good_backups.h"
#include "app/backup/kept_backups.h"
#include "tests/app/import_desk.h"
#include "tests/program/test_program.h"

#include <QDir>
#include <QFile>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::app::test;

/// What an import writes, and what taking it back restores.
class ImportWritingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_bench = std::make_unique<ImportBench>(); }
    void cleanup() { m_bench.reset(); }

    void backupComesFirst();
    void tenBackupsStay();
    void itsBackupEndsNoWarning();
    void noBackupNoImport();
    void deedIsWritten();
    void allRowsOrNone();
    void fileThatHasChangedIsTold();
    void changedMeanwhileIsNotOverwritten();
    void previewIsCarriedOutOnce();
    void takenBackWhole();
    void takenBackAfterSales();
    void takenBackButForWhatChanged();
    void takenBackWithManyKindsOfChange();
    void codesComeAndGo();
    void codesOfAFormerItemAreNotTheNewOnes();
    void fileOfCodes();
    void fileOfCategories();
    void listIsSaved();
    void listNeverReplacesTheStore();
    void exportedAndImportedAgain();
    void storeIsEqualInAnEmptyOne();
    void onlyTheLatestAreKept();

private:
    std::unique_ptr<ImportBench> m_bench;
};

void ImportWritingTest::backupComesFirst()
{
    m_bench->addItem(u"TEA-1"_s, u"TEA"_s, u"1.5"_s);
    const ImportOutcome outcome = m_bench->importValid("StockID,Price\nTEA-1,2\n");
    QCOMPARE(outcome.backup, m_bench->folder.filePath(
                                 u"harrowby-before-import-2026-11-22-120005-%1.db"_s.arg(storeMark(m_bench->path))));
    SqliteDatabase backup = *openDatabase(outcome.backup, OpenMode::Read);
    QCOMPARE(readText(backup.get(), u"select StockCost from StockList"_s), u"1.5"_s);
    QCOMPARE(m_bench->rows(u"select StockCost, StockLastUpdated, StockLastModified, StockAdded, StockReorderUser "
                           "from StockList"_s),
             QStringList{u"2|22-Nov-26 12:00:05|JILL|JACK|JILL"_s});
}

/// A file that is imported every night.
void ImportWritingTest::tenBackupsStay()
{
    const QString mark = storeMark(m_bench->path);
    const QStringList others = {u"harrowby-before-import-2020-01-01-090000.db"_s,
                                u"harrowby-before-import-2020-01-01-090000-01234567.db"_s, // another store's
                                u"harrowby-2020-01-01-090000-%1.db"_s.arg(mark)};
    for (const QString &other : others)
        QVERIFY(QFile(m_bench->folder.filePath(other)).open(QIODevice::WriteOnly));
    QStringList made;
    for (int night = 0; night < 12; ++night) {
        m_bench->desk.now = [night] { return QDateTime(QDate(2026, 11, 1 + night), QTime(3, 0)); };
        made << m_bench->importValid("StockID,Name,Price\nTEA-1,TEA,%1\n"_ba.replace("%1", QByteArray::number(night)))
                    .backup;
    }
    const QStringList left =
        QDir(m_bench->folder.path()).entryList({u"harrowby-*"_s}, QDir::Files, QDir::Name | QDir::Reversed);
    for (const QString &other : others)
        QVERIFY2(left.contains(other), qPrintable(other));
    QCOMPARE(left.size(), others.size() + 10);
    for (int night = 0; night < 12; ++night)
        QCOMPARE(QFile::exists(made.at(night)), night >= 2);
}

/// It lies on the store's own disk.
void ImportWritingTest::itsBackupEndsNoWarning()
{
    QVERIFY(m_bench->importValid("StockID,Name,Price\nTEA-1,TEA,2\n").backup.endsWith(u".db"_s));
    QVERIFY(goodBackups(*m_bench->records).isEmpty());
    QCOMPARE(backupWarning(*m_bench->records, QDateTime::currentDateTimeUtc()), u"No backup yet"_s);
}

void ImportWritingTest::noBackupNoImport()
{
    const StagedImport staged = m_bench->stage("StockID,Name,Price\nTEA-1,TEA,2\n");
    m_bench->desk.backupFolder = u"/proc/none"_s;
    const auto outcome = m_bench->import().apply(staged.id, true, nullptr, goOn);
    QCOMPARE(endOf(outcome).kind, ImportEnd::Kind::Failed);
    QVERIFY2(endOf(outcome).words.startsWith(u"Nothing was imported, as no backup could be made"_s),
             qPrintable(endOf(outcome).words));
    QCOMPARE(m_bench->items(), QStringList());
}

void ImportWritingTest::deedIsWritten()
{
    m_bench->importValid("StockID,Name,Price\nTEA-1,TEA,2\n");
    QVERIFY(m_bench->import().takeBack(m_bench->last, goOn));
    QCOMPARE(m_bench->rows(u"select Kind, Who, Place, What from HarrowbyActivity where Kind like 'Import%' "
                           "order by DoneAt, Kind desc"_s),
             (QStringList{u"Imported|JILL|office|Items out of \"catalogue.csv\": 1 new, 0 changed"_s,
                          u"ImportTakenBack|JILL|office|Items out of \"catalogue.csv\": 1 new, 0 changed"_s}));
}

void ImportWritingTest::allRowsOrNone()
{
    const StagedImport staged = m_bench->stage("StockID,Name,Price\nTEA-1,TEA,2\nX,small,1\n");
    QCOMPARE(endOf(m_bench->import().apply(staged.id, false, nullptr, goOn)),
             (ImportEnd{ImportEnd::Kind::RowsRefused, u"1 rows are refused. Nothing was imported."_s}));
    QCOMPARE(m_bench->items(), QStringList());
    QVERIFY(m_bench->import().apply(staged.id, true, nullptr, goOn));
    QCOMPARE(m_bench->items().size(), 1);
}

void ImportWritingTest::fileThatHasChangedIsTold()
{
    const StagedImport staged = m_bench->stage("StockID,Name,Price\nTEA-1,TEA,2\n");
    const ImportFile now = ImportBench::file("StockID,Name,Price\nTEA-1,TEA,3\n");
    QCOMPARE(endOf(m_bench->import().apply(staged.id, true, &now, goOn)).kind, ImportEnd::Kind::FileChanged);
    QCOMPARE(m_bench->items(), QStringList());
}

void ImportWritingTest::changedMeanwhileIsNotOverwritten()
{
    for (const QString &id : {u"A"_s, u"B"_s, u"C"_s, u"D"_s})
        m_bench->addItem(id, u"ITEM "_s + id, u"1"_s);
    const QByteArray text =
        "StockID,Name,Price,Code\nA,,2,\nB,,2,\nC,,2,111\nD,NEWS,,\nE,EGGS,1,\nF,FISH,1,\nG,GUM,1,222\n"
        "H,HAM,1,333\n";
    const auto meddle = [&] {
        m_bench->sql(u"update StockList set StockCost = 1.1 where StockID = 'B'"_s); // another cost
        m_bench->sql(u"delete from StockList where StockID = 'C'"_s);                // gone
        m_bench->addItem(u"X"_s, u"NEWS"_s, u"1"_s);                                 // has the new name
        m_bench->addItem(u"E"_s, u"ELSE"_s, u"1"_s);                                 // has the new ID
        m_bench->addItem(u"Y"_s, u"FISH"_s, u"1"_s);                                 // has the new name
        m_bench->sql(u"insert into HarrowbyCode values ('222', 'A', 1)"_s);          // has the new code
    };
    m_bench->importValid("StockID,Code\nA,999\n"); // so that there is a table of codes
    const StagedImport staged = m_bench->stage(text);
    QCOMPARE(staged.counts, (ImportCounts{4, 4, 0, 0}));
    meddle();
    const QStringList before = m_bench->everything();
    QCOMPARE(endOf(m_bench->import().apply(staged.id, false, nullptr, goOn)).kind, ImportEnd::Kind::StoreChanged);
    QCOMPARE(m_bench->everything(), before);
    QCOMPARE(m_bench->list(staged.id, RowFilter::LeftOut).size(), 6);
    const auto outcome = m_bench->import().apply(staged.id, true, nullptr, goOn);
    QVERIFY2(outcome, qPrintable(endOf(outcome).words));
    QCOMPARE(outcome->leftOut, 6);
    QCOMPARE(outcome->done, (ImportCounts{1, 1, 0, 0}));
    QCOMPARE(m_bench->rows(u"select StockID, StockName, StockCost from StockList order by 1"_s),
             (QStringList{u"A|ITEM A|2"_s, u"B|ITEM B|1.1"_s, u"D|ITEM D|1"_s, u"E|ELSE|1"_s, u"H|HAM|1"_s,
                          u"X|NEWS|1"_s, u"Y|FISH|1"_s}));
    QCOMPARE(m_bench->rows(u"select Code, StockID from HarrowbyCode order by 1"_s),
             (QStringList{u"222|A"_s, u"333|H"_s, u"999|A"_s}));
    QCOMPARE(m_bench->list(staged.id, RowFilter::LeftOut).constFirst(),
             u"3 left out B StockCost 1>1.1 [: The store has changed since the preview.]"_s);
}

void ImportWritingTest::previewIsCarriedOutOnce()
{
    m_bench->importValid("StockID,Name,Price\nTEA-1,TEA,2\n");
    const std::int64_t id = m_bench->last;
    QCOMPARE(endOf(m_bench->import().apply(id, true, nullptr, goOn)).kind, ImportEnd::Kind::Outdated);
    QCOMPARE(QDir(m_bench->folder.path()).entryList({u"harrowby-before-import-*"_s}).size(), 1);
    QVERIFY(m_bench->import().takeBack(id, goOn));
    QCOMPARE(endOf(m_bench->import().takeBack(id, goOn)).kind, ImportEnd::Kind::Outdated);
    QCOMPARE(endOf(m_bench->import().apply(99, true, nullptr, goOn)).kind, ImportEnd::Kind::Outdated);
    const auto past = m_bench->import().past();
    QCOMPARE(past->size(), 1);
    QCOMPARE(past->constFirst().state, PastImport::State::TakenBack);
    QVERIFY(!past->constFirst().canBeTakenBack);
}

void ImportWritingTest::takenBackWhole()
{
    m_bench->addItem(u"TEA-1"_s, u"TEA"_s, u"1.5"_s);
    m_bench->addItem(u"ODD"_s, u"ODD"_s, u"'much'"_s);
    m_bench->addItem(u"NUL"_s, u"NUL"_s, u"null"_s);
    m_bench->addItem(u"BYTES"_s, u"BYTES"_s, u"x'00ff'"_s);
    m_bench->addItem(u"REAL"_s, u"REAL"_s, u"0.1 + 0.2"_s);
    m_bench->sql(u"update StockList set StockAdded = null, StockLastModified = x'41' where StockID = 'ODD'"_s);
    const QStringList before = m_bench->everything();
    const QStringList categories = m_bench->everything(u"InventoryCategory"_s);
    const ImportOutcome outcome = m_bench->importValid("StockID,StockName,StockCategory,StockCost\nTEA-1,TEE,FOOD,2\n"
                                                       "ODD,,,3\nNUL,,,3\nBYTES,,,3\nREAL,,,3\nN,NEW,TOYS,1\n");
    QCOMPARE(outcome.done, (ImportCounts{1, 5, 0, 0}));
    QCOMPARE(m_bench->items().constFirst(), u"BYTES|BYTES|DRINKS|3|2|10|Enabled"_s);
    const auto back = m_bench->import().takeBack(m_bench->last, goOn);
    QVERIFY(back);
    QCOMPARE(back->leftOut, 0);
    QCOMPARE(m_bench->everything(), before);
    QCOMPARE(m_bench->everything(u"InventoryCategory"_s), categories);
}

void ImportWritingTest::takenBackAfterSales()
{
    m_bench->addItem(u"TEA-1"_s, u"TEA"_s, u"1.5"_s);
    m_bench->importValid("StockID,Name,Price,Stock\nTEA-1,,2,50\nNEW,NEW,1,20\nSOLD,SOLD,1,20\n");
    m_bench->sql(u"update StockList set StockAvailable = StockAvailable - 3 where StockID <> 'NEW'"_s);
    const auto back = m_bench->import().takeBack(m_bench->last, goOn);
    QVERIFY(back);
    QCOMPARE(back->done, (ImportCounts{1, 1, 0, 0}));
    QCOMPARE(back->leftOut, 1);
    QCOMPARE(m_bench->items(),
             (QStringList{u"SOLD|SOLD|OTHER CATEGORY|1|0|17|Enabled"_s, u"TEA-1|TEA|DRINKS|1.5|2|7|Enabled"_s}));
    QCOMPARE(m_bench->list(m_bench->last, RowFilter::NotTakenBack).size(), 1);
}

void ImportWritingTest::takenBackButForWhatChanged()
{
    for (const QString &id : {u"A"_s, u"B"_s, u"C"_s})
        m_bench->addItem(id, u"ITEM "_s + id, u"1"_s);
    m_bench->importValid("StockID,Price,Reorder level\nA,2,9\nB,2,9\nC,2,9\n");
    m_bench->sql(u"update StockList set StockCost = 5 where StockID = 'B'"_s);
    m_bench->sql(u"update StockList set StockName = 'OTHER', StockReorderUser = 'JACK' where StockID = 'C'"_s);
    const auto back = m_bench->import().takeBack(m_bench->last, goOn);
    QCOMPARE(back->leftOut, 1);
    QCOMPARE(m_bench->rows(u"select StockID, StockName, StockCost, StockReorderLevel, StockLastModified, "
                           "StockReorderUser from StockList order by 1"_s),
             (QStringList{u"A|ITEM A|1|2|JACK|JACK"_s, u"B|ITEM B|5|9|JILL|JILL"_s, u"C|OTHER|1|2|JACK|JACK"_s}));
    QCOMPARE(m_bench->list(m_bench->last, RowFilter::NotTakenBack),
             QStringList{
                 u"3 not taken back B StockCost 2.00>5 StockReorderLevel 9>9 [: It was changed after the import.]"_s});
}

/// More kinds than statements are made for.
void ImportWritingTest::takenBackWithManyKindsOfChange()
{
    QByteArray text = "StockID,StockName,StockCategory,StockCost,StockReorderLevel,StockUse\n";
    for (int kind = 1; kind < 32; ++kind) {
        const QString id = u"I%1"_s.arg(kind, 2, 10, QChar(u'0'));
        m_bench->addItem(id, u"NAME "_s + id, u"1"_s);
        const auto cell = [&](int bit, const QString &value) { return (kind & bit) != 0 ? value : QString(); };
        text += (QStringList{id, cell(1, u"NEW "_s + id), cell(2, u"FOOD"_s), cell(4, u"2"_s), cell(8, u"7"_s),
                             cell(16, u"Disabled"_s)}
                     .join(u',') +
                 u'\n')
                    .toUtf8();
    }
    const QStringList before = m_bench->everything();
    const StagedImport staged = m_bench->stage(text);
    m_bench->sql(u"update StockList set StockCategory = 'ELSE' where StockID in ('I01', 'I02')"_s);
    const auto outcome = m_bench->import().apply(staged.id, true, nullptr, goOn);
    QCOMPARE(outcome->leftOut, 1); // the first has another category now, which its row does not bring
    QCOMPARE(m_bench->items().at(0), u"I01|NEW I01|ELSE|1|2|10|Enabled"_s);
    QCOMPARE(m_bench->items().at(30), u"I31|NEW I31|FOOD|2|7|10|Disabled"_s);
    m_bench->sql(u"update StockList set StockCategory = 'DRINKS' where StockID in ('I01', 'I02')"_s);
    QCOMPARE(m_bench->import().takeBack(staged.id, goOn)->leftOut, 0);
    QCOMPARE(m_bench->everything(), before);
}

void ImportWritingTest::codesComeAndGo()
{
    m_bench->addItem(u"TEA-1"_s, u"TEA"_s, u"1.5"_s);
    m_bench->importValid("StockID,Name,Price,Code\nTEA-1,,,111\nNEW,NEW,1,222\nKEPT,KEPT,1,333\n");
    QCOMPARE(m_bench->rows(u"select Code, StockID from HarrowbyCode order by 1"_s),
             (QStringList{u"111|TEA-1"_s, u"222|NEW"_s, u"333|KEPT"_s}));
    m_bench->sql(u"insert into HarrowbyCode values ('444', 'KEPT', 1)"_s);
    QCOMPARE(m_bench->import().takeBack(m_bench->last, goOn)->leftOut, 1);
    QCOMPARE(m_bench->rows(u"select Code, StockID from HarrowbyCode order by 1"_s),
             (QStringList{u"333|KEPT"_s, u"444|KEPT"_s}));
    QCOMPARE(m_bench->rows(u"select StockID from StockList order by 1"_s), (QStringList{u"KEPT"_s, u"TEA-1"_s}));
}

void ImportWritingTest::codesOfAFormerItemAreNotTheNewOnes()
{
    m_bench->addItem(u"A"_s, u"A"_s, u"1"_s);
    m_bench->importValid("StockID,Code\nA,111\n");
    m_bench->sql(u"delete from StockList"_s);
    m_bench->importValid("StockID,Name,Price\nA,OTHER,1\n");
    QCOMPARE(m_bench->rows(u"select Code, StockID from HarrowbyCode"_s), QStringList{u"111|"_s});
    QVERIFY(m_bench->import().takeBack(m_bench->last, goOn));
    QCOMPARE(m_bench->rows(u"select Code, StockID from HarrowbyCode"_s), QStringList{u"111|A"_s});
}

void ImportWritingTest::fileOfCodes()
{
    m_bench->addItem(u"A"_s, u"A"_s, u"1"_s);
    m_bench->addItem(u"B"_s, u"B"_s, u"1"_s);
    m_bench->importValid("StockID,Code\nA,111\nB,222\n");
    m_bench->sql(u"insert into HarrowbyCode values ('333', 'GONE', 1)"_s);
    const QByteArray text = "Code,StockID,Units\n111,A,1\n222,B,12\n333,B,\n444,A,6\n555,NONE,1\n222X,A,0\n111,A,2\n";
    const ImportChoices choices = ImportBench::choicesFor(text, ImportKind::Codes);
    const StagedImport staged = m_bench->stage(text, choices);
    QCOMPARE(m_bench->list(staged.id),
             (QStringList{u"2 unchanged 111"_s, u"3 changed 222 Units 1>12"_s, u"4 changed 333 StockID GONE>B"_s,
                          u"5 new 444 StockID >A Units >6"_s, u"6 refused 555 [StockID: There is no item NONE.]"_s,
                          u"7 refused 222X [Units: A scan can sell 1 to 32767 units.]"_s,
                          u"8 refused 111 [Code: 111 stands in 2 rows of the file, first in line 2.]"_s}));
    const QByteArray other = "Code,StockID\n222,A\n333,NONE\n";
    QCOMPARE(m_bench->list(m_bench->stage(other, ImportBench::choicesFor(other, ImportKind::Codes)).id),
             (QStringList{u"2 refused 222 [StockID: The code is taken: it belongs to B (B).]"_s,
                          u"3 refused 333 [StockID: There is no item NONE.]"_s}));
    const QStringList before = m_bench->rows(u"select * from HarrowbyCode order by 1"_s);
    QVERIFY(m_bench->import().apply(staged.id, true, nullptr, goOn));
    QCOMPARE(m_bench->rows(u"select Code, StockID, Units from HarrowbyCode order by 1"_s),
             (QStringList{u"111|A|1"_s, u"222|B|12"_s, u"333|B|1"_s, u"444|A|6"_s}));
    QVERIFY(m_bench->import().takeBack(staged.id, goOn));
    QCOMPARE(m_bench->rows(u"select * from HarrowbyCode order by 1"_s), before);
}

void ImportWritingTest::fileOfCategories()
{
    const QByteArray text = "CategoryName\nDRINKS\nFOOD\nToys\nTOYS\nTOYS\nOTHER CATEGORY\n\"\"\n";
    const StagedImport staged = m_bench->stage(text, ImportBench::choicesFor(text, ImportKind::Categories));
    QCOMPARE(m_bench->list(staged.id),
             (QStringList{
                 u"2 unchanged DRINKS"_s, u"3 new FOOD"_s, u"4 refused Toys [CategoryName: It is not in capitals.]"_s,
                 u"5 refused TOYS [CategoryName: TOYS stands in 2 rows of the file, first in line 5.]"_s,
                 u"6 refused TOYS [CategoryName: TOYS stands in 2 rows of the file, first in line 5.]"_s,
                 u"7 refused OTHER CATEGORY [CategoryName: OTHER CATEGORY is always there, and is not stored.]"_s,
                 u"8 refused  [CategoryName: The name is missing.]"_s}));
    QVERIFY(m_bench->import().apply(staged.id, true, nullptr, goOn));
    QCOMPARE(m_bench->rows(u"select * from InventoryCategory order by 1"_s),
             (QStringList{u"DRINKS|2026-01-01 08:00:00"_s, u"FOOD|2026-11-22 12:00:05"_s}));
    m_bench->addItem(u"BUN"_s, u"BUN"_s, u"1"_s, u"1"_s, u"FOOD"_s);
    QCOMPARE(m_bench->import().takeBack(staged.id, goOn)->leftOut, 1);
    QCOMPARE(m_bench->rows(u"select CategoryName from InventoryCategory order by 1"_s),
             (QStringList{u"DRINKS"_s, u"FOOD"_s}));
}

void ImportWritingTest::listIsSaved()
{
    m_bench->addItem(u"TEA-1"_s, u"TEA"_s, u"1.5"_s);
    const StagedImport staged = m_bench->stage("StockID,Name,Price\nTEA-1,TEE,2\nX,small,1\n");
    const QString target = m_bench->folder.filePath(u"list.csv"_s);
    const auto saved = m_bench->import().saveList(staged.id, RowFilter::All, target, {}, goOn);
    QVERIFY(saved);
    QCOMPARE(*saved, 2);
    QFile file(target);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(QString::fromUtf8(file.readAll()),
             u"Line,What,Key,Name,Column,Before,After,Reason\r\n"
             "2,changed,TEA-1,TEE,\"StockName\nStockCost\",\"TEA\n1.5\",\"TEE\n2.00\",\r\n"
             "3,refused,X,small,Name,,,It is not in capitals.\r\n"_s);
    QVERIFY(!m_bench->import().saveList(staged.id, RowFilter::All, u"/proc/none/list.csv"_s, {}, goOn));
}

void ImportWritingTest::listNeverReplacesTheStore()
{
    const StagedImport staged = m_bench->stage("StockID,Name,Price\nTEA-1,TEE,2\n");
    const auto intoStore = m_bench->import().saveList(staged.id, RowFilter::All, m_bench->path, {}, goOn);
    QVERIFY(!intoStore);
    QCOMPARE(intoStore.error().words,
             u"The list was not saved. This is the store file itself. Please choose another name."_s);
}

void ImportWritingTest::exportedAndImportedAgain()
{
    m_bench->addItem(u"=1+1"_s, u"-DASH"_s, u"1.5"_s);
    m_bench->addItem(u"+A"_s, u"@HOME"_s, u"0.1"_s);
    m_bench->addItem(u"B"_s, u"small"_s, u"'much'"_s, u"null"_s);
    m_bench->addItem(u"B"_s, u"SAME"_s, u"x'00'"_s, u"-3"_s, u"a, \"b\"\n;c"_s);
    m_bench->importValid("StockID,Code\n+A,111\n");
    for (const ExportKind kind : {ExportKind::Items, ExportKind::Categories, ExportKind::Codes}) {
        const QByteArray text = m_bench->exported(kind);
        const ImportKind into = kind == ExportKind::Items        ? ImportKind::Items
                                : kind == ExportKind::Categories ? ImportKind::Categories
                                                                 : ImportKind::Codes;
        ImportChoices choices = ImportBench::choicesFor(text, into);
        choices.stockInHand = true;
        const StagedImport staged = m_bench->stage(text, choices);
        QVERIFY2(staged.counts.unchanged > 0 && staged.counts.unchanged == staged.counts.all(),
                 qPrintable(m_bench->list(staged.id).join(u'\n')));
        QVERIFY(!*m_bench->import().mayImportAsStored(ImportBench::file(text), choices));
    }
}

void ImportWritingTest::storeIsEqualInAnEmptyOne()
{
    m_bench->addItem(u"=1+1"_s, u"-DASH"_s, u"1.5"_s);
    m_bench->addItem(u"B"_s, u"small"_s, u"'much'"_s, u"null"_s);
    m_bench->addItem(u"B"_s, u"O''NEIL"_s, u"x'00ff'"_s, u"-3"_s, u"a, \"b\"\n;c"_s);
    m_bench->addItem(u"B"_s, u"REAL"_s, u"0.1 + 0.2"_s, u"9e999"_s);
    m_bench->sql(
        u"insert into StockList values (null, cast(x'41ff42' as text), 'A' || char(0) || 'B', '', 9223372036854775807, "
        "1e300, x'', null, null, 5, 'x')"_s);
    m_bench->sql(u"insert into InventoryCategory values (null, 'x'), (cast(x'ff' as text), null), (x'00', 'y')"_s);
    m_bench->importValid("StockID,Code\n=1+1,111\n");
    m_bench->sql(u"insert into HarrowbyCode values ('222', '', 1), ('333', 'GONE', 0)"_s);
    ImportBench empty;
    QList<std::int64_t> ids;
    empty.sql(u"delete from InventoryCategory"_s);
    for (const auto &[kind, into] :
         {std::pair(ExportKind::Codes, ImportKind::Codes), std::pair(ExportKind::Items, ImportKind::Items),
          std::pair(ExportKind::Categories, ImportKind::Categories)}) {
        const QByteArray text = m_bench->exported(kind);
        ImportChoices choices = ImportBench::choicesFor(text, into);
        QVERIFY(*empty.import().mayImportAsStored(ImportBench::file(text), choices));
        choices.asStored = true;
        const ImportOutcome outcome = empty.importValid(text, choices);
        QCOMPARE(outcome.leftOut, 0);
        ids << empty.last;
    }
    QCOMPARE(empty.everything(), m_bench->everything());
    QCOMPARE(empty.everything(u"InventoryCategory"_s), m_bench->everything(u"InventoryCategory"_s));
    QCOMPARE(empty.everything(u"HarrowbyCode"_s), m_bench->everything(u"HarrowbyCode"_s));
    for (const std::int64_t id : ids)
        QCOMPARE(empty.import().takeBack(id, goOn)->leftOut, 0);
    QCOMPARE(empty.everything(), QStringList());
    QCOMPARE(empty.everything(u"InventoryCategory"_s), QStringList());
}

void ImportWritingTest::onlyTheLatestAreKept()
{
    for (int cost = 0; cost < 12; ++cost)
        m_bench->importValid("StockID,Name,Price\nTEA-1,TEA," + QByteArray::number(cost) + "\n");
    (void)m_bench->stage("StockID,Name,Price\nTEA-1,TEA,1\n");
    const auto past = m_bench->import().past();
    QCOMPARE(past->size(), 13);
    QCOMPARE(past->constFirst().state, PastImport::State::Staged);
    QVERIFY(past->at(10).canBeTakenBack);
    QVERIFY(!past->at(11).canBeTakenBack);
    QCOMPARE(m_bench->rows(u"select count(*) from HarrowbyImportRow"_s), QStringList{u"11"_s});
    QCOMPARE(endOf(m_bench->import().takeBack(past->at(11).id, goOn)).kind, ImportEnd::Kind::Outdated);
}

HARROWBY_CORE_TEST(app_import_writing_test, ImportWritingTest)
#include "import_writing_test.moc"
