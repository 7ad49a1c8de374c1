// SPDX-License-Identifier: MIT
#pragma once

#include <QKeyEvent>
#include <QPointer>
#include <QSet>
#include <QWindow>

#include <memory>
#include <vector>

namespace harrowby {

/// One event of a key that was held back, and where it was going.
struct HeldKey
{
    int ordinal = 0; ///< of its key among those held
    QPointer<QWindow> window;
    QPointer<QObject> target;         ///< what would have got it: the focus of the window, or a popup
    std::unique_ptr<QKeyEvent> asked; ///< the ShortcutOverride before a press; may be null
    std::unique_ptr<QKeyEvent> event; ///< KeyPress or KeyRelease
};

/// What the keys of `window` go to now.
[[nodiscard]] QObject *keyTarget(QWindow &window);

/// The events of the keys that are held back, in the order in which they came.
class HeldKeys
{
public:
    void add(HeldKey key) { m_keys.push_back(std::move(key)); }
    /// Keeps the release of a key whose press is here. False when it is not.
    [[nodiscard]] bool addRelease(QWindow &window, const QKeyEvent &release);
    /// Takes out what belongs to the first `count` keys.
    [[nodiscard]] std::vector<HeldKey> take(int count);
    [[nodiscard]] std::vector<HeldKey> takeAll();
    [[nodiscard]] bool isEmpty() const { return m_keys.empty(); }
    /// The physical keys that are down still.
    [[nodiscard]] QSet<quint32> down() const;

private:
    std::vector<HeldKey> m_keys;
};

} // namespace harrowby
