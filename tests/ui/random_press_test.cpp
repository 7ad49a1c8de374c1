// SPDX-License-Identifier: MIT
#include "support/counter.h"
#include "ui/random_user.h"

#include "ui/widgets/row_list.h"
#include "ui/widgets/text_table_model.h"

#include <QApplication>

#include <cstdio>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::test;

namespace {

constexpr quint32 firstSeed = 1;
constexpr quint32 seeds = 12;
constexpr int actionsOfEach = 450;

/// A number of the environment, where there is one.
int given(const char *variable, int otherwise)
{
    bool isGiven = false;
    const int value = qEnvironmentVariableIntValue(variable, &isGiven);
    return isGiven ? value : otherwise;
}

} // namespace

/// The real window, used at random. HARROWBY_SEED replays one seed, HARROWBY_ACTIONS says how long,
/// HARROWBY_TRACE tells each action.
class RandomPressTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anything_data();
    void anything();
    void cleanupTestCase();

private:
    static void fillShop(const ShopFile &shop);
    static void reopen(Counter &counter);
    static void check(Counter &counter, RandomUser &user);

    int m_days = 0;
    int m_windows = 0; ///< the host's that were opened on all days
};

void RandomPressTest::anything_data()
{
    QTest::addColumn<quint32>("seed");
    const bool replays = qEnvironmentVariableIsSet("HARROWBY_SEED");
    const auto first = static_cast<quint32>(given("HARROWBY_SEED", int(firstSeed)));
    for (quint32 seed = first; seed < first + (replays ? 1 : seeds); ++seed)
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

void RandomPressTest::reopen(Counter &counter)
{
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    if (!counter.isOpen())
        counter.open();
}

void RandomPressTest::check(Counter &counter, RandomUser &user)
{
    user.calmDown();
    reopen(counter);
    QCOMPARE(user.strangeBoxes(), QStringList());
    QVERIFY(QApplication::activeModalWidget() == nullptr);
    QCOMPARE(counter.file.cell(u"PRAGMA integrity_check"_s), u"ok"_s);
    const FormState &state = counter.state();
    if (state.IsLoggedIn)
        QCOMPARE(counter.text("StatusBar1_1"), u"User: "_s + state.LoggedUser);
    QCOMPARE(counter.find("Frame12")->isVisible(), !state.IsLoggedIn);
    QVERIFY(counter.window().isVisible());
    QVERIFY(counter.text("Label5").startsWith(u"Total: "_s));
    QVERIFY(state.QuickSalesOffset >= 0 && state.QuickSalesOffset % 9 == 0);
    const TextTableModel &cart = counter.find<RowList>("LV3")->rows();
    for (int row = 0; row < cart.rowCount(); ++row) {
        for (int column = 0; column < 3; ++column)
            QVERIFY(!cart.text(row, column).isEmpty());
        QVERIFY(cart.text(row, 0).contains(u"  |  "_s));
    }
}

void RandomPressTest::anything()
{
    QFETCH(quint32, seed);
    const int actions = given("HARROWBY_ACTIONS", actionsOfEach);
    // Here already, as a crash says nothing.
    std::printf("HARROWBY_SEED=%u HARROWBY_ACTIONS=%d\n", seed, actions);
    std::fflush(stdout);
    Counter counter;
    fillShop(counter.file);
    counter.open();
    RandomUser user(counter, seed);
    for (int action = 1; action <= actions; ++action) {
        user.act();
        reopen(counter);
        if (action % 25 == 0 || action == actions)
            check(counter, user);
        if (QTest::currentTestFailed()) {
            std::printf("failed; replay with HARROWBY_SEED=%u HARROWBY_ACTIONS=%d\n", seed, action);
            return;
        }
    }
    // A day on which nothing happens proves nothing.
    QVERIFY(user.boxes() * 10 > actions);
    QVERIFY(user.nested() * 20 > actions);
    ++m_days;
    m_windows += user.windows();
}

void RandomPressTest::cleanupTestCase()
{
    if (m_days == int(seeds))
        QVERIFY(m_windows > m_days);
}

QTEST_MAIN(RandomPressTest)
#include "random_press_test.moc"
