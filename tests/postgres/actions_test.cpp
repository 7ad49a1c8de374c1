// SPDX-License-Identifier: MIT
#include "postgres/actions.h"

#include "tests/program/test_program.h"

#include <QLoggingCategory>
#include <QTest>

#include <algorithm>
#include <memory>
#include <utility>

using namespace harrowby;
using namespace harrowby::postgres;
using namespace Qt::StringLiterals;
using Outcome = Actions::Outcome;

/// What is sent, asked and told for which answers. That no order of failures gets around it, actions_model_test shows.
class ActionsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void settles_data();
    void settles();
    void sendsTheSameAgain();
    void countsOn();
    void sendsNothingWhileAWriteIsUnknown();
    void tellsWhatWasUnknown();
    void resolvesWhatProgramsBeforeHaveLeft();
    void leavesUntoldWhatItCannotTell();
    void tellsWhatNobodyCanFindOut();
    void startsAnewWhenItWasRetired();
    void findsATransaction_data();
    void findsATransaction();
    void findsATransactionThatWasGivenUp();
    void takesNoNumberWhileAWriteIsUnknown();
    void goesOnWithoutADisk();
    void leavesTheJournal();
};

namespace {

const QUuid running = QUuid::createUuid();
const QUuid before = QUuid::createUuid();
const Write sale{"select 1;", "update t set a = 1", u"a sale"_s};

/// Answers what it was told to, and notes what it was asked, in short: "act 1", "confirm 1", "claim 1", "drop" and the
/// phases. "out": the machine cannot be reached. "over": time is up when it is asked next.
class ScriptedServer final : public ActionServer
{
public:
    explicit ScriptedServer(const QString &script) : m_script(script.split(u' ', Qt::SkipEmptyParts)) {}

    void enter(Phase phase) override
    {
        const QStringList names{u"sending"_s, u"resending"_s, u"claiming"_s};
        asked << names[static_cast<int>(phase)];
    }
    bool isOver() override { return takes(u"over"_s); }
    Result<void, PgError> reach() override
    {
        if (takes(u"out"_s))
            return Unexpected(PgError{PgError::Kind::CannotConnect, {}, u"out"_s});
        return {};
    }
    void drop() override { asked << u"drop"_s; }
    ActionAnswer act(const ActionNumber &action, const Write &write) override
    {
        texts << write.condition + write.statement;
        return answer(u"act"_s, action);
    }
    ActionAnswer confirm(const ActionNumber &action) override { return answer(u"confirm"_s, action); }
    ActionAnswer claim(const ActionNumber &action) override { return answer(u"claim"_s, action); }

    QStringList asked;
    QByteArrayList texts;
    QList<QUuid> writers;

    [[nodiscard]] bool isThrough() const { return m_script.isEmpty(); }
    void go(const QString &script) { m_script = script.split(u' ', Qt::SkipEmptyParts); }
    [[nodiscard]] QString takeAsked() { return std::exchange(asked, {}).join(u' '); }

private:
    bool takes(const QString &word)
    {
        if (m_script.isEmpty() || m_script.first() != word)
            return false;
        m_script.removeFirst();
        return true;
    }

    /// "done", "done:VALUE" or what failed.
    ActionAnswer answer(const QString &what, const ActionNumber &action)
    {
        asked << what + QString::number(action.number);
        writers << action.writer;
        if (m_script.isEmpty())
            qFatal("Asked for more than the test has answers: %s", qPrintable(asked.join(u' ')));
        if (takes(u"enough"_s)) // for the person who waits
            return {Heard::Lost, 0, {PgError::Kind::GivenUp, {}, u"enough"_s, true}};
        const QStringList words = m_script.takeFirst().split(u':');
        static const QStringList kinds{u"done"_s,   u"refused"_s,  u"locked"_s,       u"collided"_s,
                                       u"before"_s, u"nottaken"_s, u"notconfirmed"_s, u"lost"_s};
        const qsizetype kind = kinds.indexOf(words.first());
        if (kind < 0)
            qFatal("The script says %s", qPrintable(words.first()));
        ActionAnswer answer;
        answer.heard = static_cast<Heard>(kind);
        answer.value = words.value(1).toLongLong();
        answer.error.text = words.first();
        answer.error.mayBeDone = answer.heard == Heard::NotConfirmed || answer.heard == Heard::Lost;
        if (answer.heard == Heard::NotConfirmed)
            answer.error.kind = PgError::Kind::NotConfirmed;
        return answer;
    }

    QStringList m_script;
};

class ScriptedJournal final : public ActionJournal
{
public:
    Result<void, QString> enter(const QUuid &writer) override
    {
        said << (writer == running ? u"enter"_s : u"enter another"_s);
        return result();
    }
    std::vector<LeftWriter> leftBehind(Left which) override
    {
        std::vector<LeftWriter> given;
        const auto stays = std::stable_partition(left.begin(), left.end(), [which](const LeftWriter &writer) {
            return writer.open && which == Left::WithoutOpen;
        });
        given.assign(stays, left.end());
        left.erase(stays, left.end());
        return given;
    }
    Result<void, QString> keep(const OpenAction &open) override
    {
        said << u"keep %1 %2"_s.arg(open.action.number).arg(open.what);
        return result();
    }
    void resolved() override { said << u"resolved"_s; }
    void leave(const QUuid &writer) override { said << (writer == running ? u"leave"_s : u"leave another"_s); }

    QStringList said;
    std::vector<LeftWriter> left;
    bool isFull = false;

private:
    [[nodiscard]] Result<void, QString> result() const
    {
        if (isFull)
            return Unexpected(u"no room"_s);
        return {};
    }
};

bool saysNotDone(const PgError &error)
{
    return error.kind != PgError::Kind::NotConfirmed && !error.mayBeDone;
}

QString nameOf(Outcome outcome)
{
    return outcome == Outcome::Done ? u"done"_s : outcome == Outcome::Refused ? u"refused"_s : u"unknown"_s;
}

} // namespace

void ActionsTest::settles_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<QString>("asked");
    QTest::addColumn<QString>("outcome");
    QTest::addColumn<QString>("reason");
    const auto row = [](const char *name, const QString &script, const QString &asked, const QString &outcome,
                        const QString &reason = {}) { QTest::newRow(name) << script << asked << outcome << reason; };
    row("at once", u"done"_s, u"sending act1"_s, u"done"_s);
    row("refused", u"refused"_s, u"sending act1"_s, u"refused"_s, u"refused"_s);
    row("locked", u"locked"_s, u"sending act1"_s, u"refused"_s, u"locked"_s);
    row("a deadlock's victim", u"collided done"_s, u"sending act1 act1"_s, u"done"_s);
    row("again and again, till time is up", u"collided collided over"_s, u"sending act1 act1"_s, u"refused"_s,
        u"collided"_s);
    row("nobody there", u"out out over"_s, u"sending"_s, u"refused"_s, u"out"_s);
    row("there at last", u"out out done"_s, u"sending act1"_s, u"done"_s);
    row("a standby instead", u"nottaken out done"_s, u"sending act1 drop act1"_s, u"done"_s);
    row("a standby, till time is up", u"nottaken over"_s, u"sending act1 drop"_s, u"refused"_s, u"nottaken"_s);
    row("lost before it arrived", u"lost out done"_s, u"sending act1 drop resending act1"_s, u"done"_s);
    row("its answer lost", u"lost before done:1"_s, u"sending act1 drop resending act1 confirm1"_s, u"done"_s);
    row("not confirmed", u"notconfirmed before done:1"_s, u"sending act1 drop resending act1 confirm1"_s, u"done"_s);
    row("not confirmed, and gone with its server", u"notconfirmed done"_s, u"sending act1 drop resending act1"_s,
        u"done"_s);
    row("confirmation lost", u"lost before lost before done:1"_s,
        u"sending act1 drop resending act1 confirm1 drop act1 confirm1"_s, u"done"_s);
    row("confirmation not confirmed, and gone with its server", u"lost before notconfirmed done"_s,
        u"sending act1 drop resending act1 confirm1 drop act1"_s, u"done"_s);
    row("confirmation refused at first", u"lost before refused before done:1"_s,
        u"sending act1 drop resending act1 confirm1 act1 confirm1"_s, u"done"_s);
    row("the first sending holds the lock", u"lost locked locked before done:1"_s,
        u"sending act1 drop resending act1 act1 act1 confirm1"_s, u"done"_s);
    row("refused, but sent before; never came", u"lost refused done:2"_s,
        u"sending act1 drop resending act1 claiming claim1"_s, u"refused"_s, u"refused"_s);
    row("refused, but sent before; came", u"lost refused done:1"_s,
        u"sending act1 drop resending act1 claiming claim1"_s, u"done"_s);
    row("given up, claimed", u"lost over done:2"_s, u"sending act1 drop resending claiming claim1"_s, u"refused"_s,
        u"lost"_s);
    row("given up, done", u"lost over done:1"_s, u"sending act1 drop resending claiming claim1"_s, u"done"_s);
    row("given up over locks", u"lost locked over locked done:2"_s,
        u"sending act1 drop resending act1 claiming claim1 claim1"_s, u"refused"_s, u"locked"_s);
    row("claim lost at first", u"lost over lost done:2"_s, u"sending act1 drop resending claiming claim1 drop claim1"_s,
        u"refused"_s, u"lost"_s);
    row("claim not confirmed at first", u"lost over notconfirmed done:1"_s,
        u"sending act1 drop resending claiming claim1 drop claim1"_s, u"done"_s);
    row("not confirmed, given up, claimed", u"notconfirmed over done:2"_s,
        u"sending act1 drop resending claiming claim1"_s, u"refused"_s, u"notconfirmed"_s);
    row("claim on a standby at first", u"lost over nottaken done:2"_s,
        u"sending act1 drop resending claiming claim1 drop claim1"_s, u"refused"_s, u"nottaken"_s);
    row("ended by who waits for the first sending", u"enough done:2"_s, u"sending act1 drop claiming claim1"_s,
        u"refused"_s, u"enough"_s);
    row("ended by who waits for the confirmation", u"before enough done:1"_s,
        u"sending act1 confirm1 drop claiming claim1"_s, u"done"_s);
    row("unknown: nobody there", u"lost over out out over"_s, u"sending act1 drop resending claiming"_s, u"unknown"_s,
        u"out"_s);
    row("unknown: claim lost", u"lost over lost over"_s, u"sending act1 drop resending claiming claim1 drop"_s,
        u"unknown"_s, u"lost"_s);
    row("unknown: claim locked", u"lost over locked over"_s, u"sending act1 drop resending claiming claim1"_s,
        u"unknown"_s, u"locked"_s);
    row("unknown: claim refused", u"lost over refused over"_s, u"sending act1 drop resending claiming claim1"_s,
        u"unknown"_s, u"refused"_s);
}

void ActionsTest::settles()
{
    QFETCH(const QString, script);
    QFETCH(const QString, asked);
    QFETCH(const QString, outcome);
    QFETCH(const QString, reason);
    ScriptedServer server(script);
    ScriptedJournal journal;
    Actions actions(server, journal, running);
    const Actions::End end = actions.write(sale);
    QCOMPARE(server.takeAsked(), asked);
    QCOMPARE(nameOf(end.outcome), outcome);
    QCOMPARE(end.error.text, reason);
    QVERIFY(end.outcome != Outcome::Refused || saysNotDone(end.error));
    QVERIFY(server.isThrough());
    QCOMPARE(actions.hasOpen(), outcome == u"unknown");
    QCOMPARE(journal.said.join(u", "), outcome == u"unknown" ? u"enter, keep 1 a sale"_s : u"enter"_s);
}

void ActionsTest::sendsTheSameAgain()
{
    ScriptedServer server(u"lost locked done"_s);
    ScriptedJournal journal;
    Actions actions(server, journal, running);
    QCOMPARE(actions.write(sale).outcome, Outcome::Done);
    const QByteArray text = "select 1;update t set a = 1";
    QCOMPARE(server.texts, QByteArrayList({text, text, text}));
    QCOMPARE(server.writers, QList<QUuid>({running, running, running}));
}

void ActionsTest::countsOn()
{
    ScriptedServer server(u"done refused done lost over done:5 done"_s);
    ScriptedJournal journal;
    Actions actions(server, journal, running);
    QCOMPARE(actions.write(sale).outcome, Outcome::Done);
    QCOMPARE(actions.write(sale).outcome, Outcome::Refused);
    QCOMPARE(actions.write(sale).outcome, Outcome::Done);
    QCOMPARE(actions.write(sale).outcome, Outcome::Refused);
    QCOMPARE(actions.write(sale).outcome, Outcome::Done);
    // A refused number is not used again; a claim takes the number that follows.
    QCOMPARE(server.takeAsked(), u"sending act1 sending act2 sending act3 sending act4 drop resending claiming claim4 "
                                 "sending act6"_s);
}

void ActionsTest::sendsNothingWhileAWriteIsUnknown()
{
    ScriptedServer server(u"lost over out over"_s);
    ScriptedJournal journal;
    Actions actions(server, journal, running);
    QCOMPARE(actions.write(sale).outcome, Outcome::Unknown);
    (void)server.takeAsked();
    server.go(u"out over"_s);
    const Actions::End end = actions.write(sale);
    QCOMPARE(end.outcome, Outcome::Refused);
    QCOMPARE(end.error.text, u"out"_s);
    QCOMPARE(server.takeAsked(), u"claiming"_s);
    server.go(u"locked over"_s);
    QVERIFY(!actions.resolve());
    QVERIFY(actions.hasOpen());
    QCOMPARE(server.takeAsked(), u"claiming claim1"_s);
    server.go(u"notconfirmed over notconfirmed over"_s); // of what keeps these away, and not of these
    QVERIFY(saysNotDone(actions.write(sale).error));
    const auto taken = actions.take();
    QVERIFY(!taken && saysNotDone(taken.error()));
    QCOMPARE(taken.error().text, u"notconfirmed"_s);
}

void ActionsTest::tellsWhatWasUnknown()
{
    for (const Outcome outcome : {Outcome::Done, Outcome::Refused}) {
        ScriptedServer server(u"lost over out over"_s);
        ScriptedJournal journal;
        Actions actions(server, journal, running);
        QCOMPARE(actions.write(sale).outcome, Outcome::Unknown);
        (void)server.takeAsked();
        QStringList told;
        actions.setResolvedHandler([&](const OpenAction &open, Outcome known) {
            QCOMPARE(journal.said.last(), u"keep 1 a sale"_s); // a program that is killed now tells it again
            told << open.what + u' ' + nameOf(known);
        });
        server.go(outcome == Outcome::Done ? u"done:1 done"_s : u"done:2 done"_s);
        QCOMPARE(actions.write(sale).outcome, Outcome::Done);
        QCOMPARE(server.takeAsked(), u"claiming claim1 sending act3"_s);
        QCOMPARE(told, QStringList(u"a sale "_s + nameOf(outcome)));
        QCOMPARE(journal.said.last(), u"resolved"_s);
        QVERIFY(!actions.hasOpen());
    }
}

void ActionsTest::resolvesWhatProgramsBeforeHaveLeft()
{
    ScriptedServer server(u"out over"_s);
    ScriptedJournal journal;
    journal.left = {{QUuid::createUuid(), {}}, {before, OpenAction{{before, 7}, u"an old sale"_s}}};
    Actions actions(server, journal, running);
    QStringList told;
    actions.setResolvedHandler(
        [&told](const OpenAction &open, Outcome known) { told << open.what + u' ' + nameOf(known); });
    QVERIFY(actions.hasOpen());
    QCOMPARE(actions.write(sale).outcome, Outcome::Refused);
    QCOMPARE(server.takeAsked(), u"claiming"_s);
    server.go(u"done:8 lost done:9223372036854775807 done"_s);
    QCOMPARE(actions.write(sale).outcome, Outcome::Done);
    QCOMPARE(server.takeAsked(),
             u"claiming claim7 claiming claim9223372036854775806 drop claim9223372036854775806 sending act1"_s);
    QCOMPARE(server.writers.first(), before);
    QCOMPARE(told, QStringList(u"an old sale refused"_s));
    QCOMPARE(journal.said.join(u", "), u"enter, leave another, leave another"_s);
}

/// Known here, it would be known to nobody.
void ActionsTest::leavesUntoldWhatItCannotTell()
{
    ScriptedServer server(u"done:9223372036854775807 done done:8"_s);
    ScriptedJournal journal;
    journal.left = {{QUuid::createUuid(), {}}, {before, OpenAction{{before, 7}, u"an old sale"_s}}};
    Actions actions(server, journal, running);
    QCOMPARE(actions.write(sale).outcome, Outcome::Done);
    QCOMPARE(server.takeAsked(), u"claiming claim9223372036854775806 sending act1"_s);
    QCOMPARE(journal.left.size(), std::size_t(1));
    QStringList told;
    actions.setResolvedHandler(
        [&told](const OpenAction &open, Outcome known) { told << open.what + u' ' + nameOf(known); });
    QVERIFY(actions.resolve());
    QCOMPARE(told, QStringList(u"an old sale refused"_s));
}

void ActionsTest::tellsWhatNobodyCanFindOut()
{
    QTest::ignoreMessage(QtWarningMsg, "Nobody can find out any more whether this was done: an old sale");
    QLoggingCategory::setFilterRules(u"harrowby.store=true"_s);
    ScriptedServer server(u"done:12"_s);
    ScriptedJournal journal;
    journal.left = {{before, OpenAction{{before, 7}, u"an old sale"_s}}};
    Actions actions(server, journal, running);
    QStringList told;
    actions.setResolvedHandler(
        [&told](const OpenAction &open, Outcome known) { told << open.what + u' ' + nameOf(known); });
    QVERIFY(actions.resolve());
    QCOMPARE(told, QStringList(u"an old sale unknown"_s));
}

void ActionsTest::startsAnewWhenItWasRetired()
{
    ScriptedServer server(u"before done:0"_s);
    ScriptedJournal journal;
    Actions actions(server, journal, running);
    QCOMPARE(actions.write(sale).outcome, Outcome::Refused);
    server.go(u"done"_s);
    QCOMPARE(actions.write(sale).outcome, Outcome::Done);
    QCOMPARE(server.takeAsked(), u"sending act1 confirm1 sending act1"_s);
    QVERIFY(server.writers.last() != running);
    QCOMPARE(journal.said.join(u", "), u"enter, leave, enter another"_s);
}

void ActionsTest::findsATransaction_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<QString>("asked");
    QTest::addColumn<QString>("outcome");
    const auto row = [](const char *name, const QString &script, const QString &asked, const QString &outcome) {
        QTest::newRow(name) << script << asked << outcome;
    };
    row("there", u"done:1"_s, u"drop resending claim1"_s, u"done"_s);
    row("not there, and never will be", u"done:2"_s, u"drop resending claim1"_s, u"refused"_s);
    row("found at last", u"out lost locked done:1"_s, u"drop resending claim1 drop claim1 claim1"_s, u"done"_s);
    row("given up, found nevertheless", u"lost over done:1"_s, u"drop resending claim1 drop claiming claim1"_s,
        u"done"_s);
    row("nobody there", u"out over out over"_s, u"drop resending claiming"_s, u"unknown"_s);
}

/// One whose end was sent, and no answer came.
void ActionsTest::findsATransaction()
{
    QFETCH(const QString, script);
    QFETCH(const QString, asked);
    QFETCH(const QString, outcome);
    ScriptedServer server(script);
    ScriptedJournal journal;
    Actions actions(server, journal, running);
    const auto taken = actions.take();
    QVERIFY(taken);
    QCOMPARE(*taken, (ActionNumber{running, 1}));
    const Actions::End end = actions.find(*taken, u"several"_s, {PgError::Kind::Lost, {}, u"broken"_s, true});
    QCOMPARE(server.takeAsked(), asked);
    QCOMPARE(nameOf(end.outcome), outcome);
    QVERIFY(server.isThrough());
    QVERIFY(end.outcome != Outcome::Refused || (end.error.text == u"broken"_s && saysNotDone(end.error)));
    QCOMPARE(journal.said.join(u", "), outcome == u"unknown" ? u"enter, keep 1 several"_s : u"enter"_s);
    server.go(outcome == u"unknown" ? u"done:1 done"_s : u"done"_s);
    QCOMPARE(actions.write(sale).outcome, Outcome::Done);
    QVERIFY(server.takeAsked().endsWith(u"sending act3"_s)); // the claim has used the second one
}

/// The person who has ended the wait for the answer does not wait for it a second time.
void ActionsTest::findsATransactionThatWasGivenUp()
{
    ScriptedServer server(u"done:2"_s);
    ScriptedJournal journal;
    Actions actions(server, journal, running);
    const auto taken = actions.take();
    QVERIFY(taken);
    const PgError error{PgError::Kind::GivenUp, {}, u"enough"_s, true};
    QCOMPARE(actions.find(*taken, u"several"_s, error).outcome, Outcome::Refused);
    QCOMPARE(server.takeAsked(), u"drop claiming claim1"_s);
}

void ActionsTest::takesNoNumberWhileAWriteIsUnknown()
{
    ScriptedServer server(u"lost over out over"_s);
    ScriptedJournal journal;
    Actions actions(server, journal, running);
    QCOMPARE(actions.write(sale).outcome, Outcome::Unknown);
    server.go(u"out over"_s);
    const auto taken = actions.take();
    QVERIFY(!taken);
    QCOMPARE(taken.error().text, u"out"_s);
    server.go(u"done:1"_s);
    QCOMPARE(actions.take().value_or(ActionNumber()).number, 3);
    actions.retire();
    QVERIFY(actions.take().value_or(ActionNumber()).writer != running);
}

void ActionsTest::goesOnWithoutADisk()
{
    QTest::ignoreMessage(QtWarningMsg, "An unknown write could not be noted here: no room");
    QTest::ignoreMessage(QtWarningMsg, "The unknown write could not be noted here: no room");
    QLoggingCategory::setFilterRules(u"harrowby.store=true"_s);
    ScriptedServer server(u"lost over out over"_s);
    ScriptedJournal journal;
    journal.isFull = true;
    Actions actions(server, journal, running);
    const Actions::End end = actions.write(sale);
    QCOMPARE(end.outcome, Outcome::Unknown);
    QCOMPARE(end.error.text, u"The next start will not know of this, as it could not be noted here (no room). out"_s);
    QVERIFY(actions.hasOpen());
}

void ActionsTest::leavesTheJournal()
{
    ScriptedServer server(u"done"_s);
    ScriptedJournal journal;
    QCOMPARE(std::make_unique<Actions>(server, journal, running)->write(sale).outcome, Outcome::Done);
    QCOMPARE(journal.said.join(u", "), u"enter, leave"_s);
    journal.said.clear();
    server.go(u"lost over out over"_s);
    QCOMPARE(std::make_unique<Actions>(server, journal, running)->write(sale).outcome, Outcome::Unknown);
    QCOMPARE(journal.said.join(u", "), u"enter, keep 1 a sale"_s);
}

HARROWBY_CORE_TEST(actions_test, ActionsTest)
#include "actions_test.moc"
