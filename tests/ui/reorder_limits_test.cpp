// SPDX-License-Identifier: MIT
#include "tests/program/test_program.h"
#include "tests/support/counter.h"
#include "tests/ui/reorder_desk.h"

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::test;
using namespace harrowby::test::reorder_desk;

/// Stocks and units that are no ordinary numbers.
class ReorderLimitsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sumTooLargeIsNotStored();
    void textInStock();
    void moreThanSixteenBits_data();
    void moreThanSixteenBits();
    void sixteenBitsHold_data();
    void sixteenBitsHold();
};

void ReorderLimitsTest::sumTooLargeIsNotStored()
{
    Counter counter;
    openShop(counter);
    counter.file.sql(u"UPDATE StockList SET StockAvailable = 1e308 WHERE StockID = 'A1'"_s);
    const QString asked = u'1' + QString(308, u'0');
    reorder(counter, milk, u"1e308"_s, asked);
    QCOMPARE(counter.file.cell(u"SELECT StockAvailable = 1e308 FROM StockList WHERE StockID = 'A1'"_s), u"1"_s);
    QCOMPARE(counter.text("Label13"), asked);
}

void ReorderLimitsTest::textInStock()
{
    Counter counter;
    openShop(counter);
    counter.file.sql(u"UPDATE StockList SET StockAvailable = '12 boxes' WHERE StockID = 'A1'"_s);
    reorder(counter, milk, u"5"_s, u"5"_s);
    QCOMPARE(available(counter), u"17"_s);
}

void ReorderLimitsTest::moreThanSixteenBits_data()
{
    QTest::addColumn<QString>("units");
    QTest::addColumn<QString>("stock");
    QTest::newRow("32768") << u"32768"_s << u"32788"_s;
    QTest::newRow("32767.5, to even") << u"32767.5"_s << u"32787.5"_s;
    QTest::newRow("40000") << u"40000"_s << u"40020"_s;
    QTest::newRow("1e10") << u"1e10"_s << u"10000000020"_s;
}

/// They are added, and cannot be taken back; nor can what was reordered before.
void ReorderLimitsTest::moreThanSixteenBits()
{
    QFETCH(QString, units);
    QFETCH(QString, stock);
    Counter counter;
    openShop(counter);
    reorder(counter, u"A2  |  TEA"_s, u"3"_s, u"3"_s);
    reorder(counter, milk, units, units == u"1e10"_s ? u"10000000000"_s : units);
    QCOMPARE(available(counter), stock);
    QCOMPARE(counter.text("Label13"), stock);
    QCOMPARE(counter.state().last.LastReorderItem, QString());
    counter.boxes.expect(nothingToUndo, box::Exclamation);
    counter.click("Command23");
    QCOMPARE(available(counter), stock);
    QCOMPARE(available(counter, u"A2"_s), u"103"_s);
}

void ReorderLimitsTest::sixteenBitsHold_data()
{
    QTest::addColumn<QString>("units");
    QTest::addColumn<QString>("left");
    QTest::newRow("32767") << u"32767"_s << u"20"_s;
    QTest::newRow("32767.4") << u"32767.4"_s << u"20.4"_s;
    QTest::newRow("32766.5, to even") << u"32766.5"_s << u"20.5"_s;
}

void ReorderLimitsTest::sixteenBitsHold()
{
    QFETCH(QString, units);
    QFETCH(QString, left);
    Counter counter;
    openShop(counter);
    reorder(counter, milk, units, units);
    const QString rounded = units == u"32766.5"_s ? u"32766"_s : u"32767"_s;
    counter.boxes.expect(undoQuestion(rounded, milk), box::Ask, Answer::Yes);
    counter.click("Command23");
    QCOMPARE(QString::number(available(counter).toDouble(), 'f', 1), left.contains(u'.') ? left : left + u".0"_s);
}

HARROWBY_TEST(reorder_limits_test, ReorderLimitsTest)
#include "reorder_limits_test.moc"
