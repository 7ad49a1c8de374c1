// SPDX-License-Identifier: MIT
#pragma once

#include "postgres/actions.h"

#include <array>
#include <cstdint>
#include <optional>
#include <random>
#include <vector>

namespace harrowby::test {

/// The choices of one run, so that a run can be gone through again with the next ones until all have been taken; or
/// choices at random.
class Choices
{
public:
    Choices() = default;
    explicit Choices(unsigned seed) : m_random(seed) {}

    /// One of 0 … options - 1.
    [[nodiscard]] int choose(int options);
    /// To the next run; false when there is none.
    [[nodiscard]] bool next();

private:
    struct Choice
    {
        int taken = 0;
        int options = 0;
    };
    std::vector<Choice> m_path;
    std::size_t m_at = 0;
    std::optional<std::mt19937> m_random;
};

/// Thrown out of a program that is killed.
struct ProgramKilled
{
};

/// Two machines, one the primary and one its synchronous standby, the network to them and the clock, each of which
/// fails where Choices says so: answers and whole connections are lost, what was sent arrives later or never, a wait
/// for the standby ends unconfirmed, machines die and come back, the standby is promoted while the old primary lives or
/// not. Every answer comes by steps: sent, carried out, copied to the standby, answered, heard; whatever may happen may
/// do so between any two of them.
class SimulatedPair final : public postgres::ActionServer
{
public:
    /// At most so many failures in a run.
    SimulatedPair(Choices &choices, int failures);

    void enter(Phase phase) override;
    [[nodiscard]] bool isOver() override;
    [[nodiscard]] Result<void, PgError> reach() override;
    void drop() override;
    [[nodiscard]] postgres::ActionAnswer act(const postgres::ActionNumber &action,
                                             const postgres::Write &write) override;
    [[nodiscard]] postgres::ActionAnswer confirm(const postgres::ActionNumber &action) override;
    [[nodiscard]] postgres::ActionAnswer claim(const postgres::ActionNumber &action) override;

    /// For what fails outside: whether it does so here. Counts as a failure.
    [[nodiscard]] bool failsHere();
    /// From now on nothing fails, and both machines are back.
    void heal();
    /// Everything that is still under way arrives.
    void arriveAll();
    /// How often the write is there: on the primary, which is the only truth.
    [[nodiscard]] int timesDone(int write) const;
    [[nodiscard]] const std::vector<int> &sent() const { return m_sent; } ///< writes, in the order of their sendings

private:
    enum class Request { Act, Confirm, Claim };
    enum class Stage { Sent, Waiting, Copied, Answered, Gone };
    enum class Event { OwnStep, OtherStep, Cut, Die, Promote, EndWait, Refuse, Kill };

    struct Entry ///< of a machine's log
    {
        QUuid writer;
        std::int64_t last = 0;
        int write = -1;
    };
    struct Machine
    {
        std::vector<Entry> log;
        int timeline = 1;
        int life = 0; ///< counts its starts
        bool isUp = true;
        bool isPrimary = false;
        bool needsStandby = true; ///< of a primary: to answer a write
        bool hasStandby = false;  ///< of a primary: the other one follows it
    };
    struct Message
    {
        Request request = Request::Act;
        postgres::ActionNumber action;
        int write = -1;
        std::size_t machine = 0;
        Stage stage = Stage::Sent;
        std::size_t entry = 0; ///< in the machine's log, once it is carried out
        postgres::ActionAnswer answer = {};
    };
    struct Option
    {
        Event event = Event::OwnStep;
        std::size_t message = 0;
    };

    void connectTo(std::size_t machine);
    [[nodiscard]] postgres::ActionAnswer send(Message message);
    [[nodiscard]] std::vector<Option> options(std::size_t own) const;
    void addFailures(std::vector<Option> &options, std::size_t own) const;
    /// The program's answer, once there is one.
    [[nodiscard]] std::optional<postgres::ActionAnswer> happen(const Option &option, std::size_t own);

    [[nodiscard]] bool isLocked(const Message &message) const;
    [[nodiscard]] bool canStep(const Message &message) const;
    void step(Message &message);
    void carryOut(Message &message);
    void append(Message &message, std::int64_t last, int write);
    [[nodiscard]] std::int64_t lastOf(const Machine &machine, const QUuid &writer) const;

    [[nodiscard]] std::size_t truthMachine() const;
    [[nodiscard]] bool canPromote() const;
    [[nodiscard]] bool needsRepair(std::size_t machine) const;
    void die(std::size_t machine);
    void promote();
    void repair(std::size_t machine);

    Choices &m_choices;
    int m_failuresLeft;
    bool m_isHealed = false;
    int m_attempts = 0; ///< in this phase
    std::array<Machine, 2> m_machines;
    std::vector<Message> m_messages; ///< the last one is that which the program waits for
    std::optional<std::size_t> m_connected;
    int m_connectedLife = 0;
    std::vector<int> m_sent;
};

} // namespace harrowby::test
