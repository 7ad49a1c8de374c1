// SPDX-License-Identifier: MIT
#include "tests/program/test_program.h"
#include "tests/support/counter.h"

#include "ui/widgets/pick_list.h"

#include <QLineEdit>
#include <QListWidget>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::test;

/// Categories: listed, added, renamed with their stock, and deleted.
class CategoriesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void listsAreSortedOnlyInSettings();
    void textsSurviveAReload();
    void add();
    void addIsTypedInUpperCase();
    void reservedNames_data();
    void reservedNames();
    void blankName();
    void listedTwice();
    void otherCapitalsAreAnotherCategory();
    void quotedNameIsListedUntilTheNextLoad();
    void changeWithoutCategories();
    void changeWithoutSelection();
    void change();
    void shortNames_data();
    void shortNames();
    void changeToAReservedName();
    void changeComparesToTheLetter();
    void removeWithoutCategories();
    void removeWithoutSelection();
    void remove();
    void removeRefused();
    void failingStatementsLeaveTheScreenAhead();
};

namespace {

QStringList shown(const Counter &counter)
{
    const auto *list = counter.find<QListWidget>("List2");
    QStringList all;
    for (int row = 0; row < list->count(); ++row)
        all << list->item(row)->text();
    return all;
}

QStringList entries(const Counter &counter, const char *name)
{
    const auto *list = counter.find<PickList>(name);
    QStringList all;
    for (int index = 0; index < list->count(); ++index)
        all << list->itemText(index);
    return all;
}

void openSettings(Counter &counter, const QString &categories = u"('DRINKS',''),('FOOD','')"_s)
{
    if (!categories.isEmpty())
        counter.file.sql(u"INSERT INTO InventoryCategory VALUES "_s + categories);
    counter.open();
    counter.logIn();
    counter.chooseTab("TabStrip1", WorkArea::Settings);
    counter.connection->statements.clear();
}

void addByHand(const Counter &counter, const QString &name)
{
    counter.setText("Combo16", name);
    counter.click("Command2");
}

void select(const Counter &counter, int row)
{
    counter.find<QListWidget>("List2")->setCurrentRow(row);
}

} // namespace

void CategoriesTest::listsAreSortedOnlyInSettings()
{
    Counter counter;
    openSettings(counter, u"('Snacks',''),('DRINKS','')"_s);
    QCOMPARE(shown(counter), (QStringList{u"DRINKS"_s, u"Snacks"_s}));
    QCOMPARE(entries(counter, "Combo5"), (QStringList{u"SNACKS"_s, u"DRINKS"_s, u"OTHER CATEGORY"_s}));
}

void CategoriesTest::textsSurviveAReload()
{
    Counter counter;
    openSettings(counter);
    const std::initializer_list<std::pair<const char *, QString>> texts{
        {"Combo1", u"FOOD"_s}, {"Combo2", u"GONE"_s}, {"Combo5", u"DRINKS"_s}, {"Combo12", u"half ty"_s}};
    for (const auto &[list, text] : texts)
        counter.setText(list, text);
    addByHand(counter, u"TOYS"_s);
    for (const auto &[list, text] : texts)
        QCOMPARE(counter.text(list), text);
    QCOMPARE(entries(counter, "Combo2"),
             (QStringList{u"(ALL CATEGORY)"_s, u"DRINKS"_s, u"FOOD"_s, u"TOYS"_s, u"OTHER CATEGORY"_s}));
}

void CategoriesTest::add()
{
    Counter counter;
    openSettings(counter);
    addByHand(counter, u" bread "_s);
    QVERIFY(counter.connection->statements.contains(
        u"Insert Into InventoryCategory (CategoryName, EntryDate) Values ('BREAD', '2018-03-05 14:07:09')"_s));
    QCOMPARE(counter.file.rows(u"SELECT * FROM InventoryCategory WHERE CategoryName = 'BREAD'"_s),
             QStringList{u"BREAD|2018-03-05 14:07:09"_s});
    QCOMPARE(shown(counter), (QStringList{u"DRINKS"_s, u"FOOD"_s, u"BREAD"_s})); // at the end, not sorted
    QCOMPARE(counter.text("Combo16"), QString());
    QCOMPARE(counter.text("StatusBar1_2"), u"Category [BREAD] Added!"_s);
}

void CategoriesTest::addIsTypedInUpperCase()
{
    Counter counter;
    openSettings(counter);
    counter.find("Combo16")->setFocus();
    QTest::keyClicks(counter.find<PickList>("Combo16")->lineEdit(), u"toys"_s);
    QCOMPARE(counter.text("Combo16"), u"TOYS"_s);
}

void CategoriesTest::reservedNames_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("all") << u"(all category)"_s;
    QTest::newRow("other") << u"  other category "_s;
}

void CategoriesTest::reservedNames()
{
    QFETCH(QString, name);
    Counter counter;
    openSettings(counter);
    counter.boxes.expect(u"Category Name Entry can't be Used!"_s, box::Exclamation);
    addByHand(counter, name);
    QVERIFY(counter.connection->statements.isEmpty());
}

void CategoriesTest::blankName()
{
    Counter counter;
    openSettings(counter);
    counter.boxes.expect(u"Category Name Entry is Blank!"_s, box::Exclamation);
    addByHand(counter, u"   "_s);
    QVERIFY2(counter.boxes.isDone(), counter.boxes.problems().constData());
}

void CategoriesTest::listedTwice()
{
    Counter counter;
    openSettings(counter);
    counter.boxes.expect(u"Category Already Added!"_s, box::Exclamation);
    addByHand(counter, u"food"_s);
    QCOMPARE(shown(counter).size(), 2);
}

void CategoriesTest::otherCapitalsAreAnotherCategory()
{
    Counter counter;
    openSettings(counter, u"('Food','')"_s);
    addByHand(counter, u"FOOD"_s);
    QCOMPARE(shown(counter), (QStringList{u"Food"_s, u"FOOD"_s}));
    QCOMPARE(counter.file.cell(u"SELECT count(*) FROM InventoryCategory"_s), u"2"_s);
}

void CategoriesTest::quotedNameIsListedUntilTheNextLoad()
{
    Counter counter;
    openSettings(counter);
    addByHand(counter, u"KID'S"_s);
    QCOMPARE(counter.file.cell(u"SELECT count(*) FROM InventoryCategory"_s), u"2"_s);
    QCOMPARE(shown(counter).last(), u"KID'S"_s);
    QVERIFY(!entries(counter, "Combo1").contains(u"KID'S"_s));
}

void CategoriesTest::changeWithoutCategories()
{
    Counter counter;
    openSettings(counter, {});
    counter.boxes.expect(u"There are no Category to Change"_s, box::Exclamation);
    counter.click("Command22");
    QVERIFY2(counter.boxes.isDone(), counter.boxes.problems().constData());
}

void CategoriesTest::changeWithoutSelection()
{
    Counter counter;
    openSettings(counter);
    counter.boxes.expect(u"Please First Select a Category!"_s, box::Exclamation);
    counter.click("Command22");
    QVERIFY2(counter.boxes.isDone(), counter.boxes.problems().constData());
}

void CategoriesTest::change()
{
    Counter counter;
    counter.file.addItem(u"A1"_s, u"BUN"_s, 1, 1, u"FOOD"_s);
    counter.file.addItem(u"A2"_s, u"TEA"_s, 1, 1, u"Food"_s);
    openSettings(counter);
    select(counter, 1);
    counter.boxes.expectInput(u"Change Category[FOOD] to what new name?"_s, u"Change Category - "_s, QString(),
                              u" bread "_s);
    counter.click("Command22");
    QCOMPARE(counter.connection->statements.mid(0, 2),
             (QStringList{u"Update InventoryCategory SET CategoryName = 'BREAD' where CategoryName = 'FOOD'"_s,
                          u"Update StockList SET StockCategory = 'BREAD' where StockCategory = 'FOOD'"_s}));
    QCOMPARE(shown(counter), (QStringList{u"DRINKS"_s, u"BREAD"_s}));
    QVERIFY(entries(counter, "Combo1").contains(u"BREAD"_s));
    QCOMPARE(counter.file.rows(u"SELECT StockCategory FROM StockList ORDER BY StockID"_s),
             (QStringList{u"BREAD"_s, u"Food"_s})); // compared to the letter
    QCOMPARE(counter.text("StatusBar1_2"), u"Category Name Changed!"_s);
}

void CategoriesTest::shortNames_data()
{
    QTest::addColumn<bool>("cancelled");
    QTest::addColumn<QString>("answer");
    QTest::addColumn<QString>("stored");
    QTest::newRow("two letters") << false << u"AB"_s << QString();
    QTest::newRow("blanks") << false << u"    "_s << QString();
    QTest::newRow("cancel") << true << QString() << QString();
    QTest::newRow("two letters after a blank") << false << u" ab"_s << u"AB"_s;
}

void CategoriesTest::shortNames()
{
    QFETCH(bool, cancelled);
    QFETCH(QString, answer);
    QFETCH(QString, stored);
    Counter counter;
    openSettings(counter);
    select(counter, 1);
    counter.boxes.expectInput(u"Change Category[FOOD] to what new name?"_s, u"Change Category - "_s, QString(),
                              cancelled ? std::nullopt : std::optional(answer));
    if (stored.isEmpty())
        counter.boxes.expect(u"Category Name too short!"_s, box::Exclamation);
    counter.click("Command22");
    QCOMPARE(shown(counter).last(), stored.isEmpty() ? u"FOOD"_s : stored);
}

void CategoriesTest::changeToAReservedName()
{
    Counter counter;
    openSettings(counter);
    for (const QString &name : {u"OTHER CATEGORY"_s, u"DRINKS"_s}) {
        const QString old = shown(counter).last();
        select(counter, 1);
        counter.boxes.expectInput(u"Change Category[%1] to what new name?"_s.arg(old), u"Change Category - "_s,
                                  QString(), name);
        counter.click("Command22");
        QCOMPARE(shown(counter).last(), name);
    }
}

void CategoriesTest::changeComparesToTheLetter()
{
    Counter counter;
    openSettings(counter, u"('Food',''),('FOOD','')"_s);
    select(counter, 1);
    counter.boxes.expectInput(u"Change Category[Food] to what new name?"_s, u"Change Category - "_s, QString(),
                              u"BREAD"_s);
    counter.click("Command22");
    QCOMPARE(counter.file.rows(u"SELECT CategoryName FROM InventoryCategory ORDER BY rowid"_s),
             (QStringList{u"BREAD"_s, u"FOOD"_s}));
}

void CategoriesTest::removeWithoutCategories()
{
    Counter counter;
    openSettings(counter, {});
    counter.boxes.expect(u"There are no Category to Delete."_s, box::Exclamation);
    counter.click("Command3");
    QVERIFY2(counter.boxes.isDone(), counter.boxes.problems().constData());
}

void CategoriesTest::removeWithoutSelection()
{
    Counter counter;
    openSettings(counter);
    counter.boxes.expect(u"Please First Select a Category to Delete!"_s, box::Exclamation);
    counter.click("Command3");
    QVERIFY2(counter.boxes.isDone(), counter.boxes.problems().constData());
}

namespace {

constexpr auto removeQuestion =
    "Please note that any Stock item under this category will be moved to 'OTHER CATEGORY. Do you want to continue to "
    "delete Category [FOOD]?"_L1;

} // namespace

void CategoriesTest::remove()
{
    Counter counter;
    counter.file.addItem(u"A1"_s, u"BUN"_s, 1, 1, u"FOOD"_s);
    openSettings(counter);
    select(counter, 1);
    counter.boxes.expect(removeQuestion, box::AskDefaultNo, Answer::Yes);
    counter.click("Command3");
    QCOMPARE(counter.connection->statements.mid(0, 2),
             (QStringList{u"Delete from InventoryCategory where CategoryName = 'FOOD'"_s,
                          u"Update StockList Set StockCategory = 'OTHER CATEGORY' where StockCategory = 'FOOD'"_s}));
    QCOMPARE(shown(counter), QStringList{u"DRINKS"_s});
    QVERIFY(counter.find<QListWidget>("List2")->selectedItems().isEmpty()); // nobody chose another one
    QVERIFY(!entries(counter, "Combo12").contains(u"FOOD"_s));
    QCOMPARE(counter.file.cell(u"SELECT StockCategory FROM StockList"_s), u"OTHER CATEGORY"_s);
    QCOMPARE(counter.text("StatusBar1_2"), u"Category [FOOD] Deleted!"_s);
    counter.setText("Combo1", u"OTHER CATEGORY"_s);
    QVERIFY(counter.text("Command1_0").startsWith(u"A1"_s));
}

void CategoriesTest::removeRefused()
{
    Counter counter;
    openSettings(counter);
    select(counter, 1);
    counter.boxes.expect(removeQuestion, box::AskDefaultNo, Answer::No);
    counter.click("Command3");
    QCOMPARE(shown(counter).size(), 2);
    QVERIFY(counter.connection->statements.isEmpty());
}

void CategoriesTest::failingStatementsLeaveTheScreenAhead()
{
    Counter counter;
    counter.file.addItem(u"A1"_s, u"BUN"_s, 1, 1, u"FOOD"_s);
    openSettings(counter);
    select(counter, 1);
    counter.connection->fails = [](const QString &statement) { return statement.startsWith(u"Delete"_s); };
    counter.boxes.expect(removeQuestion, box::AskDefaultNo, Answer::Yes);
    counter.click("Command3");
    // Nothing is rolled back: the items have moved, the category is still in the table.
    QCOMPARE(shown(counter), QStringList{u"DRINKS"_s});
    QCOMPARE(counter.file.cell(u"SELECT count(*) FROM InventoryCategory"_s), u"2"_s);
    QCOMPARE(counter.file.cell(u"SELECT StockCategory FROM StockList"_s), u"OTHER CATEGORY"_s);
}

HARROWBY_TEST(categories_test, CategoriesTest)
#include "categories_test.moc"
