// SPDX-License-Identifier: MIT
#include "app/till_program.h"

#include "app/backup/lost_store_box.h"
#include "app/cash/drawer_name.h"
#include "app/cash/run_locks.h"
#include "app/records/sqlite_records.h"
#include "app/search/finding_connection.h"
#include "app/search/search_choice.h"
#include "app/selling.h"
#include "app/shop/busy_wait.h"
#include "app/shop/failure_notice.h"
#include "app/shop/schema.h"
#include "app/shop/store_guard.h"
#include "app/shop/store_opening.h"
#include "app/shop/wait_sign.h"
#include "app/start/command_line.h"
#include "app/start/log_file.h"
#include "app/start/start_message.h"
#include "app/till/till.h"
#include "app/till_on_server.h"
#include "basic/store_address.h"

#include <harrowby/saved_settings.h>

#include <QApplication>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

int sellFromFile(const CommandLine &line, const QString &path, StoreGuard &store, FailureNotice &notice)
{
    SqliteRecords records(store.database());
    const auto tell = [&](const DbFailure &failure) { notice.add(store.explained(failure)); };
    records.setFailureHandler(tell);
    // The component keeps the connection for longer than the records live, and then runs no statement.
    const auto connection = std::make_shared<FindingConnection>(
        store.database(), QApplication::applicationDirPath(),
        [choice = SearchChoice(records, isOwnStore(store.database()))] { return choice.findsAnywhere(); });
    connection->setFailureHandler(tell);
    LostStoreAlarm alarm(store, u"till"_s, closeTill);
    store.keepWatch();
    TillStore open = {
        connection, records, {}, u"Allow writing to that file and its folder, then start the till again."_s};
    open.cash = {drawerName(line.drawer, {savedSetting, saveSetting}), std::make_shared<FileRunLocks>(path)};
    open.furnish = [&](Till &till) { followMissedStock(*connection, till.missedStock(), notice); };
    open.close = [&] { alarm.checkOnceMore(); };
    const int code = sellFrom(open, line, notice);
    connection->setMissHandler({});
    return code;
}

} // namespace

Result<int, ExitCode> runTillProgram(const CommandLine &line, const QString &store, FailureNotice &notice, LogFile &log)
{
    if (isServer(store))
        return runTillOnServer(line, store, notice, log);
    WaitSign sign(u"Waiting for the store file"_s, u"Another program keeps it locked."_s); // outlives the last wait
    BusyWait wait;
    auto database = openStoreBeside(store, wait);
    if (!database) {
        tellProblem(database.error().text);
        return Unexpected(ExitCode::StoreRefused);
    }
    StoreGuard guard(*std::move(database), store, wait);
    wait.setWatcher([&sign] { sign.show(); });
    wait.followEventLoop();
    log.probe();
    return sellFromFile(line, store, guard, notice);
}

} // namespace harrowby::app
