// SPDX-License-Identifier: MIT
#pragma once

#include <QPointer>
#include <QString>
#include <QWidget>

namespace harrowby::app {

/// Says in front of the window what is waited for while no event runs: it is a part of the window, since a window of
/// its own would not come before the next event, and paints itself at once. It goes with the next event.
class WaitSign
{
public:
    explicit WaitSign(QString heading, QString text);
    ~WaitSign();
    WaitSign(const WaitSign &) = delete;
    WaitSign &operator=(const WaitSign &) = delete;

    /// On the thread of the windows. Nothing happens while it stands there already, and without a window to stand in.
    void show();

private:
    QString m_heading;
    QString m_text;
    QPointer<QWidget> m_sign;
};

} // namespace harrowby::app
