// SPDX-License-Identifier: MIT
#include "app/store_program.h"

#include "app/backup/lost_store_box.h"
#include "app/cash/drawer_name.h"
#include "app/cash/run_locks.h"
#include "app/customer/customer_screen.h"
#include "app/demo/demo_shop.h"
#include "app/errands/errands.h"
#include "app/foreign_windows.h"
#include "app/keyboard/touch_keyboard.h"
#include "app/office_program.h"
#include "app/records/sqlite_records.h"
#include "app/search/finding_connection.h"
#include "app/search/search_choice.h"
#include "app/shop/busy_wait.h"
#include "app/shop/failure_notice.h"
#include "app/shop/file_facts.h"
#include "app/shop/first_user_dialog.h"
#include "app/shop/notice_place.h"
#include "app/shop/schema.h"
#include "app/shop/store_create.h"
#include "app/shop/store_guard.h"
#include "app/shop/store_judge.h"
#include "app/shop/store_opening.h"
#include "app/shop/store_paths.h"
#include "app/shop/wait_sign.h"
#include "app/shop/workshop.h"
#include "app/start/bare_screen.h"
#include "app/start/command_line.h"
#include "app/start/display.h"
#include "app/start/early_key_installer.h"
#include "app/start/exit_code.h"
#include "app/start/log_file.h"
#include "app/start/look_choice.h"
#include "app/start/start_message.h"
#include "app/till/till.h"
#include "basic/result.h"

#include <harrowby/counter.h>
#include <harrowby/file_failure.h>
#include <harrowby/init.h>
#include <harrowby/saved_settings.h>

#include <QApplication>
#include <QFile>
#include <QFileInfo>
#include <QIcon>

#include <exception>
#include <memory>
#include <optional>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

/// What a step of the start yields, or the exit code that ends the start; the message has been shown.
template <typename T>
using Started = Result<T, ExitCode>;

Unexpected<ExitCode> refuse(const StoreProblem &problem)
{
    tellProblem(problem.text);
    return Unexpected(ExitCode::StoreRefused);
}

/// Answers the options that need no display: --help, --version, and a refused command line.
Started<CommandLine> readArguments(int argc, char **argv)
{
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments << QFile::decodeName(argv[i]);
    auto line = readCommandLine(arguments);
    if (!line) {
        printError(u"harrowby: %1\nTry \"harrowby --help\".\n"_s.arg(line.error()));
        return Unexpected(ExitCode::WrongUsage);
    }
    if (line->help || line->version) {
        printOut(line->help ? helpText() : versionText());
        return Unexpected(ExitCode::Done);
    }
    return *std::move(line);
}

Started<FoundDisplay> reachDisplay(const CommandLine &line)
{
    auto display = findDisplay(line.platform, line.display);
    if (display)
        return *std::move(display);
    printError(u"harrowby: %1\n"_s.arg(display.error()));
    return Unexpected(ExitCode::NoDisplay);
}

Started<void> createNewStore(const QString &path, bool makeFolder)
{
    if (auto problem = judgeNewStore(path, makeFolder))
        return refuse(*problem);
    if (!canShowBoxes()) {
        tellProblem(u"The new store \"%1\" needs a password, and there is no screen to ask for it.\n"
                    "Start the program once on a screen."_s.arg(path));
        return Unexpected(ExitCode::StoreRefused);
    }
    const OfficeSettings settings = {savedSetting, saveSetting};
    FirstUserDialog dialog(path, proposeReceipt(settings));
    if (dialog.exec() != QDialog::Accepted)
        return Unexpected(ExitCode::StoreDeclined);
    const auto fill = [&](sqlite3 *database) { return addAdministrator(database, dialog.password()); };
    if (auto problem = createStore(path, makeFolder, fill))
        return refuse(*problem);
    if (!saveNewShop(settings, dialog.receipt()))
        tellProblem(u"The title and the currency of the receipts could not be saved.\n"
                    "Check the disk and the folder of the settings file, then enter them in the store's office."_s);
    return {};
}

Started<QString> prepareStore(const QString &given)
{
    const QString path = given.isEmpty() ? defaultStorePath() : given;
    removeLeftWorkshops(QFileInfo(path).absolutePath());
    if (nameIsTaken(path))
        return path;
    if (const auto created = createNewStore(path, given.isEmpty()); !created)
        return Unexpected(created.error());
    return path;
}

Started<QString> prepareDemo()
{
    const QString path = demoStorePath();
    removeLeftWorkshops(QFileInfo(path).absolutePath());
    printOut(demoLoginText());
    if (nameIsTaken(path))
        return path;
    const auto fill = [](sqlite3 *database) { return fillDemoShop(database, QDateTime::currentDateTime()); };
    if (auto problem = createStore(path, true, fill))
        return refuse(*problem);
    showMessage(demoLoginText());
    return path;
}

void nameApplication()
{
    QCoreApplication::setApplicationName(u"Harrowby"_s);
    QCoreApplication::setApplicationVersion(QLatin1StringView(HARROWBY_VERSION));
}

void setUpApplication()
{
    nameApplication();
    QApplication::setDesktopFileName(u"harrowby"_s);
    QApplication::setWindowIcon(QIcon(u":/harrowby/harrowby.svg"_s));
    // The boxes before the window are windows too, and closing one must not end the program.
    QApplication::setQuitOnLastWindowClosed(false);
}

Notice missingLock(const QString &reason)
{
    return {u"run lock"_s, u"This till cannot show other tills that it is open."_s, reason,
            u"Allow writing to that file and its folder, then start the till again. Until then, payments that a killed "
            "till leaves behind are settled a day later."_s};
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

int sell(const CommandLine &line, StoreGuard &store, const CashStation &cash, BusyWait &wait, FailureNotice &notice)
{
    SqliteRecords records(store.database());
    records.setFailureHandler([&](const DbFailure &failure) { notice.add(store.explained(failure)); });
    // The component keeps the connection for longer than the records live, and then runs no statement.
    const auto connection = std::make_shared<FindingConnection>(
        store.database(), QApplication::applicationDirPath(),
        [choice = SearchChoice(records, isOwnStore(store.database()))] { return choice.findsAnywhere(); });
    connection->setFailureHandler([&](const DbFailure &failure) { notice.add(store.explained(failure)); });
    setFileFailureHandler([&notice](const FileFailure &failure) { notice.add(failure); });
    wait.followEventLoop();
    LostStoreAlarm alarm(store, u"till"_s, closeTill);
    store.keepWatch();
    supplyForeignWindows(connection);
    Till till(Counter::instance(), records, {savedSetting, saveSetting}, soundRefusal, cash);
    QObject::connect(&till.payments(), &Payments::lockMissing, &notice,
                     [&notice](const QString &reason) { notice.tell(missingLock(reason)); });
    tellDrawerFailures(till.drawer(), notice);
    followMissedStock(*connection, till.missedStock(), notice);
    const auto customer = makeCustomerScreen(line, till.payments());
    Init().LoadInventory(connection, {});
    int code = static_cast<int>(ExitCode::Failed);
    if (QWidget *window = salesWindow()) {
        window->setWindowState(window->windowState() | Qt::WindowMaximized); // a till uses the whole screen
        QApplication::setQuitOnLastWindowClosed(true);
        code = QApplication::exec();
        alarm.checkOnceMore();
    } else {
        tellProblem(u"The window could not be opened. The log file may say why:\n"_s + logPath());
    }
    // The component keeps the connection longer than the notice lives, so the handler is removed.
    connection->setFailureHandler({});
    connection->setMissHandler({});
    setFileFailureHandler({});
    return code;
}

/// The log reports failures on any thread; the notice lives on the user-interface thread.
void tellLogTroubles(LogFile &log, FailureNotice &notice)
{
    log.setHandler([&notice, path = log.path()](const Result<void, QString> &outcome) {
        QMetaObject::invokeMethod(&notice, [&notice, path, outcome] { notice.addLog(path, outcome); });
    });
}

/// Before there is an application. A keyboard that is not installed does not stop the start; why it is not to be had.
std::optional<QString> missingKeyboard(const CommandLine &line)
{
    if (!line.touchKeyboard)
        return {};
    const auto chosen = chooseTouchKeyboard();
    return chosen ? std::nullopt : std::optional(chosen.error());
}

/// Nothing without the option.
std::unique_ptr<TouchKeyboard> startKeyboard(const CommandLine &line, const std::optional<QString> &missing)
{
    if (missing)
        tellProblem(*missing);
    return line.touchKeyboard && !missing ? std::make_unique<TouchKeyboard>() : nullptr;
}

/// Saves a look given on the command line: a till without a desktop has no other way to choose one.
void dressProgram(const CommandLine &line)
{
    const OfficeSettings settings = {savedSetting, saveSetting};
    const auto asked = lookNamed(line.look);
    if (asked && !saveLook(settings, *asked))
        printError(u"harrowby: The look could not be saved; it is used this time only.\n"_s);
    applyLook(asked.value_or(savedLook(settings)));
}

Started<int> openShop(const CommandLine &line, FailureNotice &notice, LogFile &log)
{
    const auto path = line.demo ? prepareDemo() : prepareStore(line.database);
    if (!path)
        return Unexpected(path.error());
    if (line.office)
        return runOfficeProgram(*path, notice, log);
    WaitSign sign(u"Waiting for the store file"_s, u"Another program keeps it locked."_s); // outlives the last wait
    BusyWait wait;
    auto database = openStoreBeside(*path, wait);
    if (!database)
        return refuse(database.error());
    StoreGuard store(*std::move(database), *path, wait);
    wait.setWatcher([&sign] { sign.show(); });
    log.probe();
    const CashStation cash = {drawerName(line.drawer, {savedSetting, saveSetting}),
                              std::make_shared<FileRunLocks>(*path)};
    return sell(line, store, cash, wait, notice);
}

/// Needs no display.
int goOnErrand(const CommandLine &line, int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    nameApplication();
    LogFile log(logPath());
    const LogRouting routing(log, line.verbose);
    return static_cast<int>(runErrand(line));
}

Started<int> run(int argc, char **argv)
{
    const auto line = readArguments(argc, argv);
    if (!line)
        return Unexpected(line.error());
    if (line->errand.isGiven())
        return goOnErrand(*line, argc, argv);
    auto display = reachDisplay(*line);
    if (!display)
        return Unexpected(display.error());
    const auto missing = missingKeyboard(*line);
    const QApplication application(argc, argv);
    display->reset();
    setUpApplication();
    dressProgram(*line);
    const BareScreen screen;
    const EarlyKeyInstaller boxes;
    if (line->noPlugins)
        leaveOutPlugins();
    const auto keyboard = startKeyboard(*line, missing);
    FailureNotice notice;
    LogFile log(logPath());
    tellLogTroubles(log, notice);
    const LogRouting routing(log, line->verbose);
    return openShop(*line, notice, log);
}

} // namespace

int runStoreProgram(int argc, char **argv) noexcept
{
    try {
        const auto ended = run(argc, argv);
        return ended ? *ended : static_cast<int>(ended.error());
    } catch (const std::exception &error) {
        printError(u"harrowby: %1\n"_s.arg(QString::fromLocal8Bit(error.what())));
    }
    return static_cast<int>(ExitCode::Failed);
}

} // namespace harrowby::app
