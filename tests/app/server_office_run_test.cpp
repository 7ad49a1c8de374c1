// SPDX-License-Identifier: MIT
#include "tests/app/screen.h"
#include "tests/doubles/private_cluster.h"
#include "tests/doubles/server_shop.h"
#include "tests/program/test_program.h"

#include <QElapsedTimer>
#include <QFile>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <future>
#include <memory>

using namespace Qt::StringLiterals;
using namespace harrowby::app::test;
using harrowby::test::PrivateCluster;

/// The real office, on a real X server, in the role that harrowby-server add-office gives it: each page, changes beside
/// a till of the same machine, a server that goes away and comes back, and for both one that hangs while its standby
/// takes over.
class ServerOfficeRunTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void eachPageOpens_data();
    void eachPageOpens();
    void userIsAdded();
    void priceIsChangedBesideATill();
    void tillEnds();
    void dialogGoesOnWithTheServer();
    void dialogGoesAfterItHasWaited();
    void whatIsNotKnownIsToldAndSettled();
    void ends();
    void standbyTakesOverInSilence();

private:
    /// On the server, and its standby once there is one.
    [[nodiscard]] QString storeOf(const QString &role) const
    {
        const QString second = m_standby ? u",127.0.0.1:%1"_s.arg(m_standby->port()) : QString();
        return u"postgresql://%1@127.0.0.1:%2%3/shop"_s.arg(role, QString::number(m_cluster->port()), second);
    }
    [[nodiscard]] QString value(const QString &select) const { return m_cluster->sql(select).value(0); }
    /// Each running program's, with the number of its last write.
    [[nodiscard]] QStringList writers() const
    {
        return m_cluster->sql(u"select writer || ' ' || last from harrowby.writer_action order by writer"_s);
    }
    void enter(RunningProgram &program, const QString &entry, const QString &text);
    void openOffice();
    /// What the server says of itself.
    void protect(const QString &how);
    /// Up to the dialog's "Return".
    void describeUser(const QString &name);
    void openTill();
    void sell(const QString &total);
    void import();

    QTemporaryDir m_home; ///< of the one machine
    Screen m_screen;
    std::unique_ptr<PrivateCluster> m_cluster;
    std::unique_ptr<PrivateCluster> m_standby;
    std::unique_ptr<RunningProgram> m_office;
    std::unique_ptr<RunningProgram> m_till;
};

void ServerOfficeRunTest::initTestCase()
{
    if (const QString missing = PrivateCluster::missing(); !missing.isEmpty())
        QSKIP(qPrintable(missing));
    for (const QString &tool : {u"Xvfb"_s, u"openbox"_s, u"xdotool"_s})
        QVERIFY2(!QStandardPaths::findExecutable(tool).isEmpty(), qPrintable(tool + u" is needed"_s));
    QVERIFY(m_screen.start(u"1280x1024"_s));
    m_cluster = std::make_unique<PrivateCluster>();
    m_cluster->start();
    harrowby::test::setUpShop(*m_cluster, u"shop"_s);
    m_cluster->sql(
        u"insert into harrowby.users values ('ADMINISTRATOR', 'SECRET', 'ADMINISTRATOR', -1, -1, -1, -1, -1, "
        "-1, -1)"_s);
    m_cluster->sql(u"insert into harrowby.stocklist (StockID, StockName, StockCategory, StockCost, StockReorderLevel, "
                   "StockAvailable, StockUse) values ('TEA-0001', 'TEA', 'DRINKS', '2.50', 5, 20, 'Enabled')"_s);
    protect(u"single"_s);
    openOffice();
}

void ServerOfficeRunTest::openOffice()
{
    m_office = std::make_unique<RunningProgram>(m_screen, m_home.path());
    QVERIFY(m_office->start({u"--office"_s, u"--database"_s, storeOf(u"office"_s)}));
    enter(*m_office, u"officePassword"_s, u"secret"_s);
    m_screen.key(u"Return"_s);
    QTRY_VERIFY2_WITH_TIMEOUT(m_office->has(u"addUser"_s), qPrintable(m_office->errors()), 30000);
}

void ServerOfficeRunTest::enter(RunningProgram &program, const QString &entry, const QString &text)
{
    QVERIFY2(program.press(entry), qPrintable(entry + program.errors()));
    m_screen.type(text);
    QTRY_COMPARE_WITH_TIMEOUT(program.text(entry).toUpper(), text.toUpper(), 30000);
}

void ServerOfficeRunTest::protect(const QString &how)
{
    m_cluster->sql(
        u"create or replace function harrowby.protection() returns text language sql as $$ select '%1' $$"_s.arg(how));
}

void ServerOfficeRunTest::eachPageOpens_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("control");
    const auto row = [](const QString &key, const QString &title, const QString &control) {
        QTest::newRow(qPrintable(title)) << key << title << control;
    };
    row(u"alt+r"_s, u"Receipt"_s, u"saveReceipt"_s);
    row(u"alt+s"_s, u"Cash"_s, u"saveCash"_s);
    row(u"alt+h"_s, u"Shop"_s, u"searchAnywhere"_s);
    row(u"alt+g"_s, u"Catalogue"_s, u"beginImport"_s);
    row(u"alt+o"_s, u"Codes"_s, u"addCodes"_s);
    row(u"alt+l"_s, u"Labels"_s, u"addLabelItems"_s);
    row(u"alt+k"_s, u"Backup"_s, u"startBackup"_s);
    row(u"alt+y"_s, u"Activity"_s, u"findActivity"_s);
    row(u"alt+e"_s, u"Readers"_s, u"saveReaders"_s);
    row(u"alt+u"_s, u"Users"_s, u"addUser"_s);
}

void ServerOfficeRunTest::eachPageOpens()
{
    QFETCH(const QString, key);
    QFETCH(const QString, title);
    QFETCH(const QString, control);
    m_screen.key(key);
    QTRY_COMPARE_WITH_TIMEOUT(m_office->text(u"officeTitle"_s), title, 30000);
    QVERIFY(m_office->awaitKeysOf(control));
    for (const QString &outcome : {u"usersOutcome"_s, u"shopOutcome"_s, u"catalogueOutcome"_s, u"codesOutcome"_s,
                                   u"openPaymentsCount"_s, u"activityOutcome"_s})
        QVERIFY2(!m_office->text(outcome).contains(u'\u26a0'), qPrintable(m_office->text(outcome)));
    const QString errors = m_office->errors();
    QVERIFY2(!errors.contains(u"Failed:"_s), qPrintable(errors));
}

void ServerOfficeRunTest::describeUser(const QString &name)
{
    m_office->bringToFront(u"Store"_s);
    m_screen.key(u"alt+u"_s);
    QVERIFY(m_office->press(u"addUser"_s));
    enter(*m_office, u"userName"_s, name);
    enter(*m_office, u"userPassword"_s, u"key1"_s);
    enter(*m_office, u"userPasswordAgain"_s, u"key1"_s);
}

void ServerOfficeRunTest::userIsAdded()
{
    describeUser(u"clara"_s);
    m_screen.key(u"Return"_s);
    QTRY_COMPARE_WITH_TIMEOUT(m_office->text(u"chosenUser"_s), u"CLARA"_s, 30000);
    QCOMPARE(value(u"select Password from harrowby.users where Username = 'CLARA'"_s), u"KEY1"_s);
    QCOMPARE(value(u"select What from harrowby.harrowbyactivity where Kind = 'UserAdded'"_s).left(5), u"CLARA"_s);
}

void ServerOfficeRunTest::openTill()
{
    m_till = std::make_unique<RunningProgram>(m_screen, m_home.path());
    QVERIFY(m_till->start({u"--database"_s, storeOf(u"till"_s)}));
    enter(*m_till, u"Text3"_s, u"clara"_s);
    enter(*m_till, u"Text4"_s, u"KEY1"_s);
    m_screen.key(u"Return"_s);
    QTRY_COMPARE_WITH_TIMEOUT(m_till->text(u"StatusBar1_1"_s), u"User: CLARA"_s, 30000);
}

void ServerOfficeRunTest::sell(const QString &total)
{
    m_till->bringToFront(u"Sales Inventory"_s);
    QVERIFY2(m_till->press(u"Command1_0"_s), qPrintable(m_till->errors()));
    QTRY_COMPARE_WITH_TIMEOUT(m_till->text(u"Label5"_s), total, 30000);
    QVERIFY(m_till->press(u"Command14"_s));
    QVERIFY(m_till->press(u"Yes"_s));
    QTRY_VERIFY_WITH_TIMEOUT(m_till->box().startsWith(u"Items have been purchased!"_s), 90000);
    QVERIFY(m_till->press(u"OK"_s));
    QTRY_COMPARE_WITH_TIMEOUT(m_till->text(u"Label5"_s), u"Total: 0.00"_s, 30000);
}

void ServerOfficeRunTest::import()
{
    QFile list(m_home.filePath(u"prices.csv"_s));
    QVERIFY(list.open(QIODevice::WriteOnly));
    QVERIFY(list.write("StockID,StockName,StockCost\nTEA-0001,TEA,3.75\n") > 0);
    list.close();
    m_office->bringToFront(u"Store"_s);
    m_screen.key(u"alt+g"_s);
    QVERIFY(m_office->press(u"beginImport"_s));
    enter(*m_office, u"fileNameEdit"_s, list.fileName());
    m_screen.key(u"Return"_s);
    for (const QString &step : {u"Step 1"_s, u"Step 2"_s, u"Step 3"_s, u"Step 4"_s}) {
        QTRY_VERIFY2_WITH_TIMEOUT(m_office->text(u"importHeading"_s).startsWith(step),
                                  qPrintable(m_office->text(u"importOutcome"_s)), 30000);
        QVERIFY(m_office->awaitKeysOf(u"importNext"_s));
        m_screen.key(u"Return"_s);
    }
    QTRY_VERIFY2_WITH_TIMEOUT(m_office->has(u"importDone"_s), qPrintable(m_office->text(u"importOutcome"_s)), 60000);
    QVERIFY2(m_office->text(u"importDone"_s).contains(u"1 changed"_s), qPrintable(m_office->text(u"importDone"_s)));
    QVERIFY(m_office->press(u"importNext"_s));
}

void ServerOfficeRunTest::priceIsChangedBesideATill()
{
    const QStringList ofTheOffice = writers();
    openTill();
    sell(u"Total: 2.50"_s);
    // Of one machine and one person: each program counts its own writes, so that none takes another's for its own.
    const QStringList ofBoth = writers();
    QVERIFY2(!ofTheOffice.isEmpty() && ofBoth.size() > ofTheOffice.size(), qPrintable(ofBoth.join(u'\n')));
    for (const QString &writer : ofTheOffice)
        QVERIFY2(ofBoth.contains(writer), qPrintable(writer));
    import();
    QCOMPARE(value(u"select StockCost || ' ' || StockAvailable from harrowby.stocklist"_s), u"3.75 19"_s);
    sell(u"Total: 3.75"_s);
    QCOMPARE(value(u"select StockAvailable from harrowby.stocklist"_s), u"18"_s);
}

void ServerOfficeRunTest::tillEnds()
{
    QCOMPARE(value(u"select count(*) from harrowby.purchasecart"_s), u"2"_s);
    QVERIFY(m_till->press(u"Command10"_s));
    QVERIFY(m_till->press(u"Yes"_s));
    QCOMPARE(m_till->waitForEnd(), 0);
}

/// A dialog stays open over many actions: after one that was in vain the next one finds the server again.
void ServerOfficeRunTest::dialogGoesOnWithTheServer()
{
    describeUser(u"dora"_s);
    m_cluster->kill9();
    QElapsedTimer waited;
    waited.start();
    m_screen.key(u"Return"_s);
    QTRY_VERIFY_WITH_TIMEOUT(m_office->text(u"problem"_s).contains(u"switched on"_s), 60000);
    QVERIFY2(waited.elapsed() < 20000, qPrintable(QString::number(waited.elapsed())));
    m_cluster->start();
    QVERIFY(m_office->press(u"userPasswordAgain"_s));
    // At this very moment the office may reach the server again by itself, under the sign that takes no input.
    const auto isAdded = [this] { return m_office->text(u"chosenUser"_s) == u"DORA"_s; };
    QStringList told;
    for (int presses = 0; presses < 2 && !isAdded(); ++presses) {
        m_screen.key(u"Return"_s);
        (void)QTest::qWaitFor(isAdded, 15000);
        told << m_office->text(u"problem"_s);
    }
    QVERIFY2(isAdded(), qPrintable(told.join(u" | "_s)));
    QCOMPARE(value(u"select count(*) from harrowby.users where Username = 'DORA'"_s), u"1"_s);
}

/// The sign keeps a window manager's closing out, and not the dialog's own.
void ServerOfficeRunTest::dialogGoesAfterItHasWaited()
{
    describeUser(u"fred"_s);
    auto another = std::async(std::launch::async, [this] {
        return m_cluster->trySql(u"begin; lock table harrowby.users; select pg_sleep(1.5); commit"_s);
    });
    const auto isLocked = u"select count(*) from pg_locks where relation = 'harrowby.users'::regclass and mode = "
                          "'AccessExclusiveLock' and granted"_s;
    QTRY_COMPARE(value(isLocked), u"1"_s);
    m_screen.key(u"Return"_s);
    QTRY_COMPARE_WITH_TIMEOUT(m_office->text(u"chosenUser"_s), u"FRED"_s, 15000);
    QVERIFY(another.get());
}

/// The standby that a write waits for is gone, and a person has had enough.
void ServerOfficeRunTest::whatIsNotKnownIsToldAndSettled()
{
    describeUser(u"emil"_s);
    const QPoint password = m_office->awaitPlace(u"userPassword"_s);
    protect(u"waiting"_s);
    m_cluster->demandStandby(true);
    m_screen.key(u"Return"_s);
    // The sign grows by its button, over the dialog's first entries, once the server has been silent for 5 s.
    const QRect besideTheButton(password - QPoint(255, 72), QSize(30, 8));
    QTRY_VERIFY_WITH_TIMEOUT(m_screen.isOfTheSign(besideTheButton), 20000);
    m_screen.key(u"Escape"_s);
    const auto doubt = u"It is not known whether "_s;
    QTRY_VERIFY2_WITH_TIMEOUT(m_office->text(u"problem"_s).contains(doubt + u"the user was added."_s),
                              qPrintable(m_office->text(u"problem"_s)), 30000);
    QVERIFY(m_office->press(u"Cancel"_s));
    QTRY_COMPARE_WITH_TIMEOUT(m_office->text(u"failureWork"_s), doubt + u"a change was saved."_s, 30000);
    m_cluster->demandStandby(false);
    protect(u"single"_s);
    QTRY_VERIFY2_WITH_TIMEOUT(m_office->text(u"failureWork"_s).contains(u"Known now: "_s),
                              qPrintable(m_office->text(u"failureWork"_s)), 60000);
    QCOMPARE(m_office->text(u"failureWork"_s).contains(u" not "_s),
             value(u"select count(*) from harrowby.users where Username = 'EMIL'"_s) == u"0"_s);
}

void ServerOfficeRunTest::ends()
{
    m_office->bringToFront(u"Store"_s);
    QVERIFY(m_office->press(u"closeOffice"_s));
    const int code = m_office->waitForEnd();
    QVERIFY2(code == 0, qPrintable(m_office->errors()));
}

/// A primary that hangs tells nobody. Office and till are with its standby as soon as that has taken over, the till's
/// lock too, before anybody touches them.
void ServerOfficeRunTest::standbyTakesOverInSilence()
{
    m_standby = m_cluster->standby();
    openOffice();
    openTill();
    const auto sessions = u"select count(*) from pg_stat_activity where application_name like 'harrowby%' and usename "
                          "= '%1'"_s;
    const auto locks = u"select count(*) from pg_locks where locktype = 'advisory'"_s;
    QTRY_COMPARE_WITH_TIMEOUT(value(locks), u"1"_s, 30000);
    const QString ofTheTill = value(sessions.arg(u"till"_s));
    const QString ofTheOffice = value(sessions.arg(u"office"_s));
    m_cluster->stop();
    m_standby->promote();
    const auto found = [this](const QString &select) { return m_standby->sql(select).value(0); };
    QTRY_COMPARE_WITH_TIMEOUT(found(locks), u"1"_s, 60000);
    QTRY_COMPARE_WITH_TIMEOUT(found(sessions.arg(u"till"_s)), ofTheTill, 60000);
    QTRY_COMPARE_WITH_TIMEOUT(found(sessions.arg(u"office"_s)), ofTheOffice, 60000);
    sell(u"Total: 3.75"_s);
    QVERIFY(!m_till->has(u"failureNotice"_s));
    QCOMPARE(found(u"select StockAvailable from harrowby.stocklist"_s), u"17"_s);
    describeUser(u"finn"_s);
    m_screen.key(u"Return"_s);
    QTRY_COMPARE_WITH_TIMEOUT(m_office->text(u"chosenUser"_s), u"FINN"_s, 30000);
    QCOMPARE(found(u"select count(*) from harrowby.users where Username = 'FINN'"_s), u"1"_s);
    QVERIFY(!m_office->has(u"failureNotice"_s));
    m_till.reset();
    m_office.reset();
    m_cluster->cont();
}

HARROWBY_TEST(app_server_office_run_test, ServerOfficeRunTest)
#include "server_office_run_test.moc"
