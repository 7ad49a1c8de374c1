// SPDX-License-Identifier: MIT
#include "input/code_burst.h"

#include <algorithm>
#include <utility>

namespace harrowby {

namespace {

using Kind = CodeBurst::Verdict::Kind;

/// Code points.
int characters(const QString &text)
{
    return static_cast<int>(std::ranges::count_if(text, [](QChar part) { return !part.isLowSurrogate(); }));
}

} // namespace

CodeBurst::CodeBurst(const CodeReaderSettings &settings) : m_settings(settings)
{
    m_settings.longestGapMs = countedGapMs(m_settings.longestGapMs);
}

CodeBurst::Verdict CodeBurst::key(const Key &key)
{
    int replay = 0;
    if (!follows(key.time)) {
        replay = held();
        forget();
    }
    m_begun = true;
    m_last = key.time;
    return key.ends ? end(replay) : character(key, replay);
}

void CodeBurst::interrupt()
{
    forget();
    m_begun = false;
}

void CodeBurst::giveUp()
{
    m_given += held();
    m_keys.clear();
}

/// The difference is taken modulo 2^32, so that it survives the wrap. Keys of two devices may come a little out of
/// order.
bool CodeBurst::follows(std::uint32_t time) const
{
    const auto gap = static_cast<std::int32_t>(time - m_last);
    return m_begun && gap <= m_settings.longestGapMs && gap >= -m_settings.longestGapMs;
}

CodeBurst::Verdict CodeBurst::character(const Key &key, int replay)
{
    if (m_given > 0) {
        ++m_given;
        return {.replay = replay};
    }
    if (m_keys.isEmpty())
        m_joined = std::exchange(m_behindEnd, false);
    m_keys.append(key.text);
    // A person's key right before the prefix is no code's.
    while (!m_joined && !m_keys.isEmpty() && !mayBePrefixed()) {
        m_keys.removeFirst();
        ++replay;
    }
    if (m_keys.isEmpty())
        return {.replay = replay - 1}; // the last of them is this key, which passes
    return {.kind = Kind::Hold, .replay = replay};
}

CodeBurst::Verdict CodeBurst::end(int replay)
{
    if (held() == 0 && m_given == 0)
        return {.kind = m_behindEnd ? Kind::Swallow : Kind::Pass, .replay = replay};
    Verdict verdict = judged();
    verdict.replay = verdict.kind == Kind::Pass ? held() : 0;
    const bool passes = verdict.kind == Kind::Pass;
    forget();
    m_behindEnd = !passes;
    return verdict;
}

/// What the keys are that an end follows.
CodeBurst::Verdict CodeBurst::judged() const
{
    if (m_given > 0) // too late to hold: the beginning has been replayed, but Enter must not press what has the focus
        return {.kind = m_given >= m_settings.shortest ? Kind::Mixed : Kind::Pass};
    const QString text = m_keys.join(QString());
    const bool prefixed = text.startsWith(m_settings.prefix);
    const QString code = prefixed ? text.sliced(m_settings.prefix.size()) : text;
    const int length = characters(code);
    if (!prefixed || length < m_settings.shortest)
        return {.kind = m_joined ? Kind::Mixed : Kind::Pass};
    if (length > m_settings.longest)
        return {.kind = Kind::TooLong};
    return {.kind = Kind::Code, .code = code, .joined = m_joined};
}

/// Whether the keys held are the beginning of the prefix, or begin with it.
bool CodeBurst::mayBePrefixed() const
{
    QString begin;
    for (const QString &key : m_keys) {
        if (begin.size() >= m_settings.prefix.size())
            break;
        begin += key;
    }
    return begin.startsWith(m_settings.prefix) || m_settings.prefix.startsWith(begin);
}

void CodeBurst::forget()
{
    m_keys.clear();
    m_given = 0;
    m_behindEnd = false;
    m_joined = false;
}

} // namespace harrowby
