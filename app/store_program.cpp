// SPDX-License-Identifier: MIT
#include "app/store_program.h"

#include "app/demo/demo_shop.h"
#include "app/errands/errands.h"
#include "app/foreign_windows.h"
#include "app/keyboard/touch_keyboard.h"
#include "app/office_program.h"
#include "app/shop/failure_notice.h"
#include "app/shop/file_facts.h"
#include "app/shop/first_user_dialog.h"
#include "app/shop/store_create.h"
#include "app/shop/store_judge.h"
#include "app/shop/store_paths.h"
#include "app/shop/workshop.h"
#include "app/start/bare_screen.h"
#include "app/start/command_line.h"
#include "app/start/display.h"
#include "app/start/early_key_installer.h"
#include "app/start/exit_code.h"
#include "app/start/log_file.h"
#include "app/start/look_choice.h"
#include "app/start/start_message.h"
#include "app/till_program.h"
#include "basic/result.h"
#include "basic/store_address.h"

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

/// The address of the store.
Started<QString> prepareStore(const QString &given)
{
    if (isServer(given))
        return given;
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
        return runOfficeProgram(line, *path, notice, log);
    return runTillProgram(line, *path, notice, log);
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
