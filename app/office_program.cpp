// SPDX-License-Identifier: MIT
#include "app/office_program.h"

#include "app/backup/lost_store_box.h"
#include "app/backup/restore_window.h"
#include "app/office/office.h"
#include "app/office/office_store.h"
#include "app/records/deeds.h"
#include "app/shop/busy_wait.h"
#include "app/shop/failure_notice.h"
#include "app/shop/store_guard.h"
#include "app/shop/store_loss.h"
#include "app/shop/store_opening.h"
#include "app/shop/wait_sign.h"
#include "app/start/log_file.h"
#include "app/start/start_message.h"

#include <harrowby/file_failure.h>
#include <harrowby/saved_settings.h>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

OfficeLeaving keepOffice(StoreGuard &store, const QString &path, const QString &reason, BusyWait &wait,
                         FailureNotice &notice)
{
    // The office shows its own failures to save.
    setFileFailureHandler([&notice](const FileFailure &failure) {
        if (failure.kind == FileFailure::Kind::SettingsRead)
            notice.add(failure);
    });
    wait.followEventLoop();
    LostStoreAlarm alarm(store, u"office"_s, closeOffice);
    store.keepWatch();
    OfficeLeaving leaving = runOffice(officeStore(store.database(), path), {savedSetting, saveSetting}, reason,
                                      [&store] { return store.check() ? QString() : lossHeadline(store.loss()); });
    if (leaving.end != OfficeEnd::Refused)
        alarm.checkOnceMore();
    setFileFailureHandler({});
    return leaving;
}

Result<OfficeLeaving, ExitCode> openOffice(const QString &path, const QString &reason, FailureNotice &notice,
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
    return keepOffice(store, path, reason, wait, notice);
}

} // namespace

Result<int, ExitCode> runOfficeProgram(const QString &path, FailureNotice &notice, LogFile &log)
{
    QString reason;
    for (;;) {
        const auto leaving = openOffice(path, reason, notice, log);
        if (!leaving)
            return Unexpected(leaving.error());
        if (leaving->end != OfficeEnd::Restore)
            return static_cast<int>(leaving->end == OfficeEnd::Refused ? ExitCode::StoreRefused : ExitCode::Done);
        reason = restoreWords(restoreInWindow({leaving->backup, path, leaving->user, officePlace}));
    }
}

} // namespace harrowby::app
