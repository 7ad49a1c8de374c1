// SPDX-License-Identifier: MIT
#include "tests/doubles/database.h"
#include "tests/program/test_program.h"
#include "tests/support/counter.h"
#include "tests/ui/interruption.h"

#include "ui/widgets/pick_list.h"

#include <QFrame>
#include <QSignalSpy>
#include <QTimer>

#include <functional>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::test;

/// The list of purchases, and undoing one of them, with something else in the middle.
class PurchaseListTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void newestFirst();
    void manyAndAFewBrokenOnes();
    void namesComeManyAtATime();
    void whileItFills_data();
    void whileItFills();
    void changedWhileItFills();
    void brokenInTheMiddle();
    void pickedEntryGoes();
    void typedEntryStays();
    void undoneTwiceAtOnce_data();
    void undoneTwiceAtOnce();
    void closedWhileUndoing();
    void loggedOutWhileUndoing();
};

namespace {

constexpr auto everyId = "SELECT PurchaseID FROM PurchaseCart ORDER BY PurchaseID DESC"_L1;
constexpr auto deleteQuestion =
    "Delete Purchased Cart with ID [HV1].\r\nAll purchased items will br restored (Y/N)?"_L1;

void addPurchases(const Counter &counter, int count)
{
    counter.file.sql(u"WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < %1) "
                     "INSERT INTO PurchaseCart (PurchaseID, PurchasedItems, PurchasedItemsTotal) "
                     "SELECT 'HV' || printf('%06d', i), '1 x A1  |  TEA = 1.00', 1 FROM n"_s.arg(count));
}

void openShop(Counter &counter)
{
    counter.file.addItem(u"A1"_s, u"TEA"_s, 2.5, 10);
    counter.file.addItem(u"A2"_s, u"ZINC"_s, 4, 10);
    counter.open();
    counter.logIn();
}

/// Does something in the first breath after a statement that begins so.
void doAfter(Counter &counter, const QString &beginning, std::function<void()> action)
{
    counter.connection->before = [&counter, beginning, action = std::move(action),
                                  isDone = false](const QString &statement) mutable {
        if (isDone || !statement.startsWith(beginning))
            return;
        isDone = true;
        passRest();
        QTimer::singleShot(0, &counter.window(), action);
    };
}

} // namespace

void PurchaseListTest::newestFirst()
{
    Counter counter;
    openShop(counter);
    for (const char *id : {"HE18030514070907", "HV17030514070907", "HV18030514070907", "HE17030514070907"})
        counter.file.sql(u"INSERT INTO PurchaseCart (PurchaseID) VALUES ('%1')"_s.arg(QLatin1StringView(id)));
    counter.chooseTab("TabStrip1", WorkArea::Settings);
    QCOMPARE(counter.entries("Combo17"),
             (QStringList{u"HV18030514070907"_s, u"HV17030514070907"_s, u"HE18030514070907"_s, u"HE17030514070907"_s}));
    QCOMPARE(counter.text("Combo17"), QString());
    QCOMPARE(counter.find<PickList>("Combo17")->selectedEntry(), -1);
}

void PurchaseListTest::manyAndAFewBrokenOnes()
{
    Counter counter;
    openShop(counter);
    constexpr int purchases = 1'000'000;
    addPurchases(counter, purchases);
    counter.file.sql(u"UPDATE PurchaseCart SET PurchaseID = NULL WHERE rowid = 100;"
                     "UPDATE PurchaseCart SET PurchaseID = X'FF00FE' WHERE rowid = 5000;"
                     "UPDATE PurchaseCart SET PurchaseID = replace(hex(zeroblob(5000)), '0', 'W') WHERE rowid = 6000;"
                     "UPDATE PurchaseCart SET PurchaseID = 'O''NEIL' WHERE rowid = 7000;"
                     "UPDATE PurchaseCart SET PurchaseID = '🍎 שלום' WHERE rowid = 8000;"
                     "UPDATE PurchaseCart SET PurchaseID = '' WHERE rowid = 9000;"
                     "UPDATE PurchaseCart SET PurchasedItems = X'00FF', PurchasedItemsTotal = 'all' WHERE rowid = 1;"
                     "UPDATE PurchaseCart SET PurchasedItems = replace(hex(zeroblob(5000)), '00', ', '), "
                     "PurchasedItemsTotal = 32767 WHERE rowid = 2"_s);
    counter.chooseTab("TabStrip1", WorkArea::Settings);
    const QStringList entries = counter.entries("Combo17");
    QCOMPARE(entries.size(), purchases);
    QStringList stored = counter.file.rows(everyId);
    QCOMPARE(entries.at(0), QString::fromUtf8("\xFF\x00\xFE", 3)); // bytes sort above every text
    QCOMPARE(entries.sliced(1), stored.sliced(1));
    for (const char *id : {"HV000001", "HV000002"}) {
        counter.setText("Combo17", QString::fromLatin1(id));
        counter.boxes.expect(
            u"Delete Purchased Cart with ID [%1].\r\nAll purchased items will br restored (Y/N)?"_s.arg(
                QLatin1StringView(id)),
            box::Ask, Answer::Yes);
        counter.click("Command4");
        QCOMPARE(counter.cart(), QStringList());
    }
    QCOMPARE(counter.file.cell(u"SELECT count(*) FROM PurchaseCart"_s), QString::number(purchases - 2));
    QCOMPARE(counter.file.cell(u"SELECT StockAvailable FROM StockList WHERE StockID = 'A1'"_s), u"10"_s);
}

void PurchaseListTest::namesComeManyAtATime()
{
    Counter counter;
    openShop(counter);
    constexpr int purchases = 20'000;
    addPurchases(counter, purchases);
    const QSignalSpy inserted(counter.find<PickList>("Combo17")->model(), &QAbstractItemModel::rowsInserted);
    counter.chooseTab("TabStrip1", WorkArea::Settings);
    QCOMPARE(counter.entries("Combo17").size(), purchases);
    QVERIFY(!inserted.isEmpty());
    QVERIFY2(inserted.size() < purchases / 20, qPrintable(QString::number(inserted.size())));
}

void PurchaseListTest::whileItFills_data()
{
    using Action = std::function<void(Counter &)>;
    QTest::addColumn<Action>("action");
    QTest::addColumn<int>("tab");
    QTest::newRow("again") << Action([](Counter &c) { c.chooseTab("TabStrip1", WorkArea::Settings); })
                           << WorkArea::Settings;
    QTest::newRow("quick sales") << Action([](Counter &c) { c.chooseTab("TabStrip1", WorkArea::QuickSales); })
                                 << WorkArea::QuickSales;
    QTest::newRow("quick sales and back") << Action([](Counter &c) {
        c.chooseTab("TabStrip1", WorkArea::QuickSales);
        c.chooseTab("TabStrip1", WorkArea::Settings);
    }) << WorkArea::Settings;
    QTest::newRow("reorder") << Action([](Counter &c) { c.chooseTab("TabStrip1", WorkArea::ReorderStock); })
                             << WorkArea::ReorderStock;
    QTest::newRow("typed text") << Action([](Counter &c) { c.setText("Combo17", u"HV000007"_s); })
                                << WorkArea::Settings;
    QTest::newRow("sale") << Action([](Counter &c) { c.click("Command1_0"); }) << WorkArea::Settings;
    QTest::newRow("picked entry") << Action([](Counter &c) { c.pick("Combo17", 0); }) << WorkArea::Settings;
    QTest::newRow("close") << Action([](Counter &c) {
        c.boxes.expect(u"Close Inventory?"_s, box::Ask, Answer::Yes);
        c.window().close();
    }) << 0;
}

void PurchaseListTest::whileItFills()
{
    using Action = std::function<void(Counter &)>;
    QFETCH(const Action, action);
    QFETCH(const int, tab);
    Counter counter;
    openShop(counter);
    // Filled twice at once, it is long enough for further breaths of the first one.
    const int purchases = qstrcmp(QTest::currentDataTag(), "again") == 0 ? 300'000 : 20'000;
    addPurchases(counter, purchases);
    int listed = -1;
    doAfter(counter, u"Select PurchaseID"_s, [&] {
        listed = static_cast<int>(counter.entries("Combo17").size());
        action(counter);
    });
    counter.chooseTab("TabStrip1", WorkArea::Settings);
    QVERIFY(listed > 0 && listed < purchases); // in the middle, and the list was there as far as it had come
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCOMPARE(counter.isOpen(), tab != 0);
    if (!counter.isOpen())
        return;
    QCOMPARE(counter.selectedTab("TabStrip1"), tab);
    QCOMPARE(counter.find("Frame9")->isVisible(), tab == WorkArea::Settings);
    QCOMPARE(counter.entries("Combo17"), counter.file.rows(everyId));
}

void PurchaseListTest::changedWhileItFills()
{
    Counter counter;
    counter.file.sql(u"PRAGMA journal_mode = WAL"_s);
    openShop(counter);
    constexpr int purchases = 3000;
    addPurchases(counter, purchases);
    const QStringList before = counter.file.rows(everyId);
    bool isChanged = false;
    doAfter(counter, u"Select PurchaseID"_s, [&] {
        isChanged = Database(counter.file.path()).run(u"DELETE FROM PurchaseCart WHERE rowid > 10"_s);
        counter.click("Command1_0"); // which writes to the log, on what the other program left
    });
    counter.chooseTab("TabStrip1", WorkArea::Settings);
    QVERIFY(isChanged);
    QCOMPARE(counter.entries("Combo17"), before); // one state of the table
    QCOMPARE(counter.file.cell(u"SELECT count(*) FROM PurchaseCart"_s), u"10"_s);
    QCOMPARE(counter.file.rows(u"SELECT SystemUsage FROM SysUsage WHERE SystemUsage LIKE '%to Cart!'"_s),
             (QStringList{u"1 of A1  |  TEA Added to Cart!"_s, u"A1  |  TEA Added to Cart!"_s}));
}

void PurchaseListTest::pickedEntryGoes()
{
    Counter counter;
    openShop(counter);
    addPurchases(counter, 3);
    counter.chooseTab("TabStrip1", WorkArea::Settings);
    counter.pick("Combo17", 1);
    counter.boxes.expect(u"Delete Purchased Cart with ID [HV000002].\r\nAll purchased items will br restored (Y/N)?"_s,
                         box::Ask, Answer::Yes);
    counter.click("Command4");
    QCOMPARE(counter.entries("Combo17"), (QStringList{u"HV000003"_s, u"HV000001"_s}));
    QCOMPARE(counter.text("Combo17"), QString());
    counter.boxes.expect(u"Nothing to Delete!"_s, box::Exclamation);
    counter.click("Command4");
}

void PurchaseListTest::typedEntryStays()
{
    Counter counter;
    openShop(counter);
    addPurchases(counter, 2);
    counter.chooseTab("TabStrip1", WorkArea::Settings);
    counter.setText("Combo17", u"HV000002"_s);
    for (int times = 0; times < 2; ++times) {
        counter.boxes.expect(
            u"Delete Purchased Cart with ID [HV000002].\r\nAll purchased items will br restored (Y/N)?"_s, box::Ask,
            Answer::Yes);
        if (times == 1)
            counter.boxes.expect(u"Nothing to Undo!"_s, box::Exclamation);
        counter.click("Command4");
    }
    QCOMPARE(counter.entries("Combo17"), (QStringList{u"HV000002"_s, u"HV000001"_s}));
    QCOMPARE(counter.text("Combo17"), u"HV000002"_s);
    QCOMPARE(counter.file.rows(everyId), QStringList{u"HV000001"_s});
}

void PurchaseListTest::undoneTwiceAtOnce_data()
{
    QTest::addColumn<QByteArray>("button");
    QTest::newRow("delete") << QByteArray("Command4");
    QTest::newRow("undo") << QByteArray("Command25");
}

/// The second click comes between two lines; their stock comes back once.
void PurchaseListTest::undoneTwiceAtOnce()
{
    QFETCH(const QByteArray, button);
    Counter counter;
    openShop(counter);
    counter.file.sql(u"INSERT INTO PurchaseCart VALUES "
                     "('HV1', '1 x A1  |  TEA = 2.50, 2 x A2  |  ZINC = 8.00', 2, 10.5, '180305', 'JACK')"_s);
    counter.setText("Combo17", u"HV1"_s);
    bool isDone = false;
    doAfter(counter, u"Update StockList Set StockAvailable = StockAvailable + 1"_s, [&] {
        isDone = true;
        counter.click(button.constData());
    });
    counter.boxes.expect(deleteQuestion, box::Ask, Answer::Yes);
    counter.click("Command4");
    QVERIFY(isDone);
    QCOMPARE(counter.file.rows(u"SELECT StockAvailable FROM StockList ORDER BY StockID"_s),
             (QStringList{u"11"_s, u"12"_s}));
    QCOMPARE(counter.cart(), (QStringList{u"A1  |  TEA|1|2.50"_s, u"A2  |  ZINC|2|8.00"_s}));
    counter.boxes.expect(u"Nothing to Undo!"_s, box::Exclamation);
    counter.click("Command25"); // and it works again
}

void PurchaseListTest::closedWhileUndoing()
{
    Counter counter;
    openShop(counter);
    counter.file.sql(u"INSERT INTO PurchaseCart VALUES "
                     "('HV1', '1 x A1  |  TEA = 2.50, 2 x A2  |  ZINC = 8.00', 2, 10.5, '180305', 'JACK')"_s);
    counter.setText("Combo17", u"HV1"_s);
    bool isAlive = false;
    doAfter(counter, u"Update StockList Set StockAvailable = StockAvailable + 1"_s, [&] {
        counter.boxes.expect(u"Close Inventory?"_s, box::Ask, Answer::Yes);
        counter.window().close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        isAlive = counter.isOpen();
    });
    counter.boxes.expect(deleteQuestion, box::Ask, Answer::Yes);
    counter.click("Command4");
    QVERIFY(isAlive);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!counter.isOpen());
    // It was done to its end.
    QCOMPARE(counter.file.rows(u"SELECT StockAvailable FROM StockList ORDER BY StockID"_s),
             (QStringList{u"11"_s, u"12"_s}));
    QCOMPARE(counter.file.rows(everyId), QStringList());
}

void PurchaseListTest::loggedOutWhileUndoing()
{
    Counter counter;
    openShop(counter);
    counter.click("Command1_0");
    counter.boxes.expect(u"Item List:\r\n\r\n1. 1 x A1  |  TEA = 2.50\r\n\r\n\r\n\r\nPurchased Cart?"_s, box::Ask,
                         Answer::Yes);
    counter.click("Command14");
    const QString id = counter.state().last.LastPurchaseID;
    doAfter(counter, u"Update StockList Set StockAvailable = StockAvailable + 1"_s, [&] {
        counter.boxes.expect(u"Log out User[ADMINISTRATOR]?"_s, box::AskDefaultNo, Answer::Yes);
        counter.boxes.expect(u"Cart is not empty, Purchase Cart?"_s, box::AskOrCancel, Answer::No);
        counter.click("Command27");
    });
    counter.boxes.expect(u"Undo last Purchased Cart with ID ["_s + id + u"]?"_s, box::Ask, Answer::Yes);
    counter.click("Command25");
    QVERIFY(!counter.state().login.IsLoggedIn);
    QCOMPARE(counter.file.rows(everyId), QStringList());
    QCOMPARE(counter.file.cell(u"SELECT StockAvailable FROM StockList WHERE StockID = 'A1'"_s), u"10"_s);
    QCOMPARE(counter.state().last.LastPurchaseID, QString());
}

void PurchaseListTest::brokenInTheMiddle()
{
    Counter counter;
    openShop(counter);
    constexpr int purchases = 300;
    addPurchases(counter, purchases);
    counter.connection->rowsUntilBreak = [](const QString &select) {
        return select.startsWith(u"Select PurchaseID"_s) ? purchases - 1 : -1;
    };
    int shown = 0;
    doAfter(counter, u"Select PurchaseID"_s, [&] {
        shown = counter.find<PickList>("Combo17")->count();
        counter.setText("Combo17", u"HV000300"_s);
    });
    counter.chooseTab("TabStrip1", WorkArea::Settings);
    QVERIFY(shown > 0);
    QCOMPARE(counter.entries("Combo17"), QStringList());
    QCOMPARE(counter.text("Combo17"), u"HV000300"_s); // somebody has entered it meanwhile
    QCOMPARE(counter.find<PickList>("Combo17")->selectedEntry(), -1);
}

HARROWBY_TEST(purchase_list_test, PurchaseListTest)
#include "purchase_list_test.moc"
