// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QPoint>
#include <QPointer>
#include <QRect>
#include <QWidget>

namespace harrowby::app {

/// Keeps one window usable above a keyboard on the screen: the window is moved up where it can be moved, and for the
/// rest its contents are shifted, for a till fills its screen and has a smallest size.
class KeyboardRoom final : public QObject
{
    Q_OBJECT

public:
    /// Shows the entry and what belongs to it above `keyboard`, which is in screen coordinates.
    void makeRoom(QWidget &entry, const QRect &keyboard);
    /// Puts everything back.
    void giveBack();

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void adopt(QWidget &entry);
    void lift(const QRect &keyboard);
    void shiftTo(int shift);

    QPointer<QWidget> m_window;
    QPoint m_place; ///< where the window stood, without its frame, whose size may not be known yet
    int m_lift = 0; ///< how far it was moved up

    QPointer<QWidget> m_content; ///< what is shifted in it: the child that holds the entry
    QPoint m_home;               ///< where that child belongs
    int m_shift = 0;
    bool m_shifting = false;
};

} // namespace harrowby::app
