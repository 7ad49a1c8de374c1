// SPDX-License-Identifier: MIT
#pragma once

#include "postgres/action_journal.h"
#include "postgres/action_server.h"

#include <QUuid>

#include <cstdint>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

namespace harrowby::postgres {

/// Has each write done exactly once, or says truly that it was not, over broken connections and other servers.
///
/// A write is sent until the server's answer settles it. When the answer stays away, the same write is sent again with
/// the same number; the server takes a number once. When time is up, the number is claimed: from then on the write
/// cannot arrive any more, unless it has already. Where even that gets no answer, the write is unknown: it goes into
/// the journal, and nothing else is written before it is resolved, by this program or the next one.
///
/// One thread. Server and journal outlive it.
class Actions
{
public:
    enum class Outcome {
        Done,
        Refused, ///< not done, and it never will be
        Unknown, ///< told once; later the handler tells what became of it
    };

    struct End
    {
        Outcome outcome = Outcome::Refused;
        PgError error;             ///< of everything but Done
        std::int64_t changed = -1; ///< rows, of Done; negative where it was done by a sending whose answer was lost
    };

    /// Told once with each write that had been unknown, of this program or of one before: Done or Refused. Unknown when
    /// nobody can find out any more.
    using ResolvedHandler = std::function<void(const OpenAction &open, Outcome outcome)>;

    explicit Actions(ActionServer &server, ActionJournal &journal, const QUuid &writer = QUuid::createUuid());
    ~Actions();
    Actions(const Actions &) = delete;
    Actions &operator=(const Actions &) = delete;

    /// From then on what programs before have left unknown is resolved here, too; without a handler it stays for one
    /// that has somebody to tell.
    void setResolvedHandler(ResolvedHandler handler);

    /// Refused, and not sent, while an earlier write cannot be resolved.
    [[nodiscard]] End write(const Write &write);

    /// For a transaction that the caller sends itself and that begins with harrowby.act(): its number. The error as
    /// with write() when nothing may be sent.
    [[nodiscard]] Result<ActionNumber, PgError> take();
    /// The server has had a number of this writer that was never sent: a program that took this one for dead has
    /// retired its writer. The next number is another writer's.
    void retire() { m_isRetired = true; }
    /// What has become of such a transaction when its end was sent, and `error` came for an answer. It is never sent
    /// again under its number.
    [[nodiscard]] End find(const ActionNumber &action, const QString &what, const PgError &error);

    /// Tries to resolve what is open, of this program and of those before. Whether nothing is open any more.
    bool resolve();
    /// Whether something keeps further writes away.
    [[nodiscard]] bool hasOpen() const { return m_open || !m_left.empty(); }
    /// Why that is still open, as the reason of a write that is not sent for it.
    [[nodiscard]] PgError whyOpen() const;

private:
    /// What is known of a write.
    enum class Known {
        Done,
        NotDone,
        Later, ///< its writer went on after it, which it does only when it is resolved
        Open,
    };
    /// What one sending of it has come to.
    enum class Sending {
        Done,
        Refused, ///< this one, for good
        Locked,  ///< this one, for good; another may pass
        Again,   ///< it left nothing behind
        Open,    ///< it may be there, or arrive yet
    };

    void enter(const QUuid &writer);
    [[nodiscard]] Known send(const ActionNumber &action, const Write &write);
    [[nodiscard]] Sending sendOnce(const ActionNumber &action, const Write &write);
    [[nodiscard]] Sending confirmArrival(const ActionNumber &action);
    [[nodiscard]] Known claim(const ActionNumber &action, ActionServer::Phase phase = ActionServer::Phase::Claiming);
    [[nodiscard]] ActionAnswer heard(ActionAnswer answer);
    [[nodiscard]] bool reach();
    [[nodiscard]] End unknown(const ActionNumber &action, const QString &what);
    [[nodiscard]] bool resolveOwn();
    [[nodiscard]] bool resolveLeft(const LeftWriter &left);
    void tell(const OpenAction &open, Known known) const;

    ActionServer &m_server;
    ActionJournal &m_journal;
    QUuid m_writer;
    std::int64_t m_last = 0;  ///< the last number that was used
    bool m_isRetired = false; ///< the server takes none of this writer's numbers any more
    std::optional<OpenAction> m_open;
    std::vector<LeftWriter> m_left; ///< of programs before, not yet resolved
    PgError m_error = {PgError::Kind::Lost, {}, QStringLiteral("the server has not been asked yet")}; ///< the last one
    std::int64_t m_changed = -1; ///< by the latest sending
    ResolvedHandler m_handler;
};

} // namespace harrowby::postgres
