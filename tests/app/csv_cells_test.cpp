// SPDX-License-Identifier: MIT
#include "app/csv/csv_reader.h"
#include "app/csv/figures.h"
#include "app/csv/stored_cell.h"
#include "basic/csv_cell.h"

#include "tests/program/test_program.h"

#include <QTest>

#include <cmath>
#include <limits>

using namespace harrowby;
using namespace harrowby::app;
using namespace Qt::StringLiterals;

namespace {

const QList<StoredColumn> twoColumns = {{u"Name"_s, ColumnKind::Text}, {u"Cost"_s, ColumnKind::Figure}};

/// A row of the two columns as a file would have it, without its line end.
QByteArray exportLine(const DbValue &name, const DbValue &cost, QChar decimalSign = u'.')
{
    CsvForm form;
    form.separator = u';';
    form.decimalSign = decimalSign;
    CsvWriter out(form);
    StoredRowWriter row(out);
    row.value(twoColumns.at(0), name);
    row.value(twoColumns.at(1), cost);
    row.end();
    return out.take().chopped(2);
}

QStringList cellsIn(const QByteArray &line)
{
    CsvForm form;
    form.separator = u';';
    CsvReader reader(line, form);
    CsvRow row;
    (void)reader.next(row);
    return row.cells;
}

} // namespace

class CsvCellsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void guards_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("guarded");
        QTest::addColumn<QString>("foreign"); // the guarded text out of a file that is not our own
        QTest::newRow("plain") << u"TEA"_s << u"TEA"_s << u"TEA"_s;
        QTest::newRow("formula") << u"=1+1"_s << u"'=1+1"_s << u"=1+1"_s;
        QTest::newRow("minus") << u"-X"_s << u"'-X"_s << u"-X"_s;
        QTest::newRow("line break") << u"\nA"_s << u"'\nA"_s << u"\nA"_s;
        QTest::newRow("apostrophe") << u"'90S MUG"_s << u"''90S MUG"_s << u"''90S MUG"_s;
        QTest::newRow("guarded formula") << u"'=1"_s << u"''=1"_s << u"''=1"_s;
        QTest::newRow("empty") << u""_s << u""_s << u""_s;
    }
    void guards()
    {
        QFETCH(const QString, text);
        QFETCH(const QString, guarded);
        QFETCH(const QString, foreign);
        QCOMPARE(guardedText(text), guarded);
        QCOMPARE(unguardedText(guarded, true), text);
        QCOMPARE(unguardedText(guarded, false), foreign);
    }

    void aForeignApostropheStays()
    {
        QCOMPARE(unguardedText(u"'90S MUG"_s, false), u"'90S MUG"_s);
        QCOMPARE(unguardedText(u"'+49 30"_s, false), u"+49 30"_s);
        QCOMPARE(unguardedText(u"'"_s, false), u"'"_s);
    }

    void figures_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("byPoint"); // "" for none
        QTest::addColumn<QString>("byComma");
        const auto row = [](const char *text, const char *byPoint, const char *byComma) {
            QTest::newRow(text) << QString::fromUtf8(text) << QString::fromUtf8(byPoint) << QString::fromUtf8(byComma);
        };
        row("5", "5", "5");
        row(" -5 ", "-5", "-5");
        row("+5", "5", "5");
        row("\u22125", "-5", "-5");
        row("4.20", "4.2", "");
        row("4,20", "", "4.2");
        row("1,234", "1234", "1.234");
        row("1,234.5", "1234.5", "");
        row("1.234,5", "", "1234.5");
        row("1,234,567", "1234567", "");
        row("12,34,567", "", "");
        row("0,123", "", "0.123");
        row("1 234,50", "", "1234.5");
        row("1\u202f234.50", "1234.5", "");
        row("1'234.50", "1234.5", "");
        row("1\u2019234", "1234", "1234");
        row("1 234'567", "", "");
        row("1 23", "", "");
        row(".5", "0.5", "");
        row("5,", "", "5");
        row("1.5E3", "1500", "");
        row("8.9E+12", "8900000000000", "");
        row("\u20ac 4.20", "4.2", "");
        row("4,20 \u20ac", "", "4.2");
        row("", "", "");
        row(".", "", "");
        row("-", "", "");
        row("1e", "", "");
        row("5 pcs", "", "");
        row("--5", "", "");
        row("1e999", "", "");
        row("inf", "", "");
        row("nan", "", "");
        row("0x10", "", "");
        row("\u0661", "", "");
        row("2026-11-21", "", "");
    }
    void figures()
    {
        QFETCH(const QString, text);
        const auto number = [](const QString &expected) {
            return expected.isEmpty() ? std::nullopt : std::optional(expected.toDouble());
        };
        QFETCH(const QString, byPoint);
        QFETCH(const QString, byComma);
        QCOMPARE(readFigure(text, u'.'), number(byPoint));
        QCOMPARE(readFigure(text, u','), number(byComma));
    }

    void writtenFiguresReadBack()
    {
        using Limits = std::numeric_limits<double>;
        for (const double value : {0.0, -0.0, 5.0, 0.1, -12.5, 1e-300, 123456789.125, 1e15, 1e16, 1e17, 1e22, 1e300,
                                   Limits::max(), Limits::denorm_min(), Limits::min(), 1.0 / 3}) {
            for (const QChar sign : {u'.', u','}) {
                const QString text = writeFigure(value, sign);
                const auto back = readFigure(text, sign);
                QVERIFY2(back && *back == value && std::signbit(*back) == std::signbit(value), qPrintable(text));
                QVERIFY2(!readInteger(text), qPrintable(text));
            }
        }
        QCOMPARE(writeFigure(5.0, u','), u"5,0"_s);
        QCOMPARE(writeFigure(-0.25, u'.'), u"-0.25"_s);
        for (const std::int64_t value : {std::int64_t{0}, std::int64_t{-7}, std::numeric_limits<std::int64_t>::min(),
                                         std::numeric_limits<std::int64_t>::max()})
            QCOMPARE(readInteger(writeFigure(value)), value);
        for (const QString &text : {u"+5"_s, u"05"_s, u" 5"_s, u"-0"_s, u"5.0"_s, u""_s, u"9223372036854775808"_s})
            QVERIFY(!readInteger(text));
    }

    void storedValues_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<DbValue>("name");
        QTest::addColumn<DbValue>("cost");
        const auto row = [](const char *what, const DbValue &name, const DbValue &cost, const QByteArray &line) {
            QTest::newRow(what) << line << name << cost;
        };
        const DbValue tea = u"TEA"_s;
        const DbValue one = std::int64_t{1};
        row("usual", tea, 2.5, "TEA;2.5;");
        row("empty", u""_s, one, ";1;");
        row("nulls", {}, {}, ";;Name:null Cost:null");
        row("text for a figure", tea, u"12 pcs"_s, "TEA;12 pcs;Cost:text");
        row("figure as text", tea, u"-12.50"_s, "TEA;'-12.50;Cost:text");
        row("empty text for a figure", tea, u""_s, "TEA;;Cost:text");
        row("figures for texts", std::int64_t{-7}, one, "-7;1;Name:integer");
        row("real for a text", 7.0, one, "7.0;1;Name:real");
        row("infinite", tea, std::numeric_limits<double>::infinity(), "TEA;inf;Cost:infinite");
        row("minus infinite", -std::numeric_limits<double>::infinity(), one, "-inf;1;Name:infinite");
        row("bytes", QByteArray("\x00\xFF;", 3), QByteArray(), "0x00FF3B;0x;Name:blob Cost:blob");
        row("formula", u"=1+1"_s, one, "'=1+1;1;");
        row("separator and quote", u"A;\"B\""_s, one, R"("A;""B""";1;)");
        row("line ends", u"A\r\nB\nC\r"_s, one, "\"A\r\nB\nC\r\";1;");
        row("right to left", u"\u05e7\u05e4\u05d4 \u200f\u202e!"_s, one, "\u05e7\u05e4\u05d4 \u200f\u202e!;1;");
        row("a mark", u"\ufeffA"_s, one, "\"\ufeffA\";1;");
        row("NUL", u"A\0B\\"_s, one, R"(A\x00B\\;1;Name:escaped)");
        row("backslashes alone", u"A\\x00"_s, one, "A\\x00;1;");
    }
    void storedValues()
    {
        QFETCH(const QByteArray, line);
        QFETCH(const DbValue, name);
        QFETCH(const DbValue, cost);
        QCOMPARE(exportLine(name, cost), line);
        const auto values = readStoredRow(cellsIn(line), twoColumns, u'.');
        QVERIFY(values);
        QCOMPARE(values->size(), 2);
        QCOMPARE(values->at(1).value, cost);
        if (values->at(0).isText) // bytes of a text
            QCOMPARE(std::get<QByteArray>(values->at(0).value), std::get<QString>(name).toUtf8());
        else
            QCOMPARE(values->at(0).value, name);
    }

    void bytesOfATextComeBack()
    {
        for (const QByteArray &bytes :
             {QByteArray("\xFF"), QByteArray("A\xC3"), QByteArray("\xED\xA0\x80\\"), QByteArray("=\xFF;\"\0\n", 6),
              QByteArray("'\xC8\xC8"
                         "\xC3\x88")}) {
            CsvForm form;
            form.separator = u';';
            CsvWriter out(form);
            StoredRowWriter row(out);
            row.text(twoColumns.at(0), bytes);
            row.value(twoColumns.at(1), 1.5);
            row.end();
            const QByteArray line = out.take();
            QVERIFY(line.contains("Name:escaped"));
            const auto values = readStoredRow(cellsIn(line), twoColumns, u'.');
            QVERIFY(values);
            QVERIFY(values->at(0).isText);
            QCOMPARE(std::get<QByteArray>(values->at(0).value), bytes);
        }
    }

    void decimalCommasToo()
    {
        QCOMPARE(exportLine(0.5, u"0.5"_s, u','), QByteArray("0,5;0.5;Name:real Cost:text"));
        const auto values = readStoredRow(cellsIn("0,5;-1,5;Name:real"), twoColumns, u',');
        QVERIFY(values);
        QCOMPARE(values->at(0).value, DbValue(0.5));
        QCOMPARE(values->at(1).value, DbValue(-1.5));
    }

    void faultyRows_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<int>("column");
        QTest::newRow("no figure") << QByteArray("TEA;x;") << 1;
        QTest::newRow("empty figure") << QByteArray("TEA;;") << 1;
        QTest::newRow("not null") << QByteArray("TEA;1;Name:null") << 0;
        QTest::newRow("no hex") << QByteArray("TEA;0xZZ;Cost:blob") << 1;
        QTest::newRow("half a byte") << QByteArray("TEA;0x0;Cost:blob") << 1;
        QTest::newRow("no escape") << QByteArray("A\\x0;1;Name:escaped") << 0;
        QTest::newRow("escape cut off") << QByteArray("A\\;1;Name:escaped") << 0;
        QTest::newRow("unknown word") << QByteArray("A;1;Name:boolean") << 0;
        QTest::newRow("unknown column") << QByteArray("A;1;Size:null") << 2;
        QTest::newRow("no words") << QByteArray("A;1;whatever") << 2;
        QTest::newRow("too few") << QByteArray("A;1") << 2;
    }
    void faultyRows()
    {
        QFETCH(const QByteArray, line);
        QFETCH(const int, column);
        int found = -1;
        QVERIFY(!readStoredRow(cellsIn(line), twoColumns, u'.', &found));
        QCOMPARE(found, column);
    }

    void headings()
    {
        QCOMPARE(exportHeadings(twoColumns), (QStringList{u"Name"_s, u"Cost"_s, u"As Stored"_s}));
        QVERIFY(isExportOf(exportHeadings(itemColumns()), itemColumns()));
        QVERIFY(!isExportOf(exportHeadings(codeColumns()), itemColumns()));
        QVERIFY(isPartOfExport({u"StockName"_s, u"StockID"_s}, itemColumns()));
        QVERIFY(!isPartOfExport({u"StockName"_s, u"Colour"_s}, itemColumns()));
        QVERIFY(!isPartOfExport({}, itemColumns()));
        QCOMPARE(itemColumns().size(), 11);
    }
};

HARROWBY_CORE_TEST(app_csv_cells_test, CsvCellsTest)
#include "csv_cells_test.moc"
