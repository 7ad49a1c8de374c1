// SPDX-License-Identifier: MIT
#pragma once

#include "postgres/aside.h"
#include "postgres/server_choice.h"
#include "postgres/server_link.h"
#include "postgres/server_target.h"

#include <QByteArray>
#include <QList>

#include <memory>
#include <optional>
#include <utility>

namespace harrowby::postgres {

/// One machine's way to a usable connection: its address, the connection, and what the server says about itself. Goes
/// on in steps that never block.
class ServerAttempt
{
public:
    /// `options` are those of connectOptions().
    ServerAttempt(ConnectOptions options, Host host, const PgTarget &target, const PgWaits &waits);

    [[nodiscard]] bool isUnderWay() const { return m_state < State::Known; }
    [[nodiscard]] bool isKnown() const { return m_state == State::Known; }
    /// What it waits for.
    [[nodiscard]] pollfd wanted() const;
    /// Goes on after that.
    void advance();
    /// Its time is over.
    void expire();

    [[nodiscard]] const Host &host() const { return m_host; }
    /// Where else the name leads to; told once. Each address is a way of its own: libpq would not leave a silent one.
    [[nodiscard]] QList<Host> takeOtherAddresses() { return std::exchange(m_otherAddresses, {}); }
    /// Once it isKnown().
    [[nodiscard]] const ServerFacts &facts() const { return m_facts; }
    [[nodiscard]] std::unique_ptr<ServerLink> takeLink() { return std::move(m_link); }
    /// Once it is neither under way nor known.
    [[nodiscard]] const PgError &error() const { return m_error; }

private:
    enum class State { Resolving, Connecting, Asking, Known, Failed };

    void takeAddresses();
    void begin();
    void connectOn();
    void ask();
    void takeAnswers();
    void takeAnswer(const PgResult &result);
    void fail(PgError error);
    /// Of what libpq or the server has said.
    void failHere(PgError error);

    ConnectOptions m_options;
    Host m_host;
    QList<Host> m_otherAddresses;
    PgTarget m_target;
    PgWaitHook m_hook;
    std::chrono::milliseconds m_answer;
    State m_state = State::Connecting;
    std::optional<Aside<PgAddresses>> m_lookup;
    std::unique_ptr<ServerLink> m_link;
    bool m_wantsToWrite = true;
    int m_answers = 0; ///< results with rows so far
    ServerFacts m_facts;
    PgError m_error;
};

/// The server's own limit for a lock that goes with a time for an answer: the server speaks first. It waits for a row
/// twice where somebody else waits for it already, for that one's turn and then for its end, each time for so long.
[[nodiscard]] std::chrono::milliseconds lockLimit(std::chrono::milliseconds answer);
/// The one that a session has by itself. Of one for statements that may meet a lock it is short: the server tells of
/// no wait that ended well, and what is sent again is one from its beginning.
[[nodiscard]] std::chrono::milliseconds usualLockLimit(PgTarget::Use use, std::chrono::milliseconds answer);

} // namespace harrowby::postgres
