// SPDX-License-Identifier: MIT
#include "tests/program/test_program.h"
#include "tests/support/counter.h"
#include "tests/ui/interruption.h"
#include "tests/ui/report_double.h"

#include "store/inv_basic.h"

#include <QCheckBox>
#include <QTimer>

#include <functional>
#include <stdexcept>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::test;

namespace {

constexpr auto classId = "HarrowReport.ReportDll"_L1;
constexpr auto refusal = "Error loading report, Please restart Harrowby Server or the System!\r\nIf this problem "
                         "persist, please run a Scandisk and replace to replace missing files or reinstall Harrowby. "
                         "See https://harrowby.example/faq"_L1;

} // namespace

/// Handing the sales report over to the component that draws it.
class SalesReportTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void needsLogin();
    void needsTheRight();
    void argumentsOfTheUser_data();
    void argumentsOfTheUser();
    void folderOfTheHost_data();
    void folderOfTheHost();
    void runsNoStatement();
    void classIdInOtherCapitals();
    void changesByReferenceStay();
    void connectionComesBack();
    void noConnectionComesBack();
    void objectLivesAsLongAsTheCall();
    void failures_data();
    void failures();
    void changesBeforeAnErrorAreDropped();
    void emailReportFollows_data();
    void emailReportFollows();
    void emailReportThatIsNoNumber_data();
    void emailReportThatIsNoNumber();
    void closedMeanwhile();
    void loggedOutMeanwhile();
    void otherUserMeanwhile();
    void clickedAgainMeanwhile();
    void leavesNoListHalfRead();
};

namespace {

/// Registers a report that does this.
void supply(Counter &counter, const Report::Show &show)
{
    counter.objects->add(classId, [show] { return std::make_unique<Report>(show); });
}

void openAs(Counter &counter, const QStringList &rights)
{
    counter.file.addUser(u"JACK"_s, u"PASS"_s, rights);
    counter.open();
    counter.logIn(u"JACK"_s);
}

void openReport(Counter &counter)
{
    counter.click("Command19");
}

void openFailingReport(Counter &counter)
{
    counter.boxes.expect(refusal, box::Critical);
    openReport(counter);
}

} // namespace

void SalesReportTest::needsLogin()
{
    Counter counter;
    int made = 0;
    counter.objects->add(classId, [&] { return ++made, std::make_unique<QObject>(); });
    counter.open();
    counter.boxes.expect(u"You must login first!"_s, box::Exclamation);
    openReport(counter);
    QCOMPARE(made, 0);
}

void SalesReportTest::needsTheRight()
{
    Counter counter;
    int made = 0;
    counter.objects->add(classId, [&] { return ++made, std::make_unique<QObject>(); });
    openAs(counter, {u"Sales"_s, u"Undo"_s, u"Delete"_s, u"Settings"_s, u"Reorder"_s});
    counter.chooseTab("TabStrip1", WorkArea::Settings);
    counter.boxes.expect(u"User [JACK] doesn't have this privilege!"_s, box::Exclamation);
    openReport(counter);
    QCOMPARE(made, 0);
    QCOMPARE(counter.selectedTab("TabStrip1"), WorkArea::Settings); // this refusal leads nowhere else
}

void SalesReportTest::argumentsOfTheUser_data()
{
    QTest::addColumn<QString>("user");
    QTest::addColumn<QStringList>("rights");
    QTest::addColumn<bool>("mayEditStock");
    QTest::addColumn<bool>("canSettings");
    QTest::newRow("report alone") << u"JACK"_s << QStringList{u"Report"_s} << false << false;
    QTest::newRow("reorder") << u"JACK"_s << QStringList{u"Report"_s, u"Reorder"_s} << true << false;
    QTest::newRow("settings") << u"JACK"_s << QStringList{u"Report"_s, u"Settings"_s} << false << true;
    QTest::newRow("every other") << u"JACK"_s << QStringList{u"Report"_s, u"Sales"_s, u"Undo"_s, u"Delete"_s} << false
                                 << false;
    QTest::newRow("administrator") << u"ADMINISTRATOR"_s << QStringList() << true << true;
}

void SalesReportTest::argumentsOfTheUser()
{
    QFETCH(const QString, user);
    QFETCH(const QStringList, rights);
    QFETCH(const bool, mayEditStock);
    QFETCH(const bool, canSettings);
    Counter counter;
    int calls = 0;
    supply(counter, [&](Report::Call &call) {
        ++calls;
        QCOMPARE(call.connection, std::shared_ptr<DbConnection>(counter.connection));
        QVERIFY(call.third);
        QCOMPARE(call.msgTitle, QString());
        QVERIFY(call.fifth);
        QCOMPARE(call.mayEditStock, mayEditStock);
        QCOMPARE(call.canSettings, canSettings);
        QCOMPARE(call.loggedUser, user);
    });
    openAs(counter, rights);
    if (user != counter.state().login.LoggedUser)
        counter.logIn();
    openReport(counter);
    QCOMPARE(calls, 1);
    QCOMPARE(InvBasic::connection(), std::shared_ptr<DbConnection>(counter.connection));
    QCOMPARE(counter.state().login.LoggedUser, user);
}

void SalesReportTest::folderOfTheHost_data()
{
    QTest::addColumn<QString>("location");
    QTest::addColumn<QString>("folder");
    QTest::newRow("none") << QString() << QString();
    QTest::newRow("folder") << u"/srv/shop/"_s << u"/srv/shop/"_s;
    QTest::newRow("library") << u"/srv/shop/Harrowby.dll"_s << u"/srv/shop/"_s;
    QTest::newRow("every one") << u"Harrowby.dll/a/Harrowby.dll/Harrowby.dllx"_s << u"/a//x"_s;
    QTest::newRow("other capitals") << u"/srv/harrowby.DLL"_s << u"/srv/harrowby.DLL"_s;
}

void SalesReportTest::folderOfTheHost()
{
    QFETCH(const QString, location);
    Counter counter;
    QString folder = u"(not called)"_s;
    supply(counter, [&](Report::Call &call) { folder = call.folder; });
    counter.open();
    counter.logIn();
    InvBasic::setConnection(counter.file.connect(location));
    openReport(counter);
    QTEST(folder, "folder");
}

void SalesReportTest::runsNoStatement()
{
    Counter counter;
    supply(counter, [](Report::Call &) {});
    counter.open();
    counter.logIn();
    counter.connection->statements.clear();
    const QString log = counter.text("Text1");
    openReport(counter);
    QCOMPARE(counter.connection->statements, QStringList());
    QCOMPARE(counter.text("Text1"), log);
}

void SalesReportTest::classIdInOtherCapitals()
{
    Counter counter;
    int calls = 0;
    counter.objects->add(u"harrowreport.REPORTDLL"_s,
                         [&] { return std::make_unique<Report>([&](Report::Call &) { ++calls; }); });
    counter.open();
    counter.logIn();
    openReport(counter);
    QCOMPARE(calls, 1);
}

void SalesReportTest::changesByReferenceStay()
{
    Counter counter;
    supply(counter, [](Report::Call &call) {
        call.msgTitle = u"Shop"_s;
        call.canSettings = !call.canSettings;
        call.loggedUser = u"JILL"_s;
    });
    counter.open();
    counter.logIn();
    openReport(counter);
    QCOMPARE(counter.state().MsgTitle, u"Shop"_s);
    QVERIFY(!counter.state().login.rights.CanSettings);
    QCOMPARE(counter.state().login.LoggedUser, u"JILL"_s);
    counter.boxes.expect(u"User [JILL] doesn't have this privilege!"_s, box::Exclamation);
    counter.chooseTab("TabStrip1", WorkArea::Settings);
}

void SalesReportTest::connectionComesBack()
{
    Counter counter;
    const ShopFile branch;
    branch.addItem(u"B1"_s, u"BUN"_s, 2, 5);
    const auto other = branch.connect();
    supply(counter, [&](Report::Call &call) { call.connection = other; });
    counter.open();
    counter.logIn();
    openReport(counter);
    QCOMPARE(InvBasic::connection(), other);
    counter.chooseTab("TabStrip1", WorkArea::QuickSales);
    QVERIFY(counter.text("Command1_0").startsWith(u"B1"_s)); // what is read from now on
}

void SalesReportTest::noConnectionComesBack()
{
    Counter counter;
    counter.file.addItem(u"A1"_s, u"TEA"_s, 2, 5);
    int calls = 0;
    supply(counter, [&](Report::Call &call) {
        ++calls;
        call.connection.reset();
    });
    counter.open();
    counter.logIn();
    openReport(counter);
    QVERIFY(!InvBasic::connection());
    QCOMPARE(calls, 1);
    for (const int tab : WorkArea::all)
        counter.chooseTab("TabStrip1", tab); // empty lists, and no word
    counter.click("Command1_0");
    // Without a connection there is no folder to hand over.
    openFailingReport(counter);
    QCOMPARE(calls, 1);
}

void SalesReportTest::objectLivesAsLongAsTheCall()
{
    Counter counter;
    QPointer<QObject> made;
    counter.objects->add(classId, [&] {
        auto report = std::make_unique<Report>([&](Report::Call &) { QVERIFY(made != nullptr); });
        made = report.get();
        return report;
    });
    counter.open();
    counter.logIn();
    openReport(counter);
    QVERIFY(made == nullptr);
}

void SalesReportTest::failures_data()
{
    using Make = ObjectRegistry::Factory;
    QTest::addColumn<bool>("isThere");
    QTest::addColumn<Make>("make");
    QTest::newRow("no component") << false << Make();
    QTest::newRow("taken away") << true << Make();
    QTest::newRow("component that makes nothing") << true << Make([] { return std::unique_ptr<QObject>(); });
    QTest::newRow("component that throws")
        << true << Make([]() -> std::unique_ptr<QObject> { throw std::runtime_error("no licence"); });
    QTest::newRow("component that throws an oddity")
        << true << Make([]() -> std::unique_ptr<QObject> { throw 42; }); // NOLINT: components may throw anything
    QTest::newRow("no method") << true << Make([] { return std::make_unique<QObject>(); });
    QTest::newRow("method of other arguments")
        << true << Make([] { return std::make_unique<ReportOfOtherArguments>(); });
    QTest::newRow("report that throws") << true << Make([] {
        return std::make_unique<Report>([](Report::Call &) { throw std::runtime_error("out of paper"); });
    });
    QTest::newRow("report that throws an oddity") << true << Make([] {
        return std::make_unique<Report>([](Report::Call &) { throw 42; }); // NOLINT
    });
}

void SalesReportTest::failures()
{
    QFETCH(const bool, isThere);
    QFETCH(const ObjectRegistry::Factory, make);
    Counter counter;
    if (isThere)
        counter.objects->add(classId, make);
    counter.open();
    counter.logIn();
    counter.settings->save(u"Option"_s, u"EmailReport"_s, u"0"_s); // which is not come to
    const std::int16_t flag = counter.state().settings.EmailReportFlag;
    openFailingReport(counter);
    QVERIFY(counter.state().login.IsLoggedIn);
    QCOMPARE(counter.state().login.LoggedUser, u"ADMINISTRATOR"_s);
    QVERIFY(counter.state().login.rights.CanSettings);
    QCOMPARE(counter.state().settings.EmailReportFlag, flag);
    QVERIFY(counter.find<QCheckBox>("Check4")->isChecked());
    QCOMPARE(InvBasic::connection(), std::shared_ptr<DbConnection>(counter.connection));
    openFailingReport(counter); // once for each click
}

void SalesReportTest::changesBeforeAnErrorAreDropped()
{
    Counter counter;
    supply(counter, [](Report::Call &call) {
        call.msgTitle = u"Shop"_s;
        call.canSettings = false;
        call.loggedUser = u"JILL"_s;
        call.connection.reset();
        throw std::runtime_error("out of paper");
    });
    counter.open();
    counter.logIn();
    openFailingReport(counter);
    QCOMPARE(counter.state().MsgTitle, QString());
    QVERIFY(counter.state().login.rights.CanSettings);
    QCOMPARE(counter.state().login.LoggedUser, u"ADMINISTRATOR"_s);
    QCOMPARE(InvBasic::connection(), std::shared_ptr<DbConnection>(counter.connection));
}

void SalesReportTest::emailReportFollows_data()
{
    QTest::addColumn<QString>("saved");
    QTest::addColumn<int>("flag");
    QTest::newRow("nothing saved") << QString() << 1;
    QTest::newRow("on") << u"1"_s << 1;
    QTest::newRow("off") << u"0"_s << 0;
    QTest::newRow("Boolean on") << u"True"_s << -1;
    QTest::newRow("Boolean off") << u"False"_s << 0;
    QTest::newRow("blanks around") << u" 1 "_s << 1;
    QTest::newRow("half to even") << u"0.5"_s << 0;
}

void SalesReportTest::emailReportFollows()
{
    QFETCH(const QString, saved);
    QFETCH(const int, flag);
    Counter counter;
    supply(counter, [&](Report::Call &) {
        if (!saved.isNull())
            counter.settings->save(u"option"_s, u"emailreport"_s, saved); // switched inside the report
    });
    counter.open();
    counter.logIn();
    counter.find<QCheckBox>("Check4")->setChecked(flag == 0);
    openReport(counter);
    QCOMPARE(static_cast<int>(counter.state().settings.EmailReportFlag), flag);
    QCOMPARE(counter.find<QCheckBox>("Check4")->isChecked(), flag != 0);
}

void SalesReportTest::emailReportThatIsNoNumber_data()
{
    QTest::addColumn<QString>("saved");
    QTest::newRow("word") << u"yes"_s;
    QTest::newRow("empty") << u""_s;
    QTest::newRow("number and more") << u"1 of them"_s;
    QTest::newRow("more than 16 bits") << u"40000"_s;
}

void SalesReportTest::emailReportThatIsNoNumber()
{
    QFETCH(const QString, saved);
    Counter counter;
    const auto other = counter.file.connect();
    supply(counter, [&](Report::Call &call) {
        call.connection = other;
        call.msgTitle = u"Shop"_s;
        call.canSettings = false;
        call.loggedUser = u"JILL"_s;
        counter.settings->save(u"Option"_s, u"EmailReport"_s, saved);
    });
    counter.open();
    counter.logIn();
    openFailingReport(counter);
    QCOMPARE(counter.state().MsgTitle, QString()); // the last step has not worked
    QVERIFY(counter.state().login.rights.CanSettings);
    QCOMPARE(counter.state().login.LoggedUser, u"ADMINISTRATOR"_s);
    QCOMPARE(static_cast<int>(counter.state().settings.EmailReportFlag), 1);
    QVERIFY(counter.find<QCheckBox>("Check4")->isChecked());
    QCOMPARE(InvBasic::connection(), other); // written back before the error
}

void SalesReportTest::closedMeanwhile()
{
    Counter counter;
    bool isAliveAfterwards = false;
    supply(counter, [&](Report::Call &call) {
        counter.boxes.expect(u"Close Inventory?"_s, box::Ask, Answer::Yes);
        counter.window().close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        isAliveAfterwards = counter.isOpen();
        call.loggedUser = u"JILL"_s; // the window's own still
        call.canSettings = false;
        counter.settings->save(u"Option"_s, u"EmailReport"_s, u"0"_s);
    });
    counter.open();
    counter.logIn();
    openReport(counter);
    QVERIFY(isAliveAfterwards);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!counter.isOpen());
}

void SalesReportTest::loggedOutMeanwhile()
{
    Counter counter;
    supply(counter, [&](Report::Call &call) {
        counter.boxes.expect(u"Log out User[ADMINISTRATOR]?"_s, box::AskDefaultNo, Answer::Yes);
        counter.click("Command27");
        QCOMPARE(call.loggedUser, u"ADMINISTRATOR"_s); // it has that user's report open still
    });
    counter.open();
    counter.logIn();
    openReport(counter);
    QVERIFY(!counter.state().login.IsLoggedIn);
    QCOMPARE(counter.state().login.LoggedUser, QString());
    counter.boxes.expect(u"You must login first!"_s, box::Exclamation);
    openReport(counter);
}

void SalesReportTest::otherUserMeanwhile()
{
    Counter counter;
    counter.file.addUser(u"JILL"_s, u"PASS"_s, {u"Sales"_s});
    supply(counter, [&](Report::Call &) { counter.logIn(u"JILL"_s); });
    counter.open();
    counter.logIn();
    openReport(counter);
    QCOMPARE(counter.state().login.LoggedUser, u"JILL"_s);
    QVERIFY(!counter.state().login.rights.CanSettings);
}

void SalesReportTest::clickedAgainMeanwhile()
{
    Counter counter;
    int calls = 0;
    int open = 0;
    supply(counter, [&](Report::Call &call) {
        ++open;
        if (++calls < 3)
            QTimer::singleShot(0, &counter.window(), [&] { openReport(counter); });
        QCoreApplication::processEvents();
        --open;
        QCOMPARE(call.connection, std::shared_ptr<DbConnection>(counter.connection));
    });
    counter.open();
    counter.logIn();
    openReport(counter);
    QCOMPARE(calls, 3);
    QCOMPARE(open, 0);
    QVERIFY(counter.state().login.IsLoggedIn);
}

void SalesReportTest::leavesNoListHalfRead()
{
    Counter counter;
    constexpr int purchases = 2000;
    counter.file.sql(u"WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < %1) "
                     "INSERT INTO PurchaseCart (PurchaseID) SELECT 'HV' || i FROM n"_s.arg(purchases));
    int calls = 0;
    supply(counter, [&](Report::Call &) {
        ++calls;
        QVERIFY(!counter.file.isBeingRead());
    });
    counter.open();
    counter.logIn();
    counter.connection->before = [&](const QString &statement) {
        if (!statement.startsWith(u"Select PurchaseID"_s))
            return;
        passRest();
        QTimer::singleShot(0, &counter.window(), [&] {
            QVERIFY(counter.file.isBeingRead() || shopsAreOnAServer());
            openReport(counter);
        });
    };
    counter.chooseTab("TabStrip1", WorkArea::Settings);
    QCOMPARE(calls, 1);
    QCOMPARE(counter.entries("Combo17").size(), purchases);
}

HARROWBY_TEST(sales_report_test, SalesReportTest)
#include "sales_report_test.moc"
