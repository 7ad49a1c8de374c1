// SPDX-License-Identifier: MIT
#pragma once

#include "app/server/give_up.h"
#include "app/server/input_dam.h"
#include "app/shop/wait_sign.h"

#include <harrowby/db_connection.h>

#include <QObject>
#include <QString>

#include <chrono>
#include <functional>

namespace harrowby::app {

/// What a person sees of a statement that waits for the server (DbConnection::setWaitHook()): the sign, with "Give up"
/// where the wait may end. Nothing that is pressed or typed meanwhile has an effect afterwards. Where many short
/// answers add up, as over a long line, the sign alone is shown, without a button: a shop's every list would swallow
/// keys there.
class ServerWait final : public QObject
{
    Q_OBJECT

public:
    using Milliseconds = std::chrono::milliseconds;
    /// On the steady clock.
    using Clock = std::function<Milliseconds()>;

    /// A wait is shown once it has lasted this long: then, and from then on, no 100 ms pass between two pictures.
    static constexpr Milliseconds quiet{70};
    /// Many short answers together: a purchase or a list takes that long now and then, and a sign would only flash.
    static constexpr Milliseconds quietWhileItAnswers{220};

    /// `display` as Qt's option -display has it. `clock` replaces the time in tests.
    explicit ServerWait(const QByteArray &display = {}, Clock clock = {}, QObject *parent = nullptr);

    /// The hook: false when the person has given up.
    [[nodiscard]] bool goesOn(const DbWait &wait);
    /// At this moment of the steady clock, in the latest wait that was shown.
    [[nodiscard]] bool wentOnAt(Milliseconds moment) const { return m_dam.isWithin(moment); }

private:
    [[nodiscard]] WaitWords wordsOf(const DbWait &wait, bool isShort) const;
    void end();

    Clock m_clock;
    WaitSign m_sign;
    GiveUpButton m_giveUp;
    InputDam m_dam;
    Milliseconds m_began{0};        ///< of the wait that goes on
    Milliseconds m_takesNoInput{0}; ///< since then
    Milliseconds m_last{0};         ///< when the hook was called last
    bool m_answers = true;          ///< each answer has come soon so far
    bool m_wasShort = false;        ///< the hook's latest call was one for many short answers
    bool m_isOfThisTurn = false;    ///< the event loop has not run since the hook was called last
    bool m_isShown = false;
};

} // namespace harrowby::app
