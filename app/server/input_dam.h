// SPDX-License-Identifier: MIT
#pragma once

#include <QBasicTimer>
#include <QObject>

#include <chrono>

namespace harrowby::app {

/// Keeps out what was pressed and typed while the program was waiting: it lies in the queue when the event loop runs
/// again, and would hit what has come up meanwhile; so would a window's being closed. The release of a button or key
/// that was pressed before passes, and so does the window that whoever has waited closes itself, in the same handler or
/// in that of a later press.
///
/// The times of input events are the X server's or the compositor's, which on one machine are the steady clock's.
class InputDam final : public QObject
{
    Q_OBJECT

public:
    explicit InputDam(QObject *parent = nullptr);

    /// From `begin` until `end`, in milliseconds of the steady clock. Takes the place of an earlier period, or goes on
    /// with it where the event loop has not yet come to all that was pressed within that.
    void hold(std::chrono::milliseconds begin, std::chrono::milliseconds end);

    /// Whether this moment lies within the period.
    [[nodiscard]] bool isWithin(std::chrono::milliseconds time) const;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void timerEvent(QTimerEvent *event) override;

private:
    void noteLater(std::chrono::milliseconds time);

    QBasicTimer m_untilIdle; ///< runs while something of the period may still lie in the queue
    std::chrono::milliseconds m_begin{0};
    std::chrono::milliseconds m_end{0};
    bool m_hasLoopTurned = true; ///< since the period was last told: whoever has waited has come back
    Qt::MouseButtons m_kept;     ///< pressed within it, and not released yet
};

} // namespace harrowby::app
