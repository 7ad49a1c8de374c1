// SPDX-License-Identifier: MIT
#include "app/csv/stored_cell.h"
#include "app/export/export.h"
#include "tests/app/import_desk.h"
#include "tests/app/store_files.h"
#include "tests/program/test_program.h"

#include <QFile>
#include <QRandomGenerator>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace harrowby::app;
using namespace harrowby::app::test;

namespace {

/// Repeated letters would be compressed, and fit.
QString randomLetters(int count)
{
    QRandomGenerator random(1);
    QString letters;
    for (int i = 0; i < count; ++i)
        letters += QChar(u'A' + random.bounded(26));
    return letters;
}

/// An export of items with these cells in its last columns, "StockID" and what "As Stored" says.
QByteArray exportWith(const QString &id, const QString &name, const QString &cost, const QString &asStored)
{
    return (exportHeadings(itemColumns()).join(u',') + u'\n' + id + u',' + name + u",DRINKS,"_s + cost +
            u",1,5,Enabled,,,,,"_s + asStored + u'\n')
        .toUtf8();
}

ImportChoices asStored(const QByteArray &text)
{
    ImportChoices choices = ImportBench::choicesFor(text);
    choices.asStored = true;
    return choices;
}

QByteArray exportOf(const QString &store, const QString &target, const ExportRequest &request)
{
    const ExportEnd end = exportList(store, target, request, goOn);
    QFile file(target);
    if (end.outcome != ExportEnd::Outcome::Done || !file.open(QIODevice::ReadOnly))
        return "not written: " + end.problem.toUtf8();
    return file.readAll();
}

} // namespace

/// What is otherwise with lists in and out of a store on a server, and what is not.
class ImportServerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_bench = std::make_unique<ImportBench>(); }
    void cleanup() { m_bench.reset(); }

    void textThatNoIndexTakesIsRefused()
    {
        const QString name = randomLetters(3000);
        const QByteArray text = "StockID,StockName,StockCategory,StockCost,Code\nA-1," + name.toUtf8() + ",NEW,1," +
                                "12345\nB-1,BREAD," + name.toUtf8() + ",1,\n" + name.toUtf8() +
                                ",BUN,DRINKS,1,\nC-1,CAKE,DRINKS,1,\n";
        ImportChoices choices = ImportBench::choicesFor(text);
        choices.makeCategories = true;
        const ImportOutcome outcome = m_bench->importValid(text, choices);
        QCOMPARE(outcome.done.fresh, 1);
        const QStringList refused = m_bench->list(m_bench->last, RowFilter::Refused);
        QCOMPARE(refused.size(), 3);
        QVERIFY2(
            refused.at(0).endsWith(u"[: The server cannot store it: a text that a server looks for has at most 2600 "
                                   "bytes (StockName).]"_s),
            qPrintable(refused.at(0).right(200)));
        QCOMPARE(m_bench->rows(u"select StockID from StockList"_s), QStringList{u"C-1"_s});
        QCOMPARE(m_bench->rows(u"select Code from HarrowbyCode"_s), QStringList()); // that of the refused row
    }

    void textInFiguresColumnIsRefused()
    {
        const QByteArray text = exportWith(u"A-1"_s, u"TEA"_s, u"cheap"_s, u"StockCost:text"_s);
        const StagedImport staged = m_bench->stage(text, asStored(text));
        QCOMPARE(staged.counts.refused, 1);
        QCOMPARE(
            m_bench->list(staged.id),
            QStringList{u"2 refused A-1 [: The server cannot store it: a column of figures on a server holds no text "
                        "(StockCost).]"_s});
    }

    void bytesAreRefused()
    {
        const QByteArray text = exportWith(u"A-1"_s, u"0x4142"_s, u"1"_s, u"StockName:blob"_s);
        QCOMPARE(m_bench->stage(text, asStored(text)).counts.refused, 1);
    }

    void numberInTextsColumnIsItsText()
    {
        const QByteArray text = exportWith(u"7"_s, u"42"_s, u"1.5"_s, u"StockID:integer StockName:integer"_s);
        QCOMPARE(m_bench->importValid(text, asStored(text)).done.fresh, 1);
        QCOMPARE(m_bench->items(), QStringList{u"7|42|DRINKS|1.5|1|5|Enabled"_s});
    }

    /// The very same bytes.
    void listsAreThoseOfAFile_data()
    {
        QTest::addColumn<ExportRequest>("request");
        QTest::newRow("items") << ExportRequest{ExportKind::Items, {}, {}, {}};
        QTest::newRow("categories") << ExportRequest{ExportKind::Categories, {}, {}, {}};
        QTest::newRow("codes") << ExportRequest{ExportKind::Codes, {}, {}, {}};
        QTest::newRow("purchases") << ExportRequest{ExportKind::Purchases, {}, {}, {}};
        QTest::newRow("purchases of some days")
            << ExportRequest{ExportKind::Purchases, {}, QDate(2026, 3, 1), QDate(2026, 3, 31)};
        QTest::newRow("purchases from a day on") << ExportRequest{ExportKind::Purchases, {}, QDate(2026, 3, 5), {}};
    }

    void listsAreThoseOfAFile()
    {
        QFETCH(ExportRequest, request);
        const QString file = m_bench->folder.filePath(u"file.db"_s);
        makeStore(file);
        runAll(file, {u"DELETE FROM StockList"_s, u"DELETE FROM InventoryCategory"_s});
        runAll(m_bench->path, {u"DELETE FROM InventoryCategory"_s});
        for (const QString &store : {file, m_bench->path}) {
            const auto records = openStoreRecords(store, Access::Write);
            QVERIFY(records);
            QVERIFY(!(*records)->records().prepare(kept::code()));
            runAll(store, content());
        }
        const QString target = m_bench->folder.filePath(u"list.csv"_s);
        const QByteArray expected = exportOf(file, target, request);
        QVERIFY2(expected.count('\n') > 2, expected.constData());
        QCOMPARE(exportOf(m_bench->path, target, request), expected);
    }

    void aListCanBeStopped()
    {
        m_bench->sql(u"INSERT INTO PurchaseCart (PurchaseID, PurchasedDate) SELECT 'P' || i, '260301' || i FROM "
                     "generate_series(1, 20000) AS i"_s);
        int looks = 0;
        const QString target = m_bench->folder.filePath(u"list.csv"_s);
        const ExportEnd end = exportList(m_bench->path, target, {ExportKind::Purchases, {}, {}, {}},
                                         [&looks](const WorkStep &) { return ++looks < 5; });
        QCOMPARE(end.outcome, ExportEnd::Outcome::Stopped);
        QVERIFY(!QFile::exists(target));
    }

private:
    static QStringList content()
    {
        QStringList statements;
        for (const QString &values :
             {u"'B-1', 'BREAD, \"dark\"', 'BAKERY', 1.25, 3, 20, 'Enabled', '01-Mar-26 08:00:00', 'ANN', 'ANN', ''"_s,
              u"'A-1', 'TEA', 'DRINKS', 1234567.5, 0, -2.5, 'Enabled', '', null, null, null"_s,
              u"'é', 'CAF\u00c9', null, null, null, 0, 'Disabled', '', '', '', ''"_s,
              u"'=1+1', ' odd ', '', 0.1, 1e20, 3, '', '', '', '', ''"_s})
            statements << u"INSERT INTO StockList VALUES (%1)"_s.arg(values);
        statements << u"UPDATE StockList SET StockAvailable = 19 WHERE StockID = 'B-1'"_s
                   << u"INSERT INTO InventoryCategory VALUES ('DRINKS', 'x'), ('BAKERY', null), ('', '')"_s
                   << u"INSERT INTO HarrowbyCode VALUES ('222', 'A-1', 6), ('111', 'B-1', 1), ('GONE', 'Z', 1)"_s;
        for (const QString &values :
             {u"'P2', 'TEA\nMILK', 3, 12.5, '260305101010', 'ANN'"_s, u"'P1', 'TEA', 1, 2, '260301080000', 'ANN'"_s,
              u"'P3', null, null, null, null, null"_s, u"'P4', '', 0, 0, 'no date', ''"_s,
              u"'P5', '', 0, 0, '260401000000', ''"_s, u"'P0', '', 0, 0, '260305101010', ''"_s})
            statements << u"INSERT INTO PurchaseCart VALUES (%1)"_s.arg(values);
        return statements;
    }

    std::unique_ptr<ImportBench> m_bench;
};

HARROWBY_CORE_TEST(app_import_server_test, ImportServerTest)
#include "import_server_test.moc"
