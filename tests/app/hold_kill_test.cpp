// SPDX-License-Identifier: MIT
#include "app/hold/cart_holder.h"
#include "app/records/sqlite_records.h"
#include "tests/app/kill_steps.h"
#include "tests/doubles/database.h"
#include "tests/doubles/shop_file.h"
#include "tests/program/test_program.h"
#include "tests/support/forked_process.h"
#include "tests/support/till.h"

#include <QMap>
#include <QTemporaryDir>

#include <sqlite3.h>

#include <memory>

#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::test;

namespace {

constexpr int cartLines = 3;

/// Tells what is in the counter's cart.
void sayCart()
{
    say(u"CART %1"_s.arg(harrowby::Counter::instance().cart().size()));
}

/// A cart of three lines at the counter, or held as "1".
enum class Begin { InTheCart, Held };

HeldCart onlyOneOf(HeldCarts &carts)
{
    const auto list = carts.list();
    return list && list->size() == 1 ? list->constFirst() : HeldCart();
}

/// A till at the file, with somebody logged in.
struct OpenTill
{
    explicit OpenTill(const QString &path) : database(path), till(database.handle()), records(database.handle())
    {
        sqlite3_busy_timeout(database.handle(), 20'000);
        database.run(u"PRAGMA journal_mode = WAL"_s); // as the store program has it, and tells of each commit
        till.logIn(u"JACK"_s, u"PASS"_s);
    }

    test::Database database;
    Till till;
    SqliteRecords records;
    HeldCarts carts{records};
    CartHolder holder{harrowby::Counter::instance(), carts};
    std::vector<CounterMisfit> misfits;
};

bool fillCart()
{
    for (int item = 0; item < cartLines; ++item) {
        if (harrowby::Counter::instance().sell(u"A%1"_s.arg(item), item + 1) != CounterAnswer::Done)
            return false;
    }
    return true;
}

int work(const QString &path, Begin begin, int killAt)
{
    OpenTill open(path);
    KillSteps steps{killAt, sayCart};
    bool done = false;
    if (begin == Begin::InTheCart) {
        if (!fillCart())
            return 1;
        steps.watch(open.database.handle());
        done = open.holder.hold(u"1"_s) == CartHolder::Held::Done;
    } else {
        const HeldCart held = onlyOneOf(open.carts);
        steps.watch(open.database.handle());
        done = open.holder.recall(held, open.misfits) == HeldCarts::Taken::Done && open.misfits.empty();
    }
    steps.step();
    return done ? 0 : 1;
}

/// Takes whatever is held, until nothing is left.
int takeAll(const QString &path)
{
    test::Database database(path);
    sqlite3_busy_timeout(database.handle(), 20'000);
    SqliteRecords records(database.handle());
    HeldCarts carts(records);
    for (;;) {
        const auto all = carts.list();
        if (!all)
            return 1;
        if (all->isEmpty())
            return 0;
        for (const HeldCart &cart : *all) {
            const auto taken =
                carts.take(cart, [](const std::vector<CounterLine> &lines) { return lines.size() == cartLines; });
            if (taken == HeldCarts::Taken::Done) {
                say(u"GOT "_s + cart.word);
                ::usleep(1000); // so that the other one gets some, too
            } else if (taken != HeldCarts::Taken::Gone)
                return 2;
        }
    }
}

QByteArray everythingSaid(ForkedProcess &process)
{
    QByteArray said;
    for (QByteArray more = process.read(); !more.isEmpty(); more = process.read())
        said += more;
    return said;
}

} // namespace

/// A till is killed while a cart goes from the counter into the file or back: it is in one of the two.
class HoldKillTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void killedTillLosesNoCart_data();
    void killedTillLosesNoCart();
    void eachCartIsRecalledOnce();

private:
    void holdOne(const QString &word) const;
    /// Lines of the one cart that is held; 0 when none is, -1 when it is not whole.
    [[nodiscard]] int heldLines() const;
    [[nodiscard]] QString path() const { return m_folder->filePath(u"shop.sqlite"_s); }

    std::unique_ptr<QTemporaryDir> m_folder;
};

void HoldKillTest::initTestCase()
{
    // What is copied has opened a window once.
    (void)harrowby::Counter::instance();
    const ShopFile shop;
    const Till till(shop.path());
}

void HoldKillTest::init()
{
    const ShopFile shop;
    shop.sql(u"INSERT INTO StoreSettings VALUES (0, 0, '', 0, 0)"_s);
    shop.addUser(u"JACK"_s, u"PASS"_s, {u"Sales"_s});
    for (int i = 0; i < cartLines; ++i)
        shop.addItem(u"A%1"_s.arg(i), u"NAME OF A%1"_s.arg(i), 1.25, 1000);
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(test::Database(path()).copy(test::Database(shop.path())));
}

void HoldKillTest::holdOne(const QString &word) const
{
    test::Database database(path());
    SqliteRecords records(database.handle());
    std::vector<CounterLine> lines;
    lines.reserve(cartLines);
    for (int i = 0; i < cartLines; ++i)
        lines.push_back({u"A%1"_s.arg(i), u"NAME OF A%1"_s.arg(i), i + 1.0, 1.25 * (i + 1), false});
    QVERIFY(HeldCarts(records).hold({word, u"JACK"_s, lines, 7.5}));
}

int HoldKillTest::heldLines() const
{
    test::Database database(path());
    SqliteRecords records(database.handle());
    HeldCarts carts(records);
    const HeldCart held = onlyOneOf(carts);
    int count = 0;
    if (!held.id.isEmpty())
        (void)carts.take(held, [&](const std::vector<CounterLine> &lines) {
            count = lines.size() == cartLines ? cartLines : -1;
            return false;
        });
    return count;
}

void HoldKillTest::killedTillLosesNoCart_data()
{
    QTest::addColumn<bool>("isHeld");
    QTest::newRow("hold") << false;
    QTest::newRow("recall") << true;
}

void HoldKillTest::killedTillLosesNoCart()
{
    QFETCH(const bool, isHeld);
    const Begin begin = isHeld ? Begin::Held : Begin::InTheCart;
    QMap<QString, int> places;
    bool wentThrough = false;
    for (int killAt = 0; !wentThrough; ++killAt) {
        init();
        if (isHeld)
            holdOne(u"1"_s);
        ForkedProcess till([&] { return work(path(), begin, killAt); });
        const QByteArray said = everythingSaid(till);
        till.kill();
        wentThrough = till.hasEnded();
        const bool inCart = said.trimmed().endsWith(QByteArray("CART ") + QByteArray::number(cartLines));
        const int held = heldLines();
        QVERIFY2(held == 0 || held == cartLines, "a cart is held in part");
        QVERIFY2(inCart || held > 0, qPrintable(u"gone, at step %1"_s.arg(killAt)));
        ++places[inCart ? held > 0 ? u"both"_s : u"cart"_s : u"held"_s];
        QVERIFY2(killAt < 100, "it never ends");
    }
    qInfo() << places;
    // Between commit and emptied cart, and within the recall's transaction: the killed till's cart was in both.
    QVERIFY(places.value(u"both"_s) > 0);
    QVERIFY(isHeld ? places.value(u"cart"_s) > 0 : places.value(u"held"_s) > 0);
}

void HoldKillTest::eachCartIsRecalledOnce()
{
    constexpr int held = 40;
    for (int i = 0; i < held; ++i)
        holdOne(QString::number(i));
    ForkedProcess one([&] { return takeAll(path()); });
    ForkedProcess other([&] { return takeAll(path()); });
    QStringList got = QString::fromUtf8(everythingSaid(one)).split(u'\n', Qt::SkipEmptyParts);
    const qsizetype first = got.size();
    got += QString::fromUtf8(everythingSaid(other)).split(u'\n', Qt::SkipEmptyParts);
    qInfo() << first << "and" << got.size() - first;
    QCOMPARE(got.size(), held);
    QCOMPARE(got.removeDuplicates(), 0);
}

HARROWBY_TEST(app_hold_kill_test, HoldKillTest)
#include "hold_kill_test.moc"
