// SPDX-License-Identifier: MIT
#include "tests/program/test_program.h"
#include "tests/support/counter.h"

#include "store/inv_basic.h"
#include "ui/handler_fence.h"
#include "ui/reentry.h"

#include <harrowby/init.h>
#include <harrowby/window_marks.h>

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLoggingCategory>
#include <QPointer>
#include <QScopeGuard>

#include <stdexcept>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::test;

/// Loading the window, its settings, closing it, and loading it again.
class WindowTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanupTestCase() { m_counter.reset(); }
    void loadsLoggedOut();
    void tellsAHostWhatToKeepInSight();
    void emptySettingsGetOneDefaultRow();
    void settingsAreRead_data();
    void settingsAreRead();
    void settingsThatCannotBeRead();
    void settingsOutOfRange();
    void emailAddress_data();
    void emailAddress();
    void emailAddressThatCannotBeRead_data();
    void emailAddressThatCannotBeRead();
    void savedEmailReport_data();
    void savedEmailReport();
    void savedReceiptChoice_data();
    void savedReceiptChoice();
    void pickListsAreFilled();
    void categoriesAreListed();
    void categoryListsKeepTheirText();
    void loadsWithoutAnyTable();
    void loadsWithoutConnection();
    void statementsOfLoading();
    void closingIsConfirmed();
    void closedWindowIsDestroyed();
    void handlerThatThrowsEndsAlone();
    void closedWindowOutlivesItsHandlers();
    void laterLoadWins();
    void oneAtATime();
    void help();
    void captions_data();
    void captions();

private:
    std::unique_ptr<Counter> m_counter; ///< one for all captions
};

void WindowTest::loadsLoggedOut()
{
    Counter counter;
    counter.open();
    QCOMPARE(counter.window().windowTitle(), u"Sales Inventory"_s);
    QCOMPARE(counter.text("StatusBar1_1"), u"Login: No User"_s);
    QVERIFY(!counter.state().login.IsLoggedIn);
    QCOMPARE(counter.state().CartCount, std::int16_t{0});
    QVERIFY(counter.find("Frame12")->isVisible());
    QVERIFY(!counter.find("Frame11")->isVisible());
    QVERIFY(counter.find("Frame1")->isVisible());
    QVERIFY(counter.find("Frame2")->isVisible());
    QVERIFY(counter.find("Frame4")->isVisible());
    QVERIFY(!counter.find("Frame5")->isVisible());
    QVERIFY(counter.hasFocus("Text3"));
    QCOMPARE(counter.find<QLabel>("Label6_9")->palette().color(QPalette::WindowText), QColor(0, 0, 255));
}

void WindowTest::tellsAHostWhatToKeepInSight()
{
    Counter counter;
    counter.open();
    const QWidget *window = counter.find("Frame4")->window();
    QVERIFY(window->property(SalesWindowProperty).toBool());
    QStringList kept;
    for (const QWidget *part : window->findChildren<QWidget *>()) {
        if (part->property(KeptInSightProperty).toBool())
            kept << part->objectName();
    }
    kept.sort();
    QCOMPARE(kept, (QStringList{u"Command14"_s, u"Label15"_s, u"Label5"_s, u"Label6_3"_s, u"Label6_4"_s, u"Label6_8"_s,
                                u"Label6_9"_s, u"Label9"_s, u"StatusBar1"_s}));
}

void WindowTest::emptySettingsGetOneDefaultRow()
{
    Counter counter;
    counter.file.sql(u"DELETE FROM StoreSettings"_s);
    counter.open();
    QCOMPARE(counter.file.rows(
                 u"SELECT EmailAddress, Email, ShowDetails, Promptreorder, AutoPurchaseCart FROM StoreSettings"_s),
             QStringList{u"reports@example.com|0|1|1|0"_s});
    QVERIFY(counter.find<QCheckBox>("Check3")->isChecked());
    QVERIFY(counter.find<QCheckBox>("Check1")->isChecked());
    QVERIFY(!counter.find<QCheckBox>("Check2")->isChecked());
    QCOMPARE(counter.text("Text2"), u"reports@example.com"_s);
}

void WindowTest::settingsAreRead_data()
{
    QTest::addColumn<QString>("column");
    QTest::addColumn<QString>("check");
    QTest::newRow("details") << u"ShowDetails"_s << u"Check3"_s;
    QTest::newRow("prompt") << u"Promptreorder"_s << u"Check1"_s;
    QTest::newRow("finished") << u"AutoPurchaseCart"_s << u"Check2"_s;
}

void WindowTest::settingsAreRead()
{
    QFETCH(QString, column);
    QFETCH(QString, check);
    Counter counter;
    counter.file.sql(u"UPDATE StoreSettings SET %1 = 1; INSERT INTO StoreSettings VALUES (0,0,'',0,0)"_s.arg(column));
    counter.open();
    for (const char *name : {"Check3", "Check1", "Check2"})
        QCOMPARE(counter.find<QCheckBox>(name)->isChecked(), QString::fromLatin1(name) == check);
    const FormState &state = counter.state();
    QCOMPARE(state.settings.ShowDetailsFlag + 2 * state.settings.PromptReorderFlag +
                 4 * state.settings.HideFinishedFlag,
             check == "Check3"_L1 ? 1 : (check == "Check1"_L1 ? 2 : 4));
}

void WindowTest::settingsThatCannotBeRead()
{
    Counter counter;
    counter.file.sql(u"UPDATE StoreSettings SET ShowDetails = 'often', AutoPurchaseCart = X'41'"_s);
    counter.open();
    QCOMPARE(counter.state().settings.ShowDetailsFlag, std::int16_t{0});
    QCOMPARE(counter.state().settings.HideFinishedFlag, std::int16_t{0});
}

void WindowTest::settingsOutOfRange()
{
    Counter counter;
    counter.file.sql(u"UPDATE StoreSettings SET ShowDetails = -1, Promptreorder = 70000, AutoPurchaseCart = NULL"_s);
    counter.open();
    QCOMPARE(counter.state().settings.ShowDetailsFlag, std::int16_t{-1});
    QCOMPARE(counter.state().settings.PromptReorderFlag, std::int16_t{0});
    QCOMPARE(counter.state().settings.HideFinishedFlag, std::int16_t{0});
}

void WindowTest::emailAddress_data()
{
    QTest::addColumn<QString>("change");
    QTest::addColumn<QString>("shown");
    QTest::newRow("stored") << u"UPDATE StoreSettings SET EmailAddress = 'a@b.example'"_s << u"a@b.example"_s;
    QTest::newRow("empty") << u"UPDATE StoreSettings SET EmailAddress = ''"_s << QString();
    QTest::newRow("null") << u"UPDATE StoreSettings SET EmailAddress = NULL"_s << u"reports@example.com"_s;
    QTest::newRow("no column") << u"ALTER TABLE StoreSettings DROP COLUMN EmailAddress"_s << u"reports@example.com"_s;
}

void WindowTest::emailAddress()
{
    QFETCH(QString, change);
    QFETCH(QString, shown);
    Counter counter;
    counter.file.sql(change);
    counter.open();
    QCOMPARE(counter.text("Text2"), shown);
    QCOMPARE(counter.state().settings.ReportEmailAddress, shown);
}

void WindowTest::emailAddressThatCannotBeRead_data()
{
    QTest::addColumn<QString>("change");
    QTest::addColumn<bool>("refused");
    QTest::newRow("refused") << QString() << true;
    QTest::newRow("no table") << u"DROP TABLE StoreSettings"_s << false;
    QTest::newRow("refused, and there is no row") << u"DELETE FROM StoreSettings"_s << true;
}

/// The placeholder is shown for a null or missing column, not for an address that could not be read.
void WindowTest::emailAddressThatCannotBeRead()
{
    QFETCH(const QString, change);
    QFETCH(const bool, refused);
    Counter counter;
    counter.file.sql(change);
    counter.connection->fails = [&](const QString &statement) {
        return refused && statement == u"Select * from StoreSettings"_s;
    };
    counter.open();
    QCOMPARE(counter.text("Text2"), QString());
    QCOMPARE(counter.state().settings.ReportEmailAddress, QString());
}

void WindowTest::savedEmailReport_data()
{
    QTest::addColumn<QString>("saved");
    QTest::addColumn<bool>("checked");
    QTest::newRow("nothing saved") << QString() << true;
    QTest::newRow("1") << u"1"_s << true;
    QTest::newRow("0") << u"0"_s << false;
}

void WindowTest::savedEmailReport()
{
    QFETCH(QString, saved);
    QFETCH(bool, checked);
    Counter counter;
    if (!saved.isNull())
        counter.settings->save(u"Option"_s, u"EmailReport"_s, saved);
    // The column is written, never read.
    counter.file.sql(u"UPDATE StoreSettings SET Email = %1"_s.arg(checked ? 0 : 1));
    counter.open();
    QCOMPARE(counter.find<QCheckBox>("Check4")->isChecked(), checked);
    QCOMPARE(counter.state().settings.EmailReportFlag, static_cast<std::int16_t>(checked ? 1 : 0));
}

void WindowTest::savedReceiptChoice_data()
{
    QTest::addColumn<QString>("saved");
    QTest::addColumn<bool>("checked");
    QTest::newRow("nothing saved") << QString() << true;
    QTest::newRow("1") << u"1"_s << true;
    QTest::newRow("True") << u"True"_s << true;
    QTest::newRow("0") << u"0"_s << false;
    QTest::newRow("False") << u"False"_s << false;
}

void WindowTest::savedReceiptChoice()
{
    QFETCH(QString, saved);
    QFETCH(bool, checked);
    Counter counter;
    counter.settings->values.clear();
    if (!saved.isNull())
        counter.settings->save(u"OPTION"_s, u"useposforreceipt"_s, saved);
    counter.open();
    QCOMPARE(counter.find<QCheckBox>("Check5")->isChecked(), checked);
    QCOMPARE(counter.find("Combo9")->isEnabled(), checked);
}

void WindowTest::pickListsAreFilled()
{
    Counter counter;
    counter.open();
    for (const char *name : {"Combo4", "Combo8", "Combo10", "Combo13", "Combo14"}) {
        const auto *list = counter.find<QComboBox>(name);
        QCOMPARE(list->count(), 101);
        QCOMPARE(list->itemText(0), u"0"_s);
        QCOMPARE(list->itemText(100), u"100"_s);
    }
    QCOMPARE(counter.text("Combo4"), u"0"_s);
    QCOMPARE(counter.text("Combo10"), QString());
    const auto *use = counter.find<QComboBox>("Combo15");
    QCOMPARE(use->count(), 2);
    QCOMPARE(use->itemText(0), u"Enabled"_s);
    QCOMPARE(use->itemText(1), u"Disabled"_s);
    QCOMPARE(counter.text("Combo15"), u"Enabled"_s);
    QCOMPARE(counter.find<QComboBox>("Combo6")->itemText(0), u"(Auto ID)"_s);
    QCOMPARE(counter.text("Combo6"), u"(Auto ID)"_s);
}

void WindowTest::categoriesAreListed()
{
    Counter counter;
    counter.file.sql(u"INSERT INTO InventoryCategory VALUES ('Snacks',''),('DRINKS','')"_s);
    counter.open();
    for (const char *name : {"Combo1", "Combo2", "Combo12"}) {
        const auto *list = counter.find<QComboBox>(name);
        QCOMPARE(list->count(), 4);
        QCOMPARE(list->itemText(0), u"(ALL CATEGORY)"_s);
        QCOMPARE(list->itemText(1), u"SNACKS"_s); // table order, upper-cased
        QCOMPARE(list->itemText(2), u"DRINKS"_s);
        QCOMPARE(list->itemText(3), u"OTHER CATEGORY"_s);
        QCOMPARE(counter.text(name), u"(ALL CATEGORY)"_s);
    }
    const auto *stock = counter.find<QComboBox>("Combo5");
    QCOMPARE(stock->count(), 3);
    QCOMPARE(stock->itemText(0), u"SNACKS"_s);
    QCOMPARE(stock->itemText(2), u"OTHER CATEGORY"_s);
    QCOMPARE(counter.text("Combo5"), QString());
}

void WindowTest::categoryListsKeepTheirText()
{
    Counter counter;
    counter.open();
    QCOMPARE(counter.find<QComboBox>("Combo1")->currentIndex(), -1);
    QCOMPARE(counter.find<QComboBox>("Combo15")->currentIndex(), -1);
}

void WindowTest::loadsWithoutAnyTable()
{
    Counter counter;
    counter.file.sql(u"DROP TABLE StockList; DROP TABLE InventoryCategory; DROP TABLE PurchaseCart;"
                     "DROP TABLE StoreSettings; DROP TABLE Users; DROP TABLE SysUsage"_s);
    counter.open();
    QVERIFY(!counter.state().login.IsLoggedIn);
    QCOMPARE(counter.text("Command1_0"), u"(empty)"_s);
    counter.boxes.expect(u"Username or Password Incorrect!"_s, box::Exclamation);
    counter.logIn();
    counter.close();
}

void WindowTest::loadsWithoutConnection()
{
    Counter counter;
    counter.connection.reset();
    counter.open();
    counter.boxes.expect(u"Username or Password Incorrect!"_s, box::Exclamation);
    counter.logIn();
    counter.close();
    QVERIFY2(counter.boxes.isDone(), counter.boxes.problems().constData());
}

void WindowTest::statementsOfLoading()
{
    Counter counter;
    counter.open();
    const QStringList &statements = counter.connection->statements;
    QVERIFY(statements.contains(u"Select * from InventoryCategory"_s));
    QVERIFY(statements.contains(u"Select * from InventoryCategory Order By CategoryName ASC"_s));
    QVERIFY(statements.contains(u"Select * from StoreSettings"_s));
    // The category's text is set right before the settings are read, and fills the first page.
    QCOMPARE(statements.last(), u"Select * from StoreSettings"_s);
    QCOMPARE(statements.at(statements.size() - 2),
             u"Select * from Stocklist where StockUse = 'Enabled' order by StockName ASC  Limit 0, 9"_s);
}

void WindowTest::closingIsConfirmed()
{
    Counter counter;
    counter.open();
    counter.boxes.expect(u"Close Inventory?"_s, box::Ask, Answer::No);
    counter.window().close();
    QVERIFY(counter.window().isVisible());
    counter.boxes.expect(u"Close Inventory?"_s, box::Ask, Answer::Yes);
    counter.click("Command10");
    QTRY_VERIFY(!counter.isOpen());
    QCOMPARE(counter.file.cell(u"SELECT count(*) FROM SysUsage"_s), u"0"_s);
}

void WindowTest::closedWindowIsDestroyed()
{
    Counter counter;
    counter.open();
    counter.close();
    QVERIFY(!counter.isOpen());
    counter.open(); // and the next one starts afresh
    QCOMPARE(counter.text("StatusBar1_1"), u"Login: No User"_s);
}

void WindowTest::help()
{
    Counter counter;
    counter.open();
    counter.boxes.expect(u"To Start using Harrowby Inventory Tool, kindly login and enter Stock Category in Settings. "
                         u"Afterwards, Add/Edit "
                         "Stock before purchases can be made. To Login you must have the priviledge to use Inventory "
                         "Tool under Harrowby "
                         "Option > User Tab. \r\n\r\nFor more information, kindly visit "
                         "https://harrowby.example/inventory or email us at "
                         "support@harrowby.example."_s,
                         box::Information);
    counter.click("Command20");
    QVERIFY2(counter.boxes.isDone(), counter.boxes.problems().constData());
}

void WindowTest::handlerThatThrowsEndsAlone()
{
    QLoggingCategory::setFilterRules(u"harrowby.window.warning=true"_s);
    const auto quietAgain = qScopeGuard([] { QLoggingCategory::setFilterRules(QString()); });
    QWidget window;
    Breather breather;
    HandlerFence fence(window, breather);
    QTest::ignoreMessage(QtWarningMsg, "A handler ended early: out of paper");
    fence.run([] { throw std::runtime_error("out of paper"); });
    QTest::ignoreMessage(QtWarningMsg, "A handler ended early");
    fence.run([] { throw 42; }); // NOLINT: a host's objects may throw anything
    bool ran = false;
    fence.run([&] { ran = true; });
    QVERIFY(ran);
    QVERIFY(!fence.isClosed());
}

void WindowTest::closedWindowOutlivesItsHandlers()
{
    const QPointer<QWidget> window = new QWidget;
    Breather breather;
    HandlerFence fence(*window, breather);
    const auto handleEvents = [] { QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); };
    fence.run([&] {
        fence.run([&] {
            fence.close();
            handleEvents();
            QVERIFY(window);
        });
        fence.run([] { throw 42; }); // NOLINT
        handleEvents();
        QVERIFY(window);
    });
    QVERIFY(fence.isClosed());
    handleEvents();
    QVERIFY(!window);
}

void WindowTest::laterLoadWins()
{
    LatestLoad loads;
    const LatestLoad::Turn first = loads.begin();
    QVERIFY(first.isLatest());
    const LatestLoad::Turn second = loads.begin();
    QVERIFY(!first.isLatest());
    QVERIFY(second.isLatest());
    QVERIFY(loads.current().isLatest());
    QVERIFY(second.isLatest()); // isLatest() begins no load
}

void WindowTest::oneAtATime()
{
    OneAtATime work;
    QVERIFY(!work.isRunning());
    {
        const OneAtATime::Turn turn = work.begin();
        QVERIFY(work.isRunning());
    }
    QVERIFY(!work.isRunning());
}

void WindowTest::captions_data()
{
    QTest::addColumn<QString>("control");
    QTest::addColumn<QString>("caption");
    const std::initializer_list<std::pair<const char *, QString>> captions{
        {"Command10", u"Clo&se Inventory"_s},
        {"Command28", u"&Login!"_s},
        {"Command29", u"&Clear"_s},
        {"Command27", u"Log out User"_s},
        {"Command11", u"Clear Activity Log"_s},
        {"Command12", u"Delete"_s},
        {"Command13", u"Clear Cart"_s},
        {"Command14", u"Purchase Cart"_s},
        {"Command15", u"Add Item"_s},
        {"Command9", u"Close Search Result"_s},
        {"Command21", u"Select ..."_s},
        {"Command16", u"Add/Edit New Stock"_s},
        {"Command5", u"Edit Stock"_s},
        {"Command6", u"Delete Stock"_s},
        {"Command17", u"Reorder Stock"_s},
        {"Command18", u"Save Settings"_s},
        {"Command19", u"Sales &Report"_s},
        {"Command22", u"Change"_s},
        {"Command23", u"Undo"_s},
        {"Command25", u"Undo"_s},
        {"Command3", u"Delete"_s},
        {"CmdNext", u"Next"_s},
        {"CmdPrev", u"Prev"_s},
        {"Command30_0", u"0"_s},
        {"Command30_10", u"<---"_s},
        {"Command30_11", u"Close"_s},
        {"Check1", u"&Prompt on Load when Item(s) need to be Reordered"_s},
        {"Check2", u"Don't List Finished Item(s)"_s},
        {"Check3", u"Show Details On Purchase"_s},
        {"Check4", u"Email Daily Report"_s},
        {"Check5", u"Print Receipt on POS"_s},
        {"Command1_8", u"(empty)"_s},
        {"Label6_0", u"Dashboard"_s},
        {"Label6_1", u"Today's Sales"_s},
        {"Label6_2", u"Today's Sales Total"_s},
        {"Label6_5", u"Total Available Item(s):"_s},
        {"Label6_6", u"Low Reorder Level:"_s},
        {"Label6_7", u"Click to See Reorder List"_s},
    };
    for (const auto &[control, caption] : captions)
        QTest::newRow(control) << QString::fromLatin1(control) << caption;
}

void WindowTest::captions()
{
    QFETCH(QString, control);
    QFETCH(QString, caption);
    if (!m_counter) {
        m_counter = std::make_unique<Counter>();
        m_counter->open();
    }
    QCOMPARE(m_counter->text(control.toLatin1().constData()), caption);
}

HARROWBY_TEST(window_test, WindowTest)
#include "window_test.moc"
