// SPDX-License-Identifier: MIT
#include "tests/doubles/database.h"
#include "tests/program/test_program.h"
#include "tests/support/counter.h"
#include "tests/support/known_boxes.h"
#include "tests/ui/interruption.h"

#include "ui/widgets/pick_list.h"
#include "ui/widgets/quick_sale_button.h"
#include "ui/widgets/row_list.h"
#include "ui/widgets/text_table_model.h"

#include <QApplication>
#include <QListWidget>
#include <QTimer>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::test;

namespace {

constexpr int items = 30;
constexpr int categories = 40;

using Action = void (*)(Counter &);
using NamedAction = std::pair<const char *, Action>;

void chooseCategory(Counter &counter, const char *list)
{
    counter.setText(list, u"(ALL CATEGORY)"_s);
    Q_EMIT counter.find<PickList>(list)->picked(0);
}

void search(Counter &counter)
{
    if (!counter.state().login.IsLoggedIn)
        return counter.click("Command8");
    counter.boxes.expectInput(u"Please Enter Search item name or ID?"_s, u"Searching for Stock Item"_s, QString(),
                              u"star"_s);
    counter.click("Command8");
}

void sellSome(Counter &counter)
{
    counter.setText("Combo3", u"A1  |  ITEM 11"_s);
    counter.setText("Combo4", u"2"_s);
    counter.click("Command15");
}

void reorderSome(Counter &counter)
{
    counter.setText("Combo11", u"A1  |  ITEM 11"_s);
    counter.setText("Combo10", u"2"_s);
    counter.click("Command17");
}

void deletePurchase(Counter &counter)
{
    counter.setText("Combo17", counter.file.cell(u"SELECT PurchaseID FROM PurchaseCart"_s));
    counter.click("Command4");
}

/// What a user can do while a list fills.
const QList<NamedAction> &actions()
{
    static const QList<NamedAction> all{
        {"press an item", [](Counter &c) { c.click("Command1_2"); }},
        {"next page", [](Counter &c) { c.click("CmdNext"); }},
        {"previous page", [](Counter &c) { c.click("CmdPrev"); }},
        {"another category", [](Counter &c) { c.setText("Combo1", u"SNACKS"_s); }},
        {"an empty category", [](Counter &c) { c.setText("Combo1", u"NONE OF IT"_s); }},
        {"commit", [](Counter &c) { c.click("Command14"); }},
        {"delete a line", [](Counter &c) { c.click("Command12"); }},
        {"clear the cart", [](Counter &c) { c.click("Command13"); }},
        {"price of a line", [](Counter &c) { QTest::keyClick(c.find("LV3"), Qt::Key_Return); }},
        {"custom sales", [](Counter &c) { c.chooseTab("TabStrip1", WorkArea::CustomSales); }},
        {"quick sales", [](Counter &c) { c.chooseTab("TabStrip1", WorkArea::QuickSales); }},
        {"settings", [](Counter &c) { c.chooseTab("TabStrip1", WorkArea::Settings); }},
        {"stock", [](Counter &c) { c.chooseTab("TabStrip1", WorkArea::EditStock); }},
        {"reorder area", [](Counter &c) { c.chooseTab("TabStrip1", WorkArea::ReorderStock); }},
        {"custom category", [](Counter &c) { chooseCategory(c, "Combo2"); }},
        {"reorder category", [](Counter &c) { chooseCategory(c, "Combo12"); }},
        {"search", search},
        {"select a result", [](Counter &c) { c.click("Command21"); }},
        {"keypad", [](Counter &c) { c.click("Command31"); }},
        {"sell some", sellSome},
        {"reorder some", reorderSome},
        {"take a reorder back", [](Counter &c) { c.click("Command23"); }},
        {"undo the purchase", [](Counter &c) { c.click("Command25"); }},
        {"delete a purchase", deletePurchase},
        {"activity", [](Counter &c) { c.chooseTab("TabStrip2", SidePanel::SalesActivity); }},
        {"save settings", [](Counter &c) { c.click("Command18"); }},
        {"clear the log", [](Counter &c) { c.click("Command11"); }},
        {"log in", [](Counter &c) { c.logIn(); }},
        {"log out", [](Counter &c) { c.click("Command27"); }},
        {"log out and in", [](Counter &c) { c.click("Command27"), c.logIn(); }},
        {"close", [](Counter &c) { c.window().close(); }},
        {"close button", [](Counter &c) { c.click("Command10"); }},
    };
    return all;
}

/// What fills the quick-sale page.
const QList<NamedAction> &fillers()
{
    static const QList<NamedAction> all{
        {"next page", [](Counter &c) { c.click("CmdNext"); }},
        {"category", [](Counter &c) { c.setText("Combo1", u"TEA"_s); }},
        {"tab", [](Counter &c) { c.chooseTab("TabStrip1", WorkArea::QuickSales); }},
        {"commit", [](Counter &c) { c.click("Command14"); }},
    };
    return all;
}

/// What fills the other lists, and more of them than one.
const QList<NamedAction> &listFillers()
{
    static const QList<NamedAction> all{
        {"custom category", [](Counter &c) { chooseCategory(c, "Combo2"); }},
        {"reorder category", [](Counter &c) { chooseCategory(c, "Combo12"); }},
        {"search", search},
        {"reorder area", [](Counter &c) { c.chooseTab("TabStrip1", WorkArea::ReorderStock); }},
        {"delete a purchase", deletePurchase},
    };
    return all;
}

/// What opens a box.
const QList<NamedAction> &askers()
{
    static const QList<NamedAction> all{
        {"commit", [](Counter &c) { c.click("Command14"); }},
        {"delete a line", [](Counter &c) { c.click("Command12"); }},
        {"clear the cart", [](Counter &c) { c.click("Command13"); }},
        {"price of a line", [](Counter &c) { QTest::keyClick(c.find("LV3"), Qt::Key_Return); }},
        {"search", search},
        {"reorder some", reorderSome},
        {"log out", [](Counter &c) { c.click("Command27"); }},
        {"clear the log", [](Counter &c) { c.click("Command11"); }},
        {"help", [](Counter &c) { c.click("Command20"); }},
        {"close", [](Counter &c) { c.window().close(); }},
    };
    return all;
}

void addPairs(const QList<NamedAction> &begun)
{
    QTest::addColumn<Action>("begun");
    QTest::addColumn<Action>("meanwhile");
    for (const auto &[first, firstAction] : begun) {
        for (const auto &[second, secondAction] : actions())
            QTest::addRow("%s in the middle of %s", second, first) << firstAction << secondAction;
    }
}

QStringList shownItems(const Counter &counter)
{
    QStringList all;
    for (const QuickSaleButton *button : counter.window().controls().Command1)
        all << button->text().replace(u"\r\n"_s, u"/"_s);
    return all;
}

/// Nine items that follow each other in the order of one page, or its rest and blank buttons.
bool isOnePage(const QStringList &shown, const ShopFile &file)
{
    for (const QString &category : {u"TEA"_s, u"SNACKS"_s, u"%"_s}) {
        QStringList rows = file.rows(u"SELECT StockID || '/' || StockName || '/1.50' FROM StockList "
                                     "WHERE StockCategory LIKE '%1' ORDER BY StockName"_s.arg(category));
        rows += QStringList(8, u"(empty)"_s);
        for (qsizetype first = 0; first + shown.size() <= rows.size(); first += shown.size()) {
            if (rows.mid(first, shown.size()) == shown)
                return true;
        }
    }
    return false;
}

} // namespace

Q_DECLARE_METATYPE(Action)

/// Handlers that are entered again while another one is under way.
class ReentryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void duringLoading_data();
    void duringLoading();
    void whilePageFills_data() { addPairs(fillers()); }
    void whilePageFills();
    void whileListFills_data() { addPairs(listFillers()); }
    void whileListFills();
    void whileBoxIsOpen_data() { addPairs(askers()); }
    void whileBoxIsOpen();
    void closedWindowLivesUntilItsHandlerReturns();
    void rowsVanishWhilePageFills();
    void pressedAgainAndAgain();
    void categoryAddedWhileAnotherIs();

private:
    void prepare(Counter &counter);
    void fillPast(Counter &counter);
    void fillCart(Counter &counter);
    void checkWindow(Counter &counter);

    QStringList m_strangeBoxes;
};

void ReentryTest::prepare(Counter &counter)
{
    m_strangeBoxes.clear();
    counter.file.sql(u"PRAGMA synchronous = OFF; BEGIN; UPDATE StoreSettings SET ShowDetails = 1"_s);
    for (int i = 0; i < items; ++i)
        counter.file.addItem(u"A%1"_s.arg(i), u"ITEM %1"_s.arg(10 + i), 1.5, 100, i % 3 == 0 ? u"SNACKS"_s : u"TEA"_s);
    for (int i = 0; i < categories; ++i)
        counter.file.sql(u"INSERT INTO InventoryCategory VALUES ('CATEGORY %1','')"_s.arg(i));
    counter.file.sql(u"COMMIT"_s);
    counter.boxes.answerTheRest([this](const QString &text) {
        if (!isKnownBox(text))
            m_strangeBoxes << text;
        return Answer::Yes;
    });
}

/// Purchases of other days, and what the search finds.
void ReentryTest::fillPast(Counter &counter)
{
    counter.file.sql(u"BEGIN"_s);
    for (int i = 0; i < items; ++i) {
        counter.file.sql(u"INSERT INTO PurchaseCart VALUES ('HV%1', '1 x A1  |  ITEM 11 = 1.50, 2 x A2  |  ITEM 12 = "
                         "3.00', 2, 4.5, '180101080000', 'BOB')"_s.arg(1000 + i));
        counter.file.addItem(u"*STAR*"_s, u"ITEM %1"_s.arg(100 + i), 1.5, 100, u"STARS"_s);
    }
    counter.file.sql(u"COMMIT"_s);
}

void ReentryTest::fillCart(Counter &counter)
{
    counter.open();
    counter.logIn();
    for (const char *button : {"Command1_0", "Command1_1", "Command1_1"})
        counter.click(button);
}

/// Everything is in one piece, whatever happened.
void ReentryTest::checkWindow(Counter &counter)
{
    QCOMPARE(m_strangeBoxes, QStringList());
    QCOMPARE(counter.file.cell(u"PRAGMA integrity_check"_s), u"ok"_s);
    QCOMPARE(QApplication::activeModalWidget(), nullptr);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    if (!counter.isOpen())
        return;
    QVERIFY(counter.window().isVisible());
    QVERIFY(counter.text("Label5").startsWith(u"Total: "_s));
    for (const QString &line : counter.cart())
        QVERIFY2(line.contains(u"  |  ITEM "_s) && !line.endsWith(u'|') && !line.contains(u"||"_s), qPrintable(line));
    QVERIFY(counter.find("Command14")->isEnabled());
    // And it goes on working.
    if (!counter.state().login.IsLoggedIn) {
        QVERIFY(counter.find("Frame12")->isVisible());
        counter.logIn();
    }
    counter.setText("Combo1", u"TEA"_s);
    counter.setText("Combo1", u"(ALL CATEGORY)"_s);
    const qsizetype lines = counter.cart().size();
    counter.click("Command1_8");
    QVERIFY(counter.cart().size() >= qMax(lines, qsizetype{1}));
    QVERIFY(isOnePage(shownItems(counter), counter.file));
}

void ReentryTest::duringLoading_data()
{
    QTest::addColumn<bool>("inSettings");
    QTest::addColumn<Action>("meanwhile");
    for (const auto &[name, action] : actions()) {
        if (qstrncmp(name, "close", 5) == 0 || qstrncmp(name, "log ", 4) == 0)
            continue; // nobody can get at what is not shown yet
        QTest::addRow("%s, pick lists", name) << false << action;
        QTest::addRow("%s, settings' list", name) << true << action;
    }
}

void ReentryTest::duringLoading()
{
    QFETCH(bool, inSettings);
    QFETCH(Action, meanwhile);
    Counter counter;
    prepare(counter);
    Interruption interruption(20, [&] { meanwhile(counter); });
    counter.connection->before = [&](const QString &statement) {
        if (statement != u"Select * from InventoryCategory"_s)
            return;
        interruption.watchRows(inSettings ? *counter.find<QListWidget>("List2")->model()
                                          : *counter.find<PickList>("Combo1")->model());
    };
    counter.open();
    QVERIFY(interruption.isDone());
    QCOMPARE(counter.find<PickList>("Combo1")->count(), categories + 2);
    QCOMPARE(counter.find<PickList>("Combo5")->count(), categories + 1);
    QCOMPARE(counter.find<QListWidget>("List2")->count(), categories);
    QVERIFY(!counter.state().login.IsLoggedIn);
    checkWindow(counter);
}

void ReentryTest::whilePageFills()
{
    QFETCH(Action, begun);
    QFETCH(Action, meanwhile);
    Counter counter;
    prepare(counter);
    fillCart(counter);
    Interruption interruption(1, [&] { meanwhile(counter); });
    interruption.watchButton(*counter.find("Command1_4"));
    begun(counter);
    QVERIFY(interruption.isDone());
    if (counter.isOpen())
        QVERIFY2(isOnePage(shownItems(counter), counter.file), qPrintable(shownItems(counter).join(u"; "_s)));
    checkWindow(counter);
}

/// At the first row that is read.
void ReentryTest::whileListFills()
{
    QFETCH(Action, begun);
    QFETCH(Action, meanwhile);
    Counter counter;
    prepare(counter);
    fillPast(counter);
    fillCart(counter);
    bool isBegun = false;
    bool isDone = false;
    counter.connection->before = [&](const QString &statement) {
        if (!statement.startsWith(u"Select "_s) || std::exchange(isBegun, true))
            return;
        passRest(); // so that the window breathes soon
        QTimer::singleShot(0, &counter.window(), [&] {
            isDone = true;
            meanwhile(counter);
        });
    };
    begun(counter);
    QCoreApplication::processEvents();
    QVERIFY(isDone);
    if (counter.isOpen()) {
        for (const char *list : {"Combo3", "Combo11", "Combo17"}) {
            const QStringList entries = counter.entries(list);
            QCOMPARE(QSet<QString>(entries.begin(), entries.end()).size(), entries.size());
        }
        const QStringList results = counter.rows("LV2");
        for (int row = 0; row < results.size(); ++row)
            QVERIFY2(results.at(row).startsWith(u"%1.|"_s.arg(row + 1)), qPrintable(results.at(row)));
    }
    checkWindow(counter);
}

void ReentryTest::whileBoxIsOpen()
{
    QFETCH(Action, begun);
    QFETCH(Action, meanwhile);
    Counter counter;
    prepare(counter);
    fillCart(counter);
    bool isDone = false;
    QTimer::singleShot(0, this, [&] { // runs in the box's own loop
        isDone = true;
        meanwhile(counter);
    });
    begun(counter);
    QVERIFY(isDone);
    checkWindow(counter);
}

void ReentryTest::closedWindowLivesUntilItsHandlerReturns()
{
    Counter counter;
    prepare(counter);
    fillCart(counter);
    const QPointer<Inventory> window(&counter.window());
    Interruption interruption(1, [&] { counter.window().close(); });
    interruption.watchButton(*counter.find("Command1_4"));
    int statementsAfterwards = 0;
    counter.connection->before = [&](const QString &) {
        if (!interruption.isDone())
            return;
        ++statementsAfterwards;
        QVERIFY(!window.isNull());
        QVERIFY(!window->isVisible());
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!window.isNull());
    };
    counter.click("CmdNext");
    QVERIFY(interruption.isDone());
    QVERIFY(statementsAfterwards > 0);
    QVERIFY(!window.isNull());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(window.isNull());
}

void ReentryTest::rowsVanishWhilePageFills()
{
    Counter counter;
    prepare(counter);
    fillCart(counter);
    Interruption interruption(1, [&] { QVERIFY(Database(counter.file.path()).run(u"DELETE FROM StockList"_s)); });
    interruption.watchButton(*counter.find("Command1_4"));
    counter.click("CmdNext");
    QVERIFY(interruption.isDone());
    QCOMPARE(counter.text("Command1_8").section(u"\r\n"_s, 0, 0), u"A17"_s); // one state of the table
    const QStringList cart = counter.cart();
    counter.click("Command1_8"); // no such item any more: refused without a word
    QCOMPARE(counter.cart(), cart);
}

/// Each breath enters the next handler, deeper and deeper.
void ReentryTest::pressedAgainAndAgain()
{
    Counter counter;
    prepare(counter);
    fillCart(counter);
    constexpr int deepest = 20;
    int depth = 0;
    std::vector<std::unique_ptr<Interruption>> interruptions;
    std::function<void()> again = [&] {
        if (++depth > deepest)
            return;
        interruptions.push_back(std::make_unique<Interruption>(1, again));
        interruptions.back()->watchButton(*counter.find("Command1_1"));
        counter.setText("Combo1", depth % 2 == 0 ? u"SNACKS"_s : u"TEA"_s);
    };
    again();
    QVERIFY(depth > deepest);
    QVERIFY(isOnePage(shownItems(counter), counter.file));
    checkWindow(counter);
}

void ReentryTest::categoryAddedWhileAnotherIs()
{
    Counter counter;
    prepare(counter);
    fillCart(counter);
    counter.chooseTab("TabStrip1", WorkArea::Settings);
    counter.setText("Combo12", u"TEA"_s);
    const auto add = [&](const QString &name) {
        counter.setText("Combo16", name);
        counter.click("Command2");
    };
    Interruption interruption(20, [&] { add(u"LATER"_s); });
    interruption.watchRows(*counter.find<PickList>("Combo1")->model());
    add(u"EARLIER"_s);
    QVERIFY(interruption.isDone());
    QStringList expected{u"(ALL CATEGORY)"_s};
    expected += counter.file.rows(u"SELECT CategoryName FROM InventoryCategory ORDER BY rowid"_s);
    expected += u"OTHER CATEGORY"_s;
    QCOMPARE(expected.size(), categories + 4);
    for (const char *name : {"Combo1", "Combo2", "Combo12"}) {
        const auto *list = counter.find<PickList>(name);
        QStringList shown;
        for (int entry = 0; entry < list->count(); ++entry)
            shown << list->itemText(entry);
        QCOMPARE(shown, expected);
    }
    QCOMPARE(counter.find<QListWidget>("List2")->count(), categories + 2);
    QCOMPARE(counter.text("Combo1"), u"(ALL CATEGORY)"_s);
    QCOMPARE(counter.text("Combo12"), u"TEA"_s);
    counter.chooseTab("TabStrip1", WorkArea::QuickSales);
    checkWindow(counter);
}

HARROWBY_TEST(reentry_test, ReentryTest)
#include "reentry_test.moc"
