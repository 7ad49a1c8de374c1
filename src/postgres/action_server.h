// SPDX-License-Identifier: MIT
#pragma once

#include "basic/result.h"
#include "postgres/server_error.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QUuid>

#include <cstdint>

/// How a write travels to the server, so that it is there exactly once: with a number, in the number's transaction. The
/// server's part is schema/30_actions.sql, the client's actions.h.
namespace harrowby::postgres {

/// Names one write for good.
struct ActionNumber
{
    QUuid writer; ///< one run of one program
    std::int64_t number = 0;

    bool operator==(const ActionNumber &) const = default;
};

/// "harrowby.NAME('WRITER', NUMBER)"
[[nodiscard]] QByteArray actionCall(const QByteArray &name, const ActionNumber &action);

/// The server's word for a number that it has had.
inline constexpr QByteArrayView arrivedBefore("HB001");

/// One change of the store.
struct Write
{
    QByteArray condition; ///< statements that run between number and write, each with its ";"; they end with HB002
                          ///< (harrowby.require()) when what was read before has changed. Empty: none
    QByteArray statement; ///< one UPDATE, INSERT or DELETE, in the server's dialect, without a ";"
    QString what;         ///< the write in words for a person, without what is secret; kept on this machine's disk
    QString note = {};    ///< kept there in its place, with what tells the row from others; may be empty
};

/// What came back for one sending.
enum class Heard {
    Done,          ///< carried out, and confirmed by every server that has to
    Refused,       ///< taken back: nothing of this sending is there or will be
    Locked,        ///< taken back, because another's lock stayed too long
    Collided,      ///< taken back, because of a deadlock: the same may pass now
    ArrivedBefore, ///< taken back: the server has had this number, or it was claimed
    NotTaken,      ///< never sent, or to a server that may not be written to
    NotConfirmed,  ///< carried out here, and perhaps lost with this server
    Lost,          ///< no answer: it may have arrived, or arrive at any time
};

struct ActionAnswer
{
    Heard heard = Heard::Lost;
    std::int64_t value = 0;    ///< of Done: 0 or 1 from confirm(), a number from claim()
    PgError error = {};        ///< of everything but Done
    std::int64_t changed = -1; ///< rows, of act() that is Done
};

/// The server, as Actions sees it: whichever of the shop's servers is the right one now. No function throws.
class ActionServer
{
public:
    /// What the time is for that isOver() counts.
    enum class Phase {
        Sending,   ///< nothing of the write is under way
        Resending, ///< something may be
        Claiming,  ///< it has been given up
    };

    virtual ~ActionServer() = default;

    virtual void enter(Phase phase) = 0;
    /// Whether the time of this phase has passed, or the user has given up.
    [[nodiscard]] virtual bool isOver() = 0;

    /// Sees to a connection to the server that may be written to. Tried once; called again in the same phase, it first
    /// waits a little.
    [[nodiscard]] virtual Result<void, PgError> reach() = 0;
    /// Lets go of the connection. Cancels nothing: a cancelled wait for the standby would end as a success.
    virtual void drop() = 0;

    /// harrowby.act(), the condition and the statement in one transaction and one round trip.
    [[nodiscard]] virtual ActionAnswer act(const ActionNumber &action, const Write &write) = 0;
    /// harrowby.confirm_action()
    [[nodiscard]] virtual ActionAnswer confirm(const ActionNumber &action) = 0;
    /// harrowby.claim_action()
    [[nodiscard]] virtual ActionAnswer claim(const ActionNumber &action) = 0;
};

} // namespace harrowby::postgres
