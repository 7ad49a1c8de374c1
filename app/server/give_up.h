// SPDX-License-Identifier: MIT
#pragma once

#include "app/shop/wait_sign.h"

#include <QByteArray>

#include <cstdint>
#include <memory>
#include <optional>

struct xcb_connection_t;

namespace harrowby::app {

/// The button of a sign that is shown while the event loop does not run: Qt reads no input then. So this listens on a
/// connection of its own to the X server, with a window that cannot be seen over the painted button, and for the Escape
/// key in the window that bears it. On other platforms nothing can be pressed, and the wait ends by its own limit.
class GiveUpButton
{
public:
    /// `display` as Qt's option -display has it; empty for that of the environment.
    explicit GiveUpButton(QByteArray display);
    ~GiveUpButton();
    GiveUpButton(const GiveUpButton &) = delete;
    GiveUpButton &operator=(const GiveUpButton &) = delete;

    /// Whether this platform has such a button.
    [[nodiscard]] bool canBeOffered() const;
    /// Listens there; nothing: nowhere any more.
    void offer(const std::optional<WaitSign::Button> &button);
    /// Whether it was pressed since it was last asked. Does not block.
    [[nodiscard]] bool wasPressed();

private:
    struct Disconnect
    {
        void operator()(xcb_connection_t *connection) const noexcept;
    };

    void listen(const WaitSign::Button &button);

    QByteArray m_display;
    std::unique_ptr<xcb_connection_t, Disconnect> m_connection; ///< while it is offered
    std::uint32_t m_window = 0;
    std::optional<WaitSign::Button> m_place;
};

} // namespace harrowby::app
