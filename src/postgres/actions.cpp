// SPDX-License-Identifier: MIT
#include "postgres/actions.h"

#include "basic/logging.h"

#include <limits>
#include <utility>

namespace harrowby::postgres {

namespace {

using namespace Qt::StringLiterals;
using Phase = ActionServer::Phase;

/// Claimed for a writer that has ended: whatever of it arrives from then on is refused. The claim takes the greatest
/// number that there is.
constexpr std::int64_t retirement = std::numeric_limits<std::int64_t>::max() - 1;

bool isGivenUp(const PgError &error)
{
    return error.kind == PgError::Kind::GivenUp;
}

/// The reason for a write that was not done. What was heard may be of a sending, or of another write, that might have
/// been.
PgError ofOneNotDone(PgError heard)
{
    if (heard.kind == PgError::Kind::NotConfirmed)
        heard.kind = PgError::Kind::Lost;
    heard.mayBeDone = false;
    return heard;
}

} // namespace

Actions::Actions(ActionServer &server, ActionJournal &journal, const QUuid &writer) :
    m_server(server), m_journal(journal), m_left(journal.leftBehind(Left::WithoutOpen))
{
    enter(writer);
}

Actions::~Actions()
{
    if (!m_open)
        m_journal.leave(m_writer);
}

void Actions::setResolvedHandler(ResolvedHandler handler)
{
    m_handler = std::move(handler);
    if (!m_handler)
        return;
    for (LeftWriter &left : m_journal.leftBehind(Left::All))
        m_left.push_back(std::move(left));
}

/// Begins as a new writer. Its identity is on the disk before the first number is sent.
void Actions::enter(const QUuid &writer)
{
    m_writer = writer;
    m_last = 0;
    m_isRetired = false;
    if (const auto entered = m_journal.enter(writer); !entered)
        qCWarning(lcStore, "An unknown write could not be noted here: %ls", qUtf16Printable(entered.error()));
}

Actions::End Actions::write(const Write &write)
{
    const auto taken = take();
    if (!taken)
        return {Outcome::Refused, taken.error()};
    const ActionNumber action = *taken;
    m_changed = -1;
    switch (send(action, write)) {
    case Known::Done:
        return {Outcome::Done, {}, m_changed};
    case Known::NotDone:
        return {Outcome::Refused, ofOneNotDone(m_error)};
    case Known::Later:
    case Known::Open:
        break;
    }
    return unknown(action, write.note.isEmpty() ? write.what : write.note);
}

Result<ActionNumber, PgError> Actions::take()
{
    if (!resolve())
        return Unexpected(whyOpen());
    if (m_isRetired) {
        m_journal.leave(m_writer);
        enter(QUuid::createUuid());
    }
    return ActionNumber{m_writer, ++m_last};
}

/// It has the whole time of a write, unless a person has ended that: what is under way may wait for a standby.
Actions::End Actions::find(const ActionNumber &action, const QString &what, const PgError &error)
{
    m_error = error;
    m_server.drop();
    Known known = isGivenUp(error) ? Known::Open : claim(action, Phase::Resending);
    if (known == Known::Open)
        known = claim(action);
    switch (known) {
    case Known::Done:
        return {Outcome::Done, {}};
    case Known::NotDone:
        return {Outcome::Refused, ofOneNotDone(error)};
    default:
        return unknown(action, what);
    }
}

Actions::Known Actions::send(const ActionNumber &action, const Write &write)
{
    bool isOpen = false; // whether some sending may be there, or arrive yet
    m_server.enter(Phase::Sending);
    do {
        const Sending sending = sendOnce(action, write);
        if (sending == Sending::Done)
            return Known::Done;
        if (!isOpen && (sending == Sending::Refused || sending == Sending::Locked))
            return Known::NotDone;
        if (sending == Sending::Refused)
            break;
        const bool isFirst = sending == Sending::Open && !std::exchange(isOpen, true);
        if (isFirst && isGivenUp(m_error))
            break; // the time of another phase would begin anew
        if (isFirst)
            m_server.enter(Phase::Resending);
    } while (!m_server.isOver());
    return isOpen ? claim(action) : Known::NotDone;
}

Actions::Sending Actions::sendOnce(const ActionNumber &action, const Write &write)
{
    if (!reach())
        return Sending::Again;
    const ActionAnswer answer = heard(m_server.act(action, write));
    switch (answer.heard) {
    case Heard::Done:
        m_changed = answer.changed;
        return Sending::Done;
    case Heard::Refused:
        return Sending::Refused;
    case Heard::Locked:
        return Sending::Locked;
    case Heard::Collided:
    case Heard::NotTaken:
        return Sending::Again;
    case Heard::ArrivedBefore:
        return confirmArrival(action);
    case Heard::NotConfirmed:
    case Heard::Lost:
        break;
    }
    return Sending::Open;
}

/// The number stands on the server, perhaps without its standby knowing. The next confirmed write of the same server
/// comes after it in the log, so it confirms both.
Actions::Sending Actions::confirmArrival(const ActionNumber &action)
{
    const ActionAnswer answer = heard(m_server.confirm(action));
    if (answer.heard != Heard::Done)
        return Sending::Open;
    if (answer.value != 0)
        return Sending::Done;
    // A program that took this one for dead has retired its writer; say, after a copy of this machine was started.
    m_isRetired = true;
    return Sending::Refused;
}

/// Asked again after a loss: a claim that has succeeded unheard succeeds again.
Actions::Known Actions::claim(const ActionNumber &action, Phase phase)
{
    m_server.enter(phase);
    do {
        if (!reach())
            continue;
        const ActionAnswer answer = heard(m_server.claim(action));
        if (answer.heard != Heard::Done)
            continue;
        m_last = action.writer == m_writer ? action.number + 1 : m_last; // the claim has used that
        if (answer.value == action.number)
            return Known::Done;
        return answer.value == action.number + 1 ? Known::NotDone : Known::Later;
    } while (!m_server.isOver());
    return Known::Open;
}

/// Sees to what an answer says about the connection.
ActionAnswer Actions::heard(ActionAnswer answer)
{
    if (answer.heard != Heard::Done)
        m_error = answer.error;
    if (answer.heard == Heard::Lost || answer.heard == Heard::NotConfirmed || answer.heard == Heard::NotTaken)
        m_server.drop();
    return answer;
}

bool Actions::reach()
{
    auto reached = m_server.reach();
    if (!reached)
        m_error = std::move(reached).error();
    return reached.has_value();
}

/// First on the disk, then told.
Actions::End Actions::unknown(const ActionNumber &action, const QString &what)
{
    m_open = OpenAction{action, what};
    End end{Outcome::Unknown, m_error};
    if (const auto kept = m_journal.keep(*m_open); !kept) {
        qCWarning(lcStore, "The unknown write could not be noted here: %ls", qUtf16Printable(kept.error()));
        // In front, as a long reason is cut short where it is shown.
        end.error.text = u"The next start will not know of this, as it could not be noted here ("_s + kept.error() +
                         u"). "_s + m_error.text;
    }
    return end;
}

PgError Actions::whyOpen() const
{
    return ofOneNotDone(m_error);
}

bool Actions::resolve()
{
    if (m_open && !resolveOwn())
        return false;
    while (!m_left.empty() && resolveLeft(m_left.back()))
        m_left.pop_back();
    return m_left.empty();
}

bool Actions::resolveOwn()
{
    const Known known = claim(m_open->action);
    if (known == Known::Open)
        return false;
    const OpenAction open = *std::exchange(m_open, {});
    m_isRetired = m_isRetired || known == Known::Later; // the server is ahead of this writer's numbers
    tell(open, known);
    m_journal.resolved();
    return true;
}

bool Actions::resolveLeft(const LeftWriter &left)
{
    const Known known = claim(left.open ? left.open->action : ActionNumber{left.writer, retirement});
    if (known == Known::Open)
        return false;
    if (left.open)
        tell(*left.open, known);
    m_journal.leave(left.writer);
    return true;
}

void Actions::tell(const OpenAction &open, Known known) const
{
    if (known == Known::Later)
        qCWarning(lcStore, "Nobody can find out any more whether this was done: %ls", qUtf16Printable(open.what));
    else if (!m_handler)
        qCWarning(lcStore, "Known now, with nobody to tell: %s: %ls", known == Known::Done ? "done" : "not done",
                  qUtf16Printable(open.what));
    if (!m_handler)
        return;
    if (known == Known::Later)
        m_handler(open, Outcome::Unknown);
    else
        m_handler(open, known == Known::Done ? Outcome::Done : Outcome::Refused);
}

} // namespace harrowby::postgres
