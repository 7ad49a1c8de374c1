// SPDX-License-Identifier: MIT
#include "ui/widgets/name_list.h"
#include "ui/widgets/packed_texts.h"
#include "ui/widgets/pick_list.h"
#include "ui/widgets/row_list.h"
#include "ui/widgets/text_table_model.h"

#include "tests/program/test_program.h"

#include <QAbstractItemModelTester>
#include <QPointer>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace harrowby;

/// Choosing from long lists: rows that are clicked, entries that are picked and removed.
class ListChoiceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void rowListIsChosen();
    void rowListIsNotChosenByWalking();
    void rowListTakesTheRowThatIsPressed_data();
    void rowListTakesTheRowThatIsPressed();
    void nameListTakesTheNameThatIsPressed();
    void rowListSelectsInPlace();
    void rowListGoesAwayInTheMiddleOfAChoice();
    void entriesAreTakenTogether();
    void selectedEntry();
    void entryIsRemoved_data();
    void entryIsRemoved();
    void removingAnotherEntryKeepsTheText();
    void clearingEndsAFill();
};

namespace {

/// Shown, active and in the focus, with enough rows to scroll.
void useOnScreen(RowList &list, int rows)
{
    for (int row = 0; row < rows; ++row)
        list.rows().queueRow(QStringList{u"ITEM %1"_s.arg(row)});
    list.rows().publishRows();
    list.resize(300, 200);
    list.show();
    QVERIFY(QTest::qWaitForWindowExposed(&list));
    list.activateWindow();
    list.setFocus();
    QTRY_VERIFY(list.hasFocus());
}

} // namespace

void ListChoiceTest::rowListIsChosen()
{
    RowList list({u"ID"_s});
    useOnScreen(list, 3);
    QStringList order;
    connect(&list, &RowList::rowChosen, this, [&](int row) { order << u"chosen %1"_s.arg(row); });
    connect(&list, &RowList::rowOpened, this, [&](int row) { order << u"opened %1"_s.arg(row); });
    QTest::keyClick(&list, Qt::Key_Return);
    QCOMPARE(order, QStringList()); // no row is selected
    const auto centre = [&](int row) { return list.visualRect(list.rows().index(row, 0)).center(); };
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, centre(1));
    QCOMPARE(order, QStringList{u"chosen 1"_s});
    QCOMPARE(list.selectedRow(), 1);
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, centre(1));
    QCOMPARE(order.size(), 2); // the same row again
    order.clear();
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, list.viewport()->rect().bottomRight() - QPoint(5, 5));
    QTest::mouseClick(list.viewport(), Qt::RightButton, {}, centre(0));
    QCOMPARE(order, QStringList());
    list.selectRow(2);
    QCOMPARE(order, QStringList()); // selecting by code is no choice
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
        order.clear();
        QTest::keyClick(&list, key);
        QCOMPARE(order, (QStringList{u"chosen 2"_s, u"opened 2"_s}));
        QKeyEvent held(QEvent::KeyPress, key, Qt::NoModifier, u"\r"_s, true);
        QCoreApplication::sendEvent(&list, &held);
        QCOMPARE(order.size(), 2); // a repeated choice would open the window again after it was closed
    }
}

void ListChoiceTest::rowListIsNotChosenByWalking()
{
    RowList list({u"ID"_s});
    useOnScreen(list, 3);
    list.selectRow(0);
    const QSignalSpy chosen(&list, &RowList::rowChosen);
    QTest::keyClick(&list, Qt::Key_Down);
    QTest::keyClick(&list, Qt::Key_End);
    QCOMPARE(list.selectedRow(), 2);
    QCOMPARE(chosen.count(), 0);
}

void ListChoiceTest::rowListTakesTheRowThatIsPressed_data()
{
    QTest::addColumn<Qt::KeyboardModifiers>("held");
    QTest::newRow("Ctrl") << Qt::KeyboardModifiers(Qt::ControlModifier);
    QTest::newRow("Shift") << Qt::KeyboardModifiers(Qt::ShiftModifier);
    QTest::newRow("both") << (Qt::ControlModifier | Qt::ShiftModifier);
}

void ListChoiceTest::rowListTakesTheRowThatIsPressed()
{
    QFETCH(const Qt::KeyboardModifiers, held);
    RowList list({u"ID"_s});
    useOnScreen(list, 3);
    QList<int> selected; // at the time of each choice
    connect(&list, &RowList::rowChosen, this, [&] { selected << list.selectedRow(); });
    connect(&list, &RowList::rowOpened, this, [&] { selected << list.selectedRow(); });
    const auto centre = [&](int row) { return list.visualRect(list.rows().index(row, 0)).center(); };
    QTest::mouseClick(list.viewport(), Qt::LeftButton, held, centre(1));
    QTest::mouseClick(list.viewport(), Qt::LeftButton, held,
                      centre(1)); // QAbstractItemView would deselect the row
    QTest::mouseClick(list.viewport(), Qt::LeftButton, held, centre(2));
    QCOMPARE(selected, (QList<int>{1, 1, 2}));
    QTest::mouseDClick(list.viewport(), Qt::LeftButton, held, centre(2));
    QCOMPARE(selected.last(), 2);
    QCOMPARE(list.selectedRow(), 2);
    QTest::mouseClick(list.viewport(), Qt::LeftButton, held, list.viewport()->rect().bottomRight() - QPoint(5, 5));
    QCOMPARE(list.selectedRow(), 2);
    QTest::keyClick(&list, Qt::Key_Space, held);
    QCOMPARE(list.selectedRow(), 2);
}

void ListChoiceTest::nameListTakesTheNameThatIsPressed()
{
    NameList list;
    list.addItems({u"DRINKS"_s, u"FOOD"_s});
    list.show();
    QVERIFY(QTest::qWaitForWindowExposed(&list));
    for (int press = 0; press < 2; ++press) {
        QTest::mouseClick(list.viewport(), Qt::LeftButton, Qt::ControlModifier,
                          list.visualItemRect(list.item(1)).center());
        QVERIFY(list.item(1)->isSelected());
    }
    QTest::keyClick(&list, Qt::Key_Space, Qt::ControlModifier);
    QVERIFY(list.item(1)->isSelected());
}

void ListChoiceTest::rowListSelectsInPlace()
{
    RowList list({u"ID"_s});
    useOnScreen(list, 200);
    list.rows().queueRow(QStringList{u"LAST"_s});
    list.selectInPlace(200);
    QCOMPARE(list.rows().rowCount(), 201);
    QCOMPARE(list.selectedRow(), 200);
    QCOMPARE(list.currentIndex().row(), 200);
    QCOMPARE(list.selectionModel()->selectedRows().size(), 1);
    QCOMPARE(list.verticalScrollBar()->value(), 0);
    list.selectRow(200);
    QVERIFY(list.verticalScrollBar()->value() > 0);
    list.selectInPlace(201);
    QCOMPARE(list.selectedRow(), -1);
    list.selectInPlace(5);
    list.selectInPlace(-1);
    QCOMPARE(list.selectedRow(), -1);
}

void ListChoiceTest::rowListGoesAwayInTheMiddleOfAChoice()
{
    auto list = std::make_unique<RowList>(QStringList{u"ID"_s});
    useOnScreen(*list, 3);
    list->selectRow(1);
    int opened = 0;
    connect(list.get(), &RowList::rowOpened, this, [&] { ++opened; });
    connect(list.get(), &RowList::rowChosen, this, [&] { list->rows().clear(); });
    QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
    QCoreApplication::sendEvent(list.get(), &enter);
    QCOMPARE(opened, 1); // the rows are gone, the list is not
    connect(list.get(), &RowList::rowChosen, this, [&] { list.reset(); });
    list->rows().appendRow({u"A1"_s});
    list->selectRow(0);
    QKeyEvent again(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
    QPointer<RowList> gone(list.get());
    QCoreApplication::sendEvent(gone, &again);
    QVERIFY(gone.isNull());
    QCOMPARE(opened, 1);
}

void ListChoiceTest::entriesAreTakenTogether()
{
    PickList list;
    const QAbstractItemModelTester tester(list.model(), QAbstractItemModelTester::FailureReportingMode::QtTest);
    list.addEntry(u"A"_s);
    list.setEntryText(u"typed"_s);
    const QSignalSpy inserted(list.model(), &QAbstractItemModel::rowsInserted);
    PackedTexts entries{u"B"_s, u"C"_s, u"B"_s};
    list.takeEntries(entries);
    QVERIFY(entries.isEmpty());
    QCOMPARE(list.count(), 4);
    QCOMPARE(list.itemText(3), u"B"_s);
    QCOMPARE(list.entryText(), u"typed"_s);
    QCOMPARE(inserted.count(), 1);
    list.takeEntries(entries);
    QCOMPARE(inserted.count(), 1);
}

void ListChoiceTest::selectedEntry()
{
    PickList list;
    for (const QString &entry : {u"A"_s, u"B"_s})
        list.addEntry(entry);
    QCOMPARE(list.selectedEntry(), -1);
    list.setEntryText(u"B"_s);
    QCOMPARE(list.selectedEntry(), -1); // by code
    list.setEntryText({});
    list.show();
    list.setFocus();
    QTest::keyClicks(&list, u"A"_s);
    QCOMPARE(list.selectedEntry(), -1); // typed
    QTest::keyClick(&list, Qt::Key_Down);
    QCOMPARE(list.entryText(), u"B"_s);
    QCOMPARE(list.selectedEntry(), 1);
    QTest::keyClick(&list, Qt::Key_Backspace);
    QCOMPARE(list.selectedEntry(), -1);
}

void ListChoiceTest::entryIsRemoved_data()
{
    QTest::addColumn<int>("index");
    QTest::newRow("first") << 0;
    QTest::newRow("middle") << 1;
    QTest::newRow("last") << 2;
}

void ListChoiceTest::entryIsRemoved()
{
    QFETCH(const int, index);
    QStringList entries{u"A"_s, u"B"_s, u"C"_s};
    PickList list;
    for (const QString &entry : entries)
        list.addEntry(entry);
    list.show();
    list.setFocus();
    for (int step = 0; step <= index; ++step)
        QTest::keyClick(&list, Qt::Key_Down);
    QCOMPARE(list.selectedEntry(), index);
    const QSignalSpy changed(&list, &PickList::entryTextChanged);
    list.removeEntry(index);
    entries.removeAt(index);
    QCOMPARE(list.count(), 2);
    QCOMPARE((QStringList{list.itemText(0), list.itemText(1)}), entries);
    QCOMPARE(list.entryText(), QString());
    QCOMPARE(list.selectedEntry(), -1);
    QCOMPARE(changed.count(), 1);
    list.removeEntry(2);
    list.removeEntry(-1);
    QCOMPARE(list.count(), 2);
}

void ListChoiceTest::removingAnotherEntryKeepsTheText()
{
    PickList list;
    for (const QString &entry : {u"A"_s, u"B"_s, u"C"_s})
        list.addEntry(entry);
    list.show();
    list.setFocus();
    QTest::keyClick(&list, Qt::Key_End);
    QTest::keyClick(&list, Qt::Key_Down);
    const QString picked = list.entryText();
    const int other = picked == u"A"_s ? 1 : 0;
    list.removeEntry(other);
    QCOMPARE(list.entryText(), picked);
    QCOMPARE(list.count(), 2);
}

void ListChoiceTest::clearingEndsAFill()
{
    PickList list;
    const LatestLoad::Turn begun = list.fill();
    list.addEntry(u"A"_s);
    list.removeEntry(0);
    list.setEntryText(u"x"_s);
    QVERIFY(begun.isLatest());
    list.clearEntries();
    QVERIFY(!begun.isLatest());
    QVERIFY(list.fill().isLatest());
    QCOMPARE(list.entryText(), QString());
}

HARROWBY_TEST(list_choice_test, ListChoiceTest)
#include "list_choice_test.moc"
