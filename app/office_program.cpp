// SPDX-License-Identifier: MIT
#include "app/office_program.h"

#include "app/backup/lost_store_box.h"
#include "app/backup/restore_window.h"
#include "app/first_server_user.h"
#include "app/office/office.h"
#include "app/office/office_store.h"
#include "app/records/deeds.h"
#include "app/records/server_engine.h"
#include "app/server/server_opening.h"
#include "app/server/server_wait.h"
#include "app/shop/busy_wait.h"
#include "app/shop/failure_notice.h"
#include "app/shop/store_guard.h"
#include "app/shop/store_loss.h"
#include "app/shop/store_opening.h"
#include "app/shop/wait_sign.h"
#include "app/start/log_file.h"
#include "app/start/start_message.h"
#include "basic/store_address.h"

#include <harrowby/file_failure.h>
#include <harrowby/saved_settings.h>

#include <QCoreApplication>

#include <functional>
#include <memory>

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

/// A write of which nobody knows whether it was done is told beside what the page says of it, and again when it is
/// known.
Result<OfficeLeaving, ExitCode> openOnServer(const QString &address, const QString &reason, FailureNotice &notice,
                                             LogFile &log)
{
    ServerWait wait; // outlives the last wait
    ServerOptions options;
    options.location = QCoreApplication::applicationDirPath();
    options.waitHook = [&wait](const DbWait &what) { return wait.goesOn(what); };
    options.resolvedHandler = [&notice](const QString &what, bool isDone) { notice.settle(what, isDone); };
    const auto opened = openServerStore(address, options);
    if (!opened) {
        tellProblem(opened.error());
        return Unexpected(ExitCode::StoreRefused);
    }
    const std::shared_ptr<Records> records = (*opened)->records();
    records->setFailureHandler([&notice](const DbFailure &failure) {
        if (Records::isUnknown(failure))
            notice.addDoubtful(failure);
    });
    log.probe();
    if (const auto users = seeToFirstUser(*records, address); !users)
        return Unexpected(users.error());
    OfficeLeaving leaving = keepOffice({address, records}, reason, notice, {});
    (*opened)->setWaitHook({});
    return leaving;
}

} // namespace

Result<int, ExitCode> runOfficeProgram(const QString &store, FailureNotice &notice, LogFile &log)
{
    QString reason;
    for (;;) {
        const auto leaving =
            isServer(store) ? openOnServer(store, reason, notice, log) : openFile(store, reason, notice, log);
        if (!leaving)
            return Unexpected(leaving.error());
        if (leaving->end != OfficeEnd::Restore)
            return static_cast<int>(leaving->end == OfficeEnd::Refused ? ExitCode::StoreRefused : ExitCode::Done);
        reason = restoreWords(restoreInWindow({leaving->backup, store, leaving->user, officePlace}));
    }
}

} // namespace harrowby::app
