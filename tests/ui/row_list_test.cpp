// SPDX-License-Identifier: MIT
#include "tests/program/test_program.h"
#include "tests/ui/paint_count.h"
#include "tests/ui/widget_use.h"

#include "theme/colours.h"
#include "theme/style.h"
#include "ui/widgets/elided_label.h"
#include "ui/widgets/item_key_delegate.h"
#include "ui/widgets/name_list.h"
#include "ui/widgets/pick_list.h"
#include "ui/widgets/plain_tool_tip.h"
#include "ui/widgets/quick_sale_button.h"
#include "ui/widgets/row_list.h"
#include "ui/widgets/text_table_model.h"
#include "ui/widgets/two_line_delegate.h"

#include <QAbstractItemModelTester>
#include <QHeaderView>
#include <QHelpEvent>
#include <QImage>
#include <QLineEdit>
#include <QPainter>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QTextDocumentFragment>
#include <QToolTip>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::test;

/// The lists of rows and of names, and the table behind them.
class RowListTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tableKeepsItsRows();
    void tableFindsWholeFirstColumn();
    void tableAlignsFigures();
    void rowListSelects();
    void rowListSelectsTheNextRowAfterARemoval();
    void rowListOpensRows();
    void rowListNeverScrollsSideways();
    void rowListIsPaintedAnewWhereItIsSeen();
    void rowListShowsToolTipsAsPlainText();
    void nameListShowsToolTipsAsPlainText();
    void itemKeyIsPaintedNameOverId();
    void lowRowStaysRedWhenItIsSelected();
    void longTextTakesTwoLines();
};

void RowListTest::tableKeepsItsRows()
{
    TextTableModel table({u"Item"_s, u"Qty"_s, u"Cost"_s});
    const QAbstractItemModelTester tester(&table, failuresInTest);
    QCOMPARE(table.columnCount(), 3);
    QCOMPARE(table.headerData(1, Qt::Horizontal).toString(), u"Qty"_s);
    table.appendRow({u"1  |  TEA"_s, u"2"_s, u"5.00"_s});
    table.appendRow({u"2  |  MILK"_s});
    table.appendRow({u"3"_s, u"1"_s, u"1.00"_s, u"one column too many"_s});
    QCOMPARE(table.rowCount(), 3);
    QCOMPARE(table.text(1, 0), u"2  |  MILK"_s);
    QCOMPARE(table.text(1, 2), QString());
    QCOMPARE(table.text(2, 3), QString());

    const QSignalSpy changed(&table, &QAbstractItemModel::dataChanged);
    table.setText(1, 2, u"<b>&amp;</b>"_s);
    QCOMPARE(changed.count(), 1);
    QCOMPARE(table.index(1, 2).data().toString(), u"<b>&amp;</b>"_s);
    QCOMPARE(table.index(1, 2).data(Qt::ToolTipRole).toString(), u"<b>&amp;</b>"_s);

    table.removeRowAt(0);
    QCOMPARE(table.rowCount(), 2);
    QCOMPARE(table.text(0, 0), u"2  |  MILK"_s);
    table.removeRowAt(2);
    table.removeRowAt(-1);
    table.setText(7, 0, u"nowhere"_s);
    QCOMPARE(table.rowCount(), 2);
    QCOMPARE(table.text(7, 0), QString());
    table.clear();
    QCOMPARE(table.rowCount(), 0);
}

void RowListTest::tableFindsWholeFirstColumn()
{
    TextTableModel table({u"Item"_s, u"Qty"_s});
    table.appendRow({u"12  |  MILK SHAKE"_s});
    table.appendRow({u"12  |  Milk"_s});
    table.appendRow({u"12  |  MILK"_s});
    QCOMPARE(table.findRow(u"12  |  milk"_s), 1);
    QCOMPARE(table.findRow(u"12"_s), -1);
    QCOMPARE(table.findRow({}), -1);
}

void RowListTest::tableAlignsFigures()
{
    TextTableModel table({u"Item"_s, u"Cost"_s});
    table.appendRow({u"TEA"_s, u"1.00"_s});
    table.setFigureColumns({1});
    const auto alignment = [&](int column) {
        return table.index(0, column).data(Qt::TextAlignmentRole).value<Qt::Alignment>();
    };
    QVERIFY(alignment(0) & Qt::AlignLeft);
    QVERIFY(alignment(1) & Qt::AlignRight);
}

void RowListTest::rowListSelects()
{
    RowList list({u"Item"_s, u"Qty"_s});
    QCOMPARE(list.selectedRow(), -1);
    list.rows().appendRow({u"TEA"_s});
    list.rows().appendRow({u"MILK"_s});
    QCOMPARE(list.selectedRow(), -1);
    list.selectRow(1);
    QCOMPARE(list.selectedRow(), 1);
    list.selectRow(0);
    QCOMPARE(list.selectedRow(), 0);
    list.selectRow(5);
    QCOMPARE(list.selectedRow(), -1);
    list.selectRow(1);
    list.rows().clear();
    QCOMPARE(list.selectedRow(), -1);
}

void RowListTest::rowListSelectsTheNextRowAfterARemoval()
{
    RowList list({u"Item"_s});
    for (const auto &text : {u"A"_s, u"B"_s, u"C"_s})
        list.rows().appendRow({text});
    list.selectRow(1);
    list.rows().removeRowAt(1);
    QCOMPARE(list.selectedRow(), 1);
    QCOMPARE(list.rows().text(list.selectedRow(), 0), u"C"_s);
    list.rows().removeRowAt(1);
    QCOMPARE(list.rows().text(list.selectedRow(), 0), u"A"_s);
    list.rows().removeRowAt(0);
    QCOMPARE(list.selectedRow(), -1);
}

void RowListTest::rowListOpensRows()
{
    RowList list({u"Item"_s});
    list.rows().appendRow({u"TEA"_s});
    list.rows().appendRow({u"MILK"_s});
    list.resize(300, 200);
    list.show();
    QVERIFY(QTest::qWaitForWindowExposed(&list));
    const QSignalSpy opened(&list, &RowList::rowOpened);
    QTest::keyClick(&list, Qt::Key_Return);
    QCOMPARE(opened.count(), 0);
    list.selectRow(1);
    QTest::keyClick(&list, Qt::Key_Return);
    QTest::keyClick(&list, Qt::Key_Enter);
    QCOMPARE(opened.count(), 2);
    QCOMPARE(opened.last().first().toInt(), 1);
    const QPoint first = list.visualRect(list.rows().index(0, 0)).center();
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, first);
    QCOMPARE(opened.count(), 2);
    QTest::mouseDClick(list.viewport(), Qt::LeftButton, {}, first);
    QCOMPARE(opened.count(), 3);
    QCOMPARE(opened.last().first().toInt(), 0);
}

void RowListTest::rowListNeverScrollsSideways()
{
    RowList list({u"Item"_s, u"Qty"_s, u"Cost"_s});
    list.setColumnShares({5, 1});
    list.setColumnSamples({{}, {}, u"99,999.00"_s});
    list.rows().appendRow({QString(10000, u'W'), u"1"_s, u"2"_s});
    list.show();
    for (const int width : {250, 400, 900}) {
        list.resize(width, 200);
        QTRY_COMPARE(list.header()->length(), list.viewport()->width());
        for (int column = 0; column < 3; ++column)
            QVERIFY(list.columnWidth(column) >= list.header()->fontMetrics().horizontalAdvance(
                                                    list.rows().headerData(column, Qt::Horizontal).toString()));
        QVERIFY(list.columnWidth(2) > list.fontMetrics().horizontalAdvance(u"99,999.00"_s));
    }
    QVERIFY(list.columnWidth(0) > list.columnWidth(1));
}

void RowListTest::nameListShowsToolTipsAsPlainText()
{
    NameList list;
    list.addItem(u"<b>M & M</b>"_s);
    list.show();
    QToolTip::hideText();
    const QPoint cell = list.visualItemRect(list.item(0)).center();
    QHelpEvent event(QEvent::ToolTip, cell, list.viewport()->mapToGlobal(cell));
    QCoreApplication::sendEvent(list.viewport(), &event);
    QCOMPARE(QTextDocumentFragment::fromHtml(QToolTip::text()).toPlainText().remove(QChar(0x200B)), u"<b>M & M</b>"_s);
}

void RowListTest::itemKeyIsPaintedNameOverId()
{
    const auto painted = [](const QString &key) {
        RowList list({u"Item"_s});
        list.setItemDelegate(new ItemKeyDelegate(&list));
        list.rows().appendRow({key});
        QStyleOptionViewItem option;
        option.initFrom(&list);
        option.rect = QRect(0, 0, 200, 44);
        QImage image(option.rect.size(), QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        list.itemDelegate()->paint(&painter, option, list.model()->index(0, 0));
        return image;
    };
    const auto upper = [](const QImage &image) { return image.copy(0, 0, 200, 18); };
    const auto lower = [](const QImage &image) { return image.copy(0, 28, 200, 16); };
    const QImage tea = painted(u"A1  |  TEA"_s);
    const QImage otherId = painted(u"B2  |  TEA"_s);
    const QImage otherName = painted(u"A1  |  JAM"_s);
    QCOMPARE(upper(tea), upper(otherId));
    QVERIFY(lower(tea) != lower(otherId));
    QCOMPARE(lower(tea), lower(otherName));
    QVERIFY(upper(tea) != upper(otherName));
}

void RowListTest::lowRowStaysRedWhenItIsSelected()
{
    QWidget window; // dressed like the till: its style has colours of its own for selected rows
    RowList list({u"Stock ID"_s}, &window);
    list.setItemDelegate(new TwoLineDelegate(&list));
    applyTillStyle(window);
    list.resize(300, 200);
    window.resize(300, 200);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    list.rows().appendRow({u"BEV-0001"_s});
    const auto redPixels = [&list] {
        const QImage image = list.viewport()->grab().toImage();
        int red = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const QColor colour = image.pixelColor(x, y);
                red += colour.red() > 200 && colour.green() < 120 && colour.blue() < 120 ? 1 : 0;
            }
        }
        return red;
    };
    list.rows().setLow(0, false);
    QCOMPARE(redPixels(), 0);
    list.rows().setLow(0, true);
    QVERIFY(redPixels() > 0);
    list.selectRow(0);
    QVERIFY(redPixels() > 0);
}

void RowListTest::longTextTakesTwoLines()
{
    RowList list({u"Stock Name"_s});
    list.setItemDelegate(new TwoLineDelegate(&list));
    list.rows().appendRow({u"BREAKFAST TEA 80 BAGS"_s});
    const auto inkOf = [&list](int width, int top, int height) {
        QStyleOptionViewItem option;
        option.initFrom(&list);
        option.rect = QRect(0, 0, width, 44);
        QImage image(option.rect.size(), QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        list.itemDelegate()->paint(&painter, option, list.model()->index(0, 0));
        const QImage part = image.copy(0, top, width, height);
        int ink = 0;
        for (int y = 0; y < part.height(); ++y) {
            for (int x = 0; x < part.width(); ++x)
                ink += part.pixelColor(x, y).lightness() < 128 ? 1 : 0;
        }
        return ink;
    };
    const int middle = 2; // between the lines of a two-line cell; within the text of a single line
    QVERIFY(inkOf(400, 22 - middle, 2 * middle) > 0);
    QVERIFY(inkOf(130, 4, 16) > 0);
    QVERIFY(inkOf(130, 24, 16) > 0);
    QVERIFY(inkOf(400, 0, 10) == 0);
}

void RowListTest::rowListIsPaintedAnewWhereItIsSeen()
{
    RowList list({u"Item"_s, u"Qty"_s});
    TextTableModel &rows = list.rows();
    rows.appendRow({u"TEA"_s, u"1"_s});
    list.resize(200, 150);
    list.show();
    QVERIFY(QTest::qWaitForWindowExposed(&list));
    const int rowHeight = list.visualRect(rows.index(0, 0)).height();
    list.resize(200, list.height() - list.viewport()->height() + 3 * rowHeight);
    PaintCount painted(list.viewport());
    PaintCount headed(list.header()->viewport());
    const auto paintedWith = [&](int count) {
        painted.take();
        headed.take();
        for (int row = 0; row < count; ++row)
            rows.queueRow({u"MILK"_s, u"2"_s});
        rows.publishRows();
        const int times = painted.take();
        return times > 0 ? times : headed.take();
    };
    QCOMPARE(paintedWith(1), 1);
    QCOMPARE(paintedWith(1), 1); // the last one that has room
    QVERIFY(!list.verticalScrollBar()->isVisible());
    QVERIFY(paintedWith(1) > 0); // whose scroll bar takes room
    QVERIFY(list.verticalScrollBar()->isVisible());
    QCOMPARE(paintedWith(20), 0);
    const int most = list.verticalScrollBar()->maximum();
    QCOMPARE(paintedWith(20), 0);
    QVERIFY(list.verticalScrollBar()->maximum() > most);
    list.scrollToBottom();
    QCOMPARE(painted.take(), 1);
    QCOMPARE(paintedWith(1), 0);
    QCOMPARE(list.indexAt({1, 1}).row(), 41);

    // With another change before the rows are laid out.
    rows.removeRowAt(rows.rowCount() - 2);
    rows.appendRow({u"JAM"_s});
    QVERIFY(painted.take() > 0);
    rows.appendRow({u"JAM"_s});
    rows.removeRowAt(rows.rowCount() - 3);
    QVERIFY(painted.take() > 0);
    rows.appendRow({u"JAM"_s});
    list.setFont(QFont(list.font().family(), 20));
    QVERIFY(painted.take() > 0);
    rows.clear();
    rows.appendRow({u"JAM"_s});
    QVERIFY(painted.take() > 0);
}

void RowListTest::rowListShowsToolTipsAsPlainText()
{
    RowList list({u"Item"_s});
    list.rows().appendRow({u"<b>M & M</b> &lt;"_s});
    list.resize(300, 200);
    list.show();
    QVERIFY(QTest::qWaitForWindowExposed(&list));
    const QPoint cell = list.visualRect(list.rows().index(0, 0)).center();
    QHelpEvent event(QEvent::ToolTip, cell, list.viewport()->mapToGlobal(cell));
    QCoreApplication::sendEvent(list.viewport(), &event);
    QCOMPARE(QTextDocumentFragment::fromHtml(QToolTip::text()).toPlainText(), u"<b>M & M</b> &lt;"_s);
    QToolTip::hideText();
}

HARROWBY_TEST(row_list_test, RowListTest)
#include "row_list_test.moc"
