// SPDX-License-Identifier: MIT
#include "tables/csv.h"

#include "tests/program/test_program.h"

#include <QTest>

using namespace harrowby::tables;
using namespace Qt::StringLiterals;

class CsvTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void linesEndAsTheyShould()
    {
        Table table;
        table.title = u"Title"_s;
        table.columns = {{u"Day"_s, Kind::Day}, {u"Purchases"_s, Kind::Count}, {u"Amount"_s, Kind::Money}};
        table.rows = {{QDate(2026, 11, 1), 1234.0, 1234.5}, {u"(unreadable)"_s, Cell(), -2.0}};
        table.totals = {u"Total"_s, 1235.0, 1232.5};
        QCOMPARE(toCsv(table),
                 QByteArray("Day,Purchases,Amount\r\n2026-11-01,1234,1234.50\r\n(unreadable),,-2.00\r\n"));
        table.rows.clear();
        QCOMPARE(toCsv(table), QByteArray("Day,Purchases,Amount\r\n"));
    }

    void texts_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QByteArray>("field");
        QTest::newRow("plain") << u"PEN BLUE"_s << QByteArray("PEN BLUE");
        QTest::newRow("comma") << u"PEN, BLUE"_s << QByteArray("\"PEN, BLUE\"");
        QTest::newRow("quote") << u"7\" BOX"_s << QByteArray(R"("7"" BOX")");
        QTest::newRow("line break") << u"A\r\nB"_s << QByteArray("\"A\r\nB\"");
        QTest::newRow("blanks around") << u" A "_s << QByteArray("\" A \"");
        QTest::newRow("UTF-8") << u"CR\u00c8ME"_s << QByteArray("CR\xc3\x88ME");
        QTest::newRow("=") << u"=1+1"_s << QByteArray("'=1+1");
        QTest::newRow("+") << u"+1"_s << QByteArray("'+1");
        QTest::newRow("-") << u"-1"_s << QByteArray("'-1");
        QTest::newRow("@") << u"@SUM(A1)"_s << QByteArray("'@SUM(A1)");
        QTest::newRow("behind blanks") << u" =1"_s << QByteArray("' =1");
        QTest::newRow("behind a tab") << u"\t=1"_s << QByteArray("'\t=1");
        QTest::newRow("a tab") << u"\tA"_s << QByteArray("'\tA");
        QTest::newRow("wide sign") << u"\uff1d1"_s
                                   << QByteArray("'\xef\xbc\x9d"
                                                 "1");
        QTest::newRow("with a quote in it") << u"=HYPERLINK(\"x\")"_s << QByteArray("\"'=HYPERLINK(\"\"x\"\")\"");
        QTest::newRow("apostrophe") << u"'90S MUG"_s << QByteArray("''90S MUG");
        QTest::newRow("sign within") << u"A=1"_s << QByteArray("A=1");
        QTest::newRow("empty") << QString() << QByteArray();
    }

    void texts()
    {
        QFETCH(const QString, text);
        QFETCH(const QByteArray, field);
        Table table;
        table.columns = {{u"Item"_s, Kind::Text}};
        table.rows = {{text}};
        QCOMPARE(toCsv(table), "Item\r\n" + field + "\r\n");
    }

    void aFigureBelowZeroIsNoFormula()
    {
        Table table;
        table.columns = {{u"N"_s, Kind::Count}};
        table.rows = {{-3.0}};
        QCOMPARE(toCsv(table), QByteArray("N\r\n-3\r\n"));
    }
};

HARROWBY_CORE_TEST(tables_csv_test, CsvTest)
#include "csv_test.moc"
