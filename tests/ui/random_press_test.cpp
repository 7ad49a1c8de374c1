// SPDX-License-Identifier: MIT
#include "tests/program/test_program.h"
#include "tests/support/counter.h"
#include "tests/ui/random_host.h"
#include "tests/ui/random_user.h"

#include "ui/widgets/row_list.h"
#include "ui/widgets/text_table_model.h"

#include <QApplication>

#include <cstdio>
#include <memory>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::test;

namespace {

constexpr quint32 firstSeed = 1;
constexpr quint32 seeds = 12;
constexpr int actionsOfEach = 450;
/// In a long run only every n-th day is painted, as painting takes half of the time and shows nothing new.
constexpr quint32 paintedDay = 8;
/// Every n-th day nobody but the window stands at the counter.
constexpr quint32 bareDay = 4;

/// A number of the environment, where there is one.
int given(const char *variable, int otherwise)
{
    bool isGiven = false;
    const int value = qEnvironmentVariableIntValue(variable, &isGiven);
    return isGiven ? value : otherwise;
}

} // namespace

/// The real window, used at random. HARROWBY_SEED replays one seed, with HARROWBY_DAYS as many from it on;
/// HARROWBY_ACTIONS says how long each is, HARROWBY_TRACE tells each action.
class RandomPressTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anything_data();
    void anything();
    void cleanupTestCase();

private:
    static void fillShop(const ShopFile &shop);
    static void open(test::Counter &counter, bool painted);
    static void reopen(test::Counter &counter, bool painted);
    void check(test::Counter &counter, RandomUser &user, bool painted);

    bool m_hadNameless = false; ///< the shop of the day, an item without ID and name
    int m_days = 0;
    // On all days
    int m_actions = 0;
    int m_boxes = 0;
    int m_nested = 0;
    int m_windows = 0; ///< the host's
    RandomHost::Figures m_figures;
};

void RandomPressTest::anything_data()
{
    QTest::addColumn<quint32>("seed");
    const bool replays = qEnvironmentVariableIsSet("HARROWBY_SEED");
    const auto first = static_cast<quint32>(given("HARROWBY_SEED", static_cast<int>(firstSeed)));
    const auto days = static_cast<quint32>(given("HARROWBY_DAYS", replays ? 1 : static_cast<int>(seeds)));
    for (quint32 seed = first; seed < first + days; ++seed)
        QTest::addRow("HARROWBY_SEED=%u", seed) << seed;
}

void RandomPressTest::fillShop(const ShopFile &shop)
{
    shop.sql(u"PRAGMA synchronous = OFF; UPDATE StoreSettings SET ShowDetails = 1, Promptreorder = 1"_s);
    shop.addUser(u"JANE"_s, u"PASS"_s, {u"Sales"_s, u"Reorder"_s});
    shop.addUser(u"JOHN"_s, u"PASS"_s, {u"Sales"_s, u"Report"_s, u"Undo"_s, u"Delete"_s, u"Settings"_s});
    for (int i = 0; i < 30; ++i)
        shop.addItem(u"A%1"_s.arg(i), u"ITEM %1"_s.arg(10 + i), 1.5 * i, i, i % 3 == 0 ? u"SNACKS"_s : u"TEA"_s);
    shop.addItem(u"*STAR*"_s, u"*STAR*"_s, 2, 20, u"TEA"_s);
    shop.sql(u"INSERT INTO PurchaseCart VALUES "
             "('HV1', '1 x A1  |  ITEM 11 = 1.50, 2 x A20  |  ITEM 30 = 60.00', 2, 61.5, '180301', 'JANE'), "
             "('HV2', 'ITEM x , ', 30000, 'few', NULL, NULL)"_s);
    for (const char *category : {"TEA", "SNACKS", "OTHER"})
        shop.sql(u"INSERT INTO InventoryCategory VALUES (%1, '')"_s.arg(quoted(QString::fromLatin1(category))));
}

void RandomPressTest::open(test::Counter &counter, bool painted)
{
    counter.open();
    counter.window().setUpdatesEnabled(painted);
}

void RandomPressTest::reopen(test::Counter &counter, bool painted)
{
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    if (!counter.isOpen())
        open(counter, painted);
}

void RandomPressTest::check(test::Counter &counter, RandomUser &user, bool painted)
{
    user.calmDown();
    reopen(counter, painted);
    QCOMPARE(user.strangeBoxes(), QStringList());
    QVERIFY(QApplication::activeModalWidget() == nullptr);
    QCOMPARE(counter.file.cell(u"PRAGMA integrity_check"_s), u"ok"_s);
    const FormState &state = counter.state();
    if (state.login.IsLoggedIn)
        QCOMPARE(counter.text("StatusBar1_1"), u"User: "_s + state.login.LoggedUser);
    QCOMPARE(counter.find("Frame12")->isVisible(), !state.login.IsLoggedIn);
    QVERIFY(counter.window().isVisible());
    QVERIFY(counter.text("Label5").startsWith(u"Total: "_s));
    QVERIFY(state.QuickSalesOffset >= 0 && state.QuickSalesOffset % 9 == 0);
    // An item without ID and name is sold under any text without a separator.
    const QString nameless = u"SELECT count(*) FROM StockList WHERE StockID = '' AND StockName = ''"_s;
    m_hadNameless = m_hadNameless || counter.file.cell(nameless) != u"0"_s;
    const TextTableModel &cart = counter.find<RowList>("LV3")->rows();
    for (int row = 0; row < cart.rowCount(); ++row) {
        for (int column = 0; column < 3; ++column)
            QVERIFY(!cart.text(row, column).isEmpty());
        QVERIFY(m_hadNameless || cart.text(row, 0).contains(u"  |  "_s));
    }
}

void RandomPressTest::anything()
{
    QFETCH(quint32, seed);
    const int actions = given("HARROWBY_ACTIONS", actionsOfEach);
    // Printed before the day, as a crash prints nothing.
    std::printf("HARROWBY_SEED=%u HARROWBY_ACTIONS=%d\n", seed, actions);
    std::fflush(stdout);
    const bool painted = !qEnvironmentVariableIsSet("HARROWBY_DAYS") || seed % paintedDay == 0;
    test::Counter counter;
    fillShop(counter.file);
    m_hadNameless = false;
    const auto host = seed % bareDay == 0 ? nullptr : std::make_unique<RandomHost>(counter);
    open(counter, painted);
    RandomUser user(counter, host.get(), seed);
    for (int action = 1; action <= actions; ++action) {
        user.act();
        reopen(counter, painted);
        if (action % 25 == 0 || action == actions)
            check(counter, user, painted);
        if (host)
            QCOMPARE(host->problems().join(u'\n'), QString());
        if (QTest::currentTestFailed()) {
            std::printf("failed; replay with HARROWBY_SEED=%u HARROWBY_ACTIONS=%d\n", seed, action);
            return;
        }
    }
    // A day without a sale would prove nothing; of thousands a few may have none.
    if (!qEnvironmentVariableIsSet("HARROWBY_DAYS")) {
        QVERIFY(user.boxes() * 10 > actions);
        QVERIFY(user.nested() * 20 > actions);
    }
    ++m_days;
    m_actions += actions;
    m_boxes += user.boxes();
    m_nested += user.nested();
    m_windows += user.windows();
    if (host) {
        QCOMPARE(host->problemsOfTheDay().join(u'\n'), QString());
        m_figures += host->figures();
    }
}

void RandomPressTest::cleanupTestCase()
{
    std::printf("%d days, %d actions, %d boxes, %d actions within another, %d windows of the host\n", m_days, m_actions,
                m_boxes, m_nested, m_windows);
    std::printf("%d codes sold, %d refused, %d carts held, %d recalled, %d paid by hand\n", m_figures.sold,
                m_figures.refused, m_figures.held, m_figures.recalled, m_figures.paid);
    QVERIFY(m_boxes * 10 >= m_actions);
    QVERIFY(m_nested * 20 >= m_actions);
    if (m_days < static_cast<int>(seeds))
        return;
    QVERIFY(m_windows > m_days);
    for (const int figure : {m_figures.sold, m_figures.refused, m_figures.held, m_figures.recalled, m_figures.paid})
        QVERIFY(figure > m_days);
}

HARROWBY_TEST(random_press_test, RandomPressTest)
#include "random_press_test.moc"
