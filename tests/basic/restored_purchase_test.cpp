// SPDX-License-Identifier: MIT
#include "basic/restored_purchase.h"

#include "tests/program/test_program.h"

#include <QTest>

using namespace harrowby;
using namespace Qt::StringLiterals;

class TestRestoredPurchase : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void splitsElements_data();
    void splitsElements();
    void readsLine_data();
    void readsLine();
    void refusesLine_data();
    void refusesLine();
};

void TestRestoredPurchase::splitsElements_data()
{
    QTest::addColumn<QString>("items");
    QTest::addColumn<QStringList>("elements");
    QTest::newRow("one") << u"1 x A1  |  TEA = 2.50"_s << QStringList{u"1 x A1  |  TEA = 2.50"_s};
    QTest::newRow("two") << u"1 x A1  |  TEA = 2.50, 3 x A2  |  BUN = 1,500.00"_s
                         << QStringList{u"1 x A1  |  TEA = 2.50"_s, u"3 x A2  |  BUN = 1,500.00"_s};
    QTest::newRow("comma and blank in a name")
        << u"1 x A1  |  TEA, GREEN = 2.50"_s << QStringList{u"1 x A1  |  TEA"_s, u"GREEN = 2.50"_s};
    QTest::newRow("comma alone") << u"1,000 x A1  |  TEA,GREEN = 2.50"_s
                                 << QStringList{u"1,000 x A1  |  TEA,GREEN = 2.50"_s};
    QTest::newRow("nothing between two") << u"a, , b"_s << QStringList{u"a"_s, u""_s, u"b"_s};
    QTest::newRow("nothing at the end") << u"a, "_s << QStringList{u"a"_s, u""_s};
    QTest::newRow("nothing") << QString() << QStringList{QString()};
    QTest::newRow("two blanks") << u"a,  b"_s << QStringList{u"a"_s, u" b"_s};
}

void TestRestoredPurchase::splitsElements()
{
    QFETCH(const QString, items);
    QTEST(splitPurchase(items), "elements");
}

void TestRestoredPurchase::readsLine_data()
{
    QTest::addColumn<QString>("element");
    QTest::addColumn<int>("quantity");
    QTest::addColumn<QString>("id");
    QTest::addColumn<QString>("name");
    const auto row = [](const char *name, const char *element, int quantity, const char *id, const char *stockName) {
        QTest::newRow(name) << QString::fromUtf8(element) << quantity << QString::fromUtf8(id)
                            << QString::fromUtf8(stockName);
    };
    row("as committed", "3 x 0012  |  MILK = 1,500.00", 3, "0012", "MILK");
    row("lower case name", "1 x A1  |  Tea = 2.50", 1, "A1", "Tea");
    row("x in the name", "2 x A1  |  BOX x LARGE = 5.00", 2, "A1", "BOX");
    row("= in the name", "2 x A1  |  E = MC2 = 5.00", 2, "A1", "E");
    row("bar in the name", "2 x A1  |  TEA  |  GREEN = 5.00", 2, "A1", "TEA");
    row("x in the ID", "2 x A x B  |  TEA = 5.00", 2, "A", "B");
    row("= in the ID", "2 x A = B  |  TEA = 5.00", 2, "A", "B");
    row("x without blanks", "2 x AxB  |  PIXxEL = 5.00", 2, "AxB", "PIXxEL");
    row("narrow bar in the name", "2 x A1  |  TEA | GREEN = 5.00", 2, "A1", "TEA | GREEN");
    row("capital X separates nothing", "2 x A1  |  BOX X LARGE = 5.00", 2, "A1", "BOX X LARGE");
    row("blanks around the ID", "2 x  A1   |  TEA = 5.00", 2, "A1", "TEA");
    row("blanks around the name", "2 x A1  |    TEA   = 5.00", 2, "A1", "  TEA  ");
    row("no amount", "2 x A1  |  TEA", 2, "A1", "TEA");
    row("empty ID", "2 x   |  TEA = 5.00", 2, "", "TEA");
    row("empty name", "2 x A1  |   = 5.00", 2, "A1", "");
    row("other separators in order", "2 = A1 x TEA  |  5.00", 2, "A1", "TEA");
    row("separators that touch", "2 x  |  A1  |  TEA = 5.00", 2, "|  A1", "TEA");
    row("emoji", "2 x 🍎  |  שלום = 5.00", 2, "🍎", "שלום");

    row("a comma ends the quantity", "1,000 x A1  |  TEA = 5.00", 1, "A1", "TEA");
    row("no quantity", "many x A1  |  TEA = 5.00", 0, "A1", "TEA");
    row("nothing for a quantity", " x A1  |  TEA = 5.00", 0, "A1", "TEA");
    row("none", "0 x A1  |  TEA = 5.00", 0, "A1", "TEA");
    row("less than none", "-2 x A1  |  TEA = 5.00", -2, "A1", "TEA");
    row("half to even, down", "2.5 x A1  |  TEA = 5.00", 2, "A1", "TEA");
    row("half to even, up", "1.5 x A1  |  TEA = 5.00", 2, "A1", "TEA");
    row("half of one", "0.5 x A1  |  TEA = 5.00", 0, "A1", "TEA");
    row("leading number", "  7 packs x A1  |  TEA = 5.00", 7, "A1", "TEA");
    row("most", "32767 x A1  |  TEA = 5.00", 32767, "A1", "TEA");
    row("rounds to the most", "32767.4 x A1  |  TEA = 5.00", 32767, "A1", "TEA");
    row("least", "-32768 x A1  |  TEA = 5.00", -32768, "A1", "TEA");
    row("too large for a double reads as none", "1e400 x A1  |  TEA = 5.00", 0, "A1", "TEA");
}

void TestRestoredPurchase::readsLine()
{
    QFETCH(const QString, element);
    const std::optional<RestoredLine> line = restoredLine(element);
    QVERIFY(line);
    QTEST(static_cast<int>(line->quantity), "quantity");
    QTEST(line->stockId, "id");
    QTEST(line->stockName, "name");
}

void TestRestoredPurchase::refusesLine_data()
{
    QTest::addColumn<QString>("element");
    QTest::newRow("empty") << QString();
    QTest::newRow("blank") << u" "_s;
    QTest::newRow("no separator") << u"TEA"_s;
    QTest::newRow("rest of a name") << u"GREEN = 2.50"_s;
    QTest::newRow("no name") << u"1 x A1"_s;
    QTest::newRow("separators without their blanks") << u"1xA1|TEA=2.50"_s;
    QTest::newRow("more than 16 bits") << u"32768 x A1  |  TEA = 5.00"_s;
    QTest::newRow("rounds to more than 16 bits") << u"32767.5 x A1  |  TEA = 5.00"_s;
    QTest::newRow("far more") << u"40000 x A1  |  TEA = 5.00"_s;
    QTest::newRow("far less") << u"-32769 x A1  |  TEA = 5.00"_s;
    QTest::newRow("very far") << u"1e300 x A1  |  TEA = 5.00"_s;
}

void TestRestoredPurchase::refusesLine()
{
    QFETCH(const QString, element);
    QVERIFY(!restoredLine(element));
}

HARROWBY_CORE_TEST(restored_purchase_test, TestRestoredPurchase)
#include "restored_purchase_test.moc"
