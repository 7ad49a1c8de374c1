// SPDX-License-Identifier: MIT
#include "tests/postgres/simulated_pair.h"

#include <algorithm>
#include <utility>

namespace harrowby::test {

namespace {

using namespace postgres;

/// Attempts in one phase: one that fails, one that heals what the first has left, one more.
constexpr int mostAttempts = 3;

} // namespace

int Choices::choose(int options)
{
    if (options <= 1)
        return 0;
    if (m_random)
        return std::uniform_int_distribution(0, options - 1)(*m_random);
    if (m_at == m_path.size())
        m_path.push_back({0, options});
    return m_path[m_at++].taken;
}

bool Choices::next()
{
    m_at = 0;
    while (!m_path.empty() && m_path.back().taken + 1 == m_path.back().options)
        m_path.pop_back();
    if (m_path.empty())
        return false;
    ++m_path.back().taken;
    return true;
}

SimulatedPair::SimulatedPair(Choices &choices, int failures) : m_choices(choices), m_failuresLeft(failures)
{
    m_machines[0].isPrimary = true;
    m_machines[0].hasStandby = true;
}

// ---- what the program sees

void SimulatedPair::enter(Phase /*phase*/)
{
    m_attempts = 0;
}

bool SimulatedPair::isOver()
{
    if (++m_attempts >= mostAttempts)
        return true;
    return !m_isHealed && m_choices.choose(2) == 1;
}

Result<void, PgError> SimulatedPair::reach()
{
    if (m_connected && m_machines[*m_connected].isUp && m_machines[*m_connected].life == m_connectedLife)
        return {};
    enum class Way { ToTruth, ToOld, Repair0, Repair1, Promote, Nowhere };
    while (true) {
        const std::size_t truth = truthMachine();
        std::vector<Way> ways;
        if (m_machines[truth].isUp)
            ways.push_back(Way::ToTruth);
        if (m_failuresLeft > 0 && m_machines[1 - truth].isUp && m_machines[1 - truth].isPrimary)
            ways.push_back(Way::ToOld);
        if (needsRepair(0))
            ways.push_back(Way::Repair0);
        if (needsRepair(1))
            ways.push_back(Way::Repair1);
        if (!m_machines[truth].isUp && canPromote())
            ways.push_back(Way::Promote);
        if (!m_isHealed && (m_failuresLeft > 0 || !m_machines[truth].isUp))
            ways.push_back(Way::Nowhere);
        switch (ways[static_cast<std::size_t>(m_choices.choose(static_cast<int>(ways.size())))]) {
        case Way::ToOld:
            --m_failuresLeft;
            connectTo(1 - truth);
            return {};
        case Way::ToTruth:
            connectTo(truth);
            return {};
        case Way::Repair0:
            repair(0);
            break;
        case Way::Repair1:
            repair(1);
            break;
        case Way::Promote:
            promote();
            break;
        case Way::Nowhere:
            m_failuresLeft -= m_machines[truth].isUp ? 1 : 0;
            return Unexpected(PgError{PgError::Kind::CannotConnect, {}, {}});
        }
    }
}

void SimulatedPair::connectTo(std::size_t machine)
{
    m_connected = machine;
    m_connectedLife = m_machines[machine].life;
}

void SimulatedPair::drop()
{
    m_connected.reset();
}

ActionAnswer SimulatedPair::act(const ActionNumber &action, const Write &write)
{
    m_sent.push_back(write.statement.toInt());
    return send({Request::Act, action, m_sent.back()});
}

ActionAnswer SimulatedPair::confirm(const ActionNumber &action)
{
    return send({Request::Confirm, action});
}

ActionAnswer SimulatedPair::claim(const ActionNumber &action)
{
    return send({Request::Claim, action});
}

ActionAnswer SimulatedPair::send(Message message)
{
    message.machine = m_connected.value();
    const std::size_t own = m_messages.size();
    m_messages.push_back(std::move(message));
    while (true) {
        const std::vector<Option> possible = options(own);
        const int chosen = m_choices.choose(static_cast<int>(possible.size()));
        if (const auto answer = happen(possible[static_cast<std::size_t>(chosen)], own))
            return *answer;
    }
}

// ---- what may happen next

std::vector<SimulatedPair::Option> SimulatedPair::options(std::size_t own) const
{
    std::vector<Option> options;
    if (m_messages[own].stage == Stage::Answered || canStep(m_messages[own]))
        options.push_back({Event::OwnStep, own});
    for (std::size_t other = 0; other < m_messages.size(); ++other) {
        if (other != own && canStep(m_messages[other]))
            options.push_back({Event::OtherStep, other});
    }
    if (m_isHealed && !options.empty())
        return {isLocked(m_messages[own]) ? options.back() : options.front()};
    if (m_failuresLeft > 0)
        addFailures(options, own);
    else if (options.empty() || options.front().event != Event::OwnStep)
        options.push_back({Event::Cut, own}); // nothing will come
    return options;
}

void SimulatedPair::addFailures(std::vector<Option> &options, std::size_t own) const
{
    const Message &message = m_messages[own];
    options.push_back({Event::Cut, own});
    options.push_back({Event::Die, own});
    options.push_back({Event::Kill, own});
    if (canPromote())
        options.push_back({Event::Promote, own});
    if (message.request == Request::Act && message.stage == Stage::Sent)
        options.push_back({Event::Refuse, own});
    for (std::size_t any = 0; any < m_messages.size(); ++any) {
        if (m_messages[any].stage == Stage::Waiting)
            options.push_back({Event::EndWait, any});
    }
}

std::optional<ActionAnswer> SimulatedPair::happen(const Option &option, std::size_t own)
{
    Message &message = m_messages[option.message];
    if (option.event != Event::OwnStep && option.event != Event::OtherStep)
        m_failuresLeft = std::max(m_failuresLeft - 1, 0);
    switch (option.event) {
    case Event::OwnStep:
        if (message.stage == Stage::Answered)
            return message.answer;
        step(message);
        return {};
    case Event::OtherStep:
        step(message);
        return {};
    case Event::Cut:
        return ActionAnswer{};
    case Event::Die:
        die(message.machine);
        return ActionAnswer{};
    case Event::Promote:
        promote();
        return {};
    case Event::EndWait:
        message.stage = Stage::Answered;
        message.answer.heard = Heard::NotConfirmed;
        return {};
    case Event::Refuse:
        m_messages[own].stage = Stage::Answered;
        m_messages[own].answer.heard = Heard::Refused;
        return {};
    case Event::Kill:
        break;
    }
    throw ProgramKilled();
}

bool SimulatedPair::failsHere()
{
    if (m_isHealed || m_failuresLeft == 0 || m_choices.choose(2) == 0)
        return false;
    --m_failuresLeft;
    return true;
}

// ---- how a message comes to its answer

/// Whether another transaction of the same writer is not yet over.
bool SimulatedPair::isLocked(const Message &message) const
{
    return message.stage == Stage::Sent && std::ranges::any_of(m_messages, [&message](const Message &other) {
               return other.machine == message.machine && other.action.writer == message.action.writer &&
                      (other.stage == Stage::Waiting || other.stage == Stage::Copied);
           });
}

bool SimulatedPair::canStep(const Message &message) const
{
    const Machine &machine = m_machines[message.machine];
    switch (message.stage) {
    case Stage::Sent:
        return !isLocked(message) || &message == &m_messages.back();
    case Stage::Waiting:
        return !machine.needsStandby || (machine.hasStandby && m_machines[1 - message.machine].isUp);
    case Stage::Copied:
        return true;
    case Stage::Answered:
    case Stage::Gone:
        break;
    }
    return false;
}

void SimulatedPair::step(Message &message)
{
    Machine &machine = m_machines[message.machine];
    if (message.stage == Stage::Sent) {
        carryOut(message);
    } else if (message.stage == Stage::Waiting && machine.needsStandby) {
        Machine &standby = m_machines[1 - message.machine];
        for (std::size_t entry = standby.log.size(); entry <= message.entry; ++entry)
            standby.log.push_back(machine.log[entry]);
        message.stage = Stage::Copied;
    } else {
        message.stage = Stage::Answered;
    }
}

/// As schema/30_actions.sql has it.
void SimulatedPair::carryOut(Message &message)
{
    message.answer.heard = isLocked(message) ? Heard::Locked : Heard::Done;
    message.stage = Stage::Answered;
    if (message.answer.heard == Heard::Locked)
        return;
    const std::int64_t number = message.action.number;
    const std::int64_t last = lastOf(m_machines[message.machine], message.action.writer);
    switch (message.request) {
    case Request::Act:
        if (last < number)
            append(message, number, message.write);
        else
            message.answer.heard = Heard::ArrivedBefore;
        break;
    case Request::Confirm:
        message.answer.value = last == number ? 1 : 0;
        if (last == number)
            append(message, last, -1);
        break;
    case Request::Claim:
        message.answer.value = last < number ? number + 1 : last;
        append(message, message.answer.value, -1);
        break;
    }
}

void SimulatedPair::append(Message &message, std::int64_t last, int write)
{
    Machine &machine = m_machines[message.machine];
    message.stage = Stage::Waiting;
    message.entry = machine.log.size();
    machine.log.push_back({message.action.writer, last, write});
}

std::int64_t SimulatedPair::lastOf(const Machine &machine, const QUuid &writer) const
{
    const auto entry = std::find_if(machine.log.rbegin(), machine.log.rend(),
                                    [&writer](const Entry &any) { return any.writer == writer; });
    return entry == machine.log.rend() ? 0 : entry->last;
}

// ---- the machines

/// The one whose log counts: the last one to be promoted.
std::size_t SimulatedPair::truthMachine() const
{
    return m_machines[0].timeline > m_machines[1].timeline ? 0 : m_machines[1].isPrimary ? 1 : 0;
}

/// The standby may take over while it has all that was answered.
bool SimulatedPair::canPromote() const
{
    const std::size_t truth = truthMachine();
    return m_machines[truth].hasStandby && m_machines[1 - truth].isUp;
}

void SimulatedPair::die(std::size_t machine)
{
    m_machines[machine].isUp = false;
    for (Message &message : m_messages) {
        if (message.machine == machine)
            message.stage = Stage::Gone;
    }
}

void SimulatedPair::promote()
{
    const std::size_t old = truthMachine();
    m_machines[old].hasStandby = false;
    Machine &promoted = m_machines[1 - old];
    promoted.isPrimary = true;
    promoted.timeline = m_machines[old].timeline + 1;
    promoted.needsStandby = false;
    promoted.hasStandby = false;
}

/// A dead machine, and one that has been replaced and does not know it yet.
bool SimulatedPair::needsRepair(std::size_t machine) const
{
    const std::size_t truth = truthMachine();
    if (machine == truth)
        return !m_machines[truth].isUp;
    return m_machines[truth].isUp && (!m_machines[machine].isUp || m_machines[machine].isPrimary);
}

/// The primary starts again with all that is in its log; another one becomes its standby.
void SimulatedPair::repair(std::size_t machine)
{
    die(machine);
    m_machines[machine].isUp = true;
    ++m_machines[machine].life;
    const std::size_t truth = truthMachine();
    if (machine == truth)
        return;
    m_machines[machine].isPrimary = false;
    m_machines[machine].timeline = m_machines[truth].timeline;
    m_machines[machine].log = m_machines[truth].log;
    m_machines[truth].hasStandby = true;
    m_machines[truth].needsStandby = true;
}

// ---- the end

void SimulatedPair::heal()
{
    m_isHealed = true;
    m_failuresLeft = 0;
    for (const std::size_t machine : {truthMachine(), 1 - truthMachine()}) {
        if (needsRepair(machine))
            repair(machine);
    }
}

void SimulatedPair::arriveAll()
{
    for (std::size_t round = 0; round < m_messages.size(); ++round) {
        for (Message &message : m_messages) {
            while (canStep(message))
                step(message);
        }
    }
}

int SimulatedPair::timesDone(int write) const
{
    return static_cast<int>(std::ranges::count(m_machines[truthMachine()].log, write, &Entry::write));
}

} // namespace harrowby::test
