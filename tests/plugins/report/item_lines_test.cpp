// SPDX-License-Identifier: MIT
#include "plugins/report/item_lines.h"
#include "plugins/report/item_tally.h"

#include "tests/program/test_program.h"

#include <QElapsedTimer>
#include <QTest>

using namespace harrowby::report;
using namespace Qt::StringLiterals;

namespace {

QString readBack(const QString &text)
{
    ItemLines items;
    readItemLines(text, items);
    QStringList lines;
    for (const ItemLine &line : items.lines)
        lines << u"%1*%2=%3"_s.arg(line.quantity).arg(line.key.toString()).arg(line.amount);
    if (!items.whole)
        lines << u"?"_s;
    return lines.join(u';');
}

} // namespace

class ItemLinesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void reads_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("lines");
        QTest::newRow("one") << u"2 x A-1  |  PEN = 3.00"_s << u"2*A-1  |  PEN=3"_s;
        QTest::newRow("two") << u"2 x A-1  |  PEN = 3.00, 1 x B  |  INK = 4.50"_s
                             << u"2*A-1  |  PEN=3;1*B  |  INK=4.5"_s;
        QTest::newRow("grouped amounts") << u"1,000 x A  |  PEN = 1,250.00, 1 x B  |  INK = 12,345,678.25"_s
                                         << u"1000*A  |  PEN=1250;1*B  |  INK=1.23457e+07"_s;
        QTest::newRow("below zero") << u"-2 x A = -3.50"_s << u"-2*A=-3.5"_s;
        QTest::newRow("part of one") << u"0.5 x A = 1"_s << u"0.5*A=1"_s;
        QTest::newRow("x in a name") << u"1 x A  |  BOARD 2 x 4 = 5.00, 1 x B = 1"_s
                                     << u"1*A  |  BOARD 2 x 4=5;1*B=1"_s;
        QTest::newRow("comma in a name") << u"1 x A  |  PEN, RED = 5.00, 1 x B = 1"_s << u"1*A  |  PEN, RED=5;1*B=1"_s;
        QTest::newRow("equals in a name") << u"1 x A  |  SIZE = XL = 5.00"_s << u"1*A  |  SIZE = XL=5"_s;
        QTest::newRow("equals and a figure") << u"1 x A  |  SIZE = 4, BLUE = 5.00"_s << u"1*A  |  SIZE = 4, BLUE=5"_s;
        QTest::newRow("comma, figure and x") << u"1 x A  |  BOX, 2 x 4 = 5.00"_s << u"1*A  |  BOX, 2 x 4=5"_s;
        QTest::newRow("bars in a name") << u"1 x A  |  B  |  C = 5"_s << u"1*A  |  B  |  C=5"_s;
        QTest::newRow("empty") << QString() << u"?"_s;
        QTest::newRow("no line") << u"paid in kind"_s << u"?"_s;
        QTest::newRow("no amount") << u"1 x A"_s << u"?"_s;
        QTest::newRow("no figure") << u"1 x A = free"_s << u"?"_s;
        QTest::newRow("no quantity") << u"one x A = 5"_s << u"?"_s;
        QTest::newRow("no key") << u"1 x  = 5"_s << u"?"_s;
        QTest::newRow("rubbish first") << u"rubbish, 1 x A = 5"_s << u"1*A=5;?"_s;
        QTest::newRow("rubbish between") << u"1 x A = 5, rubbish, 1 x B = 6"_s << u"1*A=5;1*B=6;?"_s;
        QTest::newRow("rubbish last") << u"1 x A = 5, rubbish"_s << u"1*A=5;?"_s;
        QTest::newRow("cut short") << u"1 x A = 5, 2 x B = "_s << u"1*A=5;?"_s;
        QTest::newRow("a figure too long") << u"1 x A = 123456789012345678901234567890"_s << u"?"_s;
        QTest::newRow("bytes") << QString::fromLatin1("\x00\x01\xff = , x ", 9) << u"?"_s;
    }

    void reads()
    {
        QFETCH(const QString, text);
        QTEST(readBack(text), "lines");
    }

    void manyLinesTakeNoLonger_data()
    {
        QTest::addColumn<QString>("part");
        QTest::newRow("good") << u"1 x A = 5"_s;
        QTest::newRow("without an end") << u"1 x A"_s;
        QTest::newRow("without a start") << u"A = 5"_s;
        QTest::newRow("doubtful") << u"1 x A = 5, z"_s;
        QTest::newRow("commas") << u","_s;
    }

    /// Parsing must be linear: a damaged text may be long.
    void manyLinesTakeNoLonger()
    {
        QFETCH(const QString, part);
        const QString text = QStringList(100'000, part).join(u", "_s);
        QElapsedTimer watch;
        watch.start();
        ItemLines items;
        readItemLines(text, items);
        QVERIFY(items.lines.size() <= 100'000);
        QVERIFY2(watch.elapsed() < 20'000, "it hangs");
    }

    void partsAKey()
    {
        QCOMPARE(idAndName(u" A-1   |  PEN ").id, u"A-1");
        QCOMPARE(idAndName(u" A-1   |  PEN ").name, u"PEN");
        QCOMPARE(idAndName(u"A | B  |  C  |  D").id, u"A | B");
        QCOMPARE(idAndName(u"A | B  |  C  |  D").name, u"C  |  D");
        for (const QString &key : {QString(), u"|"_s, u" | "_s, u"  | "_s, u"PEN "_s}) {
            QCOMPARE(idAndName(key).id, QString());
            QCOMPARE(idAndName(key).name, key);
        }
    }

    /// No line is lost while the table grows.
    void tallies()
    {
        ItemTally tally;
        constexpr int keys = 1'000;
        for (int line = 0; line < 3 * keys; ++line)
            tally.add(u"KEY %1"_s.arg(line % keys), 2.0, line % keys);
        tally.settle();
        QCOMPARE(tally.entries().size(), static_cast<std::size_t>(keys));
        for (int key = 0; key < keys; ++key) {
            const ItemEntry &entry = tally.entries().at(static_cast<std::size_t>(key));
            QCOMPARE(entry.key, u"KEY %1"_s.arg(key));
            QCOMPARE(entry.sums.purchases, 3);
            QCOMPARE(entry.sums.quantity, 6.0);
            QCOMPARE(entry.sums.amount, 3.0 * key);
        }
    }
};

HARROWBY_CORE_TEST(report_item_lines_test, ItemLinesTest)
#include "item_lines_test.moc"
