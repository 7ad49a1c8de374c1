// SPDX-License-Identifier: MIT
#include "tests/app/import_desk.h"
#include "tests/program/test_program.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::app::test;

/// An import beside whatever others do to the store meanwhile, and IDs that the till could take for others.
class ImportMeanwhileTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_bench = std::make_unique<ImportBench>(); }
    void cleanup() { m_bench.reset(); }

    void categoryThatIsGoneMeanwhile();
    void categoryIsMadeAgainOnTheWayBack();
    void twinOfAnItemComesMeanwhile();
    void nameIsTakenOnTheWayBack();
    void equalRowsOnTheWayBack();
    void settledMeanwhileIsTold();
    void previewClearedAwayMeanwhile();
    void idsThatTheTillTakesForOthers();
    void idsIntoCapitals();
    void idsThatAreCodes();
    void automaticIdsThatAreCodes();
    void idBecomesACodeMeanwhile();

private:
    std::unique_ptr<ImportBench> m_bench;
};

void ImportMeanwhileTest::categoryThatIsGoneMeanwhile()
{
    m_bench->sql(u"insert into InventoryCategory values ('TOYS', 'x')"_s);
    m_bench->addItem(u"A"_s, u"A"_s, u"1"_s);
    m_bench->addItem(u"B"_s, u"B"_s, u"1"_s);
    const StagedImport staged =
        m_bench->stage("ID,Name,Price,Category\nA,,2,TOYS\nB,,2,\nC,C,1,TOYS\nD,D,1,FOOD\nE,E,1,OTHER CATEGORY\n");
    m_bench->sql(u"update InventoryCategory set CategoryName = 'GAMES' where CategoryName = 'TOYS'"_s);
    QCOMPARE(endOf(m_bench->import().apply(staged.id, false, nullptr, goOn)).kind, ImportEnd::Kind::StoreChanged);
    const auto outcome = m_bench->import().apply(staged.id, true, nullptr, goOn);
    QVERIFY2(outcome, qPrintable(endOf(outcome).words));
    QCOMPARE(outcome->done, (ImportCounts{2, 1, 0, 0}));
    QCOMPARE(outcome->leftOut, 2);
    QCOMPARE(m_bench->rows(u"select StockID || ' ' || StockCategory || ' ' || StockCost from StockList order by 1"_s),
             (QStringList{u"A DRINKS 1"_s, u"B DRINKS 2"_s, u"D FOOD 1"_s, u"E OTHER CATEGORY 1"_s}));
    const QStringList left = m_bench->list(staged.id, RowFilter::LeftOut);
    QVERIFY2(left.constFirst().endsWith(u"[: Its category has been renamed or deleted since the preview.]"_s),
             qPrintable(left.join(u'\n')));
}

void ImportMeanwhileTest::categoryIsMadeAgainOnTheWayBack()
{
    m_bench->addItem(u"A"_s, u"A"_s, u"1"_s);
    m_bench->addItem(u"B"_s, u"B"_s, u"1"_s, u"1"_s, u"OTHER CATEGORY"_s);
    m_bench->addItem(u"C"_s, u"C"_s, u"1"_s, u"1"_s, u"never stored"_s);
    m_bench->importValid("ID,Category\nA,FOOD\nB,FOOD\nC,FOOD\n");
    m_bench->sql(u"delete from InventoryCategory where CategoryName = 'DRINKS'"_s);
    QCOMPARE(m_bench->import().takeBack(m_bench->last, goOn)->leftOut, 0);
    QCOMPARE(m_bench->rows(u"select StockCategory from StockList order by StockID"_s),
             (QStringList{u"DRINKS"_s, u"OTHER CATEGORY"_s, u"never stored"_s}));
    QCOMPARE(m_bench->rows(u"select CategoryName from InventoryCategory"_s), QStringList{u"DRINKS"_s});
}

/// Which of the two the row is about, nobody knows any more.
void ImportMeanwhileTest::twinOfAnItemComesMeanwhile()
{
    m_bench->addItem(u"A"_s, u"A"_s, u"1"_s);
    m_bench->addItem(u"B"_s, u"B"_s, u"1"_s);
    const StagedImport staged = m_bench->stage("ID,Price\nA,2\nB,2\n");
    m_bench->addItem(u"A"_s, u"A"_s, u"1"_s);
    const auto outcome = m_bench->import().apply(staged.id, true, nullptr, goOn);
    QVERIFY2(outcome, qPrintable(endOf(outcome).words));
    QCOMPARE(outcome->leftOut, 1);
    QCOMPARE(m_bench->rows(u"select StockID || ' ' || StockCost from StockList order by 1"_s),
             (QStringList{u"A 1"_s, u"A 1"_s, u"B 2"_s}));
}

void ImportMeanwhileTest::nameIsTakenOnTheWayBack()
{
    m_bench->addItem(u"A"_s, u"Tea"_s, u"1"_s);
    m_bench->addItem(u"B"_s, u"BUN"_s, u"1"_s);
    m_bench->importValid("ID,Name\nA,GREEN\nB,ROLL\n");
    m_bench->addItem(u"X"_s, u"TEA"_s, u"1"_s);
    const auto back = m_bench->import().takeBack(m_bench->last, goOn);
    QVERIFY2(back, qPrintable(endOf(back).words));
    QCOMPARE(back->leftOut, 1);
    QCOMPARE(m_bench->rows(u"select StockName from StockList order by StockID"_s),
             (QStringList{u"GREEN"_s, u"BUN"_s, u"TEA"_s}));
    const QStringList left = m_bench->list(m_bench->last, RowFilter::NotTakenBack);
    QVERIFY2(left.constFirst().endsWith(u"[: Another item has its former name by now.]"_s),
             qPrintable(left.join(u'\n')));
}

/// Two equal rows that went in as they stood, of which a till has deleted one.
void ImportMeanwhileTest::equalRowsOnTheWayBack()
{
    m_bench->addItem(u"A"_s, u"A"_s, u"1"_s);
    m_bench->addItem(u"A"_s, u"A"_s, u"1"_s);
    m_bench->addItem(u"B"_s, u"B"_s, u"1"_s);
    m_bench->sql(u"insert into InventoryCategory values ('FOOD', 'x'), ('FOOD', 'x')"_s);
    ImportBench empty;
    empty.sql(u"delete from InventoryCategory"_s);
    for (const auto &[kind, into] :
         {std::pair(ExportKind::Categories, ImportKind::Categories), std::pair(ExportKind::Items, ImportKind::Items)}) {
        const QByteArray text = m_bench->exported(kind);
        ImportChoices choices = ImportBench::choicesFor(text, into);
        choices.asStored = true;
        empty.importValid(text, choices);
        const QString table = into == ImportKind::Items ? u"StockList"_s : u"InventoryCategory"_s;
        const QString name = into == ImportKind::Items ? u"StockID = 'A'"_s : u"CategoryName = 'FOOD'"_s;
        empty.sql(u"delete from %1 where rowid = (select min(rowid) from %1 where %2)"_s.arg(table, name));
        const auto back = empty.import().takeBack(empty.last, goOn);
        QVERIFY2(back, qPrintable(endOf(back).words));
        QCOMPARE(back->done.fresh, 1);
        QCOMPARE(back->leftOut, 2);
        QCOMPARE(empty.rows(u"select count(*) from %1"_s.arg(table)), QStringList{u"1"_s});
    }
    // A new item that stands there twice by now.
    m_bench->importValid("ID,Name,Price\nC,C,1\n");
    m_bench->sql(u"insert into StockList select * from StockList where StockID = 'C'"_s);
    QCOMPARE(m_bench->import().takeBack(m_bench->last, goOn)->leftOut, 1);
}

void ImportMeanwhileTest::settledMeanwhileIsTold()
{
    for (const auto &[state, words] :
         {std::pair(u"SETTLED"_s, u"This import was too long ago: its rows are not kept any longer."_s),
          std::pair(u"TAKENBACK"_s, u"This import has been taken back already."_s)}) {
        m_bench->importValid("ID,Name,Price\nA,A,1\n");
        const std::int64_t id = m_bench->last;
        const auto settle = [&, state = state](const WorkStep &) {
            m_bench->sql(u"update HarrowbyImport set State = '%1' where ImportID = %2"_s.arg(state).arg(id));
            return true;
        };
        QCOMPARE(endOf(m_bench->import().takeBack(id, settle)), (ImportEnd{ImportEnd::Kind::Outdated, words}));
        m_bench->sql(u"delete from StockList"_s);
    }
}

/// Another office clears a preview away while it is still being made.
void ImportMeanwhileTest::previewClearedAwayMeanwhile()
{
    QByteArray text = "ID,Name,Price\n";
    for (int i = 0; i < 2500; ++i)
        text += "N" + QByteArray::number(i) + ",NAME " + QByteArray::number(i) + ",1\n";
    for (const QString &meddling :
         {u"delete from HarrowbyImport"_s, u"update HarrowbyImport set State = 'CLEARING'"_s}) {
        int steps = 0;
        const auto clear = [&](const WorkStep &step) {
            steps += step.words.startsWith(u"The rows are being compared"_s) ? 1 : 0;
            if (steps == 1)
                m_bench->sql(meddling);
            return true;
        };
        const auto staged = m_bench->import().stage(ImportBench::file(text), ImportBench::choicesFor(text), clear);
        QVERIFY(!staged);
        QCOMPARE(staged.error().kind, ImportEnd::Kind::Outdated);
        QCOMPARE(steps, 1); // the next piece finds it
        QCOMPARE(m_bench->rows(u"select count(*) from HarrowbyImportRow"_s), QStringList{u"0"_s});
        QCOMPARE(m_bench->rows(u"select count(*) from HarrowbyImport"_s), QStringList{u"0"_s});
    }
}

void ImportMeanwhileTest::idsThatTheTillTakesForOthers()
{
    m_bench->addItem(u"tea"_s, u"TEA"_s, u"1.5"_s);
    m_bench->addItem(u"é1"_s, u"ECLAIR"_s, u"1.5"_s);
    const auto like =
        u"[ID: It is the ID of %1 but for small letters and capitals, which the till does not tell apart.]"_s;
    const auto twice =
        u"[ID: But for small letters and capitals the ID stands in 2 rows of the file, first in line 5.]"_s;
    QCOMPARE(m_bench->list(m_bench->stage("ID,Name,Price\ntea,,1.50\nTEA,B,1\nÉ1,C,1\nx,D,1\nX,E,1\ny,F,1\n").id),
             (QStringList{u"2 unchanged tea"_s, u"3 refused TEA %1"_s.arg(like.arg(u"TEA (tea)"_s)),
                          u"4 refused É1 %1"_s.arg(like.arg(u"ECLAIR (é1)"_s)), u"5 refused x %1"_s.arg(twice),
                          u"6 refused X %1"_s.arg(twice), u"7 refused y [ID: It is not in capitals.]"_s}));
}

void ImportMeanwhileTest::idsIntoCapitals()
{
    m_bench->addItem(u"tea"_s, u"TEA"_s, u"1.5"_s);
    const QByteArray text = "ID,Name,Price\ntea,tea,2\nbun-1,Bun,1\nham,Ham,1\nHam,Hem,1\n";
    ImportChoices choices = ImportBench::choicesFor(text);
    choices.putIntoCapitals = true;
    QCOMPARE(m_bench->stage(text, choices).counts, (ImportCounts{1, 1, 0, 2}));
    m_bench->importValid(text, choices);
    QCOMPARE(m_bench->rows(u"select StockID || ' ' || StockName from StockList order by StockName"_s),
             (QStringList{u"BUN-1 BUN"_s, u"tea TEA"_s}));
    // The same file finds what it has made.
    QCOMPARE(m_bench->stage(text, choices).counts, (ImportCounts{0, 0, 2, 2}));
}

void ImportMeanwhileTest::idsThatAreCodes()
{
    m_bench->addItem(u"TEA-1"_s, u"TEA"_s, u"1.5"_s);
    m_bench->importValid("StockID,Code\nTEA-1,4006381333931\n");
    m_bench->sql(u"insert into HarrowbyCode values ('777', 'GONE', 1), ('ABC', 'TEA-1', 1)"_s);
    const auto taken = u"[ID: It is a code of TEA (TEA-1): a scan would find two items.]"_s;
    QCOMPARE(m_bench->list(m_bench->stage("ID,Name,Price\n04006381333931,A,1\nABC,B,1\n777,C,1\n").id).first(2),
             (QStringList{u"2 refused 04006381333931 %1"_s.arg(taken), u"3 refused ABC %1"_s.arg(taken)}));
    QCOMPARE(m_bench->list(m_bench->last, RowFilter::New).size(), 1);
}

/// Codes of the store and of the file, whatever item they belong to.
void ImportMeanwhileTest::automaticIdsThatAreCodes()
{
    m_bench->addItem(u"TEA-1"_s, u"TEA"_s, u"1.5"_s);
    m_bench->importValid("StockID,Code\nTEA-1,DRI-0001\n");
    m_bench->importValid("StockID,StockName,StockCategory,StockCost,Code\n"
                         ",COLA,DRINKS,1,DRI-0003\n,JUICE,DRINKS,1,\n");
    QCOMPARE(m_bench->rows(u"select StockID || ' ' || StockName from StockList order by 1"_s),
             (QStringList{u"DRI-0002 COLA"_s, u"DRI-0004 JUICE"_s, u"TEA-1 TEA"_s}));
}

/// Another office gives an item the code that is the ID of a new one.
void ImportMeanwhileTest::idBecomesACodeMeanwhile()
{
    m_bench->addItem(u"TEA-1"_s, u"TEA"_s, u"1.5"_s);
    m_bench->importValid("StockID,Code\nTEA-1,4006381333931\n");
    const StagedImport staged = m_bench->stage("ID,Name,Price\nABC,A,1\nDEF,B,1\nGHI,C,1\n");
    m_bench->sql(u"insert into HarrowbyCode values ('ABC', 'TEA-1', 1), ('GHI', 'GONE', 1)"_s);
    QCOMPARE(endOf(m_bench->import().apply(staged.id, false, nullptr, goOn)).kind, ImportEnd::Kind::StoreChanged);
    const auto outcome = m_bench->import().apply(staged.id, true, nullptr, goOn);
    QVERIFY2(outcome, qPrintable(endOf(outcome).words));
    QCOMPARE(outcome->leftOut, 1);
    QCOMPARE(m_bench->rows(u"select StockID from StockList order by 1"_s),
             (QStringList{u"DEF"_s, u"GHI"_s, u"TEA-1"_s}));
    QCOMPARE(m_bench->list(staged.id, RowFilter::LeftOut).size(), 1);
}

HARROWBY_CORE_TEST(app_import_meanwhile_test, ImportMeanwhileTest)
#include "import_meanwhile_test.moc"
