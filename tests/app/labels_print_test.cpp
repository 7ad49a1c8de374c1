// SPDX-License-Identifier: MIT
// What is printed on labels is read back from the page's picture.
#include "app/codes/gtin.h"
#include "app/labels/label_pdf.h"
#include "app/labels/label_printing.h"
#include "tests/platform/pdf_text.h"
#include "tests/platform/private_cups.h"
#include "tests/program/test_program.h"

#include <QFile>
#include <QImage>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <set>

using namespace Qt::StringLiterals;
using namespace harrowby::app;

namespace {

constexpr int coarse = 203;
constexpr int fine = 600;

bool goOn(const WorkStep & /*step*/)
{
    return true;
}

/// As many trade item numbers as asked for, of so many digits.
QStringList numbersOf(qsizetype digits, int count)
{
    QStringList codes;
    quint64 number = 7;
    for (int i = 0; i < count; ++i) {
        number = number * 6364136223846793005U + 1442695040888963407U;
        const QString front = QString::number(number).rightJustified(20, u'1').right(digits - 1);
        codes << front + QString::number(checkDigitOf(front));
    }
    return codes;
}

/// Each sign that Code 128 is used for here stands in one of them.
QStringList freeCodes()
{
    QStringList codes = {u"BAK-0001"_s, u"BEV-0123"_s, u"A"_s,    u"7"_s,        u"12345"_s, u"1234567890123"_s,
                         u"tea/50g"_s,  u"X 1"_s,      u"~{|}"_s, u"00000001"_s, u"9-"_s,    u"14006381000007"_s};
    for (char sign = '!'; sign <= '~'; ++sign)
        codes << u"Q%1%2"_s.arg(QLatin1Char(sign)).arg(int{sign});
    return codes;
}

Label labelWith(const QString &code, const QString &name = u"TEA"_s, const QString &price = u"N 1.00"_s)
{
    auto symbol = makeSymbol(code);
    return {name, price, symbol ? std::optional(*symbol) : std::nullopt};
}

QList<LabelRun> runsOf(const QStringList &codes)
{
    QList<LabelRun> runs;
    for (const QString &code : codes)
        runs << LabelRun{labelWith(code), 1};
    return runs;
}

LabelPlan planFor(const QString &paper, int dotsPerInch)
{
    return {labelPaper(paper), dotsPerInch, 0, {}};
}

/// How the symbols of these codes read: the kind, and the code.
QStringList asRead(const QStringList &codes)
{
    static const QHash<SymbolKind, QString> names = {{SymbolKind::Ean13, u"EAN-13"_s},
                                                     {SymbolKind::Ean8, u"EAN-8"_s},
                                                     {SymbolKind::UpcA, u"UPC-A"_s},
                                                     {SymbolKind::Code128, u"CODE-128"_s}};
    QStringList read;
    for (const QString &code : codes) {
        const bool isUpc = symbolKind(code) == SymbolKind::Ean13 && code.startsWith(u'0'); // the very same bars
        read << (isUpc ? names.value(SymbolKind::UpcA) + u':' + code.sliced(1)
                       : names.value(symbolKind(code)) + u':' + code);
    }
    read.sort();
    read.removeDuplicates();
    return read;
}

} // namespace

class LabelsPrintTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void kindIsByWhatTheCodeIs_data();
    void kindIsByWhatTheCodeIs();
    void codesThatAreNoBarsAreTold_data();
    void codesThatAreNoBarsAreTold();
    void printedCodesReadBack_data();
    void printedCodesReadBack();
    void barsAreWholeDots_data();
    void barsAreWholeDots();
    void tooLongCodeIsNotTaken();
    void quietZonesFitEveryLabel();
    void namesOfAnyScriptLeaveTheBarsAlone_data();
    void namesOfAnyScriptLeaveTheBarsAlone();
    void nameIsCutAndPriceIsNot();
    void halfUsedSheetGoesOn();
    void sheetsLieWithinTheirPage();
    void nudgeMovesAll();
    void stoppedDrawingGivesNothing();
    void labelsArriveAtThePrinterAsTheyAre();

private:
    [[nodiscard]] QString write(const QByteArray &pdf) const;
    /// Of all pages; of a part of them, in dots, where one is named.
    [[nodiscard]] QList<QImage> picturesOf(const QByteArray &pdf, int dotsPerInch, const QRect &part = {}) const;
    [[nodiscard]] QStringList readCodes(const QByteArray &pdf, int dotsPerInch) const;

    QTemporaryDir m_folder;
};

QString LabelsPrintTest::write(const QByteArray &pdf) const
{
    const QString path = m_folder.filePath(u"labels.pdf"_s);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(pdf) != pdf.size())
        qFatal("The PDF could not be written");
    return path;
}

QList<QImage> LabelsPrintTest::picturesOf(const QByteArray &pdf, int dotsPerInch, const QRect &part) const
{
    const QDir folder(m_folder.path());
    for (const QString &old : folder.entryList({u"page*"_s}))
        QFile::remove(folder.filePath(old));
    QStringList arguments = {u"-r"_s, QString::number(dotsPerInch), u"-gray"_s};
    for (const auto &[option, figure] :
         {std::pair(u"-x"_s, part.x()), {u"-y"_s, part.y()}, {u"-W"_s, part.width()}, {u"-H"_s, part.height()}})
        arguments << option << QString::number(figure);
    QProcess::execute(u"pdftoppm"_s, arguments << write(pdf) << folder.filePath(u"page"_s));
    QList<QImage> pictures;
    for (const QString &page : folder.entryList({u"page*"_s}, QDir::Files, QDir::Name))
        pictures << QImage(folder.filePath(page)).convertToFormat(QImage::Format_Grayscale8);
    return pictures;
}

/// What a reader of codes sees on all pages, each once.
QStringList LabelsPrintTest::readCodes(const QByteArray &pdf, int dotsPerInch) const
{
    const QDir folder(m_folder.path());
    if (picturesOf(pdf, dotsPerInch).isEmpty())
        return {u"nothing was drawn"_s};
    QStringList arguments = {u"-q"_s, u"-Sdisable"_s};
    for (const QString &kind : {u"ean13"_s, u"ean8"_s, u"upca"_s, u"code128"_s})
        arguments << u"-S%1.enable"_s.arg(kind);
    for (const QString &page : folder.entryList({u"page*"_s}))
        arguments << folder.filePath(page);
    QProcess reader;
    reader.start(u"zbarimg"_s, arguments);
    if (!reader.waitForFinished())
        return {u"zbarimg: "_s + reader.errorString()};
    QStringList read = QString::fromUtf8(reader.readAllStandardOutput()).split(u'\n', Qt::SkipEmptyParts);
    read.sort();
    read.removeDuplicates();
    return read;
}

void LabelsPrintTest::kindIsByWhatTheCodeIs_data()
{
    QTest::addColumn<QString>("code");
    QTest::addColumn<SymbolKind>("kind");
    QTest::addColumn<int>("width");
    QTest::newRow("EAN-13") << u"4006381333931"_s << SymbolKind::Ean13 << 95;
    QTest::newRow("wrong check digit") << u"4006381333932"_s << SymbolKind::Code128 << 35 + 11 * 8;
    QTest::newRow("EAN-8") << u"96385074"_s << SymbolKind::Ean8 << 67;
    QTest::newRow("8 digits, no check digit") << u"96385075"_s << SymbolKind::Code128 << 35 + 11 * 4;
    QTest::newRow("UPC-A") << u"036000291452"_s << SymbolKind::UpcA << 95;
    QTest::newRow("14 digits") << u"14006381000007"_s << SymbolKind::Code128 << 35 + 11 * 7;
    QTest::newRow("ID") << u"BAK-0001"_s << SymbolKind::Code128 << 35 + 11 * 7;
}

void LabelsPrintTest::kindIsByWhatTheCodeIs()
{
    QFETCH(const QString, code);
    QFETCH(const SymbolKind, kind);
    QFETCH(const int, width);
    const auto symbol = makeSymbol(code);
    QVERIFY(symbol);
    QCOMPARE(symbol->kind, kind);
    QCOMPARE(symbol->code, code);
    QCOMPARE(symbol->width, width);
    QCOMPARE(symbol->bars.back().from + symbol->bars.back().width, width);
}

void LabelsPrintTest::codesThatAreNoBarsAreTold_data()
{
    QTest::addColumn<QString>("code");
    QTest::newRow("empty") << QString();
    QTest::newRow("beyond ASCII") << u"TH\u00c9-0001"_s;
    QTest::newRow("emoji") << u"\U0001F600"_s;
    QTest::newRow("NUL") << QString(QChar(u'\0'));
    QTest::newRow("line break") << u"A\nB"_s;
    QTest::newRow("blank behind") << u"A "_s;
    QTest::newRow("very long") << QString(10'000, u'7');
}

void LabelsPrintTest::codesThatAreNoBarsAreTold()
{
    QFETCH(const QString, code);
    const auto symbol = makeSymbol(code);
    QVERIFY(!symbol);
    QVERIFY(!symbol.error().isEmpty());
}

void LabelsPrintTest::printedCodesReadBack_data()
{
    QTest::addColumn<QString>("paper");
    QTest::addColumn<int>("dotsPerInch");
    QTest::addColumn<int>("readAt");
    QTest::addColumn<QStringList>("codes");
    const QString roll = u"roll-38x25"_s;
    QTest::newRow("EAN-13, roll") << roll << coarse << coarse << numbersOf(13, 20);
    QTest::newRow("EAN-8, roll") << roll << coarse << coarse << numbersOf(8, 20);
    QTest::newRow("UPC-A, roll") << roll << coarse << coarse << numbersOf(12, 20);
    QTest::newRow("Code 128, roll") << roll << coarse << coarse << freeCodes();
    const QStringList all = numbersOf(13, 22) + numbersOf(8, 22) + numbersOf(12, 21);
    QTest::newRow("numbers, a4-65") << u"a4-65"_s << fine << coarse << all;
    const QStringList some = numbersOf(13, 7) + numbersOf(8, 7) + numbersOf(12, 7);
    for (const QString &paper : {u"a4-40"_s, u"a4-24"_s, u"a4-21"_s})
        QTest::addRow("numbers, %s", qPrintable(paper)) << paper << fine << coarse << some;
    QTest::newRow("Code 128, sheet") << u"a4-65"_s << fine << 300 << freeCodes().first(20);
}

void LabelsPrintTest::printedCodesReadBack()
{
    QFETCH(const QString, paper);
    QFETCH(const int, dotsPerInch);
    QFETCH(const int, readAt);
    QFETCH(const QStringList, codes);
    const LabelPlan plan = planFor(paper, dotsPerInch);
    const QByteArray pdf = labelsPdf(runsOf(codes), plan, goOn);
    QCOMPARE(readCodes(pdf, readAt), asRead(codes));
}

void LabelsPrintTest::barsAreWholeDots_data()
{
    QTest::addColumn<QString>("paper");
    QTest::addColumn<int>("dotsPerInch");
    for (const LabelPaper &paper : labelPapers()) {
        for (const int dots : {coarse, 300, fine})
            QTest::addRow("%s at %d", qPrintable(paper.key), dots) << paper.key << dots;
    }
}

/// Through the middle of the bars there is black and white alone, and each run is as many dots as its modules.
void LabelsPrintTest::barsAreWholeDots()
{
    QFETCH(const QString, paper);
    QFETCH(const int, dotsPerInch);
    LabelPlan plan = planFor(paper, dotsPerInch);
    plan.place = plan.paper.labels() - 1; // where rounding would have added up
    const Label label = labelWith(u"4006381333931"_s);
    const LabelDrawing drawing(plan.paper, dotsPerInch);
    const QPointF corner = plan.paper.corner(plan.place);
    const QRect place(QPoint(drawing.dots(corner.x()), drawing.dots(corner.y())), drawing.size());
    const QList<QImage> pages = picturesOf(labelsPdf({{label, 1}}, plan, goOn), dotsPerInch, place);
    QCOMPARE(pages.size(), 1);
    const int width = pages.constFirst().width(); // a PDF's page is a whole number of points
    QVERIFY(std::abs(width - place.width()) <= 2);
    const uchar *dots = pages.constFirst().constScanLine(place.height() * 7 / 10);
    std::vector<int> runs; // dark and light in turn
    for (int x = 0, last = 255; x < width; ++x) {
        QVERIFY2(dots[x] == 0 || dots[x] == 255, qPrintable(u"%1 at %2"_s.arg(dots[x]).arg(x)));
        if (dots[x] != last)
            runs.push_back(0);
        if (!runs.empty())
            ++runs.back();
        last = dots[x];
    }
    runs.pop_back(); // the paper to the right
    const int module = *std::min_element(runs.begin(), runs.end());
    QVERIFY(module * 25.4 / dotsPerInch > 0.16);
    std::vector<int> expected;
    for (std::size_t i = 0; i < label.symbol->bars.size(); ++i) {
        const Bar &bar = label.symbol->bars[i];
        if (i > 0)
            expected.push_back((bar.from - label.symbol->bars[i - 1].from - label.symbol->bars[i - 1].width) * module);
        expected.push_back(bar.width * module);
    }
    QCOMPARE(runs, expected);
}

void LabelsPrintTest::tooLongCodeIsNotTaken()
{
    const LabelDrawing roll(labelPaper(u"roll-38x25"_s), coarse);
    QVERIFY(roll.takesSymbol(*makeSymbol(u"ABCDEFGH"_s)));
    QVERIFY(!roll.takesSymbol(*makeSymbol(u"ABCDEFGHIJ"_s)));
    QVERIFY(roll.takesSymbol(*makeSymbol(u"12345678901234"_s)));
    QVERIFY(LabelDrawing(labelPaper(u"a4-24"_s), fine).takesSymbol(*makeSymbol(u"ABCDEFGHIJKLMNOPQRST"_s)));
    QVERIFY(!LabelDrawing(labelPaper(u"a4-24"_s), fine).takesSymbol(*makeSymbol(QString(40, u'A'))));
}

void LabelsPrintTest::quietZonesFitEveryLabel()
{
    for (const LabelPaper &paper : labelPapers()) {
        for (const int dots : {coarse, 300, fine}) {
            for (const QString &code : {u"4006381333931"_s, u"96385074"_s, u"036000291452"_s, u"BAK-0001"_s})
                QVERIFY(LabelDrawing(paper, dots).takesSymbol(*makeSymbol(code)));
        }
    }
}

void LabelsPrintTest::namesOfAnyScriptLeaveTheBarsAlone_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("none") << QString();
    QTest::newRow("Latin") << u"CR\u00c8ME FRA\u00ceCHE 200 G"_s;
    QTest::newRow("Arabic") << u"\u062d\u0644\u064a\u0628 \u0643\u0627\u0645\u0644 \u0627\u0644\u062f\u0633\u0645"_s;
    QTest::newRow("Chinese") << u"\u5168\u8102\u725b\u5976"_s.repeated(20);
    QTest::newRow("Greek and Hebrew") << u"\u03a6\u0395\u03a4\u0391 \u05d7\u05dc\u05d1"_s;
    QTest::newRow("emoji") << u"\U0001F600\U0001F34E TEA"_s;
    QTest::newRow("10,000 characters") << u"VERY LONG NAME "_s.repeated(700);
    QTest::newRow("one word of 10,000") << QString(10'000, u'W');
    QTest::newRow("marks upon marks") << u"A"_s + QString(300, u'\u0301') + QString(300, u'\u0323');
    QTest::newRow("line breaks") << u"A\r\nB\nC\tD\u2028E"_s;
    QTest::newRow("half a character") << QString(QChar(u'\xd83d'));
    QTest::newRow("HTML") << u"<b>X</b> & M"_s;
}

void LabelsPrintTest::namesOfAnyScriptLeaveTheBarsAlone()
{
    QFETCH(const QString, name);
    const LabelPlan plan = planFor(u"roll-38x25"_s, coarse);
    const QString code = u"4006381333931"_s;
    const QByteArray pdf = labelsPdf({{labelWith(code, name), 1}}, plan, goOn);
    QCOMPARE(readCodes(pdf, coarse), asRead({code}));
    const QRect below(0, 60, 303, 140); // price and bars, as without a name
    QCOMPARE(picturesOf(pdf, coarse, below),
             picturesOf(labelsPdf({{labelWith(code, {}), 1}}, plan, goOn), coarse, below));
}

void LabelsPrintTest::nameIsCutAndPriceIsNot()
{
    const LabelPlan plan = planFor(u"a4-65"_s, fine);
    const Label label = labelWith(u"BAK-0001"_s, u"BREAD "_s.repeated(2000), u"EUR\u00a01,234,567.50"_s);
    QVERIFY(LabelDrawing(plan.paper, fine).takesPrice(label));
    const QStringList lines = harrowby::testing::pdfLines(write(labelsPdf({{label, 1}}, plan, goOn)));
    QCOMPARE(lines.size(), 4);
    QVERIFY2(lines.at(1).startsWith(u"BREAD"_s) && lines.at(1).endsWith(u'\u2026'), qPrintable(lines.at(1)));
    QCOMPARE(QString(lines.at(2)).replace(u'\u00a0', u' '), u"EUR 1,234,567.50"_s);
    QCOMPARE(lines.at(3), u"BAK-0001"_s);
    QVERIFY(!LabelDrawing(plan.paper, fine).takesPrice(labelWith({}, {}, u"N "_s + QString(60, u'9'))));
}

void LabelsPrintTest::halfUsedSheetGoesOn()
{
    LabelPlan plan = planFor(u"a4-21"_s, 150);
    plan.place = 19;
    const QByteArray pdf = labelsPdf({{labelWith({}, u"MILK"_s), 2}, {labelWith({}, u"TEA"_s), 21}}, plan, goOn);
    const QList<QStringList> pages = harrowby::testing::pdfPages(write(pdf));
    QCOMPARE(pages.size(), 2);
    QCOMPARE(plan.paper.pages(23, plan.place), 2);
    QCOMPARE(plan.paper.pages(2, 19), 1);
    QCOMPARE(plan.paper.pages(3, 19), 2);
    QCOMPARE(plan.paper.pages(0, 19), 0);
    QCOMPARE(pages.at(0).join(u' ').count(u"MILK"_s), 2);
    QCOMPARE(pages.at(1).join(u' ').count(u"TEA"_s), 21);
    const QImage page = picturesOf(pdf, 30).constFirst();
    const QImage used = page.copy(0, 0, page.width(), page.height() * 8 / 10); // six rows of the seven
    QImage blank(used.size(), used.format());
    blank.fill(Qt::white);
    QCOMPARE(used, blank);
}

void LabelsPrintTest::sheetsLieWithinTheirPage()
{
    for (const LabelPaper &paper : labelPapers()) {
        const QPointF last = paper.corner(paper.labels() - 1);
        const QRectF labels(paper.corner(0), last + QPointF(paper.label.width(), paper.label.height()));
        QVERIFY2(QRectF(QPointF(0, 0), paper.page).contains(labels), qPrintable(paper.words));
        // What is printed keeps clear of the edge that printers of sheets leave blank.
        if (!paper.isRoll)
            QVERIFY2(labels.left() + paper.margin.width() >= 4.2 && labels.top() + paper.margin.height() >= 4.2,
                     qPrintable(paper.words));
        QCOMPARE(labelPaper(paper.key).words, paper.words);
    }
}

void LabelsPrintTest::nudgeMovesAll()
{
    LabelPlan plan = planFor(u"a4-65"_s, fine);
    const QImage before = picturesOf(labelsPdf(runsOf({u"A1"_s}), plan, goOn), 254).constFirst();
    plan.nudge = {30, -20}; // tenths of mm, which are dots at 254 to the inch
    const QImage after = picturesOf(labelsPdf(runsOf({u"A1"_s}), plan, goOn), 254).constFirst();
    const auto firstDark = [](const QImage &page) {
        QPoint most(page.width(), page.height());
        for (int y = 0; y < page.height(); ++y) {
            for (int x = 0; x < page.width(); ++x) {
                if (page.constScanLine(y)[x] < 128)
                    most = {std::min(most.x(), x), std::min(most.y(), y)};
            }
        }
        return most;
    };
    const QPoint moved = firstDark(after) - firstDark(before);
    QVERIFY2(std::abs(moved.x() - 30) <= 1 && std::abs(moved.y() + 20) <= 1,
             qPrintable(u"%1, %2"_s.arg(moved.x()).arg(moved.y())));
}

void LabelsPrintTest::stoppedDrawingGivesNothing()
{
    int steps = 0;
    const QByteArray pdf =
        labelsPdf({{labelWith(u"A1"_s), 1000}}, planFor(u"a4-65"_s, fine), [&](const WorkStep &step) {
            ++steps;
            return step.percent < 10;
        });
    QVERIFY(pdf.isEmpty());
    QCOMPARE(steps, 101);
}

/// Through a print service to a printer of the test's own.
void LabelsPrintTest::labelsArriveAtThePrinterAsTheyAre()
{
    harrowby::testing::PrivateCups service;
    const QString problem = service.start();
    QVERIFY2(problem.isEmpty(), qPrintable(problem));
    const QStringList codes = {u"4006381333931"_s, u"BAK-0001"_s};
    const LabelPlan plan = planFor(u"roll-38x25"_s, coarse);
    LabelPrinting printing;
    QString outcome;
    printing.print(u"till"_s, plan.paper, labelsPdf(runsOf(codes), plan, goOn),
                   [&](const harrowby::Result<void, QString> &taken) { outcome = taken ? u"taken"_s : taken.error(); });
    QTRY_COMPARE_WITH_TIMEOUT(outcome, u"taken"_s, 60000);
    QTRY_VERIFY2_WITH_TIMEOUT(service.printedFiles().size() == 1, qPrintable(service.logs()), 60000);
    const QString file = service.printedFiles().constFirst();
    const auto read = [&] { // until all of it is there
        QFile arrived(file);
        return arrived.open(QIODevice::ReadOnly) ? readCodes(arrived.readAll(), coarse) : QStringList();
    };
    QTRY_COMPARE_WITH_TIMEOUT(read(), asRead(codes), 60000);
}

HARROWBY_TEST(app_labels_print_test, LabelsPrintTest)
#include "labels_print_test.moc"
