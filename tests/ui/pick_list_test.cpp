// SPDX-License-Identifier: MIT
#include "tests/program/test_program.h"
#include "tests/ui/widget_use.h"

#include "theme/colours.h"
#include "theme/style.h"
#include "ui/widgets/entry_model.h"
#include "ui/widgets/pick_list.h"

#include <QAbstractItemModelTester>
#include <QAbstractItemView>
#include <QCompleter>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTest>
#include <QToolTip>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::test;

namespace {

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

/// The list that an entry is picked from or typed into.
class PickListTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void typingReplacesWhatIsMarked();
    void pressOnTheTextDropsTheList();
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
};

void PickListTest::typingReplacesWhatIsMarked()
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

void PickListTest::pressOnTheTextDropsTheList()
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

void PickListTest::entryModelKeepsItsEntries()
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

void PickListTest::pickListLeavesTheTextAlone()
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

void PickListTest::pickListSetsTextFromCode()
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

void PickListTest::pickListClears()
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

void PickListTest::pickListTakesTypedText()
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

void PickListTest::pickListPicksByArrowKeys()
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

void PickListTest::pickListPicksByMouse()
{
    QApplication::setDoubleClickInterval(0); // QComboBox ignores a release within this time after opening its popup
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

void PickListTest::pickListCountsCodeForNoPick()
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

void PickListTest::pickListDoesNotTakeTypingForAPick_data()
{
    QTest::addColumn<int>("key");
    QTest::newRow("Return") << static_cast<int>(Qt::Key_Return);
    QTest::newRow("Enter") << static_cast<int>(Qt::Key_Enter);
    QTest::newRow("Tab") << static_cast<int>(Qt::Key_Tab);
}

void PickListTest::pickListDoesNotTakeTypingForAPick()
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
    QTest::keyClick(list, static_cast<Qt::Key>(key));
    QCOMPARE(list->hasFocus(), key != Qt::Key_Tab);
    QCOMPARE(list->entryText(), u"TEA"_s);
    QCOMPARE(picked.count(), 0);
}

void PickListTest::pickListTurnsOnlyWithFocus()
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
    QCOMPARE(list->focusPolicy(), Qt::StrongFocus); // the wheel gives it no focus either
    list->setFocus();
    const QSignalSpy picked(list, &PickList::picked);
    turnWheel(*list, -1);
    QCOMPARE(list->entryText(), u"B"_s);
    QCOMPARE(picked.count(), 1);
}

void PickListTest::pickListIsCheapWithManyEntries()
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

void PickListTest::pickListMakesItsPopupLate()
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

void PickListTest::pickListIsAsLargeAsAnyOther()
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

HARROWBY_TEST(pick_list_test, PickListTest)
#include "pick_list_test.moc"
