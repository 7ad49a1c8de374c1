// SPDX-License-Identifier: MIT
#include "app/csv/csv_guess.h"

#include "app/csv/csv_reader.h"
#include "tests/program/test_program.h"

#include <QTest>

using namespace harrowby::app;
using namespace Qt::StringLiterals;

namespace {

/// "," and ";" as they stand; a tab as "t".
QString signOf(QChar separator)
{
    return separator == u'\t' ? u"t"_s : QString(separator);
}

/// ".", ",", or the example with its place.
QString decimalOf(const DecimalGuess &guess)
{
    if (guess.sign)
        return *guess.sign;
    return u"%1 in %2:%3"_s.arg(guess.example).arg(guess.line).arg(guess.column);
}

} // namespace

class CsvGuessTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void encodings_data()
    {
        using enum CsvEncoding;
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<CsvEncoding>("encoding");
        QTest::addColumn<bool>("mark");
        const auto wide = [](const QString &text, bool isLittle) {
            QByteArray bytes;
            for (const QChar unit : text) {
                const auto cell = static_cast<char>(unit.cell());
                const auto row = static_cast<char>(unit.row());
                bytes.append(isLittle ? cell : row).append(isLittle ? row : cell);
            }
            return bytes;
        };
        const QString cyrillic =
            u"\u041a\u043e\u0434;\u0418\u043c\u044f;\u0426\u0435\u043d\u0430\r\n4600000000001;\u041c\u043e\u043b\u043e\u043a\u043e;12,50\r\n"_s;
        QTest::newRow("nothing") << QByteArray() << Utf8 << false;
        QTest::newRow("ASCII") << QByteArray("A,B\n1,2\n") << Utf8 << false;
        QTest::newRow("UTF-8") << QByteArray("CR\xC3\x88ME,1\n") << Utf8 << false;
        QTest::newRow("UTF-8, mark") << QByteArray("\xEF\xBB\xBF"
                                                   "A,B\n")
                                     << Utf8 << true;
        QTest::newRow("UTF-8, mark, bad byte") << QByteArray("\xEF\xBB\xBF"
                                                             "A,\xC8\n")
                                               << Utf8 << true;
        QTest::newRow("UTF-8 with one bad byte") << QByteArray("\xC3\x88").repeated(20) + "\xC8\n" << Utf8 << false;
        QTest::newRow("Windows-1252") << QByteArray("CR\xC8ME,\x80 1\n") << Windows1252 << false;
        QTest::newRow("Windows-1252, like UTF-8 once") << QByteArray("\xC3\x88,CR\xC8ME\n") << Windows1252 << false;
        QTest::newRow("UTF-16LE, mark") << "\xFF\xFE" + wide(u"A;B\n"_s, true) << Utf16LittleEndian << true;
        QTest::newRow("UTF-16BE, mark") << "\xFE\xFF" + wide(u"A;B\n"_s, false) << Utf16BigEndian << true;
        QTest::newRow("UTF-16LE") << wide(cyrillic, true) << Utf16LittleEndian << false;
        QTest::newRow("UTF-16BE") << wide(cyrillic, false) << Utf16BigEndian << false;
        QTest::newRow("NULs") << QByteArray("A,B\n\0\0\0\0C\n", 11) << Utf8 << false;
        QTest::newRow("a NUL") << QByteArray("NAME,PRICE,STOCK\nTEA\0,1,2\n", 26) << Utf8 << false;
    }
    void encodings()
    {
        QFETCH(const QByteArray, bytes);
        QFETCH(const CsvEncoding, encoding);
        QFETCH(const bool, mark);
        const CsvGuess guess = guessForm(bytes);
        QCOMPARE(guess.form.encoding, encoding);
        QCOMPARE(guess.form.byteOrderMark, mark);
    }

    void separators_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("separator");
        QTest::newRow("nothing") << QByteArray() << u","_s;
        QTest::newRow("one column") << QByteArray("NAME\nTEA\n") << u","_s;
        QTest::newRow("comma") << QByteArray("A,B\n1,2\n") << u","_s;
        QTest::newRow("semicolon") << QByteArray("A;B\n1;2\n") << u";"_s;
        QTest::newRow("tab") << QByteArray("A\tB\n1\t2\n") << u"t"_s;
        QTest::newRow("bar") << QByteArray("A|B\n1|2\n") << u"|"_s;
        QTest::newRow("decimal commas") << QByteArray("NAME;PRICE\nTEA;4,20\nCUP;3,10\nPEN;1,50\n") << u";"_s;
        QTest::newRow("commas in every name") << QByteArray("NAME;PRICE;STOCK\nTEA, A;1;2\nTEA, B;1;2\n") << u";"_s;
        QTest::newRow("semicolons in every name") << QByteArray("NAME,PRICE,STOCK\nTEA; A,1,2\nTEA; B,1,2\n") << u","_s;
        QTest::newRow("a comma in the heading too")
            << QByteArray("NAME, SIZE;PRICE;STOCK\nTEA, A;1;2\nTEA;1;2\n") << u";"_s;
        QTest::newRow("quoted separators") << QByteArray("\"A;B;C\",\"D;E\"\n\"1;2;3\",\"4;5\"\n") << u","_s;
        QTest::newRow("doubled quotes") << QByteArray("NAME,NOTE\n\"say \"\"a;b\"\"\",\"x\ny;z\"\n") << u","_s;
        QTest::newRow("item keys") << QByteArray("A  |  B;C;D\nX  |  Y;1;2\n") << u";"_s;
        QTest::newRow("ragged") << QByteArray("A;B;C\n1;2;3\n1;2\n1;2;3\n1,5;2;3\n") << u";"_s;
        QTest::newRow("ragged, decimal commas") << QByteArray("A;B;C\n1,5;2;3\n1,5;2\n1,5;2;3\n1,5\n") << u";"_s;
        QTest::newRow("named") << QByteArray("sep=|\nA;B|C;D\n") << u"|"_s;
        QTest::newRow("named after a mark") << QByteArray("\xEF\xBB\xBFsep=|\r\nA;B|C;D\n") << u"|"_s;
        QTest::newRow("named by nothing else") << QByteArray("sep=|") << u"|"_s;
        QTest::newRow("a cell like a name") << QByteArray("sep=;A,B\n1,2\n") << u","_s;
        QTest::newRow("mark") << QByteArray("\xEF\xBB\xBF\"A;B\";\"C\"\n") << u";"_s;
        QTest::newRow("UTF-16") << QByteArray("\xFF\xFE"
                                              "A\0;\0B\0\n\0",
                                              10)
                                << u";"_s;
    }
    void separators()
    {
        QFETCH(const QByteArray, bytes);
        QFETCH(const QString, separator);
        QCOMPARE(signOf(guessForm(bytes).form.separator), separator);
    }

    void decimals_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("decimal");
        QTest::newRow("no figures") << QByteArray("A,B\nx,y\n") << u"."_s;
        QTest::newRow("whole ones, semicolon") << QByteArray("A;B\n1;2\n") << u","_s;
        QTest::newRow("point") << QByteArray("A,B\nTEA,4.20\n") << u"."_s;
        QTest::newRow("comma") << QByteArray("A;B\nTEA;4,20\n") << u","_s;
        QTest::newRow("both in one: point") << QByteArray("A;B\nTEA;1,234.50\n") << u"."_s;
        QTest::newRow("both in one: comma") << QByteArray("A;B\nTEA;1.234,50\n") << u","_s;
        QTest::newRow("many groups") << QByteArray("A;B\nTEA;1,234,567\n") << u"."_s;
        QTest::newRow("zero before it") << QByteArray("A;B\nTEA;0,250\n") << u","_s;
        QTest::newRow("four digits before it") << QByteArray("A;B\nTEA;1234,500\n") << u","_s;
        QTest::newRow("grouped by blanks") << QByteArray("A;B\nTEA;1 234,500\n") << u","_s;
        QTest::newRow("with a currency") << QByteArray("A;B\nTEA;4,20 \xE2\x82\xAC\n") << u","_s;
        QTest::newRow("open: comma") << QByteArray("A;B\nTEA;1,234\n") << u"1,234 in 2:1"_s;
        QTest::newRow("open: point") << QByteArray("A;B\nx;y\nTEA;1.234\nCUP;2.345\n") << u"1.234 in 3:1"_s;
        QTest::newRow("open: quoted") << QByteArray("A,B\nTEA,\"1,234\"\n") << u"1,234 in 2:1"_s;
        QTest::newRow("open, then told far behind") << "A;B\n" + QByteArray("TEA;1,234\n").repeated(500) + "CUP;4,20\n"
                                                    << u","_s;
        QTest::newRow("open, then told the other way") << QByteArray("A;B\nTEA;1,234\nCUP;4.20\n") << u"."_s;
        QTest::newRow("contradiction") << QByteArray("A;B\nTEA;4,20\nCUP;1,234\nPEN;3.1\n") << u"3.1 in 4:1"_s;
        QTest::newRow("dates and addresses tell nothing") << QByteArray("A;B\n21.11.2026;10.0.0.1\n") << u","_s;
    }
    void decimals()
    {
        QFETCH(const QByteArray, bytes);
        QFETCH(const QString, decimal);
        QCOMPARE(decimalOf(guessForm(bytes).decimal), decimal);
    }

    /// Once the columns are known, an item number like "10.001" asks nobody anything.
    void onlyTheColumnsOfFiguresCount()
    {
        const QByteArray bytes = "ID;NAME;PRICE\n10.001;TEA;4\n10.002;CUP;5,5\n";
        const CsvGuess guess = guessForm(bytes);
        QCOMPARE(decimalOf(guess.decimal), u","_s);
        QCOMPARE(decimalOf(guessDecimalSign(bytes, guess.form, {0})), u"10.001 in 2:0"_s);
        const QByteArray whole = "ID;NAME;PRICE\n10.001;TEA;4\n";
        QCOMPARE(decimalOf(guessForm(whole).decimal), u"10.001 in 2:0"_s);
        QCOMPARE(decimalOf(guessDecimalSign(whole, guess.form, {2})), u","_s);
    }

    void anExportLeavesNothingOpen_data()
    {
        QTest::addColumn<QByteArray>("rows");
        QTest::addColumn<QString>("decimal");
        QTest::newRow("none") << QByteArray() << u","_s;
        QTest::newRow("what could be either elsewhere") << QByteArray("TEA;A;1,234;\r\n") << u","_s;
        QTest::newRow("the other sign") << QByteArray("TEA;A;1.234;\r\n") << u"."_s;
        QTest::newRow("a text as well") << QByteArray("TEA;A;1.234;Units:text\r\nCUP;A;1,5;\r\n") << u","_s;
        QTest::newRow("names tell nothing") << QByteArray("1.5;2.5;1;\r\n") << u","_s;
        QTest::newRow("but figures where texts are usual") << QByteArray("1.5;A;1;Code:real\r\n") << u"."_s;
    }
    void anExportLeavesNothingOpen()
    {
        QFETCH(const QByteArray, rows);
        const QByteArray bytes = "Code;StockID;Units;As Stored\r\n" + rows;
        const CsvGuess guess = guessForm(bytes);
        QTEST(decimalOf(guess.decimal), "decimal");
        QTEST(decimalOf(guessDecimalSign(bytes, guess.form, {2})), "decimal");
    }

    void anyBytesGetAForm()
    {
        for (const QByteArray &bytes : {QByteArray("\""), QByteArray("\xFF\xFE"), QByteArray("\xFF\xFE\x00", 3),
                                        QByteArray("\0", 1), QByteArray(1000, '\0'), QByteArray(1000, ';')}) {
            const CsvGuess guess = guessForm(bytes);
            CsvReader reader(bytes, guess.form);
            for (CsvRow row; reader.next(row);)
                QVERIFY(!row.cells.isEmpty());
        }
    }

    void names()
    {
        QCOMPARE(separatorNamed(u"Semicolon"_s), QChar(u';'));
        QCOMPARE(separatorNamed(u"\t"_s), QChar(u'\t'));
        QVERIFY(!separatorNamed(u":"_s));
        QCOMPARE(decimalSignNamed(u"comma"_s), QChar(u','));
        QVERIFY(!decimalSignNamed(u";"_s));
        QCOMPARE(encodingNamed(u"UTF-16LE"_s), CsvEncoding::Utf16LittleEndian);
        QCOMPARE(encodingNamed(u"windows1252"_s), CsvEncoding::Windows1252);
        QVERIFY(!encodingNamed(u"latin9"_s));
        for (const QChar separator : csvSeparators())
            QVERIFY(separatorWords(separator).size() > 2);
        QCOMPARE(encodingWords(CsvEncoding::Utf16BigEndian), u"UTF-16 (big endian)"_s);
    }
};

HARROWBY_CORE_TEST(app_csv_guess_test, CsvGuessTest)
#include "csv_guess_test.moc"
