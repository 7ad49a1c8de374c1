// SPDX-License-Identifier: MIT
#include "tables/table.h"

#include "tests/program/test_program.h"

#include <QTest>

#include <limits>

using namespace harrowby::tables;
using namespace Qt::StringLiterals;

Q_DECLARE_METATYPE(harrowby::tables::Cell)
Q_DECLARE_METATYPE(harrowby::tables::Kind)

class TableTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void texts_data()
    {
        QTest::addColumn<Cell>("cell");
        QTest::addColumn<Kind>("kind");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<QString>("plain");
        QTest::newRow("nothing") << Cell() << Kind::Money << QString() << QString();
        QTest::newRow("text") << Cell(u"A, B"_s) << Kind::Text << u"A, B"_s << u"A, B"_s;
        QTest::newRow("money") << Cell(1234567.5) << Kind::Money << u"1,234,567.50"_s << u"1234567.50"_s;
        QTest::newRow("below zero") << Cell(-0.5) << Kind::Money << u"-0.50"_s << u"-0.50"_s;
        QTest::newRow("count") << Cell(12345.0) << Kind::Count << u"12,345"_s << u"12345"_s;
        QTest::newRow("part of one") << Cell(0.25) << Kind::Count << u"0.25"_s << u"0.25"_s;
        QTest::newRow("day") << Cell(QDate(2026, 11, 1)) << Kind::Day << u"Sun 1 Nov 2026"_s << u"2026-11-01"_s;
        QTest::newRow("text for a day") << Cell(u"(?)"_s) << Kind::Day << u"(?)"_s << u"(?)"_s;
    }

    void texts()
    {
        QFETCH(const Cell, cell);
        QFETCH(const Kind, kind);
        QTEST(shownText(cell, kind), "shown");
        QTEST(plainCell(cell, kind), "plain");
    }

    void totalsNameTheirColumns()
    {
        Table table;
        table.columns = {{u"Seller"_s, Kind::Text}, {u"Purchases"_s, Kind::Count}, {u"Amount"_s, Kind::Money}};
        QCOMPARE(totalsText(table), QString());
        table.totals = {u"Total"_s, 12.0, 1234.5};
        QCOMPARE(totalsText(table), u"Purchases: 12   Amount: 1,234.50"_s);
        table.totals = {u"Total"_s, Cell(), 1.0};
        QCOMPARE(totalsText(table), u"Amount: 1.00"_s);
    }

    void sorts_data()
    {
        QTest::addColumn<QList<Cell>>("cells");
        QTest::addColumn<Qt::SortOrder>("order");
        QTest::addColumn<QString>("sorted");
        const QList<Cell> figures = {10.0, 9.0, Cell(), u"(?)"_s, -1.0, 100.0};
        QTest::newRow("figures by value") << figures << Qt::AscendingOrder << u"-1 9 10 100 (?) "_s;
        QTest::newRow("and back") << figures << Qt::DescendingOrder << u" (?) 100 10 9 -1"_s;
        const QList<Cell> words = {u"b"_s, u"A"_s, u"a"_s, u"C"_s, QString()};
        QTest::newRow("texts without case") << words << Qt::AscendingOrder << u" A a b C"_s;
        const QList<Cell> days = {QDate(2026, 2, 1), QDate(2025, 12, 31), u"(?)"_s};
        QTest::newRow("days") << days << Qt::AscendingOrder << u"2025-12-31 2026-02-01 (?)"_s;
    }

    void sorts()
    {
        QFETCH(const QList<Cell>, cells);
        QFETCH(const Qt::SortOrder, order);
        std::vector<Row> rows;
        for (const Cell &cell : cells)
            rows.push_back({u"x"_s, cell});
        sortRows(rows, 1, order);
        QStringList texts;
        for (const Row &row : rows)
            texts << plainCell(row.at(1), Kind::Count);
        QTEST(texts.join(u' '), "sorted");
    }

    void equalRowsKeepTheirOrder()
    {
        for (const Qt::SortOrder order : {Qt::AscendingOrder, Qt::DescendingOrder}) {
            std::vector<Row> rows = {{1.0, u"first"_s}, {1.0, u"second"_s}, {1.0, u"third"_s}};
            sortRows(rows, 0, order);
            QCOMPARE(std::get<QString>(rows.at(0).at(1)), u"first"_s);
            QCOMPARE(std::get<QString>(rows.at(2).at(1)), u"third"_s);
        }
    }
};

HARROWBY_CORE_TEST(tables_table_test, TableTest)
#include "table_test.moc"
