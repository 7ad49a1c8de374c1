// SPDX-License-Identifier: MIT
#include "tests/doubles/private_cluster.h"
#include "tests/doubles/server_shop.h"
#include "tests/program/test_program.h"
#include "tests/support/counter.h"
#include "tests/support/till.h"
#include "tests/ui/given_up.h"

#include "app/server/sale_follower.h"
#include "app/shop/failure_notice.h"
#include "store/statement_texts.h"

#include <harrowby/counter.h>
#include <harrowby/postgres_connection.h>

#include <QApplication>
#include <QEventLoop>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QSet>
#include <QTimer>

#include <chrono>

#include <poll.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::test;

namespace {

constexpr int sellers = 4;
constexpr int startingStock = 1'000'000;
constexpr int usualRounds = 5;
constexpr int salesBetween = 40;              ///< of each seller, before the next kill
constexpr qint64 mostMsToAWrite = 1'000;      ///< of the quickest
constexpr qint64 mostMsToEachsWrite = 10'000; ///< of every one, the till among them
constexpr int comesBackMs = 10'000;           ///< a cart: its item is looked for, in vain where no server is there
constexpr int hangMs = 120'000;
const QString tillsUser = u"JACK"_s;

qint64 msOf(std::chrono::steady_clock::time_point moment)
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(moment.time_since_epoch()).count();
}

qint64 nowMs()
{
    return msOf(std::chrono::steady_clock::now());
}

/// Whether the test has ended this process's input.
bool isToldToStop()
{
    pollfd input{STDIN_FILENO, POLLIN, 0};
    return ::poll(&input, 1, 0) > 0;
}

/// "D" (done), "R" (refused for certain) or "U" (unknown), when, and what.
void tell(const DbConnection &connection, bool done, const QString &what)
{
    const QString outcome = done ? u"D"_s : (connection.lastWrite() == WriteOutcome::Unknown ? u"U"_s : u"R"_s);
    say(outcome + u' ' + QString::number(nowMs()) + u' ' + what);
}

/// A process without a window: adds purchases and lowers the stock of the item that is called like it.
int sell(const QString &path, const QString &name)
{
    const std::shared_ptr<DbConnection> connection = connectToServer(path, {});
    say(u"ready"_s);
    for (int sale = 1; !isToldToStop(); ++sale) {
        dynamic_cast<PostgresConnection &>(*connection).beginAction();
        const QString id = u"%1-%2"_s.arg(name).arg(sale);
        tell(*connection, connection->insertRow(u"PurchaseCart"_s, {{u"PurchaseID"_s, id}, {u"Users"_s, name}}), id);
        tell(*connection, connection->Execute(statements::lowerStock(1, name, name).sql()), u"stock"_s);
    }
    return 0;
}

/// A person's next action begins when the event loop has waited for it, and has its full time.
void awaitNextAction()
{
    QEventLoop loop;
    QTimer::singleShot(1, &loop, &QEventLoop::quit);
    loop.exec();
}

/// Commits the cart. As in the program, one of which nothing was written comes back.
void commit(Till &till, bool &hasFailed)
{
    say(u"P"_s);
    hasFailed = false;
    till.purchaseAtOnce();
    awaitNextAction();
    if (!hasFailed)
        say(u"T "_s + QString::number(nowMs()));
    else if (!QTest::qWaitFor([&] { return till.hasCart(); }, comesBackMs))
        say(u"No cart comes back"_s);
}

/// A process with the real window, which sells one unit of its first button's item after the other. What it says is for
/// givenUp(), and "T" when it has sold.
int sellAtTheTill(const QString &path)
{
    Till till(path, Till::Pace::Hurried);
    app::FailureNotice notice;
    app::SaleFollower follower(harrowby::Counter::instance(), notice);
    bool hasFailed = false;
    till.followFailures([&](const DbFailure &failure, WriteOutcome outcome) {
        hasFailed = hasFailed || failure.kind == DbFailure::Kind::Write;
        follower.note(failure, outcome);
    });
    till.reportStatements();
    till.logIn(tillsUser, u"PASS"_s);
    if (!till.state().login.IsLoggedIn)
        return 1;
    say(u"ready"_s);
    int lastPresses = 20;
    while (!isToldToStop() || (till.hasCart() && lastPresses-- > 0)) {
        if (till.hasCart()) {
            commit(till, hasFailed);
            continue;
        }
        say(u"L"_s);
        till.choose(0);
        if (till.hasCart())
            say(u"S"_s);
        awaitNextAction();
    }
    return 0;
}

/// Says what the till that has told this has given up; 1 when there is something.
int judgeTill(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return 2;
    const QStringList all = givenUp(file.readAll());
    for (const QString &one : all)
        say(one);
    return all.isEmpty() ? 0 : 1;
}

/// One of these processes.
class Seller
{
public:
    Seller(const QString &role, const QString &path, const QString &name) : m_name(name)
    {
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        QObject::connect(&m_process, &QProcess::readyReadStandardOutput,
                         [this] { m_output += m_process.readAllStandardOutput(); });
        m_process.start(QCoreApplication::applicationFilePath(), {u"failover_test"_s, role, path, name});
    }

    [[nodiscard]] const QString &name() const { return m_name; }
    [[nodiscard]] bool isReady() const { return m_output.startsWith("ready\n") || m_output.contains("\nready\n"); }
    /// How many writes have been done.
    [[nodiscard]] qsizetype done() const { return m_output.count("\nD ") + m_output.count("\nA1 "); }
    [[nodiscard]] const QByteArray &output() const { return m_output; }
    [[nodiscard]] QString latest() const { return QString::fromUtf8(m_output.last(qMin(m_output.size(), 3'000))); }
    /// What was told with this outcome.
    [[nodiscard]] QStringList told(char outcome) const
    {
        QStringList all;
        for (const QByteArray &line : m_output.split('\n')) {
            if (line.startsWith(QByteArray(1, outcome) + ' '))
                all << QString::fromUtf8(line).section(u' ', 2);
        }
        return all;
    }
    /// When the first write was done from then on, or the first sale of the till; negative when none was.
    [[nodiscard]] qint64 firstDoneAfter(qint64 moment) const
    {
        for (const QByteArray &line : m_output.split('\n')) {
            if ((line.startsWith("D ") || line.startsWith("T ")) && line.split(' ').at(1).toLongLong() >= moment)
                return line.split(' ').at(1).toLongLong();
        }
        return -1;
    }
    [[nodiscard]] int finish()
    {
        m_process.closeWriteChannel();
        if (m_process.state() != QProcess::NotRunning && !m_process.waitForFinished(hangMs))
            return -1;
        m_output += m_process.readAllStandardOutput();
        return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
    }

private:
    QString m_name;
    QProcess m_process;
    QByteArray m_output;
};

int unitsLowered(const QStringList &statements)
{
    static const QRegularExpression lowering(u"^Update Stocklist Set StockAvailable = StockAvailable - (\\d+) "_s);
    int units = 0;
    for (const QString &statement : statements)
        units += lowering.match(statement).captured(1).toInt();
    return units;
}

} // namespace

/// The whole primary is killed under selling tills, its standby takes over, and the dead one comes back as the standby.
class FailoverTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatIsGivenUp_data();
    void whatIsGivenUp();
    void nothingIsLostOrDoubled();

private:
    void fillShop();
    void failOver();
    void awaitSales();
    void checkSeller(const Seller &seller);
    void checkTill(const Seller &till);
    [[nodiscard]] int stockOf(const QString &id);
    [[nodiscard]] PrivateCluster &primary() { return *m_servers.at(m_primary); }

    std::vector<std::unique_ptr<PrivateCluster>> m_servers;
    std::size_t m_primary = 0;
    std::vector<std::unique_ptr<Seller>> m_sellers;
    qint64 m_longest = 0; ///< from a promotion to the first write, in milliseconds
};

void FailoverTest::fillShop()
{
    setUpShop(primary(), u"shop"_s);
    const QString item = u"INSERT INTO harrowby.StockList VALUES ('%1','%1','TEA',1,0,%2,'Enabled')"_s;
    primary().sql(item.arg(u"A"_s).arg(startingStock)); // the till's: the first button
    for (int seller = 0; seller < sellers; ++seller)
        primary().sql(item.arg(u"S%1"_s.arg(seller)).arg(startingStock));
    primary().sql(u"INSERT INTO harrowby.Users VALUES ('%1','PASS','STAFF',-1,-1,0,0,0,0,0)"_s.arg(tillsUser));
    primary().sql(u"INSERT INTO harrowby.StoreSettings VALUES (0, 0, '', 0, 0)"_s);
}

/// Until each has sold some more.
void FailoverTest::awaitSales()
{
    for (const auto &seller : m_sellers) {
        const qsizetype before = seller->done();
        const auto hasSold = [&] { return seller->done() >= before + salesBetween; };
        QVERIFY2(QTest::qWaitFor(hasSold, hangMs),
                 qPrintable(seller->name() + u" sells no more:\n"_s + seller->latest()));
    }
}

void FailoverTest::failOver()
{
    awaitSales();
    if (QTest::currentTestFailed())
        return;
    PrivateCluster &dead = primary();
    m_primary = 1 - m_primary;
    dead.kill9();
    const qint64 promoted = msOf(primary().promote());
    awaitSales();
    if (QTest::currentTestFailed())
        return;
    qint64 first = std::numeric_limits<qint64>::max();
    for (const auto &seller : m_sellers) {
        const qint64 done = seller->firstDoneAfter(promoted);
        QVERIFY2(done >= 0 && done - promoted <= mostMsToEachsWrite, qPrintable(seller->name()));
        first = qMin(first, done);
    }
    m_longest = qMax(m_longest, first - promoted);
    QVERIFY(first - promoted <= mostMsToAWrite);
    dead.follow(primary());
}

int FailoverTest::stockOf(const QString &id)
{
    return primary()
        .sql(u"SELECT StockAvailable FROM harrowby.StockList WHERE StockID = '%1'"_s.arg(id))
        .value(0)
        .toInt();
}

void FailoverTest::checkSeller(const Seller &seller)
{
    QCOMPARE(seller.told('U'), QStringList());
    QCOMPARE(seller.told('R'), QStringList());
    QStringList done = seller.told('D');
    const auto lowered = done.removeAll(u"stock"_s);
    QCOMPARE(QSet<QString>(done.begin(), done.end()).size(), done.size());
    done.sort();
    QStringList stored =
        primary().sql(u"SELECT PurchaseID FROM harrowby.PurchaseCart WHERE Users = '%1'"_s.arg(seller.name()));
    stored.sort();
    QCOMPARE(stored, done);
    QCOMPARE(stockOf(seller.name()), startingStock - static_cast<int>(lowered));
}

void FailoverTest::checkTill(const Seller &till)
{
    TillReport report;
    report.read(till.output());
    QCOMPARE(givenUp(till.output()), QStringList());
    QCOMPARE(report.underWay, QString());
    QCOMPARE(stockOf(u"A"_s), startingStock - unitsLowered(report.done));
    const qsizetype purchases = report.done.filter(QRegularExpression(u"^INSERT INTO PurchaseCart"_s)).size();
    QVERIFY(purchases > 0);
    QCOMPARE(primary().sql(u"SELECT count(*) FROM harrowby.PurchaseCart WHERE Users = '%1'"_s.arg(tillsUser)),
             QStringList{QString::number(purchases)});
}

void FailoverTest::whatIsGivenUp_data()
{
    QTest::addColumn<QByteArray>("told");
    QTest::addColumn<QStringList>("expected");
    const QByteArray begun = "L\nA1 INSERT INTO SysUsage 1\nS\nP\n";
    const QByteArray line = " Update Stocklist Set\n";
    const QByteArray row = " INSERT INTO PurchaseCart (\n";
    const QByteArray entry = " INSERT INTO SysUsage 2\n";
    const QByteArray sold = "A1" + line + "A1" + row + "A1" + entry;
    const QByteArray refused = "A0" + line + "A0" + row + "A0" + entry;
    const QString cut = u"sale 1 is cut in two, without: "_s;
    QTest::newRow("sold") << QByteArray("ready\n" + begun + sold + "T 5\n" + begun + sold) << QStringList();
    QTest::newRow("sold by a later press")
        << QByteArray(begun + refused + "P\n" + refused + "P\n" + sold + begun + sold) << QStringList();
    QTest::newRow("an item that was not found") << QByteArray("L\nL\n" + begun + sold) << QStringList();
    QTest::newRow("a choice that was not logged")
        << QByteArray(begun + sold + "L\nA0 INSERT INTO SysUsage 1\nS\nP\n" + sold) << QStringList();
    QTest::newRow("the row is missing") << QByteArray(begun + "A1" + line + "A0" + row + begun + sold)
                                        << QStringList{cut + u"INSERT INTO PurchaseCart ("_s};
    QTest::newRow("the line is missing") << QByteArray(begun + "A0" + line + "A1" + row + "A1" + entry)
                                         << QStringList{cut + u"Update Stocklist Set"_s};
    QTest::newRow("what was done is not logged") << QByteArray(begun + "A1" + line + "A1" + row + "A0" + entry)
                                                 << QStringList{cut + u"INSERT INTO SysUsage 2"_s};
    QTest::newRow("the cart is gone") << QByteArray(begun + refused + begun + sold)
                                      << QStringList{u"sale 1 is gone from the cart"_s};
    QTest::newRow("never sold") << QByteArray(begun + sold + begun + refused)
                                << QStringList{u"sale 2 is in the cart still"_s};
    QTest::newRow("not known") << QByteArray(begun + "A1" + line + "AU" + row + begun + sold)
                               << QStringList{u"not known, at sale 1: INSERT INTO PurchaseCart ("_s};
}

void FailoverTest::whatIsGivenUp()
{
    QFETCH(QByteArray, told);
    QFETCH(QStringList, expected);
    QCOMPARE(givenUp(told), expected);
}

void FailoverTest::nothingIsLostOrDoubled()
{
    m_servers.push_back(std::make_unique<PrivateCluster>());
    primary().start();
    fillShop();
    m_servers.push_back(primary().standby());
    const QString path =
        u"postgresql://postgres@127.0.0.1:%1,127.0.0.1:%2/shop"_s.arg(m_servers[0]->port()).arg(m_servers[1]->port());
    for (int seller = 0; seller < sellers; ++seller)
        m_sellers.push_back(std::make_unique<Seller>(u"--sell"_s, path, u"S%1"_s.arg(seller)));
    m_sellers.push_back(std::make_unique<Seller>(u"--till"_s, path, tillsUser));
    for (const auto &seller : m_sellers)
        QTRY_VERIFY_WITH_TIMEOUT(seller->isReady(), hangMs);

    bool isSet = false;
    const int rounds = qEnvironmentVariableIntValue("HARROWBY_ROUNDS", &isSet);
    const int all = isSet ? rounds : usualRounds;
    for (int round = 0; round < all; ++round) {
        failOver();
        if (QTest::currentTestFailed())
            return;
    }
    for (const auto &seller : m_sellers)
        QCOMPARE(seller->finish(), 0);
    for (int seller = 0; seller < sellers; ++seller)
        checkSeller(*m_sellers[static_cast<std::size_t>(seller)]);
    checkTill(*m_sellers.back());
    qsizetype writes = 0;
    for (const auto &seller : m_sellers)
        writes += seller->done();
    m_sellers.clear();
    qInfo("%d failovers, %lld writes, the first one at most %lld ms after a promotion", all,
          static_cast<long long>(writes), static_cast<long long>(m_longest));
}

int failover_test(int argc, char **argv)
{
    const QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (argc == 4 && arguments.at(1) == u"--sell"_s)
        return sell(arguments.at(2), arguments.at(3));
    if (argc == 4 && arguments.at(1) == u"--till"_s)
        return sellAtTheTill(arguments.at(2));
    if (argc == 3 && arguments.at(1) == u"--judge"_s)
        return judgeTill(arguments.at(2));
    FailoverTest test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}

#include "failover_test.moc"
