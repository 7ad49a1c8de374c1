// SPDX-License-Identifier: MIT
#include "app/cash/drawer_desk.h"
#include "tests/app/cash_till.h"
#include "tests/app/false_print_service.h"
#include "tests/platform/log_capture.h"
#include "tests/program/test_program.h"

#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <functional>
#include <memory>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::app::test;

namespace {

constexpr int patience = 30'000;

} // namespace

/// When the drawer is opened, at the real window over a real file, with a false print service.
class DrawerTest : public CashTill
{
    Q_OBJECT

private Q_SLOTS:
    void saleInCashOpensIt();
    void saleByCardDoesNot();
    void answerNoDoesNot();
    void saleTakenBackOpensIt();
    void switchedOffThereIsNoButton();
    void openingByHandIsRecordedFirst();
    void dialogNeedsAReason();
    void openingThatCannotBeRecordedDoesNotHappen();
    void rightIsNeeded();
    void loginIsNeeded();
    void deadPrinterHoldsNoSale();

private:
    void takeDrawer(bool isOn = true, std::chrono::milliseconds deadline = std::chrono::seconds(20));
    [[nodiscard]] qsizetype kicks() const { return m_service.calls().filter(u"lp -d"_s).size(); }
    /// Presses "Open Drawer", and acts in the dialog or box that it opens.
    void pressAndAct(const std::function<void(QDialog &)> &act);
    void pressAndGive(const QString &reason);
    [[nodiscard]] QStringList openings() const
    {
        return file().rows(u"SELECT OpenedBy, Drawer, Reason FROM HarrowbyDrawerOpening ORDER BY OpenedAt"_s);
    }

    FalsePrintService m_service;
    std::unique_ptr<DrawerDesk> m_desk;
    QStringList m_answers;
};

void DrawerTest::takeDrawer(bool isOn, std::chrono::milliseconds deadline)
{
    m_answers.clear();
    m_service.reset();
    DrawerSettings settings;
    settings.isOn = isOn;
    settings.queue = u"till"_s;
    DrawerOptions options;
    options.pause = std::chrono::milliseconds(10);
    options.deadline = deadline;
    m_desk = std::make_unique<DrawerDesk>(counter(), *m_records, *m_payments, settings, options);
    connect(m_desk.get(), &DrawerDesk::opened, this, [this] { m_answers << u"opened"_s; });
    connect(m_desk.get(), &DrawerDesk::failed, this,
            [this](const QString &queue, const QString &reason) { m_answers << queue + u": "_s + reason; });
    m_desk->furnish();
}

void DrawerTest::pressAndAct(const std::function<void(QDialog &)> &act)
{
    bool hasActed = false;
    QTimer poll;
    connect(&poll, &QTimer::timeout, this, [&] {
        auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget());
        if (dialog == nullptr || hasActed)
            return;
        hasActed = true;
        act(*dialog);
        if (dialog->isVisible())
            dialog->reject();
    });
    poll.start(1);
    auto *button = m_till->window().findChild<QPushButton *>(u"openDrawer"_s);
    QVERIFY(button != nullptr);
    QCOMPARE(button->text(), u"Open Dra&wer"_s);
    QVERIFY(button->height() >= 44);
    QTest::mouseClick(button, Qt::LeftButton);
    QVERIFY(hasActed);
}

void DrawerTest::pressAndGive(const QString &reason)
{
    pressAndAct([&](QDialog &dialog) {
        dialog.findChild<QComboBox *>(u"drawerReason"_s)->setEditText(reason);
        dialog.findChild<QPushButton *>(u"openDrawerNow"_s)->click();
    });
}

void DrawerTest::saleInCashOpensIt()
{
    takeDrawer();
    purchasePlainly(); // counts as cash, exact
    QTRY_COMPARE_WITH_TIMEOUT(m_answers, QStringList{u"opened"_s}, patience);
    QCOMPARE(m_service.printed().size(), 5);
    laterBy(60);
    fillCart();
    answerQuestion(Answer::Yes);
    QCOMPARE(m_payments->pay({{cardWay(), 150, 150}, {cashWay(), 100, 500}}), CounterAnswer::Done);
    takeEvents();
    QTRY_COMPARE_WITH_TIMEOUT(m_answers.size(), 2, patience);
    QCOMPARE(kicks(), 2);
}

void DrawerTest::saleByCardDoesNot()
{
    takeDrawer();
    fillCart();
    answerQuestion(Answer::Yes);
    QCOMPARE(m_payments->pay({{cardWay(), 250, 250}}), CounterAnswer::Done);
    takeEvents();
    m_desk.reset(); // waits for a job that has begun
    QCOMPARE(kicks(), 0);
}

void DrawerTest::answerNoDoesNot()
{
    takeDrawer();
    fillCart();
    payCash(500, Answer::No);
    m_desk.reset();
    QCOMPARE(kicks(), 0);
}

void DrawerTest::saleTakenBackOpensIt()
{
    purchasePlainly();
    takeDrawer();
    answerQuestion(Answer::Yes);
    m_till->click("Command25");
    takeEvents();
    QVERIFY2(m_told.last().startsWith(u"back "_s), qPrintable(m_told.last()));
    QTRY_COMPARE_WITH_TIMEOUT(m_answers, QStringList{u"opened"_s}, patience);
}

void DrawerTest::switchedOffThereIsNoButton()
{
    takeDrawer(false);
    QVERIFY(m_till->window().findChild<QPushButton *>(u"openDrawer"_s) == nullptr);
    purchasePlainly();
    m_desk.reset();
    QCOMPARE(kicks(), 0);
}

void DrawerTest::openingByHandIsRecordedFirst()
{
    const testing::LogCapture log;
    takeDrawer();
    m_fuss->texts.clear();
    pressAndGive(u"  to the\nbank's "_s);
    QCOMPARE(
        m_fuss->texts.filter(u"Harrowby"_s),
        (QStringList{u"create table if not exists HarrowbyDrawerOpening (OpeningID text not null primary key, "
                     "OpenedAt text not null, OpenedBy text not null, Drawer text not null, Reason text not null)"_s,
                     u"insert into HarrowbyDrawerOpening (OpeningID, OpenedAt, OpenedBy, Drawer, Reason) "
                     "values (?, ?, ?, ?, ?)"_s}));
    QCOMPARE(openings(), QStringList{u"ADMINISTRATOR|Front|to the bank's"_s});
    QVERIFY(log.hasLine({u"The cash drawer Front is opened by ADMINISTRATOR - to the bank's"_s}));
    QTRY_COMPARE_WITH_TIMEOUT(m_answers, QStringList{u"opened"_s}, patience);
    const QString when = file().cell(u"SELECT OpenedAt FROM HarrowbyDrawerOpening"_s);
    QVERIFY2(timeOfRecord(when).isValid(), qPrintable(when));
    // Another one is another row.
    pressAndGive(u"Counting"_s);
    QCOMPARE(openings().size(), 2);
    QTRY_COMPARE_WITH_TIMEOUT(m_answers.size(), 2, patience);
}

void DrawerTest::dialogNeedsAReason()
{
    takeDrawer();
    pressAndAct([](QDialog &dialog) {
        auto *reason = dialog.findChild<QComboBox *>(u"drawerReason"_s);
        auto *open = dialog.findChild<QPushButton *>(u"openDrawerNow"_s);
        QVERIFY(!open->isEnabled());
        reason->setEditText(u" \n "_s);
        QVERIFY(!open->isEnabled());
        reason->setCurrentIndex(0);
        QVERIFY(open->isEnabled());
        QVERIFY(reason->height() >= 44 && open->height() >= 44);
        dialog.findChild<QPushButton *>(u"cancelDrawer"_s)->click();
    });
    m_desk.reset();
    QCOMPARE(kicks(), 0);
    QCOMPARE(file().cell(u"SELECT count(*) FROM sqlite_master WHERE name = 'HarrowbyDrawerOpening'"_s), u"0"_s);
}

void DrawerTest::openingThatCannotBeRecordedDoesNotHappen()
{
    takeDrawer();
    m_fuss->failAll = true;
    pressAndGive(u"Counting"_s);
    m_fuss->failAll = false;
    m_desk.reset();
    QCOMPARE(kicks(), 0);
    QCOMPARE(m_failures.size(), 1);
}

void DrawerTest::rightIsNeeded()
{
    file().addUser(u"ANN"_s, u"ANN"_s, {});
    takeDrawer();
    answerQuestion(Answer::Yes);
    m_till->click("Command27");
    takeEvents();
    m_till->logIn(u"ANN"_s, u"ANN"_s);
    takeEvents();
    QString said;
    pressAndAct([&](QDialog &dialog) { said = qobject_cast<QMessageBox *>(&dialog)->text(); });
    QCOMPARE(said, u"User [ANN] doesn't have this privilege!"_s);
    m_desk.reset();
    QCOMPARE(kicks(), 0);
}

void DrawerTest::loginIsNeeded()
{
    takeDrawer();
    answerQuestion(Answer::Yes);
    m_till->click("Command27");
    takeEvents();
    QStringList boxes;
    m_till->boxes.answerTheRest([&](const QString &text) {
        boxes << text;
        return Answer::Yes;
    });
    QTest::mouseClick(m_till->window().findChild<QPushButton *>(u"openDrawer"_s), Qt::LeftButton);
    QCOMPARE(boxes, QStringList{u"You must Login in First!"_s});
    m_desk.reset();
    QCOMPARE(kicks(), 0);
}

void DrawerTest::deadPrinterHoldsNoSale()
{
    takeDrawer(true, std::chrono::seconds(1));
    m_service.setTakenAfter(-1);
    for (int sale = 0; sale < 3; ++sale) {
        purchasePlainly();
        laterBy(60);
    }
    QCOMPARE(m_answers, QStringList());
    QCOMPARE(file().cell(u"SELECT count(*) FROM PurchaseCart"_s), u"3"_s);
    QTRY_COMPARE_WITH_TIMEOUT(m_answers, QStringList(3, u"till: the printer has not taken it within 1 s"_s), patience);
    QVERIFY(drawerAdvice(u"till"_s).contains(u"\"till\""_s));
    QVERIFY(drawerAdvice({}).contains(u"Choose its printer"_s));
}

HARROWBY_TEST(app_drawer_test, DrawerTest)
#include "drawer_test.moc"
