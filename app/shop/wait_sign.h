// SPDX-License-Identifier: MIT
#pragma once

#include <QPointer>
#include <QString>
#include <QWidget>

#include <memory>

namespace harrowby::app {

/// A small board that says what is waited for while the event loop does not run. Paints itself at once: as a child of
/// the window in front, or, while there is none yet, as a window in the middle of the screen. Hidden by the next event.
/// After how long it is shown: wait_times.h.
class WaitSign
{
public:
    explicit WaitSign(QString heading, QString text);
    ~WaitSign();
    WaitSign(const WaitSign &) = delete;
    WaitSign &operator=(const WaitSign &) = delete;

    /// On the user-interface thread. Called again in the same wait, it raises and repaints the sign.
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
