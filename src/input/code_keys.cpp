// SPDX-License-Identifier: MIT
#include "input/code_keys.h"

#include <QApplication>
#include <QKeyEvent>
#include <QWidget>

#include <algorithm>
#include <utility>

// Looks a key up among the shortcuts, after a ShortcutOverride to `receiver`. Qt Gui exports it for Qt Test, which
// declares it in a public header (qtestkey.h); there is no other public way to them.
QT_BEGIN_NAMESPACE
Q_GUI_EXPORT bool qt_sendShortcutOverrideEvent(QObject *receiver, ulong timestamp, int key,
                                               Qt::KeyboardModifiers modifiers, const QString &text, bool repeated,
                                               ushort count);
QT_END_NAMESPACE

namespace harrowby {

namespace {

using Kind = CodeBurst::Verdict::Kind;

/// A key with a time within the gap may take so much longer to arrive.
constexpr int arrivalSlackMs = 10;
/// So many more rounds of the event loop, each of which fetches what the window system has sent, until what was held is
/// replayed: after a long handler the timer is due before the keys that have piled up are.
constexpr int loopRounds = 2;
constexpr int nextRoundMs = 1; // 0 would be an idle timer, which a list that fills keeps waiting

bool isModifier(const QKeyEvent &key)
{
    switch (key.key()) {
    case Qt::Key_Shift:
    case Qt::Key_Control:
    case Qt::Key_Alt:
    case Qt::Key_AltGr:
    case Qt::Key_Meta:
    case Qt::Key_CapsLock:
    case Qt::Key_NumLock:
    case Qt::Key_Mode_switch:
        return true;
    default:
        return false;
    }
}

bool isEnd(const QKeyEvent &key)
{
    return key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter || key.key() == Qt::Key_Tab;
}

/// Marks that turn the direction of writing, too: a code with one is no item's, but its Enter must press nothing.
bool isCharacter(const QKeyEvent &key)
{
    const QString text = key.text();
    return !text.isEmpty() && std::ranges::all_of(text, [](QChar part) {
        return part.isPrint() || part.isSurrogate() || part.category() == QChar::Other_Format;
    });
}

/// Ctrl, Alt and Meta make a command of a key.
bool mayBeReaders(const QKeyEvent &key)
{
    constexpr Qt::KeyboardModifiers commands = Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;
    return (key.modifiers() & commands) == Qt::NoModifier && (isEnd(key) || isCharacter(key));
}

bool bearsATime(const QKeyEvent &key)
{
    return key.spontaneous() && key.timestamp() != 0;
}

bool isBoxOpen()
{
    return QApplication::activeModalWidget() != nullptr;
}

/// Whether a box in front keeps keys from it; not from an entry, where what was typed before belongs.
bool isCutOff(QObject *target)
{
    const auto *widget = qobject_cast<const QWidget *>(target);
    const QWidget *box = QApplication::activeModalWidget();
    return box != nullptr && (widget == nullptr || widget->window() != box) && codePlaceOf(target) != CodePlace::Entry;
}

} // namespace

void CodeKeys::setSettings(const std::optional<CodeReaderSettings> &settings)
{
    QCoreApplication::instance()->removeEventFilter(this);
    static_cast<void>(breakOff());
    if (!settings)
        return;
    m_burst = CodeBurst(*settings);
    m_prefixKeys = static_cast<int>(settings->prefix.size());
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    m_timer.callOnTimeout(this, &CodeKeys::timeOut, Qt::UniqueConnection);
    QCoreApplication::instance()->installEventFilter(this);
}

bool CodeKeys::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::WindowBlocked:
        ++m_blocked;
        return false;
    case QEvent::InputMethod:
        if (!m_held.isEmpty())
            static_cast<void>(breakOff()); // in the order in which both were typed
        return false;
    case QEvent::ShortcutOverride:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
        break;
    default:
        return false;
    }
    // A key goes to its QWindow first, and from there to widgets.
    if (event == m_replayed || !watched->isWindowType())
        return false;
    auto &window = *static_cast<QWindow *>(watched);
    auto &key = *static_cast<QKeyEvent *>(event);
    return key.type() == QEvent::KeyRelease ? release(window, key) : press(window, key);
}

/// Of one press there come a ShortcutOverride and, unless a shortcut takes it, a KeyPress; either may be missing.
bool CodeKeys::press(QWindow &window, QKeyEvent &key)
{
    const bool decided =
        key.type() == QEvent::KeyPress && m_decided.key == physicalKey(key) && m_decided.time == key.timestamp();
    if (!decided) {
        std::unique_ptr<QKeyEvent> asked(key.type() == QEvent::ShortcutOverride ? key.clone() : nullptr);
        const Way way = decide(window, key);
        m_decided = {.way = way,
                     .ordinal = m_burst.held() - 1,
                     .key = physicalKey(key),
                     .time = key.timestamp(),
                     .target = keyTarget(window), // after what was replayed
                     .asked = std::move(asked)};
    }
    const Way way = m_decided.way;
    if (key.type() == QEvent::KeyPress) {
        if (way == Way::Hold) {
            m_held.add({.ordinal = m_decided.ordinal,
                        .window = &window,
                        .target = m_decided.target,
                        .asked = std::move(m_decided.asked),
                        .event = std::unique_ptr<QKeyEvent>(key.clone())});
        }
        m_decided = {};
    }
    if (way == Way::Pass)
        return false;
    key.accept(); // an unaccepted ShortcutOverride goes on to QShortcutMap
    return true;
}

bool CodeKeys::release(QWindow &window, QKeyEvent &key)
{
    m_repeats.noteRelease(key);
    if (m_swallowed.remove(physicalKey(key)) || m_held.addRelease(window, key)) {
        key.accept();
        return true;
    }
    return false;
}

CodeKeys::Way CodeKeys::decide(QWindow &window, const QKeyEvent &key)
{
    if (isModifier(key))
        return Way::Pass;
    const bool counts = bearsATime(key) && !m_repeats.isRepeat(key);
    if (!counts || !mayBeReaders(key) || codePlaceOf(keyTarget(window)) == CodePlace::Hidden)
        return breakOff() ? Way::Pass : Way::Drop;
    return recognise(window, key);
}

CodeKeys::Way CodeKeys::recognise(QWindow &window, const QKeyEvent &key)
{
    const CodeBurst::Verdict verdict =
        m_burst.key({.text = key.text(), .ends = isEnd(key), .time = static_cast<std::uint32_t>(key.timestamp())});
    const bool arrives = verdict.replay == 0 || replay(m_held.take(verdict.replay));
    QObject *target = keyTarget(window);
    m_moved = m_moved || target != m_target;
    m_atBox = m_atBox || isBoxOpen();
    switch (verdict.kind) {
    case Kind::Pass:
        return arrives ? Way::Pass : Way::Drop;
    case Kind::Hold:
        if (arrives)
            return hold(target);
        m_burst.interrupt();
        return Way::Drop;
    default:
        return finish(verdict, key);
    }
}

CodeKeys::Way CodeKeys::hold(QObject *target)
{
    if (m_burst.held() == 1) {
        m_target = target;
        m_place = codePlaceOf(target);
        m_moved = false;
        m_atBox = isBoxOpen();
    }
    if (m_place == CodePlace::Hidden) { // a replayed key has led there
        m_burst.interrupt();
        return Way::Pass;
    }
    if (m_place == CodePlace::Entry && m_prefixKeys == 0 && !m_moved && !m_atBox)
        return Way::Pass;
    m_rounds = 0;
    m_timer.start(m_burst.longestGapMs() + arrivalSlackMs);
    return Way::Hold;
}

CodeKeys::Way CodeKeys::finish(const CodeBurst::Verdict &verdict, const QKeyEvent &end)
{
    m_timer.stop();
    m_swallowed.unite(m_held.down());
    m_swallowed.insert(physicalKey(end));
    const bool inEntry = m_place == CodePlace::Entry && !m_moved && !m_atBox;
    if (verdict.kind == Kind::Code && inEntry)
        land();
    static_cast<void>(m_held.takeAll());
    if (verdict.kind == Kind::Swallow || inEntry)
        return Way::Drop;
    if (m_atBox)
        Q_EMIT codeRefused(Refusal::BoxOpen);
    else if (verdict.kind == Kind::TooLong)
        Q_EMIT codeRefused(Refusal::TooLong);
    else if (verdict.kind == Kind::Mixed || m_place == CodePlace::Entry)
        Q_EMIT codeRefused(Refusal::Mixed); // in an entry that lost the focus, half of the code stands already
    else
        Q_EMIT codeRead(verdict.code, verdict.joined);
    return Way::Drop;
}

/// Types into the entry what was held, without the prefix. Without one nothing was held.
void CodeKeys::land()
{
    static_cast<void>(m_held.take(m_prefixKeys));
    m_swallowed.subtract(m_held.down());
    replay(m_held.takeAll());
}

/// False when a box has come up meanwhile: what was typed before it is not for it.
bool CodeKeys::breakOff()
{
    m_timer.stop();
    m_burst.interrupt();
    return replay(m_held.takeAll());
}

void CodeKeys::timeOut()
{
    if (m_rounds++ < loopRounds)
        return m_timer.start(nextRoundMs);
    m_burst.giveUp();
    replay(m_held.takeAll());
}

/// False when a box has come up: Qt drops keys that were on their way to a window that a modal one blocks, and so are
/// they here.
bool CodeKeys::replay(std::vector<HeldKey> keys)
{
    const int blocked = m_blocked;
    // Each goes where those before it have led. Only what has moved the focus meanwhile is no affair of theirs.
    const bool moved = !keys.empty() && keys.front().window && keyTarget(*keys.front().window) != keys.front().target;
    return std::ranges::all_of(keys, [this, moved, blocked](const HeldKey &key) {
        if (!moved)
            deliver(key);
        else if (key.target && !isCutOff(key.target))
            send(*key.target, *key.event);
        return m_blocked == blocked;
    });
}

/// As QGuiApplicationPrivate::processKeyEvent() does.
void CodeKeys::deliver(const HeldKey &key)
{
    QObject *target = key.window ? keyTarget(*key.window) : nullptr;
    if (target == nullptr || isCutOff(target))
        return;
    if (key.event->type() == QEvent::KeyPress && isShortcut(key))
        return;
    if (key.window)
        send(*key.window, *key.event);
}

bool CodeKeys::isShortcut(const HeldKey &key)
{
    if (key.asked) {
        send(*key.window, *key.asked);
        if (key.asked->isAccepted())
            return false;
    }
    QObject nobody;
    const QKeyEvent &event = *key.event;
    return qt_sendShortcutOverrideEvent(&nobody, static_cast<ulong>(event.timestamp()), event.key(), event.modifiers(),
                                        event.text(), event.isAutoRepeat(), static_cast<ushort>(event.count()));
}

/// Not sendEvent(), which would make the event one that is not spontaneous.
void CodeKeys::send(QObject &receiver, QKeyEvent &event)
{
    const QEvent *outer = std::exchange(m_replayed, &event);
    QCoreApplication::instance()->notify(&receiver, &event);
    m_replayed = outer;
}

} // namespace harrowby
