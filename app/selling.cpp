// SPDX-License-Identifier: MIT
#include "app/selling.h"

#include "app/customer/customer_screen.h"
#include "app/foreign_windows.h"
#include "app/shop/failure_notice.h"
#include "app/shop/notice_place.h"
#include "app/shop/store_paths.h"
#include "app/start/command_line.h"
#include "app/start/exit_code.h"
#include "app/start/start_message.h"
#include "app/till/till.h"

#include <harrowby/counter.h>
#include <harrowby/file_failure.h>
#include <harrowby/init.h>
#include <harrowby/saved_settings.h>

#include <QApplication>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

void tellMissingLock(const Payments &payments, FailureNotice &notice, const QString &advice)
{
    QObject::connect(&payments, &Payments::lockMissing, &notice, [&notice, advice](const QString &reason) {
        notice.tell({u"run lock"_s, u"This till cannot show other tills that it is open."_s, reason,
                     advice + u" Until then, payments that a killed till leaves behind are settled a day later."_s});
    });
}

void tellDrawerFailures(const DrawerDesk &drawer, FailureNotice &notice)
{
    const auto subject = u"cash drawer"_s;
    QObject::connect(
        &drawer, &DrawerDesk::failed, &notice, [&notice, subject](const QString &queue, const QString &reason) {
            notice.tell({subject, u"The cash drawer was not opened."_s, reason, drawerAdvice(queue), true, false});
        });
    QObject::connect(&drawer, &DrawerDesk::opened, &notice, [&notice, subject] { notice.tellOver(subject); });
}

/// Nothing without the option.
std::unique_ptr<CustomerScreen> makeCustomerScreen(const CommandLine &line, const Payments &payments)
{
    if (!line.customerDisplay)
        return nullptr;
    const auto chosen = [](const SettingPlace &place) { return savedSetting(place.section, place.key); };
    auto screen = std::make_unique<CustomerScreen>(Counter::instance(), chosen(saved::ReceiptTitle),
                                                   chosen(saved::Currency), *line.customerDisplay);
    QObject::connect(&payments, &Payments::paid, screen.get(),
                     [customer = screen.get()](const QString &, const QList<PaymentPart> &, qint64, qint64 change) {
                         customer->showChange(static_cast<double>(change) / 100);
                     });
    return screen;
}

int runWindow(const TillStore &store)
{
    QWidget *window = salesWindow();
    if (window == nullptr) {
        tellProblem(u"The window could not be opened. The log file may say why:\n"_s + logPath());
        return static_cast<int>(ExitCode::Failed);
    }
    window->setWindowState(window->windowState() | Qt::WindowMaximized); // a till uses the whole screen
    QApplication::setQuitOnLastWindowClosed(true);
    const int code = QApplication::exec();
    if (store.close)
        store.close();
    return code;
}

} // namespace

int sellFrom(const TillStore &store, const CommandLine &line, FailureNotice &notice)
{
    setFileFailureHandler([&notice](const FileFailure &failure) { notice.add(failure); });
    supplyForeignWindows(store.connection);
    int code = 0;
    {
        Till till(Counter::instance(), store.records, {savedSetting, saveSetting}, soundRefusal, store.cash);
        tellMissingLock(till.payments(), notice, store.lockAdvice);
        tellDrawerFailures(till.drawer(), notice);
        if (store.furnish)
            store.furnish(till);
        const auto customer = makeCustomerScreen(line, till.payments());
        Init().LoadInventory(store.connection, {});
        code = runWindow(store);
    }
    // The component keeps the connection longer than the notice lives, so the handler is removed.
    store.connection->setFailureHandler({});
    setFileFailureHandler({});
    return code;
}

} // namespace harrowby::app
