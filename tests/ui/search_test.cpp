// SPDX-License-Identifier: MIT
#include "tests/support/counter.h"

#include "tests/program/test_program.h"
#include "tests/ui/search_desk.h"
#include "ui/widgets/row_list.h"

#include <QAbstractItemModel>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::test;
using namespace harrowby::test::search_desk;

/// Looking for a stock item: what is asked, and what is found.
class SearchTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void captions();
    void needsLogin();
    void needsNoRight();
    void cancelled();
    void blankAnswers_data();
    void blankAnswers();
    void shortAnswers_data();
    void shortAnswers();
    void looksForLongerAnswers_data();
    void looksForLongerAnswers();
    void asteriskIsNoWildcard();
    void disabledItemsAreFoundByTheirId();
    void nothingFound();
    void nothingFoundKeepsThePanel();
    void quoteFindsNothing();
    void failedStatementFindsNothing();
    void brokenInTheMiddle();
};

void SearchTest::captions()
{
    Counter counter;
    counter.open();
    QCOMPARE(counter.text("Command9"), u"Close Search Result"_s);
    QCOMPARE(counter.text("Command21"), u"Select ..."_s);
    const QAbstractItemModel *list = counter.find<RowList>("LV2")->model();
    QStringList headers;
    for (int column = 0; column < list->columnCount(); ++column)
        headers << list->headerData(column, Qt::Horizontal).toString();
    QCOMPARE(headers, (QStringList{QString(), u"Stock ID"_s, u"Stock Name"_s, u"Stock Category"_s}));
}

void SearchTest::needsLogin()
{
    Counter counter;
    counter.open();
    counter.boxes.expect(u"You must Login in First!"_s, box::Exclamation);
    counter.click("Command8");
    QVERIFY(counter.hasFocus("Text3"));
}

void SearchTest::needsNoRight()
{
    Counter counter;
    counter.file.addUser(u"ANN"_s, u"PW"_s);
    counter.file.addItem(u"A2"_s, u"*TEA*"_s, 1.25, 20);
    counter.open();
    counter.logIn(u"ANN"_s, u"PW"_s);
    search(counter, u"tea"_s);
    QCOMPARE(counter.rows("LV2"), QStringList{u"1.|A2|*TEA*|DRINKS"_s});
}

void SearchTest::cancelled()
{
    Counter counter;
    openShop(counter);
    counter.connection->statements.clear();
    counter.boxes.expectInput(prompt, title, QString(), {});
    counter.click("Command8");
    QCOMPARE(counter.connection->statements, QStringList());
    QVERIFY(!isOpen(counter));
}

void SearchTest::blankAnswers_data()
{
    QTest::addColumn<QString>("answer");
    QTest::newRow("nothing") << QString();
    QTest::newRow("blanks") << u"      "_s;
}

void SearchTest::blankAnswers()
{
    QFETCH(QString, answer);
    Counter counter;
    openShop(counter);
    counter.connection->statements.clear();
    search(counter, answer);
    QCOMPARE(counter.connection->statements, QStringList());
}

void SearchTest::shortAnswers_data()
{
    QTest::addColumn<QString>("answer");
    QTest::newRow("a") << u"a"_s;
    QTest::newRow("ab") << u"ab"_s;
    QTest::newRow("ab and blanks") << u"  ab   "_s;
    QTest::newRow("quote") << u"'"_s;
}

void SearchTest::shortAnswers()
{
    QFETCH(QString, answer);
    Counter counter;
    openShop(counter);
    counter.connection->statements.clear();
    counter.boxes.expectInput(prompt, title, QString(), answer);
    counter.boxes.expect(u"Invalid Search Entry?"_s, box::Exclamation);
    counter.click("Command8");
    QCOMPARE(counter.connection->statements, QStringList());
    QVERIFY(!isOpen(counter));
}

void SearchTest::looksForLongerAnswers_data()
{
    QTest::addColumn<QString>("answer");
    QTest::addColumn<QString>("upper");
    QTest::newRow("abc") << u"abc"_s << u"ABC"_s;
    QTest::newRow("untrimmed") << u"  abc "_s << u"  ABC "_s;
    QTest::newRow("a blank inside") << u"a c"_s << u"A C"_s;
    QTest::newRow("other letters") << u"äß1"_s << u"ÄSS1"_s;
    QTest::newRow("wildcards") << u"%_%"_s << u"%_%"_s;
}

void SearchTest::looksForLongerAnswers()
{
    QFETCH(QString, answer);
    QFETCH(QString, upper);
    Counter counter;
    openShop(counter);
    counter.file.sql(u"DELETE FROM StockList"_s);
    counter.connection->statements.clear();
    counter.boxes.expectInput(prompt, title, QString(), answer);
    counter.boxes.expect(u"No Search Found for "_s + answer + u'!', box::Exclamation);
    counter.click("Command8");
    QCOMPARE(counter.connection->statements, QStringList{statement(upper)});
}

void SearchTest::asteriskIsNoWildcard()
{
    Counter counter;
    openShop(counter);
    search(counter, u"tea"_s);
    QCOMPARE(counter.rows("LV2"), (QStringList{u"1.|A2|*TEA*|HOT DRINKS"_s, u"2.|A3|*tea*|DRINKS"_s}));
    counter.boxes.expectInput(prompt, title, QString(), u"milk"_s);
    counter.boxes.expect(u"No Search Found for milk!"_s, box::Exclamation);
    counter.click("Command8");
}

/// The statement's condition on StockUse applies to the name alone.
void SearchTest::disabledItemsAreFoundByTheirId()
{
    Counter counter;
    openShop(counter);
    counter.file.sql(u"UPDATE StockList SET StockUse = 'Disabled'; UPDATE StockList SET StockID = '*TEA*' "
                     "WHERE StockID = 'A4'"_s);
    search(counter, u"tea"_s);
    QCOMPARE(counter.rows("LV2"), QStringList{u"1.|*TEA*|TEA|DRINKS"_s});
}

void SearchTest::nothingFound()
{
    Counter counter;
    openShop(counter);
    counter.boxes.expectInput(prompt, title, QString(), u" Nothing like it "_s);
    counter.boxes.expect(u"No Search Found for  Nothing like it !"_s, box::Exclamation);
    counter.click("Command8");
    QVERIFY(!isOpen(counter));
}

void SearchTest::nothingFoundKeepsThePanel()
{
    Counter counter;
    openShop(counter);
    search(counter, u"tea"_s);
    const QStringList before = counter.rows("LV2");
    counter.boxes.expectInput(prompt, title, QString(), u"nothing"_s);
    counter.boxes.expect(u"No Search Found for nothing!"_s, box::Exclamation);
    counter.click("Command8");
    QVERIFY(isOpen(counter));
    QCOMPARE(counter.rows("LV2"), before);
    counter.click("Command31"); // the keypad over it
    counter.boxes.expectInput(prompt, title, QString(), u"nothing"_s);
    counter.boxes.expect(u"No Search Found for nothing!"_s, box::Exclamation);
    counter.click("Command8");
    QVERIFY(counter.find("Frame13")->isVisible());
}

void SearchTest::quoteFindsNothing()
{
    Counter counter;
    openShop(counter);
    counter.boxes.expectInput(prompt, title, QString(), u"x' or 'a'='a"_s);
    counter.boxes.expect(u"No Search Found for x' or 'a'='a!"_s, box::Exclamation);
    counter.click("Command8");
    QVERIFY(!isOpen(counter));
}

void SearchTest::failedStatementFindsNothing()
{
    Counter counter;
    openShop(counter);
    counter.connection->fails = [](const QString &) { return true; };
    counter.boxes.expectInput(prompt, title, QString(), u"tea"_s);
    counter.boxes.expect(u"No Search Found for tea!"_s, box::Exclamation);
    counter.click("Command8");
    QVERIFY(!isOpen(counter));
}

void SearchTest::brokenInTheMiddle()
{
    Counter counter;
    openShop(counter);
    search(counter, u"tea"_s);
    QCOMPARE(counter.rows("LV2").size(), 2);
    counter.connection->rowsUntilBreak = [](const QString &select) { return select == statement(u"TEA"_s) ? 1 : -1; };
    search(counter, u"tea"_s); // reading breaks off after the first row
    QVERIFY(isOpen(counter));
    QCOMPARE(counter.rows("LV2"), QStringList());
}

HARROWBY_TEST(search_test, SearchTest)
#include "search_test.moc"
