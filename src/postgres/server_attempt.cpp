// SPDX-License-Identifier: MIT
#include "postgres/server_attempt.h"

#include "postgres/schema.h"

#include <libpq-fe.h>

#include <algorithm>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;

namespace harrowby::postgres {

namespace {

/// In one transaction of its own, so that what the version of the schema fails with does not undo it. Nothing here is
/// the store's business: what the server's or the user's own settings might have made of a session is put right.
/// Intended: synchronous_commit is not among them; whether a write waits for a standby is settled on the server.
QByteArray sessionSettings(PgTarget::Use use, std::chrono::milliseconds lockLimit)
{
    const bool walks = use == PgTarget::Use::Walk;
    return "begin;"
           "set client_min_messages = warning;" // a commit that was not confirmed is told by one
           "set standard_conforming_strings = on;"
           "set datestyle = 'ISO, YMD';"
           "set extra_float_digits = 1;"
           "set bytea_output = 'hex';"
           "set default_transaction_isolation = 'read committed';"
           "set statement_timeout = 0;"
           "set idle_session_timeout = 0;"
           "set jit = off;"                // takes longer than any list of a shop
           "set tcp_keepalives_idle = 60;" // a till that was switched off gives its place free
           "set tcp_keepalives_interval = 10;"
           "set tcp_keepalives_count = 3;"
           "set search_path = " +
           QByteArray(searchPath) + ";set lock_timeout = " + QByteArray::number(qint64{lockLimit.count()}) +
           // A till that falls silent with a row held lets it go; a list's rows wait for its reader longer.
           ";set idle_in_transaction_session_timeout = " + (walks ? "60000" : "10000") +
           // A long list that nobody reads any more ends. Never for writes, whose wait for a standby it would end, too.
           ";set client_connection_check_interval = " + (walks ? "1000" : "0") + ";";
}

/// A primary's timeline is in the name of the file that it writes, a standby's in what it has followed last.
constexpr char factsQuery[] =
    "select pg_is_in_recovery() or current_setting('default_transaction_read_only') = 'on',"
    " case when pg_is_in_recovery() then (select lpad(to_hex(timeline_id), 8, '0') from pg_control_checkpoint())"
    " else left(pg_walfile_name(pg_current_wal_lsn()), 8) end,"
    " datname, case when datlocprovider = 'c' then datcollate"
    " else datcollate || ' of the provider ' || datlocprovider::text end," // which does not heed its collation
    " datctype, pg_encoding_to_char(encoding)"
    " from pg_database where datname = current_database();"
    "commit;";

constexpr char versionQuery[] = "select harrowby.schema_version(); select harrowby.store_identity()";

QByteArray bytes(const PgResult &result, int column)
{
    return result.text(0, column).toByteArray();
}

/// The user's own choices stand.
void addUnlessGiven(ConnectOptions &options, const QByteArray &key, const QByteArray &value)
{
    const auto isIt = [&key](const auto &option) { return option.first == key; };
    if (std::none_of(options.cbegin(), options.cend(), isIt))
        options.emplaceBack(key, value);
}

PGconn *startConnection(const ConnectOptions &options)
{
    std::vector<const char *> keys;
    std::vector<const char *> values;
    for (const auto &[key, value] : options) {
        keys.push_back(key.constData());
        values.push_back(value.constData());
    }
    keys.push_back(nullptr);
    values.push_back(nullptr);
    return PQconnectStartParams(keys.data(), values.data(), 0);
}

} // namespace

std::chrono::milliseconds lockLimit(std::chrono::milliseconds answer)
{
    return std::max(answer * 9 / 20, std::chrono::milliseconds(1)); // 0 would be none
}

std::chrono::milliseconds usualLockLimit(PgTarget::Use use, std::chrono::milliseconds answer)
{
    return use == PgTarget::Use::Walk ? lockLimit(answer) : std::max(answer / 20, std::chrono::milliseconds(1));
}

ServerAttempt::ServerAttempt(ConnectOptions options, Host host, const PgTarget &target, const PgWaits &waits) :
    m_options(std::move(options)), m_host(std::move(host)), m_target(target), m_hook(waits.hook), m_answer(waits.answer)
{
    m_options.removeIf(
        [](const auto &option) { return option.first == "client_encoding" || option.first == "application_name"; });
    m_options.emplaceBack("client_encoding", "UTF8");
    m_options.emplaceBack("application_name", m_target.programName); // whoever needs the store for itself looks for it
    addUnlessGiven(m_options, "keepalives_idle", "60");
    addUnlessGiven(m_options, "keepalives_interval", "10");
    addUnlessGiven(m_options, "keepalives_count", "3");
    if (!m_host.needsLookup()) {
        begin();
        return;
    }
    m_state = State::Resolving;
    m_lookup.emplace(
        [resolver = m_target.resolver, name = m_host.name] { return resolver ? resolver(name) : resolve(name); });
}

pollfd ServerAttempt::wanted() const
{
    if (m_state == State::Resolving)
        return {m_lookup->descriptor(), POLLIN, 0};
    if (m_state == State::Connecting)
        return {PQsocket(m_link->raw()), static_cast<short>(m_wantsToWrite ? POLLOUT : POLLIN), 0};
    return m_link->wanted();
}

void ServerAttempt::advance()
{
    switch (m_state) {
    case State::Resolving:
        takeAddresses();
        break;
    case State::Connecting:
        connectOn();
        break;
    case State::Asking:
        m_link->pump();
        takeAnswers();
        break;
    case State::Known:
    case State::Failed:
        break;
    }
}

void ServerAttempt::expire()
{
    fail({PgError::Kind::CannotConnect, {}, u"%1 does not answer"_s.arg(m_host.label())});
}

void ServerAttempt::takeAddresses()
{
    const PgAddresses addresses = m_lookup->result().value_or(PgAddresses());
    if (addresses.numeric.isEmpty()) {
        fail({PgError::Kind::CannotConnect, {}, u"%1 is not found: %2"_s.arg(m_host.label(), addresses.failure)});
        return;
    }
    for (const QByteArray &address : addresses.numeric)
        m_otherAddresses.append({m_host.name, address, m_host.port});
    m_host = m_otherAddresses.takeFirst();
    begin();
}

void ServerAttempt::begin()
{
    m_state = State::Connecting;
    m_link = std::make_unique<ServerLink>(startConnection(optionsFor(m_options, m_host)), m_hook);
    if (PQstatus(m_link->raw()) == CONNECTION_BAD)
        failHere(connectError(PQerrorMessage(m_link->raw()), false));
}

void ServerAttempt::connectOn()
{
    PGconn *connection = m_link->raw();
    const bool duringTls = PQstatus(connection) == CONNECTION_SSL_STARTUP;
    switch (PQconnectPoll(connection)) {
    case PGRES_POLLING_OK:
        ask();
        break;
    case PGRES_POLLING_FAILED:
        if (PQconnectionNeedsPassword(connection) != 0)
            failHere({PgError::Kind::Denied, {}, u"a password is asked for, and none was found"_s});
        else
            failHere(connectError(PQerrorMessage(connection), duringTls));
        break;
    case PGRES_POLLING_READING:
        m_wantsToWrite = false;
        break;
    default:
        m_wantsToWrite = true;
    }
}

void ServerAttempt::ask()
{
    QByteArray questions = sessionSettings(m_target.use, usualLockLimit(m_target.use, m_answer)) + factsQuery;
    if (m_target.schemaVersion > 0)
        questions += versionQuery;
    m_state = State::Asking;
    m_facts.server = {m_host.name, m_host.address, m_host.port, 0, PQserverVersion(m_link->raw()), true};
    if (std::optional<PgError> error = tooOld(m_facts)) // it would not know all of the settings
        fail(*std::move(error));
    else if (!m_link->send(questions, false))
        failHere(connectError(PQerrorMessage(m_link->raw()), false));
}

void ServerAttempt::takeAnswers()
{
    while (m_state == State::Asking && m_link->hasResult()) {
        pg_result *raw = m_link->take();
        if (!raw) {
            m_state = State::Known;
            return;
        }
        const PgResult result(raw);
        const ExecStatusType status = PQresultStatus(raw);
        if (status == PGRES_TUPLES_OK)
            takeAnswer(result);
        else if (status == PGRES_FATAL_ERROR && m_answers > 0 && errorOf(raw).kind != PgError::Kind::Lost)
            m_facts.schemaState = errorOf(raw).sqlState;
        else if (status != PGRES_COMMAND_OK)
            failHere(connectError(raw));
    }
}

void ServerAttempt::takeAnswer(const PgResult &result)
{
    const int answer = m_answers++;
    if (answer == 1)
        m_facts.schemaVersion = bytes(result, 0).toInt();
    if (answer == 2)
        m_facts.store = QUuid::fromString(QLatin1StringView(bytes(result, 0)));
    if (answer > 0)
        return;
    m_facts.server.isReadOnly = result.isTrue(0, 0);
    m_facts.server.timeline = bytes(result, 1).toUInt(nullptr, 16);
    m_facts.database = bytes(result, 2);
    m_facts.collation = bytes(result, 3);
    m_facts.letters = bytes(result, 4);
    m_facts.encoding = bytes(result, 5);
}

void ServerAttempt::failHere(PgError error)
{
    error.text = u"%1: %2"_s.arg(m_host.label(), error.text);
    fail(std::move(error));
}

void ServerAttempt::fail(PgError error)
{
    m_error = std::move(error);
    m_link.reset();
    m_state = State::Failed;
}

} // namespace harrowby::postgres
