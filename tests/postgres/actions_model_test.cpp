// SPDX-License-Identifier: MIT
#include "tests/postgres/simulated_pair.h"
#include "tests/program/test_program.h"

#include <QTest>

#include <algorithm>
#include <map>
#include <memory>

using namespace harrowby;
using namespace harrowby::postgres;
using namespace harrowby::test;
using namespace Qt::StringLiterals;

/// Every way in which a few failures can fall into a few writes: nothing is lost, nothing doubled, and every outcome
/// that was told is true and stays so.
class ActionsModelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keepsEveryWriteInEveryOrderOfFailures_data();
    void keepsEveryWriteInEveryOrderOfFailures();
    void keepsManyWritesInSomeOrdersOfManyFailures();
};

namespace {

using Outcome = Actions::Outcome;

/// A disk that outlives the programs; they can be killed before it is written and after.
class SimulatedJournal final : public ActionJournal
{
public:
    explicit SimulatedJournal(SimulatedPair &pair) : m_pair(pair) {}

    Result<void, QString> enter(const QUuid &writer) override
    {
        m_running = writer;
        m_left.push_back({writer, {}});
        return {};
    }
    std::vector<LeftWriter> leftBehind(Left which) override
    {
        std::vector<LeftWriter> given;
        for (const LeftWriter &left : m_left) {
            if (which == Left::All && left.writer != m_running) // each program here has somebody to tell
                given.push_back(left);
        }
        return given;
    }
    Result<void, QString> keep(const OpenAction &open) override
    {
        killHere();
        m_left.back().open = open;
        killHere();
        return {};
    }
    void resolved() override
    {
        killHere();
        m_left.back().open.reset();
        killHere();
    }
    void leave(const QUuid &writer) override
    {
        if (m_isDead)
            return;
        if (writer != m_running)
            killHere();
        std::erase_if(m_left, [&writer](const LeftWriter &left) { return left.writer == writer; });
        if (writer != m_running)
            killHere();
    }

    void setDead(bool dead) { m_isDead = dead; }
    [[nodiscard]] bool isEmpty() const { return m_left.empty(); }

private:
    void killHere()
    {
        if (m_pair.failsHere())
            throw ProgramKilled();
    }

    SimulatedPair &m_pair;
    std::vector<LeftWriter> m_left;
    QUuid m_running;
    bool m_isDead = false;
};

/// A till that writes 1, 2, …, and is started again when it was killed.
class SimulatedTill
{
public:
    SimulatedTill(SimulatedPair &pair, int writes) : m_pair(pair), m_journal(pair), m_writes(writes) {}

    void run()
    {
        while (!runOnce(&SimulatedTill::writeAll)) {
        }
    }
    void resolve()
    {
        m_pair.heal();
        for (int program = 1; program <= 2; ++program) { // the one that runs, and the next one
            if (!runOnce(&SimulatedTill::resolveAll))
                m_wrong += u"a program was killed that was not to be; "_s;
            m_actions.reset();
        }
    }

    [[nodiscard]] std::vector<int> timesDone() const
    {
        std::vector<int> times;
        for (int write = 1; write <= m_writes; ++write)
            times.push_back(m_pair.timesDone(write));
        return times;
    }

    /// What is wrong; empty when nothing is.
    [[nodiscard]] QString judged() const
    {
        QString wrong;
        for (const auto &[write, outcomes] : m_told) {
            const int times = m_pair.timesDone(write);
            if (times > 1)
                wrong += u"write %1 is there %2 times; "_s.arg(write).arg(times);
            for (const Outcome outcome : outcomes) {
                if (outcome == Outcome::Done && times != 1)
                    wrong += u"write %1 was told as done; "_s.arg(write);
                if (outcome == Outcome::Refused && times != 0)
                    wrong += u"write %1 was told as not done; "_s.arg(write);
            }
            if (!outcomes.empty() && outcomes.back() == Outcome::Unknown)
                wrong += u"write %1 stays unknown; "_s.arg(write);
        }
        return wrong + m_wrong + (m_journal.isEmpty() ? QString() : u"the journal is not empty"_s);
    }

private:
    /// False when it was killed.
    [[nodiscard]] bool runOnce(void (SimulatedTill::*work)())
    {
        try {
            start();
            (this->*work)();
            return true;
        } catch (const ProgramKilled &) {
            m_journal.setDead(true);
            m_actions.reset();
            m_journal.setDead(false);
            return false;
        }
    }

    void start()
    {
        if (m_actions)
            return;
        m_actions = std::make_unique<Actions>(m_pair, m_journal, QUuid(++m_programs, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0));
        m_actions->setResolvedHandler([this](const OpenAction &open, Outcome outcome) {
            m_told[open.what.toInt()].push_back(outcome);
            if (outcome == Outcome::Unknown)
                m_wrong += u"write %1 could not be found out; "_s.arg(open.what);
        });
    }

    void writeAll()
    {
        while (m_next <= m_writes) {
            const int write = m_next++;
            m_told[write];
            const std::size_t sent = m_pair.sent().size();
            const bool wasOpen = isAnythingUnknown();
            const Actions::End end = m_actions->write({{}, QByteArray::number(write), QString::number(write)});
            m_told[write].push_back(end.outcome);
            if (wasOpen && isAnythingUnknown(write) && m_pair.sent().size() != sent)
                m_wrong += u"write %1 was sent before the one before it was known; "_s.arg(write);
        }
    }

    void resolveAll()
    {
        if (!m_actions->resolve())
            m_wrong += u"what is open cannot be resolved; "_s;
    }

    [[nodiscard]] bool isAnythingUnknown(int before = 1000) const
    {
        return std::ranges::any_of(m_told, [before](const auto &told) {
            return told.first < before && !told.second.empty() && told.second.back() == Outcome::Unknown;
        });
    }

    SimulatedPair &m_pair;
    SimulatedJournal m_journal;
    int m_writes;
    int m_next = 1;
    unsigned m_programs = 0;
    std::unique_ptr<Actions> m_actions;
    std::map<int, std::vector<Outcome>> m_told; ///< of each write, in their order
    QString m_wrong;
};

/// What is wrong after one run.
QString oneRun(Choices &choices, int writes, int failures)
{
    SimulatedPair pair(choices, failures);
    SimulatedTill till(pair, writes);
    till.run();
    const bool arrivesBefore = choices.choose(2) == 1;
    if (arrivesBefore) {
        pair.heal();
        pair.arriveAll();
    }
    till.resolve();
    const std::vector<int> times = till.timesDone();
    pair.arriveAll();
    return till.judged() + (till.timesDone() == times ? QString() : u"what was resolved has changed; "_s);
}

} // namespace

void ActionsModelTest::keepsEveryWriteInEveryOrderOfFailures_data()
{
    QTest::addColumn<int>("writes");
    QTest::addColumn<int>("failures");
    QTest::newRow("one write, nothing fails") << 1 << 0;
    QTest::newRow("one write, a failure") << 1 << 1;
    QTest::newRow("one write, two failures") << 1 << 2;
    QTest::newRow("two writes, a failure") << 2 << 1;
    if (qEnvironmentVariableIsSet("HARROWBY_MODEL_RUNS")) // some millions
        QTest::newRow("two writes, two failures") << 2 << 2;
}

void ActionsModelTest::keepsEveryWriteInEveryOrderOfFailures()
{
    QFETCH(const int, writes);
    QFETCH(const int, failures);
    Choices choices;
    int runs = 0;
    do {
        ++runs;
        const QString wrong = oneRun(choices, writes, failures);
        QVERIFY2(wrong.isEmpty(), qPrintable(u"run %1: %2"_s.arg(runs).arg(wrong)));
    } while (choices.next());
    qInfo("%d orders", runs);
}

void ActionsModelTest::keepsManyWritesInSomeOrdersOfManyFailures()
{
    bool isGiven = false;
    const int given = qEnvironmentVariableIntValue("HARROWBY_MODEL_RUNS", &isGiven);
    const unsigned runs = isGiven ? static_cast<unsigned>(given) : 5000;
    for (unsigned seed = 1; seed <= runs; ++seed) {
        Choices choices(seed);
        const QString wrong = oneRun(choices, 6, 8);
        QVERIFY2(wrong.isEmpty(), qPrintable(u"seed %1: %2"_s.arg(seed).arg(wrong)));
    }
}

HARROWBY_CORE_TEST(actions_model_test, ActionsModelTest)
#include "actions_model_test.moc"
