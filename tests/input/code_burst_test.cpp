// SPDX-License-Identifier: MIT
#include "input/code_burst.h"
#include "tests/program/test_program.h"

#include <QTest>

#include <optional>
#include <utility>

using namespace Qt::StringLiterals;
using harrowby::CodeBurst;
using harrowby::CodeReaderSettings;
using Kind = harrowby::CodeBurst::Verdict::Kind;

namespace {

/// Plays a script at a CodeBurst. In the script, "@20;" sets the gap between keys (5 at first), "~60;" the gap before
/// the next key alone, "E" is an end, "|" a key that no reader types, "?" the time-out; all else is a character.
///
/// What came of it: a character or "E" that passed or was replayed, "<code>", "<+code>" for a joined one, "!long",
/// "!mixed", "-" for a swallowed end, "|".
class Keys
{
public:
    explicit Keys(const CodeReaderSettings &rules, std::uint32_t begin = 1000) : m_burst(rules), m_time(begin) {}

    void play(const QString &script)
    {
        for (qsizetype at = 0; at < script.size(); ++at) {
            const QChar sign = script[at];
            if (sign == u'@' || sign == u'~') {
                const qsizetype end = script.indexOf(u';', at);
                (sign == u'@' ? m_gap : m_once.emplace()) = script.sliced(at + 1, end - at - 1).toInt();
                at = end;
            } else if (sign == u'|' || sign == u'?') {
                replay(static_cast<int>(m_held.size()));
                sign == u'|' ? m_burst.interrupt() : m_burst.giveUp();
                m_outcome += sign == u'|' ? u"|"_s : QString();
            } else {
                press(sign);
            }
        }
    }

    [[nodiscard]] const QString &outcome() const { return m_outcome; }
    [[nodiscard]] QString held() const { return m_held.join(QString()); }

private:
    void replay(int count)
    {
        for (int i = 0; i < count; ++i)
            m_outcome += m_held.takeFirst();
    }
    void press(QChar sign)
    {
        m_time += static_cast<std::uint32_t>(std::exchange(m_once, {}).value_or(m_gap));
        const bool ends = sign == u'E';
        const auto verdict = m_burst.key({.text = ends ? u"\r"_s : QString(sign), .ends = ends, .time = m_time});
        replay(verdict.replay);
        switch (verdict.kind) {
        case Kind::Pass:
            m_outcome += sign;
            break;
        case Kind::Hold:
            m_held.append(QString(sign));
            break;
        case Kind::Swallow:
            m_outcome += u'-';
            break;
        case Kind::Code:
            m_outcome += (verdict.joined ? u"<+"_s : u"<"_s) + verdict.code + u'>';
            break;
        case Kind::TooLong:
            m_outcome += u"!long"_s;
            break;
        case Kind::Mixed:
            m_outcome += u"!mixed"_s;
            break;
        }
        if (verdict.kind != Kind::Hold && verdict.kind != Kind::Pass)
            m_held.clear();
        QCOMPARE(m_burst.held(), static_cast<int>(m_held.size()));
    }

    CodeBurst m_burst;
    std::uint32_t m_time;
    int m_gap = 5;
    std::optional<int> m_once;
    QStringList m_held;
    QString m_outcome;
};

} // namespace

class CodeBurstTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keys_data();
    void keys();
    void timesWrap_data();
    void timesWrap();
    void gapIsKeptWithin_data();
    void gapIsKeptWithin();
    void charactersAreCounted();
};

void CodeBurstTest::keys_data()
{
    QTest::addColumn<CodeReaderSettings>("rules");
    QTest::addColumn<QString>("script");
    QTest::addColumn<QString>("outcome");
    QTest::addColumn<QString>("held");
    const CodeReaderSettings usual;
    const CodeReaderSettings wide{.longestGapMs = 100};
    const CodeReaderSettings marked{.prefix = u"]"_s};
    const CodeReaderSettings named{.prefix = u"A1"_s};
    const QString long64(64, u'7');

    QTest::newRow("a code") << usual << u"4006381333931E"_s << u"<4006381333931>"_s << QString();
    QTest::newRow("four characters") << usual << u"abcdE"_s << u"<abcd>"_s << QString();
    QTest::newRow("three") << usual << u"abcE"_s << u"abcE"_s << QString();
    QTest::newRow("none") << usual << u"E"_s << u"E"_s << QString();
    QTest::newRow("several ends") << usual << u"EE~60;E"_s << u"EEE"_s << QString();
    QTest::newRow("64") << usual << long64 + u'E' << u'<' + long64 + u'>' << QString();
    QTest::newRow("65") << usual << long64 + u"8E"_s << u"!long"_s << QString();
    QTest::newRow("65, no end") << usual << long64 + u"8?"_s << long64 + u'8' << QString();
    QTest::newRow("blanks and signs") << usual << u"A-1 /.$E"_s << u"<A-1 /.$>"_s << QString();

    QTest::newRow("gap 50") << usual << u"@50;abcdE"_s << u"<abcd>"_s << QString();
    QTest::newRow("gap 51") << usual << u"@51;abcdE"_s << u"abcdE"_s << QString();
    QTest::newRow("gap 0") << usual << u"@0;abcdE"_s << u"<abcd>"_s << QString();
    QTest::newRow("gap 51 before the end") << usual << u"abcd~51;E"_s << u"abcdE"_s << QString();
    QTest::newRow("gap 51 in the middle") << usual << u"ab~51;cdE"_s << u"abcdE"_s << QString();
    QTest::newRow("gap 51, then enough") << usual << u"ab~51;cdefE"_s << u"ab<cdef>"_s << QString();
    QTest::newRow("wide, 99") << wide << u"@99;abcdE"_s << u"<abcd>"_s << QString();
    QTest::newRow("wide, 101") << wide << u"@101;abcdE"_s << u"abcdE"_s << QString();

    QTest::newRow("a person") << usual << u"@120;milkE"_s << u"milkE"_s << QString();
    QTest::newRow("a key") << usual << u"5"_s << QString() << u"5"_s;
    QTest::newRow("a key, in time") << usual << u"5?"_s << u"5"_s << QString();
    QTest::newRow("two keys") << usual << u"5~120;6"_s << u"5"_s << u"6"_s;
    QTest::newRow("no end") << usual << u"4006381333931?"_s << u"4006381333931"_s << QString();
    QTest::newRow("another key") << usual << u"400638|1333931E"_s << u"400638|<1333931>"_s << QString();
    QTest::newRow("another key, no rest") << usual << u"400638|13E"_s << u"400638|13E"_s << QString();
    QTest::newRow("a person's key, then a code") << usual << u"5~60;abcdE"_s << u"5<abcd>"_s << QString();
    QTest::newRow("a person's key right before") << usual << u"5~20;abcdE"_s << u"<5abcd>"_s << QString();
    QTest::newRow("a person's key right after") << usual << u"abcdE~20;5?"_s << u"<abcd>5"_s << QString();
    QTest::newRow("a person's Enter after") << usual << u"abcdE~51;E"_s << u"<abcd>E"_s << QString();

    QTest::newRow("two ends") << usual << u"abcdEE"_s << u"<abcd>-"_s << QString();
    QTest::newRow("two ends, each time") << usual << u"abcdEE~40;efghEE"_s << u"<abcd>-<+efgh>-"_s << QString();
    QTest::newRow("one after the other") << usual << u"abcdE~51;efghE"_s << u"<abcd><efgh>"_s << QString();
    QTest::newRow("right behind") << usual << u"abcdEefghEijklE"_s << u"<abcd><+efgh><+ijkl>"_s << QString();
    QTest::newRow("rest of a second reader's") << usual << u"abcdEefE"_s << u"<abcd>!mixed"_s << QString();
    QTest::newRow("rest behind a rest") << usual << u"abcdEefEgE"_s << u"<abcd>!mixed!mixed"_s << QString();
    QTest::newRow("behind one too long") << usual << long64 + u"8E12E"_s << u"!long!mixed"_s << QString();
    QTest::newRow("behind a person's Enter") << usual << u"abEefghE"_s << u"abE<efgh>"_s << QString();

    QTest::newRow("late, after the time-out") << usual << u"4006?381333931E"_s << u"4006381333931!mixed"_s << QString();
    QTest::newRow("late, few") << usual << u"40?6E"_s << u"406E"_s << QString();
    QTest::newRow("late, then anew") << usual << u"4006?38~51;abcdE"_s << u"400638<abcd>"_s << QString();
    QTest::newRow("late, then the end alone") << usual << u"abcd?E"_s << u"abcd!mixed"_s << QString();

    QTest::newRow("prefix") << marked << u"]abcdE"_s << u"<abcd>"_s << QString();
    QTest::newRow("prefix alone") << marked << u"]E"_s << u"]E"_s << QString();
    QTest::newRow("prefix, three") << marked << u"]abcE"_s << u"]abcE"_s << QString();
    QTest::newRow("prefix, 64") << marked << u']' + long64 + u'E' << u'<' + long64 + u'>' << QString();
    QTest::newRow("prefix, 65") << marked << u']' + long64 + u"8E"_s << u"!long"_s << QString();
    QTest::newRow("no prefix") << marked << u"abcdE"_s << u"abcdE"_s << QString();
    QTest::newRow("no prefix, held no longer") << marked << u"abcd"_s << u"abcd"_s << QString();
    QTest::newRow("prefix held") << marked << u"]"_s << QString() << u"]"_s;
    QTest::newRow("a person's key, then the prefix") << marked << u"5]abcdE"_s << u"5<abcd>"_s << QString();
    QTest::newRow("prefix in the code") << marked << u"]ab]cdE"_s << u"<ab]cd>"_s << QString();
    QTest::newRow("two signs") << named << u"A1abcdE"_s << u"<abcd>"_s << QString();
    QTest::newRow("two signs, begun twice") << named << u"AA1abcdE"_s << u"A<abcd>"_s << QString();
    QTest::newRow("two signs, half") << named << u"AbcdeE"_s << u"AbcdeE"_s << QString();
    QTest::newRow("prefix, rest of a second") << marked << u"]abcdEefghE"_s << u"<abcd>!mixed"_s << QString();
    QTest::newRow("prefix, right behind") << marked << u"]abcdE]efghE"_s << u"<abcd><+efgh>"_s << QString();
}

void CodeBurstTest::keys()
{
    QFETCH(const CodeReaderSettings, rules);
    QFETCH(const QString, script);
    Keys keys(rules);
    keys.play(script);
    QTEST(keys.outcome(), "outcome");
    QTEST(keys.held(), "held");
}

void CodeBurstTest::timesWrap_data()
{
    QTest::addColumn<quint32>("begin");
    QTest::addColumn<int>("gap");
    QTest::addColumn<QString>("outcome");
    QTest::newRow("over the top") << 0xFFFFFFF5U << 5 << u"<abcd>"_s;
    QTest::newRow("over the top, slow") << 0xFFFFFFF5U << 51 << u"abcdE"_s;
    QTest::newRow("the other half") << 0x7FFFFFF5U << 5 << u"<abcd>"_s;
    QTest::newRow("a little out of order") << 5000U << -2 << u"<abcd>"_s;
    QTest::newRow("far back") << 5000U << -1000 << u"abcdE"_s;
    QTest::newRow("half the circle") << 5000U << 0x7FFFFFFF << u"abcdE"_s;
}

void CodeBurstTest::timesWrap()
{
    QFETCH(const quint32, begin);
    QFETCH(const int, gap);
    Keys keys({}, begin);
    keys.play(u"@%1;abcdE"_s.arg(gap));
    QTEST(keys.outcome(), "outcome");
}

void CodeBurstTest::gapIsKeptWithin_data()
{
    QTest::addColumn<int>("asked");
    QTest::addColumn<int>("counts");
    QTest::newRow("none") << 0 << 20;
    QTest::newRow("19") << 19 << 20;
    QTest::newRow("20") << 20 << 20;
    QTest::newRow("99") << 99 << 99;
    QTest::newRow("300") << 300 << 300;
    QTest::newRow("301") << 301 << 300;
}

void CodeBurstTest::gapIsKeptWithin()
{
    QFETCH(const int, asked);
    QFETCH(const int, counts);
    QCOMPARE(CodeBurst({.longestGapMs = asked}).longestGapMs(), counts);
    Keys within({.longestGapMs = asked});
    within.play(u"@%1;abcdE"_s.arg(counts));
    QCOMPARE(within.outcome(), u"<abcd>"_s);
    Keys beyond({.longestGapMs = asked});
    beyond.play(u"@%1;abcdE"_s.arg(counts + 1));
    QCOMPARE(beyond.outcome(), u"abcdE"_s);
}

/// Not UTF-16 units.
void CodeBurstTest::charactersAreCounted()
{
    CodeBurst burst({});
    const QString apple = u"\U0001F34E"_s;
    for (const QString &text : {apple, apple, u"x"_s})
        QCOMPARE(burst.key({.text = text, .time = 1}).kind, Kind::Hold);
    QCOMPARE(burst.key({.ends = true, .time = 1}).kind, Kind::Pass);
    for (int i = 0; i < 64; ++i)
        QCOMPARE(burst.key({.text = apple, .time = 500}).kind, Kind::Hold);
    const auto verdict = burst.key({.ends = true, .time = 500});
    QCOMPARE(verdict.kind, Kind::Code);
    QCOMPARE(verdict.code, apple.repeated(64));
}

HARROWBY_CORE_TEST(code_burst_test, CodeBurstTest)
#include "code_burst_test.moc"
