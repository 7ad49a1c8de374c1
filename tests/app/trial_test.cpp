// SPDX-License-Identifier: MIT
#include "tests/app/screen.h"
#include "tests/app/store_files.h"
#include "tests/app/wedge.h"
#include "tests/program/test_program.h"

#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace harrowby::app::test;

/// What a new cashier is shown first, with real keys and fingers: a cart of ten items of which seven have codes, held
/// meanwhile for another customer, and paid in cash.
class TrialTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void tenItemsAndAHeldCustomer();

private:
    void logIn();
    [[nodiscard]] bool shows(const QString &name, const QString &text);
    [[nodiscard]] bool comesTo(const QString &total) { return shows(u"Label5"_s, u"Total: "_s + total); }
    [[nodiscard]] bool scan(const QStringList &codes, const QString &total);
    [[nodiscard]] bool saysAboveTheTotal(const QString &text) { return shows(u"hostBannerText"_s, text); }
    [[nodiscard]] bool focuses(const QString &name);

    QTemporaryDir m_home;
    QString m_store;
    std::unique_ptr<Screen> m_screen;
    std::unique_ptr<Wedge> m_reader;
    std::unique_ptr<RunningProgram> m_program;
};

void TrialTest::initTestCase()
{
    for (const QString &tool : {u"Xvfb"_s, u"openbox"_s, u"xdotool"_s})
        QVERIFY2(!QStandardPaths::findExecutable(tool).isEmpty(), qPrintable(tool + u" is needed"_s));
    m_screen = std::make_unique<Screen>();
    QVERIFY(m_screen->start(u"1024x768"_s));
    m_reader = std::make_unique<Wedge>(m_screen->display());
    m_store = m_home.filePath(u"store.sqlite"_s);
    makeStore(m_store);
    // Nine items for the buttons; the prices tell which ones a total is of.
    QStringList items = {u"UPDATE StockList SET StockUse = 'Disabled'"_s};
    for (int i = 1; i <= 9; ++i)
        items << u"INSERT INTO StockList (StockID, StockName, StockCategory, StockCost, StockReorderLevel, "
                 "StockAvailable, StockUse) VALUES ('ITM-000%1', 'ITEM %1', 'TEA', '%1.10', 1, 50, 'Enabled')"_s.arg(i);
    items
        << u"CREATE TABLE HarrowbyCode (Code text not null primary key, StockID text not null, Units integer not null)"_s;
    const QStringList codes = {u"4006381333931"_s, u"036000291452"_s, u"96385074"_s, u"5901234123457"_s};
    for (int i = 0; i < codes.size(); ++i)
        items << u"INSERT INTO HarrowbyCode VALUES ('%1', 'ITM-000%2', 1)"_s.arg(codes.at(i)).arg(i + 1);
    runAll(m_store, items);
    m_program = std::make_unique<RunningProgram>(*m_screen, m_home.path());
    QVERIFY(m_program->start({u"--database"_s, m_store}));
}

void TrialTest::logIn()
{
    QTRY_COMPARE_WITH_TIMEOUT(m_program->focus(), u"Text3"_s, 60000);
    QVERIFY(m_reader->type(u"administrator\r"_s, 120));
    QTRY_COMPARE_WITH_TIMEOUT(m_program->focus(), u"Text4"_s, 30000);
    QVERIFY(m_reader->type(u"secret\r"_s, 5));
    QTRY_COMPARE_WITH_TIMEOUT(m_program->text(u"StatusBar1_1"_s), u"User: ADMINISTRATOR"_s, 30000);
}

/// What it shows instead is printed.
bool TrialTest::shows(const QString &name, const QString &text)
{
    if (QTest::qWaitFor([&] { return m_program->text(name) == text; }, 30000))
        return true;
    qWarning("%s: %s; %s", qPrintable(name), qPrintable(m_program->text(name)), qPrintable(m_program->box()));
    return false;
}

bool TrialTest::scan(const QStringList &codes, const QString &total)
{
    if (!m_program->awaitKeysOf(u"Command1_0"_s))
        return false;
    for (const QString &code : codes) {
        if (!m_reader->type(code + u'\r', 5, 100))
            return false;
    }
    return comesTo(total);
}

bool TrialTest::focuses(const QString &name)
{
    return QTest::qWaitFor([&] { return m_program->focus() == name; }, 30000);
}

void TrialTest::tenItemsAndAHeldCustomer()
{
    logIn();
    if (QTest::currentTestFailed())
        return;
    // The first customer: four scans, two fingers; then the purse is in the car.
    QVERIFY(scan({u"4006381333931"_s, u"036000291452"_s, u"96385074"_s, u"4006381333931"_s}, u"7.40"_s));
    QVERIFY(m_program->press(u"Command1_5"_s)); // 6.10
    QVERIFY(comesTo(u"13.50"_s));
    QVERIFY(m_program->press(u"Command1_6"_s)); // 7.10
    QVERIFY(comesTo(u"20.60"_s));
    m_screen->key(u"alt+h"_s);
    QVERIFY(focuses(u"heldWord"_s));
    m_screen->key(u"Return"_s);
    QVERIFY(saysAboveTheTotal(u"Held as \"1\"."_s));

    // The next one, by finger alone: a scan, a note, the change.
    QVERIFY(scan({u"5901234123457"_s}, u"4.10"_s));
    QVERIFY(m_program->press(u"payByCash"_s));
    QVERIFY(m_program->press(u"cashNote_0"_s));
    QVERIFY(shows(u"cashChange"_s, u"Change: 0.90"_s));
    QVERIFY(m_program->press(u"payCash"_s));
    QVERIFY(m_program->press(u"Yes"_s));
    QVERIFY(m_program->press(u"OK"_s)); // what was purchased
    QVERIFY(saysAboveTheTotal(u"Change: 0.90"_s));

    // The first one again: three scans, a finger, and cash that is keyed in.
    QVERIFY(m_program->awaitKeysOf(u"recallCart"_s));
    m_screen->key(u"alt+e"_s);
    QVERIFY(focuses(u"list"_s));
    m_screen->key(u"Return"_s);
    QVERIFY(comesTo(u"20.60"_s));
    QVERIFY(scan({u"5901234123457"_s, u"96385074"_s, u"036000291452"_s}, u"29.90"_s));
    QVERIFY(m_program->press(u"Command1_8"_s)); // 9.10
    QVERIFY(comesTo(u"39.00"_s));
    m_screen->key(u"F11"_s);
    QVERIFY(focuses(u"cashGiven"_s));
    QVERIFY(m_reader->type(u"4006381333931\r"_s, 5, 100)); // pays nothing, and is no amount
    m_screen->type(u"5000"_s);
    QVERIFY(shows(u"cashChange"_s, u"Change: 11.00"_s));
    m_screen->key(u"Return"_s);
    QVERIFY(m_program->awaitKeysOf(u"Yes"_s));
    QVERIFY(m_program->box().endsWith(u"Purchased Cart?"_s));
    m_screen->key(u"y"_s);
    QVERIFY(m_program->awaitKeysOf(u"OK"_s));
    QVERIFY(m_program->box().startsWith(u"Items have been purchased!"_s));
    m_screen->key(u"Return"_s);
    QVERIFY(saysAboveTheTotal(u"Change: 11.00"_s));
    QVERIFY(comesTo(u"0.00"_s));

    QCOMPARE(
        column(m_store, u"SELECT PurchasedItemsTotal || ' ' || PurchasedItemsCost FROM PurchaseCart ORDER BY rowid"_s),
        (QStringList{u"1 4.1"_s, u"7 39"_s}));
    QCOMPARE(column(m_store, u"SELECT Way || ' ' || Amount || ' ' || Given || ' ' || State FROM HarrowbyPayment "
                             "ORDER BY TakenAt"_s),
             (QStringList{u"Cash 410 500 PAID"_s, u"Cash 3900 5000 PAID"_s}));
    QCOMPARE(column(m_store, u"SELECT count(*) FROM HarrowbyHeld"_s), QStringList{u"0"_s});
}

HARROWBY_CORE_TEST(app_trial_test, TrialTest)
#include "trial_test.moc"
