// SPDX-License-Identifier: MIT
#pragma once

#include <QHash>
#include <QObject>
#include <QSet>

class QKeyEvent;
class QWidget;

namespace harrowby {

/// Event filter that keeps a box from being answered by keys pressed before it was painted, or held down since: whoever
/// typed on when the box came up has not read it.
class EarlyKeyFilter final : public QObject
{
    Q_OBJECT

public:
    /// Becomes a child of the box. Made before the box is shown.
    explicit EarlyKeyFilter(QWidget &box);

    /// Whether the box has such a filter, also one that another library of the process has made.
    [[nodiscard]] static bool isInstalled(const QWidget &box);
    /// Whether the box accepts keys: it has been painted and the earlier keys have been dropped, or it has no filter.
    [[nodiscard]] static bool acceptsKeys(const QWidget &box);

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
    QSet<quint32> m_pressedSince;         ///< keys pressed since
    QHash<quint32, quint64> m_releasedAt; ///< when each key was released last, on the clock of the events
};

} // namespace harrowby
