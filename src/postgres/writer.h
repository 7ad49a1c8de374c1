// SPDX-License-Identifier: MIT
#pragma once

#include "postgres/actions.h"
#include "postgres/server_access.h"
#include "postgres/session_actions.h"

#include <QString>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

namespace harrowby::postgres {

class Transaction;

/// Has writes done exactly once over the till's session. What that takes on this machine's disk, in a folder of the
/// store's, is there from the first write on.
class Writer
{
public:
    using ResolvedHandler = std::function<void(const QString &what, Actions::Outcome outcome)>;

    /// `rest` is the time for a write that may be under way.
    Writer(ServerAccess &access, const QString &stateFolder, std::chrono::milliseconds rest);

    /// Who has none leaves the open writes of earlier programs to one that has.
    void setResolvedHandler(ResolvedHandler handler);

    /// Sees to what earlier programs and this one have left open; the reason when the server cannot be asked.
    [[nodiscard]] std::optional<PgError> resolve();
    [[nodiscard]] Actions::End write(const Write &write);

    // For Transaction

    /// See Actions.
    [[nodiscard]] Result<ActionNumber, PgError> take();
    void retire() { m_engine->actions.retire(); }
    [[nodiscard]] Actions::End find(const ActionNumber &action, const QString &what, const PgError &error);
    /// Notes what this end has cost the action, and gives it back.
    Actions::End ended(Actions::End end) const;
    [[nodiscard]] ServerAccess &access() { return m_access; }
    /// While there is one, what else is written is part of it.
    void setTransaction(Transaction *transaction) { m_transaction = transaction; }
    [[nodiscard]] Transaction *transaction() const { return m_transaction; }

    /// Whether the wait that goes on now may be ended by a person.
    [[nodiscard]] bool mayGiveUp() const;
    /// A person has ended it.
    void giveUp();

private:
    struct Engine
    {
        Engine(Writer &writer, const QString &folder);

        ActionFolder journal;
        SessionActions server;
        Actions actions;
    };

    [[nodiscard]] std::optional<PgError> prepare();
    [[nodiscard]] std::optional<PgError> beginWrite();
    [[nodiscard]] Result<void, PgError> connect();
    void setTimes();
    void passOnHandler();

    ServerAccess &m_access;
    QString m_stateFolder;
    std::chrono::milliseconds m_rest;
    ResolvedHandler m_handler;
    std::unique_ptr<Engine> m_engine; ///< once it is known which store this is
    Transaction *m_transaction = nullptr;
    bool m_isWriting = false;
};

} // namespace harrowby::postgres
