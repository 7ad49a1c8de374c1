// SPDX-License-Identifier: MIT
#include "tests/program/test_program.h"
#include "tests/support/counter.h"
#include "ui/keypad.h"

using namespace Qt::StringLiterals;

using namespace harrowby;
using namespace harrowby::test;

/// The on-screen keypad: what its keys do to the custom sale's quantity, and when it is shown.
class KeypadTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void captions();
    void startsWithZero();
    void digitsAreAppended_data();
    void digitsAreAppended();
    void oneAndTwoBehindTheZero();
    void digitsWithoutLimit();
    void eraser_data();
    void eraser();
    void eraseAndTypeAgain();
    void disabledQuantity();
    void closesWithQuantityDisabled();
    void otherKeys_data();
    void otherKeys();
    void keysNeedNoLogin();
    void totalFollows();
    void openingNeedsLogin();
    void opensAndCloses();
    void openingHidesTheSearchResult();
    void closingLeavesTheSearchResultHidden();
    void liesInFront();
    void staysInFront();
    void tabsHideIt_data();
    void tabsHideIt();
    void logoutHidesIt();
};

namespace {

void openKeypad(Counter &counter)
{
    counter.open();
    counter.logIn();
    counter.chooseTab("TabStrip1", WorkArea::CustomSales);
    counter.click("Command31");
}

QByteArray nameOf(int key)
{
    return "Command30_" + QByteArray::number(key);
}

void press(const Counter &counter, int key)
{
    counter.click(nameOf(key));
}

/// The widget at the middle of a key.
QWidget *widgetAt(const Counter &counter, int key)
{
    const QWidget *button = counter.find(nameOf(key));
    return counter.window().childAt(button->mapTo(&counter.window(), button->rect().center()));
}

bool isOpen(const Counter &counter)
{
    return counter.find("Frame13")->isVisible();
}

} // namespace

void KeypadTest::captions()
{
    Counter counter;
    openKeypad(counter);
    for (int digit = 0; digit <= 9; ++digit)
        QCOMPARE(counter.text(qPrintable(u"Command30_%1"_s.arg(digit))), QString::number(digit));
    QCOMPARE(counter.text("Command30_10"), u"<---"_s);
    QCOMPARE(counter.text("Command30_11"), u"Close"_s);
    QCOMPARE(counter.text("Command31"), QString()); // it carries a picture
}

void KeypadTest::startsWithZero()
{
    Counter counter;
    openKeypad(counter);
    QCOMPARE(counter.text("Combo4"), u"0"_s);
}

void KeypadTest::digitsAreAppended_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<int>("key");
    QTest::addColumn<QString>("after");
    for (int digit = 0; digit <= 9; ++digit)
        QTest::addRow("%d", digit) << u"4"_s << digit << u"4"_s + QString::number(digit);
    QTest::newRow("to nothing") << QString() << 7 << u"7"_s;
    QTest::newRow("to a zero") << u"0"_s << 0 << u"00"_s;
    QTest::newRow("to words") << u"some "_s << 3 << u"some 3"_s;
    QTest::newRow("behind blanks") << u"1  "_s << 3 << u"1  3"_s;
    QTest::newRow("to a fraction") << u"1."_s << 5 << u"1.5"_s;
}

void KeypadTest::digitsAreAppended()
{
    QFETCH(QString, before);
    QFETCH(int, key);
    QFETCH(QString, after);
    Counter counter;
    openKeypad(counter);
    counter.setText("Combo4", before);
    press(counter, key);
    QCOMPARE(counter.text("Combo4"), after);
    QVERIFY(isOpen(counter));
}

void KeypadTest::oneAndTwoBehindTheZero()
{
    Counter counter;
    openKeypad(counter);
    press(counter, 1);
    press(counter, 2);
    QCOMPARE(counter.text("Combo4"), u"012"_s);
}

void KeypadTest::digitsWithoutLimit()
{
    Counter counter;
    openKeypad(counter);
    constexpr int presses = 400; // more digits than a number holds
    for (int i = 0; i < presses; ++i)
        press(counter, 9);
    QCOMPARE(counter.text("Combo4"), u'0' + QString(presses, u'9'));
}

void KeypadTest::eraser_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("after");
    QTest::newRow("10") << u"10"_s << u"1"_s;
    QTest::newRow("a lone 0") << u"0"_s << u"0"_s;
    QTest::newRow("nothing") << QString() << QString();
    QTest::newRow("another digit alone") << u"5"_s << QString();
    QTest::newRow("two zeros") << u"00"_s << u"0"_s;
    QTest::newRow("0 and a blank") << u"0 "_s << u"0"_s;
    QTest::newRow("a blank and 0") << u" 0"_s << u" "_s;
    QTest::newRow("012") << u"012"_s << u"01"_s;
    QTest::newRow("words") << u"abc"_s << u"ab"_s;
}

void KeypadTest::eraser()
{
    QFETCH(QString, before);
    QFETCH(QString, after);
    Counter counter;
    openKeypad(counter);
    counter.setText("Combo4", before);
    press(counter, 10);
    QCOMPARE(counter.text("Combo4"), after);
    QVERIFY(isOpen(counter));
}

void KeypadTest::eraseAndTypeAgain()
{
    Counter counter;
    openKeypad(counter);
    for (const int key : {1, 2, 10, 10, 10, 3}) // the third erasure meets a lone 0
        press(counter, key);
    QCOMPARE(counter.text("Combo4"), u"03"_s);
}

void KeypadTest::disabledQuantity()
{
    Counter counter;
    openKeypad(counter);
    counter.setText("Combo4", u"25"_s);
    counter.find("Combo4")->setEnabled(false);
    for (int key = 0; key <= 10; ++key) {
        press(counter, key);
        QCOMPARE(counter.text("Combo4"), u"25"_s);
    }
}

void KeypadTest::closesWithQuantityDisabled()
{
    Counter counter;
    openKeypad(counter);
    counter.find("Combo4")->setEnabled(false);
    press(counter, 11);
    QVERIFY(!isOpen(counter));
}

void KeypadTest::otherKeys_data()
{
    QTest::addColumn<int>("key");
    for (const int key : {-32768, -1, 12, 13, 32767})
        QTest::addRow("%d", key) << key;
}

void KeypadTest::otherKeys()
{
    QFETCH(int, key);
    Counter counter;
    openKeypad(counter);
    counter.setText("Combo4", u"25"_s);
    pressKey(counter.window().controls(), key);
    QCOMPARE(counter.text("Combo4"), u"25"_s);
    QVERIFY(isOpen(counter));
}

void KeypadTest::keysNeedNoLogin()
{
    Counter counter;
    counter.open();
    press(counter, 8);
    QCOMPARE(counter.text("Combo4"), u"08"_s);
    press(counter, 10);
    QCOMPARE(counter.text("Combo4"), u"0"_s);
    counter.find("Frame13")->show();
    press(counter, 11);
    QVERIFY(!isOpen(counter));
}

void KeypadTest::totalFollows()
{
    Counter counter;
    counter.file.addItem(u"A1"_s, u"MILK"_s, 2.5, 100);
    openKeypad(counter);
    counter.pick("Combo2", 0);
    counter.pick("Combo3", 0);
    QCOMPARE(counter.text("Combo4"), u"1"_s);
    press(counter, 2);
    QCOMPARE(counter.text("Combo4"), u"12"_s);
    QCOMPARE(counter.text("Label9"), u"30.00"_s);
    press(counter, 10);
    QCOMPARE(counter.text("Label9"), u"2.50"_s);
}

void KeypadTest::openingNeedsLogin()
{
    Counter counter;
    counter.open();
    counter.find("Text4")->setFocus();
    counter.boxes.expect(u"You must Login in First!"_s, box::Exclamation);
    counter.click("Command31");
    QVERIFY(!isOpen(counter));
    QVERIFY(counter.hasFocus("Text3"));
}

void KeypadTest::opensAndCloses()
{
    Counter counter;
    openKeypad(counter);
    QVERIFY(isOpen(counter));
    counter.click("Command31");
    QVERIFY(!isOpen(counter));
    counter.click("Command31");
    QVERIFY(isOpen(counter));
    press(counter, 11);
    QVERIFY(!isOpen(counter));
}

void KeypadTest::openingHidesTheSearchResult()
{
    Counter counter;
    counter.open();
    counter.logIn();
    counter.chooseTab("TabStrip1", WorkArea::CustomSales);
    counter.find("Frame11")->show();
    counter.click("Command31");
    QVERIFY(isOpen(counter));
    QVERIFY(!counter.find("Frame11")->isVisible());
}

void KeypadTest::closingLeavesTheSearchResultHidden()
{
    Counter counter;
    openKeypad(counter);
    counter.click("Command31");
    QVERIFY(!counter.find("Frame11")->isVisible());
}

void KeypadTest::liesInFront()
{
    Counter counter;
    openKeypad(counter);
    for (int key = 0; key <= 11; ++key)
        QCOMPARE(widgetAt(counter, key), counter.find(nameOf(key)));
}

/// Also when another panel is shown and raised after it.
void KeypadTest::staysInFront()
{
    Counter counter;
    openKeypad(counter);
    counter.chooseTab("TabStrip1", WorkArea::CustomSales);
    QVERIFY(isOpen(counter));
    for (int key = 0; key <= 11; ++key)
        QCOMPARE(widgetAt(counter, key), counter.find(nameOf(key)));
    counter.chooseTab("TabStrip2", SidePanel::SalesActivity);
    counter.chooseTab("TabStrip2", SidePanel::Cart);
    QCOMPARE(widgetAt(counter, 1), counter.find(nameOf(1)));
}

void KeypadTest::tabsHideIt_data()
{
    QTest::addColumn<int>("tab");
    QTest::addColumn<bool>("hides");
    for (const int tab : WorkArea::all)
        QTest::addRow("%d", tab) << tab << (tab != WorkArea::CustomSales);
}

void KeypadTest::tabsHideIt()
{
    QFETCH(int, tab);
    QFETCH(bool, hides);
    Counter counter;
    openKeypad(counter);
    counter.chooseTab("TabStrip1", tab);
    QCOMPARE(isOpen(counter), !hides);
}

void KeypadTest::logoutHidesIt()
{
    Counter counter;
    openKeypad(counter);
    counter.boxes.expect(u"Log out User[ADMINISTRATOR]?"_s, box::AskDefaultNo, Answer::Yes);
    counter.click("Command27");
    QVERIFY(!isOpen(counter));
}

HARROWBY_TEST(keypad_test, KeypadTest)
#include "keypad_test.moc"
