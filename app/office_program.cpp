// SPDX-License-Identifier: MIT
#include "app/office_program.h"

#include "app/backup/lost_store_box.h"
#include "app/backup/restore_window.h"
#include "app/office/office.h"
#include "app/office/office_store.h"
#include "app/office_on_server.h"
#include "app/records/deeds.h"
#include "app/shop/busy_wait.h"
#include "app/shop/failure_notice.h"
#include "app/shop/store_guard.h"
#include "app/shop/store_loss.h"
#include "app/shop/store_opening.h"
#include "app/shop/wait_sign.h"
#include "app/start/command_line.h"
#include "app/start/log_file.h"
#include "app/start/start_message.h"
#include "basic/store_address.h"

#include <harrowby/file_failure.h>
#include <harrowby/saved_settings.h>

#include <functional>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

/// The office shows its own failures to save.
OfficeLeaving keepOffice(const OfficeStore &store, const QString &reason, FailureNotice &notice,
                         const std::function<QString()> &loss)
{
    setFileFailureHandler([&notice](const FileFailure &failure) {
        if (failure.kind == FileFailure::Kind::SettingsRead)
            notice.add(failure);
    });
    OfficeLeaving leaving = runOffice(store, {savedSetting, saveSetting}, reason, loss);
    setFileFailureHandler({});
    return leaving;
}

OfficeLeaving keepFile(StoreGuard &store, const QString &path, const QString &reason, BusyWait &wait,
                       FailureNotice &notice)
{
    wait.followEventLoop();
    LostStoreAlarm alarm(store, u"office"_s, closeOffice);
    store.keepWatch();
    const auto loss = [&store] { return store.check() ? QString() : lossHeadline(store.loss()); };
    OfficeLeaving leaving = keepOffice(officeStore(store.database(), path), reason, notice, loss);
    if (leaving.end != OfficeEnd::Refused)
        alarm.checkOnceMore();
    return leaving;
}

Result<OfficeLeaving, ExitCode> openFile(const QString &path, const QString &reason, FailureNotice &notice,
                                         LogFile &log)
{
    WaitSign sign(u"Waiting for the store file"_s, u"Another program keeps it locked."_s); // outlives the last wait
    BusyWait wait;
    auto database = openStoreBeside(path, wait);
    if (!database) {
        tellProblem(database.error().text);
        return Unexpected(ExitCode::StoreRefused);
    }
    StoreGuard store(*std::move(database), path, wait);
    wait.setWatcher([&sign] { sign.show(); });
    log.probe();
    return keepFile(store, path, reason, wait, notice);
}

} // namespace

Result<int, ExitCode> runOfficeProgram(const CommandLine &line, const QString &store, FailureNotice &notice,
                                       LogFile &log)
{
    QString reason;
    const auto keepOnServer = [&](const OfficeStore &open) { return keepOffice(open, reason, notice, {}); };
    for (;;) {
        const auto leaving = isServer(store)
                                 ? keepOfficeOnServer(store, line.display.toLocal8Bit(), notice, log, keepOnServer)
                                 : openFile(store, reason, notice, log);
        if (!leaving)
            return Unexpected(leaving.error());
        if (leaving->end != OfficeEnd::Restore)
            return static_cast<int>(leaving->end == OfficeEnd::Refused ? ExitCode::StoreRefused : ExitCode::Done);
        reason = restoreWords(restoreInWindow({leaving->backup, store, leaving->user, officePlace}));
    }
}

} // namespace harrowby::app
