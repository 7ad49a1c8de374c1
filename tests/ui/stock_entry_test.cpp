// SPDX-License-Identifier: MIT
#include "tests/support/counter.h"

#include "tests/program/test_program.h"
#include "tests/ui/stock_form.h"
#include "ui/widgets/pick_list.h"
#include "ui/widgets/row_list.h"
#include "ui/widgets/text_table_model.h"

#include <QAbstractButton>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::test;

/// Saving a stock item: its checks, and whether it is new or changed.
class StockEntryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void needsALogin();
    void needsTheRight();
    void refusals_data();
    void refusals();
    void firstRefusalWins();
    void idsAreStoredTrimmed();
    void askingForAnAutomaticId();
    void multipleEntries();
    void multipleEntriesOfOneId();
    void updateRefused();
    void update();
    void updateByTheName();
    void idsAreComparedToTheLetter();
    void quotes_data();
    void quotes();
};

namespace {

QStringList entered(const Counter &counter)
{
    QStringList all;
    for (const QString &field : fields)
        all << counter.text(field.toLatin1());
    return all;
}

QStringList withId(const QString &id, QStringList texts = bun)
{
    texts[0] = id;
    return texts;
}

const QString updateOfTea = u"Update Stock [A1  |  TEA] with A1  |  BLACK TEA, HOT, Unit Cost 1,250.00, R. Level 3, "
                            "Avail. 40000, Disabled?"_s;
const QStringList blackTea{u"A1"_s, u"HOT"_s, u"BLACK TEA"_s, u"1,250"_s, u"3"_s, u"40000"_s, u"disabled"_s};

} // namespace

void StockEntryTest::needsALogin()
{
    Counter counter;
    openStock(counter);
    counter.boxes.expect(u"Log out User[ADMINISTRATOR]?"_s, box::AskDefaultNo, Answer::Yes);
    counter.click("Command27");
    enter(counter, bun);
    counter.connection->statements.clear();
    counter.boxes.expect(u"You must Login in First!"_s, box::Exclamation);
    save(counter);
    QVERIFY(counter.connection->statements.isEmpty());
    QVERIFY(counter.hasFocus("Text3"));
}

void StockEntryTest::needsTheRight()
{
    Counter counter;
    counter.file.addUser(u"ANNA"_s, u"X"_s,
                         {u"Sales"_s, u"Report"_s, u"Undo"_s, u"Delete"_s, u"Settings"_s}); // all but one
    counter.open();
    counter.logIn(u"anna"_s, u"x"_s);
    enter(counter, withId(QString())); // also lacks an ID, but the right is checked first
    counter.connection->statements.clear();
    counter.boxes.expect(u"User [ANNA] doesn't have this privilege!"_s, box::Exclamation);
    save(counter);
    QVERIFY(counter.connection->statements.isEmpty());
    QCOMPARE(counter.selectedTab("TabStrip1"), WorkArea::QuickSales);
}

void StockEntryTest::refusals_data()
{
    QTest::addColumn<int>("field");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("message");
    QTest::addColumn<QString>("left"); // text of the field afterwards
    QTest::addColumn<bool>("focused");
    const auto row = [](const char *name, int field, const QString &typed, const QString &message, const QString &left,
                        bool focused) { QTest::newRow(name) << field << typed << message << left << focused; };
    const QString cost = u"Non-numeric or Invalid Stock Cost!"_s;
    const QString level = u"Non-numeric or Invalid Reorder Level!"_s;
    const QString stock = u"Non-numeric or Invalid Available Stock!"_s;
    row("ID", 0, u"  "_s, u"Invalid Category ID Entry!"_s, u"  "_s, false);
    row("category", 1, u" "_s, u"Invalid Category Name Selection!"_s, u" "_s, false);
    row("name", 2, QString(), u"Invalid Item Name Entry!"_s, QString(), false);
    row("no cost", 3, QString(), cost, u"0.00"_s, true);
    row("cost of letters", 3, u"two"_s, cost, u"0.00"_s, true);
    row("negative cost", 3, u"-0.5"_s, cost, u"0.00"_s, true);
    row("no level", 4, u"  "_s, level, u"0"_s, true);
    row("level of letters", 4, u"5 pcs"_s, level, u"0"_s, true);
    row("negative level", 4, u"-1"_s, level, u"0"_s, true);
    row("no stock", 5, QString(), stock, QString(), true);
    row("stock of letters", 5, u"many"_s, stock, u"many"_s, true);
    row("negative stock", 5, u"-3"_s, stock, u"-3"_s, true);
    row("use", 6, u"Yes"_s, u"Stock must either be Enabled or Disabled!"_s, u"Yes"_s, false);
}

void StockEntryTest::refusals()
{
    QFETCH(const int, field);
    QFETCH(const QString, typed);
    QFETCH(const QString, message);
    QFETCH(const QString, left);
    QFETCH(const bool, focused);
    Counter counter;
    openStock(counter);
    counter.find("Command16")->setFocus();
    QStringList texts = bun;
    texts[field] = typed;
    enter(counter, texts);
    const QByteArray name = fields.at(field).toLatin1();
    counter.boxes.expect(message, box::Exclamation, Answer::Ok, [&] { QCOMPARE(counter.text(name), typed); });
    save(counter);
    texts[field] = left;
    QCOMPARE(entered(counter), texts);
    QCOMPARE(counter.hasFocus(name), focused);
    QVERIFY(counter.connection->statements.isEmpty());
}

void StockEntryTest::firstRefusalWins()
{
    Counter counter;
    openStock(counter);
    enter(counter, {u"1"_s, u"A"_s, QString(), u"x"_s, u"x"_s, u"x"_s, u"x"_s});
    counter.boxes.expect(u"Invalid Item Name Entry!"_s, box::Exclamation);
    save(counter);
    QCOMPARE(counter.text("Combo8"), u"x"_s);
}

void StockEntryTest::idsAreStoredTrimmed()
{
    Counter counter;
    openStock(counter);
    enter(counter, {u"  x 1 "_s, u" Food "_s, u" Sweet bun "_s, u" 1.5 "_s, u" 3 "_s, u" 20 "_s, u" ENABLED "_s});
    save(counter);
    QCOMPARE(counter.connection->statements.first(),
             u"Select * from StockList where StockID = 'x 1' or UPPER(StockName) = 'SWEET BUN'"_s);
    QCOMPARE(counter.file.rows(u"SELECT StockID, StockCategory, StockName, StockUse FROM StockList"_s),
             QStringList{u"x 1|Food|Sweet bun|Enabled"_s});
    QCOMPARE(counter.text("StatusBar1_2"), u"Stock [Sweet bun] with ID [x 1] has been added successfully."_s);
    QCOMPARE(listed(counter), QStringList{u"X 1|SWEET BUN"_s});
}

/// Compared exactly: with blanks around it, "(Auto ID)" is an ordinary ID.
void StockEntryTest::askingForAnAutomaticId()
{
    Counter counter;
    openStock(counter);
    enter(counter, withId(u" (Auto ID) "_s));
    save(counter);
    QCOMPARE(counter.connection->statements.first(),
             u"Select * from StockList where StockID = '(Auto ID)' or UPPER(StockName) = 'BUN'"_s);
    QCOMPARE(storedIds(counter), QStringList{u"(Auto ID)"_s});
    counter.connection->statements.clear();
    enter(counter, {u"(Auto ID)"_s, u"FOOD"_s, u"CAKE"_s, u"1.5"_s, u"3"_s, u"20"_s, u"Enabled"_s});
    save(counter);
    QCOMPARE(storedIds(counter).last(), u"FOO-0001"_s);
}

void StockEntryTest::multipleEntries()
{
    Counter counter;
    counter.file.addItem(u"A1"_s, u"TEA"_s, 1, 1);
    counter.file.addItem(u"A2"_s, u"bun"_s, 1, 1);
    openStock(counter);
    enter(counter, withId(u"A1"_s));
    counter.boxes.expect(u"Stock [BUN] with ID [A1] cannot be updated because multiple entries already exist. Change "
                         "Stock ID or Item Name and try again!"_s,
                         box::Exclamation);
    save(counter);
    QCOMPARE(counter.connection->statements,
             QStringList{u"Select * from StockList where StockID = 'A1' or UPPER(StockName) = 'BUN'"_s});
    QCOMPARE(listed(counter), (QStringList{u"A1|TEA"_s, u"A2|BUN"_s}));
}

void StockEntryTest::multipleEntriesOfOneId()
{
    Counter counter;
    for (const QString &name : {u"TEA"_s, u"JAM"_s, u"OIL"_s})
        counter.file.addItem(u"A1"_s, name, 1, 1);
    openStock(counter);
    enter(counter, withId(u"A1"_s));
    counter.boxes.expect(u"Stock [BUN] with ID [A1] cannot be updated because multiple entries already exist. Change "
                         "Stock ID or Item Name and try again!"_s,
                         box::Exclamation);
    save(counter);
    QCOMPARE(counter.connection->statements.size(), 1);
}

void StockEntryTest::updateRefused()
{
    Counter counter;
    counter.file.addItem(u"A1"_s, u"TEA"_s, 1, 1);
    openStock(counter);
    const QStringList before = counter.file.rows(u"SELECT * FROM StockList"_s);
    const QString status = counter.text("StatusBar1_2");
    enter(counter, blackTea);
    counter.boxes.expect(updateOfTea, box::AskDefaultNo, Answer::No);
    save(counter);
    QCOMPARE(counter.file.rows(u"SELECT * FROM StockList"_s), before);
    QCOMPARE(counter.connection->statements,
             QStringList{u"Select * from StockList where StockID = 'A1' or UPPER(StockName) = 'BLACK TEA'"_s});
    QCOMPARE(entered(counter), blackTea);
    QCOMPARE(listed(counter), QStringList{u"A1|TEA"_s});
    QCOMPARE(counter.text("StatusBar1_2"), status);
}

void StockEntryTest::update()
{
    Counter counter;
    counter.file.addItem(u"A0"_s, u"OIL"_s, 1, 1);
    counter.file.addItem(u"A1"_s, u"TEA"_s, 1, 1);
    openStock(counter);
    enter(counter, blackTea);
    counter.boxes.expect(updateOfTea, box::AskDefaultNo, Answer::Yes);
    save(counter);
    QCOMPARE(counter.connection->statements,
             (QStringList{u"Select * from StockList where StockID = 'A1' or UPPER(StockName) = 'BLACK TEA'"_s,
                          u"update StockList"_s,
                          u"INSERT INTO SysUsage (SystemUsage,Times,Dates) Values ('Stock [BLACK TEA] with ID [A1] has "
                          "been updated successfully.','2018-03-05 14:07:09','2018-03-05 14:07:09')"_s,
                          u"Select * from StockList where StockUse = 'Enabled'"_s}));
    QCOMPARE(counter.file.rows(u"SELECT StockID, StockName, StockUse FROM StockList"_s),
             (QStringList{u"A0|OIL|Enabled"_s, u"A1|BLACK TEA|Disabled"_s}));
    QCOMPARE(listed(counter), (QStringList{u"A0|OIL"_s, u"A1|BLACK TEA"_s}));
    QCOMPARE(counter.find<RowList>("LV")->selectedRow(), 1);
}

void StockEntryTest::updateByTheName()
{
    Counter counter;
    counter.file.addItem(u"old"_s, u"Bun"_s, 1, 1);
    openStock(counter);
    enter(counter, withId(u"NEW"_s));
    counter.boxes.expect(u"Update Stock [OLD  |  BUN] with NEW  |  BUN, OTHER CATEGORY, Unit Cost 1.50, R. Level 3, "
                         "Avail. 20, Enabled?"_s,
                         box::AskDefaultNo, Answer::Yes);
    save(counter);
    QCOMPARE(storedIds(counter), QStringList{u"NEW"_s});
}

void StockEntryTest::idsAreComparedToTheLetter()
{
    Counter counter;
    counter.file.addItem(u"a1"_s, u"TEA"_s, 1, 1);
    openStock(counter);
    enter(counter, withId(u"A1"_s));
    save(counter);
    QCOMPARE(storedIds(counter), (QStringList{u"a1"_s, u"A1"_s}));
    QCOMPARE(listed(counter), QStringList{u"A1|BUN"_s}); // where they share a row
}

void StockEntryTest::quotes_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<QString>("name");
    QTest::newRow("in the ID") << u"A'1"_s << u"BUN"_s;
    QTest::newRow("in the name") << u"A1"_s << u"KID'S BUN"_s;
    QTest::newRow("in both") << u"A'1"_s << u"KID'S BUN"_s;
    QTest::newRow("two of them") << u"A'1'"_s << u"BUN"_s;
}

void StockEntryTest::quotes()
{
    QFETCH(const QString, id);
    QFETCH(const QString, name);
    Counter counter;
    counter.file.addItem(id, name, 1, 1); // is there already, and is not found
    openStock(counter);
    QStringList texts = withId(id);
    texts[2] = name;
    enter(counter, texts);
    save(counter);
    QCOMPARE(counter.file.rows(u"SELECT StockID, StockName, StockCost FROM StockList"_s),
             (QStringList{id + u'|' + name + u"|1"_s, id + u'|' + name + u"|1.5"_s}));
    QCOMPARE(counter.text("StatusBar1_2"), u"Stock [%1] with ID [%2] has been added successfully."_s.arg(name, id));
    QCOMPARE(listed(counter).size(), 1);
}

HARROWBY_TEST(stock_entry_test, StockEntryTest)
#include "stock_entry_test.moc"
