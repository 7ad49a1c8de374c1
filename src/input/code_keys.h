// SPDX-License-Identifier: MIT
#pragma once

#include "input/code_burst.h"
#include "input/code_place.h"
#include "input/held_keys.h"
#include "input/key_repeats.h"

#include <QObject>
#include <QSet>
#include <QTimer>

#include <optional>

namespace harrowby {

/// Event filter of the application that takes the bursts of code readers out of its keys, in whichever window they are
/// typed. Without settings, as at first, every key goes where it always went.
///
/// A key counts when it bears a time and is no repeat: keys of an on-screen keyboard, of accessibility and of tests do
/// not. One that may belong to a code is held back, and replayed to where it was going when no code comes of it, by the
/// way that a key of the window system takes: ShortcutOverride, shortcuts, press, release. In an entry that takes text
/// nothing is held back, unless readers type a prefix; only the end is kept from it.
class CodeKeys final : public QObject
{
    Q_OBJECT

public:
    enum class Refusal {
        BoxOpen, ///< a box was open; it was not answered
        Mixed,   ///< more than one code in one another, or half a code
        TooLong,
    };
    Q_ENUM(Refusal)

    /// May not be destroyed while a key is delivered.
    using QObject::QObject;

    /// Takes effect at once, also from within the delivery of a key.
    void setSettings(const std::optional<CodeReaderSettings> &settings);

    bool eventFilter(QObject *watched, QEvent *event) override;

Q_SIGNALS:
    /// From within the delivery of the key that ended it. `joined`: see CodeBurst.
    void codeRead(const QString &code, bool joined);
    void codeRefused(harrowby::CodeKeys::Refusal why);

private:
    enum class Way { Pass, Hold, Drop };
    /// What was decided on a press at its ShortcutOverride, for the KeyPress that follows.
    struct Decision
    {
        Way way = Way::Pass;
        int ordinal = 0;
        quint32 key = 0; ///< physical; 0: none
        quint64 time = 0;
        QPointer<QObject> target;
        std::unique_ptr<QKeyEvent> asked;
    };

    bool press(QWindow &window, QKeyEvent &key);
    bool release(QWindow &window, QKeyEvent &key);
    [[nodiscard]] Way decide(QWindow &window, const QKeyEvent &key);
    [[nodiscard]] Way recognise(QWindow &window, const QKeyEvent &key);
    [[nodiscard]] Way hold(QObject *target);
    [[nodiscard]] Way finish(const CodeBurst::Verdict &verdict, const QKeyEvent &end);
    void land();
    [[nodiscard]] bool breakOff();
    void timeOut();
    bool replay(std::vector<HeldKey> keys);
    void deliver(const HeldKey &key);
    [[nodiscard]] bool isShortcut(const HeldKey &key);
    void send(QObject &receiver, QKeyEvent &event);

    CodeBurst m_burst{{}};
    int m_prefixKeys = 0;
    KeyRepeats m_repeats;
    HeldKeys m_held;
    Decision m_decided;
    QTimer m_timer{this};
    int m_rounds = 0;                   ///< of the timer since the gap is over
    QSet<quint32> m_swallowed;          ///< physical keys of a code whose release is still to come
    const QEvent *m_replayed = nullptr; ///< the event that is being replayed
    int m_blocked = 0;                  ///< how often a modal window has blocked another one

    // The burst under way
    QPointer<QObject> m_target; ///< what had the focus when it began
    CodePlace m_place = CodePlace::Host;
    bool m_moved = false; ///< the focus has moved since
    bool m_atBox = false; ///< a box was open meanwhile
};

} // namespace harrowby
