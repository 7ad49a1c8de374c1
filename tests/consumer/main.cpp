// SPDX-License-Identifier: MIT
// The smallest host: opens a database, supplies a class, loads the component, checks that its window is there, and uses
// the counter.
#include <harrowby/counter.h>
#include <harrowby/init.h>
#include <harrowby/objects.h>
#include <harrowby/report_component.h>
#include <harrowby/saved_settings.h>
#include <harrowby/sqlite_connection.h>

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QTimer>
#include <QWidget>

#include <sqlite3.h>

#include <algorithm>

namespace {

constexpr auto tables =
    "create table StockList (StockID text, StockName text, StockCategory text, StockCost real,"
    " StockReorderLevel real, StockAvailable real, StockUse text, StockLastUpdated text, StockLastModified text,"
    " StockAdded text, StockReorderUser text);"
    "create table InventoryCategory (CategoryName text, EntryDate text);"
    "create table PurchaseCart (PurchaseID text, PurchasedItems text, PurchasedItemsTotal real,"
    " PurchasedItemsCost real, PurchasedDate text, Users text);"
    "create table StoreSettings (Email integer, ShowDetails integer, EmailAddress text, Promptreorder integer,"
    " AutoPurchaseCart integer);"
    "create table Users (Username text, Password text, Type text, InventoryUse integer, InventorySales integer,"
    " InventoryReport integer, InventoryUndo integer, InventoryDelete integer, InventorySettings integer,"
    " InventoryReorder integer);"
    "create table SysUsage (SystemUsage text, Times text, Dates text);";

bool windowIsThere()
{
    const QWidgetList windows = QApplication::topLevelWidgets();
    return std::any_of(windows.begin(), windows.end(), [](const QWidget *window) {
        return window->isVisible() && window->windowTitle() == QLatin1String("Sales Inventory");
    });
}

/// All of it, without a user: what asks for one shows the gate's box, which is closed from here.
bool usesTheCounter(harrowby::Counter &counter)
{
    using harrowby::CounterAnswer;
    const auto atTheGate = [](auto &&press) {
        QTimer::singleShot(0, [] {
            if (QWidget *box = QApplication::activeModalWidget())
                box->close();
        });
        return press() == CounterAnswer::NotLoggedIn;
    };
    std::vector<harrowby::CounterLine> lines;
    std::vector<harrowby::CounterMisfit> misfits;
    counter.finishReading();
    counter.takeCodes(harrowby::CodeReaderSettings());
    counter.takeCodes({});
    return counter.isOpen() && counter.readAgain() == CounterAnswer::Done && !counter.isBusy() && !counter.user() &&
           counter.cart().empty() && counter.total() == 0 &&
           atTheGate([&] { return counter.sell(QStringLiteral("A1")); }) &&
           atTheGate([&] { return counter.purchase(); }) && atTheGate([&] { return counter.takeCart(lines); }) &&
           atTheGate([&] { return counter.putCart(lines, misfits); }) &&
           counter.sell(QStringLiteral("A1"), 0) == CounterAnswer::WrongUnits &&
           counter.addButton(new QPushButton(QStringLiteral("Hold"))) && counter.setBanner(new QLabel);
}

} // namespace

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    sqlite3 *database = nullptr;
    if (sqlite3_open(":memory:", &database) != SQLITE_OK ||
        sqlite3_exec(database, tables, nullptr, nullptr, nullptr) != SQLITE_OK)
        return 2;
    harrowby::setPluginFolders({});
    harrowby::registerClass(harrowby::ReportClassId, [] { return std::make_unique<QObject>(); });
    const QString title = QStringLiteral("Corner Shop");
    if (!harrowby::saveSetting(QStringLiteral("option"), QStringLiteral("Title"), title) ||
        harrowby::savedSetting(QStringLiteral("Option"), QStringLiteral("title")) != title)
        return 3;
    bool opened = false;
    harrowby::Counter &counter = harrowby::Counter::instance();
    QObject::connect(&counter, &harrowby::Counter::windowOpened, &app, [&opened] { opened = true; });
    harrowby::Init().LoadInventory(std::make_shared<harrowby::SqliteConnection>(database), {});
    QTimer::singleShot(0, &app, [&] {
        const bool counts = opened && usesTheCounter(counter);
        QApplication::exit(!windowIsThere() ? 1 : counts ? 0 : 4); // quit() would ask whether to close the window
    });
    return app.exec();
}
