// SPDX-License-Identifier: MIT
#include "app/server/server_watch.h"

#include "app/records/server_words.h"
#include "app/records/store_records.h"
#include "basic/logging.h"

#include <exception>
#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

/// Of a question that costs the server nothing.
constexpr std::chrono::seconds longestAnswer{3};

/// What a server is that nobody has told of a standby: an expression.
constexpr auto unprepared = "'single'"_L1;

/// What a server says that has lost its standby, perhaps because that has taken its place.
bool isOfOneLeftAlone(const QString &protection)
{
    return protection == "waiting"_L1 || protection == "alone"_L1;
}

} // namespace

ServerWatch::ServerWatch(QString store, const QUuid &identity, std::chrono::milliseconds every, QObject *parent) :
    QObject(parent), m_store(std::move(store)), m_identity(identity), m_every(every)
{
    m_thread = std::jthread([this] { run(); });
}

ServerWatch::~ServerWatch()
{
    {
        const std::lock_guard lock(m_mutex);
        m_ends = true;
        if (m_records)
            m_records->interrupt();
    }
    m_wake.notify_all();
    m_thread.join();
}

void ServerWatch::run()
try {
    do {
        const State state = ask();
        m_last = state;
        QMetaObject::invokeMethod(
            this, [this, state] { take(state); }, Qt::QueuedConnection);
    } while (pause());
} catch (const std::exception &error) {
    qCWarning(lcStore) << "The server is not watched any more:" << error.what();
}

void ServerWatch::take(const State &state)
{
    const State before = std::exchange(m_state, state);
    if (before != state)
        Q_EMIT changed(state);
    const bool isAnother = !before.timeline.isEmpty() && before.timeline != state.timeline;
    if (state.isReached)
        Q_EMIT answered(!before.isReached || isAnother);
}

bool ServerWatch::pause()
{
    std::unique_lock lock(m_mutex);
    return !m_wake.wait_for(lock, m_every, [this] { return m_ends; });
}

std::optional<ServerProblem> ServerWatch::reach()
{
    if (m_records)
        return {};
    const auto engine = serverEngine();
    if (!engine)
        return ServerProblem{ServerProblem::Kind::NoPackage, engine.error(), {}};
    auto opened = (*engine)->openRecords(m_store, Access::Read, {}, m_identity);
    if (!opened)
        return opened.error();
    const std::lock_guard lock(m_mutex);
    if (m_ends)
        return ServerProblem{ServerProblem::Kind::GivenUp, {}, {}};
    m_records = *std::move(opened);
    m_records->setWatch([this] { return !m_patience.hasExpired(); });
    return {};
}

ServerWatch::State ServerWatch::ask()
{
    if (const auto problem = reach())
        return gone(*problem);
    m_patience.setRemainingTime(longestAnswer);
    auto answer = read(m_tellsProtection ? "harrowby.protection()"_L1 : unprepared);
    constexpr auto noSuchFunction = "42883"_L1;
    if (!answer && answer.error().engineState == noSuchFunction) { // a server that was not set up by the script
        m_tellsProtection = false;
        answer = read(unprepared);
    }
    if (!answer || answer->isEmpty()) {
        forget();
        return gone({ServerProblem::Kind::NoServer, {}, {}}); // the next one knows more
    }
    const RecordRow &row = answer->constFirst();
    const State state{true, {}, recordText(row.constFirst()), recordText(row.constLast())};
    if (isOfOneLeftAlone(state.protection))
        forget(); // a server that was replaced, and lives on, says so, too: the store's is looked for anew
    return state;
}

/// Of a server that takes writes: its timeline is in the name of the file that it writes.
Records::Answer<QList<RecordRow>> ServerWatch::read(QLatin1StringView protection)
{
    return m_records->records().read(
        {u"select %1, left(pg_walfile_name(pg_current_wal_lsn()), 8)"_s.arg(protection), {}});
}

ServerWatch::State ServerWatch::gone(const ServerProblem &problem) const
{
    return {false, goneWords(problem), m_last.protection, m_last.timeline};
}

void ServerWatch::forget()
{
    const std::lock_guard lock(m_mutex);
    m_records.reset();
}

} // namespace harrowby::app
