// SPDX-License-Identifier: MIT
#include "theme/colours.h"
#include "ui/widgets/packed_row.h"
#include "ui/widgets/row_index.h"
#include "ui/widgets/text_table_model.h"

#include "tests/program/test_program.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace harrowby;

/// Rows of a long list: how they are stored, found and announced to views.
class TextTableTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void rowIsPacked_data();
    void rowIsPacked();
    void indexFindsTheFirst();
    void indexAsksForTheText();
    void queuedRowsAreThereAtOnce();
    void queuedRowsArePublishedTogether();
    void changesPublishFirst();
    void queuedRowsChangeQuietly();
    void clearingEndsAFill();
    void foundWhateverTheChange();
    void capitalsShareARow();
    void colours();
    void coloursStayWithTheirRows();
    void foundBeyond16Bits();
};

namespace {

QStringList ids(const TextTableModel &table)
{
    QStringList all;
    for (int row = 0; row <= table.lastRow(); ++row)
        all << table.text(row, 0);
    return all;
}

} // namespace

void TextTableTest::rowIsPacked_data()
{
    QTest::addColumn<QStringList>("texts");
    QTest::addColumn<int>("columns");
    QTest::newRow("three") << QStringList{u"A1"_s, u"TEA"_s, u"1.50"_s} << 3;
    QTest::newRow("missing") << QStringList{u"A1"_s} << 3;
    QTest::newRow("too many") << QStringList{u"A1"_s, u"TEA"_s, u"1.50"_s} << 2;
    QTest::newRow("none") << QStringList() << 2;
    QTest::newRow("empty ones") << QStringList{QString(), u"TEA"_s, QString()} << 3;
    QTest::newRow("no columns") << QStringList{u"A1"_s} << 0;
    QTest::newRow("any characters") << QStringList{u"\u0000\uffff"_s, u"\U0001F95B"_s, u"\n"_s} << 3;
    QTest::newRow("longer than 16 bits") << QStringList{u"A1"_s, QString(70'000, u'x'), QString(70'000, u'y'), u"end"_s}
                                         << 4;
}

void TextTableTest::rowIsPacked()
{
    QFETCH(QStringList, texts);
    QFETCH(const int, columns);
    const PackedRow row(texts, columns);
    texts.resize(columns);
    QCOMPARE(row.columns(), columns);
    QCOMPARE(row.texts(), texts);
    for (int column = 0; column < columns; ++column) {
        QCOMPARE(row.text(column), texts.at(column));
        QCOMPARE(row.view(column), QStringView(texts.at(column)));
    }
}

void TextTableTest::indexFindsTheFirst()
{
    const QStringList texts{u"B"_s, u"A"_s, u"b"_s, u"É"_s, QString(), u"a"_s};
    RowIndex index;
    for (const QString &text : texts)
        index.append(text);
    QCOMPARE(index.count(), 6);
    const auto find = [&](const QString &text) {
        return index.find(text, [&](int row) { return texts.at(row).compare(text, Qt::CaseInsensitive) == 0; });
    };
    QCOMPARE(find(u"b"_s), 0);
    QCOMPARE(find(u"A"_s), 1);
    QCOMPARE(find(u"é"_s), 3);
    QCOMPARE(find(QString()), 4);
    QCOMPARE(find(u"C"_s), -1);
    index.clear();
    QCOMPARE(index.count(), 0);
    QCOMPARE(find(u"b"_s), -1);
}

void TextTableTest::indexAsksForTheText()
{
    RowIndex index;
    for (int row = 0; row < 4; ++row)
        index.append(u"A"_s);
    QList<int> asked;
    const int found = index.find(u"a"_s, [&](int row) {
        asked << row;
        return row == 2;
    });
    QCOMPARE(found, 2);
    QCOMPARE(asked, (QList<int>{0, 1, 2}));
    QCOMPARE(index.find(u"a"_s, [](int) { return false; }), -1);
}

void TextTableTest::queuedRowsAreThereAtOnce()
{
    TextTableModel table({u"ID"_s, u"Name"_s});
    const QAbstractItemModelTester tester(&table, QAbstractItemModelTester::FailureReportingMode::QtTest);
    QCOMPARE(table.lastRow(), -1);
    table.queueRow(QStringList{u"A1"_s, u"TEA"_s});
    table.queueRow(QStringList{u"A2"_s, u"JAM"_s});
    QCOMPARE(table.rowCount(), 0); // queued rows are not announced yet
    QCOMPARE(table.lastRow(), 1);
    QCOMPARE(table.text(1, 1), u"JAM"_s);
    QCOMPARE(table.findRow(u"a2"_s), 1);
    QVERIFY(table.hasManyQueued());
    table.publishRows();
    QVERIFY(!table.hasManyQueued());
    table.queueRow(QStringList{u"A3"_s});
    QVERIFY(!table.hasManyQueued());
    table.queueRow(QStringList{u"A4"_s});
    QVERIFY(table.hasManyQueued()); // twice as many as the views know of
    table.publishRows();
    table.removeRowAt(3);
    table.removeRowAt(2);
    QCOMPARE(table.rowCount(), 2);
    QCOMPARE(table.index(1, 1).data().toString(), u"JAM"_s);
}

void TextTableTest::queuedRowsArePublishedTogether()
{
    TextTableModel table({u"ID"_s});
    const QAbstractItemModelTester tester(&table, QAbstractItemModelTester::FailureReportingMode::QtTest);
    table.appendRow({u"A1"_s});
    const QSignalSpy inserted(&table, &QAbstractItemModel::rowsInserted);
    const QSignalSpy changed(&table, &QAbstractItemModel::dataChanged);
    for (const QString &id : {u"A2"_s, u"A3"_s, u"A4"_s})
        table.queueRow(QStringList{id});
    QCOMPARE(inserted.count(), 0);
    table.publishRows();
    QCOMPARE(inserted.count(), 1);
    QCOMPARE(inserted.first().at(1).toInt(), 1);
    QCOMPARE(inserted.first().at(2).toInt(), 3);
    table.publishRows();
    QCOMPARE(inserted.count(), 1);
    QCOMPARE(changed.count(), 0);
}

void TextTableTest::changesPublishFirst()
{
    TextTableModel table({u"ID"_s});
    const QAbstractItemModelTester tester(&table, QAbstractItemModelTester::FailureReportingMode::QtTest);
    table.queueRow(QStringList{u"A1"_s});
    table.appendRow({u"A2"_s});
    QCOMPARE(table.rowCount(), 2);
    table.queueRow(QStringList{u"A3"_s});
    table.removeRowAt(0);
    QCOMPARE(table.rowCount(), 2);
    QCOMPARE(ids(table), (QStringList{u"A2"_s, u"A3"_s}));
    table.queueRow(QStringList{u"A4"_s});
    table.removeRowAt(2); // one that was queued
    QCOMPARE(ids(table), (QStringList{u"A2"_s, u"A3"_s}));
    table.queueRow(QStringList{u"A5"_s});
    table.clear();
    QCOMPARE(table.lastRow(), -1);
    table.publishRows();
    QCOMPARE(table.rowCount(), 0);
}

void TextTableTest::queuedRowsChangeQuietly()
{
    TextTableModel table({u"ID"_s, u"Name"_s});
    const QAbstractItemModelTester tester(&table, QAbstractItemModelTester::FailureReportingMode::QtTest);
    const QSignalSpy changed(&table, &QAbstractItemModel::dataChanged);
    table.queueRow(QStringList{u"A1"_s, u"TEA"_s});
    table.setLow(0, true);
    table.setRow(0, QStringList{u"A1"_s, u"JAM"_s});
    table.setText(0, 1, u"BUN"_s);
    QCOMPARE(changed.count(), 0); // the row has not been announced yet
    table.publishRows();
    QCOMPARE(table.text(0, 1), u"BUN"_s);
    QVERIFY(table.isLow(0));
    table.setRow(0, QStringList{u"A1"_s});
    QCOMPARE(changed.count(), 1);
    QCOMPARE(table.text(0, 1), QString());
    table.setRow(1, QStringList{u"A2"_s}); // no such row
    table.setRow(-1, QStringList{u"A2"_s});
    QCOMPARE(changed.count(), 1);
    QCOMPARE(table.rowCount(), 1);
}

void TextTableTest::clearingEndsAFill()
{
    TextTableModel table({u"ID"_s});
    const LatestLoad::Turn begun = table.fill();
    table.appendRow({u"A1"_s});
    table.setRow(0, QStringList{u"A2"_s});
    table.removeRowAt(0);
    QVERIFY(begun.isLatest());
    table.clear();
    QVERIFY(!begun.isLatest());
    const LatestLoad::Turn second = table.fill();
    QVERIFY(second.isLatest());
    table.clear();
    QVERIFY(!second.isLatest());
    QVERIFY(!begun.isLatest());
}

void TextTableTest::foundWhateverTheChange()
{
    TextTableModel table({u"ID"_s, u"Name"_s});
    for (const QString &id : {u"A1"_s, u"A2"_s, u"A3"_s})
        table.appendRow({id});
    QCOMPARE(table.findRow(u"A3"_s), 2);
    table.removeRowAt(0);
    QCOMPARE(table.findRow(u"A1"_s), -1);
    QCOMPARE(table.findRow(u"A3"_s), 1);
    table.setRow(1, QStringList{u"B9"_s});
    QCOMPARE(table.findRow(u"A3"_s), -1);
    QCOMPARE(table.findRow(u"b9"_s), 1);
    table.setText(0, 1, u"B9"_s); // not in the first column
    QCOMPARE(table.findRow(u"B9"_s), 1);
    table.setText(0, 0, u"B9"_s);
    QCOMPARE(table.findRow(u"B9"_s), 0);
    table.queueRow(QStringList{u"C1"_s});
    QCOMPARE(table.findRow(u"C1"_s), 2);
    table.clear();
    QCOMPARE(table.findRow(u"B9"_s), -1);
    table.appendRow({u"A2"_s});
    QCOMPARE(table.findRow(u"A2"_s), 0);
}

void TextTableTest::capitalsShareARow()
{
    TextTableModel table({u"ID"_s});
    for (const QString &id : {u"A1"_s, u"a1"_s, u"ÉCLAIR"_s, u"A"_s, u"A12"_s, u"A1 "_s})
        table.appendRow({id});
    QCOMPARE(table.findRow(u"a1"_s), 0);
    QCOMPARE(table.findRow(u"éclair"_s), 2);
    QCOMPARE(table.findRow(u"a"_s), 3);
    QCOMPARE(table.findRow(u"a12"_s), 4);
    QCOMPARE(table.findRow(u"A1 "_s), 5);
    table.removeRowAt(0);
    QCOMPARE(table.findRow(u"A1"_s), 0);
    table.removeRowAt(0);
    QCOMPARE(table.findRow(u"A1"_s), -1);
}

void TextTableTest::colours()
{
    TextTableModel table({u"ID"_s, u"Name"_s});
    table.appendRow({u"A1"_s, u"TEA"_s});
    const auto colour = [&](int column) { return table.index(0, column).data(Qt::ForegroundRole); };
    QVERIFY(!colour(0).isValid());
    const QSignalSpy changed(&table, &QAbstractItemModel::dataChanged);
    table.setLow(0, true);
    QVERIFY(table.isLow(0));
    QCOMPARE(colour(0).value<QColor>(), QColor(Colours::current().lowRow));
    QVERIFY(!colour(1).isValid()); // the item text alone
    const auto told = [&](int role) { return table.index(0, 0).data(role).toString(); };
    QCOMPARE(told(TextTableModel::markRole), u"\u25BC low"_s); // in addition to the colour
    QCOMPARE(told(Qt::AccessibleTextRole), u"A1, low stock"_s);
    QVERIFY(!table.index(0, 1).data(TextTableModel::markRole).isValid());
    table.setLow(0, true);
    QCOMPARE(changed.count(), 1);
    table.setLow(0, false);
    QVERIFY(!table.isLow(0));
    QCOMPARE(colour(0).value<QColor>(), QColor(Colours::current().enoughRow));
    QVERIFY(!table.index(0, 0).data(TextTableModel::markRole).isValid());
    QVERIFY(!table.index(0, 0).data(Qt::AccessibleTextRole).isValid());
    QCOMPARE(changed.count(), 2);
    table.setLow(1, true);
    table.setLow(-1, true);
    QCOMPARE(changed.count(), 2);
    QVERIFY(!table.isLow(1));
}

void TextTableTest::coloursStayWithTheirRows()
{
    TextTableModel table({u"ID"_s});
    for (const QString &id : {u"A1"_s, u"A2"_s, u"A3"_s})
        table.appendRow({id});
    table.setLow(2, true);
    table.setRow(2, QStringList{u"A9"_s});
    QVERIFY(table.isLow(2));
    table.removeRowAt(0);
    QVERIFY(!table.isLow(0));
    QVERIFY(table.isLow(1));
    table.removeRowAt(1);
    table.appendRow({u"A3"_s});
    QVERIFY(!table.isLow(1));
}

void TextTableTest::foundBeyond16Bits()
{
    constexpr int rows = 40'000;
    TextTableModel table({u"ID"_s, u"Name"_s});
    for (int row = 0; row < rows; ++row) {
        QCOMPARE(table.findRow(u"ID-%1"_s.arg(row)), -1);
        table.queueRow(QStringList{u"ID-%1"_s.arg(row), u"ITEM"_s});
    }
    table.publishRows();
    for (const int row : {0, 1, 32'766, 32'767, 32'768, 39'999}) {
        QCOMPARE(table.findRow(u"id-%1"_s.arg(row)), row);
        table.setRow(row, QStringList{u"ID-%1"_s.arg(row), u"CHANGED"_s});
        QCOMPARE(table.text(row, 1), u"CHANGED"_s);
    }
    QCOMPARE(table.text(32'769, 1), u"ITEM"_s);
}

HARROWBY_TEST(text_table_test, TextTableTest)
#include "text_table_test.moc"
