// SPDX-License-Identifier: MIT
// What keys do in the window, and where the focus, the caret and the selection are.
#include "tests/program/test_program.h"
#include "tests/support/counter.h"
#include "ui/focus_order.h"
#include "ui/widgets/entry_edit.h"
#include "ui/widgets/pick_list.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QFrame>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QTest>

#include <functional>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::test;

namespace {

/// A window with two entries, a list to pick from and a button; shown, active, and with the focus in the first entry.
struct Form
{
    Form()
    {
        window.resize(400, 300);
        second.move(0, 60);
        list.move(0, 120);
        button.move(0, 180);
        for (const QString &entry : {u"TEA"_s, u"MILK"_s})
            list.addEntry(entry);
        window.show();
        activate();
        first.setFocus();
    }
    void activate()
    {
        window.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&window));
    }

    QWidget window;
    EntryEdit first{&window};
    EntryEdit second{&window};
    PickList list{&window};
    QPushButton button{&window};
};

/// Another window takes the focus and gives it back; `meanwhile` runs while it is in front.
void putWindowInFront(Form &form, const std::function<void()> &meanwhile = {})
{
    QWidget front;
    front.show();
    front.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&front));
    QVERIFY(!form.window.isActiveWindow());
    if (meanwhile)
        meanwhile();
    front.close();
    form.activate();
}

QLineEdit &edit(const Counter &counter, const char *name)
{
    QWidget *control = counter.find(name);
    auto *list = qobject_cast<QComboBox *>(control);
    return list != nullptr ? *list->lineEdit() : *qobject_cast<QLineEdit *>(control);
}

void openShop(Counter &counter)
{
    counter.file.sql(u"INSERT INTO InventoryCategory VALUES ('DRINKS', '1 Jan 2026')"_s);
    for (int i = 1; i <= 9; ++i)
        counter.file.addItem(u"A%1"_s.arg(i), u"ITEM %1"_s.arg(i), 1, 9);
    counter.open();
    counter.window().activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&counter.window()));
    counter.logIn();
}

} // namespace

class KeysTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void windowInFrontChangesNothing();
    void popupChangesNothing();
    void droppedListChangesNothing_data();
    void droppedListChangesNothing();
    void textFromCodeLeavesTheCaretToTheTypist();
    void entryThatIsLeftShowsItsStart();
    void entryThatIsLeftBehindAWindowShowsItsStart();
    void focusByKeyOrCodeMarksAll_data();
    void focusByKeyOrCodeMarksAll();
    void pressMarksNothing();
    void leadingMarksAllInAnInactiveWindow();
    void quantityAfterItsBoxIsTypedAnew();
    void refusedFieldsAreTypedAnew_data();
    void refusedFieldsAreTypedAnew();
    void refusedLoginIsTypedOn();
    void arrowsWalkTheItems_data();
    void arrowsWalkTheItems();
    void arrowsSkipWhatIsDisabled();
    void purchaseKeyWorksEverywhere();
    void purchaseKeyIsThePress();
    void purchaseKeyNeedsTheButton();
    void focusAfterAPurchase_data();
    void focusAfterAPurchase();
};

void KeysTest::windowInFrontChangesNothing()
{
    Form form;
    form.first.setText(u"MILK"_s);
    form.first.setCursorPosition(3);
    putWindowInFront(form, [&] {
        QCOMPARE(form.first.cursorPosition(), 3);
        // Without a window manager no focus comes back, and keys arrive nevertheless.
        QTest::keyClicks(&form.first, u"ab"_s);
        QCOMPARE(form.first.text(), u"MILabK"_s);
        form.first.setSelection(1, 2);
    });
    QVERIFY(form.first.hasFocus());
    QCOMPARE(form.first.text(), u"MILabK"_s);
    QCOMPARE(form.first.selectedText(), u"IL"_s);
    QCOMPARE(form.first.cursorPosition(), 3);
}

void KeysTest::popupChangesNothing()
{
    Form form;
    form.first.setText(u"A LONG TEXT"_s);
    form.first.setSelection(2, 4);
    QMenu menu(&form.first);
    menu.addAction(u"Copy"_s);
    menu.popup(form.first.mapToGlobal(QPoint(5, 5)));
    QVERIFY(QTest::qWaitForWindowExposed(&menu));
    QCOMPARE(form.first.selectedText(), u"LONG"_s);
    QTest::keyClick(&menu, Qt::Key_Escape);
    QVERIFY(form.first.hasFocus());
    QCOMPARE(form.first.selectedText(), u"LONG"_s);
    QCOMPARE(form.first.cursorPosition(), 6);
}

void KeysTest::droppedListChangesNothing_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("an entry") << u"MILK"_s;
    QTest::newRow("typed") << u"MILKSHAKE"_s;
    QTest::newRow("an entry, typed on") << u"MILKY"_s;
}

void KeysTest::droppedListChangesNothing()
{
    QFETCH(const QString, text);
    Form form;
    form.list.setFocus();
    QLineEdit &edit = *form.list.lineEdit();
    const auto enterText = [&] {
        edit.clear();
        QTest::keyClick(&form.list, Qt::Key_Down); // an entry was picked before
        QCOMPARE(form.list.currentIndex(), 0);
        edit.setText(text);
    };
    const auto dropAndClose = [&] {
        form.list.showPopup();
        QVERIFY(QTest::qWaitForWindowExposed(form.list.view()->window()));
        QTest::keyClick(form.list.view(), Qt::Key_Escape);
        QVERIFY(form.list.hasFocus());
        QCOMPARE(form.list.entryText(), text);
    };
    enterText();
    edit.setCursorPosition(2);
    dropAndClose();
    QCOMPARE(edit.cursorPosition(), 2);
    QVERIFY(!edit.hasSelectedText());
    enterText();
    edit.setSelection(3, -2);
    dropAndClose();
    QCOMPARE(edit.selectedText(), text.mid(1, 2));
    QCOMPARE(edit.cursorPosition(), 1);
}

void KeysTest::textFromCodeLeavesTheCaretToTheTypist()
{
    Form form;
    putWindowInFront(form, [&] {
        form.first.setText(u"12"_s);
        form.second.setText(u"12"_s);
        QTest::keyClicks(&form.first, u"3"_s);
    });
    QCOMPARE(form.first.text(), u"123"_s);
    QCOMPARE(form.second.cursorPosition(), 0); // never edited
}

void KeysTest::entryThatIsLeftShowsItsStart()
{
    Form form;
    QTest::keyClicks(&form.first, QString(100, u'W'));
    QCOMPARE(form.first.cursorPosition(), 100);
    form.second.setFocus();
    QCOMPARE(form.first.cursorPosition(), 0);
    form.list.setFocus();
    QTest::keyClicks(&form.list, QString(100, u'W'));
    form.button.setFocus();
    QCOMPARE(form.list.lineEdit()->cursorPosition(), 0);
}

void KeysTest::entryThatIsLeftBehindAWindowShowsItsStart()
{
    Form form;
    QTest::keyClicks(&form.first, QString(100, u'W'));
    putWindowInFront(form, [&] { form.button.setFocus(); });
    QVERIFY(form.button.hasFocus());
    QCOMPARE(form.first.cursorPosition(), 0);
}

void KeysTest::focusByKeyOrCodeMarksAll_data()
{
    using Act = std::function<void(Form &)>;
    QTest::addColumn<Act>("lead");
    QTest::newRow("Tab") << Act([](Form &form) { QTest::keyClick(&form.first, Qt::Key_Tab); });
    QTest::newRow("Shift+Tab") << Act([](Form &form) {
        form.list.setFocus();
        QTest::keyClick(&form.list, Qt::Key_Backtab);
    });
    QTest::newRow("code") << Act([](Form &form) { form.second.setFocus(); });
    QTest::newRow("code of the till") << Act([](Form &form) { leadTo(form.second); });
    QTest::newRow("an accelerator") << Act([](Form &form) { form.second.setFocus(Qt::ShortcutFocusReason); });
}

void KeysTest::focusByKeyOrCodeMarksAll()
{
    QFETCH(const std::function<void(Form &)>, lead);
    Form form;
    form.second.setText(u"50"_s);
    lead(form);
    QVERIFY(form.second.hasFocus());
    QCOMPARE(form.second.selectedText(), u"50"_s);
    QTest::keyClicks(&form.second, u"7"_s);
    QCOMPARE(form.second.text(), u"7"_s);
}

void KeysTest::pressMarksNothing()
{
    Form form;
    form.second.setText(u"50"_s);
    QTest::mouseClick(&form.second, Qt::LeftButton, {}, QPoint(form.second.width() - 5, 10));
    QVERIFY(form.second.hasFocus());
    QVERIFY(!form.second.hasSelectedText());
    QCOMPARE(form.second.cursorPosition(), 2);
}

void KeysTest::leadingMarksAllInAnInactiveWindow()
{
    Form form;
    form.list.setEntryText(u"0"_s);
    putWindowInFront(form, [&] {
        leadTo(form.list);
        QCOMPARE(form.list.lineEdit()->selectedText(), u"0"_s);
    });
    QVERIFY(form.list.hasFocus());
    QTest::keyClicks(&form.list, u"5"_s);
    QCOMPARE(form.list.entryText(), u"5"_s);
}

void KeysTest::quantityAfterItsBoxIsTypedAnew()
{
    Counter counter;
    openShop(counter);
    counter.chooseTab("TabStrip1", WorkArea::CustomSales);
    counter.setText("Combo3", u"A1  |  ITEM 1"_s);
    counter.boxes.expect(u"You have entered an invalid quantity. Quantity must be greater than 0!"_s, box::Exclamation);
    counter.click("Command15");
    QVERIFY(counter.hasFocus("Combo4"));
    QCOMPARE(edit(counter, "Combo4").selectedText(), u"0"_s);
    QTest::keyClicks(counter.find("Combo4"), u"5"_s);
    QCOMPARE(counter.text("Combo4"), u"5"_s);
}

void KeysTest::refusedFieldsAreTypedAnew_data()
{
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("entered");
    QTest::addColumn<QString>("refusal");
    QTest::newRow("cost") << u"Combo8"_s << u"x"_s << u"Non-numeric or Invalid Stock Cost!"_s;
    QTest::newRow("level") << u"Combo13"_s << u"-2"_s << u"Non-numeric or Invalid Reorder Level!"_s;
    QTest::newRow("stock") << u"Combo14"_s << u"none"_s << u"Non-numeric or Invalid Available Stock!"_s;
}

void KeysTest::refusedFieldsAreTypedAnew()
{
    QFETCH(const QString, field);
    Counter counter;
    openShop(counter);
    counter.chooseTab("TabStrip1", WorkArea::EditStock);
    counter.setText("Combo7", u"TEA"_s);
    for (const char *figure : {"Combo8", "Combo13", "Combo14"})
        counter.setText(figure, u"1"_s);
    const QByteArray name = field.toLatin1();
    QFETCH(const QString, entered);
    counter.setText(name.constData(), entered);
    QFETCH(const QString, refusal);
    counter.boxes.expect(refusal, box::Exclamation);
    counter.click("Command16");
    QVERIFY(counter.hasFocus(name.constData()));
    QTest::keyClicks(counter.find(name.constData()), u"7"_s);
    QCOMPARE(counter.text(name.constData()), u"7"_s);
}

/// A refused password stays, and what is typed goes where the caret was.
void KeysTest::refusedLoginIsTypedOn()
{
    Counter counter;
    counter.open();
    QTest::keyClicks(counter.find("Text3"), u"administrator"_s);
    QTest::keyClick(counter.find("Text3"), Qt::Key_Return);
    QTest::keyClicks(counter.find("Text4"), u"pas"_s);
    counter.boxes.expect(u"Username or Password Incorrect!"_s, box::Exclamation);
    QTest::keyClick(counter.find("Text4"), Qt::Key_Return);
    QCOMPARE(counter.text("Text4"), u"pas"_s);
    QTest::keyClicks(counter.find("Text4"), u"s"_s);
    QTest::keyClick(counter.find("Text4"), Qt::Key_Return);
    QVERIFY(counter.state().login.IsLoggedIn);
}

void KeysTest::arrowsWalkTheItems_data()
{
    QTest::addColumn<QList<Qt::Key>>("keys");
    QTest::addColumn<QString>("item");
    using Keys = QList<Qt::Key>;
    QTest::newRow("right") << Keys{Qt::Key_Right} << u"Command1_1"_s;
    QTest::newRow("down") << Keys{Qt::Key_Down} << u"Command1_3"_s;
    QTest::newRow("across") << Keys{Qt::Key_Right, Qt::Key_Down, Qt::Key_Right, Qt::Key_Down} << u"Command1_8"_s;
    QTest::newRow("there and back") << Keys{Qt::Key_Down, Qt::Key_Right, Qt::Key_Up, Qt::Key_Left} << u"Command1_0"_s;
    QTest::newRow("left edge") << Keys{Qt::Key_Down, Qt::Key_Left} << u"Command1_3"_s;
    QTest::newRow("upper edge") << Keys{Qt::Key_Right, Qt::Key_Up} << u"Command1_1"_s;
    QTest::newRow("right edge") << Keys{Qt::Key_Right, Qt::Key_Right, Qt::Key_Right} << u"Command1_2"_s;
    QTest::newRow("lower edge") << Keys{Qt::Key_Down, Qt::Key_Down, Qt::Key_Down} << u"Command1_6"_s;
}

void KeysTest::arrowsWalkTheItems()
{
    QFETCH(const QList<Qt::Key>, keys);
    QFETCH(const QString, item);
    Counter counter;
    openShop(counter);
    QVERIFY(counter.hasFocus("Command1_0"));
    for (const Qt::Key key : keys)
        QTest::keyClick(counter.window().focusWidget(), key);
    QCOMPARE(counter.window().focusWidget()->objectName(), item);
    QVERIFY(counter.cart().isEmpty());
    QTest::keyClick(counter.window().focusWidget(), Qt::Key_Space);
    QCOMPARE(counter.cart().size(), 1);
}

void KeysTest::arrowsSkipWhatIsDisabled()
{
    Counter counter;
    openShop(counter);
    counter.find("Command1_1")->setEnabled(false);
    counter.find("Command1_5")->setEnabled(false);
    counter.find("Command1_8")->setEnabled(false);
    QTest::keyClick(counter.find("Command1_0"), Qt::Key_Right);
    QVERIFY(counter.hasFocus("Command1_2"));
    QTest::keyClick(counter.find("Command1_2"), Qt::Key_Down); // the button below is disabled
    QVERIFY(counter.hasFocus("Command1_2"));
}

void KeysTest::purchaseKeyWorksEverywhere()
{
    Counter counter;
    openShop(counter);
    int pressed = 0;
    connect(counter.find<QPushButton>("Command14"), &QPushButton::clicked, this, [&] { ++pressed; });
    counter.boxes.answerTheRest([](const QString &) { return Answer::Ok; });
    for (const int tab : WorkArea::all) {
        counter.chooseTab("TabStrip1", tab);
        QStringList reached;
        for (QWidget *control : counter.window().findChildren<QWidget *>()) {
            const bool takesKeys = control->focusPolicy() != Qt::NoFocus && !control->focusProxy();
            if (!takesKeys || !control->isVisible() || !control->isEnabled() || isCovered(*control, counter.window()))
                continue;
            control->setFocus();
            pressed = 0;
            QTest::keyClick(control, Qt::Key_F12);
            QVERIFY2(pressed == 1, qPrintable(control->objectName()));
            reached << control->objectName();
        }
        QVERIFY2(reached.size() > 10, qPrintable(reached.join(u' ')));
    }
    QTest::keyClick(&counter.window(), Qt::Key_F12);
    QCOMPARE(pressed, 2);
}

void KeysTest::purchaseKeyIsThePress()
{
    Counter counter;
    openShop(counter);
    counter.click("Command1_0");
    counter.find("TabStrip1")->setFocus();
    const QString question = u"Item List:\r\n\r\n1. 1 x A1  |  ITEM 1 = 1.00\r\n\r\n\r\n\r\nPurchased Cart?"_s;
    counter.boxes.expect(question, box::Ask, Answer::No);
    QTest::keyClick(counter.find("TabStrip1"), Qt::Key_F12);
    QVERIFY(counter.boxes.isDone());
    QCOMPARE(counter.cart().size(), 1);
    QVERIFY(counter.hasFocus("TabStrip1"));
}

void KeysTest::purchaseKeyNeedsTheButton()
{
    Counter counter;
    openShop(counter);
    int pressed = 0;
    connect(counter.find<QPushButton>("Command14"), &QPushButton::clicked, this, [&] { ++pressed; });
    counter.boxes.answerTheRest([](const QString &) { return Answer::No; });
    const auto pressKey = [&](Qt::KeyboardModifiers held = {}) {
        QTest::keyClick(counter.window().focusWidget(), Qt::Key_F12, held);
        return pressed;
    };
    QCOMPARE(pressKey(Qt::ControlModifier), 0);
    QKeyEvent repeated(QEvent::KeyPress, Qt::Key_F12, Qt::NoModifier, {}, true);
    QCoreApplication::sendEvent(counter.window().focusWidget(), &repeated);
    QCOMPARE(pressed, 0); // a key that is held down buys once
    counter.find("Command14")->setEnabled(false);
    QCOMPARE(pressKey(), 0);
    counter.find("Command14")->setEnabled(true);
    QCOMPARE(pressKey(), 1);
    counter.chooseTab("TabStrip2", SidePanel::SalesActivity);
    QCOMPARE(pressKey(), 2); // also while the log covers the cart
}

void KeysTest::focusAfterAPurchase_data()
{
    QTest::addColumn<int>("tab");
    QTest::addColumn<QString>("from");
    QTest::addColumn<QString>("focused");
    QTest::newRow("quick sales") << WorkArea::QuickSales << u"Command14"_s << u"Command1_0"_s;
    QTest::newRow("quick sales, from another item") << WorkArea::QuickSales << u"Command1_5"_s << u"Command1_0"_s;
    QTest::newRow("custom sales") << WorkArea::CustomSales << u"Command15"_s << u"Combo2"_s;
    QTest::newRow("settings, where none begins") << WorkArea::Settings << u"Command14"_s << u"Command14"_s;
}

void KeysTest::focusAfterAPurchase()
{
    QFETCH(const int, tab);
    QFETCH(const QString, from);
    QFETCH(const QString, focused);
    Counter counter;
    openShop(counter);
    counter.click("Command1_0");
    counter.chooseTab("TabStrip1", tab);
    counter.find(from.toLatin1().constData())->setFocus();
    counter.boxes.answerTheRest([](const QString &) { return Answer::Yes; });
    QTest::keyClick(counter.window().focusWidget(), Qt::Key_F12);
    QVERIFY(counter.cart().isEmpty());
    QVERIFY2(counter.hasFocus(focused.toLatin1().constData()),
             qPrintable(counter.window().focusWidget()->objectName()));
    if (focused == u"Combo2"_s)
        QVERIFY(edit(counter, "Combo2").hasSelectedText());
}

HARROWBY_TEST(keys_test, KeysTest)
#include "keys_test.moc"
