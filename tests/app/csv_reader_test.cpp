// SPDX-License-Identifier: MIT
#include "app/csv/csv_reader.h"
#include "app/csv/csv_writer.h"

#include "tests/program/test_program.h"

#include <QTest>

using namespace harrowby::app;
using namespace Qt::StringLiterals;

namespace {

using RowFault = CsvFault::Kind;

QList<CsvRow> rowsOf(const QByteArray &bytes, const CsvForm &form = {})
{
    QList<CsvRow> rows;
    CsvReader reader(bytes, form);
    for (CsvRow row; reader.next(row);)
        rows << row;
    return rows;
}

QList<QStringList> cellsOf(const QByteArray &bytes, const CsvForm &form = {})
{
    QList<QStringList> cells;
    for (const CsvRow &row : rowsOf(bytes, form))
        cells << row.cells;
    return cells;
}

/// As "line-lastLine", then "fault@line:column".
QStringList placesOf(const QByteArray &bytes, const CsvForm &form = {})
{
    QStringList places;
    for (const CsvRow &row : rowsOf(bytes, form)) {
        QString place = u"%1-%2"_s.arg(row.line).arg(row.lastLine);
        if (row.fault)
            place += u" %1@%2:%3"_s.arg(static_cast<int>(row.fault->kind)).arg(row.fault->line).arg(row.fault->column);
        places << place;
    }
    return places;
}

QString faultAt(RowFault kind, int line, int column)
{
    return u" %1@%2:%3"_s.arg(static_cast<int>(kind)).arg(line).arg(column);
}

CsvForm encodedAs(CsvEncoding encoding)
{
    CsvForm form;
    form.encoding = encoding;
    return form;
}

QByteArray utf16(QStringView text, bool isLittle)
{
    QByteArray bytes;
    for (const QChar unit : text) {
        const char halves[] = {static_cast<char>(unit.cell()), static_cast<char>(unit.row())};
        bytes.append(halves[isLittle ? 0 : 1]).append(halves[isLittle ? 1 : 0]);
    }
    return bytes;
}

} // namespace

class CsvReaderTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cells_data()
    {
        using Rows = QList<QStringList>;
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<Rows>("rows");
        QTest::newRow("nothing") << QByteArray() << Rows();
        QTest::newRow("a mark alone") << QByteArray("\xEF\xBB\xBF") << Rows();
        QTest::newRow("empty lines") << QByteArray("\n\r\n\r") << Rows();
        QTest::newRow("one cell") << QByteArray("A") << Rows{{u"A"_s}};
        QTest::newRow("LF, CRLF and CR") << QByteArray("A,B\nC,D\r\nE,F\rG,H")
                                         << Rows{
                                                {u"A"_s, u"B"_s}, {u"C"_s, u"D"_s}, {u"E"_s, u"F"_s}, {u"G"_s, u"H"_s}};
        QTest::newRow("empty lines between")
            << QByteArray("A,B\n\n\r\nC,D\n\n") << Rows{{u"A"_s, u"B"_s}, {u"C"_s, u"D"_s}};
        QTest::newRow("empty cells") << QByteArray(",,\n\"\",x,\n")
                                     << Rows{{u""_s, u""_s, u""_s}, {u""_s, u"x"_s, u""_s}};
        QTest::newRow("quoted empty line") << QByteArray("A\n\"\"\nB\n") << Rows{{u"A"_s}, {u""_s}, {u"B"_s}};
        QTest::newRow("quotes") << QByteArray("\"A,B\",\"say \"\"hi\"\"\",\"\"\"\"\n")
                                << Rows{{u"A,B"_s, u"say \"hi\""_s, u"\""_s}};
        QTest::newRow("line breaks in cells")
            << QByteArray("\"A\r\nB\nC\rD\",E\nF,G") << Rows{{u"A\r\nB\nC\rD"_s, u"E"_s}, {u"F"_s, u"G"_s}};
        QTest::newRow("blanks are kept") << QByteArray(" A , B") << Rows{{u" A "_s, u" B"_s}};
        QTest::newRow("but not around quotes") << QByteArray(" \"A\" ,  \"B, C\"  \n") << Rows{{u"A"_s, u"B, C"_s}};
        QTest::newRow("a quote within") << QByteArray("7\" BOX,5'\"x\n") << Rows{{u"7\" BOX"_s, u"5'\"x"_s}};
        QTest::newRow("UTF-8") << QByteArray("CR\xC3\x88ME,\xF0\x9F\x8D\x8E")
                               << Rows{{u"CR\u00c8ME"_s, u"\U0001F34E"_s}};
        QTest::newRow("mark") << QByteArray("\xEF\xBB\xBF\"A\",B") << Rows{{u"A"_s, u"B"_s}};
        QTest::newRow("a mark in a cell") << QByteArray("A,\xEF\xBB\xBF"
                                                        "B")
                                          << Rows{{u"A"_s, u"\ufeffB"_s}};
        QTest::newRow("named separator") << QByteArray("sep=;\r\nA;B,C\n") << Rows{{u"A"_s, u"B,C"_s}};
        QTest::newRow("no named separator") << QByteArray("sep=x\nsep=;,A") << Rows{{u"sep=x"_s}, {u"sep=;"_s, u"A"_s}};
        QTest::newRow("a cell like a name")
            << QByteArray("sep=;A,B\n1,2") << Rows{{u"sep=;A"_s, u"B"_s}, {u"1"_s, u"2"_s}};
    }
    void cells()
    {
        QFETCH(const QByteArray, bytes);
        QFETCH(const QList<QStringList>, rows);
        QCOMPARE(cellsOf(bytes), rows);
    }

    void encodings()
    {
        const QString text = u"NAME,PRICE\r\nCR\u00c8ME \u20ac,\U0001F34E\r\n"_s;
        const QList<QStringList> rows = {{u"NAME"_s, u"PRICE"_s}, {u"CR\u00c8ME \u20ac"_s, u"\U0001F34E"_s}};
        for (const bool isLittle : {true, false}) {
            const CsvForm form = encodedAs(isLittle ? CsvEncoding::Utf16LittleEndian : CsvEncoding::Utf16BigEndian);
            QCOMPARE(cellsOf(utf16(text, isLittle), form), rows);
            QCOMPARE(cellsOf(utf16(u'\ufeff' + text, isLittle), form), rows);
        }
        QCOMPARE(cellsOf("\x80,CR\xC8ME\n", encodedAs(CsvEncoding::Windows1252)),
                 (QList<QStringList>{{u"\u20ac"_s, u"CR\u00c8ME"_s}}));
    }

    void places_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QStringList>("places");
        const QString good = u"1-1"_s;
        QTest::newRow("lines") << QByteArray("A,B\n\n\nC,\"x\r\ny\nz\"\rD,E") << QStringList{good, u"4-6"_s, u"7-7"_s};
        QTest::newRow("too few") << QByteArray("A,B\nC\n")
                                 << QStringList{good, u"2-2"_s + faultAt(RowFault::TooFew, 2, 1)};
        QTest::newRow("too many") << QByteArray("A,B\nC,D,E\n")
                                  << QStringList{good, u"2-2"_s + faultAt(RowFault::TooMany, 2, 2)};
        QTest::newRow("an open quote") << QByteArray("A,B\nC,D\nE,\"F\nG,H\nI,J\n")
                                       << QStringList{good, u"2-2"_s, u"3-6"_s + faultAt(RowFault::OpenQuote, 3, 1)};
        QTest::newRow("an open quote at the end")
            << QByteArray("A,\"") << QStringList{good + faultAt(RowFault::OpenQuote, 1, 1)};
        QTest::newRow("behind a quote") << QByteArray("A,B\n\"C\"D,E\n")
                                        << QStringList{good, u"2-2"_s + faultAt(RowFault::BehindQuote, 2, 0)};
        QTest::newRow("NUL") << QByteArray("A,B\nC,D\0\nE,F\n", 12)
                             << QStringList{good, u"2-2"_s + faultAt(RowFault::Nul, 2, 1), u"3-3"_s};
        QTest::newRow("no UTF-8") << QByteArray("A,B\n\"x\n\xFF\",D\nE,\xC3\nF,G")
                                  << QStringList{good, u"2-3"_s + faultAt(RowFault::Undecodable, 2, 0),
                                                 u"4-4"_s + faultAt(RowFault::Undecodable, 4, 1), u"5-5"_s};
        QTest::newRow("half a character")
            << QByteArray("A\xED\xA0\x80,B") << QStringList{good + faultAt(RowFault::Undecodable, 1, 0)};
        QTest::newRow("the first fault counts") << QByteArray("A,B\nC,\"\0\"x,\xFF\n", 13)
                                                << QStringList{good, u"2-2"_s + faultAt(RowFault::BehindQuote, 2, 1)};
        QTest::newRow("a line behind the separator's")
            << QByteArray("sep=,\nA,B\nC\n") << QStringList{u"2-2"_s, u"3-3"_s + faultAt(RowFault::TooFew, 3, 1)};
    }
    void places()
    {
        QFETCH(const QByteArray, bytes);
        QFETCH(const QStringList, places);
        QCOMPARE(placesOf(bytes), places);
    }

    void otherEncodingsHaveFaultsToo()
    {
        const auto fault = [](const QByteArray &bytes, CsvEncoding encoding) {
            return placesOf(bytes, encodedAs(encoding));
        };
        QCOMPARE(fault("A\nB\x81\n", CsvEncoding::Windows1252),
                 (QStringList{u"1-1"_s, u"2-2"_s + faultAt(RowFault::Undecodable, 2, 0)}));
        const QStringList bad = {u"1-1"_s, u"2-2"_s + faultAt(RowFault::Undecodable, 2, 0)};
        const QString half = u"A\nB"_s + QChar(0xD800) + u"\n"_s;
        QCOMPARE(fault(utf16(half, true), CsvEncoding::Utf16LittleEndian), bad);
        QCOMPARE(fault(utf16(half, false), CsvEncoding::Utf16BigEndian), bad);
        QCOMPARE(fault(utf16(u"A\nB", true) + 'x', CsvEncoding::Utf16LittleEndian), bad);
    }

    void everyFaultHasWords()
    {
        QSet<QString> words;
        for (int kind = 0; kind <= static_cast<int>(RowFault::TooMany); ++kind)
            words << faultWords(static_cast<RowFault>(kind));
        QCOMPARE(words.size(), 6);
        QVERIFY(!words.contains(QString()));
    }

    /// A row stays whole when the next one is read into the same one.
    void aKeptCellStays()
    {
        const QByteArray bytes = "FIRST,1\nSECOND,2\n";
        CsvReader reader(bytes, {});
        CsvRow row;
        QVERIFY(reader.next(row));
        QCOMPARE(reader.percent(), 47);
        const QStringList kept = row.cells;
        QVERIFY(reader.next(row));
        QCOMPARE(kept, (QStringList{u"FIRST"_s, u"1"_s}));
        QCOMPARE(reader.percent(), 100);
        QVERIFY(!reader.next(row));
        QVERIFY(row.cells.isEmpty());
    }

    void aRowWithoutEndIsCut()
    {
        const QByteArray bytes = "A,B\n" + QByteArray(5'000'000, ',') + "\nC,D\n";
        const auto rows = rowsOf(bytes);
        QCOMPARE(rows.size(), 3);
        QCOMPARE(rows.at(1).cells.size(), CsvReader::mostCells);
        QCOMPARE(rows.at(1).fault->kind, RowFault::TooMany);
        QCOMPARE(rows.at(2).cells, (QStringList{u"C"_s, u"D"_s}));
    }

    /// What makes a careless reader begin again and again: seconds instead of milliseconds for a few megabytes.
    void nothingTakesLong_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("quotes") << QByteArray(1'000'000, '"');
        QTest::newRow("open quotes") << QByteArray("\"\n").repeated(300'000) + '"';
        QTest::newRow("doubled quotes") << QByteArray(3, '"').append(',').repeated(300'000);
        QTest::newRow("one long cell") << '"' + QByteArray("ab\"\"\r\n").repeated(200'000);
        QTest::newRow("blanks") << QByteArray(1'000'000, ' ');
        QTest::newRow("blanks before quotes") << QByteArray("   \"x\"   y").repeated(100'000);
        QTest::newRow("bad bytes") << QByteArray(1'000'000, '\xC3');
    }
    void nothingTakesLong()
    {
        QFETCH(const QByteArray, bytes);
        for (const auto encoding : {CsvEncoding::Utf8, CsvEncoding::Utf16BigEndian, CsvEncoding::Windows1252}) {
            QElapsedTimer timer;
            timer.start();
            qsizetype letters = 0;
            CsvReader reader(bytes, encodedAs(encoding));
            for (CsvRow row; reader.next(row);) {
                for (const QString &cell : row.cells)
                    letters += cell.size();
            }
            QVERIFY(letters <= bytes.size());
            QVERIFY2(timer.elapsed() < 20'000, "much too long");
        }
    }

    void writing()
    {
        CsvForm form;
        form.separator = u';';
        form.decimalSign = u',';
        form.byteOrderMark = true;
        CsvWriter writer(form);
        writer.row({u"NAME"_s, u"A;B"_s, u"C,D"_s});
        writer.text(u"=1+1").text(u"'x").figure(std::int64_t{-5}).figure(12.5).figure(-3.0);
        writer.endRow();
        writer.text(u"7\"\n ").endRow();
        QCOMPARE(writer.size(), 52);
        QCOMPARE(writer.take(),
                 QByteArray("\xEF\xBB\xBFNAME;\"A;B\";C,D\r\n'=1+1;''x;-5;12,5;-3,0\r\n\"7\"\"\n \"\r\n"));
        writer.text({}).endRow();
        writer.text({}).text({}).endRow();
        writer.text(u"sep=;").endRow();
        QCOMPARE(writer.take(), QByteArray("\"\"\r\n;\r\n\"sep=;\"\r\n"));
        QCOMPARE(writer.size(), 0);
    }
};

HARROWBY_CORE_TEST(app_csv_reader_test, CsvReaderTest)
#include "csv_reader_test.moc"
