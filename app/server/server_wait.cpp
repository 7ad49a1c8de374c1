// SPDX-License-Identifier: MIT
#include "app/server/server_wait.h"

#include "basic/steady_clock.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

using namespace std::chrono_literals;

/// The hook is called every 50 ms at most; what comes later belongs to another wait.
constexpr auto longestGap = 150ms;
/// Before the hook is called first.
constexpr auto unheard = 50ms;

} // namespace

ServerWait::ServerWait(const QByteArray &display, Clock clock, QObject *parent) :
    QObject(parent), m_clock(clock ? std::move(clock) : Clock(steadyNow)), m_sign(WaitWords{}), m_giveUp(display)
{
}

bool ServerWait::goesOn(const DbWait &wait)
{
    const Milliseconds now = m_clock();
    const bool isPressed = m_giveUp.wasPressed();                           // of the button that stands there still
    const bool isShort = wait.isManyShortOnes && (m_answers || m_wasShort); // a single one among long ones is none
    m_wasShort = wait.isManyShortOnes;
    if (!std::exchange(m_isOfThisTurn, true))
        QMetaObject::invokeMethod(this, &ServerWait::end, Qt::QueuedConnection); // also in the loop of a box
    if (now - m_last > longestGap) {
        m_began = now - unheard;
        m_answers = m_answers || !m_isShown;
    }
    m_last = now;
    if (m_answers) {
        m_takesNoInput = now - unheard; // the latest answer may prove to be a late one
        m_answers = isShort;
    }
    if (now - m_began < (m_answers && !m_isShown ? quietWhileItAnswers : quiet))
        return !(isPressed && m_isShown && wait.mayGiveUp); // it was taken from the button now
    if (!m_answers)
        m_dam.hold(m_takesNoInput, now + unheard);
    m_sign.keepShowing(wordsOf(wait, isShort));
    m_giveUp.offer(m_sign.button());
    m_isShown = true;
    return !(isPressed && wait.mayGiveUp);
}

void ServerWait::end()
{
    m_isOfThisTurn = false;
    m_isShown = false;
    m_answers = true;
    m_wasShort = false;
    m_last = {}; // the window has gone on: what comes is another wait
    m_giveUp.offer({});
    m_sign.hide();
}

WaitWords ServerWait::wordsOf(const DbWait &wait, bool isShort) const
{
    WaitWords words{u"Waiting for the server"_s, {}};
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(m_last - m_began).count();
    const QString time = seconds > 0 ? u" (%1 s)"_s.arg(seconds) : QString();
    if (isShort) {
        words.text = u"The server answers slowly%1."_s.arg(time);
        return words;
    }
    switch (wait.what) {
    case DbWait::For::Connection:
        words.text = u"The server cannot be reached. Trying again%1 \u2026"_s.arg(time);
        break;
    case DbWait::For::Lock:
        words.text = u"Another till or the office keeps what is needed locked%1."_s.arg(time);
        break;
    default:
        words.text = u"The server has not answered yet%1."_s.arg(time);
    }
    if (wait.mayGiveUp && m_giveUp.canBeOffered())
        words.button = u"Give up (Esc)"_s;
    return words;
}

} // namespace harrowby::app
