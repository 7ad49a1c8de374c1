// SPDX-License-Identifier: MIT
#include "tests/program/test_program.h"
#include "tests/support/counter.h"
#include "tests/ui/interruption.h"

#include "store/inv_basic.h"
#include "store/recordset.h"
#include "store/statement_texts.h"
#include "ui/widgets/pick_list.h"

#include <harrowby/init.h>

#include <QApplication>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>

#include <utility>

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::test;

/// The host asks for the window while it is still being loaded.
class LoadAgainTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void loadedAgainWhileLoading_data();
    void loadedAgainWhileLoading();
    void anotherConnectionFinishesTheWalks();
};

void LoadAgainTest::loadedAgainWhileLoading_data()
{
    QTest::addColumn<bool>("closedFirst");
    QTest::newRow("the same window") << false;
    QTest::newRow("a new window") << true;
}

void LoadAgainTest::loadedAgainWhileLoading()
{
    QFETCH(bool, closedFirst);
    ShopFile shop;
    shop.addUser(u"ADMINISTRATOR"_s, u"PASS"_s);
    shop.addItem(u"A1"_s, u"TEA"_s, 1.5, 10);
    constexpr int categories = 40; // so many that the window breathes among them
    for (int i = 0; i < categories; ++i)
        shop.sql(u"INSERT INTO InventoryCategory VALUES ('TEA %1','')"_s.arg(i));
    const auto first = std::make_shared<RecordingConnection>(shop.connect());
    const auto second = shop.connect();
    bool isDone = false;
    const auto inventory = [] {
        QList<Inventory *> open;
        for (QWidget *widget : QApplication::topLevelWidgets()) {
            if (auto *window = qobject_cast<Inventory *>(widget))
                open << window;
        }
        return open;
    };
    const auto close = [](Inventory *window) {
        QTimer::singleShot(0, window, [] {
            qobject_cast<QMessageBox *>(QApplication::activeModalWidget())->button(QMessageBox::Yes)->click();
        });
        window->close();
    };
    first->before = [&](const QString &) {
        passRest();
        QTimer::singleShot(0, this, [&] {
            if (std::exchange(isDone, true))
                return;
            if (closedFirst)
                close(inventory().constFirst());
            Init().LoadInventory(second, {});
        });
    };
    Init().LoadInventory(first, {});
    QVERIFY(isDone);
    first->before = [](const QString &) {};
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCOMPARE(InvBasic::connection(), second);
    QCOMPARE(inventory().size(), 1);
    Inventory *window = inventory().constFirst();
    QVERIFY(window->isVisible());
    QCOMPARE(window->controls().List2->count(), categories);
    QCOMPARE(window->controls().Combo1->count(), categories + 2);
    QVERIFY(!window->state().login.IsLoggedIn);
    close(window);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(inventory().isEmpty());
    InvBasic::setConnection(nullptr);
}

/// A write over the new connection would not finish the walks of the old one.
void LoadAgainTest::anotherConnectionFinishesTheWalks()
{
    ShopFile shop;
    for (const QString &id : {u"A1"_s, u"A2"_s, u"A3"_s})
        shop.addItem(id, u"TEA"_s, 1.5, 10);
    const auto first = shop.connect();
    InvBasic::setConnection(first);
    DbRecordset items;
    items.Open(statements::allStock(), first, DbRecordset::Access::Walk);
    InvBasic::setConnection(first);
    QVERIFY(shop.isBeingRead() || shopsAreOnAServer()); // the same connection set again: the walk stays open
    InvBasic::setConnection(shop.connect());
    QVERIFY(!shop.isBeingRead());
    QStringList ids;
    for (; !items.IsEof(); items.MoveNext())
        ids << items.Field(u"StockID"_s).text();
    QCOMPARE(ids, (QStringList{u"A1"_s, u"A2"_s, u"A3"_s}));
    InvBasic::setConnection(nullptr);
}

int load_again_test(int argc, char **argv)
{
    // The window made by LoadInventory reads the user's settings; this home has none.
    QTemporaryDir home;
    for (const char *folder : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_STATE_HOME"})
        qputenv(folder, home.path().toLocal8Bit());
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    LoadAgainTest test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}

#include "load_again_test.moc"
