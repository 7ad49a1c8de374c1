// SPDX-License-Identifier: MIT
#include "receipt/receipt_layout.h"

#include "receipt/receipt_pdf.h"
#include "receipt/receipt_width.h"
#include "tests/platform/pdf_text.h"
#include "tests/program/test_program.h"

#include <QFile>
#include <QFont>
#include <QFontMetricsF>
#include <QTemporaryDir>
#include <QTest>

using namespace harrowby;
using namespace harrowby::testing;
using namespace Qt::StringLiterals;

namespace {

const QString separator(63, u'-');

QStringList allRows(const std::vector<ReceiptLine> &lines)
{
    const ReceiptLayout layout(lines);
    QStringList rows;
    for (int page = 0; page < layout.pageCount(); ++page)
        rows += layout.rows(page);
    return rows;
}

} // namespace

class ReceiptLayoutTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;

    [[nodiscard]] QString written(const std::vector<ReceiptLine> &lines) const
    {
        QFile file(m_dir.filePath(u"receipt.pdf"_s));
        if (file.open(QIODevice::WriteOnly))
            file.write(receiptPdf(lines, u"Receipt"_s));
        return file.fileName();
    }

private Q_SLOTS:
    void theSeparatorJustFitsALine()
    {
        const auto width = [](bool bold) { return QFontMetricsF(receiptFont(10, bold)).horizontalAdvance(separator); };
        const double widest = std::max(width(false), width(true));
        const double line = receiptPrintableWidth();
        QVERIFY2(widest <= line && widest > 0.98 * line, qPrintable(QString::number(widest / line)));
        QCOMPARE(allRows({{separator, 10, false}, {separator, 10, true}}), QStringList({separator, separator}));
        QCOMPARE(allRows({{separator + u"--"_s, 10, true}}).size(), 2);
    }

    void oneFactorScalesAllSizes()
    {
        const double ten = receiptFont(10, false).pixelSize();
        for (const int size : {7, 8, 12, 20})
            QVERIFY(qAbs(receiptFont(size, false).pixelSize() - ten * size / 10) <= 2);
        QVERIFY(receiptFont(8, true).bold());
        QVERIFY(!receiptFont(8, false).bold());
    }

    void lineBreaks_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("rows");
        QTest::newRow("plain") << u"one"_s << QStringList({u"one"_s});
        QTest::newRow("empty") << u""_s << QStringList({u""_s});
        QTest::newRow("CR LF") << u"one\r\ntwo"_s << QStringList({u"one"_s, u"two"_s});
        QTest::newRow("leading") << u"\r\none"_s << QStringList({u""_s, u"one"_s});
        QTest::newRow("doubled") << u"one\r\n\r\ntwo"_s << QStringList({u"one"_s, u""_s, u"two"_s});
        QTest::newRow("trailing") << u"one\r\n"_s << QStringList({u"one"_s, u""_s});
        QTest::newRow("LF") << u"one\ntwo"_s << QStringList({u"one"_s, u"two"_s});
        QTest::newRow("CR") << u"one\rtwo"_s << QStringList({u"one"_s, u"two"_s});
        QTest::newRow("html") << u"<b>M & M</b>"_s << QStringList({u"<b>M & M</b>"_s});
    }

    void lineBreaks()
    {
        QFETCH(const QString, text);
        QTEST(allRows({{text}}), "rows");
    }

    void longLinesWrapBetweenWords()
    {
        const QStringList rows = allRows({{u"SWEET MAIZE "_s.repeated(20), 8}});
        QVERIFY(rows.size() > 2);
        QCOMPARE(rows.join(QString()), u"SWEET MAIZE "_s.repeated(20));
        for (const QString &row : rows)
            QVERIFY2(row.endsWith(u"SWEET "_s) || row.endsWith(u"MAIZE "_s), qPrintable(row));
    }

    void overlongWordsWrapAnywhere()
    {
        const QString word(10'000, u'W');
        const QStringList rows = allRows({{word, 8}});
        QCOMPARE(rows.join(QString()), word);
        const QFontMetricsF metrics(receiptFont(8, false));
        for (const QString &row : rows)
            QVERIFY(metrics.horizontalAdvance(row) <= receiptPrintableWidth());
    }

    void thePageGrowsWithItsContent()
    {
        const QSizeF few = ReceiptLayout({{u"one"_s}}).pageSizeMm(0);
        QCOMPARE(few.width(), 80.0);
        QVERIFY(few.height() > few.width()); // print filters rotate a page that is wider than high
        const ReceiptLayout more(std::vector<ReceiptLine>(40, {u"line"_s}));
        QCOMPARE(more.pageCount(), 1);
        QVERIFY(more.pageSizeMm(0).height() > few.height() && more.pageSizeMm(0).height() < 297);
    }

    void longReceiptsGoOnToFurtherPages()
    {
        std::vector<ReceiptLine> lines;
        QStringList texts;
        for (int i = 1; i <= 200; ++i) {
            texts += u"line %1"_s.arg(i);
            lines.push_back({texts.back()});
        }
        const ReceiptLayout layout(lines);
        QVERIFY(layout.pageCount() >= 3);
        QVERIFY(layout.pageSizeMm(0).height() > 290 && layout.pageSizeMm(0).height() <= 297);
        QVERIFY(layout.pageSizeMm(layout.pageCount() - 1).height() < 290);
        QCOMPARE(allRows(lines), texts);
    }

    void pdfKeepsTheTextInOrder()
    {
        const QString file = written({{u"HARROWBY STORES"_s, 12, true},
                                      {u"12 MARKET STREET"_s, 7, true},
                                      {separator, 10, true},
                                      {u"Payment Receipt"_s, 8, true},
                                      {separator, 10, false},
                                      {u"2 x A1  |  M & M = 1250"_s, 8, false},
                                      {u""_s, 8, false},
                                      {u"Total Cost (N): 1250\r\nfirst office flight"_s, 8, true}});
        const QStringList lines = pdfLines(file);
        QCOMPARE(lines.size(), 8);
        QCOMPARE(lines.at(0), u"HARROWBY STORES"_s);
        QCOMPARE(lines.at(1), u"12 MARKET STREET"_s);
        QCOMPARE(lines.at(2), separator);
        QCOMPARE(lines.at(3), u"Payment Receipt"_s);
        QCOMPARE(lines.at(4), separator);
        QCOMPARE(lines.at(5).simplified(), u"2 x A1 | M & M = 1250"_s);
        QCOMPARE(lines.at(6), u"Total Cost (N): 1250"_s);
        QCOMPARE(lines.at(7), u"first office flight"_s);
    }

    void pdfHasTheSamePages()
    {
        std::vector<ReceiptLine> lines;
        for (int i = 1; i <= 200; ++i)
            lines.push_back({u"line %1"_s.arg(i), 8 + i % 5, i % 2 == 0});
        const ReceiptLayout layout(lines);
        const auto pages = pdfPages(written(lines));
        QCOMPARE(pages.size(), layout.pageCount());
        for (int page = 0; page < layout.pageCount(); ++page)
            QCOMPARE(pages.at(page), layout.rows(page));
    }

    void anyTextCanBeDrawn_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("emoji") << u"\U0001F6D2\U0001F468\u200D\U0001F469\u200D\U0001F467 cart"_s;
        QTest::newRow("right to left") << u"\u05e9\u05dc\u05d5\u05dd 12 \u0645\u0631\u062d\u0628\u0627"_s;
        QTest::newRow("half a surrogate pair") << QString(QChar(0xD83D));
        QTest::newRow("control characters") << QString::fromUtf8("a\0b\tc\x1b[1m\x7f", 10);
        QTest::newRow("separators") << u"a\u2028b\u2029c"_s;
        QTest::newRow("combining") << u"e\u0301"_s.repeated(500);
        QTest::newRow("only blanks") << QString(5'000, u' ');
    }

    void anyTextCanBeDrawn()
    {
        QFETCH(const QString, text);
        const QString file = written({{u"before"_s}, {text, 8, true}, {u"after"_s}});
        const QStringList lines = pdfLines(file);
        QVERIFY(lines.size() >= 2);
        QCOMPARE(lines.front(), u"before"_s);
        QCOMPARE(lines.back(), u"after"_s);
    }

    void anySizeCanBeDrawn()
    {
        for (const int size : {-5, 0, 1, 72, 1'000'000})
            QCOMPARE(pdfLines(written({{u"A"_s, size, false}})), QStringList({u"A"_s}));
    }

    void nothingIsAPageToo() { QCOMPARE(ReceiptLayout({}).pageCount(), 1); }
};

HARROWBY_TEST(receipt_layout_test, ReceiptLayoutTest)
#include "receipt_layout_test.moc"
