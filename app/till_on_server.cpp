// SPDX-License-Identifier: MIT
#include "app/till_on_server.h"

#include "app/cash/drawer_name.h"
#include "app/first_server_user.h"
#include "app/records/server_engine.h"
#include "app/search/search_choice.h"
#include "app/selling.h"
#include "app/server/missed_reading.h"
#include "app/server/return_to_server.h"
#include "app/server/sale_follower.h"
#include "app/server/server_opening.h"
#include "app/server/server_run_locks.h"
#include "app/server/server_wait.h"
#include "app/server/server_watch.h"
#include "app/shop/failure_notice.h"
#include "app/start/command_line.h"
#include "app/start/log_file.h"
#include "app/start/start_message.h"
#include "app/till/till.h"

#include <harrowby/counter.h>
#include <harrowby/saved_settings.h>

#include <QApplication>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

void tellServer(Banner &banner, const ServerWatch::State &state)
{
    const auto topic = BannerTopic::Server;
    if (!state.isReached)
        banner.say(topic, state.why + u". The cart stays."_s, BannerTone::Refused);
    else if (state.protection == "waiting"_L1)
        banner.say(topic, u"The standby is gone: nothing can be sold."_s, BannerTone::Refused);
    else if (state.protection == "alone"_L1)
        banner.say(topic, u"Unprotected: only one server has what is sold."_s, BannerTone::Refused);
    else
        banner.clear(topic);
}

/// Has the connection tell of items that its statements have not found. Removed by the same without a till.
void followMissedStock(ServerStore &store, Till *till, FailureNotice &notice)
{
    if (till == nullptr) {
        store.setChangeHandler({});
        store.setEmptyHandler({});
        return;
    }
    MissedStock &missed = till->missedStock();
    const auto noteMiss = [&missed](const QString &statement) {
        if (const auto miss = missOf(statement))
            missed.note(*miss);
    };
    store.setChangeHandler([noteMiss](const QString &statement, std::int64_t rows) {
        if (rows == 0)
            noteMiss(statement);
    });
    store.setEmptyHandler(noteMiss);
    tellMissedStock(missed, notice);
}

/// What is asked of the server beside what the till does.
class ServerAttendance
{
public:
    ServerAttendance(const QString &address, ServerStore &store, ServerRunLocks &locks, const SaleFollower &follower,
                     MissedReading &missed) :
        m_watch(address, store.identity()),
        m_return(store), m_locks(locks), m_follower(follower), m_missed(missed)
    {
    }

    void attend(Till &till)
    {
        Banner &banner = till.banner();
        QObject::connect(&m_watch, &ServerWatch::changed, &till,
                         [&banner](const ServerWatch::State &state) { tellServer(banner, state); });
        QObject::connect(&m_watch, &ServerWatch::answered, &till,
                         [this, &till](bool isBack) { lookAgain(till, isBack); });
    }

private:
    void lookAgain(Till &till, bool isBack)
    {
        const auto isBackNow = m_return.serverAnswers(m_watch.state(), isBack, m_follower.isInDoubt());
        m_locks.renew(); // asks the server only where their session has ended
        if (!isBackNow)
            return; // all else would be of the time of the action that is under way
        m_missed.serverAnswers(*isBackNow);
        till.payments().settleAgain();
    }

    ServerWatch m_watch;
    ReturnToServer m_return;
    ServerRunLocks &m_locks;
    const SaleFollower &m_follower;
    MissedReading &m_missed;
};

/// Not while a box is open, or the window loads; a window that comes later reads by itself.
bool readAgain()
{
    return Counter::instance().readAgain() == CounterAnswer::Done;
}

int sellFromServer(const CommandLine &line, const QString &address, ServerStore &store, Records &records,
                   const ServerWait &wait, FailureNotice &notice)
{
    const std::shared_ptr<DbConnection> connection = store.connection();
    SaleFollower follower(Counter::instance(), notice);
    MissedReading missed(readAgain);
    connection->setFailureHandler([&follower, &missed, raw = connection.get()](const DbFailure &failure) {
        follower.note(failure, raw->lastWrite());
        missed.note(failure);
    });
    records.setFailureHandler([&follower](const DbFailure &failure) {
        follower.note(failure, Records::isUnknown(failure) ? WriteOutcome::Unknown : WriteOutcome::Refused);
    });
    store.setResolvedHandler([&follower](const QString &what, WriteOutcome known) { follower.settle(what, known); });
    const auto locks = std::make_shared<ServerRunLocks>(store);
    ServerAttendance attendance(address, store, *locks, follower, missed);
    TillStore open = {connection, records, {}, u"Check the server, then start the till again."_s};
    open.cash = {drawerName(line.drawer, {savedSetting, saveSetting}), locks};
    open.furnish = [&](Till &till) {
        followMissedStock(store, &till, notice);
        attendance.attend(till);
        till.refuseCodesWhere([&wait](ServerWait::Milliseconds moment) { return wait.wentOnAt(moment); });
    };
    const int code = sellFrom(open, line, notice);
    followMissedStock(store, nullptr, notice);
    store.setResolvedHandler({});
    records.setFailureHandler({});
    locks->close();
    return code;
}

} // namespace

Result<int, ExitCode> runTillOnServer(const CommandLine &line, const QString &store, FailureNotice &notice,
                                      LogFile &log)
{
    ServerWait wait(line.display.toLocal8Bit());
    std::unique_ptr<Records> records; // is asked by searches, which come after it is made
    ServerOptions options;
    options.location = QApplication::applicationDirPath();
    options.waitHook = [&wait](const DbWait &what) { return wait.goesOn(what); };
    options.findsAnywhere = [&records] { return records && SearchChoice(*records, true).findsAnywhere(); };
    options.resolvedHandler = [&notice](const QString &what, WriteOutcome known) { tellSettled(notice, what, known); };
    auto opened = openServerStore(store, options);
    if (!opened) {
        tellProblem(opened.error());
        return Unexpected(ExitCode::StoreRefused);
    }
    ServerStore &server = **opened;
    records = server.records();
    records->setFailureHandler([&notice](const DbFailure &failure) { notice.add(failure); });
    log.probe();
    if (const auto users = seeToFirstUser(*records, store); !users)
        return Unexpected(users.error());
    const int code = sellFromServer(line, store, server, *records, wait, notice);
    server.setWaitHook({});
    return code;
}

} // namespace harrowby::app
