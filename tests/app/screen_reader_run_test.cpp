// SPDX-License-Identifier: MIT
#include "tests/app/at_spi.h"
#include "tests/app/screen.h"
#include "tests/app/store_files.h"
#include "tests/program/test_program.h"

#include <QFile>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace harrowby::app::test;

namespace {

constexpr int speechPatience = 30000;

using Told = ScreenReader::Told;

QStringList thoseThat(int state, const QString &role, const QList<Part> &parts)
{
    QStringList names;
    for (const Part &part : parts) {
        if (part.role == role && part.is(state))
            names << part.name;
    }
    return names;
}

QStringList tabsThat(int state, const QList<Part> &parts)
{
    return thoseThat(state, u"page tab"_s, parts);
}

/// What says that it has the keyboard focus; what stands within such a part is left out, as its text or its row.
QStringList focused(const QList<Part> &parts)
{
    QStringList names;
    for (const Part &part : parts) {
        const bool within = part.parent >= 0 && parts.at(part.parent).is(Focused);
        if (part.is(Focused) && !within)
            names << part.role + u' ' + part.name;
    }
    return names;
}

} // namespace

/// The real program on a real screen, as a person sells with it who sees none of it: read through AT-SPI, used by the
/// actions that it offers there.
class ScreenReaderRunTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup() { m_hasFailed = m_hasFailed || QTest::currentTestFailed(); }
    void whatIsSelectedAndFocused();
    void whatThingsAreCalled();
    void pageTurnIsToldOnce();
    void cartHeldAndRecalledByActions();
    void wholeSaleByActions();
    void officeIsNamed();
    void listComesInByActions();

private:
    void askForCash();
    void openOffice(RunningProgram &office);
    [[nodiscard]] QString store() const { return m_home.filePath(u"shop.sqlite"_s); }
    void logIn();
    [[nodiscard]] bool sell(const QString &quantity);

    QTemporaryDir m_home;
    Screen m_screen;
    ScreenReader m_reader;
    std::unique_ptr<RunningProgram> m_till;
    bool m_hasFailed = false;
};

void ScreenReaderRunTest::initTestCase()
{
    for (const QString &tool : {u"Xvfb"_s, u"openbox"_s, u"dbus-daemon"_s})
        QVERIFY2(!QStandardPaths::findExecutable(tool).isEmpty(), qPrintable(tool + u" is needed"_s));
    QVERIFY(m_screen.start(u"1280x1024"_s));
    QVERIFY2(m_reader.start(m_screen.display()), "at-spi2-core is needed");
    makeStore(store());
    const QString insert = u"INSERT INTO StockList (StockID, StockName, StockCategory, StockCost, StockReorderLevel, "
                           "StockAvailable, StockUse) "_s;
    runAll(store(), {insert + u"VALUES ('ACE-0001', 'ACE', 'SEWING', '1.50', 5, 2, 'Enabled')"_s,
                     insert + u"WITH RECURSIVE n(i) AS (SELECT 10 UNION ALL SELECT i + 1 FROM n WHERE i < 27) SELECT "
                              "'ZIP-00' || i, 'ZIP ' || i, 'SEWING', '1.50', 5, 20, 'Enabled' FROM n"_s});
    m_till = std::make_unique<RunningProgram>(m_screen, m_home.path());
    QVERIFY(m_till->start({u"--database"_s, store()}));
    logIn();
}

void ScreenReaderRunTest::init()
{
    if (m_hasFailed)
        QSKIP("The till stands where the last test has left it");
}

void ScreenReaderRunTest::logIn()
{
    QVERIFY2(m_reader.enter(u"text"_s, u"User name"_s, u"ADMINISTRATOR"_s), qPrintable(m_till->errors()));
    QVERIFY(m_reader.enter(u"text"_s, u"Password"_s, u"SECRET"_s));
    QVERIFY(m_reader.press(u"push button"_s, u"Login!"_s));
    QVERIFY2(m_reader.find(u"label"_s, u"User: ADMINISTRATOR"_s), qPrintable(m_till->errors()));
}

void ScreenReaderRunTest::whatIsSelectedAndFocused()
{
    QVERIFY(m_reader.find(u"page tab list"_s, u"Work areas"_s));
    QVERIFY(m_reader.find(u"page tab list"_s, u"Side panels"_s));
    QTRY_COMPARE_WITH_TIMEOUT(focused(m_reader.everything()).size(), 1, speechPatience); // the window has the keys
    const QList<Part> atFirst = m_reader.everything();
    QCOMPARE(tabsThat(Selected, atFirst), (QStringList{u"Quick Sales"_s, u"Cart(0)"_s}));
    QCOMPARE(tabsThat(Focused, atFirst), QStringList());
    QCOMPARE(focused(atFirst).size(), 1);

    const auto strip = m_reader.find(u"page tab list"_s, u"Work areas"_s);
    QVERIFY(m_reader.focus(*strip));
    const auto focusedTabs = [this] { return tabsThat(Focused, m_reader.everything()); };
    QTRY_COMPARE_WITH_TIMEOUT(focusedTabs(), QStringList{u"Quick Sales"_s}, speechPatience);
    QCOMPARE(focused(m_reader.everything()), QStringList{u"page tab list Work areas"_s});

    // A press on a tab of the other strip leaves the focus where it is, and tells of none.
    QVERIFY(m_reader.press(u"page tab"_s, u"Sales Activity"_s));
    QVERIFY(m_reader.find(u"text"_s, u"Activity log"_s));
    QCOMPARE(tabsThat(Selected, m_reader.everything()), (QStringList{u"Quick Sales"_s, u"Sales Activity"_s}));
    QCOMPARE(focused(m_reader.everything()), QStringList{u"page tab list Work areas"_s});
    QVERIFY(m_reader.press(u"page tab"_s, u"Cart(0)"_s));
    QVERIFY(m_reader.find(u"table"_s, u"Cart"_s));
    for (const Told &told : m_reader.heard()) {
        const QString name = m_reader.nameOf(told.whom);
        QVERIFY2(told.what != u"focused"_s || (name != u"Sales Activity"_s && name != u"Cart(0)"_s), qPrintable(name));
    }
}

void ScreenReaderRunTest::whatThingsAreCalled()
{
    for (const Part &part : m_reader.everything()) {
        const QString what = part.role + u' ' + part.name + u' ' + part.labelledBy;
        if (part.role == u"combo box"_s || part.role == u"text"_s)
            QVERIFY2(!part.name.isEmpty(), qPrintable(what));
        if (part.role == u"push button"_s || part.role == u"table"_s || part.role == u"page tab list"_s)
            QVERIFY2(!part.name.isEmpty(), qPrintable(what));
    }
    QMap<QString, QString> figures;
    for (const Part &part : m_reader.everything()) {
        if (!part.labelledBy.isEmpty())
            figures.insert(part.labelledBy, part.name.trimmed());
    }
    QCOMPARE(figures.value(u"Today's Sales"_s), u"0"_s);
    QCOMPARE(figures.value(u"Today's Sales Total"_s), u"0.00"_s);
    QCOMPARE(figures.value(u"Total Available Item(s):"_s), u"382"_s);
    QCOMPARE(figures.value(u"Low Reorder Level:"_s), u"1"_s);

    QVERIFY(m_reader.press(u"page tab"_s, u"Custom Sales"_s));
    const auto quantity = m_reader.find(u"combo box"_s, u"Quantity"_s);
    QVERIFY(quantity);
    QCOMPARE(quantity->labelledBy, u"Quantity"_s);
    const auto entry = m_reader.find(u"text"_s, u"Quantity"_s);
    QVERIFY(entry && entry->is(Editable));
    QCOMPARE(m_reader.text(*entry), u"0"_s);
    QVERIFY(m_reader.press(u"page tab"_s, u"Add/Edit Stock"_s));
    QVERIFY(m_reader.find(u"cell"_s, u"TEA-0001"_s));
    QVERIFY(m_reader.find(u"cell"_s, u"ACE-0001, low stock"_s));
    QVERIFY(m_reader.press(u"page tab"_s, u"Quick Sales"_s));
}

void ScreenReaderRunTest::pageTurnIsToldOnce()
{
    QVERIFY(m_reader.find(u"push button"_s, u"TEA, 2.50"_s));
    QMap<QString, int> cards;
    for (const Part &part : m_reader.everything()) {
        if (part.description.startsWith(u"Stock ID"_s))
            cards.insert(part.address.path.path(), 0);
    }
    QCOMPARE(cards.size(), 9);
    static_cast<void>(m_reader.heard());
    QVERIFY(m_reader.press(u"push button"_s, u"Next items"_s));
    QVERIFY(m_reader.find(u"push button"_s, u"ZIP 18, 1.50"_s));
    for (const Told &told : m_reader.heard()) {
        if (told.what == u"accessible-name"_s && cards.contains(told.whom.path.path()))
            ++cards[told.whom.path.path()];
    }
    for (const int count : std::as_const(cards))
        QCOMPARE(count, 1);
    QVERIFY(m_reader.press(u"push button"_s, u"Previous items"_s));
    QVERIFY(m_reader.find(u"push button"_s, u"TEA, 2.50"_s));
}

bool ScreenReaderRunTest::sell(const QString &quantity)
{
    return m_reader.press(u"push button"_s, u"TEA, 2.50"_s) && m_reader.find(u"cell"_s, quantity);
}

void ScreenReaderRunTest::cartHeldAndRecalledByActions()
{
    QVERIFY(sell(u"1"_s));
    QVERIFY(m_reader.press(u"push button"_s, u"Hold"_s));
    QVERIFY(m_reader.find(u"dialog"_s, u"Hold"_s));
    QTRY_COMPARE_WITH_TIMEOUT(focused(m_reader.everything()), QStringList{u"text Word or number"_s}, speechPatience);
    QVERIFY(m_reader.enter(u"text"_s, u"Word or number"_s, u"MARY"_s));
    QVERIFY(m_reader.press(u"push button"_s, u"Hold"_s)); // the dialog's
    QVERIFY(m_reader.find(u"page tab"_s, u"Cart(0)"_s));
    QVERIFY(m_reader.find(u"notification"_s, u"Held as \"MARY\"."_s));
    QCOMPARE(column(store(), u"SELECT Word || '/' || HeldBy || '/' || Total FROM HarrowbyHeld"_s),
             QStringList{u"MARY/ADMINISTRATOR/2.5"_s});

    QVERIFY(m_reader.press(u"push button"_s, u"Recall"_s));
    QVERIFY(m_reader.find(u"table"_s, u"Held carts"_s));
    QVERIFY(m_reader.find(u"cell"_s, u"MARY"_s));
    QVERIFY(m_reader.press(u"push button"_s, u"Recall"_s));
    QVERIFY(m_reader.find(u"notification"_s, u"\"MARY\" is back in the cart."_s));
    QVERIFY(m_reader.find(u"cell"_s, u"TEA-0001  |  TEA"_s));
    QCOMPARE(column(store(), u"SELECT count(*) FROM HarrowbyHeld"_s), QStringList{u"0"_s});
    QVERIFY(m_reader.press(u"push button"_s, u"Clear Cart"_s));
    QVERIFY(m_reader.press(u"push button"_s, u"Yes"_s));
    QVERIFY(m_reader.find(u"page tab"_s, u"Cart(0)"_s));
}

/// The change comes up as a notification while it is entered.
void ScreenReaderRunTest::askForCash()
{
    QVERIFY(m_reader.press(u"push button"_s, u"Cash \u2026"_s));
    QVERIFY(m_reader.find(u"text"_s, u"Cash given"_s));
    QVERIFY(m_reader.find(u"notification"_s, u"Still to pay: 5.00"_s));
    for (const Part &part : m_reader.everything())
        QVERIFY2(part.role != u"push button"_s || !part.name.isEmpty(), qPrintable(part.description));
    static_cast<void>(m_reader.heard());
    QVERIFY(m_reader.press(u"push button"_s, u"A note of 20"_s));
    QVERIFY(m_reader.find(u"notification"_s, u"Change: 15.00"_s));
    QStringList shown;
    for (const Told &told : m_reader.heard()) {
        if (told.what == u"showing"_s && told.detail == 1)
            shown << m_reader.nameOf(told.whom);
    }
    QCOMPARE(shown, QStringList{u"Change: 15.00"_s});
    QVERIFY(m_reader.press(u"push button"_s, u"Cancel"_s));
}

void ScreenReaderRunTest::wholeSaleByActions()
{
    QVERIFY(sell(u"1"_s));
    static_cast<void>(m_reader.heard());
    QVERIFY(sell(u"2"_s));
    // The change is told by the cells that changed and by the total; what came of it comes up as a notification.
    QStringList named;
    QStringList shown;
    for (const Told &told : m_reader.heard()) {
        if (told.what == u"accessible-name"_s)
            named << m_reader.nameOf(told.whom);
        if (told.what == u"showing"_s && told.detail == 1)
            shown << m_reader.nameOf(told.whom);
    }
    QCOMPARE(named.count(u"2"_s), 1);
    QCOMPARE(named.count(u"5.00"_s), 1);
    QCOMPARE(named.count(u"TEA-0001  |  TEA"_s), 0);
    QVERIFY(named.contains(u"Total: 5.00"_s));
    QVERIFY(shown.contains(u"TEA-0001  |  TEA Added to Cart!"_s));
    QVERIFY(m_reader.find(u"notification"_s, u"TEA-0001  |  TEA Added to Cart!"_s));
    QVERIFY(m_reader.find(u"cell"_s, u"TEA-0001  |  TEA"_s));

    askForCash();
    QVERIFY(m_reader.press(u"push button"_s, u"Purchase Cart"_s));
    QVERIFY(m_reader.find(u"alert message"_s, u"Question"_s));
    QTRY_COMPARE_WITH_TIMEOUT(focused(m_reader.everything()), QStringList{u"push button Yes"_s}, speechPatience);
    QVERIFY(m_reader.press(u"push button"_s, u"Yes"_s));
    QVERIFY(m_reader.find(u"alert message"_s, u"Information"_s));
    QVERIFY(m_reader.press(u"push button"_s, u"OK"_s));
    QVERIFY(m_reader.find(u"page tab"_s, u"Cart(0)"_s));
    QTRY_COMPARE_WITH_TIMEOUT(column(store(), u"SELECT StockAvailable FROM StockList WHERE StockID = 'TEA-0001'"_s),
                              QStringList{u"18"_s}, speechPatience);
    QCOMPARE(column(store(), u"SELECT PurchasedItems || '/' || Users FROM PurchaseCart"_s),
             QStringList{u"2 x TEA-0001  |  TEA = 5.00/ADMINISTRATOR"_s});
    QVERIFY(m_reader.find(u"link"_s, u"  1"_s));

    QVERIFY(m_reader.press(u"push button"_s, u"Close Inventory"_s));
    QVERIFY(m_reader.press(u"push button"_s, u"Yes"_s));
    QCOMPARE(m_till->waitForEnd(), 0);
    m_till.reset();
}

void ScreenReaderRunTest::openOffice(RunningProgram &office)
{
    QVERIFY(office.start({u"--office"_s, u"--database"_s, store()}));
    QVERIFY2(m_reader.enter(u"text"_s, u"Password"_s, u"SECRET"_s), qPrintable(office.errors()));
    QVERIFY(m_reader.press(u"push button"_s, u"Open"_s));
}

void ScreenReaderRunTest::officeIsNamed()
{
    RunningProgram office(m_screen, m_home.path());
    openOffice(office);
    QVERIFY(m_reader.find(u"list"_s, u"Users"_s));
    QVERIFY(m_reader.find(u"combo box"_s, u"Type: ADMINISTRATOR"_s));
    for (const QString &page : {u"Receipt"_s, u"Backup"_s, u"Cash"_s, u"Users"_s}) {
        QVERIFY(m_reader.press(u"list item"_s, page));
        QTRY_COMPARE_WITH_TIMEOUT(thoseThat(Selected, u"list item"_s, m_reader.everything()).value(0), page,
                                  speechPatience);
        QTRY_COMPARE_WITH_TIMEOUT(focused(m_reader.everything()).size(), 1, speechPatience);
        for (const Part &part : m_reader.everything()) {
            if (part.is(Editable) || part.role == u"push button"_s || part.role == u"list"_s)
                QVERIFY2(!part.name.isEmpty(), qPrintable(part.role));
        }
    }
    QVERIFY(m_reader.enter(u"text"_s, u"Find a page or a setting"_s, u"drawer"_s));
    QVERIFY(m_reader.press(u"list item"_s, u"Name of the drawer, Cash"_s));
    QTRY_COMPARE_WITH_TIMEOUT(focused(m_reader.everything()), QStringList{u"text Name of the drawer"_s},
                              speechPatience);
    QVERIFY(m_reader.press(u"push button"_s, u"Close"_s));
    QCOMPARE(office.waitForEnd(), 0);
}

/// Each step tells its heading, and the last one what was done.
void ScreenReaderRunTest::listComesInByActions()
{
    QFile list(m_home.filePath(u"list.csv"_s));
    QVERIFY(list.open(QFile::WriteOnly));
    list.write("StockID,StockName,StockCategory,StockCost,StockAvailable\nBEE-0001,BEE,OTHER CATEGORY,2.50,9\n");
    list.close();
    RunningProgram office(m_screen, m_home.path());
    openOffice(office);
    QVERIFY(m_reader.press(u"list item"_s, u"Catalogue"_s));
    QVERIFY(m_reader.press(u"push button"_s, u"Import a List \u2026"_s));
    QVERIFY(m_reader.enter(u"text"_s, u"File name:"_s, list.fileName()));
    QVERIFY(m_reader.press(u"push button"_s, u"Open"_s));
    for (const QString &heading : {u"Step 1 of 4: The file and how it is read"_s,
                                   u"Step 2 of 4: Which column is what"_s, u"Step 3 of 4: A few choices"_s}) {
        QVERIFY2(m_reader.find(u"notification"_s, heading), qPrintable(heading));
        QVERIFY(m_reader.press(u"push button"_s, u"Next"_s));
    }
    QVERIFY(m_reader.find(u"notification"_s, u"Step 4 of 4: 1 new, 0 changed, 0 unchanged, 0 refused"_s));
    QVERIFY(m_reader.press(u"push button"_s, u"Import Now"_s));
    QVERIFY(m_reader.press(u"push button"_s, u"Done"_s));
    QCOMPARE(column(store(), u"SELECT StockAvailable FROM StockList WHERE StockID = 'BEE-0001'"_s),
             QStringList{u"9"_s});
    QVERIFY(m_reader.press(u"push button"_s, u"Close"_s));
    QCOMPARE(office.waitForEnd(), 0);
}

HARROWBY_CORE_TEST(app_screen_reader_run_test, ScreenReaderRunTest)
#include "screen_reader_run_test.moc"
