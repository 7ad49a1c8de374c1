// SPDX-License-Identifier: MIT
#include "tables/paper.h"

#include "tests/platform/pdf_text.h"
#include "tests/program/test_program.h"

#include <QFile>
#include <QPainter>
#include <QPdfWriter>
#include <QTemporaryDir>
#include <QTest>

using namespace harrowby::tables;
using namespace Qt::StringLiterals;

namespace {

Table numbered(int rows)
{
    Table table;
    table.title = u"Sales Report"_s;
    table.notes = {u"1 Nov 2026, by item"_s};
    table.columns = {{u"Item"_s, Kind::Text, true}, {u"Amount"_s, Kind::Money, false}};
    for (int row = 1; row <= rows; ++row)
        table.rows.push_back({u"ITEM%1"_s.arg(row), row * 1.0});
    table.totals = {u"Total"_s, 4321.0};
    return table;
}

} // namespace

class PaperTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_folder;

    QList<QStringList> pages(const Table &table, const Figure &figure = {})
    {
        const QString path = m_folder.filePath(u"table.pdf"_s);
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly) || file.write(toPdf(table, figure)) <= 0)
            return {};
        file.close();
        return harrowby::testing::pdfPages(path);
    }

private Q_SLOTS:
    void everyRowIsThereOnce_data()
    {
        QTest::addColumn<int>("rows");
        for (const int rows : {0, 1, 40, 52, 53, 54, 55, 56, 57, 58, 59, 60, 61, 62, 63, 200})
            QTest::addRow("%d", rows) << rows;
    }

    void everyRowIsThereOnce()
    {
        QFETCH(const int, rows);
        const QList<QStringList> read = pages(numbered(rows));
        QStringList items;
        for (const QStringList &page : read) {
            QCOMPARE(page.filter(u"Amount"_s).size(), 1); // the headings are on each page
            for (const QString &line : page.filter(u"ITEM"_s))
                items << line.section(u' ', 0, 0);
        }
        QCOMPARE(items.size(), rows);
        for (int row = 0; row < rows; ++row)
            QCOMPARE(items.at(row), u"ITEM%1"_s.arg(row + 1));
        QCOMPARE(read.constFirst().constFirst(), u"Sales Report"_s);
        QCOMPARE(read.constLast().filter(u"4,321.00"_s).size(), 1);
        QCOMPARE(read.constLast().constLast(), u"Page %1 of %1"_s.arg(read.size()));
    }

    void thePictureTakesItsPlace()
    {
        int drawn = 0;
        const Figure figure = [&drawn](QPainter &painter, const QRectF &place) {
            ++drawn;
            QVERIFY(place.width() > 100 && place.height() > 100);
            painter.fillRect(place, Qt::black);
        };
        const auto with = pages(numbered(60), figure);
        QCOMPARE(drawn, 1);
        QVERIFY(with.constFirst().filter(u"ITEM"_s).size() < pages(numbered(60)).constFirst().filter(u"ITEM"_s).size());
    }

    void someOfThePages()
    {
        const QString path = m_folder.filePath(u"some.pdf"_s);
        {
            QPdfWriter writer(path);
            QVERIFY(drawPages(writer, numbered(200), {}, 1, 1));
        }
        const auto read = harrowby::testing::pdfPages(path);
        QCOMPARE(read.size(), 1);
        QVERIFY(read.constFirst().constLast().startsWith(u"Page 2 of "_s));
    }

    void aLineBreakWithinANameStaysInItsRow()
    {
        Table table = numbered(1);
        table.rows.front().front() = u"TWO\nLINES"_s;
        QCOMPARE(pages(table).constFirst().filter(u"TWO LINES"_s).size(), 1);
    }

    void whatCannotBeDrawnOnIsToldSo()
    {
        QPdfWriter writer(m_folder.filePath(u"none/at/all.pdf"_s));
        QVERIFY(!drawPages(writer, numbered(1), {}, 0, 9));
    }
};

HARROWBY_TEST(tables_paper_test, PaperTest)
#include "paper_test.moc"
