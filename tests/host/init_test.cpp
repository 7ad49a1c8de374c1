// SPDX-License-Identifier: MIT
#include "tests/program/test_program.h"
#include <harrowby/init.h>
#include <harrowby/sqlite_connection.h>

#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <QPointer>
#include <QStandardPaths>
#include <QTest>
#include <QTimer>
#include <QWidget>

#include <sqlite3.h>

#include <memory>

using namespace Qt::StringLiterals;
using namespace harrowby;

/// LoadInventory as a host calls it.
class InitTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }
    void showsTheWindowAndReturns();
    void secondCallKeepsTheWindow();
    void secondCallReplacesTheConnection();
    void minimizedWindowComesBack();
    void acceptedCloseDestroysTheWindow();
    void worksWithoutConnection();
    void connectionStaysTheHosts();
    void calledAgainWhileLoading();
};

namespace {

/// A host's database in memory, empty but for the tables that a test makes.
struct Host
{
    Host() { sqlite3_open(":memory:", &database); }
    ~Host() { sqlite3_close(database); }
    Host(const Host &) = delete;
    Host &operator=(const Host &) = delete;
    [[nodiscard]] std::shared_ptr<SqliteConnection> connection() const
    {
        return std::make_shared<SqliteConnection>(database);
    }
    void sql(const char *text) const { sqlite3_exec(database, text, nullptr, nullptr, nullptr); }
    sqlite3 *database = nullptr;
};

QWidget *window()
{
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget *candidate : windows) {
        if (candidate->windowTitle() == u"Sales Inventory"_s && candidate->isVisible())
            return candidate;
    }
    return nullptr;
}

void closeWindow()
{
    const QPointer<QWidget> open = window();
    if (!open)
        return;
    QTimer::singleShot(0, qApp, [] {
        if (auto *question = qobject_cast<QMessageBox *>(QApplication::activeModalWidget()))
            question->button(QMessageBox::Yes)->click();
    });
    open->close();
    QTRY_VERIFY(open.isNull());
}

} // namespace

void InitTest::showsTheWindowAndReturns()
{
    const Host host;
    {
        Init init;
        init.LoadInventory(host.connection(), u"somebody"_s);
    }
    QVERIFY(window() != nullptr); // outlives Init
    QVERIFY(!window()->isModal());
    for (const QWidget *label : window()->findChildren<QWidget *>())
        QVERIFY(!label->property("text").toString().contains(u"somebody"_s)); // the text has no effect
    closeWindow();
}

void InitTest::secondCallKeepsTheWindow()
{
    const Host host;
    Init().LoadInventory(host.connection(), {});
    const QWidget *first = window();
    Init().LoadInventory(host.connection(), {});
    QCOMPARE(window(), first);
    closeWindow();
}

void InitTest::secondCallReplacesTheConnection()
{
    const Host host;
    auto first = host.connection();
    const std::weak_ptr<SqliteConnection> dropped = first;
    Init().LoadInventory(std::move(first), {});
    QVERIFY(!dropped.expired());
    Init().LoadInventory(host.connection(), {});
    QVERIFY(dropped.expired());
    closeWindow();
}

void InitTest::minimizedWindowComesBack()
{
    const Host host;
    Init().LoadInventory(host.connection(), {});
    window()->setWindowState(Qt::WindowMinimized);
    Init().LoadInventory(host.connection(), {});
    QVERIFY(!window()->isMinimized());
    closeWindow();
}

void InitTest::acceptedCloseDestroysTheWindow()
{
    const Host host;
    Init().LoadInventory(host.connection(), {});
    closeWindow();
    QVERIFY(window() == nullptr);
    Init().LoadInventory(host.connection(), {});
    QVERIFY(window() != nullptr);
    closeWindow();
}

void InitTest::worksWithoutConnection()
{
    Init().LoadInventory(nullptr, {});
    QVERIFY(window() != nullptr);
    closeWindow();
}

void InitTest::connectionStaysTheHosts()
{
    const Host host;
    host.sql("CREATE TABLE StoreSettings (Email, ShowDetails, EmailAddress, Promptreorder, AutoPurchaseCart)");
    Init().LoadInventory(host.connection(), {});
    closeWindow();
    // No statement of the component is open, and no table was created.
    QVERIFY(sqlite3_next_stmt(host.database, nullptr) == nullptr);
    sqlite3_stmt *tables = nullptr;
    sqlite3_prepare_v2(host.database, "SELECT count(*) FROM sqlite_master", -1, &tables, nullptr);
    sqlite3_step(tables);
    QCOMPARE(sqlite3_column_int(tables, 0), 1);
    sqlite3_finalize(tables);
}

void InitTest::calledAgainWhileLoading()
{
    const Host host;
    const auto again = host.connection();
    auto connection = host.connection();
    bool called = false;
    // Every statement fails here, so the handler runs in the middle of loading.
    connection->setFailureHandler([&](const DbFailure &) {
        if (!called) {
            called = true;
            Init().LoadInventory(again, {});
            QVERIFY(window() == nullptr); // not shown half filled
        }
    });
    Init().LoadInventory(connection, {});
    QVERIFY(called);
    QVERIFY(window() != nullptr);
    closeWindow();
    Init().LoadInventory(nullptr, {});
    closeWindow();
}

HARROWBY_TEST(init_test, InitTest)
#include "init_test.moc"
