// SPDX-License-Identifier: MIT
#pragma once

#include <QPointer>
#include <QString>
#include <QWidget>

#include <memory>

namespace harrowby::app {

/// Says on the screen what is waited for while no event runs, and paints itself at once: as a part of the window in
/// front, or, while there is none yet, in the middle of the screen. It goes with the next event.
class WaitSign
{
public:
    explicit WaitSign(QString heading, QString text);
    ~WaitSign();
    WaitSign(const WaitSign &) = delete;
    WaitSign &operator=(const WaitSign &) = delete;

    /// On the thread of the windows. Called again in the same wait, it keeps the sign in sight.
    void show();

private:
    class LoneSign;

    void showIn(QWidget &window);
    void showAlone();

    QString m_heading;
    QString m_text;
    QPointer<QWidget> m_sign; ///< the window that it is a part of may end first
    std::unique_ptr<LoneSign> m_loneSign;
};

} // namespace harrowby::app
