// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QObject>
#include <QPointer>
#include <QTimer>

class QWidget;

namespace harrowby::app {

/// Stands in for a window manager on an X screen without one, as many tills have: sets the X input focus when a window
/// of the program closes or is pressed, draws an edge around boxes, and sizes a maximized window to the screen. Does
/// nothing where there is a window manager. Lives as long as the application.
class BareScreen final : public QObject
{
    Q_OBJECT

public:
    explicit BareScreen(QObject *parent = nullptr);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void add(QWidget &window);
    void arrange();

    bool m_pressed = false;             ///< by a person, while the keys went elsewhere
    QTimer m_arranging;                 ///< calls arrange() once Qt has handled the event
    QList<QPointer<QWidget>> m_windows; ///< that take keys, as they came
};

} // namespace harrowby::app
