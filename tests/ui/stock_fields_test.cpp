// SPDX-License-Identifier: MIT
#include "tests/program/test_program.h"
#include "tests/support/counter.h"

#include "ui/widgets/pick_list.h"
#include "ui/widgets/row_list.h"

#include <QAbstractButton>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QLineEdit>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::test;

/// Entry fields of a stock item: what they offer, how typed text is changed, and how they are cleared.
class StockFieldsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void captions();
    void offeredEntries();
    void everyFieldTakesTypedText();
    void newItem();
    void newItemTwice();
    void nameIsTypedInUpperCase();
    void nameIsTypedInUpperCaseInTheMiddle();
    void nameFromAnInputMethod();
    void pickedNameKeepsItsLetters();
    void otherFieldsKeepTheirLetters();
    void costIsReformattedWhenLeft_data();
    void costIsReformattedWhenLeft();
    void enterDoesNotLeaveTheCost();
};

namespace {

const QStringList fields{u"Combo6"_s, u"Combo5"_s, u"Combo7"_s, u"Combo8"_s, u"Combo13"_s, u"Combo14"_s, u"Combo15"_s};

void openStock(Counter &counter)
{
    counter.open();
    counter.logIn();
    counter.chooseTab("TabStrip1", WorkArea::EditStock);
    counter.window().activateWindow();
    QTRY_VERIFY(counter.window().isActiveWindow());
}

PickList &list(const Counter &counter, const char *name)
{
    return *counter.find<PickList>(name);
}

QStringList entries(const PickList &list)
{
    QStringList all;
    for (int index = 0; index < list.count(); ++index)
        all << list.itemText(index);
    return all;
}

} // namespace

void StockFieldsTest::captions()
{
    Counter counter;
    openStock(counter);
    QCOMPARE(counter.text("Command16"), u"Add/Edit New Stock"_s);
    QCOMPARE(counter.text("Command5"), u"Edit Stock"_s);
}

void StockFieldsTest::offeredEntries()
{
    Counter counter;
    counter.file.sql(u"INSERT INTO InventoryCategory VALUES ('Drinks','')"_s);
    openStock(counter);
    QCOMPARE(entries(list(counter, "Combo6")), QStringList{u"(Auto ID)"_s});
    QCOMPARE(entries(list(counter, "Combo5")), (QStringList{u"DRINKS"_s, u"OTHER CATEGORY"_s}));
    QCOMPARE(entries(list(counter, "Combo15")), (QStringList{u"Enabled"_s, u"Disabled"_s}));
}

void StockFieldsTest::everyFieldTakesTypedText()
{
    Counter counter;
    openStock(counter);
    for (const QString &field : fields) {
        PickList &entry = list(counter, field.toLatin1());
        QVERIFY2(entry.isVisible() && entry.isEnabled(), qPrintable(field));
        entry.setEntryText({});
        entry.setFocus();
        QTest::keyClicks(&entry, u"7"_s);
        QCOMPARE(entry.entryText(), u"7"_s);
    }
}

void StockFieldsTest::newItem()
{
    Counter counter;
    openStock(counter);
    for (const QString &field : fields)
        counter.setText(field.toLatin1(), u"typed"_s);
    counter.find("Command26")->setEnabled(true);
    counter.connection->statements.clear();
    counter.click("Command26");
    QStringList texts;
    for (const QString &field : fields)
        texts << counter.text(field.toLatin1());
    QCOMPARE(texts, (QStringList{u"(Auto ID)"_s, u"OTHER CATEGORY"_s, QString(), QString(), QString(), QString(),
                                 u"Enabled"_s}));
    QVERIFY(!counter.find("Command26")->isEnabled());
    QVERIFY(counter.connection->statements.isEmpty());
}

void StockFieldsTest::newItemTwice()
{
    Counter counter;
    counter.file.addItem(u"A1"_s, u"TEA"_s, 1, 1);
    openStock(counter);
    QVERIFY(!counter.find("Command26")->isEnabled());
    for (int time = 0; time < 2; ++time) {
        counter.click("Command5");
        QVERIFY(counter.find("Command26")->isEnabled());
        counter.click("Command26");
        QVERIFY(!counter.find("Command26")->isEnabled());
        QCOMPARE(counter.text("Combo6"), u"(Auto ID)"_s);
    }
    QCOMPARE(counter.find<RowList>("LV")->selectedRow(), 0); // the list keeps its row
}

void StockFieldsTest::nameIsTypedInUpperCase()
{
    Counter counter;
    openStock(counter);
    list(counter, "Combo7").setFocus();
    QTest::keyClicks(&list(counter, "Combo7"), u"tea & Jam 2"_s);
    QCOMPARE(counter.text("Combo7"), u"TEA & JAM 2"_s);
}

void StockFieldsTest::nameIsTypedInUpperCaseInTheMiddle()
{
    Counter counter;
    openStock(counter);
    counter.setText("Combo7", u"TEA"_s);
    list(counter, "Combo7").setFocus();
    QLineEdit &edit = *list(counter, "Combo7").lineEdit();
    edit.setCursorPosition(1);
    QStringList texts;
    connect(&edit, &QLineEdit::textChanged, this, [&](const QString &text) { texts << text; });
    QTest::keyClicks(&list(counter, "Combo7"), u"x"_s);
    QKeyEvent accented(QEvent::KeyPress, 0, Qt::NoModifier, u"é"_s);
    QCoreApplication::sendEvent(&list(counter, "Combo7"), &accented);
    QCOMPARE(texts, (QStringList{u"TXEA"_s, u"TXÉEA"_s})); // no change signal ever had small letters
    QCOMPARE(edit.cursorPosition(), 3);
}

void StockFieldsTest::nameFromAnInputMethod()
{
    Counter counter;
    openStock(counter);
    counter.setText("Combo7", u"TEA"_s);
    list(counter, "Combo7").setFocus();
    list(counter, "Combo7").lineEdit()->setCursorPosition(3);
    QInputMethodEvent composed(u"ja"_s, {});
    QCoreApplication::sendEvent(&list(counter, "Combo7"), &composed);
    QCOMPARE(counter.text("Combo7"), u"TEA"_s);
    QInputMethodEvent committed;
    committed.setCommitString(u"jam"_s, -1, 1);
    QCoreApplication::sendEvent(&list(counter, "Combo7"), &committed);
    QCOMPARE(counter.text("Combo7"), u"TEJAM"_s);
}

void StockFieldsTest::pickedNameKeepsItsLetters()
{
    Counter counter;
    counter.file.addItem(u"A1"_s, u"Green Tea"_s, 1, 1);
    openStock(counter);
    list(counter, "Combo7").setFocus();
    QTest::keyClick(&list(counter, "Combo7"), Qt::Key_Down);
    QCOMPARE(counter.text("Combo7"), u"Green Tea"_s);
}

void StockFieldsTest::otherFieldsKeepTheirLetters()
{
    Counter counter;
    openStock(counter);
    for (const char *field : {"Combo5", "Combo6", "Combo15"}) {
        counter.setText(field, {});
        list(counter, field).setFocus();
        QTest::keyClicks(&list(counter, field), u"aB"_s);
        QCOMPARE(counter.text(field), u"aB"_s);
    }
}

void StockFieldsTest::costIsReformattedWhenLeft_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("left");
    QTest::newRow("whole") << u"5"_s << u"5.00"_s;
    QTest::newRow("thousands") << u"1234.5"_s << u"1,234.50"_s;
    QTest::newRow("comma and blank") << u"1, 234.5"_s << u"1,234.50"_s;
    QTest::newRow("formatted already") << u"1,234.50"_s << u"1,234.50"_s;
    QTest::newRow("rounded") << u"0.125"_s << u"0.13"_s;
    QTest::newRow("negative") << u"-1234"_s << u"-1,234.00"_s;
    QTest::newRow("blanks around") << u" 7 "_s << u"7.00"_s;
    QTest::newRow("no number") << u"two"_s << u"two"_s;
    QTest::newRow("nothing") << QString() << QString();
    QTest::newRow("too large") << u"1e400"_s << u"1e400"_s;
}

void StockFieldsTest::costIsReformattedWhenLeft()
{
    QFETCH(const QString, typed);
    Counter counter;
    openStock(counter);
    list(counter, "Combo8").setFocus();
    counter.setText("Combo8", typed);
    QCOMPARE(counter.text("Combo8"), typed);
    list(counter, "Combo13").setFocus();
    QTEST(counter.text("Combo8"), "left");
}

void StockFieldsTest::enterDoesNotLeaveTheCost()
{
    Counter counter;
    openStock(counter);
    list(counter, "Combo8").setFocus();
    QTest::keyClicks(&list(counter, "Combo8"), u"5"_s);
    QTest::keyClick(&list(counter, "Combo8"), Qt::Key_Return);
    QCOMPARE(counter.text("Combo8"), u"5"_s);
    QTest::keyClick(&list(counter, "Combo8"), Qt::Key_Tab);
    QVERIFY(!counter.hasFocus("Combo8"));
    QCOMPARE(counter.text("Combo8"), u"5.00"_s);
}

HARROWBY_TEST(stock_fields_test, StockFieldsTest)
#include "stock_fields_test.moc"
