// SPDX-License-Identifier: MIT
#include "app/office_on_server.h"

#include "app/first_server_user.h"
#include "app/records/server_engine.h"
#include "app/server/input_actions.h"
#include "app/server/return_to_server.h"
#include "app/server/sale_follower.h"
#include "app/server/server_opening.h"
#include "app/server/server_wait.h"
#include "app/server/server_watch.h"
#include "app/shop/failure_notice.h"
#include "app/start/log_file.h"
#include "app/start/start_message.h"

#include <QCoreApplication>

#include <memory>

namespace harrowby::app {

namespace {

/// Tells of a write of which nobody knows whether it was done, beside what the page says of it, and finds out what
/// became of it as soon as the server answers again.
class Doubts
{
public:
    explicit Doubts(FailureNotice &notice) : m_notice(notice) {}

    void note(const DbFailure &failure)
    {
        if (!Records::isUnknown(failure))
            return;
        m_isOpen = true;
        m_notice.addDoubtful(failure);
    }
    void settle(const QString &what, WriteOutcome known)
    {
        m_isOpen = false;
        tellSettled(m_notice, what, known);
    }
    [[nodiscard]] bool isOpen() const { return m_isOpen; }

private:
    FailureNotice &m_notice;
    bool m_isOpen = false;
};

/// An office without a user to log in asks for the first one.
Result<OfficeLeaving, ExitCode> keepOpen(const QString &address, ServerStore &store, Doubts &doubts,
                                         const std::function<OfficeLeaving(const OfficeStore &)> &keep)
{
    const std::shared_ptr<Records> records = store.records();
    records->setFailureHandler([&doubts](const DbFailure &failure) { doubts.note(failure); });
    if (const auto users = seeToFirstUser(*records, address); !users)
        return Unexpected(users.error());
    const InputActions actions([&store] { store.beginAction(); });
    ReturnToServer returning(store);
    const ServerWatch watch(address, store.identity());
    QObject::connect(&watch, &ServerWatch::answered, &actions, [&](bool isBack) {
        if (returning.serverAnswers(watch.state(), isBack, doubts.isOpen()).value_or(false))
            readOfficeAnew();
    });
    return keep({address, records});
}

} // namespace

Result<OfficeLeaving, ExitCode> keepOfficeOnServer(const QString &address, const QByteArray &display,
                                                   FailureNotice &notice, LogFile &log,
                                                   const std::function<OfficeLeaving(const OfficeStore &)> &keep)
{
    ServerWait wait(display); // outlives the last wait
    Doubts doubts(notice);
    ServerOptions options;
    options.location = QCoreApplication::applicationDirPath();
    options.waitHook = [&wait](const DbWait &what) { return wait.goesOn(what); };
    options.resolvedHandler = [&doubts](const QString &what, WriteOutcome known) { doubts.settle(what, known); };
    const auto opened = openServerStore(address, options);
    if (!opened) {
        tellProblem(opened.error());
        return Unexpected(ExitCode::StoreRefused);
    }
    log.probe();
    auto leaving = keepOpen(address, **opened, doubts, keep);
    (*opened)->setWaitHook({});
    return leaving;
}

} // namespace harrowby::app
