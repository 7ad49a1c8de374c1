// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QObject>
#include <QPointer>
#include <QTimer>

class QWidget;

namespace harrowby::app {

/// Does for the program's windows what a window manager would, on an X screen that has none, as many a till's: keys go
/// to the window that is left when one closes, or that is pressed; boxes have an edge; a maximized window fills the
/// screen. Does nothing where there is a window manager. Lives as long as the application.
class BareScreen final : public QObject
{
    Q_OBJECT

public:
    explicit BareScreen(QObject *parent = nullptr);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void come(QWidget &window);
    void settle();

    bool m_pressed = false;             ///< by a person, while the keys went elsewhere
    QTimer m_later;                     ///< after a window has come or gone
    QList<QPointer<QWidget>> m_windows; ///< that take keys, as they came
};

} // namespace harrowby::app
