// SPDX-License-Identifier: MIT
#include "tests/app/office_desk.h"
#include "tests/doubles/private_cluster.h"
#include "tests/program/test_program.h"

#include <QCheckBox>
#include <QElapsedTimer>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::app;
using namespace harrowby::app::test;
using namespace std::chrono_literals;

/// What only an office on a server meets: the server goes away while it is open, each page says so, and works again as
/// soon as the server is back; and a restore that the machine may not make.
class OfficeOnServerTest : public OfficeDesk
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void pagesSayIt_data();
    void pagesSayIt();
    void changesSayIt();
    void workSaysIt_data();
    void workSaysIt();
    void pagesThatWereBuiltMeanwhileAreRight();
    void restoreSaysWhoMayMakeIt();

private:
    using Cluster = harrowby::test::PrivateCluster;
    static Cluster &server() { return harrowby::test::serverOfShops(); }
    static void bringBack();
    void show(const QString &title);
    void pressNow(const char *name);
    [[nodiscard]] QString said(const char *label) const { return part<QLabel>(label)->text(); }
    /// What is not done is said, and what to do about it.
    void isSaid(const QString &words, const QString &what) const;
};

namespace {

/// Of the server, after which it is taken for gone: as long as a test wants to wait.
constexpr auto patience = 700ms;
/// Nothing holds the window up for longer, on a busy machine either.
constexpr int longestHold = 15000;

struct OutcomeOfPage
{
    const char *page;
    const char *label;
    QString failure;
};

QList<OutcomeOfPage> outcomes()
{
    return {{"Cash", "openPaymentsCount", u"The payments could not be read."_s},
            {"Catalogue", "catalogueOutcome", u"The imports so far could not be read"_s},
            {"Codes", "codesOutcome", u"The codes could not be read."_s}};
}

} // namespace

void OfficeOnServerTest::init()
{
    OfficeDesk::init();
    m_window.reset();
    m_shop = std::make_unique<OpenShop>(m_path, patience);
    m_window = makeWindow(store());
    m_window->show();
}

void OfficeOnServerTest::cleanup()
{
    bringBack();
    OfficeDesk::cleanup();
}

void OfficeOnServerTest::bringBack()
{
    if (server().isRunning())
        server().cont();
    else
        server().start();
}

void OfficeOnServerTest::show(const QString &title)
{
    m_shop->beginAction();
    QElapsedTimer held;
    held.start();
    showPage(title);
    QVERIFY2(held.elapsed() < longestHold, qPrintable(u"%1: %2 ms"_s.arg(title).arg(held.elapsed())));
}

void OfficeOnServerTest::pressNow(const char *name)
{
    m_shop->beginAction();
    QElapsedTimer held;
    held.start();
    part<QAbstractButton>(name)->click();
    QVERIFY2(held.elapsed() < longestHold, qPrintable(u"%1 ms"_s.arg(held.elapsed())));
}

void OfficeOnServerTest::isSaid(const QString &words, const QString &what) const
{
    QVERIFY2(words.contains(what) && words.contains(u"switched on"_s), qPrintable(words));
}

void OfficeOnServerTest::pagesSayIt_data()
{
    QTest::addColumn<bool>("hangs");
    QTest::newRow("killed") << false;
    QTest::newRow("hangs") << true;
}

void OfficeOnServerTest::pagesSayIt()
{
    QFETCH(const bool, hangs);
    showPage(u"Readers"_s);
    if (hangs)
        server().stop();
    else
        server().kill9();
    for (const OutcomeOfPage &one : outcomes()) {
        show(QString::fromLatin1(one.page));
        isSaid(said(one.label), one.failure);
    }
    show(u"Readers"_s);
    bringBack();
    for (const OutcomeOfPage &one : outcomes()) {
        show(QString::fromLatin1(one.page));
        QVERIFY2(!said(one.label).contains(u'\u26a0'), qPrintable(said(one.label)));
    }
}

/// In a box; what is stored stays, and is shown.
void OfficeOnServerTest::changesSayIt()
{
    choose(u"ANNA"_s);
    server().kill9();
    answerNextBox(QMessageBox::AcceptRole);
    pressNow("InventorySales");
    isSaid(m_boxText, u"The user was not changed."_s);
    isSaid(said("usersOutcome"), u"The users could not be read."_s);
    QCOMPARE(part<QListWidget>("users")->count(), 3);
    bringBack();
    m_shop->beginAction();
    m_window->readAnew();
    QCOMPARE(said("usersOutcome"), QString());
    QVERIFY(!part<QCheckBox>("InventorySales")->isChecked());
    pressNow("InventorySales");
    QCOMPARE(read(u"select InventorySales from Users where Username = 'ANNA'"_s), u"-1"_s);
}

void OfficeOnServerTest::workSaysIt_data()
{
    QTest::addColumn<QString>("page");
    QTest::addColumn<QString>("button");
    QTest::addColumn<QString>("outcome");
    QTest::addColumn<QString>("done");
    const auto row = [](const char *page, const char *button, const char *outcome, const char *done) {
        QTest::newRow(page) << QString::fromLatin1(page) << QString::fromLatin1(button) << QString::fromLatin1(outcome)
                            << QString::fromLatin1(done);
    };
    row("Activity", "findActivity", "activityOutcome", "");
    row("Catalogue", "exportNow", "exportOutcome", "saved");
    row("Backup", "startBackup", "backupOutcome", "made and checked");
}

/// What works on a thread, over a connection of its own.
void OfficeOnServerTest::workSaysIt()
{
    QFETCH(const QString, page);
    QFETCH(const QString, button);
    QFETCH(const QString, outcome);
    QFETCH(const QString, done);
    const QByteArray label = outcome.toLatin1();
    show(page);
    if (page == u"Catalogue"_s)
        pressNow("beginExport");
    part<QLineEdit>("exportPlace")->setText(m_folder->filePath(u"items.csv"_s));
    part<QLineEdit>("backupPlace")->setText(m_folder->filePath(u"copy.db"_s));
    QTRY_VERIFY_WITH_TIMEOUT(page != u"Activity"_s || !said("activityOutcome").isEmpty(), 30000);
    server().kill9();
    pressNow(button.toLatin1().constData());
    QTRY_VERIFY_WITH_TIMEOUT(said(label.constData()).contains(u'\u26a0'), 30000);
    isSaid(said(label.constData()), QString());
    QVERIFY2(!said(label.constData()).contains(u".."_s), qPrintable(said(label.constData())));
    QVERIFY(!QFile::exists(m_folder->filePath(u"items.csv"_s)) && !QFile::exists(m_folder->filePath(u"copy.db"_s)));
    bringBack();
    pressNow(button.toLatin1().constData());
    QTRY_VERIFY2_WITH_TIMEOUT(!said(label.constData()).isEmpty() && !said(label.constData()).contains(u'\u26a0') &&
                                  said(label.constData()).contains(done),
                              qPrintable(said(label.constData())), 30000);
}

/// Nothing is shown as stored that could not be read.
void OfficeOnServerTest::pagesThatWereBuiltMeanwhileAreRight()
{
    m_shop->run(u"insert into HarrowbySetting (Name, Value) values ('PaymentWays', 'Voucher')"_s);
    server().kill9();
    m_shop->beginAction();
    m_window = makeWindow(store());
    m_window->show();
    isSaid(said("lastBackup"), u"The last backup could not be read."_s);
    isSaid(said("usersOutcome"), u"The users could not be read."_s);
    isSaid(said("shopOutcome"), u"What was chosen could not be read."_s);
    bringBack();
    for (const char *title : {"Shop", "Users"})
        show(QString::fromLatin1(title));
    QCOMPARE(said("usersOutcome") + said("shopOutcome"), QString());
    QCOMPARE(part<QListWidget>("users")->count(), 3);
    QVERIFY(part<QCheckBox>("searchAnywhere")->isChecked());
    QVERIFY(said("searchHint").contains(u"with this store may rely on"_s)); // there is no file
    show(u"Backup"_s);
    QCOMPARE(said("lastBackup"), u"\u26a0 No backup of this store is known yet."_s);
    show(u"Cash"_s);
    QCOMPARE(part<QLineEdit>("paymentWays")->text(), u"Voucher"_s);
}

/// Only an office that acts for the owner may replace the store. It is said before the office closes for it.
void OfficeOnServerTest::restoreSaysWhoMayMakeIt()
{
    show(u"Backup"_s);
    part<QLineEdit>("backupPlace")->setText(m_folder->filePath(u"copy.db"_s));
    pressNow("startBackup");
    QTRY_VERIFY_WITH_TIMEOUT(said("backupOutcome").contains(u"made and checked"_s), 30000);
    QString refusal;
    inNextDialog([&](QDialog &dialog) {
        auto *start = dialog.findChild<QPushButton *>(u"startRestore"_s);
        QTRY_VERIFY_WITH_TIMEOUT(start->isEnabled(), 30000);
        start->click();
        refusal = dialog.findChild<QLabel *>(u"restoreOutcome"_s)->text();
        dialog.reject();
    });
    pressNow("restoreBackup");
    QVERIFY2(refusal.contains(u"add-office NAME --owner"_s), qPrintable(refusal));
    QVERIFY(m_window->isVisible());
}

HARROWBY_TEST(app_office_on_server_test, OfficeOnServerTest)
#include "office_on_server_test.moc"
