// SPDX-License-Identifier: MIT
#include "tests/program/test_program.h"
// What each of the window's own widgets promises, one at a time.
#include "theme/colours.h"
#include "theme/style.h"
#include "ui/widgets/elided_label.h"
#include "ui/widgets/entry_edit.h"
#include "ui/widgets/entry_model.h"
#include "ui/widgets/item_key_delegate.h"
#include "ui/widgets/link_label.h"
#include "ui/widgets/name_list.h"
#include "ui/widgets/pick_list.h"
#include "ui/widgets/plain_tool_tip.h"
#include "ui/widgets/quick_sale_button.h"
#include "ui/widgets/row_list.h"
#include "ui/widgets/tab_strip.h"
#include "ui/widgets/text_table_model.h"
#include "ui/widgets/two_line_delegate.h"

#include <QAbstractItemModelTester>
#include <QAbstractItemView>
#include <QAccessible>
#include <QCompleter>
#include <QHeaderView>
#include <QHelpEvent>
#include <QImage>
#include <QLineEdit>
#include <QPainter>
#include <QSignalSpy>
#include <QTest>
#include <QTextDocumentFragment>
#include <QToolTip>
#include <QWheelEvent>

using namespace Qt::StringLiterals;
using namespace harrowby;

namespace {

const QAbstractItemModelTester::FailureReportingMode failuresInTest =
    QAbstractItemModelTester::FailureReportingMode::QtTest;

void turnWheel(QWidget &widget, int steps)
{
    const QPointF centre = widget.rect().center();
    QWheelEvent event(centre, widget.mapToGlobal(centre), {}, {0, steps * 120}, Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&widget, &event);
}

/// What a person sees as the tool tip of a widget.
QString shownToolTip(QWidget &widget)
{
    QToolTip::hideText();
    const QPoint centre = widget.rect().center();
    QHelpEvent event(QEvent::ToolTip, centre, widget.mapToGlobal(centre));
    QCoreApplication::sendEvent(&widget, &event);
    return QTextDocumentFragment::fromHtml(QToolTip::text()).toPlainText().remove(QChar(0x200B));
}

/// Lets a pick list be used as on a screen: it is shown, active and has the focus.
void useOnScreen(PickList &list)
{
    list.resize(240, 44);
    list.show();
    QVERIFY(QTest::qWaitForWindowExposed(&list));
    list.activateWindow();
    list.setFocus();
    QTRY_VERIFY(list.hasFocus());
}

} // namespace

class WidgetsTest : public QObject
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
    void rowListShowsToolTipsAsPlainText();
    void nameListShowsToolTipsAsPlainText();
    void typingReplacesWhatIsMarked();
    void pressOnTheTextDropsTheList();
    void itemKeyIsPaintedNameOverId();
    void lowRowStaysRedWhenItIsSelected();
    void longTextTakesTwoLines();
    void linkIsPressedEveryWay();
    void entryModelKeepsItsEntries();
    void pickListLeavesTheTextAlone();
    void pickListSetsTextFromCode();
    void pickListClears();
    void pickListTakesTypedText();
    void pickListPicksByArrowKeys();
    void pickListPicksByMouse();
    void pickListCountsCodeForNoPick();
    void pickListDoesNotTakeTypingForAPick_data();
    void pickListDoesNotTakeTypingForAPick();
    void pickListTurnsOnlyWithFocus();
    void pickListIsCheapWithManyEntries();
    void pickListMakesItsPopupLate();
    void pickListIsAsLargeAsAnyOther();
    void tabStripClicks();
    void tabStripGoesToATabByItsKey();
    void tabStripAsksBeforeAChoice_data();
    void tabStripAsksBeforeAChoice();
    void tabStripSelectsFromCode();
    void cardKeepsItsCaption_data();
    void cardKeepsItsCaption();
    void cardIsReadOut();
    void cardShowsThatItIsOutOfStock();
    void labelElides();
    void labelOfALevelShowsThatItIsLow();
    void entryShowsItsStart();
    void toolTipsArePlain_data();
    void toolTipsArePlain();
};

void WidgetsTest::tableKeepsItsRows()
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

void WidgetsTest::tableFindsWholeFirstColumn()
{
    TextTableModel table({u"Item"_s, u"Qty"_s});
    table.appendRow({u"12  |  MILK SHAKE"_s});
    table.appendRow({u"12  |  Milk"_s});
    table.appendRow({u"12  |  MILK"_s});
    QCOMPARE(table.findRow(u"12  |  milk"_s), 1);
    QCOMPARE(table.findRow(u"12"_s), -1);
    QCOMPARE(table.findRow({}), -1);
}

void WidgetsTest::tableAlignsFigures()
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

void WidgetsTest::rowListSelects()
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

void WidgetsTest::rowListSelectsTheNextRowAfterARemoval()
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

void WidgetsTest::rowListOpensRows()
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

void WidgetsTest::rowListNeverScrollsSideways()
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

void WidgetsTest::nameListShowsToolTipsAsPlainText()
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

void WidgetsTest::typingReplacesWhatIsMarked()
{
    PickList list;
    for (const QString &entry : {u"DRINKS"_s, u"FOOD"_s})
        list.addEntry(entry);
    list.show();
    list.setFocus();
    QTest::keyClick(&list, Qt::Key_Down);
    list.lineEdit()->end(false);
    QTest::keyClicks(&list, u"X"_s);
    QCOMPARE(list.entryText(), u"DRINKSX"_s);
    list.lineEdit()->selectAll();
    QTest::keyClicks(&list, u"F"_s);
    QCOMPARE(list.entryText(), u"F"_s);
}

void WidgetsTest::pressOnTheTextDropsTheList()
{
    PickList list;
    list.addEntry(u"DRINKS"_s);
    list.setDropsOnPress(true);
    list.show();
    QTest::mouseClick(list.lineEdit(), Qt::LeftButton);
    QVERIFY(list.view()->isVisible());
    list.hidePopup();
    list.setDropsOnPress(false);
    QTest::mouseClick(list.lineEdit(), Qt::LeftButton);
    QVERIFY(!list.view()->isVisible());
}

void WidgetsTest::itemKeyIsPaintedNameOverId()
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

void WidgetsTest::lowRowStaysRedWhenItIsSelected()
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

void WidgetsTest::longTextTakesTwoLines()
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
    const int middle = 2; // between two lines, and right through a single one
    QVERIFY(inkOf(400, 22 - middle, 2 * middle) > 0);
    QVERIFY(inkOf(130, 4, 16) > 0);
    QVERIFY(inkOf(130, 24, 16) > 0);
    QVERIFY(inkOf(400, 0, 10) == 0);
}

void WidgetsTest::linkIsPressedEveryWay()
{
    LinkLabel link;
    link.setText(u"  7"_s);
    link.show();
    QSignalSpy clicked(&link, &LinkLabel::clicked);
    QTest::mouseClick(&link, Qt::LeftButton);
    QTest::keyClick(&link, Qt::Key_Return);
    QTest::keyClick(&link, Qt::Key_Space);
    QTest::keyClick(&link, Qt::Key_A);
    QTest::mouseClick(&link, Qt::RightButton);
    QCOMPARE(clicked.size(), 3);
    QAccessibleInterface *reader = QAccessible::queryAccessibleInterface(&link);
    QCOMPARE(reader->role(), QAccessible::Link);
    QCOMPARE(reader->text(QAccessible::Name), u"  7"_s);
    QVERIFY(reader->actionInterface()->actionNames().contains(QAccessibleActionInterface::pressAction()));
    reader->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    QCOMPARE(clicked.size(), 4);
}

void WidgetsTest::rowListShowsToolTipsAsPlainText()
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

void WidgetsTest::entryModelKeepsItsEntries()
{
    EntryModel model;
    const QAbstractItemModelTester tester(&model, failuresInTest);
    model.append(u"A"_s);
    model.append(u"b"_s);
    model.append(u"A"_s);
    QCOMPARE(model.rowCount(), 3);
    QCOMPARE(model.index(1).data().toString(), u"b"_s);
    QCOMPARE(model.index(1).data(Qt::ToolTipRole).toString(), u"b"_s);
    QCOMPARE(model.find(u"A"_s), 0);
    QCOMPARE(model.find(u"B"_s), -1);
    QVERIFY(model.removeRows(0, 1));
    QCOMPARE(model.find(u"A"_s), 1);
    QVERIFY(!model.removeRows(1, 2));
    model.clear();
    QCOMPARE(model.rowCount(), 0);
}

void WidgetsTest::pickListLeavesTheTextAlone()
{
    PickList list;
    const QSignalSpy changed(&list, &PickList::entryTextChanged);
    list.addEntry(u"FIRST"_s);
    QCOMPARE(list.entryText(), QString());
    QCOMPARE(list.currentIndex(), -1);
    list.setEntryText(u"second"_s);
    list.addEntry(u"SECOND"_s);
    QCOMPARE(list.entryText(), u"second"_s);
    QCOMPARE(list.count(), 2);
    QCOMPARE(changed.count(), 1);
    QVERIFY(list.isEditable());
    QVERIFY(!list.completer());
    QCOMPARE(list.insertPolicy(), QComboBox::NoInsert);
}

void WidgetsTest::pickListSetsTextFromCode()
{
    PickList list;
    list.addEntry(u"A"_s);
    list.addEntry(u"B"_s);
    const QSignalSpy changed(&list, &PickList::entryTextChanged);
    const QSignalSpy picked(&list, &PickList::picked);
    list.setEntryText(u"B"_s);
    list.setEntryText(u"B"_s);
    QCOMPARE(changed.count(), 1);
    QCOMPARE(changed.last().first().toString(), u"B"_s);
    QCOMPARE(list.currentIndex(), -1);
    list.setEntryText({});
    QCOMPARE(changed.count(), 2);
    QCOMPARE(list.count(), 2);
    QCOMPARE(picked.count(), 0);
}

void WidgetsTest::pickListClears()
{
    PickList list;
    list.addEntry(u"A"_s);
    const QSignalSpy changed(&list, &PickList::entryTextChanged);
    list.clearEntries();
    QCOMPARE(changed.count(), 0);
    list.addEntry(u"A"_s);
    list.setEntryText(u"A"_s);
    list.clearEntries();
    QCOMPARE(list.count(), 0);
    QCOMPARE(list.entryText(), QString());
    QCOMPARE(changed.count(), 2);
    QCOMPARE(changed.last().first().toString(), QString());
}

void WidgetsTest::pickListTakesTypedText()
{
    PickList list;
    list.addEntry(u"TEA"_s);
    useOnScreen(list);
    const QSignalSpy changed(&list, &PickList::entryTextChanged);
    QTest::keyClicks(&list, u"TE"_s);
    QCOMPARE(list.entryText(), u"TE"_s);
    QCOMPARE(changed.count(), 2);
    QTest::keyClick(&list, Qt::Key_Return);
    QCOMPARE(list.count(), 1);
    QCOMPARE(list.entryText(), u"TE"_s);
}

void WidgetsTest::pickListPicksByArrowKeys()
{
    PickList list;
    for (const auto &entry : {u"A"_s, u"B"_s, u"C"_s})
        list.addEntry(entry);
    useOnScreen(list);
    QStringList order;
    connect(&list, &PickList::entryTextChanged, this, [&](const QString &text) { order += u"text "_s + text; });
    connect(&list, &PickList::picked, this, [&](int index) { order += u"picked %1"_s.arg(index); });
    connect(&list, &PickList::pickedAgain, this, [&](int index) { order += u"again %1"_s.arg(index); });
    list.setEntryText(u"B"_s);
    order.clear();
    QTest::keyClick(&list, Qt::Key_Down);
    QCOMPARE(order, QStringList({u"text C"_s, u"picked 2"_s}));
    order.clear();
    QTest::keyClick(&list, Qt::Key_Down);
    QCOMPARE(order, QStringList());
}

void WidgetsTest::pickListPicksByMouse()
{
    QApplication::setDoubleClickInterval(0); // a popup ignores the click that opened it, for so long
    PickList list;
    for (const auto &entry : {u"A"_s, u"B"_s, u"C"_s})
        list.addEntry(entry);
    list.setEntryText(u"typed"_s);
    useOnScreen(list);
    const QSignalSpy changed(&list, &PickList::entryTextChanged);
    const QSignalSpy picked(&list, &PickList::picked);
    const QSignalSpy again(&list, &PickList::pickedAgain);
    const auto pick = [&](int row) {
        list.showPopup();
        QTRY_VERIFY(list.view()->isVisible());
        const QPoint place = list.view()->visualRect(list.model()->index(row, 0)).center();
        QCoreApplication::processEvents();
        QTest::mouseMove(list.view()->viewport(), place);
        QTest::mouseClick(list.view()->viewport(), Qt::LeftButton, {}, place);
        QTRY_VERIFY(!list.view()->isVisible());
    };
    pick(1);
    QCOMPARE(list.entryText(), u"B"_s);
    QCOMPARE(changed.count(), 1);
    QCOMPARE(picked.count(), 1);
    QCOMPARE(again.count(), 0);
    pick(1);
    QCOMPARE(changed.count(), 1);
    QCOMPARE(picked.count(), 2);
    QCOMPARE(again.count(), 1);
    QCOMPARE(again.last().first().toInt(), 1);
}

void WidgetsTest::pickListCountsCodeForNoPick()
{
    PickList list;
    list.addEntry(u"A"_s);
    list.addEntry(u"B"_s);
    list.setEntryText(u"A"_s);
    useOnScreen(list);
    list.showPopup();
    list.setEntryText(u"x"_s);
    list.setEntryText(u"A"_s);
    const QSignalSpy again(&list, &PickList::pickedAgain);
    QTest::keyClick(list.view(), Qt::Key_Home);
    QTest::keyClick(list.view(), Qt::Key_Return);
    QCOMPARE(list.entryText(), u"A"_s);
    QVERIFY(!list.view()->isVisible());
    QCOMPARE(again.count(), 1);
}

void WidgetsTest::pickListDoesNotTakeTypingForAPick_data()
{
    QTest::addColumn<int>("key");
    QTest::newRow("Return") << static_cast<int>(Qt::Key_Return);
    QTest::newRow("Enter") << static_cast<int>(Qt::Key_Enter);
    QTest::newRow("Tab") << static_cast<int>(Qt::Key_Tab);
}

void WidgetsTest::pickListDoesNotTakeTypingForAPick()
{
    QFETCH(int, key);
    QWidget window;
    auto *list = new PickList(&window);
    auto *other = new PickList(&window);
    other->move(0, 100);
    list->addEntry(u"TEA"_s);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    window.activateWindow();
    list->setFocus();
    QTRY_VERIFY(list->hasFocus());
    const QSignalSpy picked(list, &PickList::picked);
    QTest::keyClicks(list, u"TEA"_s);
    QTest::keyClick(list, Qt::Key(key));
    QCOMPARE(list->hasFocus(), key != Qt::Key_Tab);
    QCOMPARE(list->entryText(), u"TEA"_s);
    QCOMPARE(picked.count(), 0);
}

void WidgetsTest::pickListTurnsOnlyWithFocus()
{
    QWidget window;
    auto *list = new PickList(&window);
    auto *other = new PickList(&window);
    other->move(0, 100);
    list->addEntry(u"A"_s);
    list->addEntry(u"B"_s);
    list->setEntryText(u"A"_s);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    window.activateWindow();
    other->setFocus();
    QTRY_VERIFY(other->hasFocus());
    turnWheel(*list, -1);
    QCOMPARE(list->entryText(), u"A"_s);
    QCOMPARE(list->focusPolicy(), Qt::StrongFocus); // nor does it get the focus by that
    list->setFocus();
    const QSignalSpy picked(list, &PickList::picked);
    turnWheel(*list, -1);
    QCOMPARE(list->entryText(), u"B"_s);
    QCOMPARE(picked.count(), 1);
}

void WidgetsTest::pickListIsCheapWithManyEntries()
{
    PickList list;
    const QSize before = list.sizeHint();
    list.setStyleSheet(u"QComboBox QAbstractItemView::item { min-height: 44px; }"_s);
    for (int i = 0; i < 100'000; ++i)
        list.addEntry(QString::number(i) + u"  |  "_s + QString(40, u'W'));
    QCOMPARE(list.count(), 100'000);
    QCOMPARE(list.sizeHint().width(), before.width());
    list.setEntryText(list.itemText(99'999));
    useOnScreen(list);
    list.showPopup();
    QTRY_VERIFY(list.view()->isVisible());
    QCOMPARE(list.view()->currentIndex().row(), 99'999);
    QVERIFY(list.view()->visualRect(list.view()->currentIndex()).height() >= 44);
    list.hidePopup();
    list.clearEntries();
    QCOMPARE(list.count(), 0);
}

void WidgetsTest::pickListMakesItsPopupLate()
{
    QWidget window;
    auto *list = new PickList(&window);
    for (const auto &entry : {u"A"_s, u"B"_s})
        list->addEntry(entry);
    list->resize(200, 44);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    const auto madePopup = [list] { return list->findChild<QAbstractItemView *>() != nullptr; };
    list->setEnabled(false);
    list->setEnabled(true);
    QFont large = list->font();
    large.setPointSize(20);
    list->setFont(large);
    window.setStyleSheet(u"QComboBox { padding-left: 50px; }"_s);
    list->setEntryText(u"B"_s);
    QVERIFY(list->sizeHint().width() > 50);
    QVERIFY(!madePopup());
    QVERIFY2(list->lineEdit()->x() >= 50, "the edit follows the style sheet");
    window.setStyleSheet({});
    QVERIFY(!madePopup());
    list->showPopup();
    QVERIFY(madePopup());
    QTRY_VERIFY(list->view()->isVisible());
    QCOMPARE(list->view()->font().pointSize(), 20);
    large.setPointSize(24);
    list->setFont(large);
    QCOMPARE(list->view()->font().pointSize(), 24);
}

void WidgetsTest::pickListIsAsLargeAsAnyOther()
{
    QComboBox plain;
    plain.setEditable(true);
    plain.setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    plain.setMinimumContentsLength(6);
    PickList list;
    QCOMPARE(list.sizeHint(), plain.sizeHint());
    QCOMPARE(list.minimumSizeHint(), plain.minimumSizeHint());
    QFont large = list.font();
    large.setPointSize(30);
    list.setFont(large);
    plain.setFont(large);
    QCOMPARE(list.sizeHint(), plain.sizeHint());
}

void WidgetsTest::tabStripClicks()
{
    TabStrip strip;
    for (const auto &caption : {u"One"_s, u"Two"_s, u"Three"_s})
        strip.addTab(caption);
    strip.resize(strip.sizeHint());
    strip.show();
    QVERIFY(QTest::qWaitForWindowExposed(&strip));
    const QSignalSpy clicked(&strip, &TabStrip::tabClicked);
    const auto click = [&](int number) {
        QTest::mouseClick(&strip, Qt::LeftButton, {}, strip.tabRect(number - 1).center());
    };
    QCOMPARE(strip.selectedTab(), 1);
    QCOMPARE(clicked.count(), 0);
    click(2);
    QCOMPARE(strip.selectedTab(), 2);
    QCOMPARE(clicked.count(), 1);
    QCOMPARE(clicked.last().first().toInt(), 2);
    click(2);
    QCOMPARE(clicked.count(), 2);
    QTest::mouseClick(&strip, Qt::RightButton, {}, strip.tabRect(0).center());
    QCOMPARE(clicked.count(), 2);
    QTest::keyClick(&strip, Qt::Key_Right);
    QCOMPARE(strip.selectedTab(), 3);
    QCOMPARE(clicked.count(), 3);
    QTest::keyClick(&strip, Qt::Key_Space);
    QCOMPARE(clicked.count(), 4);
    for (const int steps : {1, -1, 3}) { // who scrolls over it means no tab
        turnWheel(strip, steps);
        QCOMPARE(strip.selectedTab(), 3);
        QCOMPARE(clicked.count(), 4);
    }
}

void WidgetsTest::tabStripGoesToATabByItsKey()
{
    TabStrip strip;
    for (const QString &caption : {u"One"_s, u"Two"_s, u"Three"_s})
        strip.addTab(caption);
    QStringList asked;
    strip.beforeClick = [&] {
        asked << QString::number(strip.selectedTab());
        return true;
    };
    const auto tabAfter = [&strip](Qt::Key key) {
        QTest::keyClick(&strip, key);
        return strip.selectedTab();
    };
    QCOMPARE(tabAfter(Qt::Key_3), 3);
    QCOMPARE(tabAfter(Qt::Key_1), 1);
    QCOMPARE(tabAfter(Qt::Key_End), 3);
    QCOMPARE(tabAfter(Qt::Key_Home), 1);
    QCOMPARE(tabAfter(Qt::Key_2), 2);
    QCOMPARE(asked, (QStringList{u"1"_s, u"3"_s, u"1"_s, u"3"_s, u"1"_s})); // no tab on the way is entered
    QCOMPARE(tabAfter(Qt::Key_0), 2);
    QCOMPARE(tabAfter(Qt::Key_4), 2);
}

void WidgetsTest::tabStripAsksBeforeAChoice_data()
{
    using Choose = std::function<void(TabStrip &)>;
    QTest::addColumn<Choose>("choose");
    QTest::newRow("mouse") << Choose(
        [](TabStrip &strip) { QTest::mouseClick(&strip, Qt::LeftButton, {}, strip.tabRect(1).center()); });
    QTest::newRow("same tab") << Choose(
        [](TabStrip &strip) { QTest::mouseClick(&strip, Qt::LeftButton, {}, strip.tabRect(0).center()); });
    QTest::newRow("key") << Choose([](TabStrip &strip) { QTest::keyClick(&strip, Qt::Key_Right); });
    QTest::newRow("number") << Choose([](TabStrip &strip) { QTest::keyClick(&strip, Qt::Key_2); });
    QTest::newRow("screen reader") << Choose([](TabStrip &strip) {
        QAccessible::queryAccessibleInterface(&strip)->child(1)->actionInterface()->doAction(
            QAccessibleActionInterface::pressAction());
    });
}

void WidgetsTest::tabStripAsksBeforeAChoice()
{
    QFETCH(std::function<void(TabStrip &)>, choose);
    TabStrip strip;
    strip.addTab(u"One"_s);
    strip.addTab(u"Two"_s);
    strip.resize(strip.sizeHint());
    strip.show();
    QVERIFY(QTest::qWaitForWindowExposed(&strip));
    int asked = 0;
    bool answer = false;
    int shownWhenAsked = 0;
    strip.beforeClick = [&] {
        ++asked;
        shownWhenAsked = strip.selectedTab();
        return answer;
    };
    const QSignalSpy clicked(&strip, &TabStrip::tabClicked);
    choose(strip);
    QCOMPARE(asked, 1);
    QCOMPARE(shownWhenAsked, 1);
    QCOMPARE(strip.selectedTab(), 1);
    QCOMPARE(clicked.count(), 0);
    answer = true;
    choose(strip);
    QCOMPARE(asked, 2);
    QCOMPARE(clicked.count(), 1);
    QCOMPARE(clicked.last().first().toInt(), strip.selectedTab());
}

void WidgetsTest::tabStripSelectsFromCode()
{
    TabStrip strip;
    strip.addTab(u"One"_s);
    strip.addTab(u"Two"_s);
    strip.beforeClick = [] { return false; };
    const QSignalSpy clicked(&strip, &TabStrip::tabClicked);
    strip.selectTab(1);
    QCOMPARE(clicked.count(), 1);
    strip.selectTab(2);
    QCOMPARE(strip.selectedTab(), 2);
    QCOMPARE(clicked.count(), 2);
    strip.selectTab(0);
    strip.selectTab(3);
    QCOMPARE(strip.selectedTab(), 2);
    QCOMPARE(clicked.count(), 2);
}

void WidgetsTest::cardKeepsItsCaption_data()
{
    QTest::addColumn<QString>("caption");
    QTest::newRow("item") << u"12\r\nMILK\r\n1,250.00"_s;
    QTest::newRow("ampersand") << u"1\r\nM & M\r\n1.00"_s;
    QTest::newRow("accelerator") << u"1\r\n&TEA\r\n1.00"_s;
    QTest::newRow("markup") << u"1\r\n<b>X</b>\r\n1.00"_s;
    QTest::newRow("empty") << u"(empty)"_s;
    QTest::newRow("no name") << u"1"_s;
    QTest::newRow("nothing") << QString();
    QTest::newRow("long") << u"1\r\n"_s + QString(10000, u'W') + u"\r\n1.00"_s;
    QTest::newRow("right to left") << u"1\r\n\u05D7\u05DC\u05D1 \U0001F95B\r\n1.00"_s;
}

void WidgetsTest::cardKeepsItsCaption()
{
    QFETCH(QString, caption);
    QuickSaleButton card;
    QCOMPARE(card.text(), u"(empty)"_s);
    card.setText(caption);
    QCOMPARE(card.text(), caption);
    QVERIFY(card.shortcut().isEmpty());
    card.setToolTip(QString(caption).replace(u"\r\n"_s, u"  |  "_s));
    QCOMPARE(shownToolTip(card), card.toolTip());
    QToolTip::hideText();
    for (const QSize size : {card.minimumSizeHint(), card.sizeHint(), QSize(420, 300)}) {
        card.resize(size);
        QVERIFY(!card.grab().isNull());
    }
    const QSignalSpy clicked(&card, &QAbstractButton::clicked);
    QTest::mouseClick(&card, Qt::LeftButton);
    QTest::keyClick(&card, Qt::Key_Space);
    QCOMPARE(clicked.count(), 2);
    QTest::keyClick(&card, Qt::Key_Return);
    QTest::keyClick(&card, Qt::Key_Enter);
    QCOMPARE(clicked.count(), 2);
}

void WidgetsTest::cardIsReadOut()
{
    QuickSaleButton card;
    card.setText(u"12\r\nM & M\r\n1.50"_s);
    QAccessibleInterface *interface = QAccessible::queryAccessibleInterface(&card);
    QCOMPARE(interface->role(), QAccessible::Button);
    QCOMPARE(interface->text(QAccessible::Name), u"M & M, 1.50"_s);
    QCOMPARE(interface->text(QAccessible::Description), u"Stock ID 12"_s);
    card.setOutOfStock(true);
    QCOMPARE(interface->text(QAccessible::Description), u"Stock ID 12, out of stock"_s);
    card.setText(u"(empty)"_s);
    QCOMPARE(interface->text(QAccessible::Name), u"(empty)"_s);
}

void WidgetsTest::cardShowsThatItIsOutOfStock()
{
    QuickSaleButton card;
    card.resize(200, 150);
    card.setText(u"12\r\nMILK\r\n1.50"_s);
    const QColor danger = Colours::current().danger;
    const QPoint inBand(20, 10);
    QVERIFY(card.grab().toImage().pixelColor(inBand) != danger);
    card.setOutOfStock(true);
    QVERIFY(card.isOutOfStock());
    QCOMPARE(card.grab().toImage().pixelColor(inBand), danger);
    card.setOutOfStock(false);
    QVERIFY(card.grab().toImage().pixelColor(inBand) != danger);
}

void WidgetsTest::labelElides()
{
    ElidedLabel label;
    label.resize(120, 30);
    QCOMPARE(label.textFormat(), Qt::PlainText);
    label.setText(u"  7"_s);
    label.grab();
    QCOMPARE(label.text(), u"  7"_s);
    QCOMPARE(label.toolTip(), QString());
    const QString longText = u"<b>"_s + QString(200, u'W') + u" & more"_s;
    label.setText(longText);
    label.grab();
    QCOMPARE(label.text(), longText);
    QCOMPARE(label.toolTip(), longText);
    QCOMPARE(shownToolTip(label), longText);
    QVERIFY(label.minimumSizeHint().width() < 120);
    label.setText(u"short"_s);
    label.grab();
    QCOMPARE(label.toolTip(), QString());
}

void WidgetsTest::labelOfALevelShowsThatItIsLow()
{
    LevelLabel label;
    label.resize(120, 44);
    label.setText(u"20"_s);
    const QPoint ground(60, 5);
    QCOMPARE(label.grab().toImage().pixelColor(ground), Colours::current().level);
    label.setLow(true);
    QCOMPARE(label.grab().toImage().pixelColor(ground), Colours::current().lowLevel);
    QCOMPARE(label.text(), u"20"_s);
}

void WidgetsTest::entryShowsItsStart()
{
    EntryEdit entry;
    entry.resize(120, 44);
    entry.setText(u"short"_s);
    QVERIFY(!entry.isTooLong());
    const QString longText = u"<i>"_s + QString(100, u'W');
    entry.setText(longText);
    QVERIFY(entry.isTooLong());
    QCOMPARE(entry.cursorPosition(), 0);
    QCOMPARE(shownToolTip(entry), longText);
    QToolTip::hideText();
    entry.setEchoMode(QLineEdit::Password);
    QVERIFY(!entry.isTooLong());
}

void WidgetsTest::toolTipsArePlain_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("plain") << u"M & M"_s;
    QTest::newRow("markup") << u"<b>X</b>"_s;
    QTest::newRow("entity") << u"&lt;b&gt;"_s;
    QTest::newRow("blanks") << u"12  |  Milk"_s;
    QTest::newRow("lines") << u"one\ntwo"_s;
    QTest::newRow("long word") << QString(10000, u'W');
    QTest::newRow("emoji") << u"\U0001F95B"_s.repeated(200);
}

void WidgetsTest::toolTipsArePlain()
{
    QFETCH(QString, text);
    const QString html = asPlainRichText(text);
    QVERIFY(Qt::mightBeRichText(html));
    QCOMPARE(QTextDocumentFragment::fromHtml(html).toPlainText().remove(QChar(0x200B)), text);
}

HARROWBY_TEST(widgets_test, WidgetsTest)
#include "widgets_test.moc"
