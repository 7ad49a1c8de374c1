// SPDX-License-Identifier: MIT
#include "postgres/writer.h"

#include "postgres/shop_memory.h"
#include "postgres/transaction.h"

#include <QScopeGuard>
#include <QUuid>

#include <algorithm>
#include <utility>

namespace harrowby::postgres {

namespace {

using namespace Qt::StringLiterals;
using Kind = PgError::Kind;
using Outcome = Actions::Outcome;
using Phase = ActionServer::Phase;

/// Whether the write ended like this because of the time that it took.
bool isTrouble(const PgError &error)
{
    return mayPass(error) || error.kind == Kind::GivenUp || error.kind == Kind::NotConfirmed;
}

} // namespace

Writer::Engine::Engine(Writer &writer, const QString &folder) :
    journal(folder), server(writer.m_access.session(), [&writer] { return writer.connect(); }), actions(server, journal)
{
    server.setHook(writer.m_access.waits().hook);
}

Writer::Writer(ServerAccess &access, const QString &stateFolder, std::chrono::milliseconds rest) :
    m_access(access), m_stateFolder(postgres::stateFolder(stateFolder)), m_rest(rest)
{
}

void Writer::setResolvedHandler(ResolvedHandler handler)
{
    m_handler = std::move(handler);
    if (m_engine)
        passOnHandler();
}

void Writer::passOnHandler()
{
    if (!m_handler)
        return m_engine->actions.setResolvedHandler({});
    m_engine->actions.setResolvedHandler(
        [this](const OpenAction &open, Outcome outcome) { m_handler(open.what, outcome); });
}

/// The journal belongs to one store, and only the server can say which this is.
std::optional<PgError> Writer::prepare()
{
    if (m_engine)
        return {};
    const auto results = m_access.read("select harrowby.store_identity()");
    if (!results)
        return results.error();
    const QByteArrayView identity = results->front().rowCount() == 1 ? results->front().text(0, 0) : QByteArrayView();
    const QUuid store = QUuid::fromString(QLatin1StringView(identity));
    if (store.isNull())
        return PgError{Kind::Unfit, {}, u"the store on the server has no identity"_s, false};
    m_engine = std::make_unique<Engine>(*this, folderOf(store, m_stateFolder));
    passOnHandler();
    return {};
}

/// In the middle of a write. What that waits for is of the time that the action's rest has.
Result<void, PgError> Writer::connect()
{
    ActionTime &time = m_access.time();
    if (m_engine->server.phase() == Phase::Resending)
        time.noteWrite(); // it may be there
    time.noteTrouble();
    setTimes();
    return m_access.connect();
}

void Writer::setTimes()
{
    ActionTime &time = m_access.time();
    m_access.noteLocks(); // of a sending before
    ActionPatience patience;
    patience.sending = time.hasWritten() ? time.left() : m_access.waits().connecting;
    patience.resending = time.hasWritten() ? time.left() : m_rest;
    m_engine->server.setPatience(patience);
    m_engine->server.setBudget(m_access.budget());
}

std::optional<PgError> Writer::resolve()
{
    if (auto error = prepare())
        return error;
    m_access.time().beginStatement();
    setTimes();
    m_engine->actions.resolve();
    return {};
}

/// Why no write can begin.
std::optional<PgError> Writer::beginWrite()
{
    if (auto error = prepare())
        return error;
    ActionTime &time = m_access.time();
    time.beginStatement();
    if (time.isOver() && m_access.session().isLost())
        return m_access.noTimeLeft();
    if (time.isOver() && m_engine->actions.hasOpen())
        return m_engine->actions.whyOpen(); // it has been asked for in this action
    setTimes();
    return {};
}

Result<ActionNumber, PgError> Writer::take()
{
    if (auto error = beginWrite())
        return Unexpected(*std::move(error));
    auto taken = m_engine->actions.take();
    if (!taken)
        m_access.time().giveUp();
    return taken;
}

Actions::End Writer::find(const ActionNumber &action, const QString &what, const PgError &error)
{
    setTimes();
    if (error.kind == Kind::GivenUp)
        m_engine->server.giveUp();
    m_isWriting = true;
    const auto end = qScopeGuard([this] { m_isWriting = false; });
    return m_engine->actions.find(action, what, error);
}

Actions::End Writer::write(const Write &write)
{
    if (m_transaction != nullptr) {
        const auto results = m_transaction->run(write.condition + write.statement);
        return results ? Actions::End{Outcome::Done, {}, results->back().affectedRows()}
                       : Actions::End{Outcome::Refused, results.error()};
    }
    if (auto error = beginWrite())
        return {Outcome::Refused, *std::move(error)};
    m_isWriting = true;
    const auto end = qScopeGuard([this] { m_isWriting = false; });
    return ended(m_engine->actions.write(write));
}

/// What this write has cost the action.
Actions::End Writer::ended(Actions::End end) const
{
    ActionTime &time = m_access.time();
    m_access.noteLocks();
    if (end.outcome != Outcome::Refused)
        time.noteWrite();
    if (end.outcome == Outcome::Done)
        return end;
    if (isTrouble(end.error) || m_engine->actions.hasOpen())
        time.giveUp(); // its own time is used up, and the action's with it
    return end;
}

void Writer::giveUp()
{
    if (m_isWriting)
        m_engine->server.giveUp();
}

bool Writer::mayGiveUp() const
{
    if (!m_isWriting || m_engine->server.phase() == Phase::Sending)
        return m_access.time().hasWritten();
    return m_engine->server.phase() == Phase::Resending;
}

} // namespace harrowby::postgres
