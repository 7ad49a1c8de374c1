// SPDX-License-Identifier: MIT
#pragma once

#include <QPointer>
#include <QRect>
#include <QString>
#include <QWidget>

#include <memory>
#include <optional>

namespace harrowby::app {

struct WaitWords
{
    QString heading;
    QString text;
    QString button = {}; ///< of a sign that can be pressed; empty for none
    bool operator==(const WaitWords &) const = default;
};

/// A small board that says what is waited for while the event loop does not run. Paints itself at once: as a child of
/// the window in front, or, while there is none yet, as a window in the middle of the screen. Hidden by the next event.
/// When it comes, the program's windows are painted once more.
/// After how long it is shown: wait_times.h.
class WaitSign
{
public:
    explicit WaitSign(QString heading, QString text);
    explicit WaitSign(WaitWords words);
    ~WaitSign();
    WaitSign(const WaitSign &) = delete;
    WaitSign &operator=(const WaitSign &) = delete;

    /// On the user-interface thread. Called again in the same wait, it raises and repaints the sign.
    void show();

    /// For a wait that calls this again and again, at most 100 ms apart: shows the sign with these words and something
    /// that moves.
    void keepShowing(const WaitWords &words);

    /// A button is only painted: the event loop does not run. Where it is to be pressed.
    struct Button
    {
        WId window = 0; ///< the native window that bears it
        QRect place;    ///< within that, in its own pixels
    };
    /// Nothing while there is none to be seen.
    [[nodiscard]] std::optional<Button> button() const;

    void hide();

private:
    class Board;
    class LoneSign;

    void showIn(QWidget &window);
    void showAlone();

    WaitWords m_words;
    int m_step = -1;        ///< of what moves; -1 for nothing
    QPointer<Board> m_sign; ///< the window that it is a part of may end first
    std::unique_ptr<LoneSign> m_loneSign;
};

} // namespace harrowby::app
