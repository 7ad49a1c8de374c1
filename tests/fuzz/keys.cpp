// SPDX-License-Identifier: MIT
// Keys as a keyboard, a code reader or two of them may send: each goes one way, once, in its order.
#include "tests/fuzz/fuzz.h"

#include "input/code_burst.h"

using namespace Qt::StringLiterals;
using namespace harrowby;
using namespace harrowby::fuzz;
using Kind = CodeBurst::Verdict::Kind;

namespace {

/// What the keys were, and what the answers make of them.
class Account
{
public:
    explicit Account(const CodeReaderSettings &rules) : m_rules(rules), m_burst(rules) {}

    void press(const QString &text, bool ends, std::uint32_t time)
    {
        const auto verdict = m_burst.key({.text = text, .ends = ends, .time = time});
        demand(verdict.replay <= m_held.size(), "no more is replayed than is held");
        m_held.remove(0, verdict.replay);
        if (verdict.kind == Kind::Code)
            judge(verdict.code);
        demand(!ends || verdict.kind != Kind::Hold, "an end is never held");
        demand(ends || verdict.kind == Kind::Hold || verdict.kind == Kind::Pass, "only an end ends");
        demand(verdict.kind != Kind::Pass || m_held.isEmpty() || verdict.kind == Kind::Hold,
               "a key that passes is behind all that were held");
        if (verdict.kind == Kind::Hold)
            m_held.append(text);
        else if (verdict.kind != Kind::Pass)
            m_held.clear();
        demand(m_burst.held() == m_held.size(), "both agree on what is held");
    }
    void interrupt()
    {
        m_burst.interrupt();
        m_held.clear();
        demand(m_burst.held() == 0, "nothing is held");
    }
    void giveUp()
    {
        m_burst.giveUp();
        m_held.clear();
        demand(m_burst.held() == 0, "nothing is held");
    }

private:
    void judge(const QString &code) const
    {
        demand(code.size() >= m_rules.shortest && code.size() <= m_rules.longest, "a code has a code's length");
        demand(m_rules.prefix + code == m_held.join(QString()), "a code is what was held");
    }

    CodeReaderSettings m_rules;
    CodeBurst m_burst;
    QStringList m_held;
};

} // namespace

/// First byte: the rules; then pairs of a gap and a key.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size == 0)
        return 0;
    CodeReaderSettings rules;
    rules.longestGapMs = data[0] & 0x7F;
    rules.prefix = (data[0] & 0x80) != 0 ? u"]a"_s : QString();
    Account account(rules);
    std::uint32_t time = 0xFFFFFF00U;
    for (std::size_t at = 1; at + 1 < size; at += 2) {
        time += static_cast<std::uint32_t>(static_cast<std::int8_t>(data[at]));
        const char sign = static_cast<char>(data[at + 1]);
        if (sign == '\0')
            account.interrupt();
        else if (sign == '?')
            account.giveUp();
        else
            account.press(QString(QLatin1Char(sign)), sign == '\n' || sign == '\t', time);
    }
    return 0;
}
