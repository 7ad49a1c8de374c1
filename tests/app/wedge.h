// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <memory>

struct xcb_connection_t;

namespace harrowby::app::test {

/// A code reader that types like a keyboard: real keys through the X server, which waits the gaps itself (XTEST), so
/// that they are as even as a reader's.
class Wedge
{
public:
    explicit Wedge(const QString &display);
    ~Wedge();
    Wedge(const Wedge &) = delete;
    Wedge &operator=(const Wedge &) = delete;

    /// Types the text after `pause` ms, with `gap` ms between its keys; "\r" and "\t" are Enter and Tab. Capitals and
    /// all that the layout has there come by Shift. Returns when the server has done it; false when a character has no
    /// key.
    [[nodiscard]] bool type(const QString &text, int gap, int pause = 400);
    /// The same, and returns once what was typed before is done.
    [[nodiscard]] bool begin(const QString &text, int gap, int pause);
    /// Waits until the server has typed all.
    void finish();

private:
    void fake(int event, int keycode, int delay);
    void press(int keycode, int shiftKeycode, int delay);

    std::unique_ptr<xcb_connection_t, void (*)(xcb_connection_t *)> m_server;
};

} // namespace harrowby::app::test
