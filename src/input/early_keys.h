// SPDX-License-Identifier: MIT
#pragma once

#include <QHash>
#include <QObject>
#include <QSet>

class QKeyEvent;
class QWidget;

namespace harrowby {

/// Keeps a box from being answered by keys that were not meant for it: those pressed before it was painted, and those
/// held down since. Whoever leans on Enter, or types on when a box comes up, has not read it.
class EarlyKeys final : public QObject
{
    Q_OBJECT

public:
    /// Belongs to the box. Before it is shown.
    explicit EarlyKeys(QWidget &box);

    /// Whether the box has one, be it another library's.
    [[nodiscard]] static bool guard(const QWidget &box);
    /// Whether the box stands there, painted, and listens to keys; also true of one that nobody guards.
    [[nodiscard]] static bool areOver(const QWidget &box);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    [[nodiscard]] bool isOfBox(const QObject *object) const;
    void begin();
    void notePaint();
    void noteRelease(const QKeyEvent &key);
    [[nodiscard]] bool isRepeated(const QKeyEvent &key) const;
    [[nodiscard]] bool answers(const QKeyEvent &key);

    QWidget &m_box;
    bool m_painted = false;
    bool m_listening = false;             ///< painted, and what had been pressed until then has passed
    QSet<quint32> m_meant;                ///< keys pressed since
    QHash<quint32, quint64> m_releasedAt; ///< when each key was released last, on the clock of the events
};

} // namespace harrowby
