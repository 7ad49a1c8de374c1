// SPDX-License-Identifier: MIT
#include "app/server/sale_follower.h"
#include "app/shop/failure_notice.h"
#include "plugins/server/postgres_records.h"
#include "plugins/server/postgres_store.h"
#include "tests/app/hold_till.h"
#include "tests/doubles/private_cluster.h"
#include "tests/doubles/proxy.h"
#include "tests/doubles/server_shop.h"
#include "tests/program/test_program.h"

#include <harrowby/counter.h>

#include <QLabel>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::app::test;
using namespace std::chrono_literals;

/// The server is lost in the very commit by which a cart is held or comes back: the cart is at the counter, nobody
/// knows whether it is on the list as well, and it is told as that until somebody does.
class HoldLostTest : public HoldTill
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void holdIsToldAndSettled_data() { addEnds(); }
    void holdIsToldAndSettled();
    void recallIsToldAndSettled_data() { addEnds(); }
    void recallIsToldAndSettled();
    void nextStartTells_data() { addEnds(); }
    void nextStartTells();

private:
    static void addEnds();
    void openStore();
    /// Pulls the cable at the next commit: with its answer, or before it is there.
    void loseCommit(bool isDone);
    void plugIn();
    void holdUnknown(bool isDone);
    [[nodiscard]] QString told(const char *label) const
    {
        return m_notice->isHidden() ? QString() : m_notice->findChild<QLabel *>(QLatin1StringView(label))->text();
    }

    std::unique_ptr<harrowby::test::Proxy> m_cable;
    std::unique_ptr<QTemporaryDir> m_state; ///< of this till
    std::unique_ptr<FailureNotice> m_notice;
    std::unique_ptr<SaleFollower> m_follower;
    std::unique_ptr<server::PostgresStore> m_store;
    std::unique_ptr<Records> m_tillsRecords; ///< over the cable
    std::unique_ptr<HoldDesk> m_tillsDesk;
    bool m_isLost = false; ///< and then given up at once
};

void HoldLostTest::initTestCase()
{
    if (const QString missing = harrowby::test::PrivateCluster::missing(); !missing.isEmpty())
        QSKIP(qPrintable(missing));
}

void HoldLostTest::init()
{
    HoldTill::init();
    m_isLost = false;
    m_cable = std::make_unique<harrowby::test::Proxy>(harrowby::test::serverOfShops().port());
    m_state = std::make_unique<QTemporaryDir>();
    m_notice = std::make_unique<FailureNotice>();
    m_follower = std::make_unique<SaleFollower>(counter(), *m_notice);
    openStore();
}

void HoldLostTest::cleanup()
{
    m_tillsDesk.reset();
    m_tillsRecords.reset();
    m_store.reset();
    m_follower.reset();
    m_notice.reset();
    HoldTill::cleanup();
}

/// As the program wires it.
void HoldLostTest::openStore()
{
    m_tillsDesk.reset();
    m_tillsRecords.reset();
    m_store.reset();
    ServerOptions options;
    options.stateFolder = m_state->path();
    options.connecting = 200ms;
    options.silence = options.rest = 500ms;
    options.waitHook = [this](const DbWait &) { return !m_isLost; };
    options.resolvedHandler = [this](const QString &what, WriteOutcome known) { tellSettled(*m_notice, what, known); };
    const QString address = m_till->file.path().replace(u":%1/"_s.arg(harrowby::test::serverOfShops().port()),
                                                        u":%1/"_s.arg(m_cable->port()));
    m_store = std::make_unique<server::PostgresStore>(address + u"?sslmode=disable"_s, options);
    const auto problem = m_store->open();
    QVERIFY2(!problem, problem ? qPrintable(problem->reason) : "");
    m_tillsRecords = m_store->records();
    m_tillsRecords->setFailureHandler([this](const DbFailure &failure) {
        m_follower->note(failure, Records::isUnknown(failure) ? WriteOutcome::Unknown : WriteOutcome::Refused);
    });
    m_store->setResolvedHandler([this](const QString &what, WriteOutcome known) { m_follower->settle(what, known); });
    m_tillsDesk = std::make_unique<HoldDesk>(counter(), *m_tillsRecords, [this](const QString &text, bool isRefusal) {
        m_said << (isRefusal ? u"! "_s : QString()) + text;
    });
}

void HoldLostTest::loseCommit(bool isDone)
{
    auto &records = dynamic_cast<server::PostgresRecords &>(*m_tillsRecords);
    records.setAroundCommit([this, isDone](bool begins) {
        m_isLost = true;
        if (begins && isDone)
            m_cable->goSilentAtAnswerOf(1);
        else if (begins)
            m_cable->goSilent();
        else
            m_cable->cut(); // what was not passed on never is
    });
}

void HoldLostTest::plugIn()
{
    dynamic_cast<server::PostgresRecords &>(*m_tillsRecords).setAroundCommit({});
    m_isLost = false;
    m_cable->speak();
}

void HoldLostTest::addEnds()
{
    QTest::addColumn<bool>("isDone");
    QTest::newRow("done") << true;
    QTest::newRow("not done") << false;
}

/// At the desk, under "1".
void HoldLostTest::holdUnknown(bool isDone)
{
    QCOMPARE(counter().sell(u"A1"_s), CounterAnswer::Done);
    const QStringList before = cart();
    inNextDialog([this, isDone](QDialog &dialog) {
        loseCommit(isDone);
        dialog.findChild<QPushButton *>(u"holdUnder"_s)->click();
    });
    answerNextBox(u"It is not known whether the cart is held as \"1\". It is still here."_s, u"OK"_s);
    m_tillsDesk->hold();
    QCOMPARE(m_dialogs, 2);
    QCOMPARE(m_said, QStringList());
    QCOMPARE(cart(), before);
    QCOMPARE(told("failureWork"), u"It is not known whether the cart \"1\" was held."_s);
}

void HoldLostTest::holdIsToldAndSettled()
{
    QFETCH(const bool, isDone);
    holdUnknown(isDone);
    QVERIFY(m_follower->isInDoubt());
    plugIn();
    QTRY_VERIFY_WITH_TIMEOUT(!m_store->tryAgain(), 20'000);
    QVERIFY(!m_follower->isInDoubt());
    QCOMPARE(heldWords(), isDone ? QStringList{u"1"_s} : QStringList());
    QCOMPARE(told("failureWork"),
             isDone ? u"Known now: the cart \"1\" was held."_s : u"Known now: the cart \"1\" was not held."_s);
    QVERIFY(told("failureAdvice").contains(isDone ? u"take it out there"_s : u"is the only one"_s));
}

void HoldLostTest::recallIsToldAndSettled()
{
    QFETCH(const bool, isDone);
    QCOMPARE(counter().sell(u"A1"_s), CounterAnswer::Done);
    const QStringList before = cart();
    holdAs(u"Mary"_s);
    inNextDialog([this, isDone](QDialog &dialog) {
        loseCommit(isDone);
        dialog.findChild<QPushButton *>(u"listAction"_s)->click();
    });
    answerNextBox(u"\"Mary\" is in the cart, but it is not known whether it was taken off the list of held carts."_s,
                  u"OK"_s);
    m_tillsDesk->recall();
    QCOMPARE(m_dialogs, 2);
    QCOMPARE(m_said, QStringList());
    QCOMPARE(cart(), before);
    plugIn();
    QTRY_VERIFY_WITH_TIMEOUT(!m_store->tryAgain(), 20'000);
    QCOMPARE(heldWords(), isDone ? QStringList() : QStringList{u"Mary"_s});
    QCOMPARE(told("failureWork"), isDone ? u"Known now: the cart \"Mary\" was taken off the list of held carts."_s
                                         : u"Known now: the cart \"Mary\" was not taken off the list of held carts."_s);
    QVERIFY(told("failureAdvice").contains(isDone ? u"is the only one"_s : u"take it out there"_s));
}

void HoldLostTest::nextStartTells()
{
    QFETCH(const bool, isDone);
    holdUnknown(isDone);
    plugIn();
    m_notice->dismiss();
    openStore();
    QTRY_VERIFY_WITH_TIMEOUT(!m_store->tryAgain(), 20'000);
    QCOMPARE(heldWords(), isDone ? QStringList{u"1"_s} : QStringList());
    QCOMPARE(told("failureWork"),
             isDone ? u"Known now: the cart \"1\" was held."_s : u"Known now: the cart \"1\" was not held."_s);
}

HARROWBY_TEST(app_hold_lost_test, HoldLostTest)
#include "hold_lost_test.moc"
